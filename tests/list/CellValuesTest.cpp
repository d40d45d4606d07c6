#include <gtest/gtest.h>

#include <QDateTime>

#include "list/CellValues.h"
#include "media/ItemCells.h"

namespace {
const QLocale kUs(QLocale::English, QLocale::UnitedStates);
}

TEST(CellValues, NumberCells_AreReadWithoutTheirUnitAndWithTheLocalesGrouping) {
    const CellValues values(kUs);
    EXPECT_EQ(values.kilobytes(u"1,234 KB"), 1234);
    EXPECT_EQ(values.kilobytes(u"987 KB"), 987);
    EXPECT_EQ(values.seconds(u"100 seconds"), 100);
    EXPECT_EQ(values.seconds(u"2.9 seconds"), 2.9);
    EXPECT_EQ(values.kbps(u"320 kbps"), 320);
    EXPECT_EQ(values.year(u"1999"), 1999);
}

TEST(CellValues, TextsWithoutANumber_GiveNoValue) {
    const CellValues values(kUs);
    EXPECT_FALSE(values.kilobytes(u" KB"));
    EXPECT_FALSE(values.kilobytes(u""));
    EXPECT_FALSE(values.seconds(u"long seconds"));
    EXPECT_FALSE(values.kbps(u" kbps"));
    EXPECT_FALSE(values.year(u"199x"));
    EXPECT_FALSE(values.hertz(u""));
    EXPECT_FALSE(values.videoSize(u"720"));
    EXPECT_FALSE(values.dateModified(u"yesterday"));
}

TEST(CellValues, Hertz_GivesTheRateAndTheChannelWord) {
    const CellValues values(kUs);
    const auto stereo = values.hertz(u"44100 (Stereo)");
    ASSERT_TRUE(stereo);
    EXPECT_EQ(stereo->rate, 44100);
    EXPECT_EQ(stereo->channels, 1);
    const auto mono = values.hertz(u"8000 (Mono)");
    ASSERT_TRUE(mono);
    EXPECT_EQ(mono->rate, 8000);
    EXPECT_EQ(mono->channels, 0);
    const auto bare = values.hertz(u"22050");
    ASSERT_TRUE(bare);
    EXPECT_EQ(bare->channels, -1);
}

TEST(CellValues, VideoSize_GivesWidthAndHeight) {
    const auto size = CellValues(kUs).videoSize(u"1920x1080");
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 1920);
    EXPECT_EQ(size->height, 1080);
}

TEST(CellValues, DateModified_ReadsWhatTheDateCellWrites) {
    // The pinned locale writes the year in two digits: "12/31/23 11:05 PM".
    const QDateTime written(QDate(2023, 12, 31), QTime(23, 5));
    const auto read = CellValues().dateModified(FileDateText(written));
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, written);
    const QDateTime old(QDate(1999, 1, 2), QTime(8, 30));
    EXPECT_EQ(CellValues().dateModified(FileDateText(old)), old);
}

TEST(CellValues, Captions_AreReadAsTheInfoPanelWritesThem) {
    const CellValues values(kUs);
    EXPECT_EQ(values.listKilobytes(u"3,000,000 KB"), 3000000);
    EXPECT_FALSE(values.listKilobytes(u" KB"));
    EXPECT_EQ(CellValues::listSeconds(u"01:02:03"), 3723);
    EXPECT_FALSE(CellValues::listSeconds(u"25:00:00"));
    const auto fields = CellValues::clockFields(u"09:06:07");
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->hours, 9);
    EXPECT_EQ(fields->minutes, 6);
    EXPECT_EQ(fields->seconds, 7);
    EXPECT_FALSE(CellValues::clockFields(u"ab:00:00"));
}

TEST(CellValues, VideoCodec_KnowsTheTwoMpegVideoCodecsExactly) {
    EXPECT_EQ(CellValues::videoCodec(u"MPEG-1V"), VideoCodec::Mpeg1);
    EXPECT_EQ(CellValues::videoCodec(u"MPEG-2V"), VideoCodec::Mpeg2);
    EXPECT_EQ(CellValues::videoCodec(u"mpeg-2v"), VideoCodec::Other);
    EXPECT_EQ(CellValues::videoCodec(u""), VideoCodec::Other);
}
