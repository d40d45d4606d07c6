#include <gtest/gtest.h>

#include <sys/mount.h>
#include <QElapsedTimer>
#include <QProcess>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "join/JoinCleanup.h"
#include "join/JoinRunTestBed.h"
#include "platform/EventTurn.h"
#include "platform/ProcessRunner.h"

namespace {

bool processGone(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    return !stat.open(QIODevice::ReadOnly) || stat.readAll().contains(") Z ");
}

class JoinCancelTest : public ::testing::Test {
protected:
    void SetUp() override {
        a = bed.media + QStringLiteral("/a.mp3");
        b = bed.media + QStringLiteral("/b.mp3");
        JoinRunTestBed::writeFile(a, QByteArray(3000, 'a'));
        JoinRunTestBed::writeFile(b, QByteArray(2000, 'b'));
        output = bed.media + QStringLiteral("/joined.mp3");
        temp = output + QStringLiteral(".vlr.mp3");
        bed.setOutput(output);
        bed.makeMp3List({a, b});
        // Everything a join leaves in the per-user folder.
        for (const char* name : {"TempFile.bat", "MP3.bat", "MPEG2.bat", "MPEG.bat", "MP3.exe",
                                 "MPEG.exe", "MPEG2.exe", "mingwm10.dll", "pthreadGC2.dll"}) {
            if (!QFile::exists(bed.appData + u'/' + QLatin1String(name))) {
                JoinRunTestBed::writeFile(bed.appData + u'/' + QLatin1String(name), "x");
            }
        }
    }
    void TearDown() override {
        setEventTurnHook({});
        for (QProcess* process : processes) {
            process->kill();
            process->waitForFinished(2000);
            delete process;
        }
    }
    // A process of another program with the given image name (a copy of
    // sleep in a folder of its own).
    QProcess* startAs(const QString& name) {
        const QString folder = bed.dir.path() + QStringLiteral("/elsewhere");
        QDir().mkpath(folder);
        QFile::copy(QStringLiteral("/bin/sleep"), folder + u'/' + name);
        auto* process = new QProcess;
        process->start(folder + u'/' + name, {QStringLiteral("30")});
        process->waitForStarted();
        processes << process;
        return process;
    }
    // A process run from the join's own copy of a tool (a copy of sleep) in
    // the per-user folder.
    QProcess* startTool(const QString& name) {
        const QString path = bed.appData + u'/' + name;
        QFile::remove(path);
        QFile::copy(QStringLiteral("/bin/sleep"), path);
        auto* process = new QProcess;
        process->start(path, {QStringLiteral("30")});
        process->waitForStarted();
        processes << process;
        return process;
    }
    // The live processes whose executable is the given file.
    static QList<qint64> processesOf(const QString& executable) {
        QList<qint64> found;
        for (const qint64 pid : RunningProcessIds()) {
            if (ExecutablePathOf(pid) == executable && !processGone(pid)) {
                found << pid;
            }
        }
        return found;
    }
    // A first script that starts TempFile and then hangs in a long step.
    void writeHangingJoinScript() {
        bed.writeScript(QStringLiteral("TempFile.bat"),
                        QStringLiteral("cat %1 > %2\nsleep 30\ncat %3 >> %2\n")
                                .arg(JoinRunTestBed::quoted(a), JoinRunTestBed::quoted(temp),
                                     JoinRunTestBed::quoted(b)) +
                            bed.removeMarkerLine() + QStringLiteral("exit\n"));
    }

    JoinRunTestBed bed;
    QString a, b, output, temp;
    QList<QProcess*> processes;
};

}  // namespace

TEST_F(JoinCancelTest, CancelInOperation1_EndsScript_CleansUp_ShowsCancelled) {
    writeHangingJoinScript();
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(bed.tickUntil([&] { return QFileInfo(temp).size() == 3000; }));
    const qint64 shell = run.firstScriptProcessId();
    int focusRequests = 0;
    QObject::connect(&bed.state, &JoinWizardState::focusOnFordRequested, [&] { ++focusRequests; });

    run.cancelClicked();

    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return processGone(shell); }, 5000));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    EXPECT_FALSE(QFile::exists(temp));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(JoinRunTestBed::readFile(a), QByteArray(3000, 'a'));
    EXPECT_EQ(JoinRunTestBed::readFile(b), QByteArray(2000, 'b'));
    EXPECT_TRUE(run.cancelled());
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("[Cancelled]"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
    EXPECT_FALSE(bed.state.optionsButtonEnabled());
    EXPECT_FALSE(bed.state.timerEnabled());
    EXPECT_FALSE(bed.state.elapsedTimerEnabled());
    EXPECT_EQ(bed.state.progressValue(), bed.state.progressMax());
    EXPECT_EQ(focusRequests, 1);
    // Nothing comes back after a while.
    QThread::msleep(200);
    EXPECT_FALSE(QFile::exists(temp));
}

TEST_F(JoinCancelTest, SecondClickOnClose_RequestsClose) {
    writeHangingJoinScript();
    JoinRun& run = bed.makeRun();
    run.load(false);
    run.cancelClicked();
    int closeRequests = 0;
    QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
    run.cancelClicked();
    EXPECT_EQ(closeRequests, 1);
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
}

TEST_F(JoinCancelTest, WaitLoop_DeletesAgainUntilNothingComesBack) {
    JoinRun& run = bed.makeRun();
    bed.state.setOperationTag(QStringLiteral("1"));
    JoinRunTestBed::writeFile(temp, "partial");
    JoinRunTestBed::writeFile(output + QStringLiteral(".vlr.mpg"), "partial");
    int turns = 0;
    QStringList captions;
    QList<bool> buttonStates;
    // A writer that is still busy: the files come back twice.
    setEventTurnHook([&] {
        ++turns;
        captions << bed.state.windowCaption();
        buttonStates << bed.state.cancelButtonEnabled();
        if (turns <= 2) {
            JoinRunTestBed::writeFile(output, "late");
        }
    });
    run.cancelClicked();
    EXPECT_EQ(turns, 3);
    EXPECT_EQ(captions, QStringList(3, QStringLiteral("Join Wizard (Cancelling...)")));
    EXPECT_EQ(buttonStates, QList<bool>(3, false));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(temp));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
}

// A writer that never stops: the file is back after every delete. The wait
// pauses between tries, gives up after its limit, and says what is left.
TEST_F(JoinCancelTest, WaitLoop_FileThatKeepsComingBack_GivesUpAndSaysWhatIsLeft) {
    const auto before = SetCancelWaitLimit(std::chrono::milliseconds(600));
    JoinRun& run = bed.makeRun();
    bed.state.setOperationTag(QStringLiteral("1"));
    JoinRunTestBed::writeFile(temp, "partial");
    int turns = 0;
    setEventTurnHook([&] {
        ++turns;
        JoinRunTestBed::writeFile(temp, "again");
    });
    QElapsedTimer took;
    took.start();
    run.cancelClicked();
    const qint64 ms = took.elapsed();
    SetCancelWaitLimit(before);
    EXPECT_GE(ms, 600);
    EXPECT_LT(ms, 5000);
    // Paused between tries: a few a tenth of a second, not thousands.
    EXPECT_GE(turns, 3);
    EXPECT_LE(turns, 600 / kCancelWaitPause.count() + 2);
    ASSERT_EQ(bed.questions.asked.size(), 1);
    const QString prompt = bed.questions.asked[0].prompt;
    EXPECT_EQ(prompt, LeftBehindMessage({{temp, QStringLiteral("a process still writes it")}}));
    EXPECT_TRUE(prompt.contains(temp));
    EXPECT_EQ(bed.questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
    // The window is usable: it says "Cancelled!" and its button closes it.
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
    int closeRequests = 0;
    QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
    setEventTurnHook({});
    run.cancelClicked();
    EXPECT_EQ(closeRequests, 1);
}

TEST(LeftBehindMessage, NamesEachFileAndItsReason) {
    EXPECT_EQ(LeftBehindMessage({{"/out/a.mp3", "Read-only file system"},
                                 {"/out/a.mp3.vlr.mp3", "Permission denied"}}),
              "The join was cancelled, but these files of it could not be deleted and are left "
              "behind:\r\n\r\n/out/a.mp3 (Read-only file system)\r\n/out/a.mp3.vlr.mp3 "
              "(Permission denied)\r\n\r\nPlease, delete them yourself when the reason is "
              "gone.");
}

// The output folder turns read-only under a running join (a file system
// remounted read-only): the cancel cannot delete its file and says why.
TEST_F(JoinCancelTest, CancelWithOutputOnAReadOnlyFileSystem_SaysWhyAndStaysUsable) {
    const QString folder = bed.dir.path() + QStringLiteral("/ro");
    QDir().mkpath(folder);
    if (::mount("tmpfs", folder.toLocal8Bit().constData(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << std::strerror(errno)
                     << "); the wait's limit is shown by the test of a file that comes back";
    }
    const QString stuck = folder + QStringLiteral("/joined.mp3");
    bed.setOutput(stuck);
    JoinRunTestBed::writeFile(stuck + QStringLiteral(".vlr.mp3"), "partial");
    ASSERT_EQ(::mount(nullptr, folder.toLocal8Bit().constData(), nullptr, MS_REMOUNT | MS_RDONLY,
                      nullptr),
              0);
    const auto before = SetCancelWaitLimit(std::chrono::milliseconds(300));
    JoinRun& run = bed.makeRun();
    bed.state.setOperationTag(QStringLiteral("1"));
    run.cancelClicked();
    SetCancelWaitLimit(before);
    ::umount2(folder.toLocal8Bit().constData(), MNT_DETACH);
    ASSERT_EQ(bed.questions.asked.size(), 1);
    const QString prompt = bed.questions.asked[0].prompt;
    EXPECT_TRUE(prompt.contains(stuck + QStringLiteral(".vlr.mp3 (Read-only file system)")))
        << prompt.toStdString();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(bed.state.cancelButtonEnabled());
}

TEST_F(JoinCancelTest, Close_AfterFinish_CleansAppData_KeepsOutput_NoWait) {
    JoinRun& run = bed.makeRun();
    JoinRunTestBed::writeFile(output, "joined");
    QDir().mkpath(bed.marker());
    bed.state.setCancelButtonCaption(QStringLiteral("&Close"));
    int closeRequests = 0;
    int turns = 0;
    QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
    setEventTurnHook([&] { ++turns; });
    run.cancelClicked();
    EXPECT_EQ(closeRequests, 1);
    EXPECT_EQ(turns, 0);
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray("joined"));
    EXPECT_FALSE(run.cancelled());
}

TEST_F(JoinCancelTest, Close_AfterFinish_KillsALeftoverMp3ToolStillRunning) {
    // The join has finished; its copy of the fix tool still runs.
    JoinRun& run = bed.makeRun();
    JoinRunTestBed::writeFile(output, "joined");
    bed.state.setCancelButtonCaption(QStringLiteral("&Close"));
    QProcess* leftover = startTool(QStringLiteral("MP3.exe"));
    ASSERT_EQ(leftover->state(), QProcess::Running);
    int closeRequests = 0;
    QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
    run.cancelClicked();
    EXPECT_TRUE(leftover->waitForFinished(5000));
    EXPECT_EQ(leftover->exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(closeRequests, 1);
    EXPECT_FALSE(QFile::exists(bed.appData + QStringLiteral("/MP3.exe")));
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray("joined"));
}

TEST_F(JoinCancelTest, ToolsAreKilledByName_OnlyWhenTheirCopyLiesInAppData) {
    QProcess* mp3 = startTool(QStringLiteral("MP3.exe"));
    // A tool whose copy was deleted under it: its name is not killed.
    QProcess* mpeg = startTool(QStringLiteral("MPEG.exe"));
    QFile::remove(bed.appData + QStringLiteral("/MPEG.exe"));
    JoinRun& run = bed.makeRun();
    run.cancelClicked();
    EXPECT_TRUE(mp3->waitForFinished(5000));
    EXPECT_EQ(mp3->exitStatus(), QProcess::CrashExit);
    EXPECT_FALSE(mpeg->waitForFinished(300));
    EXPECT_EQ(mpeg->state(), QProcess::Running);
}

TEST_F(JoinCancelTest, ToolsOfTheSameNameOfAnotherProgram_SurviveTheCancel) {
    QList<QProcess*> others;
    for (const char* name : {"MP3.exe", "MPEG.exe", "MPEG2.exe", "xMP3.exe"}) {
        others << startAs(QLatin1String(name));
    }
    QProcess* ours = startTool(QStringLiteral("MPEG2.exe"));
    JoinRun& run = bed.makeRun();
    run.cancelClicked();
    EXPECT_TRUE(ours->waitForFinished(5000));
    for (QProcess* other : others) {
        EXPECT_FALSE(other->waitForFinished(100)) << other->program().toStdString();
        EXPECT_EQ(other->state(), QProcess::Running) << other->program().toStdString();
    }
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
}

// An MPEG-1 video join whose remake runs long: the cancel ends the remake's
// tool (the join's copy in the per-user folder), leaves nothing, and a
// program of the same name that runs from elsewhere goes on.
TEST_F(JoinCancelTest, Mpeg1VCancelInOperation2_EndsTheJoinsTool_AnotherProgramOfThatNameRuns) {
    bed.makeMpegList({a, b}, QStringLiteral("MPEG-1V"));
    const QString mpegTemp = output + QStringLiteral(".vlr.mpg");
    const QString tool = bed.appData + QStringLiteral("/MPEG2.exe");
    QFile::remove(tool);
    QFile::copy(QStringLiteral("/bin/sleep"), tool);
    bed.writeScript(QStringLiteral("TempFile.bat"),
                    QStringLiteral("cat %1 %2 > %3\n")
                            .arg(JoinRunTestBed::quoted(a), JoinRunTestBed::quoted(b),
                                 JoinRunTestBed::quoted(mpegTemp)) +
                        bed.removeMarkerLine());
    bed.writeScript(QStringLiteral("MPEG.bat"),
                    QStringLiteral("printf part > %1\n%2 30\nprintf rest >> %1\n")
                            .arg(JoinRunTestBed::quoted(output), JoinRunTestBed::quoted(tool)) +
                        bed.removeMarkerLine());
    QProcess* other = startAs(QStringLiteral("MPEG2.exe"));
    JoinRun& run = bed.makeRun();
    run.load(false);
    QList<qint64> remake;
    ASSERT_TRUE(bed.tickUntil([&] {
        remake = processesOf(tool);
        return QFile::exists(output) && !remake.isEmpty();
    }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));

    run.cancelClicked();

    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return processesOf(tool).isEmpty(); }, 5000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    EXPECT_FALSE(other->waitForFinished(300));
    EXPECT_EQ(other->state(), QProcess::Running);
    QThread::msleep(200);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(mpegTemp));
    EXPECT_EQ(JoinRunTestBed::readFile(a), QByteArray(3000, 'a'));
}

TEST_F(JoinCancelTest, CancelInOperation2_EndsTheFixScriptAndItsTool) {
    // The fix script runs a long tool under the tool's own name.
    QFile::remove(bed.appData + QStringLiteral("/MP3.exe"));
    QFile::copy(QStringLiteral("/bin/sleep"), bed.appData + QStringLiteral("/MP3.exe"));
    bed.writeScript(QStringLiteral("TempFile.bat"),
                    QStringLiteral("cat %1 %2 > %3\n")
                            .arg(JoinRunTestBed::quoted(a), JoinRunTestBed::quoted(b),
                                 JoinRunTestBed::quoted(temp)) +
                        bed.removeMarkerLine());
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("printf part > %1\n%2 30\nprintf rest >> %1\n")
                            .arg(JoinRunTestBed::quoted(output),
                                 JoinRunTestBed::quoted(bed.appData + QStringLiteral("/MP3.exe"))) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(bed.tickUntil([&] { return QFile::exists(output); }));
    ASSERT_NE(run.launcher(), nullptr);
    const qint64 shell = run.launcher()->processId();
    run.cancelClicked();
    EXPECT_EQ(run.launcher(), nullptr);
    EXPECT_TRUE(processGone(shell));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    QThread::msleep(200);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(temp));
}

TEST_F(JoinCancelTest, RunThatWritesNoFile_FailsAtOperation1_CloseGetsOut) {
    bed.writeScript(QStringLiteral("TempFile.bat"), bed.removeMarkerLine());
    bed.writeScript(QStringLiteral("MP3.bat"), bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(bed.tickUntil([&] { return !bed.state.timerEnabled(); }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
    EXPECT_EQ(bed.state.operationTag(), QStringLiteral("1"));
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_EQ(bed.state.elapsedTimeCaption(), QStringLiteral("Time taken:"));
    EXPECT_FALSE(bed.state.elapsedTimerEnabled());
    ASSERT_EQ(bed.questions.asked.size(), 1);
    EXPECT_TRUE(bed.questions.asked[0].prompt.contains(
        QStringLiteral("Operation 1 of 2 (joining the files)\r\nFile: ") + output +
        QStringLiteral(".vlr.mp3\r\nReason: No such file or directory")))
        << bed.questions.asked[0].prompt.toStdString();
    int closeRequests = 0;
    QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
    run.cancelClicked();
    EXPECT_EQ(closeRequests, 1);
    EXPECT_EQ(bed.appDataEntries(), QStringList());
}
