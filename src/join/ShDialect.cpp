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

// The first copy opens TempFile as the shell's descriptor 3, which every
// copy then writes at its end. A file opened for appending (">>") would
// make cat copy through its own buffer, read by read and write by write;
// through a plain descriptor the system copies the bytes itself, several
// times faster. "command" keeps a TempFile that cannot be made from ending
// the shell: the step fails, with the shell's message in its log.
QString ShDialect::firstCopyLine(const QString& item, const QString& tempFile) const {
    return QStringLiteral("command exec 3> ") + quote(tempFile) + QStringLiteral(" && ") +
           appendCopyLine(item, tempFile);
}

QString ShDialect::appendCopyLine(const QString& item, const QString& /*tempFile*/) const {
    return QStringLiteral("cat ") + quote(item) + QStringLiteral(" >&3") + kNoInput;
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
// output in one pass, with only the audio frames behind one right header
// (and the album's tag unless it is off).
QStringList ShDialect::mp3FixLines(const Mp3Fix& fix) const {
    QStringList lines = stopIfGoneLines(fix.scriptPath);
    const QString options = fix.tag ? QString() : QStringLiteral(" --no-tag");
    lines << checkedStep(quote(fix.fixTool) + options + u' ' + quote(fix.tempFile) + u' ' +
                             quote(fix.outputFile) + kNoInput,
                         fix.check);
    return lines;
}

namespace {
// The options of a remake by the MPEG-2 tool: it reads as far into the join
// as the probe says before it decides which streams there are (far enough
// for a stream that first appears in a late part, a second language that
// starts in the last part of a title); it keeps every stream in the order of
// the sources but for the data streams (DVD navigation packets), which a
// program stream cannot carry; and it copies them unchanged. A join known to
// be a program stream is read as one, and the tool keeps none of the packets
// it probes: it reads a program stream again from its start once it has
// decided, so that the probe costs reading time and no memory.
QString remakeOptions(const ScriptDialect::MpegRemake& remake) {
    const QString input =
        remake.programStream ? QStringLiteral(" -fflags nobuffer -f mpeg") : QString();
    return input + QStringLiteral(" -analyzeduration ") +
           QString::number(remake.analyzeMicroseconds) + QStringLiteral(" -probesize ") +
           QString::number(remake.probeBytes) + QStringLiteral(" -i ") +
           ShDialect::quote(remake.tempFile) + QStringLiteral(" -map 0 -map -0:d -c copy");
}
}  // namespace

// A stream copy into a new program stream: the old quality option is unknown
// to the tool, and a copy keeps the MPEG-2 video as it is with new timestamps.
// The wizard's bar and size follow the tool's status lines here, which it
// writes ten times a second rather than twice, so that they move even on a
// copy that takes a second or two.
QString ShDialect::mpeg2FixLine(const MpegRemake& remake) const {
    return checkedStep(quote(remake.tool) + QStringLiteral(" -nostdin -stats_period 0.1") +
                           remakeOptions(remake) + QStringLiteral(" -f vob -y ") +
                           quote(remake.outputFile) + kNoInput,
                       remake.check);
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
QString ShDialect::mpeg1FixLine(const MpegRemake& remake) const {
    return checkedStep(quote(remake.tool) + QStringLiteral(" -nostdin") + remakeOptions(remake) +
                           QStringLiteral(" -f mpeg -y ") + quote(remake.outputFile) + kNoInput,
                       remake.check);
}

// The command in a group whose error output goes to the error log, so that
// the log also receives the shell's own message when a redirection of the
// command fails (an output folder that is gone). On failure the exit status
// of the command and the step's number go to the record, the marker goes,
// and the script ends.
QString ShDialect::checkedStep(const QString& command, const StepCheck& check) const {
    if (check.failureRecord.isEmpty()) {
        return command;
    }
    QString line = command;
    if (!check.errorLog.isEmpty()) {
        line = QStringLiteral("{ ") + command + QStringLiteral("; } 2> ") + quote(check.errorLog);
    }
    return line + QStringLiteral(" || { echo \"$?\" ") + QString::number(check.step) +
           QStringLiteral(" > ") + quote(check.failureRecord) + QStringLiteral("; rmdir ") +
           quote(check.markerFolder) + QStringLiteral("; exit 1; }");
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
