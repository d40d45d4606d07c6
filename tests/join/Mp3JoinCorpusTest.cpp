// MP3 joins of files as they come from the wild, through the real scripts
// and the real fix tool: every file with an ID3v2 tag and a picture, ID3v1,
// APEv2 and Lyrics3 blocks, junk before the first frame, a tag whose size
// runs past its file, Xing, Info and VBRI header frames, mixed constant bit
// rates and variable ones, mono and stereo, MPEG-1, MPEG-2 and MPEG-2.5.
#include <gtest/gtest.h>

#include <QRandomGenerator>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "media/ID3Reader.h"
#include "media/MediaInfoFile.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "support/MediaMaker.h"
#include "support/TagByteForms.h"

namespace {

double ffprobeSeconds(const QString& path) {
    return ProbeValues(path, {QStringLiteral("-show_entries"), QStringLiteral("format=duration")})
        .toDouble();
}

double mediaInfoSeconds(const QString& path) {
    MediaInfoFile file(path);
    return file.inform(QStringLiteral("General;%Duration%")).toDouble() / 1000.0;
}

QByteArray le32(quint32 value) {
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

// A picture as a tag carries it: a JPEG head, then bytes that hold frame
// syncs and whole frame headers, which must not be taken for sound.
QByteArray picture(quint32 seed, int size) {
    QRandomGenerator random(seed);
    QByteArray bytes("\xFF\xD8\xFF\xE0\x00\x10JFIF", 10);
    while (bytes.size() < size) {
        const quint32 word = random.generate();
        bytes.append(reinterpret_cast<const char*>(&word), 4);
        if (random.bounded(64) == 0) {
            bytes.append("\xFF\xFB\x90\x64\xFF\xFB\x90\x44", 8);
        }
    }
    return bytes.left(size);
}

QByteArray id3v2Frame(int version, const char* id, const QByteArray& data) {
    return QByteArray(id) + (version == 4 ? SyncSafeBytes(data.size()) : Be32Bytes(data.size())) +
           QByteArray(2, '\0') + data;
}

// An ID3v2.3 or 2.4 tag with a title and a picture; statedExtra bytes more
// than it holds in its size; a footer for 2.4 when asked.
QByteArray id3v2Tag(int version, const QByteArray& pictureBytes, bool footer = false,
                    quint32 statedExtra = 0) {
    QByteArray body = id3v2Frame(version, "TIT2", QByteArray("\0Song", 5));
    body += id3v2Frame(version, "APIC", QByteArray("\0image/jpeg\0\x03\0", 14) + pictureBytes);
    if (!footer) {
        body += QByteArray(64, '\0');  // padding
    }
    const QByteArray size = SyncSafeBytes(static_cast<quint32>(body.size()) + statedExtra);
    const char flags = footer ? 0x10 : 0;
    QByteArray tag = QByteArray("ID3") + char(version) + char(0) + flags + size + body;
    if (footer) {
        tag += QByteArray("3DI") + char(version) + char(0) + flags + size;
    }
    return tag;
}

QByteArray id3v1Tag() {
    QByteArray tag("TAG");
    tag += QByteArray("Title").leftJustified(30, ' ');
    tag += QByteArray("Artist").leftJustified(30, ' ');
    tag += QByteArray("Album").leftJustified(30, ' ');
    tag += QByteArray("2001");
    tag += QByteArray("Comment").leftJustified(30, ' ');
    tag += char(17);
    return tag;
}

QByteArray apeTag() {
    const QByteArray item = le32(5) + le32(0) + QByteArray("Title\0Hello", 11);
    const quint32 size = static_cast<quint32>(item.size()) + 32;
    const auto part = [&](quint32 flags) {
        return QByteArray("APETAGEX") + le32(2000) + le32(size) + le32(1) + le32(flags) +
               QByteArray(8, '\0');
    };
    return part(0xA0000000u) + item + part(0x80000000u);
}

QByteArray lyrics3Block() {
    const QByteArray body = QByteArray("LYRICSBEGIN") + "IND00003110" + "LYR00011Hello world";
    return body + QByteArray::number(body.size()).rightJustified(6, '0') + "LYRICS200";
}

// The first frame of a clean file (its Xing or Info frame) as a VBRI frame.
QByteArray asVbri(const QByteArray& clean, long long frames) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(clean.constData());
    const MpegFrameHeader header = MpegFrameHeader::fromBytes(bytes);
    const int length = header.frameLength();
    QByteArray frame = clean.left(4) + QByteArray(length - 4, '\0');
    QByteArray vbri = QByteArray("VBRI") + QByteArray("\x00\x01\x04\x00\x00\x4B", 6) +
                      Be32Bytes(static_cast<quint32>(clean.size())) +
                      Be32Bytes(static_cast<quint32>(frames)) + QByteArray(8, '\0');
    frame.replace(36, vbri.size(), vbri);
    return frame + clean.mid(length);
}

struct Source {
    QString path;
    long long frames = 0;  // audio frames, counted in the clean file
    int samplesPerFrame = 1152;
    int hz = 44100;
    Mp3HeaderFrame header;  // of the clean file
    bool lameKept = true;   // its header frame (with LAME) is still in front of its audio
};

class Mp3JoinCorpusTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HaveFfmpeg());
        SetInstallFolderOverride(bed.install);
        bed.putRealTools();
    }

    // An encoded file, dressed: before is put in front of it, after behind.
    enum class Header { Kept, AsVbri, Removed };
    Source make(const QString& name, Mp3Options options, const QByteArray& before,
                const QByteArray& after, Header kind = Header::Kept) {
        options.frequencyHz = 300 + 50 * made++;
        const QString clean = MakeMp3(bed.media + QStringLiteral("/clean"), name, options);
        EXPECT_FALSE(clean.isEmpty()) << LastMediaMakerError().toStdString();
        Source source;
        source.path = bed.media + u'/' + name;
        source.frames = ProbeAudioFrames(clean);
        QByteArray bytes = JoinRunTestBed::readFile(clean);
        const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
        const MpegFrameHeader header = MpegFrameHeader::fromBytes(data);
        source.samplesPerFrame = header.samplesPerFrame();
        source.hz = header.sampleRateHz();
        source.header = Mp3HeaderFrame::read(data, header.frameLength(), header);
        EXPECT_NE(source.header.kind, Mp3HeaderFrame::Kind::None);
        if (kind == Header::AsVbri) {
            bytes = asVbri(bytes, source.frames);
            source.lameKept = false;
        } else if (kind == Header::Removed) {
            bytes = bytes.mid(header.frameLength());
            source.lameKept = false;
        }
        JoinRunTestBed::writeFile(source.path, before + bytes + after);
        pictures << before;
        return source;
    }

    void join(const QList<Source>& list) {
        sources = list;
        MainModel& model = bed.model;
        model.state.setListType(QStringLiteral("MP3"));
        ClearColumns(model);
        AddSharedColumns(model);
        AddMP3Columns(model);
        for (const Source& source : list) {
            const int row = model.items.addRow(QFileInfo(source.path).fileName());
            model.items.setCell(row, 3, source.path);
            FillListItem(model, 0);
        }
        UpdateListTotals(model);
        if (model.state.listStatus() == QStringLiteral("Red")) {
            model.state.setListStatusText(QStringLiteral("Orange"));
        }
        output = bed.media + QStringLiteral("/joined.mp3");
        bed.questions.chooseFile(output);
        ASSERT_TRUE(StartJoin(model));
        JoinRun& run = bed.makeRun();
        run.load(true);
        ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 120000));
        ASSERT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
        run.cancelClicked();
        ASSERT_TRUE(QFileInfo(output).size() > 0);
        ASSERT_FALSE(QFile::exists(output + QStringLiteral(".vlr.mp3")));
    }

    void expectRightJoin() {
        long long frames = 0;
        double seconds = 0;
        for (const Source& source : sources) {
            frames += source.frames;
            seconds += static_cast<double>(source.frames) * source.samplesPerFrame / source.hz;
        }
        const double frameSeconds = static_cast<double>(sources[0].samplesPerFrame) / sources[0].hz;
        EXPECT_EQ(ProbeAudioFrames(output), frames);
        EXPECT_NEAR(ffprobeSeconds(output), seconds, frameSeconds);
        EXPECT_NEAR(mediaInfoSeconds(output), seconds, frameSeconds + 0.002);

        // Behind the one tag of the join (tags and chapters are on by default)
        // lies nothing of the sources' tags.
        const QByteArray whole = JoinRunTestBed::readFile(output);
        ASSERT_TRUE(whole.startsWith("ID3\x03"));
        const QByteArray bytes = whole.mid(Id3v2TagLength(whole));
        for (const QByteArray& marker :
             {QByteArray("ID3\x03\x00", 5), QByteArray("ID3\x04\x00", 5), QByteArray("3DI\x04"),
              QByteArray("TAGTitle"), QByteArray("APETAGEX"), QByteArray("LYRICSBEGIN"),
              QByteArray("LYRICS200"), QByteArray("JFIF"), QByteArray("image/jpeg")}) {
            EXPECT_FALSE(bytes.contains(marker)) << marker.toStdString();
        }
        for (const QByteArray& before : pictures) {
            for (qsizetype at = 0; at + 24 <= before.size(); at += 997) {
                EXPECT_FALSE(bytes.contains(before.mid(at, 24))) << "tag bytes from " << at;
            }
        }

        // The one header frame: counts, and the first file's delay and the
        // last file's padding where those files had a LAME extension.
        const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());
        const MpegFrameHeader header = MpegFrameHeader::fromBytes(data);
        ASSERT_TRUE(header.isLayer3Audio());
        const Mp3HeaderFrame written = Mp3HeaderFrame::read(data, header.frameLength(), header);
        EXPECT_NE(written.kind, Mp3HeaderFrame::Kind::None);
        EXPECT_EQ(written.frames, static_cast<std::uint32_t>(frames));
        EXPECT_EQ(written.bytes, static_cast<std::uint32_t>(bytes.size()));
        const Source& first = sources.first();
        const Source& last = sources.last();
        const bool delay = first.lameKept && first.header.hasLame;
        const bool padding = last.lameKept && last.header.hasLame;
        EXPECT_EQ(written.hasLame, delay || padding);
        EXPECT_EQ(written.delay, delay ? first.header.delay : 0);
        EXPECT_EQ(written.padding, padding ? last.header.padding : 0);
        if (written.hasLame) {
            const int crcAt = 4 + header.sideInfoLength() + kXingHeaderBytes + 34;
            EXPECT_EQ(Mp3Crc16(0, data, static_cast<std::size_t>(crcAt)),
                      (data[crcAt] << 8) | data[crcAt + 1]);
        }

        // The program's own frame report reads the frame count of an MPEG-1
        // stereo "Xing" header (it looks for no other); the length it gives a
        // join of one constant rate ("Info") comes from the size and that rate.
        // It looks for the frame in the first 6000 bytes only and does not skip
        // a tag, so it reads the audio behind the joined file's tag (which
        // holds the sources' cover) as a file of its own.
        const QString audioOnly = output + QStringLiteral(".audio.mp3");
        JoinRunTestBed::writeFile(audioOnly, bytes);
        // The joined file's tag carries a source's picture as it was, and the
        // pictures of these sources are random bytes behind a JPEG head, which
        // a decoder of the whole file tries to read as an image: the audio
        // behind the tag is decoded on its own.
        EXPECT_EQ(FfmpegDecodeErrors(audioOnly).toStdString(), "");
        // mpg123 skips the tag on its own and does not look at the picture.
        const Mpg123Decode mpg123 = DecodeWithMpg123(output);
        EXPECT_EQ(mpg123.frames, frames);
        EXPECT_EQ(mpg123.complaints.toStdString(), "");
        ID3Reader reader;
        reader.setFileName(audioOnly);
        std::printf("[ frame report ] %s\n", qPrintable(reader.InfoString().replace(
                                                 QStringLiteral("\r\n"), QStringLiteral(" | "))));
        if (header.mpegVersion() == 1 && header.channels() == 2) {
            if (written.kind == Mp3HeaderFrame::Kind::Xing) {
                EXPECT_EQ(reader.Frames(), frames);
                EXPECT_NEAR(static_cast<double>(reader.Frames()) * 1152 / reader.Hz(), seconds,
                            frameSeconds);
            } else {
                EXPECT_NEAR(reader.Seconds(), seconds, 1.0);
            }
        }
        std::printf("[ MP3 corpus ] %lld frames, %.3f s; ffprobe %.3f s, MediaInfo %.3f s\n",
                    frames, seconds, ffprobeSeconds(output), mediaInfoSeconds(output));
    }

    JoinRunTestBed bed;
    QList<Source> sources;
    QList<QByteArray> pictures;
    QString output;
    int made = 0;
};

Mp3Options cbr(int kbps, double seconds, int hz = 44100, int channels = 2) {
    Mp3Options options;
    options.bitrateKbps = kbps;
    options.seconds = seconds;
    options.sampleRate = hz;
    options.channels = channels;
    return options;
}

Mp3Options vbr(int quality, double seconds, int hz = 44100, int channels = 2) {
    Mp3Options options = cbr(128, seconds, hz, channels);
    options.vbrQuality = quality;
    return options;
}

}  // namespace

TEST_F(Mp3JoinCorpusTest, Mpeg1Stereo_TaggedFilesOfMixedRates_OnlyTheAudioBehindOneHeader) {
    QList<Source> list;
    list << make("one.mp3", cbr(128, 2.5),
                 id3v2Tag(3, picture(1, 30000)) + QByteArray("junk before the first frame"),
                 id3v1Tag());
    list << make("two.mp3", cbr(192, 1.5), id3v2Tag(4, picture(2, 20000), true),
                 apeTag() + id3v1Tag());
    list << make("three.mp3", vbr(2, 2.0), id3v2Tag(3, picture(3, 25000)),
                 lyrics3Block() + id3v1Tag());
    // Its tag says it is larger than the whole file.
    list << make("four.mp3", cbr(160, 1.0), id3v2Tag(3, picture(4, 9000), false, 5000000),
                 id3v1Tag());
    list << make("five.mp3", vbr(5, 1.5), id3v2Tag(4, picture(5, 12000)), id3v1Tag(),
                 Header::AsVbri);
    list << make("six.mp3", cbr(128, 1.2), id3v2Tag(3, picture(6, 15000)), id3v1Tag());
    join(list);
    expectRightJoin();
}

TEST_F(Mp3JoinCorpusTest, Mpeg1_LastFileWithVbriHeader_NoPaddingTaken) {
    QList<Source> list;
    list << make("one.mp3", vbr(4, 1.5), id3v2Tag(3, picture(11, 8000)), id3v1Tag());
    list << make("two.mp3", vbr(4, 1.5), id3v2Tag(3, picture(12, 8000)), id3v1Tag(),
                 Header::AsVbri);
    join(list);
    expectRightJoin();
}

TEST_F(Mp3JoinCorpusTest, Mpeg1Mono_CbrAndVbr) {
    QList<Source> list;
    list << make("one.mp3", cbr(64, 2.0, 48000, 1), id3v2Tag(3, picture(21, 10000)), id3v1Tag());
    list << make("two.mp3", vbr(3, 2.0, 48000, 1), id3v2Tag(4, picture(22, 10000), true),
                 id3v1Tag());
    join(list);
    expectRightJoin();
}

TEST_F(Mp3JoinCorpusTest, Mpeg2Stereo_CbrAndVbr) {
    QList<Source> list;
    list << make("one.mp3", cbr(64, 2.0, 22050), id3v2Tag(3, picture(31, 10000)), id3v1Tag());
    list << make("two.mp3", vbr(4, 2.0, 22050), id3v2Tag(3, picture(32, 10000)),
                 apeTag() + id3v1Tag());
    list << make("three.mp3", cbr(32, 1.0, 22050), id3v2Tag(4, picture(33, 5000)), id3v1Tag());
    join(list);
    expectRightJoin();
}

TEST_F(Mp3JoinCorpusTest, Mpeg25Mono_CbrAndVbr) {
    QList<Source> list;
    list << make("one.mp3", cbr(24, 2.0, 11025, 1), id3v2Tag(3, picture(41, 6000)), id3v1Tag());
    list << make("two.mp3", vbr(6, 2.0, 11025, 1), id3v2Tag(3, picture(42, 6000)), id3v1Tag());
    join(list);
    expectRightJoin();
}

TEST_F(Mp3JoinCorpusTest, Mpeg1_LastFileWithoutHeaderFrame_EarlierFilesPaddingNotTaken) {
    QList<Source> list;
    list << make("one.mp3", cbr(128, 1.5), id3v2Tag(3, picture(51, 8000)), QByteArray());
    list << make("two.mp3", cbr(128, 1.5), QByteArray(), QByteArray(), Header::Removed);
    join(list);
    expectRightJoin();
}
