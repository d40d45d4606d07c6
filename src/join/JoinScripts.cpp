#include "join/JoinScripts.h"

#include <QFile>
#include <QFileInfo>
#include <vector>

#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "app/Settings.h"
#include "app/Version.h"
#include "join/RemakeProbe.h"
#include "join/ShDialect.h"
#include "list/CellValues.h"
#include "list/Columns.h"
#include "list/MainModel.h"
#include "mpegaudio/JoinSources.h"
#include "platform/FileHelpers.h"

namespace {

// The Video Codec column header and the codec of the first row, as the list
// holds them.
bool hasVideoCodec(const MainModel& model, VideoCodec codec) {
    const ItemList& items = model.items;
    if (items.headerCount() <= MpegCell::VideoCodec ||
        items.header(MpegCell::VideoCodec).text !=
            QLatin1String(HeaderText(kMpegColumns, MpegCell::VideoCodec))) {
        return false;
    }
    return items.count() >= 1 &&
           CellValues::videoCodec(items.cellView(1, MpegCell::VideoCodec)) == codec;
}

bool isMp3List(const MainModel& model) {
    return model.state.type() == ListType::Mp3;
}

bool isMpeg1VideoList(const MainModel& model) {
    return hasVideoCodec(model, VideoCodec::Mpeg1);
}

// Copies a tool from InstallFolder to AppDataFolder under its new name,
// replacing an earlier copy. A copy that fails is passed over: the run goes by
// what lies on disk.
void copyFromInstallFolder(const QString& sourceName, const QString& targetName) {
    const QString source = InstallFolder() + u'/' + sourceName;
    const QString target = AppDataPath(targetName);
    if (!QFile::exists(source)) {
        return;
    }
    QFile::remove(target);
    if (QFile::copy(source, target)) {
        QFile::setPermissions(target, QFile::permissions(target) | QFile::ExeOwner |
                                          QFile::ReadOwner | QFile::WriteOwner);
    }
}

void log(const QString& text) {
    if (!LogPath().isEmpty()) {
        LogEvent(text, 4);
    }
}

// Writes a script anew: every line followed by the dialect's line end. The
// earlier file is removed first, so a shell that may still read it keeps its
// own copy and the new script starts as a new file.
void writeScript(const QString& path, const QStringList& lines, const ScriptDialect& dialect) {
    QString text;
    for (const QString& line : lines) {
        text += line;
        text += dialect.lineEnd();
    }
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return;
    }
    file.write(text.toUtf8());
}

// The sources file of an MP3 join: each item's length as it is now and its
// path, in list order.
void writeMp3Sources(const MainModel& model) {
    const QString path = AppDataPath(JoinNames::kMp3Sources);
    QFile::remove(path);
    std::vector<JoinSource> sources;
    for (int position = 1; position <= model.items.count(); ++position) {
        const QString item = model.items.cell(position, SharedCell::Filepath);
        const QFileInfo info(item);
        sources.push_back(
            {static_cast<std::uint64_t>(info.isFile() ? info.size() : 0), item.toStdString()});
    }
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(QByteArray::fromStdString(FormatJoinSources(sources)));
    }
}

// The remake script: MPEG2.bat for MPEG-2 video, MPEG.bat for MPEG-1 video
// where the dialect remakes it, both through the MPEG-2 tool, in one step.
// OUTPUT is TempFile less its 8-character suffix. Logs the tool's line.
void writeRemakeScript(const MainModel& model, const ScriptDialect& d, const QString& tempFile,
                       const RemakeProbe& probe) {
    using namespace JoinNames;
    const QString fixScript = FixScriptName(model, d);
    const bool mpeg1 = fixScript == kMpeg1Script;
    const QString appData = AppDataFolder();
    const QString script = d.childPath(appData, fixScript);
    ScriptDialect::MpegRemake remake;
    remake.tool = d.childPath(appData, kMpeg2Tool);
    remake.tempFile = tempFile;
    remake.outputFile = tempFile.left(tempFile.size() - 8);
    remake.probeBytes = probe.probeBytes;
    remake.analyzeMicroseconds = probe.analyzeMicroseconds;
    remake.programStream = probe.programStream;
    remake.check.step = 1;
    remake.check.failureRecord = d.childPath(appData, kFailureRecord);
    remake.check.markerFolder = d.childPath(appData, kMarkerFolder);
    const QString fixLine = mpeg1 ? d.mpeg1FixLine(remake) : d.mpeg2FixLine(remake);
    const QString kind = mpeg1 ? QStringLiteral("MPEG1") : QStringLiteral("MPEG2");
    QStringList lines = d.headLines(Version::kPublisherHost);
    lines << d.echoLine(QStringLiteral("Fixing ") + kind + QStringLiteral(" File..."));
    lines << d.stopIfGoneLines(script);
    lines << fixLine;
    lines << d.echoLine(kind + QStringLiteral(" File has been fixed!"));
    lines << d.stopIfGoneLines(script);
    lines << d.removeMarkerLine(remake.check.markerFolder);
    lines << d.exitLine();
    writeScript(AppDataPath(fixScript), lines, d);
    log(QStringLiteral("2BAT=") + fixLine);
}

}  // namespace

bool FirstScriptCopiesBytes(const MainModel& model, const ScriptDialect& dialect) {
    return !isMpeg1VideoList(model) || dialect.remakesMpeg1();
}

bool FirstScriptCopiesBytes(const MainModel& model) {
    return FirstScriptCopiesBytes(model, PlatformDialect());
}

QStringList ItemPaths(const MainModel& model) {
    QStringList paths;
    paths.reserve(model.items.count());
    for (int position = 1; position <= model.items.count(); ++position) {
        paths << model.items.cell(position, SharedCell::Filepath);
    }
    return paths;
}

qint64 ItemBytesOnDisk(const MainModel& model) {
    qint64 total = 0;
    for (int position = 1; position <= model.items.count(); ++position) {
        const QFileInfo info(model.items.cell(position, SharedCell::Filepath));
        if (info.isFile()) {
            total += info.size();
        }
    }
    return total;
}

JoinCase CurrentJoinCase(const MainModel& model) {
    if (isMp3List(model)) {
        return JoinCase::MP3;
    }
    if (isMpeg1VideoList(model)) {
        return JoinCase::MPEG1V;
    }
    if (IsMpeg2VideoList(model)) {
        return JoinCase::MPEG2V;
    }
    return JoinCase::OtherMPEG;
}

QString FixScriptName(const MainModel& model, const ScriptDialect& dialect) {
    using namespace JoinNames;
    if (isMp3List(model)) {
        return kMp3Script;
    }
    if (IsMpeg2VideoList(model)) {
        return kMpeg2Script;
    }
    if (isMpeg1VideoList(model) && dialect.remakesMpeg1()) {
        return kMpeg1Script;
    }
    return {};
}

QString FixScriptName(const MainModel& model) {
    return FixScriptName(model, PlatformDialect());
}

bool IsRemakeScript(const QString& scriptName) {
    return scriptName == JoinNames::kMpeg2Script || scriptName == JoinNames::kMpeg1Script;
}

bool IsMpeg2VideoList(const MainModel& model) {
    return hasVideoCodec(model, VideoCodec::Mpeg2);
}

QString TempFileSuffix(const MainModel& model) {
    return isMp3List(model) ? QStringLiteral(".vlr.mp3") : QStringLiteral(".vlr.mpg");
}

QString OutputFilePath(const MainModel& model) {
    return model.commonDialog.fileName;
}

QString TempFilePath(const MainModel& model) {
    return OutputFilePath(model) + TempFileSuffix(model);
}

QString AppDataPath(const QString& name) {
    return AppDataFolder() + u'/' + name;
}

const ScriptDialect& PlatformDialect() {
    static const ShDialect dialect;
    return dialect;
}

void WriteJoinScripts(const MainModel& model, QString& outputFile, const ScriptDialect& d) {
    using namespace JoinNames;
    // From here on the argument holds TempFile; OUTPUT is TempFile less its
    // 8-character suffix.
    outputFile += TempFileSuffix(model);
    const QString tempFile = outputFile;
    const QString output = tempFile.left(tempFile.size() - 8);
    log(QStringLiteral("TempFile=") + tempFile);

    const QString appData = AppDataFolder();
    const QString marker = d.childPath(appData, kMarkerFolder);
    const QStringList head = d.headLines(Version::kPublisherHost);
    // A record of an earlier join that ended without clean-up must not speak
    // for this one.
    QFile::remove(AppDataPath(kFailureRecord));
    QFile::remove(AppDataPath(kStepErrorLog));
    ScriptDialect::StepCheck check;
    check.failureRecord = d.childPath(appData, kFailureRecord);
    check.markerFolder = marker;

    // The first script: the join itself, into TempFile.
    const QString firstScript = d.childPath(appData, kTempFileScript);
    QStringList lines = head;
    const int count = model.items.count();
    const QString fixScript = FixScriptName(model, d);
    if (!FirstScriptCopiesBytes(model, d)) {
        copyFromInstallFolder(kMpegToolSource, kMpegTool);
        lines << d.stopIfGoneLines(firstScript);
        lines << d.mpegJoinLine(d.childPath(appData, kMpegTool), ItemPaths(model), tempFile);
    } else {
        // Each copy is a step of its own: a copy that fails names its item.
        ScriptDialect::StepCheck copyCheck = check;
        copyCheck.errorLog = d.childPath(appData, kStepErrorLog);
        for (int position = 1; position <= count; ++position) {
            const QString item = model.items.cell(position, SharedCell::Filepath);
            copyCheck.step = position;
            lines << d.stopIfGoneLines(firstScript);
            if (position == 1) {
                // The first line is never logged.
                lines << d.checkedStep(d.firstCopyLine(item, tempFile), copyCheck);
            } else {
                const QString line = d.checkedStep(d.appendCopyLine(item, tempFile), copyCheck);
                lines << line;
                log(QStringLiteral("1BAT=") + line);
            }
        }
    }
    lines << d.stopIfGoneLines(firstScript);
    lines << d.removeMarkerLine(marker);
    lines << d.echoLine(QStringLiteral("Joined Succesfully!"));
    lines << d.exitLine();
    writeScript(AppDataPath(kTempFileScript), lines, d);

    // The second script: the fix from TempFile into OutputFile, one step.
    check.step = 1;
    if (fixScript == kMp3Script) {
        copyFromInstallFolder(kMp3ToolSource, kMp3Tool);
        copyFromInstallFolder(kMp3Library, kMp3Library);
        writeMp3Sources(model);
        const QString script = d.childPath(appData, kMp3Script);
        ScriptDialect::Mp3Fix fix;
        fix.scriptPath = script;
        fix.fixTool = d.childPath(appData, kMp3Tool);
        fix.tempFile = tempFile;
        fix.outputFile = output;
        fix.tag = Settings::JoinWritesTagsAndChapters();
        fix.check = check;
        lines = head;
        lines << d.echoLine(QStringLiteral("Fixing MP3 File..."));
        lines << d.mp3FixLines(fix);
        lines << d.echoLine(QStringLiteral("MP3 File has been fixed!"));
        lines << d.stopIfGoneLines(script);
        lines << d.removeMarkerLine(marker);
        lines << d.exitLine();
        writeScript(AppDataPath(kMp3Script), lines, d);
        return;
    }
    if (IsRemakeScript(fixScript)) {
        copyFromInstallFolder(kMpeg2ToolSource, kMpeg2Tool);
        copyFromInstallFolder(kMpeg2Library, kMpeg2Library);
        // Before the streams are known, the remake reads the whole join.
        writeRemakeScript(model, d, tempFile, WholeJoinProbe(ItemBytesOnDisk(model)));
        // The record names a delete that no script holds: TempFile is removed
        // by the run once it has looked at what the tool left.
        log(QStringLiteral("2BAT=") + d.deleteFileLine(tempFile));
    }
}

void WriteJoinScripts(const MainModel& model, QString& outputFile) {
    WriteJoinScripts(model, outputFile, PlatformDialect());
}

void WriteRemakeScript(const MainModel& model, const RemakeProbe& probe,
                       const ScriptDialect& dialect) {
    if (IsRemakeScript(FixScriptName(model, dialect))) {
        writeRemakeScript(model, dialect, TempFilePath(model), probe);
    }
}

void WriteRemakeScript(const MainModel& model, const RemakeProbe& probe) {
    WriteRemakeScript(model, probe, PlatformDialect());
}

void WriteJoinScripts(const MainModel& model) {
    QString outputFile = OutputFilePath(model);
    WriteJoinScripts(model, outputFile);
}
