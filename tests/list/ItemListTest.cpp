#include <gtest/gtest.h>

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
