#pragma once

#include <QString>
#include <functional>

struct MainModel;
class JoinWizardState;

// The clean-up of what a join leaves in AppDataFolder, by fixed names only:
// the marker folder JoinTemp; the scripts TempFile.bat, MP3.bat, MPEG2.bat;
// the tools MP3.exe, MPEG.exe, MPEG2.exe and their libraries. The items of the
// list and the tools in InstallFolder are never touched.

// Removes JoinTemp and deletes the scripts, in this order.
void RemoveMarkerAndScripts();

// Ends every process named like a tool whose copy lies in AppDataFolder: a
// join that did not use a tool leaves processes of that name alone.
void KillToolsInAppData();

// Deletes the tools and libraries (MP3.exe, mingwm10.dll, MPEG.exe,
// pthreadGC2.dll, MPEG2.exe, in this order) and the MP3 fixer's scratch folder.
void DeleteToolsFromAppData();

// True while a file lies at OutputFile, OutputFile + ".vlr.mp3" or OutputFile
// + ".vlr.mpg".
bool JoinOutputRemains(const QString& outputFile);

// The wait of a cancel: while any of those files exists, shows "Join Wizard
// (Cancelling...)", deletes each that exists, and gives events a turn. It has
// no time limit: a process that still writes is waited for.
void WaitForJoinOutputGone(const QString& outputFile, JoinWizardState& state);
