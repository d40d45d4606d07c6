#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/ProcessKiller.h"

namespace {

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

#include <QDir>
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
