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
// arguments is the full argument list as QCoreApplication::arguments() gives
// it, the program itself first. Failures are passed over silently, apart from
// the messages of the folder lookup.
StartupResult PrepareStartup(const QStringList& arguments, Questions& questions);

// True when the arguments (program first) are exactly the one argument "/debug".
bool IsDebugCommandLine(const QStringList& arguments);

// The log file name for a moment: "ddmmyyyyhhmmss.log" (24-hour clock).
QString LogFileNameFor(const QDateTime& moment);

// The first record of a log: "LogFile created on: " + date and time in the
// locale's default short date and long time form.
QString LogCreatedRecordFor(const QDateTime& moment);
