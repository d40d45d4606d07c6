// Joins that meet a fault of the world around them: a full or read-only
// output folder, sources that change under the running script, a fix tool
// that fails, is killed or is gone, leftovers of a crashed run. A join whose
// step failed ends "Failed!" with a message that names the step, the file and
// the system's reason, and leaves nothing under the output's name or
// TempFile's. Each ends with the user's source files as they were and nothing
// of the join left in AppDataFolder after "&Close".
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QCryptographicHash>
#include <QMap>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <functional>

#include "app/Settings.h"
#include "join/JoinFaultSupport.h"
#include "platform/ProcessRunner.h"

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

    // The join of two MP3 sources, one.mp3 and two.mp3 in the media folder,
    // into joined.mp3 in folder (the test's own when empty), through the
    // pre-flight. Gives the output.
    QString startMp3Join(const QString& folder = QString()) {
        bed.makeMp3List({mp3(QStringLiteral("one.mp3"), 440), mp3(QStringLiteral("two.mp3"), 550)});
        const QString output =
            (folder.isEmpty() ? bed.dir.path() : folder) + QStringLiteral("/joined.mp3");
        startJoin(output);
        return output;
    }
    QString mediaPath(const QString& name) const { return bed.media + u'/' + name; }
    QString appDataPath(const QString& name) const { return bed.appData + u'/' + name; }

    // Puts the slow tool in place of the MP3 fix tool's copy.
    void slowFixTool() {
        const QString tool = appDataPath(QStringLiteral("MP3.exe"));
        ASSERT_TRUE(QFile::remove(tool));
        ASSERT_TRUE(QFile::copy(QStringLiteral(VELMORA_SLOW_TOOL), tool));
    }
    // True while a process runs the copy of the MP3 fix tool.
    bool fixToolRuns() const {
        const QString tool = bed.appData + QStringLiteral("/MP3.exe");
        for (const QString& process : JoinProcessesOf(bed)) {
            if (ExecutablePathOf(process.section(u' ', 0, 0).toLongLong()) == tool) {
                return true;
            }
        }
        return false;
    }

    // The join of one.mp3, "Live: Tokyo/02: Encore.mp3" (random bytes) and
    // three.mp3 into "Live: Tokyo/Live: Tokyo.mp3", through the pre-flight.
    QString startJoinWithJunkInLiveTokyo() {
        const QString folder = bed.media + QStringLiteral("/Live: Tokyo");
        EXPECT_TRUE(QDir().mkpath(folder));
        junkSource = randomFile(QStringLiteral("Live: Tokyo/02: Encore.mp3"), 30000);
        bed.makeMp3List({mp3(QStringLiteral("one.mp3"), 440), junkSource,
                         mp3(QStringLiteral("three.mp3"), 550)});
        const QString output = folder + QStringLiteral("/Live: Tokyo.mp3");
        startJoin(output);
        return output;
    }

    // The join of two files of random bytes of the given video type (a
    // plain join when empty) into joined.mpg, through the pre-flight.
    QString startRandomMpegJoin(const QString& videoType) {
        const QString a = randomFile(QStringLiteral("a.mpg"), 20000);
        const QString b = randomFile(QStringLiteral("b.mpg"), 20000);
        bed.makeMpegList({a, b}, videoType);
        const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
        startJoin(output);
        return output;
    }

    // A named pipe as the first source: the first script waits on it until
    // feedPipe lets it go on.
    QString pipeSource() {
        const QString pipe = mediaPath(QStringLiteral("first.mpg"));
        EXPECT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
        return pipe;
    }
    // True while some process has the pipe open for reading: only then may a
    // writer open it without waiting.
    static bool pipeHasReader(const QString& pipe) {
        const int fd = ::open(pipe.toLocal8Bit().constData(), O_WRONLY | O_NONBLOCK);
        if (fd < 0) {
            return errno != ENXIO;
        }
        ::close(fd);
        return true;
    }
    // Runs the join until its first script reads the pipe, does meanwhile,
    // then gives the script the pipe's bytes and waits for the end.
    void feedPipe(const QString& pipe, const std::function<void()>& meanwhile,
                  const QByteArray& bytes = QByteArray()) {
        bed.makeRun().load(true);
        QFile feed(pipe);
        ASSERT_TRUE(feed.open(QIODevice::WriteOnly));  // blocks until the script reads
        meanwhile();
        feed.write(bytes);
        feed.close();
        ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 60000))
            << bed.state.operationText().toStdString();
    }

    // Runs the first script to its end on its own timer; the run takes the
    // next step at its next tick.
    JoinRun& runOperation1() {
        JoinRun& run = bed.makeRun();
        run.load(false);
        EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return !QDir(bed.marker()).exists(); }, 30000));
        return run;
    }

    // The run on its own timers until it is finished or cancelled.
    void runToTheEnd() {
        bed.makeRun().load(true);
        ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 120000))
            << bed.state.operationText().toStdString();
    }

    // The failed state: "Failed!" where "Finished!" would stand, "&Close",
    // no Options, no output and no TempFile, and one critical message under
    // the program's title that names the step, the file and the reason.
    void expectFailed(const QString& output, const QString& step, const QString& file,
                      const QString& reason) {
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
        EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("[Failed]"));
        EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
        EXPECT_TRUE(bed.state.cancelButtonEnabled());
        EXPECT_FALSE(bed.state.optionsButtonEnabled());
        EXPECT_FALSE(bed.state.timerEnabled());
        EXPECT_FALSE(QFileInfo::exists(output));
        EXPECT_FALSE(QFileInfo::exists(TempFilePath(bed.model)));
        ASSERT_EQ(bed.questions.asked.size(), 1);
        const QString prompt = bed.questions.asked[0].prompt;
        EXPECT_EQ(bed.questions.asked[0].style, Msg::OkOnly + Msg::Critical);
        EXPECT_EQ(bed.questions.asked[0].title, QString());
        EXPECT_TRUE(prompt.startsWith(QStringLiteral("The join has failed!\r\n\r\n") + step +
                                      QStringLiteral("\r\nFile: ") + file +
                                      QStringLiteral("\r\nReason: ") + reason))
            << prompt.toStdString();
    }
    static QString joining() { return QStringLiteral("Operation 1 of 2 (joining the files)"); }
    static QString fixing() { return QStringLiteral("Operation 2 of 2 (fixing the joined file)"); }

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
    QString junkSource;
};

}  // namespace

// ---- the output folder fills up or turns read-only ----

TEST_F(JoinFaultTest, OutputFolderFullDuringOperation1_Tmpfs_Fails) {
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
    expectFailed(output, joining(), output + QStringLiteral(".vlr.mp3"),
                 QStringLiteral("No space left on device"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFolderReadOnlyAfterPreflight_Tmpfs_Fails) {
    const QString out = mountTmpfs(QStringLiteral("ro"), QStringLiteral("size=4m"));
    if (out.isEmpty()) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << mountError.toStdString() << ")";
    }
    const QString output = startMp3Join(out);
    // Read-only before the script writes its first byte.
    ASSERT_EQ(
        ::mount(nullptr, out.toLocal8Bit().constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr),
        0)
        << std::strerror(errno);
    runToTheEnd();
    expectFailed(output, joining(), output + QStringLiteral(".vlr.mp3"),
                 QStringLiteral("Read-only file system"));
    close();
    expectCleanEnd(output);
}

// The first copy cannot make TempFile: the step fails on it with the
// shell's own reason, and the shell goes on to record it.
TEST_F(JoinFaultTest, OutputFolderRemovedAfterPreflight_FirstCopyFailsOnTempFile) {
    const QString folder = bed.dir.path() + QStringLiteral("/gone");
    QDir().mkpath(folder);
    const QString output = startMp3Join(folder);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    runToTheEnd();
    expectFailed(output, joining(), output + QStringLiteral(".vlr.mp3"),
                 QStringLiteral("Directory nonexistent"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFileSizeLimitDuringOperation1_Ulimit_Fails) {
    // Works everywhere: the first script may write no more than 8 blocks, as
    // if the output folder had filled up after the pre-flight.
    const QString output = startRandomMpegJoin(QString());
    LimitScriptFileSize(bed.appData + QStringLiteral("/TempFile.bat"), 8);
    runToTheEnd();
    expectFailed(output, joining(), output + QStringLiteral(".vlr.mpg"),
                 QStringLiteral("File size limit exceeded"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, DiskFullDuringOperation2_Ulimit_Fails) {
    // The fix script may write no more than 4 blocks: the disk fills while
    // the fixed file is written.
    const QString output = startMp3Join();
    LimitScriptFileSize(bed.appData + QStringLiteral("/MP3.bat"), 4);
    runToTheEnd();
    expectFailed(output, fixing(), output, QStringLiteral("File size limit exceeded"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, DiskFullDuringOperation2_Tmpfs_Fails) {
    // The raw join fits; the fixed copy beside it does not.
    const QString out = mountTmpfs(QStringLiteral("half"), QStringLiteral("size=96k"));
    if (out.isEmpty()) {
        GTEST_SKIP() << "no tmpfs can be mounted here (" << mountError.toStdString()
                     << "); the ulimit test covers a full disk in the fix step";
    }
    const QString output = startMp3Join(out);
    runToTheEnd();
    expectFailed(output, fixing(), output, QStringLiteral("No space left on device"));
    close();
    expectCleanEnd(output);
}

// ---- sources that change under the running script ----

TEST_F(JoinFaultTest, SourceDeletedAndTruncatedWhileJoining_FailsOnTheDeletedSource) {
    // The first item is a pipe: the script waits on it while the test changes
    // the other sources, then goes on.
    const QString pipe = pipeSource();
    const QString truncated = randomFile(QStringLiteral("truncated.mpg"), 30000);
    const QString deleted = randomFile(QStringLiteral("deleted.mpg"), 30000);
    const QString kept = randomFile(QStringLiteral("kept.mpg"), 30000);
    bed.makeMpegList({pipe, truncated, deleted, kept}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    startJoin(output);
    feedPipe(
        pipe,
        [&] {
            ASSERT_TRUE(QFile::resize(truncated, 1000));
            sources.remember(truncated);
            ASSERT_TRUE(QFile::remove(deleted));
            sources.forget(deleted);
        },
        "pipe");
    expectFailed(output, joining(), deleted, QStringLiteral("No such file or directory"));
    close();
    expectCleanEnd(output);
    EXPECT_FALSE(QFile::exists(deleted));
}

TEST_F(JoinFaultTest, SourceTruncatedWhileJoining_FailsOnTheSizeOfTheJoin) {
    const QString pipe = pipeSource();
    const QString truncated = randomFile(QStringLiteral("truncated.mpg"), 30000);
    const QString kept = randomFile(QStringLiteral("kept.mpg"), 30000);
    bed.makeMpegList({pipe, truncated, kept}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    startJoin(output);
    // The pipe gives nothing, as its size said.
    feedPipe(pipe, [&] {
        ASSERT_TRUE(QFile::resize(truncated, 1000));
        sources.remember(truncated);
    });
    expectFailed(output, joining(), truncated,
                 QStringLiteral("its size changed during the join, from 30000 bytes to 1000 "
                                "bytes"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, SourceDeletedBeforeTheFirstCopy_FailsAndTheFixNeverRuns) {
    const QString one = mp3(QStringLiteral("one.mp3"), 440);
    const QString two = mp3(QStringLiteral("two.mp3"), 550);
    const QString three = mp3(QStringLiteral("three.mp3"), 660);
    bed.makeMp3List({one, two, three});
    const QString output = bed.dir.path() + QStringLiteral("/joined.mp3");
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    startJoin(output);
    ASSERT_TRUE(QFile::remove(one));
    sources.forget(one);
    runToTheEnd();
    StopLogging();
    expectFailed(output, joining(), one, QStringLiteral("No such file or directory"));
    EXPECT_EQ(bed.state.operationTag(), QStringLiteral("1"));
    // The debug log records the failure, and no fix after it.
    const QString text = QString::fromUtf8(JoinRunTestBed::readFile(log));
    EXPECT_TRUE(text.contains(QStringLiteral("\nFailed: Operation 1 of 2 (joining the files) | ") +
                              one + QStringLiteral(" | No such file or directory\n")))
        << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("Fixing MP3 File...")));
    close();
    expectCleanEnd(output);
    EXPECT_FALSE(QFile::exists(one));
}

TEST_F(JoinFaultTest, SourceUnreadable_FailsOnIt) {
    // A source that is no longer a file the copy can read: a folder stands
    // under its name.
    const QString output = startMp3Join();
    const QString two = mediaPath(QStringLiteral("two.mp3"));
    ASSERT_TRUE(QFile::remove(two));
    sources.forget(two);
    ASSERT_TRUE(QDir().mkdir(two));
    runToTheEnd();
    expectFailed(output, joining(), two, QStringLiteral("Is a directory"));
    close();
    expectCleanEnd(output);
    EXPECT_TRUE(QFileInfo(two).isDir());
}

// ---- the fix step fails, is killed or loses its tool or its script ----

// The list holds a file of random bytes as an MP3 between two real ones, in a
// folder whose name holds ": ". The raw join holds its bytes, but the fix tool
// reads no audio frame in them: the join fails on that file rather than
// finish without it.
TEST_F(JoinFaultTest, SourceThatIsNoMpegAudio_FailsNamingIt_FolderWithColonAndBlank) {
    const QString output = startJoinWithJunkInLiveTokyo();
    runToTheEnd();
    expectFailed(output, fixing(), junkSource,
                 QStringLiteral("no MPEG audio Layer III frame could be read in it"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, SourceThatIsNoMpegAudio_TagsOff_FailsNamingIt) {
    Settings::SetJoinWriteTagsAndChapters(0);
    const QString output = startJoinWithJunkInLiveTokyo();
    runToTheEnd();
    Settings::SetJoinWriteTagsAndChapters(1);
    expectFailed(output, fixing(), junkSource,
                 QStringLiteral("no MPEG audio Layer III frame could be read in it"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixToolExitsWithAnError_Fails) {
    // MPEG-2 video that is no MPEG at all: the remake refuses it.
    const QString output = startRandomMpegJoin(QStringLiteral("MPEG-2V"));
    runToTheEnd();
    expectFailed(output, fixing(), output + QStringLiteral(".vlr.mpg"),
                 QStringLiteral("Invalid data found when processing input"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixToolMissingAtOperation2_Fails) {
    const QString output = startMp3Join();
    // The first script ends; before the next tick the tool copies vanish.
    runOperation1();
    ASSERT_TRUE(QFile::remove(bed.appData + QStringLiteral("/MP3.exe")));
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 30000));
    expectFailed(output, fixing(), bed.appData + QStringLiteral("/MP3.exe"),
                 QStringLiteral("No such file or directory"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixScriptMissingAtOperation2_FailsWithinTwoSeconds) {
    const QString output = startMp3Join();
    JoinRun& run = runOperation1();
    const QString script = appDataPath(QStringLiteral("MP3.bat"));
    ASSERT_TRUE(QFile::remove(script));
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    // Its shell ends at once and nothing will remove the marker.
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 2000))
        << bed.state.operationText().toStdString();
    expectFailed(output, fixing(), script,
                 QStringLiteral("the script ended before its work was done"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixToolKilledFromOutside_FailsAndLeavesNothingRunning) {
    const QString output = startMp3Join();
    JoinRun& run = runOperation1();
    // Whatever the tool copy holds, it is ended by its copy's name; a copy
    // that works slowly makes sure it is caught while it runs.
    slowFixTool();
    run.tick();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return fixToolRuns(); }, 30000))
        << JoinProcessesOf(bed).join(u'\n').toStdString();
    KillProcessByName(QStringLiteral("MP3.exe"), bed.appData);
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 30000))
        << bed.state.operationText().toStdString();
    expectFailed(output, fixing(), output, QStringLiteral("Killed"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFolderRemovedDuringOperation1_Fails) {
    // The first item is a pipe: the script waits on it while the test takes
    // the output folder away with the partial join in it. The copies write
    // on into the open TempFile, which has no name any more; the check after
    // them finds no TempFile.
    const QString pipe = pipeSource();
    const QString second = randomFile(QStringLiteral("second.mpg"), 30000);
    bed.makeMpegList({pipe, second}, QString());
    const QString folder = bed.dir.path() + QStringLiteral("/out");
    QDir().mkpath(folder);
    const QString output = folder + QStringLiteral("/joined.mpg");
    startJoin(output);
    feedPipe(pipe, [&] { ASSERT_TRUE(QDir(folder).removeRecursively()); });
    expectFailed(output, joining(), output + QStringLiteral(".vlr.mpg"),
                 QStringLiteral("No such file or directory"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, OutputFolderRemovedDuringOperation2_Fails) {
    // The fix tool is held still once it runs; meanwhile the output folder
    // goes, with TempFile and the part of the output the tool has written.
    Mp3Options options;
    options.seconds = 60;
    const QString one = MakeMp3(bed.media, QStringLiteral("one.mp3"), options);
    const QString two = MakeMp3(bed.media, QStringLiteral("two.mp3"), options);
    ASSERT_FALSE(one.isEmpty() || two.isEmpty()) << LastMediaMakerError().toStdString();
    sources.remember(one);
    sources.remember(two);
    bed.makeMp3List({one, two});
    const QString folder = bed.dir.path() + QStringLiteral("/out");
    QDir().mkpath(folder);
    const QString output = folder + QStringLiteral("/joined.mp3");
    startJoin(output);
    JoinRun& run = bed.makeRun();
    run.load(false);
    const QString tool = bed.appData + QStringLiteral("/MP3.exe");
    qint64 pid = 0;
    ASSERT_TRUE(bed.tickUntil(
        [&] {
            for (const QString& process : JoinProcessesOf(bed)) {
                const qint64 id = process.section(u' ', 0, 0).toLongLong();
                if (ExecutablePathOf(id) == tool && ::kill(static_cast<pid_t>(id), SIGSTOP) == 0) {
                    pid = id;
                    return true;
                }
            }
            return bed.finished();
        },
        60000));
    ASSERT_GT(pid, 0) << "the fix tool ended before it was seen";
    // It runs in short slices until it has opened the output.
    while (!QFileInfo::exists(output) && ExecutablePathOf(pid) == tool) {
        ::kill(static_cast<pid_t>(pid), SIGCONT);
        QThread::usleep(200);
        ::kill(static_cast<pid_t>(pid), SIGSTOP);
    }
    ASSERT_TRUE(QFileInfo::exists(output));
    ASSERT_TRUE(QDir(folder).removeRecursively());
    ::kill(static_cast<pid_t>(pid), SIGCONT);
    ASSERT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 60000));
    expectFailed(output, fixing(), output, QStringLiteral("No such file or directory"));
    close();
    expectCleanEnd(output);
}

// ---- the shell of a script is killed or cannot be started ----

TEST_F(JoinFaultTest, FirstScriptShellKilled_FailsWithinTwoSeconds_AndEndsItsCopy) {
    // The first item is a pipe: the script's copy waits on it while the test
    // kills the shell that runs the script, and only the shell.
    const QString pipe = pipeSource();
    const QString second = randomFile(QStringLiteral("second.mpg"), 30000);
    bed.makeMpegList({pipe, second}, QString());
    const QString output = bed.dir.path() + QStringLiteral("/joined.mpg");
    startJoin(output);
    JoinRun& run = bed.makeRun();
    run.load(true);
    QFile feed(pipe);
    ASSERT_TRUE(feed.open(QIODevice::WriteOnly));  // blocks until the copy reads
    ASSERT_EQ(::kill(static_cast<pid_t>(run.firstScriptProcessId()), SIGKILL), 0);
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 2000))
        << bed.state.operationText().toStdString();
    // The copy that the shell left behind has been ended: nothing reads the
    // pipe any more.
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return !pipeHasReader(pipe); }, 2000));
    feed.close();
    expectFailed(output, joining(), appDataPath(QStringLiteral("TempFile.bat")),
                 QStringLiteral("Killed"));
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FirstScriptShellCannotStart_FailsWithinTwoSeconds_AndLogsIt) {
    const QString output = startMp3Join();
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    const QString shell = bed.dir.path() + QStringLiteral("/no shell here");
    const QString previous = JoinRun::setScriptShell(shell);
    bed.makeRun().load(true);
    JoinRun::setScriptShell(previous);
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 2000))
        << bed.state.operationText().toStdString();
    StopLogging();
    expectFailed(output, joining(), shell, QStringLiteral("No such file or directory"));
    const QString text = QString::fromUtf8(JoinRunTestBed::readFile(log));
    EXPECT_TRUE(text.contains(QStringLiteral("\nFailed: ") + joining() + QStringLiteral(" | ") +
                              shell + QStringLiteral(" | No such file or directory\n")))
        << text.toStdString();
    close();
    expectCleanEnd(output);
}

TEST_F(JoinFaultTest, FixScriptShellKilled_FailsWithinTwoSeconds_AndEndsItsTool) {
    const QString output = startMp3Join();
    JoinRun& run = runOperation1();
    slowFixTool();
    run.tick();
    ASSERT_EQ(bed.state.operationText(), QStringLiteral("Operation 2 of 2"));
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return fixToolRuns(); }, 30000))
        << JoinProcessesOf(bed).join(u'\n').toStdString();
    ASSERT_EQ(::kill(static_cast<pid_t>(run.launcher()->processId()), SIGKILL), 0);
    EXPECT_TRUE(bed.tickUntil([&] { return bed.finished(); }, 2000))
        << bed.state.operationText().toStdString();
    expectFailed(output, fixing(), appDataPath(QStringLiteral("MP3.bat")),
                 QStringLiteral("Killed"));
    // The tool that the shell left behind has been ended with it, before the
    // clean-up of "&Close" would end it by name.
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return !fixToolRuns(); }, 2000))
        << JoinProcessesOf(bed).join(u'\n').toStdString();
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
    const QString output = startMp3Join();
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
