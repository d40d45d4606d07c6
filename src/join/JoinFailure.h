#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "join/JoinCleanup.h"

struct MainModel;
class ProcessRunner;

// A join whose step failed ends in the failed state, never "Finished!": the
// run learns of the failure from the record a failed step of an sh script
// leaves in AppDataFolder, and from what it checks itself (TempFile holds
// exactly the bytes the items held when the join started; the fixed file is
// there and not empty). What the user is told names the step, the file the
// step worked on and the system's reason.
struct JoinFailure {
    QString step;
    QString file;
    QString reason;
};

// The steps as the user reads them.
QString JoiningStepName();
QString FixingStepName();

// What a failed step of a script left: its exit status and its number in the
// script. Nothing when no step failed (or the record cannot be read).
struct FailureRecord {
    int status = 0;
    int step = 0;
};
std::optional<FailureRecord> ReadFailureRecord();

// A tool's error text taken apart. Tools write "tool: file: reason", with the
// file quoted or not; a path may hold any character but "/" and NUL, ": "
// included, so the known files of the join are found whole in the text and
// no ": " inside them is taken for a separator.
//  - line: the last line that holds ": " outside the known files with text
//    behind it, trimmed; empty when there is none;
//  - file: the known file that the line names right before a ": " (the last
//    one that does), as it is known; empty when the line names none;
//  - reason: what stands behind the ": " after that file, or, where the line
//    names none, behind its last ": " ("cat: write error: No space left on
//    device" gives "No space left on device").
struct ErrorInText {
    QString line;
    QString file;
    QString reason;
};
ErrorInText ReadErrorText(const QString& text, const QStringList& knownFiles);

// The line and the reason of ReadErrorText.
QString ErrorLineOf(const QString& text, const QStringList& knownFiles = {});
QString ReasonInErrorText(const QString& text, const QStringList& knownFiles = {});

// The size of each item's file as it is now, in list order; -1 for an item
// whose file is no plain file.
QList<qint64> ItemSizesOnDisk(const MainModel& model);

// After the first script has ended: a failed copy (by the record), or a
// TempFile that does not hold the bytes the items held when the join started
// (startSizes, from ItemSizesOnDisk at the start). Nothing when TempFile is
// whole.
std::optional<JoinFailure> CheckJoinedFile(const MainModel& model, const QList<qint64>& startSizes);

// After the fix script has ended: a failed fix tool (by the record; the file
// and the reason from the tool's own output: a source it could not read,
// TempFile or OutputFile), or an OutputFile that is missing or empty. Nothing
// when OutputFile is there.
std::optional<JoinFailure> CheckFixedFile(const MainModel& model, const QString& toolOutput);

// After a JoinOperation 2 without a fix, in which TempFile was to take the
// name of OutputFile: nothing when OutputFile is there. renameError is the
// reason the rename gave, if it failed.
std::optional<JoinFailure> CheckRenamedFile(const MainModel& model, const QString& renameError);

// A script whose marker folder is still there while the shell that was to run
// it (the runner's program) has ended or never started: the script will not
// reach its end. A shell that could not be started is named with the system's
// reason; otherwise the script is, with the signal that killed its shell, or
// "the script ended before its work was done".
JoinFailure ScriptShellFailure(const QString& step, const QString& script,
                               const ProcessRunner& shell);

// Deletes OutputFile and TempFile, so that nothing of a failed join is left
// under either name. The files that could not be deleted, with the reason.
QList<LeftBehindFile> DeleteFailedJoinOutput(const MainModel& model);

// The text of the message box of a failed join, and of its debug-log record.
QString JoinFailedMessage(const JoinFailure& failure, const QList<LeftBehindFile>& left);
QString JoinFailedLogRecord(const JoinFailure& failure);
