#include "FfmpegRun.h"

#include <QProcess>

bool RunFfmpeg(const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral("ffmpeg"),
                  QStringList{QStringLiteral("-nostdin"), QStringLiteral("-y"),
                              QStringLiteral("-v"), QStringLiteral("error")} +
                      arguments);
    return process.waitForFinished(-1) && process.exitCode() == 0;
}
