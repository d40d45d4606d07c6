#include "platform/Shell.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>
#include <utility>

#include "platform/FileHelpers.h"

namespace {

ShellLauncher& launcherHook() {
    static ShellLauncher hook;
    return hook;
}

FileManagerCall& fileManagerHook() {
    static FileManagerCall hook;
    return hook;
}

bool launchDetached(const QString& program, const QStringList& arguments,
                    const QString& workingFolder) {
    if (launcherHook()) {
        return launcherHook()(program, arguments, workingFolder);
    }
    return QProcess::startDetached(program, arguments, workingFolder);
}

// One call of the freedesktop file-manager interface; false when no file
// manager answers (no session bus, no such service, or an error reply).
bool callFileManager(const QString& method, const QStringList& uris) {
    if (fileManagerHook()) {
        return fileManagerHook()(method, uris);
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return false;
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                       QStringLiteral("/org/freedesktop/FileManager1"),
                                       QStringLiteral("org.freedesktop.FileManager1"), method);
    message << uris << QString();
    // A short wait: a missing file manager must not hold the window up.
    const QDBusMessage reply = bus.call(message, QDBus::Block, 3000);
    return reply.type() == QDBusMessage::ReplyMessage;
}

QString fileUri(const QString& path) {
    return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded);
}

QString folderOf(const QString& path) {
    const QFileInfo info(path);
    return info.isDir() ? info.absoluteFilePath() : info.absolutePath();
}

}  // namespace

bool ShellOpen(const QString& pathOrUrl, const QString& workingFolder) {
    if (pathOrUrl.isEmpty()) {
        return false;
    }
    return launchDetached(QStringLiteral("xdg-open"), {pathOrUrl}, workingFolder);
}

bool ShowItemInFolder(const QString& path, const QString& workingFolder) {
    if (path.isEmpty() || !FileExists(path)) {
        return false;
    }
    if (callFileManager(QStringLiteral("ShowItems"), {fileUri(path)})) {
        return true;
    }
    return ShellOpen(folderOf(path), workingFolder);
}

bool ShowFileProperties(const QString& path, const QString& workingFolder,
                        std::uint32_t /*windowHandle*/) {
    if (path.isEmpty() || !FileExists(path)) {
        return false;
    }
    if (callFileManager(QStringLiteral("ShowItemProperties"), {fileUri(path)})) {
        return true;
    }
    return ShellOpen(folderOf(path), workingFolder);
}

ShellLauncher setShellLauncherHook(ShellLauncher hook) {
    return std::exchange(launcherHook(), std::move(hook));
}

FileManagerCall setFileManagerCallHook(FileManagerCall hook) {
    return std::exchange(fileManagerHook(), std::move(hook));
}
