#include <gtest/gtest.h>

#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QLabel>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QUrl>

#include "MainWindowTestHelpers.h"
#include "list/ListFunctions.h"
#include "list/ListviewLayout.h"
#include "ui/ImageButton.h"
#include "ui/ListViewControl.h"
#include "ui/StatusBarControl.h"

namespace {

QRect Tw(int left, int top, int width, int height) {
    auto px = [](int t) { return qRound(t / 15.0); };
    return QRect(px(left), px(top), px(width), px(height));
}

template <typename T = QWidget>
T* Control(MainWindow& w, const char* name) {
    T* found = w.findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
}

void ShowAtDesignSize(WindowFixture& f) {
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    QApplication::processEvents();
}

}  // namespace

TEST(MainWindowLayout, Load_ControlsHaveTheirDesignNamesCaptionsAndPlaces) {
    WindowFixture f;
    MainWindow& w = *f.window;
    EXPECT_EQ(w.windowTitle(), "Velmora");
    EXPECT_EQ(w.font().family(), "Verdana");

    auto* list = Control<QTableView>(w, "ListView");
    EXPECT_EQ(list->pos(), QPoint(4, 59));
    EXPECT_EQ(Control(w, "Toolbar")->height(), 54);
    auto* panel = Control(w, "ControlPanel");
    EXPECT_EQ(panel->y(), 60);
    EXPECT_EQ(panel->size(), QSize(42, 190));

    struct Button {
        const char* name;
        int top;
        const char* tip;
    };
    for (const Button& b :
         {Button{"UpButton", 0, "Move Item Up"}, Button{"DownButton", 570, "Move Item Down"},
          Button{"DeleteButton", 1140, "Remove Item (right-click for more options)"},
          Button{"PlayButton", 1710, "Play File"},
          Button{"PropertiesButton", 2280, "File Properties"}}) {
        auto* button = Control<ImageButton>(w, b.name);
        EXPECT_EQ(button->parentWidget(), panel) << b.name;
        EXPECT_EQ(button->geometry(), Tw(0, b.top, 630, 570)) << b.name;
        EXPECT_EQ(button->toolTip(), b.tip) << b.name;
        EXPECT_EQ(button->cursor().shape(), Qt::PointingHandCursor) << b.name;
        EXPECT_FALSE(button->pixmap().isNull()) << b.name;
    }

    auto* info = Control(w, "InfoPanel");
    EXPECT_EQ(info->x(), Tw(80, 0, 0, 0).x());
    EXPECT_EQ(info->height(), 60);
    struct Label {
        const char* name;
        const char* caption;
        int left, top, width;
        bool bold;
    };
    for (const Label& l : {Label{"ListTypeLabel", "List Type:", 480, 220, 945, true},
                           Label{"ListTypeValue", "?", 1560, 225, 480, false},
                           Label{"ChangeListType", "(Change)", 2140, 225, 810, false},
                           Label{"ListCountLabel", "Total items in list:", 490, 560, 1755, true},
                           Label{"ListCountValue", "0", 2385, 555, 1300, false},
                           Label{"ListDurationLabel", "Duration:", 4080, 225, 900, true},
                           Label{"ListDurationValue", "00:00:00", 5115, 225, 1140, false},
                           Label{"ListSizeLabel", "Filesize:", 4080, 555, 810, true},
                           Label{"ListSizeValue", "0 KB", 4950, 555, 1460, false}}) {
        auto* label = Control<QLabel>(w, l.name);
        EXPECT_EQ(label->parentWidget(), info) << l.name;
        EXPECT_EQ(label->text(), l.caption) << l.name;
        EXPECT_EQ(label->geometry(), Tw(l.left, l.top, l.width, 195)) << l.name;
        EXPECT_EQ(label->font().bold(), l.bold) << l.name;
    }
    for (const char* name :
         {"ListTypeImage", "ListCountImage", "ListDurationImage", "ListSizeImage"}) {
        EXPECT_EQ(Control(w, name)->parentWidget(), info) << name;
    }
    auto* change = Control<QLabel>(w, "ChangeListType");
    EXPECT_EQ(change->toolTip(), "Change List Type");
    EXPECT_EQ(change->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(change->palette().color(QPalette::WindowText), QColor(0, 0, 128));

    auto* status = Control<StatusBarControl>(w, "StatusBar");
    EXPECT_EQ(status->height(), 20);
    EXPECT_EQ(status->panel(1)->text(), "Velmora 1.61 ");
    EXPECT_EQ(status->panel(1)->toolTip(), "Velmora");
    EXPECT_EQ(status->panel(1)->width(), 117);
    EXPECT_EQ(status->panel(2)->x(), 117);
    EXPECT_EQ(status->panel(2)->width(), 283);
    EXPECT_EQ(status->panel(2)->text(), "");
    EXPECT_EQ(status->panel(3)->x(), 400);
    EXPECT_EQ(status->panel(3)->toolTip(), "Status Indicator");

    auto* bar = Control<QProgressBar>(w, "AddFilesProgressBar");
    EXPECT_EQ(bar->parentWidget(), status);
    EXPECT_EQ(bar->geometry(), QRect(1, 3, 117 - 1, 20 - 4));
    EXPECT_TRUE(bar->isHidden());
    auto* overlay = Control(w, "CancelOverlay");
    EXPECT_EQ(overlay->parentWidget(), status);
    EXPECT_EQ(overlay->geometry(), QRect(117 + 91, 3, 49, 16));
    EXPECT_TRUE(overlay->isHidden());
    auto* cancel = Control<QLabel>(w, "CancelLabel");
    EXPECT_EQ(cancel->parentWidget(), overlay);
    EXPECT_EQ(cancel->text(), "(Cancel)");
    EXPECT_EQ(cancel->toolTip(), "Cancel Operation");
    EXPECT_EQ(cancel->geometry(), Tw(0, 0, 735, 195));
    EXPECT_EQ(cancel->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(cancel->palette().color(QPalette::WindowText), QColor(0, 0, 128));
}

TEST(MainWindowLayout, DesignClientSize_ListViewIs5715By2880) {
    WindowFixture f;
    ShowAtDesignSize(f);
    MainWindow& w = *f.window;
    ASSERT_EQ(w.clientSize(), QSize(441, 336));
    EXPECT_EQ(Control(w, "ListView")->size(), QSize(5715 / 15, 2880 / 15));
    EXPECT_EQ(Control(w, "ControlPanel")->x(), qRound((6615 - 630 - 100) / 15.0));
    EXPECT_EQ(Control(w, "InfoPanel")->y(), qRound((5040 - 900 - 380) / 15.0));
    EXPECT_EQ(Control(w, "InfoPanel")->width(), qRound((6615 - 170) / 15.0));
    EXPECT_EQ(Control(w, "StatusBar")->geometry(), QRect(0, 336 - 20, 441, 20));
    EXPECT_EQ(Control(w, "Toolbar")->width(), 441);
}

TEST(MainWindowLayout, LargerClientSize_FollowsTheFiveFormulas) {
    WindowFixture f;
    ShowAtDesignSize(f);
    MainWindow& w = *f.window;
    w.setClientSize(QSize(700, 500));
    QApplication::processEvents();
    ASSERT_EQ(w.clientSize(), QSize(700, 500));
    const int wt = 700 * 15, ht = 500 * 15;
    EXPECT_EQ(Control(w, "ControlPanel")->x(), qRound((wt - 630 - 100) / 15.0));
    EXPECT_EQ(Control(w, "InfoPanel")->y(), qRound((ht - 900 - 380) / 15.0));
    EXPECT_EQ(Control(w, "InfoPanel")->width(), qRound((wt - 170) / 15.0));
    EXPECT_EQ(Control(w, "ListView")->width(), qRound((wt - 630 - 270) / 15.0));
    EXPECT_EQ(Control(w, "ListView")->height(), qRound((ht - 810 - 900 - 450) / 15.0));
}

TEST(MainWindowLayout, NarrowerThanDesign_JumpsBackOnThatAxisOnly) {
    WindowFixture f;
    ShowAtDesignSize(f);
    MainWindow& w = *f.window;
    w.setClientSize(QSize(600, 450));
    QApplication::processEvents();
    w.setClientSize(QSize(300, 450));
    QApplication::processEvents();
    // Outer width 6735 twips = 449 pixels; the height stays as it was.
    EXPECT_EQ(w.frameGeometry().width(), 449);
    EXPECT_GE(w.clientSize().width(), 441);
    EXPECT_EQ(w.clientSize().height(), 450);

    w.setClientSize(QSize(600, 200));
    QApplication::processEvents();
    EXPECT_EQ(w.frameGeometry().height(), 390);
    EXPECT_EQ(w.clientSize().width(), 600);
    EXPECT_GE(w.clientSize().height(), 336);
}

TEST(MainWindowLayout, Minimised_LayoutUntouched) {
    WindowFixture f;
    ShowAtDesignSize(f);
    MainWindow& w = *f.window;
    const QSize listSize = Control(w, "ListView")->size();
    w.setWindowState(Qt::WindowMinimized);
    QApplication::processEvents();
    if (!w.isMinimized()) {
        GTEST_SKIP() << "the platform cannot minimise";
    }
    w.setClientSize(QSize(200, 200));
    QApplication::processEvents();
    EXPECT_EQ(Control(w, "ListView")->size(), listSize);
}

TEST(MainWindowLayout, RestoredFromMaximisedBelowTheLimit_JumpsBackToTheDesignSize) {
    WindowFixture f;
    MainWindow& w = *f.window;
    // The size the window goes back to is below the limit on both axes.
    w.setClientSize(QSize(300, 200));
    w.showMaximized();
    QApplication::processEvents();
    if (!w.isMaximized()) {
        GTEST_SKIP() << "the platform cannot maximise";
    }
    w.showNormal();
    // The restore, the size step's resize, and the layout of the new size.
    for (int turn = 0; turn < 3; ++turn) {
        QApplication::processEvents();
    }
    ASSERT_FALSE(w.isMaximized());
    // Outer 6735 by 5850 twips: 449 by 390 pixels.
    EXPECT_EQ(w.frameGeometry().width(), 449);
    EXPECT_EQ(w.frameGeometry().height(), 390);
    EXPECT_GE(w.clientSize().width(), 441);
    EXPECT_GE(w.clientSize().height(), 336);
    const int wt = w.clientSize().width() * 15;
    EXPECT_EQ(Control(w, "ListView")->width(), qRound((wt - 630 - 270) / 15.0));
}

TEST(MainWindowLayout, Minimised_IsLaidOutAgainOnRestoring) {
    WindowFixture f;
    ShowAtDesignSize(f);
    MainWindow& w = *f.window;
    w.setWindowState(Qt::WindowMinimized);
    QApplication::processEvents();
    if (!w.isMinimized()) {
        GTEST_SKIP() << "the platform cannot minimise";
    }
    const QSize listSize = Control(w, "ListView")->size();
    w.setClientSize(QSize(700, 500));
    QApplication::processEvents();
    ASSERT_EQ(Control(w, "ListView")->size(), listSize);
    w.setWindowState(Qt::WindowNoState);
    QApplication::processEvents();
    ASSERT_FALSE(w.isMinimized());
    ASSERT_EQ(w.clientSize(), QSize(700, 500));
    const int wt = 700 * 15, ht = 500 * 15;
    EXPECT_EQ(Control(w, "ControlPanel")->x(), qRound((wt - 630 - 100) / 15.0));
    EXPECT_EQ(Control(w, "InfoPanel")->y(), qRound((ht - 900 - 380) / 15.0));
    EXPECT_EQ(Control(w, "ListView")->width(), qRound((wt - 630 - 270) / 15.0));
    EXPECT_EQ(Control(w, "ListView")->height(), qRound((ht - 810 - 900 - 450) / 15.0));
}

TEST(MainWindowListView, ReportStyle_FullRowSingleSelection_FilepathWidthZero) {
    WindowFixture f;
    f.fillMp3List(3);
    auto* view = f.window->listView();
    EXPECT_EQ(view->model(), &f.model().items);
    EXPECT_EQ(view->selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(view->selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_FALSE(view->verticalHeader()->isVisible() && view->verticalHeader()->isVisibleTo(view));
    EXPECT_EQ(view->columnWidth(0), 96);
    EXPECT_EQ(view->columnWidth(3), 0);
    EXPECT_EQ(view->columnWidth(11), 96);
    EXPECT_EQ(view->model()->headerData(2, Qt::Horizontal).toString(), "Date Modified");
}

TEST(MainWindowListView, AtStartUp_DesignHeadersStandBeforeTheFirstLayout) {
    WindowFixture f;
    auto* view = f.window->listView();
    ASSERT_EQ(view->horizontalHeader()->count(), 4);
    const QStringList design{"Filename", "Filesize", "Date Modified", "Filepath"};
    for (int c = 0; c < 4; ++c) {
        EXPECT_EQ(view->model()->headerData(c, Qt::Horizontal).toString(), design.at(c));
    }
    EXPECT_EQ(view->columnWidth(0), 96);
    EXPECT_EQ(view->columnWidth(1), 96);
    EXPECT_EQ(view->columnWidth(2), 96);
    EXPECT_EQ(view->columnWidth(3), 0);
    ShowAtDesignSize(f);
    EXPECT_TRUE(view->horizontalHeader()->isVisible());
}

TEST(MainWindowListView, UserColumnWidth_StaysAfterClearList_UntilALayoutRoutine) {
    WindowFixture f;
    ShowAtDesignSize(f);
    f.fillMp3List(3);
    auto* view = f.window->listView();
    view->horizontalHeader()->resizeSection(0, 230);  // what a drag of the divider does
    ClearList(f.model(), 0);
    EXPECT_EQ(f.model().items.count(), 0);
    EXPECT_EQ(view->columnWidth(0), 230);
    EXPECT_EQ(view->columnWidth(1), 96);
    EXPECT_EQ(view->columnWidth(3), 0);

    ClearColumns(f.model());
    AddSharedColumns(f.model());
    AddMP3Columns(f.model());
    EXPECT_EQ(view->columnWidth(0), 96);
}

TEST(MainWindowListView, UserColumnWidth_StaysAfterARemovalThatResetsTheView) {
    WindowFixture f;
    ShowAtDesignSize(f);
    f.fillMp3List(0);
    ItemList& items = f.model().items;
    // Every other row repeats the path of the next one: 40 separate rows go,
    // too many for the view to follow one by one, so it is built anew.
    for (int i = 1; i <= 80; ++i) {
        items.addRow(QStringLiteral("%1.mp3").arg(i));
        items.setCell(i, 3, QStringLiteral("/music/%1.mp3").arg((i + 1) / 2));
    }
    QSignalSpy resets(&items, &QAbstractItemModel::modelReset);
    auto* view = f.window->listView();
    view->horizontalHeader()->resizeSection(2, 170);
    RemoveDuplicatedFiles(f.model());
    EXPECT_EQ(items.count(), 40);
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(view->columnWidth(2), 170);
    EXPECT_EQ(view->columnWidth(0), 96);
}

TEST(MainWindowListView, Selection_KeptInSelectedIndexBothWays) {
    WindowFixture f;
    f.fillMp3List(5);
    auto* view = f.window->listView();
    EXPECT_EQ(f.window->selectedIndex(), 0);
    view->selectRow(2);
    EXPECT_EQ(f.model().state.selectedIndex(), 3);
    f.model().state.setSelectedIndex(5);
    ASSERT_EQ(view->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(view->selectionModel()->selectedRows().first().row(), 4);
    f.model().items.clearRows();
    EXPECT_EQ(f.model().state.selectedIndex(), 0);
}

TEST(MainWindowListView, DoubleClick_OpensSelectedFileThroughTheShell) {
    WindowFixture f;
    f.fillMp3List(3);
    ShowAtDesignSize(f);
    auto* view = f.window->listView();
    view->selectRow(1);
    const QPoint at = view->visualRect(f.model().items.index(1, 0)).center();
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(f.calls, QStringList{"ShellOpen /music/2.mp3"});
}

TEST(MainWindowListView, DropOfThreeFiles_GoesToTheDropPassInOrder) {
    WindowFixture f;
    ShowAtDesignSize(f);
    auto* view = f.window->listView();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/m/b.mp3"), QUrl::fromLocalFile("/m/a.mp3"),
                  QUrl::fromLocalFile("/m/c d.mp3")});
    const QPoint at = view->viewport()->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drop);
    EXPECT_EQ(f.calls, QStringList{"Drop /m/b.mp3|/m/a.mp3|/m/c d.mp3"});
}

TEST(MainWindowListView, HundredThousandRows_ViewAsksOnlyForVisibleRows) {
    WindowFixture f;
    f.fillMp3List(0);
    QList<QStringList> rows;
    rows.reserve(100000);
    for (int i = 1; i <= 100000; ++i) {
        rows.append(QStringList{QStringLiteral("%1.mp3").arg(i), "1 KB", "", "/p"});
    }
    f.model().items.appendRows(rows);

    struct Counting : QIdentityProxyModel {
        mutable int calls = 0;
        mutable int highestRow = -1;
        QVariant data(const QModelIndex& index, int role) const override {
            ++calls;
            highestRow = std::max(highestRow, index.row());
            return QIdentityProxyModel::data(index, role);
        }
    } counting;
    counting.setSourceModel(&f.model().items);
    auto* view = f.window->listView();
    view->setModel(&counting);
    view->applyColumnWidths();
    ShowAtDesignSize(f);
    view->repaint();
    QApplication::processEvents();
    const int visibleRows =
        view->viewport()->height() / view->verticalHeader()->defaultSectionSize() + 2;
    EXPECT_GT(counting.calls, 0);
    EXPECT_LT(counting.highestRow, visibleRows);
    EXPECT_LT(counting.calls, visibleRows * 12 * 20);

    counting.calls = 0;
    counting.highestRow = -1;
    view->scrollToBottom();
    view->selectRow(99999);
    view->repaint();
    QApplication::processEvents();
    EXPECT_LT(counting.calls, visibleRows * 12 * 20);
}

TEST(MainWindowState, ListStateChanges_AreShownAtOnce) {
    WindowFixture f;
    ListState& s = f.model().state;
    s.setWindowTitle("Velmora - (Untitled List)");
    s.setListType("MPEG");
    s.setTypeImage(ListState::Picture::MPEG);
    s.setCountCaption("12");
    s.setDurationCaption("01:02:03");
    s.setSizeCaption("1,234 KB");
    s.setStatusPanel2("Adding Files...");
    s.setProgressMax(7);
    s.setProgressValue(3);
    s.setProgressVisible(true);
    s.setCancelOverlayVisible(true);
    s.setStatusPicture(ListState::Picture::Green);
    MainWindow& w = *f.window;
    EXPECT_EQ(w.windowTitle(), "Velmora - (Untitled List)");
    EXPECT_EQ(Control<QLabel>(w, "ListTypeValue")->text(), "MPEG");
    EXPECT_FALSE(Control<QLabel>(w, "ListTypeImage")->pixmap().isNull());
    EXPECT_EQ(Control<QLabel>(w, "ListCountValue")->text(), "12");
    EXPECT_EQ(Control<QLabel>(w, "ListDurationValue")->text(), "01:02:03");
    EXPECT_EQ(Control<QLabel>(w, "ListSizeValue")->text(), "1,234 KB");
    EXPECT_EQ(w.statusBarControl()->panel(2)->text(), "Adding Files...");
    EXPECT_FALSE(w.statusBarControl()->panel(3)->pixmap().isNull());
    auto* bar = Control<QProgressBar>(w, "AddFilesProgressBar");
    EXPECT_FALSE(bar->isHidden());
    EXPECT_EQ(bar->maximum(), 7);
    EXPECT_EQ(bar->value(), 3);
    EXPECT_FALSE(Control(w, "CancelOverlay")->isHidden());
}

TEST(MainWindowState, CancelLabelClick_SetsCancelAndHidesTheAddingDisplay) {
    WindowFixture f;
    ShowAtDesignSize(f);
    ListState& s = f.model().state;
    s.setStatusPanel2("Adding Files...");
    s.setProgressVisible(true);
    s.setCancelOverlayVisible(true);
    QTest::mouseClick(Control(*f.window, "CancelLabel"), Qt::LeftButton);
    EXPECT_EQ(s.cancelAddFiles(), -1);
    EXPECT_EQ(s.statusPanel2(), "");
    EXPECT_TRUE(Control(*f.window, "CancelOverlay")->isHidden());
    EXPECT_TRUE(Control(*f.window, "AddFilesProgressBar")->isHidden());
}

TEST(MainWindowClose, Always_AsksTheSaveQuestion) {
    WindowFixture f;
    ShowAtDesignSize(f);
    f.questions.answer(Msg::Cancel);
    EXPECT_FALSE(f.window->close());
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt, "Would you like to save your list?");
    EXPECT_EQ(f.questions.asked[0].style, Msg::YesNoCancel + Msg::Question);
    EXPECT_EQ(f.questions.asked[0].title, "");
    EXPECT_TRUE(f.window->isVisible());
    EXPECT_EQ(f.exits, 0);
    EXPECT_TRUE(f.calls.isEmpty());
}

TEST(MainWindowClose, No_EndsTheProgramWithoutSaving) {
    WindowFixture f;
    ShowAtDesignSize(f);
    f.questions.answer(Msg::No);
    f.window->close();
    EXPECT_EQ(f.exits, 1);
    EXPECT_TRUE(f.calls.isEmpty());
}

TEST(MainWindowClose, YesWithCancelledSaveDialog_KeepsTheWindowAndTheList) {
    WindowFixture f;
    f.fillMp3List(2);
    ShowAtDesignSize(f);
    f.window->commands().saveList = [&f](short saveAs) {
        f.calls << "SaveList " + QString::number(saveAs);
        f.model().commonDialog.fileName.clear();  // the user cancelled the dialog
        return false;
    };
    f.questions.answer(Msg::Yes);
    EXPECT_FALSE(f.window->close());
    EXPECT_EQ(f.calls, QStringList{"SaveList 0"});
    EXPECT_EQ(f.exits, 0);
    EXPECT_TRUE(f.window->isVisible());
    EXPECT_EQ(f.model().items.count(), 2);
}

TEST(MainWindowClose, YesWithSavedList_EndsTheProgram) {
    WindowFixture f;
    ShowAtDesignSize(f);
    f.window->commands().saveList = [&f](short saveAs) {
        f.calls << "SaveList " + QString::number(saveAs);
        f.model().commonDialog.fileName = "/lists/a.vlr";
        return true;
    };
    f.questions.answer(Msg::Yes);
    f.window->close();
    EXPECT_EQ(f.calls, QStringList{"SaveList 0"});
    EXPECT_EQ(f.exits, 1);
}

TEST(MainWindowClose, FileExit_EndsAtOnceWithoutQuestion) {
    WindowFixture f;
    f.fillMp3List(3);
    ShowAtDesignSize(f);
    f.window->action("FileExit")->trigger();
    EXPECT_EQ(f.exits, 1);
    EXPECT_TRUE(f.questions.asked.isEmpty());
    EXPECT_TRUE(f.calls.isEmpty());
}
