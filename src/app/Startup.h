#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

class Questions;

// What the start-up did before any window is shown.
struct StartupResult {
    QString appDataFolder;               // as stored with SetAppDataFolder()
    bool debug = false;                  // started with exactly "/debug"
    bool copiedDefaultSettings = false;  // first run: DefaultSettings.ini was copied
};

// The non-window part of the splash screen's load step, in this order:
// 1. forms the per-user folder (application data + "/Kestor/Velmora"), makes
//    every missing level of it and stores it as AppDataFolder();
// 2. when the command line is exactly "/debug" (one argument after the program,
//    compared exactly, case included), starts the debug log in AppDataFolder()
//    and shows "Velmora is now running in debug-mode.";
// 3. when SettingsFile() is missing, copies InstallFolder()/DefaultSettings.ini
//    there (and logs it). An existing settings file is never touched.
// arguments is the full argument list as the process received it, the program
// itself first (CommandLineOf, taken before Qt removes its own options).
// Failures are passed over silently, apart from the messages of the folder
// lookup.
StartupResult PrepareStartup(const QStringList& arguments, Questions& questions);

// Step 1 of the above on its own: forms the per-user folder, makes every
// missing level of it and stores it as AppDataFolder(). Returns it.
QString PrepareAppDataFolder(Questions& questions);

// Starts the debug log: a new file named for this moment in AppDataFolder(),
// with its first record.
void StartDebugLog();

// The arguments of the process as it received them, the program first.
QStringList CommandLineOf(int argc, const char* const* argv);

// True when the arguments (program first) are exactly the one argument "/debug".
bool IsDebugCommandLine(const QStringList& arguments);

// The list file to open at start-up: the first argument behind the program
// that is not "/debug", as an absolute path (a relative one is taken from the
// current folder). Empty when there is none. arguments are those left once
// the toolkit has taken its own options out.
QString ListFileOfArguments(const QStringList& arguments);

// Ends the process at once, as File, Exit does: pending output is flushed, and
// nothing else runs: no window's closing step, no destructor, no exit handler.
// So a setting that a window writes as it closes is lost.
[[noreturn]] void EndProcessAtOnce();

// The log file name for a moment: "ddmmyyyyhhmmss.log" (24-hour clock).
QString LogFileNameFor(const QDateTime& moment);

// The first record of a log: "LogFile created on: " + date and time in the
// locale's default short date and long time form.
QString LogCreatedRecordFor(const QDateTime& moment);
