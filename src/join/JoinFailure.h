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

// The line of a tool's error text that says why: the last line that holds
// ": " with text behind it. Empty when there is none.
QString ErrorLineOf(const QString& text);
// The system's reason in a tool's error text: what stands behind the last
// ": " of its error line ("cat: write error: No space left on device" gives
// "No space left on device"). Empty when there is no error line.
QString ReasonInErrorText(const QString& text);

// The size of each item's file as it is now, in list order; -1 for an item
// whose file is no plain file.
QList<qint64> ItemSizesOnDisk(const MainModel& model);

// After the first script has ended: a failed copy (by the record), or a
// TempFile that does not hold the bytes the items held when the join started
// (startSizes, from ItemSizesOnDisk at the start). Nothing when TempFile is
// whole.
std::optional<JoinFailure> CheckJoinedFile(const MainModel& model, const QList<qint64>& startSizes);

// After the fix script has ended: a failed fix tool (by the record; the
// reason from the tool's own output), or an OutputFile that is missing or
// empty. Nothing when OutputFile is there.
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
