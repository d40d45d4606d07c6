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

// The image name of a process: the file name of its executable, or its
// command name when the executable cannot be read (another user's process).
QString imageNameOf(qint64 pid) {
    const QString exe = ExecutablePathOf(pid);
    if (!exe.isEmpty()) {
        return QFileInfo(exe).fileName();
    }
    QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
    if (!comm.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(comm.readAll()).trimmed();
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

void KillProcessByName(const QString& name) {
    if (name.isEmpty()) {
        return;
    }
    const QString wanted = name.toLower();
    const qint64 self = ::getpid();
    for (const qint64 pid : RunningProcessIds()) {
        if (pid == self) {
            continue;
        }
        const QString image = imageNameOf(pid).toLower();
        if (image.isEmpty() || !image.endsWith(wanted)) {
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
