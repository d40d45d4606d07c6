#include "join/BatchDialect.h"

namespace {
QString dq(const QString& path) {
    return u'"' + path + u'"';
}
}  // namespace

QString BatchDialect::lineEnd() const {
    return QStringLiteral("\r\n");
}

QString BatchDialect::childPath(const QString& folder, const QString& name) const {
    return folder + u'\\' + name;
}

QStringList BatchDialect::headLines(const QString& host) const {
    return {QStringLiteral("@echo off"), QStringLiteral("echo Generated with Velmora"),
            QStringLiteral("echo Visit us at: ") + host};
}

QString BatchDialect::echoLine(const QString& text) const {
    return QStringLiteral("echo ") + text;
}

// The command processor reads a batch file anew for every line and stops by
// itself when the file has gone.
QStringList BatchDialect::stopIfGoneLines(const QString&) const {
    return {};
}

QString BatchDialect::firstCopyLine(const QString& item, const QString& tempFile) const {
    return QStringLiteral("Copy /b ") + dq(item) + u' ' + dq(tempFile);
}

QString BatchDialect::appendCopyLine(const QString& item, const QString& tempFile) const {
    return QStringLiteral("Copy /b ") + dq(tempFile) + u'+' + dq(item) + u' ' + dq(tempFile);
}

QString BatchDialect::mpegJoinLine(const QString& tool, const QStringList& items,
                                   const QString& tempFile) const {
    QString line = dq(tool) + QStringLiteral(" -j --force ");
    for (const QString& item : items) {
        line += dq(item) + u' ';
    }
    return line + QStringLiteral("-o ") + dq(tempFile);
}

QStringList BatchDialect::mp3FixLines(const Mp3Fix& fix) const {
    return {dq(fix.fixTool) +
            QStringLiteral(" --removedId3v1 --removeId3v2 --removeUnknown --keepLame ") +
            dq(fix.tempFile) + u' ' + dq(fix.outputFile)};
}

QString BatchDialect::mpeg2FixLine(const MpegRemake& remake) const {
    return dq(remake.tool) + QStringLiteral(" -i ") + dq(remake.tempFile) +
           QStringLiteral(" -sameq -y ") + dq(remake.outputFile);
}

// The MPEG-1 joiner writes TempFile whole; the run only renames it.
bool BatchDialect::remakesMpeg1() const {
    return false;
}

QString BatchDialect::mpeg1FixLine(const MpegRemake& /*remake*/) const {
    return {};
}

// The command processor's lines stay as they are written: the run learns of
// a failed step only from what it checks itself.
QString BatchDialect::checkedStep(const QString& command, const StepCheck& /*check*/) const {
    return command;
}

QString BatchDialect::deleteFileLine(const QString& path) const {
    return QStringLiteral("del ") + dq(path);
}

QString BatchDialect::removeMarkerLine(const QString& markerFolder) const {
    return QStringLiteral("rmdir ") + dq(markerFolder);
}

QString BatchDialect::exitLine() const {
    return QStringLiteral("exit");
}
