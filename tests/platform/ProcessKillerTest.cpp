#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include "platform/DetachedLaunch.h"
#include "platform/ProcessKiller.h"

namespace {

bool isGoneOrZombie(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    return !stat.open(QIODevice::ReadOnly) || stat.readAll().contains(") Z ");
}

bool waitGone(qint64 pid, int ms = 5000) {
    QDeadlineTimer deadline(ms);
    while (!isGoneOrZombie(pid)) {
        if (deadline.hasExpired()) {
            return false;
        }
        QThread::msleep(10);
    }
    return true;
}

// Copies of sleep under names of our own, in a folder of our own; the kill
// filter keeps every other process of the machine out of reach.
class ProcessKillerTest : public ::testing::Test {
protected:
    void SetUp() override {
        const QString folder = dir.path();
        previous = setProcessKillFilter(
            [folder](qint64 pid) { return ExecutablePathOf(pid).startsWith(folder + u'/'); });
    }
    void TearDown() override {
        for (QProcess* process : processes) {
            process->kill();
            process->waitForFinished(2000);
            delete process;
        }
        setProcessKillFilter(previous);
    }
    QProcess* startAs(const QString& name) {
        const QString path = dir.path() + u'/' + name;
        if (!QFile::exists(path)) {
            QFile::copy(QStringLiteral("/bin/sleep"), path);
        }
        auto* process = new QProcess;
        process->start(path, {QStringLiteral("30")});
        process->waitForStarted();
        processes << process;
        return process;
    }
    QTemporaryDir dir;
    QList<QProcess*> processes;
    ProcessKillFilter previous;
};

}  // namespace

TEST_F(ProcessKillerTest, KillProcessByName_EndsEveryProcessWhoseNameEndsSo_InAnyCase) {
    QProcess* first = startAs(QStringLiteral("MP3.exe"));
    QProcess* second = startAs(QStringLiteral("MP3.exe"));
    QProcess* tail = startAs(QStringLiteral("xmp3.EXE"));
    QProcess* other = startAs(QStringLiteral("MPEG.exe"));
    KillProcessByName(QStringLiteral("mp3.exe"), dir.path());
    EXPECT_TRUE(first->waitForFinished(5000));
    EXPECT_TRUE(second->waitForFinished(5000));
    EXPECT_TRUE(tail->waitForFinished(5000));
    EXPECT_EQ(first->exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(other->state(), QProcess::Running);
}

TEST_F(ProcessKillerTest, KillProcessByName_NameThatIsNotTheTail_LeavesProcessAlone) {
    QProcess* process = startAs(QStringLiteral("MPEG2.exe.bak"));
    KillProcessByName(QStringLiteral("MPEG2.exe"), dir.path());
    EXPECT_FALSE(process->waitForFinished(300));
    EXPECT_EQ(process->state(), QProcess::Running);
}

TEST_F(ProcessKillerTest, KillProcessByName_EmptyName_DoesNothing) {
    QProcess* process = startAs(QStringLiteral("MP3.exe"));
    KillProcessByName(QString(), dir.path());
    EXPECT_FALSE(process->waitForFinished(300));
}

TEST_F(ProcessKillerTest, KillProcessByName_DeletedExecutable_StillMatches) {
    QProcess* process = startAs(QStringLiteral("MPEG.exe"));
    QFile::remove(dir.path() + QStringLiteral("/MPEG.exe"));
    // The filter sees the path the kernel reports, less its deletion mark.
    KillProcessByName(QStringLiteral("MPEG.exe"), dir.path());
    EXPECT_TRUE(process->waitForFinished(5000));
}

TEST_F(ProcessKillerTest, KillProcessByName_SameNameInAnotherFolder_LeavesThatProgramAlone) {
    const QString own = dir.path() + QStringLiteral("/tools");
    const QString other = dir.path() + QStringLiteral("/another program");
    QDir().mkpath(own);
    QDir().mkpath(other);
    QProcess* ours = startAs(QStringLiteral("tools/MPEG2.exe"));
    QProcess* theirs = startAs(QStringLiteral("another program/MPEG2.exe"));
    KillProcessByName(QStringLiteral("MPEG2.exe"), own);
    EXPECT_TRUE(ours->waitForFinished(5000));
    EXPECT_FALSE(theirs->waitForFinished(300));
    EXPECT_EQ(theirs->state(), QProcess::Running);
}

TEST_F(ProcessKillerTest, KillProcessByName_NoFolder_DoesNothing) {
    QProcess* process = startAs(QStringLiteral("MP3.exe"));
    KillProcessByName(QStringLiteral("MP3.exe"), QString());
    EXPECT_FALSE(process->waitForFinished(300));
}

TEST(ProcessDetachedLaunch, LaunchScriptDetached_RunsTheScriptWithEmptyInput) {
    QTemporaryDir dir;
    const QString script = dir.path() + QStringLiteral("/it's a script.bat");
    const QString result = dir.path() + QStringLiteral("/result.txt");
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("read answer\necho \"ran[$answer]\" > '%1'\n").arg(result).toUtf8());
    file.close();
    const qint64 pid = LaunchScriptDetached(script);
    ASSERT_GT(pid, 0);
    QDeadlineTimer deadline(5000);
    while (!QFile::exists(result) && !deadline.hasExpired()) {
        QThread::msleep(10);
    }
    QThread::msleep(50);
    QFile out(result);
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    EXPECT_EQ(out.readAll(), QByteArray("ran[]\n"));
}

TEST(ProcessDetachedLaunch, KillScriptShell_EndsTheShellAndWhatItRuns) {
    QTemporaryDir dir;
    const QString script = dir.path() + QStringLiteral("/TempFile.bat");
    const QString pidFile = dir.path() + QStringLiteral("/child.pid");
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral("sleep 30 &\necho $! > '%1'\nwait\n").arg(pidFile).toUtf8());
    file.close();
    const qint64 shell = LaunchScriptDetached(script);
    ASSERT_GT(shell, 0);
    QDeadlineTimer deadline(5000);
    while (QFile(pidFile).size() == 0 && !deadline.hasExpired()) {
        QThread::msleep(10);
    }
    QFile pids(pidFile);
    ASSERT_TRUE(pids.open(QIODevice::ReadOnly));
    const qint64 child = pids.readAll().trimmed().toLongLong();
    ASSERT_GT(child, 0);

    // Another script path: the process is not that script's shell.
    KillScriptShell(shell, dir.path() + QStringLiteral("/MP3.bat"));
    QThread::msleep(100);
    EXPECT_FALSE(isGoneOrZombie(shell));

    KillScriptShell(shell, script);
    EXPECT_TRUE(waitGone(shell));
    EXPECT_TRUE(waitGone(child));
}

TEST(RunningProcessIds, HoldsThisProcessAndAChildItStarted) {
    QProcess child;
    child.start(QStringLiteral("sleep"), {QStringLiteral("5")});
    ASSERT_TRUE(child.waitForStarted());
    const QList<qint64> ids = RunningProcessIds();
    EXPECT_TRUE(ids.contains(QCoreApplication::applicationPid()));
    EXPECT_TRUE(ids.contains(child.processId()));
    EXPECT_FALSE(ids.contains(0));
    child.kill();
    child.waitForFinished();
}
