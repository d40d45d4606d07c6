#pragma once

#include <QString>

// The system's reason told by a shell's exit status alone: the name of the
// signal that ended the command (above 128, "File size limit exceeded",
// "Killed"), a command that is missing (127) or may not be run (126), or
// "exit status N" for any other failure.
QString ExitStatusReason(int status);

// The system's name of a signal ("Killed" for SIGKILL).
QString SignalReason(int signal);

// The system's text of an errno value ("No such file or directory" for ENOENT).
QString ErrorNumberReason(int errorNumber);
