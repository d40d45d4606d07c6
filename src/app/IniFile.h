#pragma once

#include <QString>
#include <functional>

// One key of an INI file in, one key out. Both routines empty the caller's
// section and key (WriteIniValue also the value) after the call, so callers
// hand in throw-away copies.

// Reads a value: the empty text for anything absent, at most 254 characters;
// sections and keys are found without regard to case.
QString ReadIniValue(QString& section, QString& key, QString& file);

// Writes a value: the file is made writable first; a key is updated in place,
// a missing section or key is added, every other line is kept as it was.
// Returns -1 when the write succeeded, else 0.
short WriteIniValue(QString& section, QString& key, QString& value, QString& file);

// Told when WriteIniValue could not write its file, with the file and the
// system's reason, so the user learns that a setting was not kept. Told once
// for a file and reason until a write of that file works again. An empty
// function (the default) tells no one.
using IniWriteFailureReporter = std::function<void(const QString& file, const QString& reason)>;
void SetIniWriteFailureReporter(IniWriteFailureReporter reporter);

// The message that tells the user: "Unable to save the settings!", the file
// and the reason, each on a line of its own.
QString IniWriteFailureMessage(const QString& file, const QString& reason);

// Convenience forms on SettingsFile() for callers that have no copies to
// throw away: they pass copies to the routines above.
QString ReadSetting(const QString& section, const QString& key);
void WriteSetting(const QString& section, const QString& key, const QString& value);

// A face of the program that only reads the user's settings (the command
// line) turns WriteSetting off for the rest of the process: the routines it
// shares with the window still remember their folders, but nothing reaches
// SettingsFile().
void SetSettingsReadOnly(bool readOnly);
bool SettingsReadOnly();
