#pragma once

#include <QList>
#include <QString>
#include <functional>

// Ends with SIGKILL every running process whose image name ends in name,
// compared in lower case (the tail of the name: "mp3.exe" matches "MP3.exe"
// and "xmp3.exe" alike), and whose executable lies in folder. So the tools
// that a join copied into its folder and started are ended, and a program of
// the same name anywhere else is left alone, as is a process whose executable
// cannot be read (another user's). An empty name or folder does nothing.
void KillProcessByName(const QString& name, const QString& folder);

// Narrows which matching processes KillProcessByName may end: only those for
// which the filter returns true (given the process id). The program sets none;
// a test that runs beside others narrows it to processes of its own folders.
// Returns the previous filter; an empty one restores "every match".
using ProcessKillFilter = std::function<bool(qint64 processId)>;
ProcessKillFilter setProcessKillFilter(ProcessKillFilter filter);

// The ids of the processes running now, as /proc lists them.
QList<qint64> RunningProcessIds();

// The full path of a process's executable ("" when it cannot be read).
QString ExecutablePathOf(qint64 processId);
