#pragma once

#include <QList>
#include <QString>
#include <chrono>
#include <functional>

struct MainModel;
class JoinWizardState;

// The clean-up of what a join leaves in AppDataFolder, by fixed names only:
// the marker folder JoinTemp; the scripts TempFile.bat, MP3.bat, MPEG2.bat;
// the tools MP3.exe, MPEG.exe, MPEG2.exe and their libraries. The items of the
// list and the tools in InstallFolder are never touched.

// Removes JoinTemp and deletes the scripts and the MP3 join's sources file, in
// this order.
void RemoveMarkerAndScripts();

// Ends the processes of each tool whose copy lies in AppDataFolder: those run
// from that copy, never a program of the same name elsewhere. A join that did
// not use a tool leaves processes of that name alone.
void KillToolsInAppData();

// Deletes the tools and libraries (MP3.exe, mingwm10.dll, MPEG.exe,
// pthreadGC2.dll, MPEG2.exe, in this order) and the MP3 fixer's scratch folder.
void DeleteToolsFromAppData();

// Deletes what the steps of the scripts leave for the run (the failure record
// and the error log of the last step).
void DeleteStepRecords();

// True while a file lies at OutputFile, OutputFile + ".vlr.mp3" or OutputFile
// + ".vlr.mpg".
bool JoinOutputRemains(const QString& outputFile);

// A file of the join that the cancel could not delete, and why.
struct LeftBehindFile {
    QString path;
    QString reason;
};

// The wait of a cancel: while any of those files exists, shows "Join Wizard
// (Cancelling...)", deletes each that exists, gives events a turn and pauses
// briefly, so a process that still writes is waited for without spinning.
// A file that cannot be deleted (a read-only folder or file system) or that
// keeps coming back ends the wait after CancelWaitLimit(); the files still
// there are returned with the system's reason. Empty when all are gone.
QList<LeftBehindFile> WaitForJoinOutputGone(const QString& outputFile, JoinWizardState& state);

// How long the cancel wait tries at most, and its pause between tries.
// The setter returns the limit it replaces.
std::chrono::milliseconds CancelWaitLimit();
std::chrono::milliseconds SetCancelWaitLimit(std::chrono::milliseconds limit);
inline constexpr std::chrono::milliseconds kCancelWaitPause{50};

// The message that names the files a cancel left behind and why.
QString LeftBehindMessage(const QList<LeftBehindFile>& files);
