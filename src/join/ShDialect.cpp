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

// Two steps. The fixer rewrites a VBR join with a header that counts every
// frame and drops the header frames of the later files; on a CBR join it
// writes nothing, and on a join of CBR files of different bit rates it keeps
// the first file's header, which gives that file's length only. So the MPEG-2
// tool then copies the fixer's result (or the raw join where there is none)
// into OutputFile as a new stream, whose header it writes from the frames it
// has copied. Only the audio is copied, with no tag of any kind: the joined
// file is not the first file, so it must not carry that file's title or
// picture. The fixer leaves work files in its working folder, so it runs in a
// scratch folder that is removed behind it.
QStringList ShDialect::mp3FixLines(const Mp3Fix& fix) const {
    const QString fixed = quote(childPath(fix.scratchFolder, QStringLiteral("Fixed.mp3")));
    const QString scratch = quote(fix.scratchFolder);
    QStringList lines = stopIfGoneLines(fix.scriptPath);
    lines << QStringLiteral("mkdir -p ") + scratch + kNoInput + QStringLiteral(" && cd ") +
                 scratch + QStringLiteral(" && ") + quote(fix.fixTool) +
                 QStringLiteral(" -ri1 -ri2 -lameinfo ") + quote(fix.tempFile) + u' ' + fixed +
                 kNoInput;
    lines << QStringLiteral("cd / && rm -f ") +
                 quote(childPath(fix.scratchFolder, QStringLiteral("vbrfix.tmp"))) + kNoInput;
    lines << QStringLiteral("source=") + quote(fix.tempFile) + QStringLiteral("; [ -s ") + fixed +
                 QStringLiteral(" ] && source=") + fixed;
    lines << QStringLiteral("[ -f ") + quote(fix.scriptPath) + QStringLiteral(" ] && ") +
                 quote(fix.remuxTool) +
                 QStringLiteral(
                     " -nostdin -i \"$source\" -map 0:a -map_metadata -1 "
                     "-id3v2_version 0 -c copy -f mp3 -y ") +
                 quote(fix.outputFile) + kNoInput;
    lines << QStringLiteral("rm -rf ") + scratch + kNoInput;
    return lines;
}

bool ShDialect::mp3FixUsesRemuxTool() const {
    return true;
}

// A stream copy into a new program stream: the old quality option is unknown
// to the tool, and a copy keeps the MPEG-2 video as it is with new timestamps.
QString ShDialect::mpeg2FixLine(const QString& tool, const QString& tempFile,
                                const QString& outputFile) const {
    return quote(tool) + QStringLiteral(" -nostdin -i ") + quote(tempFile) +
           QStringLiteral(" -c copy -f vob -y ") + quote(outputFile) + kNoInput;
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
