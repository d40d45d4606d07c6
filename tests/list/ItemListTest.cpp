#include <gtest/gtest.h>

#include <QAbstractItemModelTester>

#include "list/ItemList.h"

TEST(ItemList, SubItemBeyondLastColumn_FailsAndChangesNothing) {
    ItemList list;
    list.addColumn("Filename");
    list.addColumn("Filesize");
    const int row = list.addRow();
    EXPECT_TRUE(list.setCell(row, 1, "1 KB"));
    EXPECT_FALSE(list.setCell(row, 2, "x"));
    EXPECT_EQ(list.cell(row, 2), QString());
    EXPECT_EQ(list.cell(row, 1), "1 KB");
}

TEST(ItemList, UnwrittenCell_ReadsEmpty) {
    ItemList list;
    list.addColumn("Filename");
    list.addRow();
    EXPECT_EQ(list.cell(1, 0), QString());
    EXPECT_EQ(list.cell(1, 7), QString());
    EXPECT_EQ(list.cell(2, 0), QString());
}

TEST(ItemList, ModelTester_AcceptsEveryChangeOfRowsAndColumns) {
    ItemList list;
    QAbstractItemModelTester tester(&list, QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (const char* c : {"Filename", "Filesize", "Date Modified", "Filepath"}) {
        list.addColumn(c);
    }
    for (int i = 0; i < 50; ++i) {
        const int row = list.addRow(QString::number(i));
        list.setCell(row, 3, QStringLiteral("/m/%1").arg(i));
    }
    list.insertRow(3, "inserted");
    list.removeRow(1);
    QList<bool> keep(list.count(), true);
    keep[4] = keep[5] = keep[20] = false;
    EXPECT_EQ(list.removeRowsExcept(keep), 3);
    keep = QList<bool>(list.count(), true);
    for (int i = 0; i < keep.size(); i += 2) {
        keep[i] = false;  // many ranges: one reset
    }
    EXPECT_EQ(list.removeRowsExcept(keep), 24);
    QList<int> order;
    for (int i = list.count(); i >= 1; --i) {
        order.append(i);
    }
    list.reorder(order);
    list.appendRows({{"x"}, {"y"}});
    list.clearColumns();
    list.clearRows();
    EXPECT_EQ(list.count(), 0);
}

TEST(ItemList, RemoveRowsExcept_KeepsTheOrderOfTheRest) {
    ItemList list;
    list.addColumn("Filename");
    for (int i = 1; i <= 100; ++i) {
        list.addRow(QString::number(i));
    }
    QList<bool> keep(100, false);
    keep[9] = keep[49] = keep[98] = true;
    EXPECT_EQ(list.removeRowsExcept(keep), 97);
    EXPECT_EQ(list.cells(1).first(), "10");
    EXPECT_EQ(list.cells(2).first(), "50");
    EXPECT_EQ(list.cells(3).first(), "99");
    EXPECT_EQ(list.removeRowsExcept(QList<bool>(2, false)), 0);  // wrong size: nothing
}

TEST(ItemList, Reorder_MovesPersistentIndexesWithTheirRows) {
    ItemList list;
    list.addColumn("Filename");
    for (const char* n : {"a", "b", "c"}) {
        list.addRow(n);
    }
    const QPersistentModelIndex selected = list.index(0, 0);  // "a"
    list.reorder({3, 1, 2});
    EXPECT_EQ(list.cell(1, 0), "c");
    EXPECT_EQ(selected.row(), 1);
    EXPECT_EQ(selected.data().toString(), "a");
}

TEST(ItemList, Reorder_NotAPermutation_ChangesNothing) {
    ItemList list;
    list.addColumn("Filename");
    list.addRow("a");
    list.addRow("b");
    list.reorder({1, 1});
    list.reorder({0, 2});
    EXPECT_EQ(list.cell(1, 0), "a");
    EXPECT_EQ(list.cell(2, 0), "b");
}
