#include <gtest/gtest.h>

#include <QMenuBar>
#include <QTest>

#include "MainWindowTestHelpers.h"
#include "ui/ListViewControl.h"

namespace {

struct Entry {
    int depth;  // 0: menu of the bar, 1: entry, 2: entry of a submenu
    const char* name;
    const char* caption;
    const char* shortcut;
};

// The whole menu tree, in order.
const Entry kTree[] = {
    {0, "FileMenu", "&File", ""},
    {1, "FileNewList", "&New List", "Ctrl+N"},
    {1, "FileOpenList", "&Open List", "Ctrl+O"},
    {1, "Separator1", "-", ""},
    {1, "FileSaveList", "&Save List", "Ctrl+S"},
    {1, "FileSaveListAs", "Save List &As...", ""},
    {1, "Separator2", "-", ""},
    {1, "FileJoinFiles", "&Join Files!", "F5"},
    {1, "Separator3", "-", ""},
    {1, "FileExit", "&Exit", "Ctrl+E"},
    {0, "EditMenu", "&Edit", ""},
    {1, "EditClipboard", "&Clipboard", ""},
    {2, "ClipboardCut", "&Cut Item", "Ctrl+X"},
    {2, "ClipboardCopy", "&Copy Item", "Ctrl+C"},
    {2, "ClipboardPaste", "&Paste Item", "Ctrl+V"},
    {2, "Separator4", "-", ""},
    {2, "ClipboardCopyList", "&Copy List", "Ctrl+B"},
    {1, "Separator5", "-", ""},
    {1, "EditAddFiles", "&Add File(s)", "Ctrl+F"},
    {1, "EditAddDirectory", "&Add Directory", "Ctrl+D"},
    {1, "Separator6", "-", ""},
    {1, "EditRemoveItems", "&Remove Item(s)", ""},
    {2, "RemoveItemsRemoveItem", "&Remove Item", "Del"},
    {2, "RemoveItemsClearList", "&Clear List", "Shift+Del"},
    {2, "Separator7", "-", ""},
    {2, "RemoveItemsRemoveDuplicatedFiles", "&Remove Duplicated Files", "Ctrl+Q"},
    {2, "RemoveItemsRemoveDeadFiles", "&Remove Dead Files", "Ctrl+W"},
    {2, "Separator14", "-", ""},
    {2, "RemoveSpecialOnlyKeepBitrateItems", "&Only Keep [Bitrate] Items", ""},
    {2, "RemoveItemsRemoveWizard", "&Remove Wizard", ""},
    {1, "MoveSelectedItem", "&Move Selected Item", ""},
    {2, "MoveSelectedItemMoveItemUp", "&Move Item Up", ""},
    {2, "MoveSelectedItemMoveItemDown", "&Move Item Down", ""},
    {1, "Separator8", "-", ""},
    {1, "EditSortWizard", "&Sort Wizard", "Ctrl+R"},
    {1, "Separator9", "-", ""},
    {1, "EditPreferences", "&Preferences", ""},
    {0, "ViewMenu", "&View", ""},
    {1, "ViewListInfo", "&List Info", "Ctrl+I"},
    {1, "Separator11", "-", ""},
    {1, "ViewID3Tag", "&ID3 Tag", ""},
    {1, "ViewFileProperties", "&File Properties", ""},
    {0, "HelpMenu", "&Help", ""},
    {1, "HelpManual", "&Read Me", "F1"},
    {1, "Separator12", "-", ""},
    {1, "TipOfTheDay", "&Tip of the day", ""},
    {1, "HelpCheckForUpdate", "&Check for update", ""},
    {1, "Separator13", "-", ""},
    {1, "HelpAbout", "&About...", ""},
};

struct Seen {
    int depth;
    QString name;
    QString caption;
    QString shortcut;
};

void Walk(QWidget* menuOrBar, int depth, QList<Seen>& seen) {
    for (QAction* a : menuOrBar->actions()) {
        seen << Seen{depth, a->objectName(), a->isSeparator() ? QStringLiteral("-") : a->text(),
                     a->shortcut().toString(QKeySequence::PortableText)};
        if (a->menu() != nullptr) {
            Walk(a->menu(), depth + 1, seen);
        }
    }
}

}  // namespace

TEST(MenuTree, WholeTree_MatchesTheTableInOrder) {
    WindowFixture f;
    QList<Seen> seen;
    Walk(f.window->menuBar(), 0, seen);
    const int expected = static_cast<int>(std::size(kTree));
    ASSERT_EQ(seen.size(), expected);
    for (int i = 0; i < expected; ++i) {
        EXPECT_EQ(seen[i].depth, kTree[i].depth) << kTree[i].name;
        EXPECT_EQ(seen[i].name, QString::fromLatin1(kTree[i].name));
        EXPECT_EQ(seen[i].caption, QString::fromLatin1(kTree[i].caption)) << kTree[i].name;
        EXPECT_EQ(seen[i].shortcut, QString::fromLatin1(kTree[i].shortcut)) << kTree[i].name;
    }
}

TEST(MenuTree, OnlyKeepBitrateItems_IsCreatedDisabled) {
    WindowFixture f;
    EXPECT_FALSE(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->isEnabled());
    f.fillMp3List(3);
    f.window->editMenuRules();
    EXPECT_FALSE(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->isEnabled());
}

TEST(MenuFileRule, UntitledList_SaveAsGreyedUntilTheListHasAFile) {
    WindowFixture f;
    f.window->fileMenuRule();
    EXPECT_FALSE(f.window->action("FileSaveListAs")->isEnabled());
    f.model().state.setListFileName("/lists/a.vlr");
    emit f.window->menu("FileMenu")->aboutToShow();
    EXPECT_TRUE(f.window->action("FileSaveListAs")->isEnabled());
}

TEST(MenuEditRules, EmptyMp3List_DesignCaptionAndRemoveWizardGreyed) {
    WindowFixture f;
    f.fillMp3List(0);
    emit f.window->menu("EditMenu")->aboutToShow();
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(),
              "&Only Keep [Bitrate] Items");
    EXPECT_FALSE(f.window->action("RemoveItemsRemoveWizard")->isEnabled());
    for (const char* name :
         {"ClipboardCut", "ClipboardCopy", "RemoveItemsRemoveItem", "MoveSelectedItemMoveItemUp",
          "MoveSelectedItemMoveItemDown", "EditSortWizard"}) {
        EXPECT_TRUE(f.window->action(name)->isEnabled()) << name;
    }
}

TEST(MenuEditRules, Mp3ListWithRows_CaptionFollowsTheSelectedRow) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->listView()->selectRow(1);
    emit f.window->menu("EditMenu")->aboutToShow();
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(),
              "&Only Keep [64 kbps] Items");
    EXPECT_TRUE(f.window->action("RemoveItemsRemoveWizard")->isEnabled());
    f.window->listView()->clearSelection();
    f.window->editMenuRules();
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(), "&Only Keep [] Items");
}

TEST(MenuEditRules, MpegList_CaptionStaysAsItLastWas) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->listView()->selectRow(2);
    f.window->editMenuRules();
    f.model().state.setListType("MPEG");
    f.window->listView()->selectRow(0);
    f.window->editMenuRules();
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(),
              "&Only Keep [96 kbps] Items");
}

TEST(MenuCommands, Entries_ForwardWithTheSelectedIndex) {
    WindowFixture f;
    f.fillMp3List(4);
    f.window->listView()->selectRow(2);
    for (const char* name : {"FileOpenList",
                             "FileSaveList",
                             "FileSaveListAs",
                             "FileJoinFiles",
                             "ClipboardCut",
                             "ClipboardCopy",
                             "ClipboardPaste",
                             "ClipboardCopyList",
                             "EditAddFiles",
                             "EditAddDirectory",
                             "RemoveItemsRemoveItem",
                             "RemoveItemsClearList",
                             "RemoveItemsRemoveDuplicatedFiles",
                             "RemoveItemsRemoveDeadFiles",
                             "RemoveItemsRemoveWizard",
                             "MoveSelectedItemMoveItemUp",
                             "MoveSelectedItemMoveItemDown",
                             "EditSortWizard",
                             "EditPreferences",
                             "ViewListInfo",
                             "ViewID3Tag",
                             "ViewFileProperties",
                             "HelpManual",
                             "TipOfTheDay",
                             "HelpCheckForUpdate",
                             "HelpAbout"}) {
        f.window->action(name)->trigger();
    }
    EXPECT_EQ(f.calls, QStringList({"OpenList",
                                    "SaveList 0",
                                    "SaveList -1",
                                    "StartJoin",
                                    "CopyItem 3 -1",
                                    "CopyItem 3 0",
                                    "PasteItem",
                                    "CopyList",
                                    "AddFiles",
                                    "AddDirectoryBox",
                                    "RemoveItem 3",
                                    "ClearList -1",
                                    "RemoveDuplicatedFiles",
                                    "RemoveDeadFiles",
                                    "RemoveWizard",
                                    "MoveItemUp 3",
                                    "MoveItemDown 3",
                                    "SortWizard",
                                    "PreferencesWindow",
                                    "ListInfo",
                                    "ID3Tag /music/3.mp3",
                                    "FileProperties /music/3.mp3",
                                    "HelpManual",
                                    "TipsWindow",
                                    "HelpCheckForUpdate",
                                    "AboutWindow"}));
}

TEST(MenuCommands, SeparatorNine_AsSeparatorDoesNothing) {
    WindowFixture f;
    f.fillMp3List(2);
    f.window->action("Separator9")->trigger();
    EXPECT_TRUE(f.calls.isEmpty());
}

TEST(MenuShortcuts, DelWithEmptyList_RemovesIndexZero) {
    WindowFixture f;
    f.fillMp3List(0);
    f.window->show();
    QApplication::setActiveWindow(f.window.get());
    f.window->listView()->setFocus();
    QTest::keyClick(f.window->listView(), Qt::Key_Delete);
    EXPECT_EQ(f.calls, QStringList{"RemoveItem 0"});
}

TEST(MenuShortcuts, ShortcutsRunWithoutTheMenuRules) {
    WindowFixture f;
    f.fillMp3List(2);
    f.window->show();
    QApplication::setActiveWindow(f.window.get());
    f.window->listView()->setFocus();
    f.window->listView()->selectRow(0);
    QTest::keyClick(f.window->listView(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(f.window->listView(), Qt::Key_F5);
    EXPECT_EQ(f.calls, QStringList({"CopyItem 1 0", "StartJoin"}));
    // The Edit rules did not run: the caption is still the design text.
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(),
              "&Only Keep [Bitrate] Items");
}

TEST(MenuContext, RightPress_ShowsEditMenuWithId3TagAndFileProperties) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    f.window->listView()->selectRow(1);
    QStringList captions;
    WhenModalShows([&](QWidget* popup) {
        captions = VisibleCaptions(qobject_cast<QMenu*>(popup));
        f.window->action("Separator9")->trigger();
        popup->close();
    });
    ListViewControl* view = f.window->listView();
    QTest::mousePress(view->viewport(), Qt::RightButton, {},
                      view->visualRect(f.model().items.index(1, 0)).center());
    EXPECT_EQ(captions, QStringList({"&Clipboard", "-", "&Add File(s)", "&Add Directory", "-",
                                     "&Remove Item(s)", "&Move Selected Item", "-", "&ID3 Tag",
                                     "&File Properties"}));
    EXPECT_EQ(f.calls, QStringList{"ID3Tag /music/2.mp3"});
    // Put back after the pop-up.
    EXPECT_TRUE(f.window->action("EditSortWizard")->isVisible());
    EXPECT_TRUE(f.window->action("Separator9")->isSeparator());
    EXPECT_EQ(f.window->action("EditPreferences")->text(), "&Preferences");
}

TEST(MenuContext, FilePropertiesEntry_ShowsThePropertiesOfTheSelectedFile) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->show();
    f.window->listView()->selectRow(2);
    WhenModalShows([&](QWidget* popup) {
        f.window->action("EditPreferences")->trigger();
        popup->close();
    });
    f.window->showContextMenu(f.window->mapToGlobal(QPoint(60, 120)));
    EXPECT_EQ(f.calls, QStringList{"FileProperties /music/3.mp3"});
    f.window->action("EditPreferences")->trigger();
    EXPECT_EQ(f.calls.last(), "PreferencesWindow");
}

TEST(MenuContext, RightPressOnEmptyArea_PopsUpAllTheSame) {
    WindowFixture f;
    f.fillMp3List(0);
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    bool shown = false;
    WhenModalShows([&](QWidget* popup) {
        shown = popup == f.window->menu("EditMenu");
        popup->close();
    });
    QTest::mousePress(f.window->listView()->viewport(), Qt::RightButton, {}, QPoint(40, 80));
    EXPECT_TRUE(shown);
}
