#pragma once

#include <QString>

// The debug log of a "/debug" run. Logging is on exactly when LogPath() is not
// empty; every place that logs tests that first and forms no text otherwise.

// Opens the log file at path; mode 2 logs to a file (the only mode used).
void StartLogging(const QString& path, int mode);

// The full path of the log file; empty while logging is off.
QString LogPath();

// Appends one record (one line holding the text in full). Event type 4 is
// information, the only type used.
void LogEvent(const QString& text, int eventType = 4);

// Ends logging for this process (used by tests to return to the off state).
void StopLogging();
