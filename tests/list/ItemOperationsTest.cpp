#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ListTestModel.h"

namespace {

QString report(int removed) {
    return QStringLiteral("Operation Complete!\rItems Removed: %1").arg(removed);
}

void touch(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("x");
}

}  // namespace

TEST(RemoveItem, RemovesTheRowAndUpdatesTotals) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "44100 (Stereo)");
    t.addMp3("/m/b.mp3", "2 KB", "1 seconds", "44100 (Stereo)");
    t.addMp3("/m/c.mp3", "3 KB", "1 seconds", "44100 (Stereo)");
    RemoveItem(t.model, 2);
    EXPECT_EQ(t.column(3), QStringList({"/m/a.mp3", "/m/c.mp3"}));
    EXPECT_EQ(t.model.state.sizeCaption(), "4 KB");
    EXPECT_EQ(t.model.state.countCaption(), "2");
}

TEST(RemoveItem, IndexZero_RemovesNothingButUpdatesTotals) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "44100 (Stereo)");
    t.model.state.setCountCaption("stale");
    RemoveItem(t.model, 0);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.countCaption(), "1");
}

TEST(ClearList, AskingYes_ClearsRowsKeepsNameTitleTypeColumns) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "x");
    t.model.state.setListFileName("/l/list.vlr");
    t.model.state.setWindowTitle("Velmora - (list.vlr)");
    t.questions.answer(Msg::Yes);
    ClearList(t.model, -1);
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_EQ(t.questions.asked.first().prompt, "Are you sure you would like to clear your list?");
    EXPECT_EQ(t.questions.asked.first().style, Msg::YesNo + Msg::Question);
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.listFileName(), "/l/list.vlr");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (list.vlr)");
    EXPECT_EQ(t.model.state.listType(), "MP3");
    EXPECT_EQ(t.model.items.headerCount(), 12);
    EXPECT_EQ(t.model.state.sizeCaption(), "0 KB");
}

TEST(ClearList, AskingNo_KeepsRowsAndRecomputesTotals) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "7 KB", "1 seconds", "x");
    t.model.state.setSizeCaption("stale");
    t.questions.answer(Msg::No);
    ClearList(t.model, -1);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.sizeCaption(), "7 KB");
}

TEST(ClearList, AnyFlagButMinusOne_ClearsWithoutAsking) {
    for (const short flag : {0, 1}) {
        ListTestModel t;
        t.addMp3("/m/a.mp3", "7 KB", "1 seconds", "x");
        ClearList(t.model, flag);
        EXPECT_TRUE(t.questions.asked.isEmpty()) << flag;
        EXPECT_EQ(t.model.items.count(), 0) << flag;
    }
}

TEST(RemoveDuplicatedFiles, EmptyList_ReportsZero) {
    ListTestModel t;
    RemoveDuplicatedFiles(t.model);
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_EQ(t.questions.asked.first().prompt, report(0));
    EXPECT_EQ(t.questions.asked.first().style, Msg::OkOnly + Msg::Information);
}

TEST(RemoveDuplicatedFiles, ABA_KeepsBThenA) {
    ListTestModel t;
    t.addMp3("/m/A", "1 KB", "1 seconds", "x");
    t.addMp3("/m/B", "2 KB", "1 seconds", "x");
    t.addMp3("/m/A", "3 KB", "1 seconds", "x");
    RemoveDuplicatedFiles(t.model);
    EXPECT_EQ(t.column(3), QStringList({"/m/B", "/m/A"}));
    // The last of the equal rows stayed: its own cells are there.
    EXPECT_EQ(t.model.items.cell(2, 1), "3 KB");
    EXPECT_EQ(t.questions.asked.first().prompt, report(1));
    EXPECT_EQ(t.model.state.sizeCaption(), "5 KB");
}

TEST(RemoveDuplicatedFiles, FourEqualRows_OneStaysReportThree) {
    ListTestModel t;
    for (int i = 0; i < 4; ++i) {
        t.addMp3("/m/A", QString::number(i + 1) + " KB", "1 seconds", "x");
    }
    RemoveDuplicatedFiles(t.model);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 1), "4 KB");
    EXPECT_EQ(t.questions.asked.first().prompt, report(3));
}

TEST(RemoveDuplicatedFiles, CaseOrDoubledSeparator_BothStay) {
    ListTestModel t;
    t.addMp3("/m/a.mp3", "1 KB", "1 seconds", "x");
    t.addMp3("/m/A.mp3", "1 KB", "1 seconds", "x");
    t.addMp3("/m//a.mp3", "1 KB", "1 seconds", "x");
    RemoveDuplicatedFiles(t.model);
    EXPECT_EQ(t.model.items.count(), 3);
    EXPECT_EQ(t.questions.asked.first().prompt, report(0));
}

TEST(RemoveDuplicatedFiles, OnlyThePathCounts) {
    ListTestModel t;
    t.addRow({"one", "1 KB", "", "/m/same"});
    t.addRow({"two", "9 KB", "", "/m/same"});
    RemoveDuplicatedFiles(t.model);
    EXPECT_EQ(t.column(0), QStringList({"two"}));
}

TEST(RemoveDuplicatedFiles, InterleavedDuplicates_KeepOrderOfLastOnes) {
    ListTestModel t;
    for (const char* p : {"A", "B", "C", "B", "A", "D", "C"}) {
        t.addRow({p, "", "", p});
    }
    RemoveDuplicatedFiles(t.model);
    EXPECT_EQ(t.column(0), QStringList({"B", "A", "D", "C"}));
    EXPECT_EQ(t.questions.asked.first().prompt, report(3));
}

TEST(RemoveDeadFiles, EmptyList_ReportsZero) {
    ListTestModel t;
    RemoveDeadFiles(t.model);
    EXPECT_EQ(t.questions.asked.first().prompt, report(0));
}

TEST(RemoveDeadFiles, GoneHiddenFolderAndEmptyPath_AreDead) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("live.mp3"));
    touch(dir.filePath(".hidden.mp3"));
    QDir(dir.path()).mkdir("folder.mp3");
    t.addRow({"live", "", "", dir.filePath("live.mp3")});
    t.addRow({"hidden", "", "", dir.filePath(".hidden.mp3")});
    t.addRow({"folder", "", "", dir.filePath("folder.mp3")});
    t.addRow({"gone", "", "", dir.filePath("gone.mp3")});
    t.addRow({"empty", "", "", ""});
    t.addRow({"live2", "", "", dir.filePath("live.mp3")});
    RemoveDeadFiles(t.model);
    EXPECT_EQ(t.column(0), QStringList({"live", "live2"}));
    EXPECT_EQ(t.questions.asked.first().prompt, report(4));
    EXPECT_EQ(t.model.state.countCaption(), "2");
}

TEST(OnlyKeepBitrateItems, KeepsExactTextOnly) {
    ListTestModel t;
    t.addMp3("/m/a", "1 KB", "1 seconds", "x", "128 kbps");
    t.addMp3("/m/b", "1 KB", "1 seconds", "x", "128 kbps ");
    t.addMp3("/m/c", "1 KB", "1 seconds", "x", "");
    t.addMp3("/m/d", "1 KB", "1 seconds", "x", "320 kbps");
    t.addMp3("/m/e", "1 KB", "1 seconds", "x", "128 kbps");
    OnlyKeepBitrateItems(t.model, "128 kbps");
    EXPECT_EQ(t.column(3), QStringList({"/m/a", "/m/e"}));
    EXPECT_EQ(t.questions.asked.first().prompt, report(3));
    EXPECT_EQ(t.model.state.countCaption(), "2");
}

TEST(OnlyKeepBitrateItems, EmptyList_ReportsZero) {
    ListTestModel t;
    OnlyKeepBitrateItems(t.model, "128 kbps");
    EXPECT_EQ(t.questions.asked.first().prompt, report(0));
}

class MoveTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"one.mp3", "two.mp3", "three.mp3"}) {
            touch(dir.filePath(name));
            const int row = t.addMp3(dir.filePath(name), "stale", "stale", "stale");
            // A name that only a refill from the file puts right.
            t.model.items.setCell(row, 0, QStringLiteral("old ") + name);
        }
        QObject::connect(&t.model.state, &ListState::listFocusRequested, [this] { ++focus; });
        t.model.state.setCountCaption("figures stay");
        t.model.state.setListStatusText("Green");
    }

    QTemporaryDir dir;
    ListTestModel t;
    int focus = 0;
};

TEST_F(MoveTest, MoveUp_SwapsRowsRefillsBothSelectsAndFocuses) {
    MoveItemUp(t.model, 3);
    // Both rows were filled from their files; the untouched one wasn't.
    EXPECT_EQ(t.column(0), QStringList({"old one.mp3", "three.mp3", "two.mp3"}));
    EXPECT_EQ(t.column(3), QStringList({dir.filePath("one.mp3"), dir.filePath("three.mp3"),
                                        dir.filePath("two.mp3")}));
    EXPECT_EQ(t.model.items.cell(1, 1), "stale");
    EXPECT_EQ(t.model.state.selectedIndex(), 2);
    EXPECT_EQ(focus, 1);
    // No totals.
    EXPECT_EQ(t.model.state.countCaption(), "figures stay");
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST_F(MoveTest, MoveDown_SwapsRowsRefillsBothSelectsAndFocuses) {
    MoveItemDown(t.model, 1);
    EXPECT_EQ(t.column(0), QStringList({"two.mp3", "one.mp3", "old three.mp3"}));
    EXPECT_EQ(t.model.items.cell(3, 1), "stale");
    EXPECT_EQ(t.model.state.selectedIndex(), 2);
    EXPECT_EQ(focus, 1);
    EXPECT_EQ(t.model.state.countCaption(), "figures stay");
}

TEST_F(MoveTest, FirstUpLastDownAndIndexZero_OnlyFocus) {
    t.model.state.setSelectedIndex(3);
    MoveItemUp(t.model, 1);
    MoveItemDown(t.model, 3);
    MoveItemUp(t.model, 0);
    MoveItemDown(t.model, 0);
    MoveItemDown(t.model, 7);
    EXPECT_EQ(focus, 5);
    EXPECT_EQ(t.column(0), QStringList({"old one.mp3", "old two.mp3", "old three.mp3"}));
    EXPECT_EQ(t.model.items.cell(1, 1), "stale");
    EXPECT_EQ(t.model.state.selectedIndex(), 3);
}

TEST_F(MoveTest, RowOfGoneFile_MovesWithPathIntact) {
    RemoveItem(t.model, 3);
    t.addMp3(dir.filePath("missing.mp3"), "9 KB", "5 seconds", "44100 (Stereo)");
    MoveItemUp(t.model, 3);
    EXPECT_EQ(t.model.items.cell(2, 3), dir.filePath("missing.mp3"));
    EXPECT_EQ(t.model.items.cell(2, 0), "missing.mp3");
    // The other cells are what filling leaves for a file that cannot be read.
    EXPECT_EQ(t.model.items.cell(2, 1), "1 KB");
    EXPECT_EQ(t.model.items.cell(2, 10), " kbps");
    EXPECT_EQ(t.model.items.cell(2, 11), "");
    EXPECT_EQ(t.model.items.count(), 3);
}

TEST_F(MoveTest, TwoRowListMoveDown_AddsAtTheEnd) {
    RemoveItem(t.model, 3);
    MoveItemDown(t.model, 1);
    EXPECT_EQ(t.column(0), QStringList({"two.mp3", "one.mp3"}));
    EXPECT_EQ(t.model.state.selectedIndex(), 2);
    EXPECT_EQ(t.model.items.count(), 2);
}

TEST_F(MoveTest, RowsWithTheSamePath_MoveIndependently) {
    t.addMp3(dir.filePath("one.mp3"), "x", "x", "x");
    MoveItemUp(t.model, 4);
    EXPECT_EQ(t.column(0), QStringList({"old one.mp3", "old two.mp3", "one.mp3", "three.mp3"}));
    MoveItemUp(t.model, 3);
    MoveItemUp(t.model, 2);
    EXPECT_EQ(t.column(0), QStringList({"one.mp3", "one.mp3", "two.mp3", "three.mp3"}));
    EXPECT_EQ(t.column(3), QStringList({dir.filePath("one.mp3"), dir.filePath("one.mp3"),
                                        dir.filePath("two.mp3"), dir.filePath("three.mp3")}));
}
