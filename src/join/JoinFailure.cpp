#include "join/JoinFailure.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>

#include "join/JoinScripts.h"
#include "list/Columns.h"
#include "list/MainModel.h"
#include "platform/ExitStatus.h"
#include "platform/ProcessRunner.h"

namespace {

const QString kCrLf = QStringLiteral("\r\n");
// Exit statuses that the reason of the status itself says best: a command
// that is missing or may not be run, and one that a signal ended.
constexpr int kFirstStatusOfItsOwn = 126;

QString readText(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromLocal8Bit(file.readAll());
}

// Why a file cannot be opened for reading, as the system says it.
QString openError(const QString& path) {
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.errorString();
}

bool readablePlainFile(const QString& path) {
    const QFileInfo info(path);
    return info.isFile() && info.isReadable();
}

QString reasonOf(int status, const ErrorInText& error) {
    if (status < kFirstStatusOfItsOwn && !error.reason.isEmpty()) {
        return error.reason;
    }
    return ExitStatusReason(status);
}

// The files a step of the join may name in its error text: the items,
// TempFile and OutputFile.
QStringList joinFiles(const MainModel& model) {
    QStringList files;
    for (int position = 1; position <= model.items.count(); ++position) {
        files << model.items.cell(position, SharedCell::Filepath);
    }
    return files << TempFilePath(model) << OutputFilePath(model);
}

// Where the known files stand in a line: [start, end) spans that do not
// overlap, the longer file first where two would.
struct FileSpan {
    qsizetype start = 0;
    qsizetype end = 0;
    QString file;
};

QList<FileSpan> fileSpans(const QString& line, QStringList files) {
    std::sort(files.begin(), files.end(),
              [](const QString& a, const QString& b) { return a.size() > b.size(); });
    QList<FileSpan> spans;
    for (const QString& file : files) {
        if (file.isEmpty()) {
            continue;
        }
        for (qsizetype at = line.indexOf(file); at >= 0; at = line.indexOf(file, at + 1)) {
            const qsizetype end = at + file.size();
            const bool free = std::none_of(spans.cbegin(), spans.cend(), [&](const FileSpan& s) {
                return at < s.end && s.start < end;
            });
            if (free) {
                spans.append({at, end, file});
            }
        }
    }
    return spans;
}

// The ": " separators of a line that stand outside the files, each with text
// behind it.
QList<qsizetype> separators(const QString& line, const QList<FileSpan>& spans) {
    QList<qsizetype> found;
    for (qsizetype at = line.indexOf(QStringLiteral(": ")); at >= 0;
         at = line.indexOf(QStringLiteral(": "), at + 1)) {
        const bool inFile = std::any_of(spans.cbegin(), spans.cend(), [at](const FileSpan& s) {
            return at + 1 >= s.start && at < s.end;
        });
        if (!inFile && at + 2 < line.size()) {
            found.append(at);
        }
    }
    return found;
}

// The file of a line: the span that a separator follows, right behind it or
// behind the quote that closes it; the last such span.
const FileSpan* namedFile(const QString& line, const QList<FileSpan>& spans,
                          const QList<qsizetype>& separatorsOfLine, qsizetype& separator) {
    const FileSpan* named = nullptr;
    for (const FileSpan& span : spans) {
        qsizetype after = span.end;
        if (after < line.size() && (line.at(after) == u'\'' || line.at(after) == u'"')) {
            ++after;
        }
        if (separatorsOfLine.contains(after) && (!named || span.start > named->start)) {
            named = &span;
            separator = after;
        }
    }
    return named;
}

QString bytes(qint64 count) {
    return QString::number(count) + QStringLiteral(" bytes");
}

// A TempFile of the wrong size: the first item whose file changed since the
// start is named; when none did, TempFile itself.
JoinFailure wrongSize(const MainModel& model, const QList<qint64>& startSizes, qint64 expected,
                      qint64 found) {
    const QList<qint64> now = ItemSizesOnDisk(model);
    for (qsizetype i = 0; i < startSizes.size() && i < now.size(); ++i) {
        if (now.at(i) == startSizes.at(i)) {
            continue;
        }
        const QString item = model.items.cell(static_cast<int>(i) + 1, SharedCell::Filepath);
        const QString reason =
            now.at(i) < 0 ? openError(item)
                          : QStringLiteral("its size changed during the join, from ") +
                                bytes(startSizes.at(i)) + QStringLiteral(" to ") + bytes(now.at(i));
        return {JoiningStepName(), item, reason};
    }
    return {JoiningStepName(), TempFilePath(model),
            QStringLiteral("it holds ") + bytes(found) +
                QStringLiteral(", but the files of the list held ") + bytes(expected)};
}

}  // namespace

QString JoiningStepName() {
    return QStringLiteral("Operation 1 of 2 (joining the files)");
}

QString FixingStepName() {
    return QStringLiteral("Operation 2 of 2 (fixing the joined file)");
}

std::optional<FailureRecord> ReadFailureRecord() {
    const QStringList fields =
        readText(AppDataPath(JoinNames::kFailureRecord)).simplified().split(u' ');
    if (fields.size() != 2) {
        return std::nullopt;
    }
    bool statusOk = false;
    bool stepOk = false;
    FailureRecord record;
    record.status = fields.at(0).toInt(&statusOk);
    record.step = fields.at(1).toInt(&stepOk);
    if (!statusOk || !stepOk) {
        return std::nullopt;
    }
    return record;
}

ErrorInText ReadErrorText(const QString& text, const QStringList& knownFiles) {
    const QStringList lines = text.split(QRegularExpression(QStringLiteral("[\r\n]")));
    for (qsizetype i = lines.size() - 1; i >= 0; --i) {
        const QString line = lines.at(i).trimmed();
        const QList<FileSpan> spans = fileSpans(line, knownFiles);
        const QList<qsizetype> found = separators(line, spans);
        if (found.isEmpty()) {
            continue;
        }
        ErrorInText error;
        error.line = line;
        qsizetype separator = found.last();
        if (const FileSpan* named = namedFile(line, spans, found, separator)) {
            error.file = named->file;
        }
        error.reason = line.mid(separator + 2);
        return error;
    }
    return {};
}

QString ErrorLineOf(const QString& text, const QStringList& knownFiles) {
    return ReadErrorText(text, knownFiles).line;
}

QString ReasonInErrorText(const QString& text, const QStringList& knownFiles) {
    return ReadErrorText(text, knownFiles).reason;
}

QList<qint64> ItemSizesOnDisk(const MainModel& model) {
    QList<qint64> sizes;
    sizes.reserve(model.items.count());
    for (int position = 1; position <= model.items.count(); ++position) {
        const QFileInfo info(model.items.cell(position, SharedCell::Filepath));
        sizes << (info.isFile() ? info.size() : -1);
    }
    return sizes;
}

std::optional<JoinFailure> CheckJoinedFile(const MainModel& model,
                                           const QList<qint64>& startSizes) {
    const QString temp = TempFilePath(model);
    if (const std::optional<FailureRecord> record = ReadFailureRecord()) {
        const QString item = model.items.cell(record->step, SharedCell::Filepath);
        // A copy fails on its item when that cannot be read, and otherwise on
        // TempFile, which it writes.
        const QString file = readablePlainFile(item) ? temp : item;
        return JoinFailure{
            JoiningStepName(), file,
            reasonOf(record->status, ReadErrorText(readText(AppDataPath(JoinNames::kStepErrorLog)),
                                                   joinFiles(model)))};
    }
    const QFileInfo joined(temp);
    if (!joined.isFile()) {
        return JoinFailure{JoiningStepName(), temp, openError(temp)};
    }
    if (!FirstScriptCopiesBytes(model)) {
        return std::nullopt;  // the MPEG-1 joiner writes what it writes
    }
    qint64 expected = 0;
    for (const qint64 size : startSizes) {
        expected += size > 0 ? size : 0;
    }
    if (joined.size() != expected) {
        return wrongSize(model, startSizes, expected, joined.size());
    }
    return std::nullopt;
}

std::optional<JoinFailure> CheckFixedFile(const MainModel& model, const QString& toolOutput) {
    const QString output = OutputFilePath(model);
    if (const std::optional<FailureRecord> record = ReadFailureRecord()) {
        const ErrorInText error = ReadErrorText(toolOutput, joinFiles(model));
        QString file = output;
        if (record->status == 126 || record->status == 127) {
            // The tool itself could not be run.
            file =
                AppDataPath(FixScriptName(model) == JoinNames::kMp3Script ? JoinNames::kMp3Tool
                                                                          : JoinNames::kMpeg2Tool);
        } else if (!error.file.isEmpty()) {
            // The file the tool names: the raw join, a source it could not
            // read, or the output.
            file = error.file;
        }
        return JoinFailure{FixingStepName(), file, reasonOf(record->status, error)};
    }
    const QFileInfo fixed(output);
    if (!fixed.isFile()) {
        return JoinFailure{FixingStepName(), output, openError(output)};
    }
    if (fixed.size() == 0) {
        return JoinFailure{FixingStepName(), output,
                           QStringLiteral("the tool wrote an empty file")};
    }
    return std::nullopt;
}

std::optional<JoinFailure> CheckRenamedFile(const MainModel& model, const QString& renameError) {
    const QString output = OutputFilePath(model);
    if (QFileInfo(output).isFile()) {
        return std::nullopt;
    }
    return JoinFailure{FixingStepName(), output,
                       renameError.isEmpty() ? openError(output) : renameError};
}

JoinFailure ScriptShellFailure(const QString& step, const QString& script,
                               const ProcessRunner& shell) {
    if (shell.status() == ProcessRunner::Failed) {
        return {step, shell.program(), ErrorNumberReason(shell.errorNumber())};
    }
    if (shell.status() == ProcessRunner::AlreadyRunning) {
        return {step, script, QStringLiteral("the launcher was still running another command")};
    }
    if (shell.crashed() && shell.endSignal() > 0) {
        return {step, script, SignalReason(shell.endSignal())};
    }
    return {step, script, QStringLiteral("the script ended before its work was done")};
}

QList<LeftBehindFile> DeleteFailedJoinOutput(const MainModel& model) {
    QList<LeftBehindFile> left;
    for (const QString& path : {OutputFilePath(model), TempFilePath(model)}) {
        const QFileInfo info(path);
        if (!info.exists() && !info.isSymLink()) {
            continue;
        }
        QFile file(path);
        if (!file.remove()) {
            left.append({path, file.errorString()});
        }
    }
    return left;
}

QString JoinFailedMessage(const JoinFailure& failure, const QList<LeftBehindFile>& left) {
    QString text = QStringLiteral("The join has failed!") + kCrLf + kCrLf + failure.step + kCrLf +
                   QStringLiteral("File: ") + failure.file + kCrLf + QStringLiteral("Reason: ") +
                   failure.reason + kCrLf + kCrLf;
    if (left.isEmpty()) {
        return text + QStringLiteral(
                          "Nothing of the join has been kept, and the files of your "
                          "list are as they were.");
    }
    text += QStringLiteral("These files of the join could not be deleted:") + kCrLf;
    for (const LeftBehindFile& file : left) {
        text += file.path + QStringLiteral(" (") + file.reason + u')' + kCrLf;
    }
    return text + kCrLf + QStringLiteral("Please, delete them yourself; they are not whole.");
}

QString JoinFailedLogRecord(const JoinFailure& failure) {
    return QStringLiteral("Failed: ") + failure.step + QStringLiteral(" | ") + failure.file +
           QStringLiteral(" | ") + failure.reason;
}
