// Every window of the program, at its design size and in the program's font,
// shows each of its texts whole.

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "app/AppPaths.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/AboutWindow.h"
#include "ui/AddDirectoryBox.h"
#include "ui/ID3Tag.h"
#include "ui/ListInfo.h"
#include "ui/MainWindow.h"
#include "ui/NewListWindow.h"
#include "ui/PreferencesWindow.h"
#include "ui/ProgramLook.h"
#include "ui/RemoveWizard.h"
#include "ui/SortWizard.h"
#include "ui/Splashscreen.h"
#include "ui/TextFitCheck.h"
#include "ui/TipsWindow.h"

namespace {

// The largest figures a list can show: a million rows, 999,999,999 KB and
// 99:59:59.
const QString kLargestCount = QStringLiteral("1000000");
const QString kLargestSize = QStringLiteral("999,999,999 KB");
const QString kLargestDuration = QStringLiteral("99:59:59");

class WindowTextFitTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(appData.isValid());
        SetAppDataFolder(appData.path());
        NewItemList(model, QStringLiteral("MP3"));
    }
    void TearDown() override { SetAppDataFolder(QString()); }

    // Shows the window as the user meets it, then measures its texts.
    static void expectWhole(QWidget& window) {
        window.show();
        QApplication::processEvents();
        const QStringList cuts = TextFitCheck::cutTexts(window);
        EXPECT_TRUE(cuts.isEmpty()) << window.objectName().toStdString() << ":\n"
                                    << cuts.join(u'\n').toStdString();
    }

    QTemporaryDir appData;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(WindowTextFitTest, MainWindow_ShowsTheLargestFiguresWhole) {
    MainWindow window(questions, clipboard);
    NewItemList(window.model(), QStringLiteral("MPEG"));
    window.model().state.setCountCaption(kLargestCount);
    window.model().state.setSizeCaption(kLargestSize);
    window.model().state.setDurationCaption(kLargestDuration);
    expectWhole(window);
    EXPECT_EQ(window.findChild<QLabel*>("ListCountValue")->text(), kLargestCount);
    EXPECT_EQ(window.findChild<QLabel*>("ListSizeValue")->text(), kLargestSize);
}

TEST_F(WindowTextFitTest, ListInfo_ShowsEveryItemAndTheLargestFiguresWhole) {
    model.state.setSizeCaption(kLargestSize);
    model.state.setDurationCaption(kLargestDuration);
    const int row = model.items.addRow(QStringLiteral("a.mp3"));
    model.items.setCell(row, 3, QStringLiteral("/music/a.mp3"));
    ListInfo window(model);
    auto* view = window.findChild<QTreeWidget*>("ListView");
    ASSERT_NE(view, nullptr);
    // The row count as a list of a million rows shows it.
    ASSERT_EQ(view->topLevelItem(4)->text(0), "Total items in list");
    view->topLevelItem(4)->setText(1, kLargestCount);
    EXPECT_EQ(view->topLevelItem(9)->text(1), kLargestSize);
    expectWhole(window);
    EXPECT_TRUE(window.rect().contains(view->geometry()));
}

TEST_F(WindowTextFitTest, Preferences_ShowsItsTextsWhole) {
    PreferencesWindow window(model);
    expectWhole(window);
}

TEST_F(WindowTextFitTest, NewList_ShowsItsTextsWhole) {
    NewListWindow window;
    expectWhole(window);
}

TEST_F(WindowTextFitTest, TipsAboutAndSplash_ShowTheirTextsWhole) {
    TipsWindow tips(model);
    expectWhole(tips);
    AboutWindow about(model);
    expectWhole(about);
    Splashscreen splash;
    expectWhole(splash);
}

TEST_F(WindowTextFitTest, AddDirectory_ShowsItsTextsWhole) {
    AddDirectoryBox window(model);
    expectWhole(window);
}

TEST_F(WindowTextFitTest, SortAndRemoveWizards_ShowTheirTextsWhole) {
    SortWizard sort(model);
    expectWhole(sort);
    RemoveWizard remove(model);
    expectWhole(remove);
}

TEST_F(WindowTextFitTest, ID3Tag_ShowsItsTextsWhole) {
    ID3Tag window(model);
    expectWhole(window);
}

TEST_F(WindowTextFitTest, EveryWindow_CarriesTheProgramsIcon) {
    const QIcon icon = ProgramLook::icon();
    ASSERT_FALSE(icon.isNull());
    ASSERT_TRUE(QFileInfo::exists(QStringLiteral(VELMORA_TEST_DATA "/../../data/velmora.svg")));
    MainWindow main(questions, clipboard);
    NewListWindow newList;
    TipsWindow tips(model);
    AboutWindow about(model);
    PreferencesWindow preferences(model);
    AddDirectoryBox addDirectory(model);
    ListInfo listInfo(model);
    SortWizard sort(model);
    RemoveWizard remove(model);
    ID3Tag tag(model);
    Splashscreen splash;
    for (QWidget* window :
         std::initializer_list<QWidget*>{&main, &newList, &tips, &about, &preferences,
                                         &addDirectory, &listInfo, &sort, &remove, &tag, &splash}) {
        EXPECT_FALSE(window->windowIcon().isNull()) << window->objectName().toStdString();
        EXPECT_EQ(window->windowIcon().pixmap(32).toImage(), icon.pixmap(32).toImage())
            << window->objectName().toStdString();
    }
}

}  // namespace
