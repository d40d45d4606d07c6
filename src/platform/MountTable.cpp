#include "platform/MountTable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

namespace {

QString& tableFileOverride() {
    static QString path;
    return path;
}

// Undoes the kernel's octal escapes ("\040" for a blank) in a path field.
QString unescaped(const QByteArray& field) {
    QByteArray bytes;
    bytes.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const char c = field.at(i);
        if (c == '\\' && i + 3 < field.size()) {
            bool ok = false;
            const int code = field.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                bytes.append(static_cast<char>(code));
                i += 3;
                continue;
            }
        }
        bytes.append(c);
    }
    return QFile::decodeName(bytes);
}

// One line: "id parent major:minor root mountpoint options [optional...] -
// type source superoptions".
bool parseLine(const QByteArray& line, MountedFileSystem& entry) {
    const QList<QByteArray> fields = line.simplified().split(' ');
    const qsizetype separator = fields.indexOf(QByteArray("-"));
    if (separator < 6 || separator + 2 >= fields.size()) {
        return false;
    }
    entry.mountPoint = unescaped(fields.at(4));
    entry.type = unescaped(fields.at(separator + 1));
    entry.source = unescaped(fields.at(separator + 2));
    return entry.mountPoint.startsWith(u'/');
}

// True when folder is mountPoint or lies below it.
bool holds(const QString& mountPoint, const QString& folder) {
    if (mountPoint == QLatin1String("/")) {
        return true;
    }
    return folder == mountPoint ||
           (folder.startsWith(mountPoint) && folder.at(mountPoint.size()) == u'/');
}

}  // namespace

QList<MountedFileSystem> ParseMountTable(const QByteArray& text) {
    QList<MountedFileSystem> entries;
    for (const QByteArray& line : text.split('\n')) {
        MountedFileSystem entry;
        if (parseLine(line, entry)) {
            entries.append(entry);
        }
    }
    return entries;
}

QList<MountedFileSystem> MountedFileSystems() {
    const QString path = tableFileOverride().isEmpty() ? QStringLiteral("/proc/self/mountinfo")
                                                       : tableFileOverride();
    QFile file(path);
    // The kernel's table reports no size: it is read to its end.
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return ParseMountTable(file.readAll());
}

QString MountPointOf(const QString& path) {
    QString folder = QFileInfo(path).canonicalFilePath();
    if (folder.isEmpty()) {
        folder = QDir::cleanPath(path);
    }
    QString best = QStringLiteral("/");
    for (const MountedFileSystem& entry : MountedFileSystems()) {
        if (entry.mountPoint.size() > best.size() && holds(entry.mountPoint, folder)) {
            best = entry.mountPoint;
        }
    }
    return best;
}

QString SetMountTableFile(const QString& path) {
    return std::exchange(tableFileOverride(), path);
}
