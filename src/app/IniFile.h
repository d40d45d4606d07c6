#pragma once

#include <QString>

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

// Convenience forms on SettingsFile() for callers that have no copies to
// throw away: they pass copies to the routines above.
QString ReadSetting(const QString& section, const QString& key);
void WriteSetting(const QString& section, const QString& key, const QString& value);
