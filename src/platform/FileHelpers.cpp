// PLACEHOLDER until the platform helpers land: the simplest forms.
#include "platform/FileHelpers.h"

#include <QDir>
#include <QFileInfo>

QString GetFileNameFromPath(const QString& path) {
    const qsizetype cut = path.lastIndexOf(u'/');
    return cut < 0 ? path : path.mid(cut + 1);
}

bool FileExists(const QString& path) { return QFileInfo::exists(path); }

bool IsDirectoryPath(const QString& path) { return QFileInfo(path).isDir(); }

void MakeFolderPath(QString& path) {
    if (path.endsWith(u'/')) {
        path.chop(1);
    }
    QDir().mkpath(path);
}

QString GetWindowsFolder() { return {}; }

QString GetShellFolderPath(std::int32_t, Questions&) { return QDir::homePath() + "/.local/share"; }

bool ShowFileProperties(const QString&, std::uint32_t) { return false; }

double GetDiskFreeBytes(QString&) { return 0; }

double BytesToDouble(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2, std::uint8_t b3) {
    return b0 + b1 * 256.0 + b2 * 65536.0 + b3 * 16777216.0;
}
