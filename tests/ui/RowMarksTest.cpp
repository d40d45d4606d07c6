// What a user sees of the row check: the mark in the first column and the
// line that the status explanation adds.
#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QTest>
#include <cstdlib>

#include "MainWindowTestHelpers.h"
#include "support/Mp3JoinTraits.h"
#include "ui/ListViewControl.h"
#include "ui/StatusBarControl.h"

namespace {

// Rows 1 and 3 alike, row 2 mono, row 4 of another rate.
void MarkRows(WindowFixture& f) {
    f.fillMp3List(4);
    ItemList& items = f.model().items;
    items.setJoinTraits(1, Mp3Traits(44100));
    items.setJoinTraits(2, Mp3Traits(44100, 1));
    items.setJoinTraits(3, Mp3Traits(44100));
    items.setJoinTraits(4, Mp3Traits(32000));
}

// The pixels of the first cell of a row as the view paints it.
QImage FirstCell(WindowFixture& f, int row) {
    ListViewControl* view = f.window->listView();
    const QRect cell = view->visualRect(f.model().items.index(row - 1, 0));
    return view->viewport()->grab(cell).toImage();
}

// True when some pixel of the picture is near the colour.
bool HasColour(const QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) + std::abs(c.green() - colour.green()) +
                    std::abs(c.blue() - colour.blue()) <
                60) {
                return true;
            }
        }
    }
    return false;
}

const QColor kOrange(0xff, 0xa0, 0x1e);

}  // namespace

TEST(RowMarks, MarkedRow_ShowsTheOrangePictureInItsFirstCellOnly) {
    WindowFixture f;
    MarkRows(f);
    f.window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(f.window.get()));
    EXPECT_FALSE(HasColour(FirstCell(f, 1), kOrange));
    EXPECT_TRUE(HasColour(FirstCell(f, 2), kOrange));
    EXPECT_FALSE(HasColour(FirstCell(f, 3), kOrange));
    EXPECT_TRUE(HasColour(FirstCell(f, 4), kOrange));
    EXPECT_EQ(f.model().items.index(1, 0).data(Qt::ToolTipRole).toString(),
              "Mono: the first file is stereo");
}

TEST(RowMarks, StatusBox_AddsTheLineOfDifferingRows) {
    WindowFixture f;
    MarkRows(f);
    f.window->show();
    f.model().state.setListStatusText("Green");
    QTest::mouseClick(f.window->statusBarControl()->panel(3), Qt::LeftButton);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Status: Green\n\nThis status indicates that there is nothing wrong with your "
              "list.\n\n2 files differ from the first: rows 2 and 4.");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Information);
}

TEST(RowMarks, StatusBoxOfAListWithoutDifferingRows_AddsNothing) {
    WindowFixture f;
    f.fillMp3List(3);
    for (int row = 1; row <= 3; ++row) {
        f.model().items.setJoinTraits(row, Mp3Traits(44100));
    }
    f.window->show();
    f.model().state.setListStatusText("Orange");
    QTest::mouseClick(f.window->statusBarControl()->panel(3), Qt::LeftButton);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_TRUE(f.questions.asked[0].prompt.endsWith("you can still join this list!"));
}
