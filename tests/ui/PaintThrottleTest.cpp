#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QScrollBar>
#include <QThread>
#include <QTimer>

#include "MainWindowTestHelpers.h"
#include "platform/EventTurn.h"
#include "ui/ListViewControl.h"

namespace {

// Counts the paints a widget receives.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return false;
    }
};

void ShowAtDesignSize(WindowFixture& f) {
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    QApplication::processEvents();
}

// A loop like the adding's: a row, the bar moves, events get their turn.
int AddRowsWithTurns(WindowFixture& f, int durationMs, const std::function<void(int)>& perRow) {
    ItemList& items = f.model().items;
    QElapsedTimer clock;
    clock.start();
    int rows = 0;
    f.model().state.setProgressMax(1000000);
    f.model().state.setProgressVisible(true);
    while (clock.elapsed() < durationMs) {
        ++rows;
        const int row = items.addRow(QStringLiteral("%1.mp3").arg(rows));
        items.setCell(row, 3, QStringLiteral("/music/%1.mp3").arg(rows));
        f.model().state.setProgressValue(rows);
        if (perRow) {
            perRow(rows);
        }
        giveEventsATurn();
        QThread::msleep(1);
    }
    return rows;
}

}  // namespace

TEST(PaintThrottle, RowsAddedWithTurns_ViewPaintsAtMost25TimesASecond) {
    WindowFixture f;
    f.fillMp3List(0);
    ShowAtDesignSize(f);
    PaintCounter view(f.window->listView()->viewport());
    PaintCounter bar(f.window->findChild<QWidget*>(QStringLiteral("AddFilesProgressBar")));
    const int rows = AddRowsWithTurns(f, 600, {});
    // Without the bound every turn would paint: far more than 600 / 40 paints.
    ASSERT_GT(rows, 60);
    // 600 ms at 25 paints a second, and the first paint at once.
    EXPECT_GE(view.paints, 3);
    EXPECT_LE(view.paints, 600 / 40 + 3);
    EXPECT_LE(bar.paints, 600 / 40 + 3);

    // What the last turns held back is painted once the interval is up.
    const int before = view.paints;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 120) {
        QApplication::processEvents();
        QThread::msleep(5);
    }
    EXPECT_GT(view.paints, before);
}

TEST(PaintThrottle, CancelClickDuringTheLoop_IsServedInTheTurnItArrivesIn) {
    WindowFixture f;
    f.fillMp3List(0);
    ShowAtDesignSize(f);
    f.model().state.setCancelAddFiles(0);
    f.model().state.setCancelOverlayVisible(true);
    f.window->commands().cancelAdding = [&f] { f.model().state.setCancelAddFiles(-1); };
    QWidget* cancel = f.window->findChild<QWidget*>(QStringLiteral("CancelLabel"));
    ASSERT_NE(cancel, nullptr);
    int postedAt = 0;
    int seenAt = 0;
    AddRowsWithTurns(f, 300, [&](int row) {
        if (row == 40) {
            const QPointF at(3, 3);
            const QPointF global = cancel->mapToGlobal(at);
            QCoreApplication::postEvent(
                cancel, new QMouseEvent(QEvent::MouseButtonPress, at, global, Qt::LeftButton,
                                        Qt::LeftButton, {}));
            QCoreApplication::postEvent(cancel, new QMouseEvent(QEvent::MouseButtonRelease, at,
                                                                global, Qt::LeftButton, {}, {}));
            postedAt = row;
        }
        if (seenAt == 0 && f.model().state.cancelAddFiles() == -1) {
            seenAt = row;
        }
    });
    ASSERT_EQ(postedAt, 40);
    EXPECT_EQ(seenAt, 41);
}

TEST(PaintThrottle, OutsideTheTurns_TheWindowPaintsAsAlways) {
    WindowFixture f;
    f.fillMp3List(3);
    ShowAtDesignSize(f);
    PaintCounter view(f.window->listView()->viewport());
    for (int i = 0; i < 5; ++i) {
        f.window->listView()->viewport()->update();
        QApplication::processEvents();
    }
    EXPECT_EQ(view.paints, 5);
}

TEST(PaintThrottle, RowsAddedWithTurns_ScrollBarIsLaidOutAtABoundedRateAndWholeAtTheEnd) {
    WindowFixture f;
    f.fillMp3List(0);
    ShowAtDesignSize(f);
    QScrollBar* bar = f.window->listView()->verticalScrollBar();
    int layouts = 0;
    QObject::connect(bar, &QScrollBar::rangeChanged, [&layouts] { ++layouts; });
    const int rows = AddRowsWithTurns(f, 600, {});
    // Laid out after every row, the range would change with every row.
    ASSERT_GT(rows, 60);
    EXPECT_LE(layouts, 600 / 40 + 3);

    // Once the loop is over, the held layout comes and the bar reaches the
    // last row.
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 120) {
        QApplication::processEvents();
        QThread::msleep(5);
    }
    bar->setValue(bar->maximum());
    QApplication::processEvents();
    const int lastShown =
        f.window->listView()->rowAt(f.window->listView()->viewport()->height() - 1);
    EXPECT_EQ(lastShown < 0 ? rows - 1 : lastShown, rows - 1);
}

TEST(PaintThrottle, RowScrolledToWhileItsLayoutIsHeld_IsShown) {
    WindowFixture f;
    f.fillMp3List(0);
    ShowAtDesignSize(f);
    ListViewControl* view = f.window->listView();
    ItemList& items = f.model().items;
    const auto addRows = [&items](int count) {
        for (int i = 0; i < count; ++i) {
            items.addRow(QStringLiteral("%1.mp3").arg(items.count() + 1));
        }
    };
    // A turn lays the view out; rows added at once after it wait for the next
    // layout, and a turn that scrolls to the last of them, as a key press
    // would, comes before it.
    addRows(30);
    giveEventsATurn();
    addRows(30);
    QTimer::singleShot(
        0, view, [view, &items] { view->scrollTo(view->model()->index(items.count() - 1, 0)); });
    giveEventsATurn();
    EXPECT_EQ(view->rowAt(view->viewport()->height() - 1), items.count() - 1);
}
