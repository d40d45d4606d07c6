// PLACEHOLDER until the settings store lands: compiles and links, reads nothing.
#include "app/IniFile.h"

#include "app/AppPaths.h"

QString ReadIniValue(QString& section, QString& key, QString&) {
    section.clear();
    key.clear();
    return {};
}

short WriteIniValue(QString& section, QString& key, QString& value, QString&) {
    section.clear();
    key.clear();
    value.clear();
    return 0;
}

QString ReadSetting(const QString& section, const QString& key) {
    QString s = section, k = key, f = SettingsFile();
    return ReadIniValue(s, k, f);
}

void WriteSetting(const QString& section, const QString& key, const QString& value) {
    QString s = section, k = key, v = value, f = SettingsFile();
    WriteIniValue(s, k, v, f);
}
