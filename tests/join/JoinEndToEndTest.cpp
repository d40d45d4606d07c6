#include <gtest/gtest.h>

#include <sys/stat.h>
#include <QCryptographicHash>
#include <QMap>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "media/MediaInfoFile.h"
#include "support/MediaMaker.h"

namespace {

QByteArray hashOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result();
}

double ffprobeSeconds(const QString& path) {
    return RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                       QStringLiteral("-show_entries"), QStringLiteral("format=duration"),
                       QStringLiteral("-of"), QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed()
        .toDouble();
}

// The audio packets (MPEG audio frames) that the demuxer reads from a file.
long long audioFrames(const QString& path) {
    return RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                       QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                       QStringLiteral("-count_packets"), QStringLiteral("-show_entries"),
                       QStringLiteral("stream=nb_read_packets"), QStringLiteral("-of"),
                       QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed()
        .toLongLong();
}

double mediaInfoSeconds(const QString& path) {
    MediaInfoFile file(path);
    return file.inform(QStringLiteral("General;%Duration%")).toDouble() / 1000.0;
}

// Every process whose executable lies in the given folder.
QList<qint64> processesIn(const QString& folder) {
    QList<qint64> found;
    const QStringList entries =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        bool ok = false;
        const qint64 pid = entry.toLongLong(&ok);
        if (!ok) {
            continue;
        }
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z ")) {
            continue;  // ended, not yet reaped
        }
        if (ExecutablePathOf(pid).startsWith(folder + u'/')) {
            found << pid;
        }
    }
    return found;
}

class JoinEndToEndTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HaveFfmpeg());
        // The build's own install folder holds the real tools; a build without
        // them gets copies here.
        SetInstallFolderOverride(QString());
        if (!QFile::exists(InstallFolder() + QStringLiteral("/MP3.dll")) ||
            !QFile::exists(InstallFolder() + QStringLiteral("/MPEG.dll")) ||
            !QFile::exists(InstallFolder() + QStringLiteral("/MPEG2.dll"))) {
            SetInstallFolderOverride(bed.install);
            bed.putRealTools();
        }
    }

    void fillList(const QString& listType, const QStringList& paths) {
        MainModel& model = bed.model;
        model.state.setListType(listType);
        ClearColumns(model);
        AddSharedColumns(model);
        listType == QStringLiteral("MP3") ? AddMP3Columns(model) : AddMPEGColumns(model);
        model.items.clearRows();
        for (const QString& path : paths) {
            const int row = model.items.addRow(QFileInfo(path).fileName());
            model.items.setCell(row, 3, path);
            FillListItem(model, 0);
        }
        UpdateListTotals(model);
        for (const QString& path : paths) {
            hashes[path] = hashOf(path);
        }
    }

    // StartJoin with the output chosen in the save dialog, then the run on its
    // own timers to its end, then the click on "&Close".
    void join(const QString& output) {
        bed.questions.chooseFile(output);
        ASSERT_TRUE(StartJoin(bed.model));
        JoinRun& run = bed.makeRun();
        run.load(true);
        ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 180000))
            << bed.state.operationText().toStdString();
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
        EXPECT_EQ(bed.state.cancelButtonCaption(), QStringLiteral("&Close"));
        EXPECT_TRUE(bed.state.optionsButtonEnabled());
        int closeRequests = 0;
        QObject::connect(&bed.state, &JoinWizardState::closeRequested, [&] { ++closeRequests; });
        run.cancelClicked();
        EXPECT_EQ(closeRequests, 1);
    }

    // What a finished join must leave: the output, nothing in AppDataFolder
    // but the settings, no temporary file, the sources as they were.
    void expectCleanEnd(const QString& output) {
        EXPECT_TRUE(QFileInfo(output).size() > 0);
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mpg")));
        QStringList left = bed.appDataEntries();
        left.removeAll(QStringLiteral("Settings.ini"));
        EXPECT_EQ(left, QStringList());
        for (auto it = hashes.cbegin(); it != hashes.cend(); ++it) {
            EXPECT_EQ(hashOf(it.key()), it.value()) << it.key().toStdString();
        }
        EXPECT_EQ(processesIn(bed.dir.path()), QList<qint64>());
    }

    QString makeMp3(const QString& name, double seconds, int vbrQuality, int hz,
                    bool tagged = false) {
        Mp3Options options;
        options.id3v1 = tagged;
        options.id3v2 = tagged;
        if (tagged) {
            options.metadata = {{QStringLiteral("title"), QStringLiteral("First Song")},
                                {QStringLiteral("artist"), QStringLiteral("First Band")}};
        }
        options.seconds = seconds;
        options.vbrQuality = vbrQuality;
        options.frequencyHz = hz;
        const QString path = MakeMp3(bed.media, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    QString makeMpeg(const QString& name, int version, double seconds) {
        MpegOptions options;
        options.mpegVersion = version;
        options.seconds = seconds;
        const QString path = MakeMpeg(bed.media, name, options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        return path;
    }

    void expectMp3Join(const QStringList& sources, const QString& output) {
        double sum = 0;
        long long frames = 0;
        for (const QString& source : sources) {
            sum += ffprobeSeconds(source);
            frames += audioFrames(source);
        }
        const double probed = ffprobeSeconds(output);
        const double informed = mediaInfoSeconds(output);
        EXPECT_NEAR(probed, sum, sum * 0.01);
        EXPECT_NEAR(informed, sum, sum * 0.01);
        const long long outputFrames = audioFrames(output);
        EXPECT_GE(outputFrames, frames - 2);
        expectNoTag(output);
        std::printf(
            "[ MP3 join ] sum of inputs %.3f s, ffprobe %.3f s, MediaInfo %.3f s, "
            "frames %lld of %lld (%lld extra)\n",
            sum, probed, informed, outputFrames, frames, outputFrames - frames);
    }

    // The joined file carries no tag of its sources: no ID3v2 header at the
    // front, no ID3v1 block at the end, no title or artist that a player shows.
    static void expectNoTag(const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_NE(file.read(3), QByteArray("ID3"));
        ASSERT_TRUE(file.seek(file.size() - 128));
        EXPECT_NE(file.read(3), QByteArray("TAG"));
        const QString tags = RunFfprobe(
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
             QStringLiteral("format_tags:stream=codec_type"), QStringLiteral("-of"),
             QStringLiteral("default=nw=1"), path});
        EXPECT_EQ(tags.trimmed().toStdString(), "codec_type=audio");
    }

    JoinRunTestBed bed;
    QMap<QString, QByteArray> hashes;
};

}  // namespace

TEST_F(JoinEndToEndTest, Mp3Cbr_FinishedWithWholeLengthInHeader) {
    const QStringList sources = {makeMp3(QStringLiteral("one.mp3"), 3, -1, 440, true),
                                 makeMp3(QStringLiteral("two.mp3"), 4, -1, 550),
                                 makeMp3(QStringLiteral("three.mp3"), 5, -1, 660)};
    fillList(QStringLiteral("MP3"), sources);
    const QString output = bed.media + QStringLiteral("/joined.mp3");
    join(output);
    expectMp3Join(sources, output);
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, Mp3Vbr_FinishedWithWholeLengthInHeader) {
    const QStringList sources = {makeMp3(QStringLiteral("one.mp3"), 3, 4, 440, true),
                                 makeMp3(QStringLiteral("two.mp3"), 4, 4, 550),
                                 makeMp3(QStringLiteral("three.mp3"), 5, 4, 660)};
    fillList(QStringLiteral("MP3"), sources);
    const QString output = bed.media + QStringLiteral("/joined.mp3");
    join(output);
    expectMp3Join(sources, output);
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, Mpeg1V_JoinedByTheMpeg1Joiner) {
    // The joiner loses a fraction of a second at each seam, so the sources are
    // long enough for that to stay within the measure.
    const QStringList sources = {makeMpeg(QStringLiteral("one.mpg"), 1, 20),
                                 makeMpeg(QStringLiteral("two.mpg"), 1, 30)};
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_EQ(bed.model.items.cell(1, 4), QStringLiteral("MPEG-1V"));
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    const double sum = ffprobeSeconds(sources[0]) + ffprobeSeconds(sources[1]);
    EXPECT_NEAR(ffprobeSeconds(output), sum, sum * 0.02);
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, Mpeg2V_RemadeByTheMpeg2Tool) {
    const QStringList sources = {makeMpeg(QStringLiteral("one.mpg"), 2, 2),
                                 makeMpeg(QStringLiteral("two.mpg"), 2, 3)};
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_EQ(bed.model.items.cell(1, 4), QStringLiteral("MPEG-2V"));
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    const double sum = ffprobeSeconds(sources[0]) + ffprobeSeconds(sources[1]);
    EXPECT_NEAR(ffprobeSeconds(output), sum, sum * 0.02);
    EXPECT_NE(hashOf(output), QByteArray());
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, OtherMpeg_RawJoinRenamed) {
    MpegOptions options;
    options.withVideo = false;  // an audio-only program stream: no video codec
    const QStringList sources = {MakeMpeg(bed.media, QStringLiteral("one.mpg"), options),
                                 MakeMpeg(bed.media, QStringLiteral("two.mpg"), options)};
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_NE(bed.model.items.cell(1, 4), QStringLiteral("MPEG-1V"));
    ASSERT_NE(bed.model.items.cell(1, 4), QStringLiteral("MPEG-2V"));
    if (bed.model.state.listStatus() == QStringLiteral("Red")) {
        bed.model.state.setListStatusText(QStringLiteral("Orange"));
    }
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    EXPECT_EQ(JoinRunTestBed::readFile(output),
              JoinRunTestBed::readFile(sources[0]) + JoinRunTestBed::readFile(sources[1]));
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, OddFileNames_JoinAndNothingInThemRuns) {
    // A name that, were it ever run, would leave its mark at an absolute path
    // whatever the folder the script stands in at that moment.
    const QString mark = bed.dir.path() + QStringLiteral("/pwned-anywhere");
    qputenv("VELMORA_TEST_MARK", mark.toUtf8());
    const QStringList names = {
        QStringLiteral("mark $(touch \"$VELMORA_TEST_MARK\") `touch \"$VELMORA_TEST_MARK\"`.mp3"),
        QStringLiteral("it's \"quoted\" $(touch pwned).mp3"),
        QStringLiteral("`touch pwned2` & echo; 100% *.mp3"),
        QStringLiteral("-leading dash.mp3"),
        QString::fromUtf8("Ünïcödé ñ ß.mp3"),
        QStringLiteral("new\nline $HOME.mp3"),
    };
    QStringList sources;
    int hz = 300;
    for (const QString& name : names) {
        const QString plain = makeMp3(QStringLiteral("plain%1.mp3").arg(hz), 2, 4, hz);
        const QString odd = bed.media + u'/' + name;
        ASSERT_TRUE(QFile::rename(plain, odd));
        sources << odd;
        hz += 100;
    }
    fillList(QStringLiteral("MP3"), sources);
    const QString output = bed.media + QStringLiteral("/out $(touch pwned3) 'x' `id`.mp3");
    join(output);
    expectMp3Join(sources, output);
    expectCleanEnd(output);
    qunsetenv("VELMORA_TEST_MARK");
    EXPECT_FALSE(QFile::exists(mark));
    for (const QString& folder :
         {bed.dir.path(), bed.media, bed.appData, QDir::currentPath(), QDir::rootPath()}) {
        for (const char* name : {"pwned", "pwned2", "pwned3"}) {
            EXPECT_FALSE(QFile::exists(folder + u'/' + QLatin1String(name)))
                << folder.toStdString() << " " << name;
        }
    }
}

TEST_F(JoinEndToEndTest, DebugLog_RecordsOfAJoin) {
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    const QStringList sources = {makeMp3(QStringLiteral("one.mp3"), 2, -1, 440),
                                 makeMp3(QStringLiteral("two.mp3"), 2, -1, 550)};
    fillList(QStringLiteral("MP3"), sources);
    const QString output = bed.media + QStringLiteral("/joined.mp3");
    join(output);
    StopLogging();
    const QString text = QString::fromUtf8(JoinRunTestBed::readFile(log));
    const QString temp = output + QStringLiteral(".vlr.mp3");
    // Each record in its place; tool output comes between the size records.
    const QStringList records = {
        bed.model.items.cells(1).join(u'|') + u'|',
        bed.model.items.cells(2).join(u'|') + u'|',
        QStringLiteral("TempFile=") + temp,
        QStringLiteral("1BAT=cat '%1' >> '%2'").arg(sources[1], temp),
        QStringLiteral("BAT1 Launched."),
        QStringLiteral("OutputFile=") + output,
        // The size that the last tick of JoinOperation 1 saw.
        QStringLiteral("Operation1 Size="),
        QStringLiteral("Operation2 Size="),
    };
    qsizetype from = 0;
    for (const QString& record : records) {
        const qsizetype at = text.indexOf(record, from);
        EXPECT_GE(at, from) << record.toStdString();
        if (at >= 0) {
            from = at + record.size();
        }
    }
    EXPECT_FALSE(text.contains(QStringLiteral("1BAT=cat '%1'").arg(sources[0])));
    // The fix script's output, as its pieces came, behind the first operation.
    EXPECT_GT(text.indexOf(QStringLiteral("Fixing MP3 File...")),
              text.indexOf(QStringLiteral("Operation1 Size=")));
}

TEST_F(JoinEndToEndTest, CancelInOperation1_EndsTheJoinerAndLeavesNothing) {
    const QString first = makeMpeg(QStringLiteral("one.mpg"), 1, 2);
    // A source that never delivers its bytes: the joiner waits on it.
    const QString stuck = bed.media + QStringLiteral("/stuck.mpg");
    ASSERT_EQ(::mkfifo(stuck.toLocal8Bit().constData(), 0600), 0);
    bed.makeMpegList({first, stuck}, QStringLiteral("MPEG-1V"));
    hashes[first] = hashOf(first);
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    JoinRun& run = bed.makeRun();
    run.load(true);
    ASSERT_TRUE(
        JoinRunTestBed::waitUntil([&] { return !processesIn(bed.appData).isEmpty(); }, 20000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 1 of 2"));
    run.cancelClicked();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(
        JoinRunTestBed::waitUntil([&] { return processesIn(bed.dir.path()).isEmpty(); }, 5000));
    QThread::msleep(300);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mpg")));
    QStringList left = bed.appDataEntries();
    left.removeAll(QStringLiteral("Settings.ini"));
    EXPECT_EQ(left, QStringList());
    EXPECT_EQ(hashOf(first), hashes[first]);
}

TEST_F(JoinEndToEndTest, CancelInOperation2_EndsTheFixerAndLeavesNothing) {
    // A long VBR join: one source many times over keeps the fixer busy.
    const QString source = makeMp3(QStringLiteral("long.mp3"), 120, 4, 440);
    QStringList sources;
    for (int i = 0; i < 60; ++i) {
        sources << source;
    }
    fillList(QStringLiteral("MP3"), sources);
    const QString output = bed.media + QStringLiteral("/joined.mp3");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    JoinRun& run = bed.makeRun();
    run.load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil(
        [&] {
            return bed.state.operationTag() == QStringLiteral("2") &&
                   !processesIn(bed.appData).isEmpty();
        },
        60000));
    run.cancelClicked();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(
        JoinRunTestBed::waitUntil([&] { return processesIn(bed.dir.path()).isEmpty(); }, 5000));
    QThread::msleep(300);
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
    QStringList left = bed.appDataEntries();
    left.removeAll(QStringLiteral("Settings.ini"));
    EXPECT_EQ(left, QStringList());
    EXPECT_EQ(hashOf(source), hashes[source]);
}
