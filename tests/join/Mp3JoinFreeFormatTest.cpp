// Free-format MP3 files (bit-rate index 0: the frames' length is the distance
// between two headers) in an MP3 list, made by the lame encoder: their rows
// say what they are and carry no mark, and the join through the real scripts
// and the real fix tool keeps every frame of every source, with the first
// source's delay, the last one's padding and one chapter per source. Checked
// with mpg123 (which reads free format; ffprobe reads only a few frames of it)
// and python3-mutagen.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <cmath>

#include "join/JoinRunTestBed.h"
#include "join/StartJoin.h"
#include "list/Columns.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"
#include "media/MediaInfoFile.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "support/MediaMaker.h"
#include "support/TagByteForms.h"

namespace {

// One source: its path, the frames mpg123 decodes of it, and its header
// frame (the LAME header with the delay and padding).
struct Source {
    QString path;
    long long frames = 0;
    Mp3HeaderFrame header;
};

Mp3HeaderFrame headerFrameOf(const QByteArray& bytes) {
    const QByteArray audio = bytes.mid(Id3v2TagLength(bytes));
    const auto* data = reinterpret_cast<const std::uint8_t*>(audio.constData());
    const MpegFrameHeader header = MpegFrameHeader::fromBytes(data);
    // A free-format header frame is as long as the distance to the next
    // frame; the header and its LAME extension lie well within 300 bytes.
    const std::size_t length = header.isFreeFormat() ? 300 : header.frameLength();
    return Mp3HeaderFrame::read(data, std::min<std::size_t>(length, audio.size()), header);
}

QJsonObject mutagenTag(const QString& path) {
    QProcess process;
    process.start(QStringLiteral("/usr/bin/python3"),
                  {QStringLiteral(VELMORA_MUTAGEN_READER), path});
    process.waitForFinished(120000);
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

class Mp3JoinFreeFormatTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(HaveFfmpeg());
        SetInstallFolderOverride(bed.install);
        bed.putRealTools();
    }

    Source ordinary(const QString& name, int hz) {
        Mp3Options options;
        options.seconds = 2;
        options.frequencyHz = hz;
        return described(MakeMp3(bed.media, name, options));
    }
    Source freeFormat(const QString& name, int kbps, int hz) {
        Mp3Options options;
        options.seconds = 2;
        options.frequencyHz = hz;
        return described(MakeFreeFormatMp3(bed.media, name, kbps, options));
    }
    static Source described(const QString& path) {
        EXPECT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        Source source;
        source.path = path;
        const Mpg123Decode decoded = DecodeWithMpg123(path);
        EXPECT_EQ(decoded.complaints.toStdString(), "");
        source.frames = decoded.frames;
        source.header = headerFrameOf(JoinRunTestBed::readFile(path));
        return source;
    }

    // The list of the sources, its rows filled from the files as the adding
    // fills them.
    void makeList(const QList<Source>& list) {
        sources = list;
        MainModel& model = bed.model;
        model.items.clearRows();
        model.state.setListType(QStringLiteral("MP3"));
        ClearColumns(model);
        AddSharedColumns(model);
        AddMP3Columns(model);
        for (const Source& source : list) {
            const int row = model.items.addRow(QFileInfo(source.path).fileName());
            model.items.setCell(row, SharedCell::Filepath, source.path);
            FillListItem(model, 0);
        }
        UpdateListTotals(model);
    }

    // The join of the list through the pre-flight and the run on its timers
    // into out/Joined.mp3; gives the output.
    QString join() {
        const QString output = bed.media + QStringLiteral("/out/Joined.mp3");
        QDir().mkpath(bed.media + QStringLiteral("/out"));
        bed.questions.chooseFile(output);
        EXPECT_TRUE(StartJoin(bed.model));
        JoinRun& run = bed.makeRun();
        run.load(true);
        EXPECT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 240000));
        EXPECT_EQ(bed.state.operationText(), QStringLiteral("Finished!"));
        EXPECT_EQ(bed.questions.asked.size(), 0);
        run.cancelClicked();
        return output;
    }

    long long sourceFrames() const {
        long long frames = 0;
        for (const Source& source : sources) {
            frames += source.frames;
        }
        return frames;
    }

    // Every frame of every source in mpg123, the header frame's counts and
    // gapless values, and each chapter where the frames before it end, on the
    // playback clock, to the millisecond. MediaInfo reads no file that starts
    // in free format.
    void expectWholeJoin(const QString& output, bool startsInFreeFormat = false) {
        const Mpg123Decode decoded = DecodeWithMpg123(output);
        EXPECT_EQ(decoded.frames, sourceFrames());
        EXPECT_EQ(decoded.complaints.toStdString(), "");
        const Mp3HeaderFrame written = headerFrameOf(JoinRunTestBed::readFile(output));
        EXPECT_EQ(written.frames, static_cast<std::uint32_t>(sourceFrames()));
        ASSERT_TRUE(sources.first().header.hasLame);
        ASSERT_TRUE(sources.last().header.hasLame);
        EXPECT_EQ(written.delay, sources.first().header.delay);
        EXPECT_EQ(written.padding, sources.last().header.padding);
        // Frames of several rates: the LAME extension says no constant rate,
        // and MediaInfo takes the length from the frame count, not from the
        // size at the first frame's rate.
        EXPECT_NE(written.lame[9] & 0x0F, 1);
        if (!startsInFreeFormat) {
            MediaInfoFile media(output);
            EXPECT_NEAR(media.inform(QStringLiteral("General;%Duration%")).toDouble(),
                        sourceFrames() * 1152.0 / 44.1, 1152.0 / 44.1);
        }

        const QJsonArray chapters = mutagenTag(output).value(QStringLiteral("chapters")).toArray();
        ASSERT_EQ(chapters.size(), sources.size());
        const auto ms = [&](long long frames, int less) {
            return std::llround((frames * 1152.0 - less) / 44100.0 * 1000.0);
        };
        long long before = 0;
        for (int i = 0; i < sources.size(); ++i) {
            const QJsonObject chapter = chapters.at(i).toObject();
            EXPECT_EQ(chapter.value(QStringLiteral("start")).toInteger(),
                      i == 0 ? 0 : ms(before, written.delay))
                << "chapter " << i;
            before += sources[i].frames;
        }
        EXPECT_EQ(chapters.last().toObject().value(QStringLiteral("end")).toInteger(),
                  ms(before, written.delay + written.padding));
    }

    JoinRunTestBed bed;
    QList<Source> sources;
};

}  // namespace

TEST_F(Mp3JoinFreeFormatTest, FreeFormatRow_SaysSoAndIsNotMarked) {
    makeList({ordinary(QStringLiteral("one.mp3"), 440),
              freeFormat(QStringLiteral("free.mp3"), 200, 550)});
    const ItemList& items = bed.model.items;
    EXPECT_EQ(items.cell(2, Mp3Cell::Bitrate), QStringLiteral("free format"));
    EXPECT_EQ(items.cell(2, Mp3Cell::Hertz), items.cell(1, Mp3Cell::Hertz));
    EXPECT_EQ(items.cell(2, Mp3Cell::Duration), QStringLiteral("2 seconds"));
    EXPECT_EQ(items.rowCheck(2), RowCheck{});
    EXPECT_EQ(bed.model.state.listStatus(), QStringLiteral("Green"));
}

TEST_F(Mp3JoinFreeFormatTest, FreeFormatBetweenOrdinaryOnes_JoinsFrameForFrame) {
    makeList({ordinary(QStringLiteral("one.mp3"), 440),
              freeFormat(QStringLiteral("free.mp3"), 200, 550),
              ordinary(QStringLiteral("three.mp3"), 660)});
    expectWholeJoin(join());
}

TEST_F(Mp3JoinFreeFormatTest, FreeFormatFirstAndLast_JoinsFrameForFrame) {
    makeList({freeFormat(QStringLiteral("free one.mp3"), 200, 440),
              ordinary(QStringLiteral("two.mp3"), 550),
              freeFormat(QStringLiteral("free three.mp3"), 200, 660)});
    const QString output = join();
    expectWholeJoin(output, true);
    // The header frame of a stream that starts in free format is a frame of
    // that stream: free format, as long as its frames.
    const QByteArray bytes = JoinRunTestBed::readFile(output);
    const QByteArray audio = bytes.mid(Id3v2TagLength(bytes));
    EXPECT_TRUE(MpegFrameHeader::fromBytes(reinterpret_cast<const std::uint8_t*>(audio.constData()))
                    .isFreeFormat());
}

TEST_F(Mp3JoinFreeFormatTest, FreeFormatFilesOfTwoRates_FailNamingTheSecond) {
    // A reader learns the length of free-format frames once in a stream: a
    // join of two free-format rates would lose the frames of the second.
    makeList({freeFormat(QStringLiteral("free one.mp3"), 200, 440),
              ordinary(QStringLiteral("two.mp3"), 550),
              freeFormat(QStringLiteral("free three.mp3"), 256, 660)});
    const QString output = bed.media + QStringLiteral("/Joined.mp3");
    bed.questions.chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    bed.makeRun().load(true);
    ASSERT_TRUE(JoinRunTestBed::waitUntil([&] { return bed.finished(); }, 240000));
    EXPECT_EQ(bed.state.operationText(), QStringLiteral("Failed!"));
    ASSERT_EQ(bed.questions.asked.size(), 1);
    EXPECT_TRUE(bed.questions.asked[0].prompt.contains(
        QStringLiteral("\r\nFile: ") + sources[2].path +
        QStringLiteral("\r\nReason: free format at 256 kbit/s after free format at 200 kbit/s: "
                       "a joined file holds one free-format rate only\r\n")))
        << bed.questions.asked[0].prompt.toStdString();
    EXPECT_FALSE(QFile::exists(output));
    bed.run->cancelClicked();
}
