#include <gtest/gtest.h>

#include "ListTestModel.h"
#include "list/ListInfoFigures.h"
#include "list/ListTotals.h"

TEST(ListInfo, UntitledEmptyList_ShowsTheStartFigures) {
    ListTestModel t;
    const QList<ListInfoRow> rows = ListInfoRows(t.model);
    const QList<ListInfoRow> expected = {
        {"Filename", "(unsaved)"},
        {"Status", "RED"},
        {"", ""},
        {"List Type", "MP3"},
        {"Total items in list", "0"},
        {"Duration", "00:00:00"},
        {"Filesize", "0 KB"},
        {"", ""},
        {"Average Duration (Per File)", "00:00:00"},
        {"Average Size (Per File)", "0 KB"},
    };
    EXPECT_TRUE(rows == expected);
    EXPECT_EQ(ListInfoClipboardText(rows),
              "Filename=(unsaved)\r\nStatus=RED\r\nList Type=MP3\r\nTotal items in list=0\r\n"
              "Duration=00:00:00\r\nFilesize=0 KB\r\nAverage Duration (Per File)=00:00:00\r\n"
              "Average Size (Per File)=0 KB\r\n");
}

TEST(ListInfo, ThreeRowsOfTenSeconds_AverageThreeSeconds) {
    ListTestModel t;
    t.addMp3("/m/a", "1 KB", "4 seconds", "x");
    t.addMp3("/m/b", "1 KB", "3 seconds", "x");
    t.addMp3("/m/c", "1 KB", "3 seconds", "x");
    UpdateListTotals(t.model);
    EXPECT_EQ(ListInfoRows(t.model).at(8).value, "00:00:03");
}

TEST(ListInfo, TwoRowsOfFiveSeconds_HalfGoesToEven) {
    EXPECT_EQ(AverageDuration("00:00:05", 2), "00:00:02");
    EXPECT_EQ(AverageDuration("00:00:07", 2), "00:00:04");
    EXPECT_EQ(AverageDuration("00:00:03", 2), "00:00:02");
    EXPECT_EQ(AverageDuration("01:00:00", 3), "00:20:00");
}

TEST(ListInfo, WrappedDuration_AveragesTheWrappedValue) {
    ListTestModel t;
    t.addMp3("/m/a", "1 KB", "86400 seconds", "x");
    t.addMp3("/m/b", "1 KB", "3600 seconds", "x");
    UpdateListTotals(t.model);
    EXPECT_EQ(ListInfoRows(t.model).at(8).value, "00:30:00");
}

TEST(ListInfo, AverageSize_RoundsGroupsAndPrintsNothingForZero) {
    EXPECT_EQ(AverageSize("3,000,000 KB", 2), "1,500,000 KB");
    EXPECT_EQ(AverageSize("5 KB", 2), "3 KB");
    EXPECT_EQ(AverageSize("1 KB", 3), " KB");
    EXPECT_EQ(AverageSize(" KB", 2), " KB");
    EXPECT_EQ(AverageSize("0 KB", 0), "0 KB");
}

TEST(ListInfo, SavedGreenList_ShowsFilePartAndFigures) {
    ListTestModel t;
    t.addMp3("/m/a", "1,000 KB", "30 seconds", "44100 (Stereo)");
    t.addMp3("/m/b", "2,000 KB", "31 seconds", "44100 (Stereo)");
    UpdateListTotals(t.model);
    t.model.state.setListFileName("/home/me/lists/party.vlr");
    const QList<ListInfoRow> rows = ListInfoRows(t.model);
    EXPECT_EQ(rows.at(0).value, "party.vlr");
    EXPECT_EQ(rows.at(1).value, "GREEN");
    EXPECT_EQ(rows.at(4).value, "2");
    EXPECT_EQ(rows.at(5).value, "00:01:01");
    EXPECT_EQ(rows.at(6).value, "3,000 KB");
    EXPECT_EQ(rows.at(8).value, "00:00:30");  // 30.5 goes to the even 30
    EXPECT_EQ(rows.at(9).value, "1,500 KB");
}

TEST(ListInfo, CopyButton_EightLinesReplacingTheClipboard) {
    ListTestModel t;
    t.model.state.setListFileName("/home/me/lists/party.vlr");
    t.clipboard.setText("old");
    CopyListInfo(t.clipboard, ListInfoRows(t.model));
    const QString text = t.clipboard.text();
    EXPECT_TRUE(text.startsWith("Filename=party.vlr\r\nStatus=RED\r\n"));
    EXPECT_EQ(text.count("\r\n"), 8);
    EXPECT_TRUE(text.endsWith("\r\n"));
    EXPECT_FALSE(text.contains("/home/me"));
}
