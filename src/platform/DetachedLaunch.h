#pragma once

#include <QString>

// Starts a script hidden through /bin/sh and does not wait for it: standard
// input, output and error are /dev/null. Returns the process id of the shell,
// or 0 when it could not be started.
qint64 LaunchScriptDetached(const QString& scriptPath);
