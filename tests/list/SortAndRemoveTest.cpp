#include <gtest/gtest.h>

#include "ListTestModel.h"
#include "list/ListTotals.h"
#include "list/RemoveByValue.h"
#include "list/SortList.h"
#include "platform/EventTurn.h"

namespace {

void addNamed(ListTestModel& t, const QStringList& names, int cell = 0) {
    for (const QString& n : names) {
        const int row = t.addRow({n + ".mp3", "1 KB", "", "/m/" + n + ".mp3"});
        if (cell != 0) {
            t.model.items.setCell(row, cell, n);
        }
    }
}

class EventTurnHook {
public:
    explicit EventTurnHook(std::function<void()> action) {
        previous_ = setEventTurnHook(std::move(action));
    }
    ~EventTurnHook() { setEventTurnHook(previous_); }

private:
    std::function<void()> previous_;
};

}  // namespace

TEST(SortList, EmptyList_ChangesNothing) {
    ListTestModel t;
    SortList(t.model, 0, 0);
    EXPECT_EQ(t.model.items.count(), 0);
}

TEST(SortList, FilesizeAscending_SortsByKilobytes) {
    ListTestModel t;
    t.addMp3("/m/a", "9 KB", "", "");
    t.addMp3("/m/b", "1,024 KB", "", "");
    t.addMp3("/m/c", "20 KB", "", "");
    SortList(t.model, 1, 0);
    EXPECT_EQ(t.column(1), QStringList({"9 KB", "20 KB", "1,024 KB"}));
}

TEST(SortList, DurationAscending_SortsBySeconds) {
    ListTestModel t;
    t.addMp3("/m/a", "", "20 seconds", "");
    t.addMp3("/m/b", "", "100 seconds", "");
    SortList(t.model, 9, 0);
    EXPECT_EQ(t.column(9), QStringList({"20 seconds", "100 seconds"}));
}

TEST(SortList, EqualValues_KeepTheirOrderInBothDirections) {
    ListTestModel t;
    t.addMp3("/m/a", "5 KB", "", "");
    t.addMp3("/m/b", "1 KB", "", "");
    t.addMp3("/m/c", "5 KB", "", "");
    t.addMp3("/m/d", "1 KB", "", "");
    SortList(t.model, 1, 0);
    EXPECT_EQ(t.column(0), QStringList({"b", "d", "a", "c"}));
    SortList(t.model, 1, 1);
    EXPECT_EQ(t.column(0), QStringList({"a", "c", "b", "d"}));
}

TEST(SortList, CellsWithoutAValue_ComeFirstAscendingAndLastDescending) {
    ListTestModel t;
    t.addMp3("/m/a", "", "61 seconds", "");
    t.addMp3("/m/b", "", "", "");
    t.addMp3("/m/c", "", "7 seconds", "");
    t.addMp3("/m/d", "", "unknown", "");
    SortList(t.model, 9, 0);
    EXPECT_EQ(t.column(0), QStringList({"b", "d", "c", "a"}));
    SortList(t.model, 9, 1);
    EXPECT_EQ(t.column(0), QStringList({"a", "c", "b", "d"}));
}

TEST(SortList, ListOfAnUnknownType_SortsItsSharedColumnsByMeaning) {
    ListTestModel t("WAV");
    t.addRow({"b", "1,024 KB"});
    t.addRow({"a", "9 KB"});
    SortList(t.model, 1, 0);
    EXPECT_EQ(t.column(0), QStringList({"a", "b"}));
}

TEST(SortList, Descending_ReversesTheOrder) {
    ListTestModel t;
    addNamed(t, {"b", "c", "a"});
    SortList(t.model, 0, 1);
    EXPECT_EQ(t.column(0), QStringList({"c.mp3", "b.mp3", "a.mp3"}));
}

TEST(SortList, IgnoresCaseAndKeepsOrderOfEqualTexts) {
    ListTestModel t;
    // Cell 4 (Artist) holds texts that differ in case only; their rows keep
    // their order in both directions.
    addNamed(t, {"beta", "Alpha", "BETA", "alpha", "Beta"}, 4);
    SortList(t.model, 4, 0);
    EXPECT_EQ(t.column(4), QStringList({"Alpha", "alpha", "beta", "BETA", "Beta"}));
    SortList(t.model, 4, 1);
    EXPECT_EQ(t.column(4), QStringList({"beta", "BETA", "Beta", "Alpha", "alpha"}));
}

TEST(SortList, HiddenFilepathColumn_SortsLikeAnyOther) {
    ListTestModel t;
    t.addRow({"z", "", "", "/b/1"});
    t.addRow({"y", "", "", "/a/2"});
    SortList(t.model, 3, 0);
    EXPECT_EQ(t.column(0), QStringList({"y", "z"}));
}

TEST(SortList, LeavesFiguresAndLaterAdditionsGoToTheEnd) {
    ListTestModel t;
    addNamed(t, {"b", "a"});
    t.model.state.setCountCaption("stays");
    t.model.state.setListStatusText("Orange");
    SortList(t.model, 0, 0);
    t.addRow({"0.mp3"});
    EXPECT_EQ(t.column(0), QStringList({"a.mp3", "b.mp3", "0.mp3"}));
    EXPECT_EQ(t.model.state.countCaption(), "stays");
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(DistinctColumnValues, FirstAppearanceOrderExactWithEmpty) {
    ListTestModel t;
    for (const char* a : {"Queen", "", "queen", "Abba", "Queen", ""}) {
        t.addMp3("/m/x", "", "", "");
        t.model.items.setCell(t.model.items.count(), 4, a);
    }
    EXPECT_EQ(DistinctColumnValues(t.model.items, 4), QStringList({"Queen", "", "queen", "Abba"}));
    EXPECT_EQ(DistinctColumnValues(t.model.items, 3), QStringList({"/m/x"}));
}

TEST(DistinctColumnValues, EmptyList_NoValues) {
    ListTestModel t;
    EXPECT_TRUE(DistinctColumnValues(t.model.items, 0).isEmpty());
}

TEST(RemoveRowsByValue, EmptyValue_ShowsMessageAndRunsNot) {
    ListTestModel t;
    addNamed(t, {"a"});
    const short cancel = 0;
    EXPECT_FALSE(RemoveRowsByValue(t.model, 4, "", RemoveAction::KeepMatchingRows, cancel));
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_EQ(t.questions.asked.first().prompt, "Invalid value selected!");
    EXPECT_EQ(t.questions.asked.first().style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_EQ(t.questions.asked.first().title, "");
    EXPECT_EQ(t.model.items.count(), 1);
}

TEST(RemoveRowsByValue, KeepAValueAllRowsHave_RemovesNothing) {
    ListTestModel t;
    addNamed(t, {"a", "b"}, 8);
    for (int i = 1; i <= 2; ++i) {
        t.model.items.setCell(i, 8, "Rock");
    }
    // Figures left behind by an earlier command stay as they are: only a
    // removal brings them up to date.
    t.model.state.setCountCaption("7");
    t.model.state.setListStatusText("Orange");
    const short cancel = 0;
    EXPECT_TRUE(RemoveRowsByValue(t.model, 8, "Rock", RemoveAction::KeepMatchingRows, cancel));
    EXPECT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.state.countCaption(), "7");
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(RemoveRowsByValue, CancelledBeforeTheFirstRow_RemovesNothingAndLeavesTheFigures) {
    ListTestModel t;
    addNamed(t, {"a", "b"}, 8);
    t.model.state.setCountCaption("9");
    t.model.state.setListStatusText("Green");
    const short cancel = -1;
    EXPECT_TRUE(RemoveRowsByValue(t.model, 0, "a", RemoveAction::RemoveMatchingRows, cancel));
    EXPECT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.state.countCaption(), "9");
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(RemoveRowsByValue, RemoveAValueAllRowsHave_EmptiesTheList) {
    ListTestModel t;
    addNamed(t, {"a", "b", "c"});
    for (int i = 1; i <= 3; ++i) {
        t.model.items.setCell(i, 8, "Rock");
    }
    UpdateListTotals(t.model);
    const short cancel = 0;
    RemoveRowsByValue(t.model, 8, "Rock", RemoveAction::RemoveMatchingRows, cancel);
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.countCaption(), "0");
    EXPECT_EQ(t.model.state.sizeCaption(), "0 KB");
    EXPECT_EQ(t.model.state.listStatus(), "Red");
}

TEST(RemoveRowsByValue, ValuesDifferingInCase_AreDifferent) {
    ListTestModel t;
    addNamed(t, {"Queen", "queen", "QUEEN"}, 4);
    const short cancel = 0;
    RemoveRowsByValue(t.model, 4, "queen", RemoveAction::RemoveMatchingRows, cancel);
    EXPECT_EQ(t.column(4), QStringList({"Queen", "QUEEN"}));
    RemoveRowsByValue(t.model, 4, "Queen", RemoveAction::KeepMatchingRows, cancel);
    EXPECT_EQ(t.column(4), QStringList({"Queen"}));
}

TEST(RemoveRowsByValue, ColumnZero_IsTheRowsOwnText) {
    ListTestModel t;
    addNamed(t, {"a", "b", "a"});
    const short cancel = 0;
    RemoveRowsByValue(t.model, 0, "a.mp3", RemoveAction::RemoveMatchingRows, cancel);
    EXPECT_EQ(t.column(0), QStringList({"b.mp3"}));
}

TEST(RemoveRowsByValue, ProgressAndEventTurnAfterEachRow) {
    ListTestModel t;
    addNamed(t, {"a", "b", "c"});
    int turns = 0;
    EventTurnHook hook([&] { ++turns; });
    QList<int> handled;
    const short cancel = 0;
    RemoveRowsByValue(t.model, 0, "b.mp3", RemoveAction::KeepMatchingRows, cancel,
                      [&](int done, int rows) {
                          handled.append(done);
                          EXPECT_EQ(rows, 3);
                      });
    EXPECT_EQ(handled, QList<int>({1, 2, 3}));
    EXPECT_EQ(turns, 3);
    EXPECT_EQ(t.column(0), QStringList({"b.mp3"}));
    EXPECT_EQ(t.model.state.countCaption(), "1");
}

TEST(RemoveRowsByValue, CancelDuringARunOf1000Rows_KeepsTheRestInOrder) {
    ListTestModel t;
    for (int i = 1; i <= 1000; ++i) {
        t.addRow({QStringLiteral("r%1").arg(i), "1 KB", "", "/m/x",
                  i % 2 ? QStringLiteral("odd") : QStringLiteral("even")});
    }
    short cancel = 0;
    int turns = 0;
    EventTurnHook hook([&] {
        if (++turns == 100) {
            cancel = -1;
        }
    });
    RemoveRowsByValue(t.model, 4, "even", RemoveAction::RemoveMatchingRows, cancel);
    // Rows 1000 down to 901 were handled: their 50 even rows are gone; rows 1
    // to 900 are untouched and in their order.
    ASSERT_EQ(t.model.items.count(), 950);
    for (int i = 1; i <= 900; ++i) {
        ASSERT_EQ(t.model.items.cell(i, 0), QStringLiteral("r%1").arg(i));
    }
    for (int i = 901; i <= 950; ++i) {
        ASSERT_EQ(t.model.items.cell(i, 4), "odd");
    }
    EXPECT_EQ(t.model.items.cell(950, 0), "r999");
    EXPECT_EQ(t.model.state.countCaption(), "950");
}
