#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "ByteFiles.h"
#include "list/FillListItem.h"
#include "list/MainModel.h"
#include "media/ID3Reader.h"
#include "media/ItemCells.h"
#include "media/MediaInfoFile.h"
#include "support/MediaMaker.h"
#include "support/MemoryClipboard.h"
#include "support/RequireFfmpeg.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"

using bytefiles::Filler;
using bytefiles::FrameHeader;
using bytefiles::Tag;

namespace {

const QStringList kMp3Headers = {"Filename", "Filesize", "Date Modified", "Filepath",
                                 "Artist",   "Title",    "Album",         "Year",
                                 "Genre",    "Duration", "Bitrate",       "Hertz"};
const QStringList kMpegHeaders = {"Filename",    "Filesize",   "Date Modified", "Filepath",
                                  "Video Codec", "Video Size", "Duration"};

// A list of the given type with its columns, as a new list has them.
class ListFixture : public ::testing::Test {
protected:
    void useType(const QString& type) {
        model.items.clearColumns();
        for (const QString& header : type == "MP3" ? kMp3Headers : kMpegHeaders) {
            model.items.addColumn(header);
        }
        model.state.setListType(type);
    }
    // Adds a row with its path in cell 3 and fills it as the adding routines do.
    int addAndFill(const QString& path) {
        const int row = model.items.addRow(GetName(path));
        model.items.setCell(row, 3, path);
        FillListItem(model, 0);
        return row;
    }
    static QString GetName(const QString& path) { return QFileInfo(path).fileName(); }
    QString cell(int row, int cell) const { return model.items.cell(row, cell); }
    QString write(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        EXPECT_TRUE(bytefiles::Write(path, bytes));
        return path;
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
    QTemporaryDir dir;
};

}  // namespace

// ---- The size and date texts ----

TEST(ItemCellTexts, SizeText_UnderHalfAKilobyte_ReadsOneKB) {
    EXPECT_EQ(FileSizeText(0), "1 KB");
    EXPECT_EQ(FileSizeText(1), "1 KB");
    EXPECT_EQ(FileSizeText(511), "1 KB");
    EXPECT_EQ(FileSizeText(512), "1 KB");
}

TEST(ItemCellTexts, SizeText_RoundsAndGroupsThousands) {
    EXPECT_EQ(FileSizeText(1535), "1 KB");
    EXPECT_EQ(FileSizeText(1536), "2 KB");
    EXPECT_EQ(FileSizeText(2560), "3 KB");  // halves round up
    EXPECT_EQ(FileSizeText(1048576), "1,024 KB");
    EXPECT_EQ(FileSizeText(4312064), "4,211 KB");
    EXPECT_EQ(FileSizeText(5000LL * 1024 * 1024 * 1024), "5,242,880,000 KB");
}

TEST(ItemCellTexts, SizeText_GroupsWithTheDefaultLocale) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    const QString text = FileSizeText(1048576);
    QLocale::setDefault(before);
    EXPECT_EQ(text, "1.024 KB");
}

TEST(ItemCellTexts, DateText_IsTheLocalesShortDateAndTime) {
    const QDateTime when(QDate(2024, 1, 2), QTime(15, 4, 5));
    EXPECT_EQ(FileDateText(when), QLocale().toString(when, QLocale::ShortFormat));
    EXPECT_TRUE(FileDateText(when).startsWith(QStringLiteral("1/2/24 3:04")))
        << FileDateText(when).toStdString();
    EXPECT_TRUE(FileDateText(when).endsWith(QStringLiteral("PM")));
}

// ---- The media value texts ----

TEST(ItemCellTexts, Bitrate_IsTheFirstThreeCharacters) {
    EXPECT_EQ(BitrateCell("128000"), "128 kbps");
    EXPECT_EQ(BitrateCell("320000"), "320 kbps");
    EXPECT_EQ(BitrateCell("64000"), "640 kbps");
    EXPECT_EQ(BitrateCell("96000"), "960 kbps");
    EXPECT_EQ(BitrateCell("8000"), "800 kbps");
    EXPECT_EQ(BitrateCell("12"), "12 kbps");
    EXPECT_EQ(BitrateCell(""), " kbps");
}

TEST(ItemCellTexts, Hertz_AnyChannelCountButZeroReadsStereo) {
    EXPECT_EQ(HertzCell("44100", "2"), "44100 (Stereo)");
    EXPECT_EQ(HertzCell("44100", "1"), "44100 (Stereo)");
    EXPECT_EQ(HertzCell("48000", "6"), "48000 (Stereo)");
    EXPECT_EQ(HertzCell("44100", "0"), "44100 (Mono)");
    EXPECT_EQ(HertzCell("44100", ""), "44100");
    EXPECT_EQ(HertzCell("44100", "2 / 1"), "44100");
    EXPECT_EQ(HertzCell("", ""), "");
}

TEST(ItemCellTexts, Duration_WholeSecondsTowardZero) {
    EXPECT_EQ(DurationCellFromPlayTime("61900").value_or("none"), "61 seconds");
    EXPECT_EQ(DurationCellFromPlayTime("61999.9").value_or("none"), "61 seconds");
    EXPECT_EQ(DurationCellFromPlayTime("999").value_or("none"), "0 seconds");
    EXPECT_EQ(DurationCellFromPlayTime("0").value_or("none"), "0 seconds");
    EXPECT_EQ(DurationCellFromPlayTime("5000000000").value_or("none"), "5000000 seconds");
    EXPECT_FALSE(DurationCellFromPlayTime("").has_value());
    EXPECT_FALSE(DurationCellFromPlayTime("abc").has_value());
}

TEST(ItemCellTexts, VideoSize_EmptyOrBeyond16BitsCountsZero) {
    EXPECT_EQ(VideoSizeCell("352", "288"), "352x288");
    EXPECT_EQ(VideoSizeCell("", ""), "0x0");
    EXPECT_EQ(VideoSizeCell("32767", "32768"), "32767x0");
    EXPECT_EQ(VideoSizeCell("40000", "480"), "0x480");
    EXPECT_EQ(VideoSizeCell("x", "480"), "0x480");
}

TEST(ItemCellTexts, VideoDuration_MissingOrBeyond32BitsIsZeroSeconds) {
    EXPECT_EQ(VideoDurationCell("2040"), "2 seconds");
    EXPECT_EQ(VideoDurationCell(""), "0 seconds");
    EXPECT_EQ(VideoDurationCell("2147483647"), "2147483 seconds");
    EXPECT_EQ(VideoDurationCell("2147483648"), "0 seconds");
    EXPECT_EQ(VideoDurationCell("999"), "0 seconds");
}

// ---- MediaInfo on real files ----

TEST(MediaInfoTemplates, GiveMillisecondsAndTheClassicCodecNames) {
    REQUIRE_FFMPEG();
    QTemporaryDir dir;
    MpegOptions mpeg1;
    mpeg1.seconds = 3;
    MpegOptions mpeg2;
    mpeg2.mpegVersion = 2;
    mpeg2.seconds = 3;
    const QString one = MakeMpeg(dir.path(), QStringLiteral("one.mpg"), mpeg1);
    const QString two = MakeMpeg(dir.path(), QStringLiteral("two.mpg"), mpeg2);
    ASSERT_FALSE(one.isEmpty() || two.isEmpty()) << LastMediaMakerError().toStdString();
    MediaInfoFile first(one);
    EXPECT_TRUE(first.opened());
    EXPECT_EQ(first.inform(QStringLiteral("Video;%Codec%")), "MPEG-1V");
    const double ms = first.inform(QStringLiteral("General;%PlayTime%")).toDouble();
    EXPECT_GT(ms, 2900);
    EXPECT_LT(ms, 3300);
    MediaInfoFile second(two);
    EXPECT_EQ(second.inform(QStringLiteral("Video;%Codec%")), "MPEG-2V");
    EXPECT_EQ(second.inform(QStringLiteral("Video;%Width%")), "352");
    EXPECT_EQ(second.inform(QStringLiteral("Audio;%BitRate%")), "128000");
}

TEST(MediaInfoTemplates, OpenFailsOnlyForMissingFile) {
    QTemporaryDir dir;
    EXPECT_FALSE(MediaInfoFile(dir.filePath(QStringLiteral("none.mp3"))).opened());
    const QString text = dir.filePath(QStringLiteral("text.mp3"));
    ASSERT_TRUE(bytefiles::Write(text, "just some text"));
    MediaInfoFile file(text);
    EXPECT_TRUE(file.opened());
    EXPECT_EQ(file.inform(QStringLiteral("Audio;%BitRate%")), QString());
}

TEST(MediaInfoTemplates, SampleFiles_GiveTheExpectedValues) {
    const QString folder = SampleMediaFolder();
    ASSERT_TRUE(QFileInfo::exists(folder + "/mimetype-mpeg.mpeg")) << folder.toStdString();
    MediaInfoFile mpeg(folder + "/mimetype-mpeg.mpeg");
    EXPECT_EQ(mpeg.inform(QStringLiteral("Video;%Codec%")), "MPEG-2V");
    EXPECT_EQ(mpeg.inform(QStringLiteral("Video;%Width%")), "320");
    EXPECT_EQ(mpeg.inform(QStringLiteral("Video;%Height%")), "240");
    EXPECT_EQ(mpeg.inform(QStringLiteral("General;%PlayTime%")), "720");
    MediaInfoFile mp3(folder + "/mimetype-mp3.v2.notag.mp3");
    EXPECT_EQ(mp3.inform(QStringLiteral("Audio;%SamplingRate%")), "22050");
    EXPECT_EQ(mp3.inform(QStringLiteral("Audio;%Channel(s)%")), "1");
}

TEST(MediaText, CopiesTheWideText) {
    EXPECT_EQ(MediaText(L"MPEG-2V"), "MPEG-2V");
    EXPECT_EQ(MediaText(L""), "");
    EXPECT_EQ(MediaText(nullptr), "");
    EXPECT_EQ(MediaText(L"Caf\u00e9 \u2603"), QString::fromUtf8("Café ☃"));
}

// ---- FillListItem on real and byte-built files ----

TEST_F(ListFixture, Mp3Cbr128Stereo_FillsEveryCell) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Mp3Options options;
    options.seconds = 3;
    options.id3v1 = true;
    options.metadata = {{"title", "Song"}, {"artist", "Band"}, {"album", "Record"},
                        {"date", "1999"},  {"genre", "Rock"},  {"comment", "x"}};
    const QString path = MakeMp3(dir.path(), QStringLiteral("song.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const int row = addAndFill(path);
    const QFileInfo info(path);
    EXPECT_EQ(cell(row, 0), "song.mp3");
    EXPECT_EQ(cell(row, 1), FileSizeText(info.size()));
    EXPECT_EQ(cell(row, 1), QString::number(qRound(info.size() / 1024.0)) + " KB");
    EXPECT_EQ(cell(row, 2), QLocale().toString(info.lastModified(), QLocale::ShortFormat));
    EXPECT_EQ(cell(row, 3), path);
    EXPECT_EQ(cell(row, 4),
              QString("Band").leftJustified(30, QChar(0)));  // zero-padded by the encoder
    EXPECT_EQ(cell(row, 5),
              QString("Song").leftJustified(30, QChar(0)));  // zero-padded by the encoder
    EXPECT_EQ(cell(row, 6),
              QString("Record").leftJustified(30, QChar(0)));  // zero-padded by the encoder
    EXPECT_EQ(cell(row, 7), "1999");
    EXPECT_EQ(cell(row, 8), "Rock");
    EXPECT_EQ(cell(row, 9), "3 seconds");
    EXPECT_EQ(cell(row, 10), "128 kbps");
    EXPECT_EQ(cell(row, 11), "44100 (Stereo)");
}

TEST_F(ListFixture, Mp3Variants_GiveTheExactCellTexts) {
    REQUIRE_FFMPEG();
    useType("MP3");
    struct Case {
        int kbps;
        int rate;
        int channels;
        const char* bitrate;
        const char* hertz;
    };
    const Case cases[] = {{96, 44100, 2, "960 kbps", "44100 (Stereo)"},
                          {64, 44100, 2, "640 kbps", "44100 (Stereo)"},
                          {128, 44100, 1, "128 kbps", "44100 (Stereo)"},
                          {192, 48000, 2, "192 kbps", "48000 (Stereo)"},
                          {320, 32000, 2, "320 kbps", "32000 (Stereo)"}};
    for (const Case& c : cases) {
        Mp3Options options;
        options.bitrateKbps = c.kbps;
        options.sampleRate = c.rate;
        options.channels = c.channels;
        const QString name =
            QStringLiteral("m%1_%2_%3.mp3").arg(c.kbps).arg(c.rate).arg(c.channels);
        const QString path = MakeMp3(dir.path(), name, options);
        ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
        const int row = addAndFill(path);
        EXPECT_EQ(cell(row, 10), c.bitrate) << name.toStdString();
        EXPECT_EQ(cell(row, 11), c.hertz) << name.toStdString();
        EXPECT_EQ(cell(row, 9), "2 seconds") << name.toStdString();
        // No tag: the tag cells of a new row stay empty.
        EXPECT_EQ(cell(row, 4), "");
        EXPECT_EQ(cell(row, 8), "");
    }
}

TEST_F(ListFixture, Mp3Of61Point9Seconds_Reads61Seconds) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Mp3Options options;
    options.seconds = 61.9;
    options.bitrateKbps = 32;
    options.channels = 1;
    const QString path = MakeMp3(dir.path(), QStringLiteral("long.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const int row = addAndFill(path);
    EXPECT_EQ(cell(row, 9), "61 seconds");
    EXPECT_EQ(cell(row, 10), "320 kbps");
}

TEST_F(ListFixture, VbrMp3_GetsTheLibrarysRateCut) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Mp3Options options;
    options.vbrQuality = 4;
    options.seconds = 3;
    const QString path = MakeMp3(dir.path(), QStringLiteral("vbr.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const int row = addAndFill(path);
    MediaInfoFile media(path);
    const QString rate = media.inform(QStringLiteral("Audio;%BitRate%"));
    ASSERT_FALSE(rate.isEmpty());
    EXPECT_EQ(cell(row, 10), rate.left(3) + " kbps");
    EXPECT_EQ(cell(row, 11), "44100 (Stereo)");
}

TEST_F(ListFixture, Mpeg1AndMpeg2_FillCodecSizeAndDuration) {
    REQUIRE_FFMPEG();
    useType("MPEG");
    MpegOptions one;
    one.seconds = 3;
    MpegOptions two;
    two.mpegVersion = 2;
    two.width = 720;
    two.height = 576;
    two.seconds = 2;
    MpegOptions other = two;
    other.width = 480;
    other.height = 360;
    other.format = "mpeg";
    const QString a = MakeMpeg(dir.path(), QStringLiteral("one.mpg"), one);
    const QString b = MakeMpeg(dir.path(), QStringLiteral("two.mpg"), two);
    const QString c = MakeMpeg(dir.path(), QStringLiteral("three.mpeg"), other);
    ASSERT_FALSE(a.isEmpty() || b.isEmpty() || c.isEmpty()) << LastMediaMakerError().toStdString();
    int row = addAndFill(a);
    EXPECT_EQ(cell(row, 0), "one.mpg");
    EXPECT_EQ(cell(row, 4), "MPEG-1V");
    EXPECT_EQ(cell(row, 5), "352x288");
    EXPECT_EQ(cell(row, 6), "3 seconds");
    row = addAndFill(b);
    EXPECT_EQ(cell(row, 4), "MPEG-2V");
    EXPECT_EQ(cell(row, 5), "720x576");
    EXPECT_EQ(cell(row, 6), "2 seconds");
    row = addAndFill(c);
    EXPECT_EQ(cell(row, 4), "MPEG-2V");
    EXPECT_EQ(cell(row, 5), "480x360");
    EXPECT_EQ(model.items.count(), 3);
    EXPECT_EQ(cell(1, 4), "MPEG-1V");  // row 0 filled only the last row each time
}

TEST_F(ListFixture, MpegListWithoutVideo_ReadsEmptyCodec0x0And0Seconds) {
    useType("MPEG");
    const int row = addAndFill(write("notes.mpg", "nothing of video here"));
    EXPECT_EQ(cell(row, 4), "");
    EXPECT_EQ(cell(row, 5), "0x0");
    EXPECT_EQ(cell(row, 6), "0 seconds");
    EXPECT_EQ(cell(row, 1), "1 KB");
}

TEST_F(ListFixture, MpegListWithAudioOnlyFile_HasNoCodecAndSize0x0) {
    REQUIRE_FFMPEG();
    useType("MPEG");
    Mp3Options options;
    options.seconds = 2;
    const int row = addAndFill(MakeMp3(dir.path(), QStringLiteral("a.mp3"), options));
    EXPECT_EQ(cell(row, 4), "");
    EXPECT_EQ(cell(row, 5), "0x0");
    EXPECT_EQ(cell(row, 6), "2 seconds");
}

TEST_F(ListFixture, Mp3ListWithoutAudio_DurationUntouchedBitrateBlankHertzEmpty) {
    useType("MP3");
    const int row = model.items.addRow("x");
    model.items.setCell(row, 3, write("text.mp3", "plain text, no audio at all"));
    model.items.setCell(row, 9, "7 seconds");
    FillListItem(model, row);
    EXPECT_EQ(cell(row, 9), "7 seconds");
    EXPECT_EQ(cell(row, 10), " kbps");
    EXPECT_EQ(cell(row, 11), "");
    const int fresh = addAndFill(write("text2.mp3", "more text"));
    EXPECT_EQ(cell(fresh, 9), "");
}

TEST_F(ListFixture, FreeFormatMp3_CellsAndTraitsFromItsFrames) {
    // The media library sees no audio in a free-format file: the row takes
    // the cells of the frames the join keeps.
    REQUIRE_FFMPEG();
    useType("MP3");
    Mp3Options options;
    options.seconds = 3;
    const QString path = MakeFreeFormatMp3(dir.path(), "free.mp3", 200, options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const int row = addAndFill(path);
    EXPECT_EQ(cell(row, 9), "3 seconds");
    EXPECT_EQ(cell(row, 10), "free format");
    EXPECT_EQ(cell(row, 11), "44100 (Stereo)");
    const ItemReading reading = ReadItem(path, "MP3");
    ASSERT_EQ(reading.traits->audio.size(), 1);
    EXPECT_EQ(reading.traits->audio.first().codecText(), "MPEG-1 Layer III");
    EXPECT_EQ(reading.traits->audio.first().rate, 44100);
    EXPECT_EQ(reading.traits->audio.first().channels, 2);
}

TEST_F(ListFixture, SizeCells_OfByteBuiltFiles) {
    useType("MPEG");
    EXPECT_EQ(cell(addAndFill(write("empty.mpg", QByteArray())), 1), "1 KB");
    EXPECT_EQ(cell(addAndFill(write("s511.mpg", Filler(511))), 1), "1 KB");
    EXPECT_EQ(cell(addAndFill(write("s1536.mpg", Filler(1536))), 1), "2 KB");
    EXPECT_EQ(cell(addAndFill(write("s1m.mpg", Filler(1048576))), 1), "1,024 KB");
}

TEST_F(ListFixture, DateCell_IsTheShortDateAndTimeOfTheFile) {
    useType("MPEG");
    const QString path = write("dated.mpg", Filler(10));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QDateTime when(QDate(2024, 1, 2), QTime(15, 4, 5));
    ASSERT_TRUE(file.setFileTime(when, QFileDevice::FileModificationTime));
    file.close();
    const int row = addAndFill(path);
    EXPECT_EQ(cell(row, 2), FileDateText(when));
    EXPECT_TRUE(cell(row, 2).startsWith("1/2/24 3:04")) << cell(row, 2).toStdString();
}

TEST_F(ListFixture, MissingFile_OneKBAndDateLeftAsItWas) {
    useType("MP3");
    const int row = model.items.addRow("gone.mp3");
    model.items.setCell(row, 3, dir.filePath("gone.mp3"));
    model.items.setCell(row, 2, "old date");
    model.items.setCell(row, 4, "Old Artist");
    FillListItem(model, row);
    EXPECT_EQ(cell(row, 0), "gone.mp3");
    EXPECT_EQ(cell(row, 1), "1 KB");
    EXPECT_EQ(cell(row, 2), "old date");
    EXPECT_EQ(cell(row, 4), "Old Artist");
    EXPECT_EQ(cell(row, 10), " kbps");
    EXPECT_EQ(cell(row, 11), "");
}

TEST_F(ListFixture, RowZeroInEmptyList_DoesNothing) {
    useType("MP3");
    FillListItem(model, 0);
    EXPECT_EQ(model.items.count(), 0);
    FillListItem(model, 5);
    EXPECT_EQ(model.items.count(), 0);
}

TEST_F(ListFixture, RowZero_FillsTheLastRowOnly) {
    useType("MPEG");
    const QString path = write("a.mpg", Filler(2048));
    for (int i = 0; i < 3; ++i) {
        const int row = model.items.addRow("x");
        model.items.setCell(row, 3, path);
    }
    FillListItem(model, 0);
    EXPECT_EQ(cell(3, 1), "2 KB");
    EXPECT_EQ(cell(2, 1), "");
    EXPECT_EQ(cell(1, 1), "");
    FillListItem(model, 1);
    EXPECT_EQ(cell(1, 1), "2 KB");
    EXPECT_EQ(cell(1, 0), "a.mpg");
}

TEST_F(ListFixture, TagRemovedInEditor_RefilledRowKeepsFormerTagTexts) {
    useType("MP3");
    const QString path =
        write("tagged.mp3", FrameHeader() + Filler(3000) + Tag("T", "A", "L", "2020", "C", 8));
    const int row = addAndFill(path);
    ASSERT_EQ(cell(row, 4), "A" + QString(29, QChar(0)));
    ASSERT_EQ(cell(row, 8), "Jazz");
    ID3Reader reader;
    reader.setFileName(path);
    ASSERT_TRUE(reader.ClearTag());
    FillListItem(model, row);
    EXPECT_EQ(cell(row, 4), "A" + QString(29, QChar(0)));
    EXPECT_EQ(cell(row, 7), "2020");
    EXPECT_EQ(cell(row, 8), "Jazz");
}

TEST_F(ListFixture, TagWithUnknownGenre_ReadsUnknown) {
    useType("MP3");
    const int row = addAndFill(
        write("g.mp3", FrameHeader() + Filler(3000) + Tag("T", "A", "L", "2020", "C", 255)));
    EXPECT_EQ(cell(row, 8), "Unknown");
}

TEST_F(ListFixture, OtherListTypeText_TakesTheMpegSteps) {
    useType("MPEG");
    model.state.setListType("mp3");  // not exactly "MP3"
    const int row = addAndFill(write("x.mpg", Filler(100)));
    EXPECT_EQ(cell(row, 5), "0x0");
    EXPECT_EQ(cell(row, 6), "0 seconds");
}

TEST_F(ListFixture, NonAsciiFileName_OpensInTheLibrary) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Mp3Options options;
    options.bitrateKbps = 96;
    const QString path = MakeMp3(dir.path(), QString::fromUtf8("Müsic ☃ été.mp3"), options);
    ASSERT_FALSE(path.isEmpty()) << LastMediaMakerError().toStdString();
    const int row = addAndFill(path);
    EXPECT_EQ(cell(row, 0), QString::fromUtf8("Müsic ☃ été.mp3"));
    EXPECT_EQ(cell(row, 10), "960 kbps");
    EXPECT_EQ(cell(row, 11), "44100 (Stereo)");
}

TEST_F(ListFixture, SampleFiles_FillTheirRows) {
    const QString folder = SampleMediaFolder();
    ASSERT_TRUE(QFileInfo::exists(folder + "/mimetype-mpeg.mpeg")) << folder.toStdString();
    useType("MPEG");
    int row = addAndFill(folder + "/mimetype-mpeg.mpeg");
    EXPECT_EQ(cell(row, 4), "MPEG-2V");
    EXPECT_EQ(cell(row, 5), "320x240");
    EXPECT_EQ(cell(row, 6), "0 seconds");
    useType("MP3");
    row = addAndFill(folder + "/mimetype-mp3.v2.notag.mp3");
    EXPECT_EQ(cell(row, 9), "5 seconds");
    EXPECT_EQ(cell(row, 10), "640 kbps");
    EXPECT_EQ(cell(row, 11), "22050 (Stereo)");
    row = addAndFill(folder + "/filetype-fixture.mp3");
    EXPECT_EQ(cell(row, 9), "0 seconds");
    EXPECT_EQ(cell(row, 11), "44100 (Stereo)");
}

// ---- The cells as a function of the file ----

TEST(ItemCellsOfFile, Mp3ListHas12Cells_MpegList7_PathCellNeverWritten) {
    QTemporaryDir dir;
    const QString path = dir.filePath("f.mp3");
    ASSERT_TRUE(bytefiles::Write(path, FrameHeader() + Filler(2000)));
    const ItemCellTexts mp3 = ItemCells(path, "MP3");
    ASSERT_EQ(mp3.size(), 12);
    EXPECT_FALSE(mp3[3].has_value());
    EXPECT_EQ(mp3[0].value_or("none"), "f.mp3");
    EXPECT_EQ(mp3[1].value_or("none"), "2 KB");
    for (int tagCell = 4; tagCell <= 8; ++tagCell) {
        EXPECT_FALSE(mp3[tagCell].has_value()) << "no tag, cell " << tagCell;
    }
    const ItemCellTexts mpeg = ItemCells(path, "MPEG");
    ASSERT_EQ(mpeg.size(), 7);
    EXPECT_FALSE(mpeg[3].has_value());
    EXPECT_EQ(mpeg[5].value_or("none"), "0x0");
}

TEST(ItemCellsOfFile, MissingFile_HasNameAndOneKBButNoDate) {
    const ItemCellTexts cells = ItemCells("/nonexistent/folder/song.mp3", "MP3");
    EXPECT_EQ(cells[0].value_or("none"), "song.mp3");
    EXPECT_EQ(cells[1].value_or("none"), "1 KB");
    EXPECT_FALSE(cells[2].has_value());
    EXPECT_FALSE(cells[9].has_value());
    EXPECT_EQ(cells[10].value_or("none"), " kbps");
    EXPECT_EQ(cells[11].value_or("none"), "");
}

TEST_F(ListFixture, FillingRowsAgain_LeavesTheirPathsAndNoFileOpen) {
    useType("MP3");
    const QString tagged =
        write("t.mp3", FrameHeader() + Filler(3000) + Tag("T", "A", "L", "2020", "C", 8));
    const QString plain = write("p.mp3", FrameHeader() + Filler(3000));
    const auto openFiles = [] { return QDir("/proc/self/fd").entryList(QDir::Files).size(); };
    addAndFill(tagged);
    addAndFill(plain);
    const qsizetype before = openFiles();
    for (int i = 0; i < 300; ++i) {
        FillListItem(model, 1 + i % 2);
    }
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(cell(1, 3), tagged);
    EXPECT_EQ(cell(2, 3), plain);
    EXPECT_EQ(cell(1, 8), "Jazz");
}
