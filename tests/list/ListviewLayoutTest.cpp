#include <gtest/gtest.h>

#include "ListTestModel.h"
#include "list/ListviewLayout.h"

namespace {
QStringList headers(const ItemList& items) {
    QStringList texts;
    for (int i = 0; i < items.headerCount(); ++i) {
        texts.append(items.header(i).text);
    }
    return texts;
}
}  // namespace

TEST(ListviewLayout, Mp3Layout_HasTwelveColumnsInOrder) {
    ListTestModel t;
    ClearColumns(t.model);
    AddSharedColumns(t.model);
    AddMP3Columns(t.model);
    EXPECT_EQ(headers(t.model.items),
              QStringList({"Filename", "Filesize", "Date Modified", "Filepath", "Artist", "Title",
                           "Album", "Year", "Genre", "Duration", "Bitrate", "Hertz"}));
    EXPECT_EQ(t.model.items.count(), 0);
}

TEST(ListviewLayout, MpegLayout_HasSevenColumnsInOrder) {
    ListTestModel t;
    ClearColumns(t.model);
    AddSharedColumns(t.model);
    AddMPEGColumns(t.model);
    EXPECT_EQ(headers(t.model.items),
              QStringList({"Filename", "Filesize", "Date Modified", "Filepath", "Video Codec",
                           "Video Size", "Duration"}));
}

TEST(ListviewLayout, FilepathHasWidthZero_OthersOneInch) {
    ListTestModel t;
    for (int i = 0; i < t.model.items.headerCount(); ++i) {
        EXPECT_EQ(t.model.items.header(i).width, i == 3 ? 0 : 1440) << i;
    }
}

TEST(ListviewLayout, ClearColumns_LeavesRowsAndType) {
    ListTestModel t;
    t.addRow({"a"});
    ClearColumns(t.model);
    EXPECT_EQ(t.model.items.headerCount(), 0);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.listType(), "MP3");
}

TEST(ListviewLayout, ModelHeaders_AreTheColumnTexts) {
    ListTestModel t("MPEG");
    EXPECT_EQ(t.model.items.headerData(4, Qt::Horizontal).toString(), "Video Codec");
    EXPECT_EQ(t.model.items.columnCount(), 7);
}
