#include "join/ShDialect.h"

namespace {
const QString kNoInput = QStringLiteral(" < /dev/null");
}  // namespace

QString ShDialect::quote(const QString& path) {
    QString text = path.startsWith(u'-') ? QStringLiteral("./") + path : path;
    text.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + text + u'\'';
}

QString ShDialect::lineEnd() const {
    return QStringLiteral("\n");
}

QString ShDialect::childPath(const QString& folder, const QString& name) const {
    return folder + u'/' + name;
}

QStringList ShDialect::headLines(const QString& host) const {
    return {QStringLiteral("#!/bin/sh"), QStringLiteral("echo Generated with Velmora"),
            QStringLiteral("echo Visit us at: ") + host};
}

QString ShDialect::echoLine(const QString& text) const {
    return QStringLiteral("echo ") + text;
}

// The shell reads its script once and would go on after the file has been
// deleted; this line makes it stop as soon as the script is gone, so that a
// cancelled join starts no further copy or tool.
QStringList ShDialect::stopIfGoneLines(const QString& scriptPath) const {
    return {QStringLiteral("[ -f ") + quote(scriptPath) + QStringLiteral(" ] || exit 1")};
}

QString ShDialect::firstCopyLine(const QString& item, const QString& tempFile) const {
    return QStringLiteral("cat ") + quote(item) + QStringLiteral(" > ") + quote(tempFile) +
           kNoInput;
}

QString ShDialect::appendCopyLine(const QString& item, const QString& tempFile) const {
    return QStringLiteral("cat ") + quote(item) + QStringLiteral(" >> ") + quote(tempFile) +
           kNoInput;
}

// -f overwrites an existing output without asking (the question would never
// be answered); --force joins files whose parameters differ.
QString ShDialect::mpegJoinLine(const QString& tool, const QStringList& items,
                                const QString& tempFile) const {
    QString line = quote(tool) + QStringLiteral(" -j -f --force ");
    for (const QString& item : items) {
        line += quote(item) + u' ';
    }
    return line + QStringLiteral("-o ") + quote(tempFile) + kNoInput;
}

// One step: the project's own fix tool reads the raw join and writes the
// output in one pass, with only the audio frames behind one right header.
QStringList ShDialect::mp3FixLines(const Mp3Fix& fix) const {
    QStringList lines = stopIfGoneLines(fix.scriptPath);
    lines << quote(fix.fixTool) + u' ' + quote(fix.tempFile) + u' ' + quote(fix.outputFile) +
                 kNoInput;
    return lines;
}

// A stream copy into a new program stream: the old quality option is unknown
// to the tool, and a copy keeps the MPEG-2 video as it is with new timestamps.
// The wizard's bar and size follow the tool's status lines here, which it
// writes ten times a second rather than twice, so that they move even on a
// copy that takes a second or two.
QString ShDialect::mpeg2FixLine(const QString& tool, const QString& tempFile,
                                const QString& outputFile) const {
    return quote(tool) + QStringLiteral(" -nostdin -stats_period 0.1 -i ") + quote(tempFile) +
           QStringLiteral(" -c copy -f vob -y ") + quote(outputFile) + kNoInput;
}

bool ShDialect::remakesMpeg1() const {
    return true;
}

// The byte join of MPEG-1 program streams holds one run of timestamps per
// source, each starting again near zero, which readers take for a file as
// long as one of the sources. The MPEG-2 tool reads the join as one stream,
// carries the timestamps on across every seam and copies the streams into a
// new MPEG-1 program stream, written as it goes: its length in every reader is
// the sum of the sources' lengths.
QString ShDialect::mpeg1FixLine(const QString& tool, const QString& tempFile,
                                const QString& outputFile) const {
    return quote(tool) + QStringLiteral(" -nostdin -i ") + quote(tempFile) +
           QStringLiteral(" -c copy -f mpeg -y ") + quote(outputFile) + kNoInput;
}

QString ShDialect::deleteFileLine(const QString& path) const {
    return QStringLiteral("rm -f ") + quote(path) + kNoInput;
}

QString ShDialect::removeMarkerLine(const QString& markerFolder) const {
    return QStringLiteral("rmdir ") + quote(markerFolder) + kNoInput;
}

QString ShDialect::exitLine() const {
    return QStringLiteral("exit");
}
