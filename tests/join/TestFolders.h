#pragma once

// The per-user, install and media folders of a test inside its temporary folder.

#include <QDir>
#include <QString>

#include "app/AppPaths.h"

struct TestFolders {
    QString appData;
    QString install;
    QString media;
};

// Makes the three folders under root and points the program's per-user and install
// folders at them.
inline TestFolders MakeTestFolders(const QString& root, const QString& appDataName) {
    TestFolders folders;
    folders.appData = root + u'/' + appDataName;
    folders.install = root + QStringLiteral("/install");
    folders.media = root + QStringLiteral("/media");
    QDir().mkpath(folders.appData);
    QDir().mkpath(folders.install);
    QDir().mkpath(folders.media);
    SetAppDataFolder(folders.appData);
    SetInstallFolderOverride(folders.install);
    return folders;
}

// Points the program's per-user and install folders back at their defaults.
inline void ClearTestFolders() {
    SetInstallFolderOverride(QString());
    SetAppDataFolder(QString());
}
