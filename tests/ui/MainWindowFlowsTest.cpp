#include <gtest/gtest.h>

#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "MainWindowTestHelpers.h"
#include "app/AppPaths.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "support/FileSizeLimit.h"
#include "support/TestEnvironment.h"
#include "ui/ListViewControl.h"
#include "ui/StatusBarControl.h"

namespace {
void ClickPanel(WindowFixture& f, int panel) {
    QTest::mouseClick(f.window->statusBarControl()->panel(panel), Qt::LeftButton);
}
}  // namespace

TEST(StatusBoxes, Green_InformationBox) {
    WindowFixture f;
    f.window->show();
    f.model().state.setListStatusText("Green");
    ClickPanel(f, 3);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Status: Green\n\nThis status indicates that there is nothing wrong with your list.");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_EQ(f.questions.asked[0].title, "");
}

TEST(StatusBoxes, Orange_ExclamationBox) {
    WindowFixture f;
    f.window->show();
    f.model().state.setListStatusText("Orange");
    ClickPanel(f, 3);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Status: Orange\n\nThis status indicates that there are some (problems) with your "
              "list.\n\nPossible Reasons:\n-Different Kilohertz\n\nNote: although it is "
              "recommended that you join files\nwith the same properties, you can still join "
              "this list!");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
}

TEST(StatusBoxes, RedWithFewerThanTwoRows_NotEnoughItems) {
    WindowFixture f;
    f.fillMp3List(1);
    f.window->show();
    f.model().state.setListStatusText("Red");
    ClickPanel(f, 3);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Status: Red\n\nThis status indicates that your list cannot be merged this "
              "way.\n\nPossible Reasons:\n-There are not enough items in your list.");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Critical);
}

TEST(StatusBoxes, RedWithTwoRows_CodecsAndDimensions) {
    WindowFixture f;
    f.fillMp3List(2);
    f.window->show();
    f.model().state.setListStatusText("Red");
    ClickPanel(f, 3);
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Status: Red\n\nThis status indicates that there are some (problems) with your "
              "list.\n\nPossible Reasons:\n-Different Video Codecs\n-Different Dimensions");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Critical);
}

TEST(StatusBoxes, NoStatusOrOtherPanels_ShowNothing) {
    WindowFixture f;
    f.window->show();
    ClickPanel(f, 3);
    f.model().state.setListStatusText("Green");
    ClickPanel(f, 1);
    ClickPanel(f, 2);
    EXPECT_TRUE(f.questions.asked.isEmpty());
}

TEST(ChangeListType, EmptyMp3List_NoQuestionBecomesMpeg) {
    WindowFixture f;
    f.fillMp3List(0);
    f.window->show();
    QTest::mouseClick(f.window->findChild<QLabel*>("ChangeListType"), Qt::LeftButton);
    EXPECT_TRUE(f.questions.asked.isEmpty());
    EXPECT_EQ(f.calls, QStringList({"ClearColumns", "AddSharedColumns", "AddMPEGColumns"}));
    EXPECT_EQ(f.model().state.listType(), "MPEG");
    EXPECT_EQ(f.model().state.typeImage(), ListState::Picture::MPEG);
    EXPECT_EQ(f.window->findChild<QLabel*>("ListTypeValue")->text(), "MPEG");
    f.calls.clear();
    f.window->changeListType();
    EXPECT_EQ(f.model().state.listType(), "MP3");
    EXPECT_EQ(f.model().state.typeImage(), ListState::Picture::MP3);
    EXPECT_EQ(f.calls, QStringList({"ClearColumns", "AddSharedColumns", "AddMP3Columns"}));
}

TEST(ChangeListType, WithRowsYes_SavesClearsSilentlyAndToggles) {
    WindowFixture f;
    f.fillMp3List(2);
    f.questions.answer(Msg::Yes);
    f.window->changeListType();
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Warning: this action will clear your list, and then change the type of "
              "list.\n\nWould you like to save your list first?");
    EXPECT_EQ(f.questions.asked[0].style, Msg::YesNoCancel + Msg::Exclamation);
    EXPECT_EQ(f.calls, QStringList({"SaveList 0", "ClearList 0", "ClearColumns", "AddSharedColumns",
                                    "AddMPEGColumns"}));
    EXPECT_EQ(f.model().state.listType(), "MPEG");
}

TEST(ChangeListType, WithRowsNo_ClearsWithoutSaving) {
    WindowFixture f;
    f.fillMp3List(2);
    f.questions.answer(Msg::No);
    f.window->changeListType();
    EXPECT_EQ(f.calls,
              QStringList({"ClearList 0", "ClearColumns", "AddSharedColumns", "AddMPEGColumns"}));
}

TEST(ChangeListType, WithRowsCancel_NothingChanges) {
    WindowFixture f;
    f.fillMp3List(2);
    f.questions.answer(Msg::Cancel);
    f.window->changeListType();
    EXPECT_TRUE(f.calls.isEmpty());
    EXPECT_EQ(f.model().state.listType(), "MP3");
    EXPECT_EQ(f.model().items.count(), 2);
}

// A window with its own wiring (the list routines do the work), a settings
// folder of its own, an MP3 list of two rows and a counter of program ends.
struct RealWindow {
    RealWindow() {
        SetAppDataFolder(dir.path());
        window.exitProgram = [this] { ++exits; };
        NewItemList(window.model(), "MP3");
        window.model().items.addRow("a.mp3");
        window.model().items.setCell(1, 3, "/music/a.mp3");
        window.model().items.addRow("b.mp3");
        window.model().items.setCell(2, 3, "/music/b.mp3");
        title = window.model().state.windowTitle();
    }
    ~RealWindow() { SetAppDataFolder(QString()); }

    // The list as it stood: rows, type, columns and title.
    void expectTheListKept() {
        EXPECT_EQ(window.model().items.count(), 2);
        EXPECT_EQ(window.model().items.cell(2, 3), "/music/b.mp3");
        EXPECT_EQ(window.model().state.listType(), "MP3");
        EXPECT_EQ(window.model().items.headerCount(), 12);
        EXPECT_EQ(window.model().state.windowTitle(), title);
        EXPECT_EQ(window.model().state.listFileName(), "");
    }
    // A path in a folder that is not there: the save is refused.
    QString refusedPath() const { return dir.filePath("gone/list.vlr"); }
    void expectUnableToSave(const QString& path) {
        ASSERT_EQ(questions.asked.size(), 2);
        EXPECT_TRUE(questions.asked[1].prompt.startsWith("Unable to save the list!\r\n" + path))
            << questions.asked[1].prompt.toStdString();
        EXPECT_EQ(questions.asked[1].style, Msg::OkOnly + Msg::Critical);
    }

    QTemporaryDir dir;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window{questions, clipboard};
    QString title;
    int exits = 0;
};

TEST(ChangeListType, RealRoutines_YesAndCancelledSave_KeepsListTypeAndTitle) {
    RealWindow w;
    w.questions.answer(Msg::Yes);
    w.questions.cancelDialog();
    w.window.changeListType();
    EXPECT_EQ(w.questions.dialogsShown.size(), 1);
    w.expectTheListKept();
}

TEST(ChangeListType, RealRoutines_YesAndASaveTheFolderRefuses_KeepsListTypeAndTitle) {
    RealWindow w;
    w.questions.answer(Msg::Yes);
    w.questions.chooseFile(w.refusedPath());
    w.window.changeListType();
    w.expectUnableToSave(w.refusedPath());
    w.expectTheListKept();
}

TEST(ChangeListType, RealRoutines_YesAndASaveThatWrites_ClearsAndChangesColumns) {
    RealWindow w;
    const QString path = w.dir.filePath("list.vlr");
    w.questions.answer(Msg::Yes);
    w.questions.chooseFile(path);
    w.window.changeListType();
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(w.window.model().items.count(), 0);
    EXPECT_EQ(w.window.model().state.listType(), "MPEG");
    EXPECT_EQ(w.window.model().items.headerCount(), 7);
    EXPECT_EQ(w.window.model().items.header(3).text, "Filepath");
    EXPECT_EQ(w.window.model().items.header(3).width, 0);
}

TEST(MainWindowClose, RealRoutines_YesAndCancelledSaveDialog_KeepsTheWindowAndTheList) {
    RealWindow w;
    w.window.show();
    w.questions.answer(Msg::Yes);
    w.questions.cancelDialog();
    EXPECT_FALSE(w.window.close());
    EXPECT_EQ(w.questions.dialogsShown.size(), 1);
    EXPECT_EQ(w.questions.asked.size(), 1);
    EXPECT_EQ(w.exits, 0);
    EXPECT_TRUE(w.window.isVisible());
    w.expectTheListKept();
}

TEST(MainWindowClose, RealRoutines_YesAndASaveTheFolderRefuses_KeepsTheWindowAndTheList) {
    RealWindow w;
    w.window.show();
    w.questions.answer(Msg::Yes);
    w.questions.chooseFile(w.refusedPath());
    EXPECT_FALSE(w.window.close());
    w.expectUnableToSave(w.refusedPath());
    EXPECT_EQ(w.exits, 0);
    EXPECT_TRUE(w.window.isVisible());
    w.expectTheListKept();
}

TEST(MainWindowClose, RealRoutines_YesAndAFullDisk_KeepsTheWindowAndTheList) {
    RealWindow w;
    w.window.show();
    const QString path = w.dir.filePath("list.vlr");
    w.questions.answer(Msg::Yes);
    w.questions.chooseFile(path);
    // A list file far beyond the room left; the settings file still fits.
    w.window.model().items.setCell(1, 4, QString(20000, u'x'));
    {
        FileSizeLimit limit(4096);
        ASSERT_TRUE(limit.active());
        EXPECT_FALSE(w.window.close());
    }
    w.expectUnableToSave(path);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(w.exits, 0);
    EXPECT_TRUE(w.window.isVisible());
    w.expectTheListKept();
}

TEST(MainWindowClose, RealRoutines_YesAndASaveThatWrites_EndsTheProgram) {
    RealWindow w;
    w.window.show();
    const QString path = w.dir.filePath("list.vlr");
    w.questions.answer(Msg::Yes);
    w.questions.chooseFile(path);
    w.window.close();
    EXPECT_EQ(w.exits, 1);
    EXPECT_TRUE(QFile::exists(path));
}

TEST(ChangeListType, ListWithAFileName_KeepsTheTitleAndTheNextSaveWritesTheEmptyList) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    SetAppDataFolder(dir.path());
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window(questions, clipboard);
    NewItemList(window.model(), "MP3");
    window.model().items.addRow("a.mp3");
    window.model().items.setCell(1, 3, "/music/a.mp3");
    const QString listFile = dir.filePath("Party.vlr");
    questions.chooseFile(listFile);
    SaveList(window.model(), 0);
    ASSERT_EQ(window.model().state.listFileName(), listFile);
    ASSERT_EQ(window.windowTitle(), "Velmora - (Party.vlr)");

    questions.answer(Msg::No);
    window.changeListType();
    EXPECT_EQ(window.model().items.count(), 0);
    EXPECT_EQ(window.model().state.listType(), "MPEG");
    // The file name and the title stay with the old list.
    EXPECT_EQ(window.model().state.listFileName(), listFile);
    EXPECT_EQ(window.windowTitle(), "Velmora - (Party.vlr)");

    // The next plain save asks nothing and writes the new, empty list over it.
    const int dialogsBefore = questions.dialogsShown.size();
    SaveList(window.model(), 0);
    EXPECT_EQ(questions.dialogsShown.size(), dialogsBefore);
    QFile file(listFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("VLR List v1.0\r\n<MPEG>\r\n"));
    EXPECT_EQ(window.windowTitle(), "Velmora - (Party.vlr)");
    SetAppDataFolder(QString());
}

TEST(DropFiles, ThreeRealFiles_AddedAsRowsInTheDroppedOrder) {
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window(questions, clipboard);
    NewItemList(window.model(), "MP3");
    window.show();
    const QString folder = SampleMediaFolder();
    const QStringList paths = {folder + "/mimetype-mp3.mp3", folder + "/filetype-fixture.mp3",
                               folder + "/mimetype-mp3.mp3"};
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(paths[0]), QUrl::fromLocalFile(paths[1]),
                  QUrl::fromLocalFile(paths[2])});
    QWidget* viewport = window.listView()->viewport();
    const QPoint at = viewport->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    ItemList& items = window.model().items;
    ASSERT_EQ(items.count(), 3);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(items.cell(i, 3), paths[i - 1]) << i;
    }
    EXPECT_EQ(items.cell(2, 0), "filetype-fixture.mp3");
    EXPECT_EQ(window.model().state.countCaption(), "3");
    // The adding display is gone again.
    EXPECT_TRUE(window.findChild<QWidget*>("CancelOverlay")->isHidden());
    EXPECT_TRUE(window.findChild<QWidget*>("AddFilesProgressBar")->isHidden());
    EXPECT_EQ(window.statusBarControl()->panel(2)->text(), "");
}

TEST(DropFiles, MpegFileOnAnMp3List_AddedWithWhatFillListItemFinds) {
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window(questions, clipboard);
    NewItemList(window.model(), "MP3");
    window.show();
    const QString mpeg = SampleMediaFolder() + "/mimetype-mpeg.mpeg";
    ASSERT_TRUE(QFile::exists(mpeg));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(mpeg)});
    QWidget* viewport = window.listView()->viewport();
    const QPoint at = viewport->rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);

    // No test of the extension or of the list's type: the row is there, in
    // the MP3 layout, filled as any row of that file in an MP3 list.
    const ItemList& items = window.model().items;
    ASSERT_EQ(items.count(), 1);
    EXPECT_EQ(window.model().state.listType(), "MP3");
    EXPECT_EQ(items.headerCount(), 12);
    EXPECT_EQ(items.cell(1, 0), "mimetype-mpeg.mpeg");
    EXPECT_EQ(items.cell(1, 3), mpeg);
    EXPECT_FALSE(items.cell(1, 1).isEmpty());

    ScriptedQuestions otherQuestions;
    MemoryClipboard otherClipboard;
    MainModel direct(otherQuestions, otherClipboard);
    NewItemList(direct, "MP3");
    direct.items.addRow();
    direct.items.setCell(1, 3, mpeg);
    FillListItem(direct, 0);
    for (int column = 0; column < 12; ++column) {
        EXPECT_EQ(items.cell(1, column), direct.items.cell(1, column)) << column;
    }
    EXPECT_EQ(window.model().state.countCaption(), "1");
}

TEST(ListFocus, RequestFromARoutine_GivesTheListViewTheFocus) {
    WindowFixture f;
    f.window->show();
    QApplication::setActiveWindow(f.window.get());
    f.window->listView()->clearFocus();
    ASSERT_FALSE(f.window->listView()->hasFocus());
    f.model().state.requestListFocus();
    EXPECT_TRUE(f.window->listView()->hasFocus());
}
