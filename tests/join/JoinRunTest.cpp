#include <gtest/gtest.h>

#include <QTimer>

#include "join/JoinRunTestBed.h"
#include "platform/ProcessRunner.h"

namespace {

// A run of an MPEG list with hand-written scripts: the first script waits
// for a "go" file, so that the test sees JoinOperation 1 while it runs.
class JoinRunTest : public ::testing::Test {
protected:
    void SetUp() override {
        a = bed.media + QStringLiteral("/a.mpg");
        b = bed.media + QStringLiteral("/b.mpg");
        JoinRunTestBed::writeFile(a, QByteArray(3000, 'a'));
        JoinRunTestBed::writeFile(b, QByteArray(2000, 'b'));
        output = bed.media + QStringLiteral("/joined.mpg");
        bed.setOutput(output);
        go = bed.dir.path() + QStringLiteral("/go");
    }
    QString temp() const { return output + QStringLiteral(".vlr.mpg"); }
    // The first script: waits for go, joins, removes the marker.
    void writeJoinScript(const QString& tempFile) {
        bed.writeScript(QStringLiteral("TempFile.bat"),
                        QStringLiteral("while [ ! -f %1 ]; do sleep 0.01; done\n"
                                       "cat %2 > %4\ncat %3 >> %4\n")
                                .arg(JoinRunTestBed::quoted(go), JoinRunTestBed::quoted(a),
                                     JoinRunTestBed::quoted(b), JoinRunTestBed::quoted(tempFile)) +
                            bed.removeMarkerLine() + QStringLiteral("exit\n"));
    }
    // A join whose fix script (named script) leaves an empty output: the
    // join fails, and neither the empty file nor the raw join is left.
    void joinWithAFixerThatLeavesAnEmptyFile(const QString& codec, const QString& script) {
        bed.makeMpegList({a, b}, codec);
        writeJoinScript(temp());
        bed.writeScript(script, QStringLiteral(": > %1\n").arg(JoinRunTestBed::quoted(output)) +
                                    bed.removeMarkerLine());
        JoinRun& run = bed.makeRun();
        run.load(false);
        letGo();
        ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
        expectFailedOnTheOutput(temp(), QStringLiteral("the tool wrote an empty file"));
    }
    // The failed state after the fix step, with the one message naming the
    // output and the reason; neither file is left.
    void expectFailedOnTheOutput(const QString& tempFile, const QString& reason) {
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
        EXPECT_FALSE(QFile::exists(output));
        EXPECT_FALSE(QFile::exists(tempFile));
        ASSERT_EQ(bed.questions.asked.size(), 1);
        EXPECT_TRUE(bed.questions.asked[0].prompt.contains(
            QStringLiteral("Operation 2 of 2 (fixing the joined file)\r\nFile: ") + output +
            QStringLiteral("\r\nReason: ") + reason))
            << bed.questions.asked[0].prompt.toStdString();
    }
    void letGo() { JoinRunTestBed::writeFile(go, "go"); }
    bool inOperation2() const { return bed.state.operationTag() == QStringLiteral("2"); }

    JoinRunTestBed bed;
    QString a, b, output, go;
};

}  // namespace

TEST_F(JoinRunTest, Load_BarMaximumFromListSize_Operation1_MarkerAndLaunch) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    bed.model.state.setSizeCaption(QStringLiteral("1,000 KB"));
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(false);
    EXPECT_EQ(bed.state.progressMax(), 1024000.0F);
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 1 of 2"));
    EXPECT_EQ(bed.state.operationTag(), QStringLiteral("1"));
    EXPECT_TRUE(QFileInfo(bed.marker()).isDir());
    EXPECT_GT(run.firstScriptProcessId(), 0);
    EXPECT_TRUE(bed.state.timerEnabled());
    EXPECT_TRUE(bed.state.elapsedTimerEnabled());
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    letGo();
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return !QFileInfo::exists(bed.marker()); }, 10000));
}

TEST_F(JoinRunTest, Tick_Operation1Running_WatchesTempFileGrow) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    bed.model.state.setSizeCaption(QStringLiteral("1,000 KB"));
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(false);
    run.tick();
    // No TempFile yet: nothing moves.
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("0 KB"));
    JoinRunTestBed::writeFile(temp(), QByteArray(512000, 'x'));
    run.tick();
    EXPECT_EQ(bed.state.progressValue(), 512000.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("500 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (50%)"));
    EXPECT_EQ(bed.state.operationTag(), QStringLiteral("1"));
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
}

TEST_F(JoinRunTest, OtherMpeg_RenamesTempFile_ShowsOperation2ForOneTick_ThenFinishes) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    bed.model.state.setSizeCaption(QStringLiteral("5 KB"));
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    EXPECT_FALSE(QFile::exists(temp()));
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray(3000, 'a') + QByteArray(2000, 'b'));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("5 KB"));
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_FALSE(bed.state.timerEnabled());
    EXPECT_EQ(bed.questions.asked.size(), 0);
}

// The join of an MPEG list with nothing to fix: the tick that starts
// JoinOperation 2 gives TempFile its final name, and the next would finish.
// A cancel between the two finds OutputFile under that name and deletes it.
TEST_F(JoinRunTest, OtherMpeg_CancelInTheOneTickOfOperation2_DeletesTheRenamedOutput) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
    ASSERT_EQ(QFileInfo(output).size(), 5000);
    ASSERT_FALSE(QFile::exists(temp()));

    run.cancelClicked();

    EXPECT_FALSE(QFile::exists(output));
    EXPECT_TRUE(run.cancelled());
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
    EXPECT_FALSE(bed.state.timerEnabled());
    // A tick that was still due finishes nothing.
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    EXPECT_TRUE(bed.questions.asked.isEmpty());
}

// An MP3 join cancelled in the tick that started its fix script: the script
// is ended before it writes anything, and neither file is left.
TEST_F(JoinRunTest, Mp3_CancelInTheFirstTickOfOperation2_EndsTheFixScript_LeavesNothing) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    const QString go2 = bed.dir.path() + QStringLiteral("/go2");
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("while [ ! -f %1 ]; do sleep 0.01; done\ncat %2 > %3\n")
                            .arg(JoinRunTestBed::quoted(go2), JoinRunTestBed::quoted(mp3Temp),
                                 JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
    ASSERT_NE(run.launcher(), nullptr);
    ASSERT_TRUE(QFile::exists(mp3Temp));

    run.cancelClicked();

    EXPECT_EQ(run.launcher(), nullptr);
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_FALSE(QFile::exists(mp3Temp));
    // Had the script lived on, it would now write the output.
    JoinRunTestBed::writeFile(go2, "go");
    QThread::msleep(300);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
}

// The bar, the size and the percentage start again at JoinOperation 2: the
// title loses its percentage until the fix step's output brings a figure.
TEST_F(JoinRunTest, Operation2Start_ResetsTheBar_PercentageGoneUntilTheFirstNewFigure) {
    bed.makeMp3List({a, b});
    bed.model.state.setSizeCaption(QStringLiteral("5 KB"));
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    // The first script joins, then waits for go before it ends.
    bed.writeScript(QStringLiteral("TempFile.bat"),
                    QStringLiteral("cat %1 %2 > %3\nwhile [ ! -f %4 ]; do sleep 0.01; done\n")
                            .arg(JoinRunTestBed::quoted(a), JoinRunTestBed::quoted(b),
                                 JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(go)) +
                        bed.removeMarkerLine());
    // The fix script writes 2 KB once go2 is there, the rest once go3 is.
    const QString go2 = bed.dir.path() + QStringLiteral("/go2");
    const QString go3 = bed.dir.path() + QStringLiteral("/go3");
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("while [ ! -f %1 ]; do sleep 0.01; done\nhead -c 2048 %3 > %4\n"
                                   "while [ ! -f %2 ]; do sleep 0.01; done\ncat %3 > %4\n")
                            .arg(JoinRunTestBed::quoted(go2), JoinRunTestBed::quoted(go3),
                                 JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(bed.tickUntil([&] { return QFileInfo(mp3Temp).size() == 5000; }));
    run.tick();
    ASSERT_EQ(bed.state.progressValue(), 5000.0F);
    ASSERT_EQ(bed.state.writtenSizeText(), QStringLiteral("5 KB"));
    ASSERT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (98%)"));

    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
        EXPECT_EQ(bed.state.progressValue(), 0.0F);
        EXPECT_EQ(bed.state.progressMax(), 5120.0F);
        EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("0 KB"));
        EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
        run.tick();
    }

    JoinRunTestBed::writeFile(go2, "go");
    ASSERT_TRUE(bed.tickUntil([&] { return QFileInfo(output).size() == 2048; }));
    run.tick();
    EXPECT_EQ(bed.state.progressValue(), 2048.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("2 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (40%)"));
    JoinRunTestBed::writeFile(go3, "go");
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
}

TEST_F(JoinRunTest, Mpeg1V_FixScriptRunsThroughLauncher_WatchesOutputGrow_TempFileDeleted) {
    bed.makeMpegList({a, b}, QStringLiteral("MPEG-1V"));
    bed.model.state.setSizeCaption(QStringLiteral("8 KB"));
    writeJoinScript(temp());
    // The remake writes part of its output and waits for a second go.
    const QString go2 = bed.dir.path() + QStringLiteral("/go2");
    bed.writeScript(QStringLiteral("MPEG.bat"),
                    QStringLiteral("head -c 2048 %1 > %2\nwhile [ ! -f %3 ]; do sleep 0.01; done\n"
                                   "cat %1 > %2\n")
                            .arg(JoinRunTestBed::quoted(temp()), JoinRunTestBed::quoted(output),
                                 JoinRunTestBed::quoted(go2)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2() && QFileInfo(output).size() == 2048; }));
    ASSERT_NE(run.launcher(), nullptr);
    run.tick();
    // The size source watches OutputFile while the remake writes it.
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("2 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (25%)"));
    JoinRunTestBed::writeFile(go2, "go");
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(QFileInfo(output).size(), 5000);
    EXPECT_FALSE(QFile::exists(temp()));
}

TEST_F(JoinRunTest, Mpeg1V_FixerLeavesEmptyFile_Fails) {
    joinWithAFixerThatLeavesAnEmptyFile(QStringLiteral("MPEG-1V"), QStringLiteral("MPEG.bat"));
}

TEST_F(JoinRunTest, Mp3_MarkerMadeTwice_FixScriptRunsThroughLauncher_TempFileDeleted) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    const QString seen = bed.dir.path() + QStringLiteral("/marker-seen");
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("echo Fixing MP3 File...\n"
                                   "[ -d %1 ] && echo yes > %2\n"
                                   "head -c 1000 %3 > %4\n")
                            .arg(JoinRunTestBed::quoted(bed.marker()), JoinRunTestBed::quoted(seen),
                                 JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine() + QStringLiteral("exit\n"));
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2(); }));
    ASSERT_NE(run.launcher(), nullptr);
    EXPECT_EQ(run.launcher()->bufferSize(), 8192);
    EXPECT_EQ(run.launcher()->stopTimeout(), 1000);
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_TRUE(QFile::exists(seen));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(QFileInfo(output).size(), 1000);
    EXPECT_FALSE(QFile::exists(mp3Temp));
}

TEST_F(JoinRunTest, Mp3_FixerLeavesNothing_Fails) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    bed.writeScript(QStringLiteral("MP3.bat"), bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    expectFailedOnTheOutput(mp3Temp, QStringLiteral("No such file or directory"));
}

TEST_F(JoinRunTest, Mp3_FixerLeavesEmptyFile_Fails) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    bed.writeScript(
        QStringLiteral("MP3.bat"),
        QStringLiteral(": > %1\n").arg(JoinRunTestBed::quoted(output)) + bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    expectFailedOnTheOutput(mp3Temp, QStringLiteral("the tool wrote an empty file"));
}

TEST_F(JoinRunTest, Mpeg2V_FixerLeavesEmptyFile_Fails) {
    joinWithAFixerThatLeavesAnEmptyFile(QStringLiteral("MPEG-2V"), QStringLiteral("MPEG2.bat"));
}

TEST_F(JoinRunTest, Mpeg2V_FixerWritesOutput_TempFileDeleted) {
    bed.makeMpegList({a, b}, QStringLiteral("MPEG-2V"));
    writeJoinScript(temp());
    bed.writeScript(QStringLiteral("MPEG2.bat"),
                    QStringLiteral("printf 'size=  4kB time=00:00:01.00 x\\r'\nprintf fixed > %1\n")
                            .arg(JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    bed.model.state.setDurationCaption(QStringLiteral("00:00:02"));
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray("fixed"));
    EXPECT_FALSE(QFile::exists(temp()));
}

TEST_F(JoinRunTest, FixScriptShellCannotStart_FailsOnTheShell_WithTheSystemsReason) {
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    bed.makeMp3List({a, b});
    writeJoinScript(mp3Temp);
    bed.writeScript(QStringLiteral("MP3.bat"), bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    // The first script runs; the shell for the fix script is missing.
    const QString previous = JoinRun::setScriptShell(QStringLiteral("/nonexistent/sh"));
    letGo();
    const bool ended = bed.tickUntil([&] { return bed.finished(); });
    JoinRun::setScriptShell(previous);
    ASSERT_TRUE(ended) << bed.state.operationText().toStdString();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(mp3Temp));
    ASSERT_EQ(bed.questions.asked.size(), 1);
    EXPECT_EQ(bed.questions.asked[0].style, Msg::OkOnly + Msg::Critical);
    EXPECT_EQ(bed.questions.asked[0].title, QString());
    EXPECT_TRUE(bed.questions.asked[0].prompt.contains(
        QStringLiteral("Operation 2 of 2 (fixing the joined file)\r\nFile: /nonexistent/sh\r\n"
                       "Reason: No such file or directory")))
        << bed.questions.asked[0].prompt.toStdString();
    run.cancelClicked();
    EXPECT_FALSE(QFileInfo::exists(bed.marker()));
}

TEST_F(JoinRunTest, FixScriptWhileLauncherBusy_FailsOnTheScript) {
    bed.makeMp3List({a, b});
    writeJoinScript(output + QStringLiteral(".vlr.mp3"));
    const auto previous = JoinRun::setLauncherFactory([](QObject* parent) {
        auto* busy = new ProcessRunner(parent);
        busy->command(QStringLiteral("/bin/sleep"), {QStringLiteral("30")});
        return busy;
    });
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    const bool ended = bed.tickUntil([&] { return bed.finished(); });
    JoinRun::setLauncherFactory(previous);
    ASSERT_TRUE(ended) << bed.state.operationText().toStdString();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
    ASSERT_EQ(bed.questions.asked.size(), 1);
    EXPECT_TRUE(bed.questions.asked[0].prompt.contains(
        QStringLiteral("File: ") + bed.appData +
        QStringLiteral("/MP3.bat\r\nReason: the launcher was still running another command")))
        << bed.questions.asked[0].prompt.toStdString();
    // "&Close" ends what the busy launcher ran.
    const qint64 busy = run.launcher()->processId();
    run.cancelClicked();
    EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/proc/%1").arg(busy)));
}

TEST_F(JoinRunTest, Clock_CountsSeconds_AndStopsAt32767) {
    JoinRun& run = bed.makeRun();
    run.clockTick();
    EXPECT_EQ(bed.state.elapsedTimeText(), QStringLiteral("00:00:01"));
    run.setElapsedSeconds(32766);
    run.clockTick();
    EXPECT_EQ(bed.state.elapsedTimeText(), QStringLiteral("09:06:07"));
    run.clockTick();
    EXPECT_EQ(run.elapsedSeconds(), 32767);
    EXPECT_EQ(bed.state.elapsedTimeText(), QStringLiteral("09:06:07"));
}

TEST_F(JoinRunTest, OwnTimers_CarryTheRunToItsEnd) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(true);
    letGo();
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 20000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_FALSE(bed.state.timerEnabled());
    EXPECT_FALSE(bed.state.elapsedTimerEnabled());
}

TEST_F(JoinRunTest, DebugLog_RecordsOfARun_InOrder) {
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    bed.makeMpegList({a, b}, QStringLiteral("MPEG-2V"));
    bed.model.state.setSizeCaption(QStringLiteral("5 KB"));
    // The join is on disk before the script ends, so the last tick of
    // JoinOperation 1 sees all of it.
    JoinRunTestBed::writeFile(temp(), QByteArray(5000, 'j'));
    bed.writeScript(
        QStringLiteral("TempFile.bat"),
        QStringLiteral("while [ ! -f %1 ]; do sleep 0.01; done\n").arg(JoinRunTestBed::quoted(go)) +
            bed.removeMarkerLine());
    bed.writeScript(QStringLiteral("MPEG2.bat"),
                    QStringLiteral("printf 'tool says hello'\nprintf fixed > %1\n")
                            .arg(JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    run.tick();
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    StopLogging();
    const QStringList lines = QString::fromUtf8(JoinRunTestBed::readFile(log)).split(u'\n');
    ASSERT_GE(lines.size(), 5);
    EXPECT_EQ(lines[0], QStringLiteral("BAT1 Launched."));
    EXPECT_EQ(lines[1], QStringLiteral("OutputFile=") + output);
    EXPECT_EQ(lines[2], QStringLiteral("Operation1 Size=5 KB"));
    // The tool's output comes as its events come, so it may follow the last
    // record. The MPEG-2 fix shows no size of its own from the file: the
    // record holds what WrittenSizeLabel said at the end.
    EXPECT_TRUE(lines.mid(3).contains(QStringLiteral("tool says hello")));
    EXPECT_TRUE(lines.mid(3).contains(QStringLiteral("Operation2 Size=0 KB")));
}

TEST_F(JoinRunTest, Load_LeftoverMarker_IsUsedAsItStands) {
    bed.makeMpegList({a, b}, QStringLiteral("Other"));
    QDir().mkpath(bed.marker());
    writeJoinScript(temp());
    JoinRun& run = bed.makeRun();
    run.load(false);
    EXPECT_TRUE(QFileInfo(bed.marker()).isDir());
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_FALSE(QFileInfo::exists(bed.marker()));
}

TEST_F(JoinRunTest, Mpeg2VOperation2_SizeSourceStandsAside) {
    bed.makeMpegList({a, b}, QStringLiteral("MPEG-2V"));
    bed.model.state.setSizeCaption(QStringLiteral("5 KB"));
    writeJoinScript(temp());
    // The fix script writes its output and then waits for a second go.
    const QString go2 = bed.dir.path() + QStringLiteral("/go2");
    bed.writeScript(QStringLiteral("MPEG2.bat"),
                    QStringLiteral("head -c 4096 %1 > %2\nwhile [ ! -f %3 ]; do sleep 0.01; done\n")
                            .arg(JoinRunTestBed::quoted(temp()), JoinRunTestBed::quoted(output),
                                 JoinRunTestBed::quoted(go2)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return QFileInfo(output).size() == 4096; }));
    for (int i = 0; i < 5; ++i) {
        run.tick();
    }
    // The file is there, but only the tool's status lines move the figures.
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("0 KB"));
    EXPECT_EQ(bed.state.progressValue(), 0.0F);
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
    JoinRunTestBed::writeFile(go2, "go");
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("4 KB"));
}

TEST_F(JoinRunTest, Mp3Operation2_WatchesOutputGrowAgainstListSize) {
    bed.makeMp3List({a, b});
    bed.model.state.setSizeCaption(QStringLiteral("8 KB"));
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    const QString go2 = bed.dir.path() + QStringLiteral("/go2");
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("head -c 4096 %1 > %2\nwhile [ ! -f %3 ]; do sleep 0.01; done\n")
                            .arg(JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(output),
                                 JoinRunTestBed::quoted(go2)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    run.load(false);
    letGo();
    ASSERT_TRUE(bed.tickUntil([&] { return inOperation2() && QFileInfo(output).size() == 4096; }));
    run.tick();
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("4 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (50%)"));
    JoinRunTestBed::writeFile(go2, "go");
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }));
}

// The end of each script's shell is told once, and a face that ticks on it
// carries the run to its end with no timer at all: no tick waits for an
// interval to pass after a script is done.
TEST_F(JoinRunTest, ShellEnded_OncePerScript_TicksOnItAloneFinishTheRun) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("cat %1 > %2\n")
                            .arg(JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    QStringList operationsAtEnds;
    QObject::connect(&run, &JoinRun::shellEnded, &run, [&] {
        operationsAtEnds << bed.state.operationTag();
        run.tick();
    });
    run.load(false);
    letGo();
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 20000))
        << bed.state.operationText().toStdString();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(operationsAtEnds, (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray(3000, 'a') + QByteArray(2000, 'b'));
    EXPECT_FALSE(QFile::exists(mp3Temp));
    EXPECT_EQ(bed.questions.asked.size(), 0);
}

// With its own timers the run ticks on a shell's end itself: with its Timer
// slowed to an hour, the join still goes from its start to "Finished!".
TEST_F(JoinRunTest, OwnTimers_TimerOfAnHour_ScriptEndsStillCarryItToFinished) {
    bed.makeMp3List({a, b});
    const QString mp3Temp = output + QStringLiteral(".vlr.mp3");
    writeJoinScript(mp3Temp);
    bed.writeScript(QStringLiteral("MP3.bat"),
                    QStringLiteral("cat %1 > %2\n")
                            .arg(JoinRunTestBed::quoted(mp3Temp), JoinRunTestBed::quoted(output)) +
                        bed.removeMarkerLine());
    JoinRun& run = bed.makeRun();
    auto* timer = run.findChild<QTimer*>(QStringLiteral("Timer"));
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 10);
    timer->setInterval(3600 * 1000);
    run.load(true);
    letGo();
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 20000))
        << bed.state.operationText().toStdString();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(JoinRunTestBed::readFile(output), QByteArray(3000, 'a') + QByteArray(2000, 'b'));
}
