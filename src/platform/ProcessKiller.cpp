#include "platform/ProcessKiller.h"

#include <unistd.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <csignal>
#include <utility>

namespace {
ProcessKillFilter& killFilter() {
    static ProcessKillFilter filter;
    return filter;
}

// The folder as the kernel names the folders of executables: with its
// links resolved (the folder as given when it cannot be resolved).
QString resolvedFolder(const QString& folder) {
    const QString resolved = QFileInfo(folder).canonicalFilePath();
    return resolved.isEmpty() ? QDir::cleanPath(folder) : resolved;
}
}  // namespace

QString ExecutablePathOf(qint64 processId) {
    QString target = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(processId));
    // The kernel marks an executable that was deleted after its start.
    static const QString kDeleted = QStringLiteral(" (deleted)");
    if (target.endsWith(kDeleted)) {
        target.chop(kDeleted.size());
    }
    return target;
}

QList<qint64> RunningProcessIds() {
    QList<qint64> ids;
    const QStringList entries =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool isNumber = false;
        const qint64 pid = entry.toLongLong(&isNumber);
        if (isNumber && pid > 0) {
            ids.append(pid);
        }
    }
    return ids;
}

void KillProcessByName(const QString& name, const QString& folder) {
    if (name.isEmpty() || folder.isEmpty()) {
        return;
    }
    const QString wanted = name.toLower();
    const QString home = resolvedFolder(folder);
    const qint64 self = ::getpid();
    for (const qint64 pid : RunningProcessIds()) {
        if (pid == self) {
            continue;
        }
        const QFileInfo executable(ExecutablePathOf(pid));
        if (executable.filePath().isEmpty() || executable.path() != home ||
            !executable.fileName().toLower().endsWith(wanted)) {
            continue;
        }
        if (killFilter() && !killFilter()(pid)) {
            continue;
        }
        ::kill(static_cast<pid_t>(pid), SIGKILL);
    }
}

ProcessKillFilter setProcessKillFilter(ProcessKillFilter filter) {
    return std::exchange(killFilter(), std::move(filter));
}
