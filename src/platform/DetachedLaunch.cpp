#include "platform/DetachedLaunch.h"

#include <QProcess>

qint64 LaunchScriptDetached(const QString& scriptPath) {
    QProcess process;
    process.setProgram(QStringLiteral("/bin/sh"));
    process.setArguments({scriptPath});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    qint64 pid = 0;
    if (!process.startDetached(&pid)) {
        return 0;
    }
    return pid;
}
