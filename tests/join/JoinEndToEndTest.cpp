#include <gtest/gtest.h>

#include <sys/stat.h>
#include <QCryptographicHash>
#include <QLocale>
#include <QMap>
#include <QRegularExpression>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "media/MediaInfoFile.h"
#include "platform/ProcessKiller.h"
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

double mediaInfoSeconds(const QString& path, const QString& stream = QStringLiteral("General")) {
    MediaInfoFile file(path);
    return file.inform(stream + QStringLiteral(";%Duration%")).toDouble() / 1000.0;
}

// What the decoder complains of when it plays the whole file (nothing for a
// clean file). With seamTimestamps false, the notes of a timestamp repeated at
// a seam between two sources are not counted: the remake carries each
// source's timestamps on as they are, and a title made in parts repeats the
// last one of a track where the next part starts.
QString decodeErrors(const QString& path, bool seamTimestamps = true) {
    QStringList lines = FfmpegDecodeErrors(path).split(u'\n', Qt::SkipEmptyParts);
    if (!seamTimestamps) {
        lines.removeIf([](const QString& line) {
            return line.contains(QStringLiteral("non monotonically increasing dts to muxer"));
        });
    }
    return lines.isEmpty() ? QString() : lines.join(u'\n') + u'\n';
}

// The pictures of the first video stream, as the demuxer reads them.
long long videoPictures(const QString& path) {
    return RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                       QStringLiteral("-select_streams"), QStringLiteral("v:0"),
                       QStringLiteral("-count_packets"), QStringLiteral("-show_entries"),
                       QStringLiteral("stream=nb_read_packets"), QStringLiteral("-of"),
                       QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed()
        .toLongLong();
}

// Every process that runs now and has not ended (an ended one waits to be
// reaped as a zombie).
QList<qint64> liveProcesses() {
    QList<qint64> live;
    for (const qint64 pid : RunningProcessIds()) {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
        if (!(stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z "))) {
            live << pid;
        }
    }
    return live;
}

// Every process whose executable lies in the given folder.
QList<qint64> processesIn(const QString& folder) {
    QList<qint64> found;
    for (const qint64 pid : liveProcesses()) {
        if (ExecutablePathOf(pid).startsWith(folder + u'/')) {
            found << pid;
        }
    }
    return found;
}

// Every live process with the given text among its arguments.
QList<qint64> processesNaming(const QString& text) {
    QList<qint64> found;
    for (const qint64 pid : liveProcesses()) {
        QFile cmdline(QStringLiteral("/proc/%1/cmdline").arg(pid));
        if (cmdline.open(QIODevice::ReadOnly) &&
            cmdline.readAll().split('\0').contains(text.toUtf8())) {
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
        expectOnlyTheJoinsTag(output);
        std::printf(
            "[ MP3 join ] sum of inputs %.3f s, ffprobe %.3f s, MediaInfo %.3f s, "
            "frames %lld of %lld (%lld extra)\n",
            sum, probed, informed, outputFrames, frames, outputFrames - frames);
    }

    // Sources of the given MPEG version and lengths in seconds (one.mpg,
    // two.mpg, three.mpg), listed as codec, joined, and checked by every reader.
    void joinMpegOfSeconds(int version, const QList<int>& seconds, const QString& codec) {
        static const QStringList kNames = {QStringLiteral("one.mpg"), QStringLiteral("two.mpg"),
                                           QStringLiteral("three.mpg")};
        QStringList sources;
        for (qsizetype i = 0; i < seconds.size(); ++i) {
            sources << makeMpeg(kNames.at(i), version, seconds.at(i));
        }
        fillList(QStringLiteral("MPEG"), sources);
        ASSERT_EQ(bed.model.items.cell(1, 4), codec);
        const QString output = bed.media + QStringLiteral("/joined.mpg");
        join(output);
        expectMpegJoin(sources, output);
        expectCleanEnd(output);
    }

    // An MPEG join whose length every reader gives as the sum of the sources'
    // lengths (as the list shows them, from MediaInfo), within 1%: MediaInfo
    // for the whole file and for its video stream, and ffprobe; with every
    // picture of the sources in it. For the parts of a title (titleParts, 25
    // pictures a second), whose audio runs a little past their video, the
    // video stream is measured against the time of the sources' pictures, and
    // a timestamp repeated where a part starts is no error.
    void expectMpegJoin(const QStringList& sources, const QString& output,
                        bool titleParts = false) {
        double sum = 0;
        double videoSum = 0;
        double probedSum = 0;
        long long pictures = 0;
        for (const QString& source : sources) {
            sum += mediaInfoSeconds(source);
            videoSum += mediaInfoSeconds(source, QStringLiteral("Video"));
            probedSum += ffprobeSeconds(source);
            pictures += videoPictures(source);
        }
        const double informed = mediaInfoSeconds(output);
        const double informedVideo = mediaInfoSeconds(output, QStringLiteral("Video"));
        const double probed = ffprobeSeconds(output);
        EXPECT_NEAR(informed, sum, sum * 0.01);
        const double videoExpected = titleParts ? static_cast<double>(pictures) / 25.0 : sum;
        EXPECT_NEAR(informedVideo, videoExpected, videoExpected * 0.01);
        EXPECT_NEAR(probed, sum, sum * 0.01);
        EXPECT_NEAR(videoPictures(output), pictures, 1);
        EXPECT_EQ(decodeErrors(output, !titleParts).toStdString(), "");
        std::printf(
            "[ MPEG join ] sources: MediaInfo %.3f s (video %.3f s), ffprobe %.3f s, %lld "
            "pictures; output: MediaInfo %.3f s (video %.3f s), ffprobe %.3f s, %lld pictures\n",
            sum, videoSum, probedSum, pictures, informed, informedVideo, probed,
            videoPictures(output));
    }

    // Every size figure that the wizard showed while the fix of JoinOperation
    // 2 ran (its marker still there), in order, each once.
    void recordOperation2Sizes(QStringList& sizes) {
        QObject::connect(&bed.state, &JoinWizardState::changed, [this, &sizes] {
            if (bed.state.operationTag() != QStringLiteral("2") ||
                !QFileInfo(bed.marker()).isDir()) {
                return;
            }
            // A figure under half a KB shows as "0 KB" from the file, as " KB"
            // from the tool's status line.
            const QString size = bed.state.writtenSizeText();
            const bool zero = size == QStringLiteral("0 KB") || size == QStringLiteral(" KB");
            if (!zero && (sizes.isEmpty() || sizes.last() != size)) {
                sizes << size;
            }
        });
    }

    // A big source (grain on every picture at a high bit rate) listed several
    // times, so that the fix of JoinOperation 2 runs long enough to be seen.
    QStringList bigSources(int version, int times) {
        MpegOptions options;
        options.mpegVersion = version;
        options.seconds = 10;
        options.videoKbps = 20000;
        const QString path = MakeMpeg(bed.media, QStringLiteral("big.mpg"), options);
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        QStringList sources;
        for (int i = 0; i < times; ++i) {
            sources << path;
        }
        return sources;
    }

    // The figures seen must grow, and more than one of them.
    static void expectMovingSizes(const QStringList& sizes) {
        EXPECT_GE(sizes.size(), 2) << sizes.join(u',').toStdString();
        long long previous = 0;
        for (const QString& size : sizes) {
            QString figure = size;
            figure.remove(QStringLiteral(" KB"));
            const long long kilobytes = QLocale().toLongLong(figure);
            EXPECT_GT(kilobytes, previous) << sizes.join(u',').toStdString();
            previous = kilobytes;
        }
        std::printf("[ Operation 2 ] %lld size figures seen: %s\n",
                    static_cast<long long>(sizes.size()), qPrintable(sizes.join(u',')));
    }

    // The joined file carries no tag of its sources, only its own (tags and
    // chapters are on by default): one ID3v2.3 header at the front, no ID3v1
    // block at the end, no source's title among what a player shows, and the
    // encoder named.
    static void expectOnlyTheJoinsTag(const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.read(4), QByteArray("ID3\x03"));
        ASSERT_TRUE(file.seek(file.size() - 128));
        EXPECT_NE(file.read(3), QByteArray("TAG"));
        const QString tags = RunFfprobe(
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
             QStringLiteral("format_tags:stream=codec_type"), QStringLiteral("-of"),
             QStringLiteral("default=nw=1"), path});
        EXPECT_TRUE(tags.startsWith(QStringLiteral("codec_type=audio\n"))) << tags.toStdString();
        EXPECT_FALSE(tags.contains(QStringLiteral("First Song"))) << tags.toStdString();
        EXPECT_TRUE(tags.contains(QStringLiteral("TAG:encoder=Velmora "))) << tags.toStdString();
    }

    // A part of a title as a disc holds it: 4 seconds of video (MPEG-2 at
    // 720x576 in a program stream with DVD navigation packets, or MPEG-1 at
    // 352x288 in an MPEG-1 system stream) and one audio track per codec given
    // ("ac3", "mp2"), each of its own tone and language. With a constant
    // video rate (kbit/s) the encoder fills every picture up to it, so that a
    // few seconds make megabytes.
    QString makeTitlePart(const QString& name, int version, const QStringList& audioCodecs,
                          int seconds = 4, int constantKbps = 0) {
        const QString path = bed.media + u'/' + name;
        QStringList args = {
            QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
            (version == 2 ? QStringLiteral("testsrc=size=720x576:rate=25:duration=%1")
                          : QStringLiteral("testsrc=size=352x288:rate=25:duration=%1"))
                .arg(seconds)};
        for (qsizetype i = 0; i < audioCodecs.size(); ++i) {
            args << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
                 << QStringLiteral("sine=frequency=%1:sample_rate=48000:duration=%2")
                        .arg(440 + 110 * i)
                        .arg(seconds);
        }
        for (qsizetype i = 0; i <= audioCodecs.size(); ++i) {
            args << QStringLiteral("-map") << QString::number(i);
        }
        args << QStringLiteral("-c:v")
             << (version == 2 ? QStringLiteral("mpeg2video") : QStringLiteral("mpeg1video"));
        if (constantKbps > 0) {
            const QString rate = QStringLiteral("%1k").arg(constantKbps);
            args << QStringLiteral("-b:v") << rate << QStringLiteral("-minrate") << rate
                 << QStringLiteral("-maxrate") << rate << QStringLiteral("-bufsize")
                 << QStringLiteral("1835k");
        }
        static const QStringList kLanguages = {QStringLiteral("eng"), QStringLiteral("fre"),
                                               QStringLiteral("ger")};
        for (qsizetype i = 0; i < audioCodecs.size(); ++i) {
            const QString index = QString::number(i);
            args << QStringLiteral("-c:a:") + index << audioCodecs.at(i)
                 << QStringLiteral("-b:a:") + index << QStringLiteral("192k")
                 << QStringLiteral("-metadata:s:a:") + index
                 << QStringLiteral("language=") + kLanguages.at(i);
        }
        args << QStringLiteral("-f")
             << (version == 2 ? QStringLiteral("dvd") : QStringLiteral("mpeg")) << path;
        EXPECT_TRUE(RunFfmpeg(args)) << LastMediaMakerError().toStdString();
        return path;
    }

    // The codec of every stream of a file, in order, as ffprobe lists them
    // ("video:mpeg2video", "audio:ac3", "data:dvd_nav_packet").
    static QStringList streamsOf(const QString& path) {
        const QString text = RunFfprobe(
            {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
             QStringLiteral("stream=codec_type,codec_name"), QStringLiteral("-of"),
             QStringLiteral("compact=p=0:nk=1"), path});
        QStringList streams;
        for (const QString& line : text.split(u'\n', Qt::SkipEmptyParts)) {
            // Name and type, then perhaps the picture's side data.
            const QStringList fields = line.trimmed().split(u'|');
            if (fields.size() >= 2) {
                streams << fields.at(1) + u':' + fields.at(0);
            }
        }
        return streams;
    }

    // A join of the title's parts in the wizard, with the debug log on: the
    // output holds the streams expected, in that order, and lasts the sum of
    // the parts in every reader; the log names what was left out.
    void joinTitle(const QStringList& parts, const QString& codec, const QStringList& expected,
                   const QStringList& leftOut) {
        const QString log = bed.dir.path() + QStringLiteral("/debug.log");
        StartLogging(log, 2);
        fillList(QStringLiteral("MPEG"), parts);
        ASSERT_EQ(bed.model.items.cell(1, 4), codec);
        const QString output = bed.media + QStringLiteral("/joined.mpg");
        join(output);
        StopLogging();
        const QStringList streams = streamsOf(output);
        EXPECT_EQ(streams, expected);
        expectMpegJoin(parts, output, true);
        expectCleanEnd(output);
        const QString text = QString::fromUtf8(JoinRunTestBed::readFile(log));
        titleLog = text;
        for (const QString& stream : leftOut) {
            EXPECT_TRUE(text.contains(QStringLiteral("\nLeft out: ") + stream))
                << stream.toStdString();
        }
        EXPECT_EQ(text.count(QStringLiteral("\nLeft out: ")), leftOut.size());
        std::printf(
            "[ title join ] output streams: %s\n%s", qPrintable(streams.join(u',')),
            qPrintable(RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                                   QStringLiteral("-show_entries"),
                                   QStringLiteral("stream=index,codec_name,id,duration:"
                                                  "format=duration"),
                                   QStringLiteral("-of"), QStringLiteral("compact"), output})));
    }

    // The probe of the remake as the last remake line of the debug log gives
    // it: the bytes and the play time read before the streams are decided,
    // in a line that reads the join as a program stream and holds nothing of
    // the probe.
    static std::pair<qint64, qint64> remakeProbeIn(const QString& logText) {
        static const QRegularExpression remakeLine(QStringLiteral(
            "\\n2BAT=[^\\n]* -fflags nobuffer -f mpeg -analyzeduration (\\d+) -probesize (\\d+) "));
        QRegularExpressionMatch last;
        for (const QRegularExpressionMatch& match : remakeLine.globalMatch(logText)) {
            last = match;
        }
        EXPECT_TRUE(last.hasMatch()) << logText.toStdString();
        return {last.captured(2).toLongLong(), last.captured(1).toLongLong()};
    }

    // Where the first packet of each of the given packet streams starts in a
    // file, found by a plain search for its start code: 0xbd private stream
    // 1, 0xbf navigation, 0xc0 the first MPEG audio track, 0xe0 video. The
    // deepest of them; -1 when one is not there.
    static qint64 deepestStartCode(const QString& path, const QList<int>& codes) {
        const QByteArray bytes = JoinRunTestBed::readFile(path);
        qint64 deepest = 0;
        for (const int code : codes) {
            const qsizetype at =
                bytes.indexOf(QByteArray("\x00\x00\x01", 3) + static_cast<char>(code));
            if (at < 0) {
                return -1;
            }
            deepest = std::max<qint64>(deepest, at);
        }
        return deepest;
    }

    // The remake of the title read up to the deepest first appearance of its
    // streams (depth, in the raw join) and the margin of 5,000,000 bytes, not
    // the whole join; its play time twice the seconds before that part and
    // half a minute, and no more than that.
    void expectProbeBoundedByTheDeepestStream(const QStringList& parts, qint64 depth,
                                              double secondsBefore) {
        qint64 joinBytes = 0;
        for (const QString& part : parts) {
            joinBytes += QFileInfo(part).size();
        }
        const auto [probeBytes, analyzeMicroseconds] = remakeProbeIn(titleLog);
        EXPECT_EQ(probeBytes, depth + 5000000);
        EXPECT_LT(probeBytes, joinBytes);
        EXPECT_GE(analyzeMicroseconds, (2 * secondsBefore * 0.95 + 30) * 1e6);
        EXPECT_LE(analyzeMicroseconds, (2 * secondsBefore * 1.05 + 31) * 1e6);
        std::printf(
            "[ remake probe ] %lld of %lld bytes, %.3f s analysed; deepest stream at %lld\n",
            static_cast<long long>(probeBytes), static_cast<long long>(joinBytes),
            analyzeMicroseconds / 1e6, static_cast<long long>(depth));
    }

    JoinRunTestBed bed;
    QMap<QString, QByteArray> hashes;
    QString titleLog;

    // Starts the join of the filled list into output, cancels as soon as a
    // tool of Operation 2 runs, and checks that the run ends "Cancelled!" with
    // no process, no output, no temporary file and no script left behind and
    // the source unchanged.
    void cancelInOperation2AndExpectNothingLeft(const QString& output, const QString& tempSuffix,
                                                const QString& source) {
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
        EXPECT_FALSE(QFile::exists(output + tempSuffix));
        QStringList left = bed.appDataEntries();
        left.removeAll(QStringLiteral("Settings.ini"));
        EXPECT_EQ(left, QStringList());
        EXPECT_EQ(hashOf(source), hashes[source]);
    }
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

TEST_F(JoinEndToEndTest, Mpeg1V_FourAndThreeSeconds_EveryReaderGivesTheSum) {
    joinMpegOfSeconds(1, {4, 3}, QStringLiteral("MPEG-1V"));
}

TEST_F(JoinEndToEndTest, Mpeg1V_ThreeFiles_EveryReaderGivesTheSum) {
    joinMpegOfSeconds(1, {4, 3, 2}, QStringLiteral("MPEG-1V"));
}

TEST_F(JoinEndToEndTest, Mpeg2V_FourAndThreeSeconds_EveryReaderGivesTheSum) {
    joinMpegOfSeconds(2, {4, 3}, QStringLiteral("MPEG-2V"));
}

TEST_F(JoinEndToEndTest, Mpeg2V_ThreeFiles_EveryReaderGivesTheSum) {
    joinMpegOfSeconds(2, {4, 3, 2}, QStringLiteral("MPEG-2V"));
}

TEST_F(JoinEndToEndTest, DvdTitleOfThreeParts_KeepsVideoAndBothAudioTracks_LeavesOutNavigation) {
    const QStringList ac3AndMp2 = {QStringLiteral("ac3"), QStringLiteral("mp2")};
    const QStringList parts = {makeTitlePart(QStringLiteral("VTS_01_1.VOB"), 2, ac3AndMp2),
                               makeTitlePart(QStringLiteral("VTS_01_2.VOB"), 2, ac3AndMp2),
                               makeTitlePart(QStringLiteral("VTS_01_3.VOB"), 2, ac3AndMp2)};
    ASSERT_EQ(streamsOf(parts[0]),
              QStringList({"data:dvd_nav_packet", "video:mpeg2video", "audio:ac3", "audio:mp2"}));
    joinTitle(parts, QStringLiteral("MPEG-2V"), {"video:mpeg2video", "audio:ac3", "audio:mp2"},
              {"Stream #0:0[0x1bf]: Data: dvd_nav_packet"});
}

TEST_F(JoinEndToEndTest, DvdTitleWhoseSecondAudioStartsInTheLastPart_KeepsIt) {
    const QStringList ac3 = {QStringLiteral("ac3")};
    const QStringList parts = {makeTitlePart(QStringLiteral("VTS_02_1.VOB"), 2, ac3),
                               makeTitlePart(QStringLiteral("VTS_02_2.VOB"), 2, ac3),
                               makeTitlePart(QStringLiteral("VTS_02_3.VOB"), 2,
                                             {QStringLiteral("ac3"), QStringLiteral("mp2")})};
    joinTitle(parts, QStringLiteral("MPEG-2V"), {"video:mpeg2video", "audio:ac3", "audio:mp2"},
              {"Stream #0:0[0x1bf]: Data: dvd_nav_packet"});
}

TEST_F(JoinEndToEndTest, DvdTitleOfTensOfMegabytes_RemakeReadsOnlyUpToTheFirstPartsStreams) {
    const QStringList ac3AndMp2 = {QStringLiteral("ac3"), QStringLiteral("mp2")};
    const QStringList parts = {
        makeTitlePart(QStringLiteral("VTS_03_1.VOB"), 2, ac3AndMp2, 10, 8000),
        makeTitlePart(QStringLiteral("VTS_03_2.VOB"), 2, ac3AndMp2, 10, 8000),
        makeTitlePart(QStringLiteral("VTS_03_3.VOB"), 2, ac3AndMp2, 10, 8000)};
    joinTitle(parts, QStringLiteral("MPEG-2V"), {"video:mpeg2video", "audio:ac3", "audio:mp2"},
              {"Stream #0:0[0x1bf]: Data: dvd_nav_packet"});
    const qint64 depth = deepestStartCode(parts[0], {0xbd, 0xbf, 0xc0, 0xe0});
    ASSERT_GE(depth, 0);
    expectProbeBoundedByTheDeepestStream(parts, depth, 0);
}

TEST_F(JoinEndToEndTest, DvdTitleOfTensOfMegabytes_SecondAudioFirstInTheLastPart_ProbeReachesIt) {
    const QStringList ac3 = {QStringLiteral("ac3")};
    const QStringList parts = {
        makeTitlePart(QStringLiteral("VTS_04_1.VOB"), 2, ac3, 10, 8000),
        makeTitlePart(QStringLiteral("VTS_04_2.VOB"), 2, ac3, 10, 8000),
        makeTitlePart(QStringLiteral("VTS_04_3.VOB"), 2,
                      {QStringLiteral("ac3"), QStringLiteral("mp2")}, 10, 8000)};
    joinTitle(parts, QStringLiteral("MPEG-2V"), {"video:mpeg2video", "audio:ac3", "audio:mp2"},
              {"Stream #0:0[0x1bf]: Data: dvd_nav_packet"});
    const qint64 inLastPart = deepestStartCode(parts[2], {0xc0});
    ASSERT_GE(inLastPart, 0);
    const qint64 depth = QFileInfo(parts[0]).size() + QFileInfo(parts[1]).size() + inLastPart;
    expectProbeBoundedByTheDeepestStream(parts, depth,
                                         ffprobeSeconds(parts[0]) + ffprobeSeconds(parts[1]));
}

TEST_F(JoinEndToEndTest, Mpeg1WithTwoAudioTracks_KeepsBoth) {
    const QStringList twoMp2 = {QStringLiteral("mp2"), QStringLiteral("mp2")};
    const QStringList parts = {makeTitlePart(QStringLiteral("one.mpg"), 1, twoMp2),
                               makeTitlePart(QStringLiteral("two.mpg"), 1, twoMp2)};
    joinTitle(parts, QStringLiteral("MPEG-1V"), {"video:mpeg1video", "audio:mp2", "audio:mp2"}, {});
}

TEST_F(JoinEndToEndTest, Mpeg1V_Operation2_SizeFigureMovesWhileTheOutputGrows) {
    const QStringList sources = bigSources(1, 6);
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_EQ(bed.model.items.cell(1, 4), QStringLiteral("MPEG-1V"));
    QStringList sizes;
    recordOperation2Sizes(sizes);
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    expectMovingSizes(sizes);
    expectCleanEnd(output);
}

TEST_F(JoinEndToEndTest, Mpeg2V_Operation2_SizeFigureMovesWithTheToolsStatusLines) {
    const QStringList sources = bigSources(2, 6);
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_EQ(bed.model.items.cell(1, 4), QStringLiteral("MPEG-2V"));
    QStringList sizes;
    recordOperation2Sizes(sizes);
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    expectMovingSizes(sizes);
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
        QStringLiteral("1BAT={ cat '%1' >&3 < /dev/null; }").arg(sources[1]),
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
    EXPECT_FALSE(text.contains(QStringLiteral("1BAT={ cat '%1'").arg(sources[0])));
    // The fix script's output, as its pieces came, behind the first operation.
    EXPECT_GT(text.indexOf(QStringLiteral("Fixing MP3 File...")),
              text.indexOf(QStringLiteral("Operation1 Size=")));
}

TEST_F(JoinEndToEndTest, DebugLog_RecordsOfAnMpeg1JoinNameTheRemake) {
    const QString log = bed.dir.path() + QStringLiteral("/debug.log");
    StartLogging(log, 2);
    const QStringList sources = {makeMpeg(QStringLiteral("one.mpg"), 1, 2),
                                 makeMpeg(QStringLiteral("two.mpg"), 1, 2)};
    fillList(QStringLiteral("MPEG"), sources);
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    join(output);
    StopLogging();
    const QString text = QString::fromUtf8(JoinRunTestBed::readFile(log));
    const QString temp = output + QStringLiteral(".vlr.mpg");
    const QString tool = bed.appData + QStringLiteral("/MPEG2.exe");
    const QStringList records = {
        QStringLiteral("TempFile=") + temp,
        QStringLiteral("1BAT={ cat '%1' >&3 < /dev/null; }").arg(sources[1]),
        QStringLiteral("2BAT='%1' -nostdin -analyzeduration 360000000000 -probesize 5000000 -i "
                       "'%2' -map 0 -map -0:d -c copy -f mpeg -y '%3' < /dev/null || {")
            .arg(tool, temp, output),
        QStringLiteral("2BAT=rm -f '%1' < /dev/null").arg(temp),
        QStringLiteral("BAT1 Launched."),
        QStringLiteral("OutputFile=") + output,
        QStringLiteral("Operation1 Size="),
        QStringLiteral("Fixing MPEG1 File..."),
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
    EXPECT_FALSE(text.contains(QStringLiteral("MPEG.exe")));
}

TEST_F(JoinEndToEndTest, CancelInOperation1_EndsTheCopyAndLeavesNothing) {
    const QString first = makeMpeg(QStringLiteral("one.mpg"), 1, 2);
    // A source that never delivers its bytes: the copy waits on it.
    const QString stuck = bed.media + QStringLiteral("/stuck.mpg");
    ASSERT_EQ(::mkfifo(stuck.toLocal8Bit().constData(), 0600), 0);
    bed.makeMpegList({first, stuck}, QStringLiteral("MPEG-1V"));
    hashes[first] = hashOf(first);
    const QString output = bed.media + QStringLiteral("/joined.mpg");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    JoinRun& run = bed.makeRun();
    run.load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil(
        [&] {
            return QFileInfo(output + QStringLiteral(".vlr.mpg")).size() ==
                       QFileInfo(first).size() &&
                   !processesNaming(stuck).isEmpty();
        },
        20000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Operation 1 of 2"));
    run.cancelClicked();
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Cancelled!"));
    EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return processesNaming(stuck).isEmpty(); }, 5000));
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
    cancelInOperation2AndExpectNothingLeft(bed.media + QStringLiteral("/joined.mp3"),
                                           QStringLiteral(".vlr.mp3"), source);
}

TEST_F(JoinEndToEndTest, Mpeg1V_CancelInOperation2_EndsTheRemakeAndLeavesNothing) {
    const QStringList sources = bigSources(1, 12);
    fillList(QStringLiteral("MPEG"), sources);
    ASSERT_EQ(bed.model.items.cell(1, 4), QStringLiteral("MPEG-1V"));
    cancelInOperation2AndExpectNothingLeft(bed.media + QStringLiteral("/joined.mpg"),
                                           QStringLiteral(".vlr.mpg"), sources[0]);
}
