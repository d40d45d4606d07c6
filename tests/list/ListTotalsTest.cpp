#include <gtest/gtest.h>

#include <QLocale>

#include "ListTestModel.h"
#include "list/ListGrade.h"
#include "list/ListTotals.h"
#include "list/ListviewLayout.h"

namespace {
const QString kStereo = QStringLiteral("44100 (Stereo)");
}

TEST(ListTotals, EmptyList_ShowsZeroFiguresAndRed) {
    ListTestModel t;
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.countCaption(), "0");
    EXPECT_EQ(t.model.state.sizeCaption(), "0 KB");
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:00");
    EXPECT_EQ(t.model.state.listStatus(), "Red");
    EXPECT_EQ(t.model.state.statusPicture(), ListState::Picture::Red);
}

TEST(ListTotals, OneRow_ShowsItsFiguresAndRed) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "4,211 KB", "61 seconds", kStereo);
    QStringList statuses;
    QObject::connect(&t.model.state, &ListState::changed,
                     [&] { statuses.append(t.model.state.listStatus()); });
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.countCaption(), "1");
    EXPECT_EQ(t.model.state.sizeCaption(), "4,211 KB");
    EXPECT_EQ(t.model.state.durationCaption(), "00:01:01");
    EXPECT_EQ(t.model.state.listStatus(), "Red");
    // On the way it passed through Green.
    EXPECT_TRUE(statuses.contains("Green"));
}

TEST(ListTotals, TwoMp3RowsSameHertzDifferentBitrate_AreGreen) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", kStereo, "128 kbps");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", kStereo, "320 kbps");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
    EXPECT_EQ(t.model.state.statusPicture(), ListState::Picture::Green);
}

TEST(ListTotals, TwoMp3RowsDifferentRate_AreOrange) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", kStereo);
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "48000 (Stereo)");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
    EXPECT_EQ(t.model.state.statusPicture(), ListState::Picture::Orange);
}

TEST(ListTotals, RepeatedFirstHertzText_CountsAsEqual) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "AB");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "ABAB");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(ListTotals, FirstHertzTextSpanningTwoCells_IsDeleted) {
    ListTestModel t;
    // Joined "ABA" + "B" + "AB" = "ABABAB": all of it is the first cell's
    // text "AB" three times, though no later cell equals "AB".
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "AB");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "A");
    t.addMp3("/m/c.mp3", "1 KB", "1 seconds", "BAB");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(ListTotals, EmptyFirstHertzCell_AnyFilledLaterCellIsOrange) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(ListTotals, AllHertzCellsEmpty_AreGreen) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(ListTotals, HertzComparison_IsCaseSensitive) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "44100 (Stereo)");
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "44100 (stereo)");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(ListTotals, TwoMpegRowsSameCodecDifferentHeight_AreRed) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/a.mpg", "10 KB", "MPEG-1V", "352x288", "5 seconds");
    t.addMpeg("/v/b.mpg", "10 KB", "MPEG-1V", "352x240", "5 seconds");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Red");
}

TEST(ListTotals, TwoMpegRowsDifferentCodec_AreRed) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/a.mpg", "10 KB", "MPEG-1V", "352x288", "5 seconds");
    t.addMpeg("/v/b.mpg", "10 KB", "MPEG-2V", "352x288", "5 seconds");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Red");
}

TEST(ListTotals, TwoEqualMpegRows_AreGreenAndSumDuration) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/a.mpg", "1,000 KB", "MPEG-2V", "720x576", "30 seconds");
    t.addMpeg("/v/b.mpg", "500 KB", "MPEG-2V", "720x576", "45 seconds");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
    EXPECT_EQ(t.model.state.sizeCaption(), "1,500 KB");
    EXPECT_EQ(t.model.state.durationCaption(), "00:01:15");
}

TEST(ListTotals, MpegRowsWithDifferentHertzLikeCells_StayGreen) {
    // An MPEG list is never graded on an MP3 column, and never Orange.
    ListTestModel t("MPEG");
    t.addMpeg("/v/a.mpg", "1 KB", "MPEG-1V", "352x288", "1 seconds");
    t.addMpeg("/v/b.mpg", "1 KB", "MPEG-1V", "352x288", "1 seconds");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(ListTotals, UnknownListType_TakesTheMpegGrading) {
    ListTestModel t;
    t.model.state.setListType("mp3");
    ClearColumns(t.model);
    AddSharedColumns(t.model);
    AddMPEGColumns(t.model);
    t.addMpeg("/v/a.mpg", "1 KB", "X", "1x1", "10 seconds");
    t.addMpeg("/v/b.mpg", "1 KB", "Y", "1x1", "10 seconds");
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.listStatus(), "Red");
    // Rows of an unknown type add no seconds.
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:00");
    EXPECT_EQ(t.model.state.sizeCaption(), "2 KB");
}

TEST(ListTotals, AllSizeCellsEmpty_ShowKbAlone) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "", "1 seconds", kStereo);
    t.addMp3("/m/b.mp3", "", "1 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.sizeCaption(), " KB");
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:02");
}

TEST(ListTotals, EmptyDurationCell_AddsNothing) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "3 KB", "", kStereo);
    t.addMp3("/m/b.mp3", "4 KB", "7 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:07");
    EXPECT_EQ(t.model.state.sizeCaption(), "7 KB");
}

TEST(ListTotals, DurationsOf24HoursOrMore_Wrap) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "86400 seconds", kStereo);
    t.addMp3("/m/b.mp3", "1 KB", "3600 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.durationCaption(), "01:00:00");
}

TEST(ListTotals, FractionalSeconds_AreCutPerRow) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "2.9 seconds", kStereo);
    t.addMp3("/m/b.mp3", "1 KB", "2.9 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:04");
}

TEST(ListTotals, GroupedSizes_AreSummedAndGrouped) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1,024 KB", "1 seconds", kStereo);
    t.addMp3("/m/b.mp3", "999,999 KB", "1 seconds", kStereo);
    t.addMp3("/m/c.mp3", "1 KB", "1 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.sizeCaption(), "1,001,024 KB");
    EXPECT_EQ(t.model.state.countCaption(), "3");
}

TEST(ListTotals, GermanLocale_ReadsAndWritesItsOwnGrouping) {
    const QLocale saved;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1.024 KB", "1 seconds", kStereo);
    t.addMp3("/m/b.mp3", "2.000 KB", "1 seconds", kStereo);
    UpdateListTotals(t.model);
    QLocale::setDefault(saved);
    EXPECT_EQ(t.model.state.sizeCaption(), "3.024 KB");
}

TEST(ListTotals, CellWithText_AddsNothing) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "abc KB", "x seconds", kStereo);
    t.addMp3("/m/b.mp3", "5 KB", "5 seconds", kStereo);
    UpdateListTotals(t.model);
    EXPECT_EQ(t.model.state.sizeCaption(), "5 KB");
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:05");
}

TEST(ListTotals, SetListStatus_OtherTextKeepsPicture) {
    ListTestModel t;
    SetListStatus(t.model, "Orange");
    SetListStatus(t.model, "Purple");
    EXPECT_EQ(t.model.state.listStatus(), "Purple");
    EXPECT_EQ(t.model.state.statusPicture(), ListState::Picture::Orange);
}

TEST(ListTotals, ParseCellNumber_AcceptsPlainGroupedAndDecimal) {
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    double v = 0;
    EXPECT_TRUE(ParseCellNumber(u"61", us, v));
    EXPECT_EQ(v, 61);
    EXPECT_TRUE(ParseCellNumber(u" 1,234,567 ", us, v));
    EXPECT_EQ(v, 1234567);
    EXPECT_TRUE(ParseCellNumber(u"2.9", us, v));
    EXPECT_DOUBLE_EQ(v, 2.9);
    EXPECT_FALSE(ParseCellNumber(u"", us, v));
    EXPECT_FALSE(ParseCellNumber(u"12a", us, v));
}

TEST(ListTotals, FormatKilobytes_PrintsNothingForZero) {
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(FormatKilobytes(0, us), "");
    EXPECT_EQ(FormatKilobytes(0.4, us), "");
    EXPECT_EQ(FormatKilobytes(0.5, us), "1");
    EXPECT_EQ(FormatKilobytes(1234567, us), "1,234,567");
}

TEST(ListTotals, FormatClock_WrapsAtOneDay) {
    EXPECT_EQ(FormatClock(0), "00:00:00");
    EXPECT_EQ(FormatClock(90000), "01:00:00");
    EXPECT_EQ(FormatClock(86399), "23:59:59");
}
