#include "platform/FileHelpers.h"

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringList>

#include "platform/Questions.h"

namespace {

bool statPath(const QString& path, struct stat& info) {
    if (path.isEmpty()) {
        return false;
    }
    const QByteArray native = QFile::encodeName(path);
    return ::stat(native.constData(), &info) == 0;
}

// The user's data folder by the XDG rules: $XDG_DATA_HOME when it is an
// absolute path, else $HOME/.local/share (the home folder taken from the user
// database when HOME is unset).
QString xdgDataHome() {
    const QString configured = qEnvironmentVariable("XDG_DATA_HOME");
    if (!configured.isEmpty() && configured.startsWith(u'/')) {
        return configured;
    }
    QString home = qEnvironmentVariable("HOME");
    if (home.isEmpty()) {
        if (const passwd* user = ::getpwuid(::getuid())) {
            home = QFile::decodeName(user->pw_dir);
        }
    }
    if (home.isEmpty()) {
        return QString();
    }
    while (home.size() > 1 && home.endsWith(u'/')) {
        home.chop(1);
    }
    return (home == QStringLiteral("/") ? QString() : home) + QStringLiteral("/.local/share");
}

constexpr std::int32_t kFolderCreateFlag = 0x8000;
constexpr std::int32_t kAppDataId = 26;

}  // namespace

QString GetFileNameFromPath(const QString& path) {
    const qsizetype cut = path.lastIndexOf(u'/');
    return cut < 0 ? path : path.mid(cut + 1);
}

bool FileExists(const QString& path) {
    struct stat info {};
    return statPath(path, info);
}

bool IsDirectoryPath(const QString& path) {
    struct stat info {};
    return statPath(path, info) && S_ISDIR(info.st_mode);
}

bool FolderCanBeListed(const QString& path) {
    DIR* folder = ::opendir(QFile::encodeName(path).constData());
    if (folder == nullptr) {
        return false;
    }
    ::closedir(folder);
    return true;
}

bool WriteFileWhole(const QString& path, const QByteArray& content, bool directWriteFallback,
                    QString* reason) {
    QSaveFile file(path);
    file.setDirectWriteFallback(directWriteFallback);
    const auto fail = [&] {
        if (reason != nullptr) {
            *reason = file.errorString();
        }
        return false;
    };
    if (!file.open(QIODevice::WriteOnly)) {
        return fail();
    }
    // A short write must be caught here: the save file would otherwise
    // commit what it got.
    if (file.write(content) != content.size() || !file.flush()) {
        const bool failed = fail();
        file.cancelWriting();
        return failed;
    }
    return file.commit() || fail();
}

bool MakeFolderPath(QString& path) {
    if (path.endsWith(u'/')) {
        path.chop(1);
    }
    const QStringList pieces = path.split(u'/');
    // An absolute path starts with an empty piece: the walk then starts at the root.
    QString growing = path.startsWith(u'/') ? QStringLiteral("/") : QString();
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString& piece = pieces.at(i);
        if (growing.isEmpty()) {
            growing = piece;
        } else if (i > 0 || !piece.isEmpty()) {
            growing = growing.endsWith(u'/') ? growing + piece : growing + u'/' + piece;
        }
        if (growing.isEmpty() || IsDirectoryPath(growing)) {
            continue;
        }
        // A level that cannot be made ends the walk: the levels below it
        // cannot be made either, and the caller learns of it.
        if (!QDir().mkdir(growing)) {
            return false;
        }
    }
    return true;
}

QString GetWindowsFolder() {
    // The folder of the desktop's opener of files and folders, where the
    // system keeps its file-manager launcher.
    const QString launcher = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    return launcher.isEmpty() ? QString() : QFileInfo(launcher).absolutePath();
}

QString GetShellFolderPath(std::int32_t folderId, Questions& questions) {
    const bool create = (folderId & kFolderCreateFlag) != 0;
    if ((folderId & ~kFolderCreateFlag) != kAppDataId) {
        questions.msgBox(QStringLiteral("Invalid Folder ID!"), Msg::OkOnly + Msg::Critical);
        return QString();
    }
    const QString folder = xdgDataHome();
    if (folder.isEmpty()) {
        return QString();
    }
    if (IsDirectoryPath(folder)) {
        return folder;
    }
    if (!create) {
        questions.msgBox(QStringLiteral("ApplicationData Folder does not exist!"),
                         Msg::OkOnly + Msg::Critical);
        return QString();
    }
    // Asked to create it: a folder that cannot be made gives the empty text
    // without a message.
    return QDir().mkpath(folder) ? folder : QString();
}

double GetDiskFreeBytes(QString& path) {
    path = path.trimmed();
    if (!path.endsWith(u'/')) {
        path += u'/';
    }
    struct statvfs info {};
    const QByteArray native = QFile::encodeName(path);
    if (::statvfs(native.constData(), &info) != 0) {
        return 0;
    }
    // Blocks available to an unprivileged caller, not the total free blocks.
    return FreeBytesToDouble(static_cast<std::uint64_t>(info.f_bavail) * info.f_frsize);
}

double FreeBytesToDouble(std::uint64_t bytes) {
    const auto low = static_cast<std::uint32_t>(bytes & 0xFFFFFFFFu);
    const auto high = static_cast<std::uint32_t>(bytes >> 32);
    const auto byte = [](std::uint32_t value, int index) {
        return static_cast<std::uint8_t>((value >> (8 * index)) & 0xFF);
    };
    return BytesToDouble(byte(low, 0), byte(low, 1), byte(low, 2), byte(low, 3)) +
           4294967296.0 * BytesToDouble(byte(high, 0), byte(high, 1), byte(high, 2), byte(high, 3));
}

double BytesToDouble(std::uint8_t b0, std::uint8_t b1, std::uint8_t b2, std::uint8_t b3) {
    return static_cast<double>(b0) + static_cast<double>(b1) * 256.0 +
           static_cast<double>(b2) * 65536.0 + static_cast<double>(b3) * 16777216.0;
}
