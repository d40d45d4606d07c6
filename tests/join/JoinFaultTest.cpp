// Joins that meet a fault of the world around them: a full or read-only
// output folder, sources that change under the running script, a fix tool or
// script that is gone, leftovers of a crashed run. Each ends with the user's
// source files as they were and nothing of the join left in AppDataFolder
// after "&Close".
#include <gtest/gtest.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <QCryptographicHash>
#include <QMap>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>

#include "join/JoinFaultSupport.h"

namespace {

class JoinFaultTest : public ::testing::Test {
protected:
    void SetUp() override {
        bed.putRealTools();
        SetFreeBytesSource([](QString&) { return 1e12; });
    }
    void TearDown() override {
        bed.run.reset();
        if (!mountPoint.isEmpty()) {
            ::umount2(mountPoint.toLocal8Bit().constData(), MNT_DETACH);
        }
        SetFreeBytesSource({});
    }

    // A tmpfs of the given size at a new folder, or an empty text (and the
    // reason in mountError) where this process may not mount.
    QString mountTmpfs(const QString& name, const QString& options) {
        const QString folder = bed.dir.path() + u'/' + name;
        QDir().mkpath(folder);
        if (::mount("tmpfs", folder.toLocal8Bit().constData(), "tmpfs", 0,
                    options.toLatin1().constData()) != 0) {
            mountError = QString::fromLocal8Bit(std::strerror(errno));
            return QString();
        }
        mountPoint = folder;
        return folder;
    }

    QString randomFile(const QString& name, int bytes) {
        QByteArray data(bytes, Qt::Uninitialized);
        for (char& c : data) {
            c = static_cast<char>(QRandomGenerator::global()->bounded(256));
        }
        const QString path = bed.media + u'/' + name;
        JoinRunTestBed::writeFile(path, data);
        sources.remember(path);
        return path;
    }
    QString mp3(const QString& name, int hz) {
        Mp3Options options;
        options.seconds = 2;
        options.frequencyHz = hz;
        const QString path = MakeMp3(bed.media, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        sources.remember(path);
        return path;
    }

    // The pre-flight with the output chosen in the save dialog.
    void startJoin(const QString& output) {
        bed.model.state.setListStatusText(QStringLiteral("Green"));
        bed.model.state.setSizeCaption(QStringLiteral("1 KB"));
        bed.questions.chooseFile(output);
        ASSERT_TRUE(StartJoin(bed.model));
    }

    // The run on its own timers until it is finished or cancelled.
    void runToTheEnd() {
        bed.makeRun().load(true);
        ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 120000))
            << bed.state.operationText().toStdString();
    }

    // True when the run has stopped: at its end, or at the finish's measuring
    // step that found no output (timers off, the button still "&Cancel").
    bool stopped() const {
        return bed.finished() ||
               (!bed.state.timerEnabled() && bed.state.operationTag() == QStringLiteral("2"));
    }

    // After a stop without output the user clicks "&Cancel": "Cancelled!".
    // Otherwise the run says "Finished!".
    void expectAnEnd() {
        if (bed.state.cancelButtonCaption() == QStringLiteral("&Cancel")) {
            bed.run->cancelClicked();
            EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
        } else {
            EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
        }
    }

    // The click on "&Close": the window asks to be closed.
    void close() {
        ASSERT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
        int closeRequests = 0;
        QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
        bed.run->cancelClicked();
        EXPECT_EQ(closeRequests, 1);
    }

    void expectCleanEnd(const QString& output) {
        EXPECT_EQ(AppDataLeftovers(bed), QStringList());
        // The tools' last children may take a moment to be reaped.
        JoinRunTestBed::waitUntil([&] { return JoinProcessesOf(bed).isEmpty(); }, 5000);
        EXPECT_EQ(JoinProcessesOf(bed), QStringList());
        sources.expectUnchanged();
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mpg")));
    }

    JoinRunTestBed bed;
    SourceGuard sources;
    QString mountPoint;
    QString mountError;
};

}  // namespace

// ---- the output folder fills up or turns read-only ----

TEST_F(JoinFaultTest, OutputFolderFullDuringOperation1_Tmpfs_FinishesAndCleansUp) {
    const QString out = mountTmpfs(QStringLiteral("small"), QStringLiteral("size=64k"));
    if (out.isEmpty()) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << mountError.toStdString()
                     << "); the ulimit test below covers a full output folder";
    }
    // Three real MP3s of about 32 KB each: the raw join overflows 64 KB.
    bed.makeMp3List({mp3(QStringLiteral("one.mp3"), 440), mp3(QStringLiteral("two.mp3"), 550),
                     mp3(QStringLiteral("three.mp3"), 660)});
    const QString output = out + QStringLiteral("/joined.mp3");
    startJoin(output);
    runToTheEnd();
    // What the tools could write stays; the temporary file never does.
    EXPECT_LE(QFileInfo(output).size(), 64 * 1024);
    if (bed.state.cancelButtonCaption() == QStringLiteral("&Cancel")) {
        bed.run->cancelClicked();  // the finish found no output at all
    }
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFolderReadOnlyAfterPreflight_Tmpfs_EndsWithoutOutput) {
    const QString out = mountTmpfs(QStringLiteral("ro"), QStringLiteral("size=4m"));
    if (out.isEmpty()) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << mountError.toStdString() << ")";
    }
    bed.makeMp3List({mp3(QStringLiteral("one.mp3"), 440), mp3(QStringLiteral("two.mp3"), 550)});
    const QString output = out + QStringLiteral("/joined.mp3");
    startJoin(output);
    // Read-only before the script writes its first byte.
    ASSERT_EQ(
        ::mount(nullptr, out.toLocal8Bit().constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
        0)
        << std::strerror(errno);
    bed.makeRun().load(true);
    // With no output at all the finish stops at its measuring step: the timers
    // are off and the button still says "&Cancel".
    ASSERT_TRUE(JoinRunTestBed::waitUntil(
        [&] { return !bed.state.timerEnabled() && bed.state.operationTag() == "2"; }, 120000));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Cancel"));
    bed.run->cancelClicked();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFileSizeLimitDuringOperation1_Ulimit_FinishesAndCleansUp) {
    // Works everywhere: the first script may write no more than 8 blocks, as
    // if the output folder had filled up after the pre-flight.
    const QString a = randomFile(QStringLiteral("a.mpg"), 20000);
    const QString b = randomFile(QStringLiteral("b.mpg"), 20000);
    bed.makeMpegList({a, b}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    startJoin(output);
    LimitScriptFileSize(bed.appData + QStringLiteral("/TempFile.bat"), 8);
    runToTheEnd();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_TRUE(QFile::exists(output));
    EXPECT_LE(QFileInfo(output).size(), 8 * 1024);
    close();
    expectCleanEnd(output);
    EXPECT_TRUE(QFile::exists(output));
}

TEST_F(JoinFaultTest, DiskFullDuringOperation2_Ulimit_FinishesAndCleansUp) {
    // The fix script may write no more than 4 blocks: the disk fills while
    // the fixed file is written.
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    bed.makeMp3List({one, two});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    LimitScriptFileSize(bed.appData + QStringLiteral("/MP3.bat"), 4);
    bed.makeRun().load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return stopped(); }, 120000));
    expectAnEnd();
    EXPECT_LE(QFileInfo(output).size(), 4 * 1024);
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, DiskFullDuringOperation2_Tmpfs_EndsWithAMessageOrAnEnd) {
    // The raw join fits; the fixed copy beside it does not.
    const QString out = mountTmpfs(QStringLiteral("half"), QStringLiteral("size=96k"));
    if (out.isEmpty()) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << mountError.toStdString()
                     << "); the ulimit test covers a full disk in the fix step";
    }
    bed.makeMp3List({mp3(QStringLiteral("one.mp3"), 440), mp3(QStringLiteral("two.mp3"), 550)});
    const QString output = out + QStringLiteral("/joined.mp3");
    startJoin(output);
    bed.makeRun().load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return stopped(); }, 120000));
    expectAnEnd();
    close();
    expectCleanEnd(output);
}

// ---- sources that change under the running script ----

TEST_F(JoinFaultTest, SourceDeletedAndTruncatedWhileJoining_JoinsWhatIsThere) {
    // The first item is a pipe: the script waits on it while the test changes
    // the other sources, then goes on.
    const QString pipe = bed.media + QStringLiteral("/first.mpg");
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    const QString truncated = randomFile(QStringLiteral("truncated.mpg"), 30000);
    const QString deleted = randomFile(QStringLiteral("deleted.mpg"), 30000);
    const QString kept = randomFile(QStringLiteral("kept.mpg"), 30000);
    bed.makeMpegList({pipe, truncated, deleted, kept}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    startJoin(output);
    bed.makeRun().load(true);

    QFile feed(pipe);
    ASSERT_TRUE(feed.open(QIODevice::WriteOnly));  // blocks until the script reads
    const QByteArray shortened = JoinRunTestBed::readFile(truncated).left(1000);
    ASSERT_TRUE(QFile::resize(truncated, 1000));
    sources.remember(truncated);
    ASSERT_TRUE(QFile::remove(deleted));
    sources.forget(deleted);
    feed.write("pipe");
    feed.close();

    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 60000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(JoinRunTestBed::readFile(output),
              QByteArray("pipe") + shortened + JoinRunTestBed::readFile(kept));
    close();
    expectCleanEnd(output);
    EXPECT_FALSE(QFile::exists(deleted));
}

TEST_F(JoinFaultTest, SourceDeletedBeforeTheFirstCopy_Mp3FixStillRuns) {
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    const QString three = mp3(QStringLiteral("three.mp3"), 660);
    bed.makeMp3List({one, two, three});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    ASSERT_TRUE(QFile::remove(one));
    sources.forget(one);
    runToTheEnd();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_GT(QFileInfo(output).size(), 0);
    close();
    expectCleanEnd(output);
    EXPECT_FALSE(QFile::exists(one));
}

// ---- the fix step loses its tool or its script ----

TEST_F(JoinFaultTest, FixToolMissingAtOperation2_RawJoinBecomesOutput) {
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    bed.makeMp3List({one, two});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    bed.makeRun().load(false);
    // The first script ends; before the next tick the tool copies vanish.
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return !QDir(bed.marker()).exists(); }, 30000));
    ASSERT_TRUE(QFile::remove(bed.appData + QStringLiteral("/MP3.exe")));
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 30000));
    // A fix that yields nothing leaves the raw join as the output.
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_EQ(JoinRunTestBed::readFile(output),
              JoinRunTestBed::readFile(one) + JoinRunTestBed::readFile(two));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixScriptMissingAtOperation2_WaitsUntilCancel_CancelGetsOut) {
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    bed.makeMp3List({one, two});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return !QDir(bed.marker()).exists(); }, 30000));
    ASSERT_TRUE(QFile::remove(bed.appData + QStringLiteral("/MP3.bat")));
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    // Nothing will remove the marker: the run waits, its clock running.
    const std::int16_t before = run.elapsedSeconds();
    EXPECT_FALSE(bed.tickUntil([&] { return bed.finished(); }, 1500));
    run.clockTick();
    EXPECT_EQ(run.elapsedSeconds(), before + 1);
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    EXPECT_TRUE(QDir(bed.marker()).exists());

    run.cancelClicked();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_FALSE(QFile::exists(output));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixToolKilledFromOutside_RunEndsAndLeavesNothingRunning) {
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    bed.makeMp3List({one, two});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    JoinRun& run = bed.makeRun();
    run.load(false);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return !QDir(bed.marker()).exists(); }, 30000));
    // Whatever the tool copy holds, it is ended by its copy's name; a copy
    // that works slowly makes sure it is caught while it runs.
    const QString tool = bed.appData + QStringLiteral("/MP3.exe");
    ASSERT_TRUE(QFile::remove(tool));
    ASSERT_TRUE(QFile::copy(QStringLiteral(VELMORA_SLOW_TOOL), tool));
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    const auto toolRuns = [&] {
        for (const QString& process : JoinProcessesOf(bed)) {
            if (ExecutablePathOf(process.section(u' ', 0, 0).toLongLong()) == tool) {
                return true;
            }
        }
        return false;
    };
    ASSERT_TRUE(JoinRunTestBed::waitUntil(toolRuns, 30000))
        << JoinProcessesOf(bed).join(u'\n').toStdString();
    KillProcessByName(QStringLiteral("MP3.exe"));
    ASSERT_TRUE(bed.tickUntil([&] { return stopped(); }, 30000))
        << bed.state.operationText().toStdString();
    expectAnEnd();
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFolderRemovedDuringTheJoin_EndsAndCleansUp) {
    // The first item is a pipe: the script waits on it while the test takes
    // the output folder away with the partial join in it.
    const QString pipe = bed.media + QStringLiteral("/first.mpg");
    ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
    const QString second = randomFile(QStringLiteral("second.mpg"), 30000);
    bed.makeMpegList({pipe, second}, QString());
    const QString folder = bed.dir.path() + QStringLiteral("/out");
    QDir().mkpath(folder);
    const QString output = folder + QStringLiteral("/joined.mpg");
    startJoin(output);
    bed.makeRun().load(true);
    QFile feed(pipe);
    ASSERT_TRUE(feed.open(QIODevice::WriteOnly));  // blocks until the script reads
    ASSERT_TRUE(QDir(folder).removeRecursively());
    feed.write("pipe");
    feed.close();
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return stopped(); }, 60000))
        << bed.state.operationText().toStdString();
    expectAnEnd();
    EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mpg")));
    close();
    expectCleanEnd(output);
}

// ---- leftovers of a crashed run ----

TEST_F(JoinFaultTest, LeftoversOfACrashedRun_AreReplacedAndNothingOfThemRuns) {
    // A crash left the marker folder, all three scripts and a tool copy; each
    // of the old files would leave a trace if it ran.
    const QString trace = bed.dir.path() + QStringLiteral("/old script ran");
    QDir().mkpath(bed.marker());
    for (const char* name : {"TempFile.bat", "MP3.bat", "MPEG2.bat", "MP3.exe"}) {
        const QString path = bed.appData + u'/' + QLatin1String(name);
        bed.writeScript(QLatin1String(name), QStringLiteral("#!/bin/sh\necho >> ") +
                                                 JoinRunTestBed::quoted(trace) + u'\n');
        QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner);
    }
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    bed.makeMp3List({one, two});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    startJoin(output);
    runToTheEnd();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
    EXPECT_GT(QFileInfo(output).size(), 0);
    close();
    expectCleanEnd(output);
    EXPECT_FALSE(QFile::exists(trace));
    EXPECT_GT(QFileInfo(output).size(), 0);
}

TEST_F(JoinFaultTest, LeftoverTempFileOfACrashedRun_IsReplacedNotAppended) {
    const QString a = randomFile(QStringLiteral("a.mpg"), 5000);
    const QString b = randomFile(QStringLiteral("b.mpg"), 7000);
    bed.makeMpegList({a, b}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    JoinRunTestBed::writeFile(output + QStringLiteral(".vlr.mpg"), QByteArray(9000, 'x'));
    QDir().mkpath(bed.marker());
    startJoin(output);
    runToTheEnd();
    EXPECT_EQ(JoinRunTestBed::readFile(output),
              JoinRunTestBed::readFile(a) + JoinRunTestBed::readFile(b));
    close();
    expectCleanEnd(output);
}
