// velmora-cli join, run as a process with no display: the joined files as
// ffprobe, mpg123 and python3-mutagen read them, the same bytes as the
// window's join of the same list, --each, Ctrl-C, and two joins at once.
#include <gtest/gtest.h>

#include <signal.h>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QThread>

#include "app/AppPaths.h"
#include "app/Version.h"
#include "cli/CliTestBed.h"
#include "join/JoinLock.h"
#include "join/JoinRun.h"
#include "join/JoinWizardState.h"
#include "join/StartJoin.h"
#include "list/AddFilesModule.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "platform/ProcessKiller.h"
#include "support/MemoryClipboard.h"
#include "support/MutagenTag.h"
#include "support/RequireFfmpeg.h"
#include "support/ScriptedQuestions.h"

namespace {

double probeSeconds(const QString& path) {
    return ProbeValues(path, {QStringLiteral("format=duration")}).trimmed().toDouble();
}

QStringList chapterTitles(const QJsonObject& tag) {
    QStringList titles;
    for (const QJsonValue& chapter : tag.value(QStringLiteral("chapters")).toArray()) {
        titles << chapter.toObject().value(QStringLiteral("title")).toString();
    }
    return titles;
}

// Every live process whose executable lies below the folder.
QList<qint64> processesBelow(const QString& folder) {
    QList<qint64> found;
    for (const qint64 pid : RunningProcessIds()) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        const bool zombie = stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z ");
        if (!zombie && ExecutablePathOf(pid).startsWith(folder + u'/')) {
            found << pid;
        }
    }
    return found;
}

bool waitFor(const std::function<bool()>& done, int ms) {
    QDeadlineTimer deadline(ms);
    while (!done()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(10);
    }
    return true;
}

class CliJoin : public ::testing::Test {
protected:
    void SetUp() override { REQUIRE_FFMPEG(); }

    // An album of MP3 files with tags, in a folder of its own.
    QStringList makeAlbum(const QString& folder, int count, double seconds = 2.0) {
        QStringList paths;
        for (int i = 1; i <= count; ++i) {
            paths << bed.makeMp3(folder, QStringLiteral("Track %1.mp3").arg(i), 44100, seconds,
                                 300 + 110 * i);
        }
        return paths;
    }

    // An install folder of the program whose tools take their time, so that
    // a join is caught while its fix step runs.
    void useSlowTools() {
        const QString install = bed.root + QStringLiteral("/install");
        QDir().mkpath(install);
        ASSERT_TRUE(
            QFile::copy(CliTestBed::builtProgram(), install + QStringLiteral("/velmora-cli")));
        QFile::setPermissions(install + QStringLiteral("/velmora-cli"),
                              QFile::permissions(CliTestBed::builtProgram()));
        for (const char* name : {"MP3.dll", "MPEG.dll", "MPEG2.dll"}) {
            ASSERT_TRUE(QFile::copy(QStringLiteral(VELMORA_SLOW_TOOL),
                                    install + u'/' + QLatin1String(name)));
        }
        bed.program = install + QStringLiteral("/velmora-cli");
    }

    // Nothing of a join that did not end well: no output, no temporary file,
    // nothing in the per-user folder, no tool running from it.
    void expectNothingLeft(const QString& output) {
        EXPECT_FALSE(QFile::exists(output));
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mpg")));
        EXPECT_EQ(bed.appDataEntries(), QStringList());
        EXPECT_EQ(processesBelow(bed.appData), QList<qint64>());
    }

    CliTestBed bed;
};

}  // namespace

TEST_F(CliJoin, Mp3Album_ReadByFfprobeMpg123AndMutagen) {
    const QStringList album = makeAlbum(bed.media, 3);
    const QString output = bed.root + QStringLiteral("/album.mp3");
    const CliRun run =
        bed.run(QStringList{QStringLiteral("join"), QStringLiteral("-o"), output} + album);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("Progress: 100%"))) << run.err.toStdString();

    double seconds = 0;
    long long frames = 0;
    for (const QString& source : album) {
        seconds += probeSeconds(source);
        frames += ProbeAudioFrames(source);
    }
    EXPECT_NEAR(probeSeconds(output), seconds, 0.2);
    EXPECT_EQ(ProbeAudioFrames(output), frames);
    const Mpg123Decode decoded = DecodeWithMpg123(output);
    EXPECT_EQ(decoded.frames, frames);
    EXPECT_EQ(decoded.complaints, QString());
    const QJsonObject tag = ReadTagWithMutagen(output);
    EXPECT_EQ(tag.value(QStringLiteral("version")).toString(), QStringLiteral("2.3"));
    EXPECT_EQ(chapterTitles(tag), (QStringList{"Track 1.mp3", "Track 2.mp3", "Track 3.mp3"}));
    // Nothing of the join is left but its output.
    EXPECT_EQ(bed.appDataEntries(), QStringList());
    EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
}

TEST_F(CliJoin, DvdLikeMpeg2Title_ReadByFfprobe) {
    const QString a = bed.makeMpeg2(bed.media, QStringLiteral("VTS_01_1.VOB"), 720, 576, 2.0);
    const QString b = bed.makeMpeg2(bed.media, QStringLiteral("VTS_01_2.VOB"), 720, 576, 2.0);
    const QString output = bed.root + QStringLiteral("/title.mpg");
    const CliRun run = bed.run({QStringLiteral("join"), QStringLiteral("-o"), output, a, b});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_NEAR(probeSeconds(output), probeSeconds(a) + probeSeconds(b), 0.3);
    const QString video = RunFfprobe(
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
         QStringLiteral("v:0"), QStringLiteral("-show_entries"),
         QStringLiteral("stream=codec_name,width,height"), QStringLiteral("-of"),
         QStringLiteral("default=nw=1:nk=1"), output});
    EXPECT_EQ(video.split(u'\n', Qt::SkipEmptyParts), (QStringList{"mpeg2video", "720", "576"}));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
}

TEST_F(CliJoin, SameListAsTheWindow_SameBytes) {
    const QStringList album = makeAlbum(bed.media, 3);
    // The same settings for both faces: the program's defaults, in place.
    QDir().mkpath(bed.appData);
    ASSERT_TRUE(QFile::copy(CliTestBed::programFolder() + QStringLiteral("/DefaultSettings.ini"),
                            bed.appData + QStringLiteral("/Settings.ini")));

    // The window's join, driven headless: its list from dropped files, its
    // pre-flight answered through the save dialog, its run on its timers.
    const QString windowOutput = bed.root + QStringLiteral("/window.mp3");
    {
        SetAppDataFolder(bed.appData);
        SetInstallFolderOverride(CliTestBed::programFolder());
        const QString appData = bed.appData + u'/';
        const ProcessKillFilter previous = setProcessKillFilter(
            [appData](qint64 pid) { return ExecutablePathOf(pid).startsWith(appData); });
        ScriptedQuestions questions;
        MemoryClipboard clipboard;
        MainModel model(questions, clipboard);
        NewItemList(model, QStringLiteral("MP3"));
        AddDroppedFiles(model, album);
        questions.chooseFile(windowOutput);
        ASSERT_TRUE(StartJoin(model));
        JoinWizardState state;
        JoinRun run(model, state);
        run.load(true);
        ASSERT_TRUE(
            waitFor([&] { return state.operationText() == QStringLiteral("Finished!"); }, 120000))
            << state.operationText().toStdString();
        run.cancelClicked();
        setProcessKillFilter(previous);
        SetInstallFolderOverride(QString());
        SetAppDataFolder(QString());
    }
    ReleaseJoinLock();

    // The window remembered its output folder in them; the command line leaves
    // them as they are now.
    const QByteArray settings = CliTestBed::readFile(bed.appData + QStringLiteral("/Settings.ini"));
    // Its output goes to another folder than the window's, which the window
    // would remember.
    QDir().mkpath(bed.root + QStringLiteral("/cli"));
    const QString cliOutput = bed.root + QStringLiteral("/cli/cli.mp3");
    const CliRun run =
        bed.run(QStringList{QStringLiteral("join"), QStringLiteral("-o"), cliOutput} + album);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QByteArray windowBytes = CliTestBed::readFile(windowOutput);
    EXPECT_GT(windowBytes.size(), 10000);
    EXPECT_TRUE(windowBytes == CliTestBed::readFile(cliOutput));
    // The command line read the settings and wrote nothing to them.
    EXPECT_EQ(CliTestBed::readFile(bed.appData + QStringLiteral("/Settings.ini")), settings);
}

TEST_F(CliJoin, SettingsWithTagsOff_OrNoTags_GiveNoTag) {
    const QStringList album = makeAlbum(bed.media, 2);
    QDir().mkpath(bed.appData);
    const QByteArray settings = "[Join]\r\nWriteTagsAndChapters=0\r\n";
    QFile file(bed.appData + QStringLiteral("/Settings.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(settings);
    file.close();
    const QString output = bed.root + QStringLiteral("/plain.mp3");
    ASSERT_EQ(
        bed.run(QStringList{QStringLiteral("join"), QStringLiteral("-o"), output} + album).exitCode,
        0);
    EXPECT_TRUE(ReadTagWithMutagen(output).value(QStringLiteral("version")).isNull());
    EXPECT_EQ(CliTestBed::readFile(bed.appData + QStringLiteral("/Settings.ini")), settings);

    QFile::remove(bed.appData + QStringLiteral("/Settings.ini"));
    const QString untagged = bed.root + QStringLiteral("/untagged.mp3");
    ASSERT_EQ(bed.run(QStringList{QStringLiteral("join"), QStringLiteral("--no-tags"),
                                  QStringLiteral("-o"), untagged} +
                      album)
                  .exitCode,
              0);
    EXPECT_TRUE(ReadTagWithMutagen(untagged).value(QStringLiteral("version")).isNull());
    EXPECT_FALSE(QFile::exists(bed.appData + QStringLiteral("/Settings.ini")));
}

TEST_F(CliJoin, DebugOption_WritesTheJoinIntoTheDebugLog) {
    const QStringList album = makeAlbum(bed.media, 2);
    const QString output = bed.root + QStringLiteral("/album.mp3");
    ASSERT_EQ(bed.run(QStringList{QStringLiteral("--debug"), QStringLiteral("join"),
                                  QStringLiteral("-o"), output} +
                      album)
                  .exitCode,
              0);
    const QStringList entries = bed.appDataEntries();
    ASSERT_EQ(entries.size(), 1) << entries.join(u' ').toStdString();
    EXPECT_TRUE(entries.first().endsWith(QStringLiteral(".log")));
    const QString log =
        QString::fromUtf8(CliTestBed::readFile(bed.appData + u'/' + entries.first()));
    EXPECT_TRUE(log.contains(QStringLiteral("LogFile created on: "))) << log.toStdString();
    EXPECT_TRUE(log.contains(QStringLiteral("BAT1 Launched.")));
    EXPECT_TRUE(log.contains(QStringLiteral("OutputFile=") + output));
}

TEST_F(CliJoin, OutputThatExists_RefusedWithoutOverwrite) {
    const QStringList album = makeAlbum(bed.media, 2);
    const QString output = bed.root + QStringLiteral("/album.mp3");
    QFile old(output);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old bytes");
    old.close();
    const QStringList arguments =
        QStringList{QStringLiteral("join"), QStringLiteral("-o"), output} + album;
    const CliRun refused = bed.run(arguments);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("--overwrite"))) << refused.err.toStdString();
    EXPECT_EQ(CliTestBed::readFile(output), QByteArray("old bytes"));
    EXPECT_EQ(bed.appDataEntries(), QStringList());

    EXPECT_EQ(bed.run(QStringList{QStringLiteral("--quiet")} + arguments +
                      QStringList{QStringLiteral("--overwrite")})
                  .exitCode,
              0);
    EXPECT_GT(QFileInfo(output).size(), 10000);
}

TEST_F(CliJoin, RedOrTooShortList_RefusedWithNothingLeft) {
    const QString a = bed.makeMp3(bed.media, QStringLiteral("a.mp3"));
    const QString output = bed.root + QStringLiteral("/one.mp3");
    const CliRun run = bed.run({QStringLiteral("join"), QStringLiteral("-o"), output, a});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("error: Please, Add at least 2 files to your list.")))
        << run.err.toStdString();
    expectNothingLeft(output);
}

TEST_F(CliJoin, EachOfThreeFolders_OneRedIsRefusedTheOthersJoined) {
    const QString folders = bed.root + QStringLiteral("/library");
    const QString first = folders + QStringLiteral("/First Book");
    const QString red = folders + QStringLiteral("/Lonely");
    const QString third = folders + QStringLiteral("/Third Book");
    makeAlbum(first, 2);
    bed.makeMp3(red, QStringLiteral("only.mp3"));
    makeAlbum(third, 3);
    const QString out = bed.root + QStringLiteral("/out");
    const CliRun run = bed.run({QStringLiteral("join"), QStringLiteral("--each"),
                                QStringLiteral("-o"), out, first, red, third});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("refused: ") + red)) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("3 folders: 2 joined, 1 refused, 0 failed")));
    EXPECT_EQ(chapterTitles(ReadTagWithMutagen(out + QStringLiteral("/First Book.mp3"))),
              (QStringList{"Track 1.mp3", "Track 2.mp3"}));
    EXPECT_EQ(chapterTitles(ReadTagWithMutagen(out + QStringLiteral("/Third Book.mp3"))),
              (QStringList{"Track 1.mp3", "Track 2.mp3", "Track 3.mp3"}));
    EXPECT_FALSE(QFile::exists(out + QStringLiteral("/Lonely.mp3")));
    EXPECT_EQ(bed.appDataEntries(), QStringList());
}

TEST_F(CliJoin, FolderWithTwoAndTen_JoinsTwoFirst) {
    const QString folder = bed.root + QStringLiteral("/numbers");
    bed.makeMp3(folder, QStringLiteral("Part 10.mp3"), 44100, 1.0, 880);
    bed.makeMp3(folder, QStringLiteral("Part 2.mp3"), 44100, 1.0, 440);
    const QString output = bed.root + QStringLiteral("/numbers.mp3");
    const CliRun run = bed.run({QStringLiteral("join"), QStringLiteral("-o"), output, folder});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(chapterTitles(ReadTagWithMutagen(output)),
              (QStringList{"Part 2.mp3", "Part 10.mp3"}));
}

TEST_F(CliJoin, CtrlCWhileTheFixRuns_LeavesNothingAndExits130) {
    useSlowTools();
    const QStringList album = makeAlbum(bed.media, 2);
    const QString output = bed.root + QStringLiteral("/album.mp3");
    const std::unique_ptr<QProcess> process =
        bed.start(QStringList{QStringLiteral("join"), QStringLiteral("-o"), output} + album);
    QString err;
    // Halfway: the joined bytes are there, the fix step runs.
    ASSERT_TRUE(waitFor(
        [&] {
            err += QString::fromUtf8(process->readAllStandardError());
            return err.contains(QStringLiteral("Progress: 50%")) &&
                   !processesBelow(bed.appData).isEmpty();
        },
        60000))
        << err.toStdString();
    ::kill(static_cast<pid_t>(process->processId()), SIGINT);
    const CliRun run = CliTestBed::finish(*process, 60000);
    EXPECT_EQ(run.exitCode, 130) << (err + run.err).toStdString();
    EXPECT_FALSE(run.crashed);
    expectNothingLeft(output);
}

TEST_F(CliJoin, TwoJoinsAtOnce_BothRightOrTheSecondRefused) {
    const QStringList album = makeAlbum(bed.media, 3, 20.0);
    const QString outputA = bed.root + QStringLiteral("/a.mp3");
    const QString outputB = bed.root + QStringLiteral("/b.mp3");
    const std::unique_ptr<QProcess> a =
        bed.start(QStringList{QStringLiteral("join"), QStringLiteral("-o"), outputA} + album);
    const std::unique_ptr<QProcess> b =
        bed.start(QStringList{QStringLiteral("join"), QStringLiteral("-o"), outputB} + album);
    const CliRun runA = CliTestBed::finish(*a);
    const CliRun runB = CliTestBed::finish(*b);
    const QString refusal = QStringLiteral("Another running copy of Velmora is joining files");
    int joined = 0;
    for (const auto& [run, output] : {std::pair{runA, outputA}, std::pair{runB, outputB}}) {
        if (run.exitCode == 0) {
            ++joined;
            EXPECT_EQ(chapterTitles(ReadTagWithMutagen(output)).size(), 3);
            EXPECT_EQ(DecodeWithMpg123(output).complaints, QString());
        } else {
            EXPECT_EQ(run.exitCode, 1);
            EXPECT_TRUE(run.err.contains(refusal)) << run.err.toStdString();
            EXPECT_FALSE(QFile::exists(output));
        }
    }
    EXPECT_GE(joined, 1);
    EXPECT_EQ(bed.appDataEntries(), QStringList());
}

TEST(CliProgram, BadCommandLine_ExitsTwoWithTheUsage) {
    CliTestBed bed;
    for (const QStringList& arguments :
         {QStringList{}, QStringList{QStringLiteral("frobnicate")},
          QStringList{QStringLiteral("join"), QStringLiteral("a.mp3")},
          QStringList{QStringLiteral("check"), QStringLiteral("--bogus"), QStringLiteral("a")}}) {
        const CliRun run = bed.run(arguments);
        EXPECT_EQ(run.exitCode, 2) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(run.err.startsWith(QStringLiteral("error: "))) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("Usage: velmora-cli")));
        EXPECT_EQ(run.out, QString());
    }
    const CliRun help = bed.run({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    for (const char* command : {"info", "check", "join"}) {
        EXPECT_TRUE(help.out.contains(QLatin1String(command)));
    }
    EXPECT_EQ(bed.run({QStringLiteral("--version")}).out.trimmed(),
              QStringLiteral("velmora-cli ") + Version::text());
}

TEST(CliProgram, Linked_WithoutQtWidgetsOrQtGui) {
    QProcess ldd;
    ldd.start(QStringLiteral("ldd"), {CliTestBed::builtProgram()});
    ASSERT_TRUE(ldd.waitForFinished(30000));
    const QString libraries = QString::fromUtf8(ldd.readAllStandardOutput());
    EXPECT_TRUE(libraries.contains(QStringLiteral("libQt6Core"))) << libraries.toStdString();
    EXPECT_FALSE(libraries.contains(QStringLiteral("libQt6Widgets"))) << libraries.toStdString();
    EXPECT_FALSE(libraries.contains(QStringLiteral("libQt6Gui"))) << libraries.toStdString();
}
