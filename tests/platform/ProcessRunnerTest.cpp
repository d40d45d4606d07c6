#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>
#include <functional>

#include "platform/ProcessRunner.h"

namespace {

// Runs the event loop until done() holds or the time is up.
bool waitUntil(const std::function<bool()>& done, int ms = 10000) {
    QDeadlineTimer deadline(ms);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

struct Recorder {
    explicit Recorder(ProcessRunner& runner) {
        QObject::connect(&runner, &ProcessRunner::dataReceived,
                         [this](const QString& text) { output += text, ++chunks; });
        QObject::connect(&runner, &ProcessRunner::processEnded, [this] { ++ended; });
    }
    QString output;
    int chunks = 0;
    int ended = 0;
};

bool processAlive(qint64 pid) {
    return pid > 0 && ::kill(static_cast<pid_t>(pid), 0) == 0;
}

// Gone, or a zombie of init for a moment.
bool processGone(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    return !stat.open(QIODevice::ReadOnly) || stat.readAll().contains(") Z ");
}

}  // namespace

TEST(ProcessRunner, Command_MergesStandardOutputAndError_ThenEnds) {
    ProcessRunner runner;
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("echo out; echo err 1>&2; exit 3")});
    EXPECT_EQ(runner.status(), ProcessRunner::Running);
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }));
    EXPECT_TRUE(recorder.output.contains(QStringLiteral("out\n")));
    EXPECT_TRUE(recorder.output.contains(QStringLiteral("err\n")));
    EXPECT_FALSE(runner.crashed());
    EXPECT_EQ(runner.exitCode(), 3);
    EXPECT_EQ(runner.status(), ProcessRunner::Ended);
}

TEST(ProcessRunner, Command_StandardInputIsEmpty_SoNothingWaitsForAnAnswer) {
    ProcessRunner runner;
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("read answer; echo \"got[$answer]\"")});
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }, 5000));
    EXPECT_TRUE(recorder.output.contains(QStringLiteral("got[]")));
}

TEST(ProcessRunner, Command_MissingProgram_FailsWithErrorNumber2) {
    ProcessRunner runner;
    runner.command(QStringLiteral("/nonexistent/folder/program"), {});
    EXPECT_EQ(runner.status(), ProcessRunner::Failed);
    EXPECT_EQ(runner.errorNumber(), 2);
}

TEST(ProcessRunner, Command_FileThatMayNotRun_FailsWithErrorNumber13) {
    QTemporaryDir dir;
    const QString path = dir.path() + QStringLiteral("/plain.txt");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("text");
    file.close();
    ProcessRunner runner;
    runner.command(path, {});
    EXPECT_EQ(runner.status(), ProcessRunner::Failed);
    EXPECT_EQ(runner.errorNumber(), 13);
}

TEST(ProcessRunner, Command_WhileOneRuns_IsAlreadyRunning) {
    ProcessRunner runner;
    runner.command(QStringLiteral("/bin/sleep"), {QStringLiteral("5")});
    ASSERT_EQ(runner.status(), ProcessRunner::Running);
    runner.command(QStringLiteral("/bin/echo"), {QStringLiteral("second")});
    EXPECT_EQ(runner.status(), ProcessRunner::AlreadyRunning);
    runner.stop();
    EXPECT_FALSE(runner.isRunning());
}

TEST(ProcessRunner, Stop_EndsTheCommandAndEveryProcessItStarted) {
    QTemporaryDir dir;
    const QString pidFile = dir.path() + QStringLiteral("/child.pid");
    ProcessRunner runner;
    Recorder recorder(runner);
    // The shell starts a child of its own and waits for it.
    runner.command(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("sleep 30 & echo $! > '%1'; wait").arg(pidFile)});
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(pidFile).size() > 0; }));
    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const qint64 child = file.readAll().trimmed().toLongLong();
    ASSERT_TRUE(processAlive(child));

    runner.stop();
    EXPECT_FALSE(runner.isRunning());
    EXPECT_TRUE(runner.crashed());
    EXPECT_EQ(recorder.ended, 1);
    // The child is gone too (a zombie of init at most for a moment).
    EXPECT_TRUE(waitUntil([&] { return processGone(child); }));
}

TEST(ProcessRunner, Output_CharacterSplitBetweenChunks_ArrivesWhole) {
    ProcessRunner runner;
    runner.setBufferSize(1);  // one byte per read: every multi-byte letter is split
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("printf '\\303\\251t\\303\\251'")});
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }));
    EXPECT_EQ(recorder.output, QString::fromUtf8("\xC3\xA9t\xC3\xA9"));
}

TEST(ProcessRunner, Crash_IsToldBeforeTheExitCode) {
    ProcessRunner runner;
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("kill -9 $$")});
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }));
    EXPECT_TRUE(runner.crashed());
    EXPECT_EQ(runner.exitCode(), -1);
    EXPECT_EQ(runner.endSignal(), SIGKILL);
}

TEST(ProcessRunner, NormalEnd_TellsNoSignal) {
    ProcessRunner runner;
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("exit 9")});
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }));
    EXPECT_FALSE(runner.crashed());
    EXPECT_EQ(runner.exitCode(), 9);
    EXPECT_EQ(runner.endSignal(), 0);
}

TEST(ProcessRunner, OutputDiscarded_RunsWithEmptyInput_HandsOnOnlyTheEnd) {
    QTemporaryDir dir;
    const QString result = dir.path() + QStringLiteral("/it's the result.txt");
    ProcessRunner runner;
    runner.setOutputDiscarded(true);
    Recorder recorder(runner);
    runner.command(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"),
                    QStringLiteral("read answer; echo out; echo err 1>&2; "
                                   "echo \"ran[$answer]\" > \"$0\""),
                    result});
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }, 5000));
    EXPECT_EQ(recorder.chunks, 0);
    EXPECT_EQ(recorder.output, QString());
    QFile file(result);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("ran[]\n"));
}

TEST(ProcessRunner, EndLeftovers_EndsWhatAKilledCommandLeftInItsGroup) {
    QTemporaryDir dir;
    const QString pidFile = dir.path() + QStringLiteral("/child.pid");
    ProcessRunner runner;
    Recorder recorder(runner);
    runner.command(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"), QStringLiteral("sleep 30 & echo $! > '%1'; wait").arg(pidFile)});
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(pidFile).size() > 0; }));
    QFile file(pidFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const qint64 child = file.readAll().trimmed().toLongLong();
    // The shell alone is killed: its child lives on.
    ASSERT_EQ(::kill(static_cast<pid_t>(runner.processId()), SIGKILL), 0);
    ASSERT_TRUE(waitUntil([&] { return recorder.ended == 1; }));
    EXPECT_TRUE(processAlive(child));

    runner.endLeftovers();
    EXPECT_TRUE(waitUntil([&] { return processGone(child); }));
}
