#include <gtest/gtest.h>

#include "join/JoinProgress.h"
#include "join/JoinRunTestBed.h"

TEST(JoinProgress, FormatThousands_GroupsDigitsAndRoundsHalfUp) {
    EXPECT_EQ(FormatThousands(1234567.0), QStringLiteral("1,234,567"));
    EXPECT_EQ(FormatThousands(999.5), QStringLiteral("1,000"));
    EXPECT_EQ(FormatThousands(2.4), QStringLiteral("2"));
}

TEST(JoinProgress, FormatThousands_UnderHalf_IsEmpty) {
    EXPECT_EQ(FormatThousands(0.3), QString());
    EXPECT_EQ(FormatThousands(0.0), QString());
    EXPECT_EQ(FormatThousands(0.5), QStringLiteral("1"));
}

TEST(JoinProgress, PercentCaption_RoundsHalfToEven) {
    EXPECT_EQ(*PercentCaption(1.0F, 8.0F), QStringLiteral("Join Wizard (12%)"));  // 12.5
    EXPECT_EQ(*PercentCaption(3.0F, 8.0F), QStringLiteral("Join Wizard (38%)"));  // 37.5
    EXPECT_EQ(*PercentCaption(1.0F, 3.0F), QStringLiteral("Join Wizard (33%)"));
    EXPECT_EQ(*PercentCaption(5.0F, 5.0F), QStringLiteral("Join Wizard (100%)"));
    EXPECT_EQ(*PercentCaption(0.0F, 5.0F), QStringLiteral("Join Wizard (0%)"));
}

TEST(JoinProgress, PercentCaption_MaximumZero_GivesNothing) {
    EXPECT_FALSE(PercentCaption(1.0F, 0.0F).has_value());
}

TEST(JoinProgress, ApplyWatchedFileLength_CapsAtMaximum_SoNeverAbove100) {
    JoinWizardState state;
    state.setProgressMax(2048.0F);
    ApplyWatchedFileLength(state, 4096);
    EXPECT_EQ(state.progressValue(), 2048.0F);
    EXPECT_EQ(state.writtenSizeText(), QStringLiteral("4 KB"));
    EXPECT_EQ(state.windowCaption(), QStringLiteral("Join Wizard (100%)"));
}

TEST(JoinProgress, ApplyWatchedFileLength_UnderHalfKB_ShowsZeroKB) {
    JoinWizardState state;
    state.setProgressMax(102400.0F);
    ApplyWatchedFileLength(state, 300);
    EXPECT_EQ(state.writtenSizeText(), QStringLiteral("0 KB"));
    EXPECT_EQ(state.windowCaption(), QStringLiteral("Join Wizard (0%)"));
    ApplyWatchedFileLength(state, 51200);
    EXPECT_EQ(state.writtenSizeText(), QStringLiteral("50 KB"));
    EXPECT_EQ(state.windowCaption(), QStringLiteral("Join Wizard (50%)"));
}

TEST(JoinProgress, SizeSource_WatchedFileOfThreeGibibytes_ShowsItsWholeLength) {
    JoinRunTestBed bed;
    bed.makeMp3List({});
    bed.state.setOperationTag(QStringLiteral("1"));
    bed.state.setProgressMax(6.0F * 1024 * 1024 * 1024);
    // A file that is one hole: its length costs no disk.
    const QString temp = bed.media + QStringLiteral("/joined.mp3.vlr.mp3");
    JoinRunTestBed::writeFile(temp, "ID3");
    ASSERT_TRUE(QFile::resize(temp, qint64{3} << 30));
    UpdateSizeSource(bed.model, bed.state, temp);
    EXPECT_EQ(bed.state.progressValue(), 3.0F * 1024 * 1024 * 1024);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("3,145,728 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (50%)"));
}

TEST(JoinProgress, ParseToolStatusLine_OldForm_SecondsAndSize) {
    const auto status = ParseToolStatusLine(QStringLiteral("frame= 1 size=    4096kB time=60.00 "));
    ASSERT_TRUE(status.has_value());
    EXPECT_EQ(status->sizeText, QStringLiteral("    4096"));
    EXPECT_EQ(status->seconds, 60);
}

TEST(JoinProgress, ParseToolStatusLine_HoursMinutesSeconds_AndLsize) {
    const auto running = ParseToolStatusLine(
        QStringLiteral("frame=  729 fps=0.0 q=-1.0 size=    5120kB time=00:00:29.16 "
                       "bitrate=1438.3kbits/s speed=58.2x    "));
    ASSERT_TRUE(running.has_value());
    EXPECT_EQ(running->seconds, 29);
    EXPECT_EQ(running->sizeText.trimmed(), QStringLiteral("5120"));
    const auto last = ParseToolStatusLine(
        QStringLiteral("frame= 1500 fps=0.0 q=-1.0 Lsize=   10468kB time=00:01:00.00 "
                       "bitrate=1429.2kbits/s speed=60x    "));
    ASSERT_TRUE(last.has_value());
    EXPECT_EQ(last->seconds, 60);
    EXPECT_EQ(last->sizeText.trimmed(), QStringLiteral("10468"));
    const auto hour = ParseToolStatusLine(QStringLiteral("size= 1kB time=01:02:03.50 b"));
    ASSERT_TRUE(hour.has_value());
    EXPECT_EQ(hour->seconds, 3723);
}

TEST(JoinProgress, ParseToolStatusLine_Failures_GiveNothing) {
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("Input #0, mpeg, from 'x'")).has_value());
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("size=N/A time=00:00:00.00 b")).has_value());
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("size= 5kB time=00:00:01.00")).has_value());
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("size= 5kB time=N/A bitrate")).has_value());
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("size= 5kB time=40000.00 b")).has_value());
    EXPECT_FALSE(ParseToolStatusLine(QStringLiteral("size= 5kB time=10:00:00.00 b")).has_value());
}

TEST(JoinProgress, TotalSecondsOf_SixteenBitSteps) {
    EXPECT_EQ(*TotalSecondsOf(QStringLiteral("00:01:00")), 60);
    EXPECT_EQ(*TotalSecondsOf(QStringLiteral("09:06:07")), 32767);
    EXPECT_FALSE(TotalSecondsOf(QStringLiteral("09:06:08")).has_value());
    EXPECT_FALSE(TotalSecondsOf(QStringLiteral("10:00:00")).has_value());
    EXPECT_FALSE(TotalSecondsOf(QStringLiteral("ab:00:00")).has_value());
}

TEST(JoinProgress, ClockText_IsHoursMinutesSeconds) {
    EXPECT_EQ(ClockText(0), QStringLiteral("00:00:00"));
    EXPECT_EQ(ClockText(3723), QStringLiteral("01:02:03"));
    EXPECT_EQ(ClockText(32767), QStringLiteral("09:06:07"));
}

class ToolOutputTest : public ::testing::Test {
protected:
    void SetUp() override {
        bed.makeMpegList({bed.media + QStringLiteral("/a.mpg")}, QStringLiteral("MPEG-2V"));
        bed.model.state.setDurationCaption(QStringLiteral("00:01:00"));
        bed.state.setOperationTag(QStringLiteral("2"));
    }
    JoinRunTestBed bed;
};

TEST_F(ToolOutputTest, StatusLine_MovesBarBySecondsAgainstListDuration) {
    HandleToolOutput(bed.model, bed.state, QStringLiteral("size=    4096kB time=30.00 \r"));
    EXPECT_EQ(bed.state.progressMax(), 60.0F);
    EXPECT_EQ(bed.state.progressValue(), 30.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("4,096 KB"));
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (50%)"));
}

TEST_F(ToolOutputTest, StatusLine_BeyondDuration_IsCapped) {
    HandleToolOutput(bed.model, bed.state,
                     QStringLiteral("frame=1 Lsize=  10kB time=00:01:05.00 bitrate=1\n"));
    EXPECT_EQ(bed.state.progressValue(), 60.0F);
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard (100%)"));
}

TEST_F(ToolOutputTest, OnlyLineZeroCounts) {
    // A log line first: the status line behind the CR is lost.
    HandleToolOutput(bed.model, bed.state,
                     QStringLiteral("Press [q] to stop\rsize= 10kB time=00:00:30.00 b\r"));
    EXPECT_EQ(bed.state.progressValue(), 0.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("0 KB"));
    // Two status lines: only the first counts.
    HandleToolOutput(
        bed.model, bed.state,
        QStringLiteral("size= 10kB time=00:00:12.00 b\rsize= 20kB time=00:00:24.00 b\r"));
    EXPECT_EQ(bed.state.progressValue(), 12.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("10 KB"));
}

TEST_F(ToolOutputTest, ZeroSizeText_ShowsKBAlone) {
    HandleToolOutput(bed.model, bed.state, QStringLiteral("size=       0kB time=00:00:01.00 b"));
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral(" KB"));
}

TEST_F(ToolOutputTest, ListOfTenHours_EveryLineFails) {
    bed.model.state.setDurationCaption(QStringLiteral("10:00:00"));
    HandleToolOutput(bed.model, bed.state, QStringLiteral("size= 10kB time=00:00:30.00 b"));
    EXPECT_EQ(bed.state.progressValue(), 0.0F);
    EXPECT_EQ(bed.state.progressMax(), 100.0F);
    EXPECT_EQ(bed.state.windowCaption(), QStringLiteral("Join Wizard"));
}

TEST_F(ToolOutputTest, TotalOfZeroSeconds_Fails) {
    bed.model.state.setDurationCaption(QStringLiteral("00:00:00"));
    HandleToolOutput(bed.model, bed.state, QStringLiteral("size= 10kB time=00:00:30.00 b"));
    EXPECT_EQ(bed.state.progressMax(), 100.0F);
    EXPECT_EQ(bed.state.writtenSizeText(), QStringLiteral("0 KB"));
}

TEST_F(ToolOutputTest, OutsideOperation2OfMpeg2_IsOnlyLogged) {
    const QString log = bed.appData + QStringLiteral("/run.log");
    StartLogging(log, 2);
    bed.state.setOperationTag(QStringLiteral("1"));
    const QString piece = QStringLiteral("size= 10kB time=00:00:30.00 b\rnext");
    HandleToolOutput(bed.model, bed.state, piece);
    EXPECT_EQ(bed.state.progressValue(), 0.0F);
    bed.state.setOperationTag(QStringLiteral("2"));
    bed.makeMp3List({bed.media + QStringLiteral("/a.mp3")});
    HandleToolOutput(bed.model, bed.state, piece);
    EXPECT_EQ(bed.state.progressValue(), 0.0F);
    StopLogging();
    const QByteArray text = JoinRunTestBed::readFile(log);
    EXPECT_EQ(text.count(piece.toUtf8()), 2);
}
