#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "ListTestModel.h"
#include "list/ClipboardModule.h"

namespace {
const QStringList kRow = {
    "a.mp3", "4,211 KB", "3/4/2021 9:15 PM", "/music/a.mp3", "Art \"ist\"",   "Ti|tle", "",
    "1999",  "Rock",     "61 seconds",       "128 kbps",     "44100 (Stereo)"};
}

TEST(CopyItem, Mp3Row_GivesTheEntryWithTwelveFields) {
    ListTestModel t;
    t.addRow(kRow);
    CopyItem(t.model, 1, 0);
    EXPECT_EQ(t.clipboard.text(),
              "VLR:a.mp3|4,211 KB|3/4/2021 9:15 PM|/music/a.mp3|Art \"ist\"|Ti|tle||1999|Rock|"
              "61 seconds|128 kbps|44100 (Stereo)");
    EXPECT_EQ(t.model.items.count(), 1);
}

TEST(CopyItem, MpegRow_GivesSevenFields) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/c.mpg", "9 KB", "MPEG-1V", "352x288", "4 seconds");
    CopyItem(t.model, 1, 0);
    EXPECT_EQ(t.clipboard.text().split(u'|').size(), 7);
    EXPECT_EQ(t.clipboard.text().split(u'|').at(3), "/v/c.mpg");
}

TEST(CopyItem, IndexZero_LeavesTheClipboardEmpty) {
    ListTestModel t;
    t.addRow(kRow);
    t.clipboard.setText("before");
    CopyItem(t.model, 0, 0);
    EXPECT_EQ(t.clipboard.text(), "");
}

TEST(CopyItem, Cut_RemovesTheRowAndUpdatesTotals) {
    ListTestModel t;
    t.addRow(kRow);
    t.addMp3("/m/b.mp3", "1 KB", "1 seconds", "44100 (Stereo)");
    CopyItem(t.model, 1, -1);
    EXPECT_TRUE(t.clipboard.text().startsWith("VLR:a.mp3|"));
    EXPECT_EQ(t.column(3), QStringList({"/m/b.mp3"}));
    EXPECT_EQ(t.model.state.sizeCaption(), "1 KB");
}

TEST(CopyItem, CutWithNoSelection_RemovesNothingButUpdatesTotals) {
    ListTestModel t;
    t.addRow(kRow);
    t.model.state.setCountCaption("stale");
    CutItem(t.model, 0);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.countCaption(), "1");
    EXPECT_EQ(t.clipboard.text(), "");
}

TEST(PasteItem, EntryIsFilledFromItsFileAtTheEndAndSelected) {
    ListTestModel t;
    QTemporaryDir dir;
    QFile f(dir.filePath("real.mp3"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("x");
    f.close();
    t.addMp3("/m/first.mp3", "1 KB", "1 seconds", "x");
    t.addMp3("/m/second.mp3", "1 KB", "1 seconds", "x");
    t.model.state.setSelectedIndex(1);
    t.clipboard.setText("VLR:stale name|999 KB|old date|" + dir.filePath("real.mp3") +
                        "|Old Artist");
    PasteItem(t.model);
    ASSERT_EQ(t.model.items.count(), 3);
    EXPECT_EQ(t.model.items.cell(3, 3), dir.filePath("real.mp3"));
    EXPECT_EQ(t.model.items.cell(3, 0), "real.mp3");  // built anew, not from the entry
    EXPECT_NE(t.model.items.cell(3, 1), "999 KB");
    EXPECT_NE(t.model.items.cell(3, 4), "Old Artist");
    EXPECT_EQ(t.model.state.selectedIndex(), 3);
    EXPECT_EQ(t.model.state.countCaption(), "3");
    EXPECT_TRUE(t.questions.asked.isEmpty());
}

TEST(PasteItem, Twice_GivesTwoRowsOfTheSameFile) {
    ListTestModel t;
    t.clipboard.setText("VLR:a|b|c|/m/a.mp3");
    PasteItem(t.model);
    PasteItem(t.model);
    EXPECT_EQ(t.column(3), QStringList({"/m/a.mp3", "/m/a.mp3"}));
    // The file is gone: each row is what filling leaves for a file that
    // cannot be read.
    for (int row = 1; row <= 2; ++row) {
        EXPECT_EQ(t.model.items.cell(row, 0), "a.mp3");
        EXPECT_EQ(t.model.items.cell(row, 1), "1 KB");
        EXPECT_EQ(t.model.items.cell(row, 10), " kbps");
        EXPECT_EQ(t.model.items.cell(row, 11), "");
    }
}

TEST(PasteItem, FewerThanFourFields_AddsARowWithEmptyPath) {
    ListTestModel t;
    t.clipboard.setText("VLR:a.mp3|1 KB");
    PasteItem(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 3), "");
    EXPECT_TRUE(t.questions.asked.isEmpty());
}

TEST(PasteItem, SmallLetterPrefix_IsInvalid) {
    ListTestModel t;
    t.clipboard.setText("vlr:a|b|c|/m/a.mp3");
    PasteItem(t.model);
    EXPECT_EQ(t.model.items.count(), 0);
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_EQ(t.questions.asked.first().prompt, "Invalid Clipboard Entry.");
    EXPECT_EQ(t.questions.asked.first().style, Msg::OkOnly + Msg::Exclamation);
}

TEST(PasteItem, EmptyClipboard_IsInvalid) {
    ListTestModel t;
    PasteItem(t.model);
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.questions.asked.size(), 1);
}

TEST(PasteItem, Mp3EntryIntoMpegList_OnlyThePathCounts) {
    ListTestModel t;
    t.addRow(kRow);
    CopyItem(t.model, 1, 0);
    NewItemList(t.model, "MPEG");
    PasteItem(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 3), "/music/a.mp3");
    EXPECT_NE(t.model.items.cell(1, 4), "Art \"ist\"");
    EXPECT_EQ(t.model.items.cells(1).size() <= 7, true);
}

TEST(CopyList, EmptyList_LeavesTheClipboardAsItWas) {
    ListTestModel t;
    t.clipboard.setText("keep");
    CopyList(t.model);
    EXPECT_EQ(t.clipboard.text(), "keep");
}

TEST(CopyList, OneRow_GivesOneQuotedLineEndedByCrLf) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/c.mpg", "9 KB", "MPEG-1V", "", "4 seconds");
    CopyList(t.model);
    EXPECT_EQ(t.clipboard.text(),
              "\"c.mpg\",\"9 KB\",\"1/1/2020 10:00 AM\",\"/v/c.mpg\",\"MPEG-1V\",\"\",\"4 "
              "seconds\"\r\n");
}

TEST(CopyList, QuotesInCells_AreWrittenAsTheyStand) {
    ListTestModel t;
    t.addRow(kRow);
    t.addRow(kRow);
    CopyList(t.model);
    const QString line =
        "\"a.mp3\",\"4,211 KB\",\"3/4/2021 9:15 PM\",\"/music/a.mp3\",\"Art \"ist\"\",\"Ti|tle\","
        "\"\",\"1999\",\"Rock\",\"61 seconds\",\"128 kbps\",\"44100 (Stereo)\"\r\n";
    EXPECT_EQ(t.clipboard.text(), line + line);
}

TEST(PasteItem, SeparatorInATagCell_DoesNotDisturbThePath) {
    ListTestModel t;
    t.addRow(kRow);  // its Title holds a "|"
    CopyItem(t.model, 1, 0);
    PasteItem(t.model);
    ASSERT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.items.cell(2, 3), "/music/a.mp3");
}
