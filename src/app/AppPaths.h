#pragma once

#include <QString>

// The per-user folder of the program (no trailing separator). Formed and made
// once by the start-up; readable by every module afterwards.
QString AppDataFolder();
void SetAppDataFolder(const QString& folder);

// The folder of the running program, asked anew at each use. Tests and tools
// may point it elsewhere with SetInstallFolderOverride (empty restores it).
QString InstallFolder();
void SetInstallFolderOverride(const QString& folder);

// AppDataFolder() + "/Settings.ini", formed at each use.
QString SettingsFile();
