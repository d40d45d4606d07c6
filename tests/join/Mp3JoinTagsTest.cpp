// The joined MP3 as an album or audiobook: MP3 joins through the real scripts
// and the real fix tool of sources with ID3v2.3 and ID3v2.4 tags, covers in
// JPEG and PNG, titles beyond ISO-8859-1, ID3v1 tags only or no tag at all,
// constant and variable bit rates, with and without a LAME header; the output
// checked with ffprobe, python3-mutagen, MediaInfo and mpg123.
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "app/Settings.h"
#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/Columns.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "media/MediaInfoFile.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "support/MediaMaker.h"
#include "support/MutagenTag.h"
#include "support/TagByteForms.h"

namespace {

// ffprobe's chapters and the output's length on the playback clock (its
// duration less the start that the decoder skips).
struct Probed {
    QJsonArray chapters;
    double playbackSeconds = 0;
};

Probed probeChapters(const QString& path) {
    const QJsonObject json =
        QJsonDocument::fromJson(
            RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                        QStringLiteral("-show_chapters"), QStringLiteral("-show_entries"),
                        QStringLiteral("format=duration:stream=start_time"),
                        QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                        QStringLiteral("-of"), QStringLiteral("json"), path})
                .toUtf8())
            .object();
    Probed probed;
    probed.chapters = json.value(QStringLiteral("chapters")).toArray();
    const double start = json.value(QStringLiteral("streams"))
                             .toArray()
                             .at(0)
                             .toObject()
                             .value(QStringLiteral("start_time"))
                             .toString()
                             .toDouble();
    probed.playbackSeconds = json.value(QStringLiteral("format"))
                                 .toObject()
                                 .value(QStringLiteral("duration"))
                                 .toString()
                                 .toDouble() -
                             start;
    return probed;
}

// The comment frames of the tag as python3-mutagen reads them: language,
// description and text, joined by "|".
QStringList comments(const QJsonObject& tag) {
    QStringList list;
    for (const QJsonValue& value : tag.value(QStringLiteral("comments")).toArray()) {
        const QJsonObject comment = value.toObject();
        QStringList fields{comment.value(QStringLiteral("lang")).toString(),
                           comment.value(QStringLiteral("desc")).toString()};
        for (const QJsonValue& text : comment.value(QStringLiteral("text")).toArray()) {
            fields << text.toString();
        }
        list << fields.join(u'|');
    }
    return list;
}

QByteArray md5Hex(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

QStringList texts(const QJsonObject& tag, const QString& frame) {
    QStringList list;
    for (const QJsonValue& value :
         tag.value(QStringLiteral("texts")).toObject().value(frame).toArray()) {
        list << value.toString();
    }
    return list;
}

// The encoder delay and padding of a file's LAME extension, read here from
// the file's bytes: the Xing or Info tag lies behind the first frame's side
// information, its flags say which of its fields follow (frames, bytes, seek
// table, quality), the extension follows them, named by its encoder, and its
// 22nd to 24th bytes hold the delay and the padding as two 12-bit numbers.
struct LameGap {
    bool found = false;
    int delay = 0;
    int padding = 0;
};

LameGap readLameGap(const QByteArray& audio) {
    LameGap gap;
    const QByteArray head = audio.left(4 + 32 + 4);
    const qsizetype at = head.contains("Xing") ? head.indexOf("Xing") : head.indexOf("Info");
    if (at < 0) {
        return gap;
    }
    const auto byte = [&audio](qsizetype i) {
        return i < audio.size() ? static_cast<int>(static_cast<unsigned char>(audio.at(i))) : 0;
    };
    const int flags = byte(at + 7);
    const qsizetype lame = at + 8 + ((flags & 1) ? 4 : 0) + ((flags & 2) ? 4 : 0) +
                           ((flags & 4) ? 100 : 0) + ((flags & 8) ? 4 : 0);
    const QByteArray encoder = audio.mid(lame, 4);
    if (lame + 24 > audio.size() || (encoder != "LAME" && encoder != "Lavc" && encoder != "Lavf")) {
        return gap;
    }
    gap.found = true;
    gap.delay = (byte(lame + 21) << 4) | (byte(lame + 22) >> 4);
    gap.padding = ((byte(lame + 22) & 0x0F) << 8) | byte(lame + 23);
    return gap;
}

// Milliseconds of a count of samples at a rate, rounded to the nearest (a
// half upwards), as the tag's times are rounded.
long long millisecondsOf(long long samples, int hz) {
    return (samples * 2000 + hz) / (2LL * hz);
}

// One source as the test made it.
struct TaggedSource {
    QString path;
    QString chapterTitle;  // what its chapter must be called
    long long frames = 0;
    int samplesPerFrame = 1152;
    int hz = 44100;
    LameGap gap;  // of its LAME extension, where it has one
};

struct SourceSpec {
    explicit SourceSpec(const QString& fileName, int version = 0)
        : name(fileName), id3v2Version(version) {}
    QString name;
    int id3v2Version = 0;  // 0: none
    bool id3v1Only = false;
    QMap<QString, QString> metadata;
    QString cover;  // a picture file, and its type as ffmpeg names it
    QString coverType = QStringLiteral("Cover (front)");
    bool vbr = false;
    int channels = 2;
    bool lameHeader = true;
    double seconds = 1.2;
    int hz = 44100;  // below 32,000 Hz: MPEG-2 or MPEG-2.5, 576 samples a frame
    QString constantRate = QStringLiteral("128k");
};

class Mp3JoinTagsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HaveFfmpeg());
        SetInstallFolderOverride(bed.install);
        bed.putRealTools();
        jpeg = bed.media + QStringLiteral("/cover.jpg");
        png = bed.media + QStringLiteral("/cover.png");
        ASSERT_TRUE(RunFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                               QStringLiteral("testsrc=size=160x160:duration=1"),
                               QStringLiteral("-frames:v"), QStringLiteral("1"), jpeg}));
        ASSERT_TRUE(RunFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                               QStringLiteral("testsrc2=size=96x96:duration=1"),
                               QStringLiteral("-frames:v"), QStringLiteral("1"), png}));
    }

    TaggedSource make(const SourceSpec& recipe, const QString& chapterTitle) {
        TaggedSource source;
        source.chapterTitle = chapterTitle;
        if (recipe.id3v1Only) {
            Mp3Options options;
            options.channels = recipe.channels;
            options.seconds = recipe.seconds;
            options.sampleRate = recipe.hz;
            options.id3v1 = true;
            options.metadata = recipe.metadata;
            options.frequencyHz = 300 + 40 * made++;
            source.path = MakeMp3(bed.media, recipe.name, options);
        } else {
            source.path = bed.media + u'/' + recipe.name;
            QStringList args{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                             QStringLiteral("sine=frequency=%1:duration=%2")
                                 .arg(300 + 40 * made++)
                                 .arg(recipe.seconds)};
            if (!recipe.cover.isEmpty()) {
                args += {QStringLiteral("-i"),
                         recipe.cover,
                         QStringLiteral("-map"),
                         QStringLiteral("0:a"),
                         QStringLiteral("-map"),
                         QStringLiteral("1:v"),
                         QStringLiteral("-c:v"),
                         QStringLiteral("copy"),
                         QStringLiteral("-disposition:v"),
                         QStringLiteral("attached_pic"),
                         QStringLiteral("-metadata:s:v"),
                         QStringLiteral("comment=") + recipe.coverType};
            }
            args += {QStringLiteral("-ar"),  QString::number(recipe.hz),
                     QStringLiteral("-ac"),  QString::number(recipe.channels),
                     QStringLiteral("-c:a"), QStringLiteral("libmp3lame")};
            args += recipe.vbr ? QStringList{QStringLiteral("-q:a"), QStringLiteral("4")}
                               : QStringList{QStringLiteral("-b:a"), recipe.constantRate};
            args += {QStringLiteral("-id3v2_version"),
                     QString::number(recipe.id3v2Version),
                     QStringLiteral("-write_id3v1"),
                     QStringLiteral("0"),
                     QStringLiteral("-write_xing"),
                     recipe.lameHeader ? QStringLiteral("1") : QStringLiteral("0")};
            for (auto it = recipe.metadata.cbegin(); it != recipe.metadata.cend(); ++it) {
                args += {QStringLiteral("-metadata"), it.key() + u'=' + it.value()};
            }
            args += {QStringLiteral("-f"), QStringLiteral("mp3"), source.path};
            EXPECT_TRUE(RunFfmpeg(args)) << LastMediaMakerError().toStdString();
        }
        EXPECT_FALSE(source.path.isEmpty()) << LastMediaMakerError().toStdString();
        source.frames = ProbeAudioFrames(source.path);
        source.hz = recipe.hz;
        source.samplesPerFrame = recipe.hz >= 32000 ? 1152 : 576;
        EXPECT_EQ(ProbeValues(source.path, {QStringLiteral("-select_streams"),
                                            QStringLiteral("a:0"), QStringLiteral("-show_entries"),
                                            QStringLiteral("stream=sample_rate")})
                      .trimmed(),
                  QString::number(recipe.hz));
        const QByteArray bytes = JoinRunTestBed::readFile(source.path);
        source.gap = readLameGap(bytes.mid(Id3v2TagLength(bytes)));
        return source;
    }

    // Adds frames that describe one file only, with python3-mutagen: a length,
    // a source chapter and its table, gapless and loudness data, lyrics.
    static void addFileOnlyFrames(const QString& path) {
        const QString script = QStringLiteral(
            "import sys\n"
            "from mutagen.id3 import ID3, TLEN, CHAP, CTOC, CTOCFlags, TIT2, COMM, TXXX, USLT, "
            "TPUB\n"
            "t = ID3(sys.argv[1])\n"
            "t.add(TLEN(encoding=0, text=['1200']))\n"
            "t.add(CHAP(element_id='src1', start_time=0, end_time=1200, "
            "sub_frames=[TIT2(encoding=0, text=['Source chapter'])]))\n"
            "t.add(CTOC(element_id='srctoc', flags=CTOCFlags.TOP_LEVEL | CTOCFlags.ORDERED, "
            "child_element_ids=['src1']))\n"
            "t.add(COMM(encoding=0, lang='eng', desc='iTunSMPB', text=[' 00000000 00000210']))\n"
            "t.add(COMM(encoding=0, lang='eng', desc='', text=['Recorded live']))\n"
            "t.add(TXXX(encoding=0, desc='REPLAYGAIN_TRACK_GAIN', text=['-6.5 dB']))\n"
            "t.add(USLT(encoding=0, lang='eng', desc='', text='La la la'))\n"
            "t.add(TPUB(encoding=0, text=['Kestor Records']))\n"
            "t.save(v2_version=t.version[1])\n");
        QProcess process;
        process.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), script, path});
        process.waitForFinished(60000);
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    }

    void setTagsAndChapters(bool on) { Settings::SetJoinWriteTagsAndChapters(on ? 1 : 0); }

    QString join(const QList<TaggedSource>& list,
                 const QString& name = QStringLiteral("Joined Book.mp3")) {
        sources = list;
        MainModel& model = bed.model;
        model.items.clearRows();
        model.state.setListType(QStringLiteral("MP3"));
        ClearColumns(model);
        AddSharedColumns(model);
        AddMP3Columns(model);
        for (const TaggedSource& source : list) {
            const int row = model.items.addRow(QFileInfo(source.path).fileName());
            model.items.setCell(row, SharedCell::Filepath, source.path);
            FillListItem(model, 0);
        }
        UpdateListTotals(model);
        if (model.state.listStatus() == QStringLiteral("Red")) {
            model.state.setListStatusText(QStringLiteral("Orange"));
        }
        const QString output = bed.media + QStringLiteral("/out/") + name;
        QDir().mkpath(bed.media + QStringLiteral("/out"));
        QFile::remove(output);
        bed.questions.chooseFile(output);
        EXPECT_TRUE(StartJoin(model));
        JoinRun& run = bed.makeRun();
        run.load(true);
        EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 240000));
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
        run.cancelClicked();
        EXPECT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
        EXPECT_FALSE(QFile::exists(AppDataPath(JoinNames::kMp3Sources)));
        return output;
    }

    // Where each source's chapter must start on the playback clock, in
    // milliseconds: the samples of the earlier sources' audio frames less the
    // first source's encoder delay, never before 0. The last entry is where
    // the last chapter must end: the samples of all frames less that delay
    // and the last source's padding.
    QList<long long> expectedTimesMs() const {
        const int hz = sources.first().hz;
        const long long delay = sources.first().gap.delay;
        long long samples = 0;
        QList<long long> times;
        for (const TaggedSource& source : sources) {
            times << std::max(0LL, millisecondsOf(samples - delay, hz));
            samples += source.frames * source.samplesPerFrame;
        }
        times << millisecondsOf(samples - delay - sources.last().gap.padding, hz);
        return times;
    }

    // Everything the join checked before: the audio frames, a clean decode, no
    // bytes of a source's tags behind the new tag, the first delay and the
    // last padding. Gives the header frame written.
    Mp3HeaderFrame expectRightAudio(const QString& output, qsizetype tagLength,
                                    const QList<QByteArray>& sourceTagBytes) {
        long long frames = 0;
        for (const TaggedSource& source : sources) {
            frames += source.frames;
        }
        EXPECT_EQ(ProbeAudioFrames(output), frames);
        EXPECT_EQ(FfmpegDecodeErrors(output).toStdString(), "");
        const Mpg123Decode mpg123 = DecodeWithMpg123(output);
        EXPECT_EQ(mpg123.frames, frames);
        EXPECT_EQ(mpg123.complaints.toStdString(), "");
        const QByteArray bytes = JoinRunTestBed::readFile(output);
        const QByteArray audio = bytes.mid(tagLength);
        for (const QByteArray& marker : sourceTagBytes) {
            EXPECT_FALSE(audio.contains(marker)) << marker.toStdString();
        }
        const auto* data = reinterpret_cast<const std::uint8_t*>(audio.constData());
        const MpegFrameHeader header = MpegFrameHeader::fromBytes(data);
        EXPECT_TRUE(header.isLayer3Audio());
        const Mp3HeaderFrame written = Mp3HeaderFrame::read(data, header.frameLength(), header);
        EXPECT_EQ(written.frames, static_cast<std::uint32_t>(frames));
        EXPECT_EQ(written.bytes, static_cast<std::uint32_t>(audio.size()));
        EXPECT_EQ(written.delay, sources.first().gap.delay);
        EXPECT_EQ(written.padding, sources.last().gap.padding);
        return written;
    }

    // Each chapter's title, and its start and end to the millisecond as
    // ffprobe and python3-mutagen read them; the last end also within a frame
    // of the output's length on ffprobe's playback clock.
    void expectChapters(const QString& output) {
        const Probed probed = probeChapters(output);
        ASSERT_EQ(probed.chapters.size(), sources.size());
        const QJsonArray read =
            ReadTagWithMutagen(output).value(QStringLiteral("chapters")).toArray();
        ASSERT_EQ(read.size(), sources.size());
        const QList<long long> times = expectedTimesMs();
        for (int i = 0; i < sources.size(); ++i) {
            const QJsonObject chapter = probed.chapters.at(i).toObject();
            EXPECT_EQ(chapter.value(QStringLiteral("tags"))
                          .toObject()
                          .value(QStringLiteral("title"))
                          .toString(),
                      sources[i].chapterTitle)
                << "chapter " << i;
            EXPECT_EQ(chapter.value(QStringLiteral("time_base")).toString(),
                      QStringLiteral("1/1000"));
            EXPECT_EQ(chapter.value(QStringLiteral("start")).toInteger(), times[i])
                << "chapter " << i;
            EXPECT_EQ(chapter.value(QStringLiteral("end")).toInteger(), times[i + 1])
                << "chapter " << i;
            EXPECT_EQ(read.at(i).toObject().value(QStringLiteral("start")).toInteger(), times[i])
                << "chapter " << i;
            EXPECT_EQ(read.at(i).toObject().value(QStringLiteral("end")).toInteger(), times[i + 1])
                << "chapter " << i;
        }
        const double frameSeconds = static_cast<double>(sources[0].samplesPerFrame) / sources[0].hz;
        EXPECT_NEAR(static_cast<double>(times.last()) / 1000.0, probed.playbackSeconds,
                    frameSeconds);
    }

    // python3-mutagen: an ID3v2.3 tag whose top-level ordered table lists the
    // chapters in list order, and nothing of what describes one source only.
    QJsonObject expectMutagenTag(const QString& output) {
        const QJsonObject tag = ReadTagWithMutagen(output);
        EXPECT_EQ(tag.value(QStringLiteral("version")).toString(), QStringLiteral("2.3"));
        EXPECT_EQ(tag.value(QStringLiteral("topLevelTables")).toInt(), 1);
        EXPECT_TRUE(tag.value(QStringLiteral("topLevelOrdered")).toBool());
        QStringList expected;
        for (int i = 1; i <= sources.size(); ++i) {
            expected << QStringLiteral("chp%1").arg(i);
        }
        QStringList reachable;
        for (const QJsonValue& id : tag.value(QStringLiteral("reachable")).toArray()) {
            reachable << id.toString();
        }
        EXPECT_EQ(reachable, expected);
        const QJsonArray chapters = tag.value(QStringLiteral("chapters")).toArray();
        EXPECT_EQ(chapters.size(), sources.size());
        QStringList frames;
        for (const QJsonValue& frame : tag.value(QStringLiteral("frames")).toArray()) {
            frames << frame.toString();
        }
        for (const QString& dropped :
             {QStringLiteral("TLEN"), QStringLiteral("TRCK"), QStringLiteral("CHAP:src1"),
              QStringLiteral("CTOC:srctoc"), QStringLiteral("COMM:iTunSMPB:eng"),
              QStringLiteral("TXXX:REPLAYGAIN_TRACK_GAIN"), QStringLiteral("USLT::eng")}) {
            EXPECT_FALSE(frames.contains(dropped)) << dropped.toStdString();
        }
        return tag;
    }

    QString mediaInfo(const QString& path, const QString& field) {
        MediaInfoFile file(path);
        return file.inform(QStringLiteral("General;%") + field + u'%');
    }

    JoinRunTestBed bed;
    QList<TaggedSource> sources;
    QString jpeg;
    QString png;
    int made = 0;
};

}  // namespace

TEST_F(Mp3JoinTagsTest, StereoAlbum_TagCoverAndOneChapterPerSource_InEveryReader) {
    QList<TaggedSource> list;
    SourceSpec one{QStringLiteral("01 prelude.mp3"), 3};
    one.metadata = {{QStringLiteral("title"), QStringLiteral("Prélude")},
                    {QStringLiteral("album"), QStringLiteral("Suite Ñ")},
                    {QStringLiteral("artist"), QStringLiteral("Ensemble Ñ")},
                    {QStringLiteral("album_artist"), QStringLiteral("Ensemble Ñ")},
                    {QStringLiteral("composer"), QStringLiteral("Kestor")},
                    {QStringLiteral("track"), QStringLiteral("1/6")},
                    {QStringLiteral("date"), QStringLiteral("2019")},
                    {QStringLiteral("genre"), QStringLiteral("Classical")}};
    one.cover = png;
    one.coverType = QStringLiteral("Cover (back)");
    list << make(one, QStringLiteral("Prélude"));
    addFileOnlyFrames(list.last().path);
    // Its tag's frame sizes changed: count again.
    list.last().frames = ProbeAudioFrames(list.last().path);

    SourceSpec two{QStringLiteral("02 omega.mp3"), 4};
    two.metadata = {{QStringLiteral("title"), QStringLiteral("Ωmega Σ")},
                    {QStringLiteral("album"), QStringLiteral("Another album")},
                    {QStringLiteral("track"), QStringLiteral("2")}};
    two.cover = jpeg;
    two.vbr = true;
    list << make(two, QStringLiteral("Ωmega Σ"));

    SourceSpec three{QStringLiteral("03 old.mp3")};
    three.id3v1Only = true;
    three.metadata = {{QStringLiteral("title"), QStringLiteral("Old Tagged")},
                      {QStringLiteral("artist"), QStringLiteral("Old Artist")}};
    list << make(three, QStringLiteral("Old Tagged"));

    SourceSpec four{QStringLiteral("04 no tag at all.mp3")};
    list << make(four, QStringLiteral("04 no tag at all"));

    SourceSpec five{QStringLiteral("05 fin.mp3"), 3};
    five.metadata = {{QStringLiteral("title"), QStringLiteral("Fin")}};
    five.lameHeader = false;
    list << make(five, QStringLiteral("Fin"));

    SourceSpec six{QStringLiteral("06 coda.mp3"), 4};
    six.metadata = {{QStringLiteral("title"), QStringLiteral("日本語のコーダ")}};
    six.vbr = true;
    list << make(six, QStringLiteral("日本語のコーダ"));

    const QString output = join(list);
    const QByteArray bytes = JoinRunTestBed::readFile(output);
    const qsizetype tagLength = Id3v2TagLength(bytes);
    ASSERT_GT(tagLength, 0);
    EXPECT_EQ(bytes.at(3), 3);  // ID3v2.3
    EXPECT_EQ(bytes.at(5), 0);  // no unsynchronisation, no extended header

    const QByteArray jpegBytes = JoinRunTestBed::readFile(jpeg);
    const QByteArray pngBytes = JoinRunTestBed::readFile(png);
    const Mp3HeaderFrame written = expectRightAudio(
        output, tagLength,
        {QByteArray("ID3\x03\x00", 5), QByteArray("ID3\x04\x00", 5), QByteArray("TAGOld Tagged"),
         QByteArray("Recorded live"), QByteArray("image/"), jpegBytes.mid(100, 24),
         pngBytes.mid(60, 24), QByteArray("Source chapter")});
    EXPECT_TRUE(written.hasLame);
    expectChapters(output);

    const QJsonObject tag = expectMutagenTag(output);
    // The first source with a tag gives the frames of the whole work.
    EXPECT_EQ(texts(tag, QStringLiteral("TIT2")), QStringList{QStringLiteral("Suite Ñ")});
    EXPECT_EQ(texts(tag, QStringLiteral("TALB")), QStringList{QStringLiteral("Suite Ñ")});
    EXPECT_EQ(texts(tag, QStringLiteral("TPE1")), QStringList{QStringLiteral("Ensemble Ñ")});
    EXPECT_EQ(texts(tag, QStringLiteral("TPE2")), QStringList{QStringLiteral("Ensemble Ñ")});
    EXPECT_EQ(texts(tag, QStringLiteral("TCOM")), QStringList{QStringLiteral("Kestor")});
    EXPECT_EQ(texts(tag, QStringLiteral("TPUB")), QStringList{QStringLiteral("Kestor Records")});
    EXPECT_EQ(texts(tag, QStringLiteral("TYER")), QStringList{QStringLiteral("2019")});
    EXPECT_EQ(texts(tag, QStringLiteral("TCON")), QStringList{QStringLiteral("Classical")});
    EXPECT_TRUE(
        texts(tag, QStringLiteral("TSSE")).value(0).startsWith(QStringLiteral("Velmora 1.")));
    // The first source's own comment is kept; its player's gapless comment is not.
    EXPECT_EQ(comments(tag), QStringList{QStringLiteral("eng||Recorded live")});
    const QJsonObject encodings = tag.value(QStringLiteral("encodings")).toObject();
    EXPECT_EQ(encodings.value(QStringLiteral("TPE1")).toInt(), 0);  // ISO-8859-1 fits "Ñ"
    const QJsonArray chapters = tag.value(QStringLiteral("chapters")).toArray();
    EXPECT_EQ(chapters.at(0).toObject().value(QStringLiteral("encoding")).toInt(), 0);
    EXPECT_EQ(chapters.at(1).toObject().value(QStringLiteral("encoding")).toInt(), 1);  // UTF-16
    EXPECT_EQ(chapters.at(5).toObject().value(QStringLiteral("title")).toString(),
              QStringLiteral("日本語のコーダ"));
    // The first front cover among the sources (the second source's JPEG), not
    // the first source's back cover; its bytes as they were.
    const QJsonArray pictures = tag.value(QStringLiteral("pictures")).toArray();
    ASSERT_EQ(pictures.size(), 1);
    EXPECT_EQ(pictures.at(0).toObject().value(QStringLiteral("type")).toInt(), 3);
    EXPECT_EQ(pictures.at(0).toObject().value(QStringLiteral("mime")).toString(),
              QStringLiteral("image/jpeg"));
    EXPECT_EQ(pictures.at(0).toObject().value(QStringLiteral("md5")).toString().toLatin1(),
              md5Hex(jpegBytes));

    EXPECT_EQ(mediaInfo(output, QStringLiteral("Title")), QStringLiteral("Suite Ñ"));
    EXPECT_EQ(mediaInfo(output, QStringLiteral("Album")), QStringLiteral("Suite Ñ"));
    EXPECT_EQ(mediaInfo(output, QStringLiteral("Performer")), QStringLiteral("Ensemble Ñ"));
}

TEST_F(Mp3JoinTagsTest, MonoBook_Id3v1TemplateAndPngCover_TitleFromTheOutputsName) {
    QList<TaggedSource> list;
    SourceSpec one{QStringLiteral("part one.mp3")};
    one.channels = 1;
    list << make(one, QStringLiteral("part one"));

    SourceSpec two{QStringLiteral("part two.mp3")};
    two.id3v1Only = true;
    two.channels = 1;
    two.metadata = {{QStringLiteral("title"), QStringLiteral("Chapter Two")},
                    {QStringLiteral("artist"), QStringLiteral("Reader")},
                    {QStringLiteral("genre"), QStringLiteral("Speech")},
                    {QStringLiteral("comment"), QStringLiteral("Read slowly")}};
    list << make(two, QStringLiteral("Chapter Two"));

    SourceSpec three{QStringLiteral("part three.mp3"), 4};
    three.channels = 1;
    three.vbr = true;
    three.cover = png;
    three.coverType = QStringLiteral("Illustration");
    three.metadata = {{QStringLiteral("title"), QStringLiteral("Глава три")}};
    list << make(three, QStringLiteral("Глава три"));

    const QString output = join(list, QStringLiteral("Read Aloud.mp3"));
    const QByteArray bytes = JoinRunTestBed::readFile(output);
    const qsizetype tagLength = Id3v2TagLength(bytes);
    ASSERT_GT(tagLength, 0);
    expectRightAudio(output, tagLength,
                     {QByteArray("ID3\x04\x00", 5), QByteArray("TAGChapter Two")});
    expectChapters(output);
    const QJsonObject tag = expectMutagenTag(output);
    // The template is the ID3v1 tag of the first source with a tag; it has no
    // album, so the title is the output's name.
    EXPECT_EQ(texts(tag, QStringLiteral("TIT2")), QStringList{QStringLiteral("Read Aloud")});
    EXPECT_EQ(texts(tag, QStringLiteral("TPE1")), QStringList{QStringLiteral("Reader")});
    EXPECT_EQ(texts(tag, QStringLiteral("TCON")), QStringList{QStringLiteral("Speech")});
    EXPECT_EQ(comments(tag), QStringList{QStringLiteral("eng||Read slowly")});
    // No front cover anywhere: the first picture of any kind.
    const QJsonArray pictures = tag.value(QStringLiteral("pictures")).toArray();
    ASSERT_EQ(pictures.size(), 1);
    EXPECT_EQ(pictures.at(0).toObject().value(QStringLiteral("mime")).toString(),
              QStringLiteral("image/png"));
    EXPECT_EQ(pictures.at(0).toObject().value(QStringLiteral("md5")).toString().toLatin1(),
              md5Hex(JoinRunTestBed::readFile(png)));
    EXPECT_EQ(mediaInfo(output, QStringLiteral("Title")), QStringLiteral("Read Aloud"));
    EXPECT_EQ(mediaInfo(output, QStringLiteral("Performer")), QStringLiteral("Reader"));
}

TEST_F(Mp3JoinTagsTest, BoxOff_OutputIsTheUntaggedFixByteForByte_AndOnOnlyAddsTheTag) {
    QList<TaggedSource> list;
    SourceSpec one{QStringLiteral("a.mp3"), 4};
    one.metadata = {{QStringLiteral("title"), QStringLiteral("A")},
                    {QStringLiteral("album"), QStringLiteral("Album")}};
    one.cover = jpeg;
    list << make(one, QStringLiteral("A"));
    SourceSpec two{QStringLiteral("b.mp3"), 3};
    two.vbr = true;
    list << make(two, QStringLiteral("b"));
    SourceSpec three{QStringLiteral("c.mp3")};
    three.id3v1Only = true;
    list << make(three, QStringLiteral("c"));

    // The fix tool alone on the raw join, with no sources file: the output as
    // the join made it before tags and chapters.
    QByteArray raw;
    for (const TaggedSource& source : list) {
        raw += JoinRunTestBed::readFile(source.path);
    }
    const QString rawPath = bed.media + QStringLiteral("/raw.mp3");
    const QString plainPath = bed.media + QStringLiteral("/plain.mp3");
    JoinRunTestBed::writeFile(rawPath, raw);
    QProcess tool;
    tool.start(QStringLiteral(VELMORA_MP3_FIX_TOOL), {rawPath, plainPath});
    ASSERT_TRUE(tool.waitForFinished(60000));
    ASSERT_EQ(tool.exitCode(), 0);
    const QByteArray plain = JoinRunTestBed::readFile(plainPath);
    ASSERT_FALSE(plain.startsWith("ID3"));

    setTagsAndChapters(false);
    const QByteArray off = JoinRunTestBed::readFile(join(list, QStringLiteral("off.mp3")));
    EXPECT_EQ(off.size(), plain.size());
    EXPECT_TRUE(off == plain);

    setTagsAndChapters(true);
    const QByteArray on = JoinRunTestBed::readFile(join(list, QStringLiteral("on.mp3")));
    const qsizetype tagLength = Id3v2TagLength(on);
    ASSERT_GT(tagLength, 0);
    EXPECT_TRUE(on.mid(tagLength) == plain);
}

TEST_F(Mp3JoinTagsTest, ThreeHundredSources_ThreeHundredChaptersAllReachable) {
    SourceSpec recipe{QStringLiteral("part 001.mp3"), 3};
    recipe.seconds = 0.2;
    recipe.metadata = {{QStringLiteral("album"), QStringLiteral("Long Book")}};
    const TaggedSource first = make(recipe, QStringLiteral("part 001"));
    QList<TaggedSource> list{first};
    for (int i = 2; i <= 300; ++i) {
        TaggedSource copy = first;
        copy.path = bed.media + QStringLiteral("/part %1.mp3").arg(i, 3, 10, QLatin1Char('0'));
        copy.chapterTitle = QFileInfo(copy.path).completeBaseName();
        ASSERT_TRUE(QFile::copy(first.path, copy.path));
        list << copy;
    }
    const QString output = join(list);
    const Probed probed = probeChapters(output);
    ASSERT_EQ(probed.chapters.size(), 300);
    EXPECT_EQ(probed.chapters.at(299)
                  .toObject()
                  .value(QStringLiteral("tags"))
                  .toObject()
                  .value(QStringLiteral("title"))
                  .toString(),
              QStringLiteral("part 300"));
    const QJsonObject tag = expectMutagenTag(output);
    EXPECT_EQ(tag.value(QStringLiteral("reachable")).toArray().size(), 300);
}

namespace {

// Joins of MPEG-2 (22,050 and 24,000 Hz) and MPEG-2.5 (11,025 and 8,000 Hz)
// sources, whose frames hold 576 samples.
class Mp3JoinTagsLowRateTest : public Mp3JoinTagsTest, public ::testing::WithParamInterface<int> {};

}  // namespace

TEST_P(Mp3JoinTagsLowRateTest, ThreeSources_FramesGapAndChaptersToTheMillisecond) {
    const int hz = GetParam();
    QList<TaggedSource> list;
    SourceSpec one{QStringLiteral("one.mp3"), 3};
    one.hz = hz;
    one.constantRate = QStringLiteral("32k");
    one.metadata = {{QStringLiteral("title"), QStringLiteral("One")},
                    {QStringLiteral("album"), QStringLiteral("Low Rate")}};
    list << make(one, QStringLiteral("One"));
    SourceSpec two{QStringLiteral("two.mp3"), 4};
    two.hz = hz;
    two.vbr = true;
    two.seconds = 0.7;
    two.metadata = {{QStringLiteral("title"), QStringLiteral("Two")}};
    list << make(two, QStringLiteral("Two"));
    SourceSpec three{QStringLiteral("three.mp3")};
    three.hz = hz;
    three.constantRate = QStringLiteral("24k");
    three.seconds = 0.9;
    list << make(three, QStringLiteral("three"));
    for (const TaggedSource& source : list) {
        ASSERT_TRUE(source.gap.found) << source.path.toStdString();
    }

    const QString output = join(list);
    const QByteArray bytes = JoinRunTestBed::readFile(output);
    const qsizetype tagLength = Id3v2TagLength(bytes);
    ASSERT_GT(tagLength, 0);
    const Mp3HeaderFrame written =
        expectRightAudio(output, tagLength, {QByteArray("ID3\x04\x00", 5)});
    EXPECT_TRUE(written.hasLame);
    EXPECT_EQ(
        ProbeValues(output, {QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                             QStringLiteral("-show_entries"), QStringLiteral("stream=sample_rate")})
            .trimmed(),
        QString::number(hz));
    expectChapters(output);
}

INSTANTIATE_TEST_SUITE_P(Mpeg2AndMpeg25, Mp3JoinTagsLowRateTest,
                         ::testing::Values(22050, 24000, 11025, 8000),
                         [](const ::testing::TestParamInfo<int>& info) {
                             return std::to_string(info.param) + "Hz";
                         });
