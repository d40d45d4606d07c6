#include <gtest/gtest.h>

#include <QApplication>

#include "MainWindowTestHelpers.h"
#include "list/ItemList.h"
#include "platform/EventTurn.h"
#include "ui/ListHeaderView.h"
#include "ui/ListViewControl.h"

namespace {

// The list's header, counting how often it measures a caption.
class CountingHeader : public ListHeaderView {
public:
    mutable int measured = 0;

protected:
    QSize sectionSizeFromContents(int logicalIndex) const override {
        ++measured;
        return ListHeaderView::sectionSizeFromContents(logicalIndex);
    }
};

struct ShownList {
    ItemList items;
    ListViewControl view;
    CountingHeader* header = new CountingHeader;

    ShownList() {
        view.setHorizontalHeader(header);
        items.addColumn(QStringLiteral("Filename"), 2000);
        items.addColumn(QStringLiteral("Filesize"), 1000);
        view.setModel(&items);
        view.resize(400, 300);
        view.show();
        QApplication::processEvents();
    }
};

}  // namespace

TEST(ListHeaderView, RowsAddedWithEventTurns_CaptionsAreNotMeasuredAgain) {
    ShownList list;
    const int before = list.header->measured;
    for (int i = 1; i <= 50; ++i) {
        list.items.addRow(QStringLiteral("%1.mp3").arg(i));
        giveEventsATurn();
    }
    EXPECT_EQ(list.items.count(), 50);
    EXPECT_EQ(list.header->measured, before);
}

TEST(ListHeaderView, NewCaptionOrFont_IsMeasuredAnew) {
    ShownList list;
    const QSize plain = list.header->sizeHint();
    list.items.addColumn(QStringLiteral("A caption much longer than any before it"), 1000);
    QApplication::processEvents();
    const int afterColumn = list.header->measured;
    EXPECT_GT(afterColumn, 0);
    QFont big = list.header->font();
    big.setPointSize(big.pointSize() * 3);
    list.header->setFont(big);
    QApplication::processEvents();
    EXPECT_GT(list.header->sizeHint().height(), plain.height());
    EXPECT_GT(list.header->measured, afterColumn);
}

TEST(ListHeaderView, InTheMainWindow_RowsAddedLikeTheAddingLoop_CaptionsAreNotMeasuredAgain) {
    WindowFixture f;
    f.fillMp3List(0);
    auto* view = f.window->findChild<ListViewControl*>();
    ASSERT_NE(view, nullptr);
    auto* header = new CountingHeader;
    view->setHorizontalHeader(header);
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    QApplication::processEvents();
    const int before = header->measured;
    ListState& state = f.model().state;
    state.setProgressMax(100);
    state.setProgressVisible(true);
    for (int i = 1; i <= 100; ++i) {
        const int row = f.model().items.addRow(QStringLiteral("%1.mp3").arg(i));
        f.model().items.setCell(row, 3, QStringLiteral("/music/%1.mp3").arg(i));
        state.setProgressValue(i);
        giveEventsATurn();
    }
    EXPECT_EQ(f.model().items.count(), 100);
    EXPECT_EQ(header->measured, before);
}
