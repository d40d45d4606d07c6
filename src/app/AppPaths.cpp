#include "app/AppPaths.h"

#include <QCoreApplication>

namespace {
QString& appData() {
    static QString folder;
    return folder;
}
QString& installOverride() {
    static QString folder;
    return folder;
}
}  // namespace

QString AppDataFolder() {
    return appData();
}

void SetAppDataFolder(const QString& folder) {
    appData() = folder;
}

QString InstallFolder() {
    if (!installOverride().isEmpty()) {
        return installOverride();
    }
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QString();
}

void SetInstallFolderOverride(const QString& folder) {
    installOverride() = folder;
}

QString SettingsFile() {
    return AppDataFolder() + QStringLiteral("/Settings.ini");
}
