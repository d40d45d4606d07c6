#include <gtest/gtest.h>

#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "MainWindowTestHelpers.h"
#include "ui/ImageButton.h"
#include "ui/ListViewControl.h"
#include "ui/Pictures.h"

TEST(Toolbar, SevenButtons_WithTheirCaptionsInOrder) {
    WindowFixture f;
    auto* toolbar = f.window->findChild<QToolBar*>("Toolbar");
    ASSERT_NE(toolbar, nullptr);
    QStringList captions;
    for (QAction* a : toolbar->actions()) {
        captions << a->text();
        EXPECT_FALSE(a->icon().isNull()) << a->text().toStdString();
    }
    EXPECT_EQ(captions, QStringList({"New List", "Open List", "Save List", "Add File(s)",
                                     "Sort List", "Check List", "Join Files!"}));
    EXPECT_EQ(toolbar->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    for (int i = 1; i <= 7; ++i) {
        auto* button = qobject_cast<QToolButton*>(
            toolbar->widgetForAction(f.window->action(QStringLiteral("ToolbarButton%1").arg(i))));
        ASSERT_NE(button, nullptr);
        const bool dropDown = i == 4 || i == 6;
        EXPECT_EQ(button->popupMode() == QToolButton::MenuButtonPopup &&
                      button->defaultAction()->menu() != nullptr,
                  dropDown)
            << i;
    }
}

TEST(Toolbar, DropDownEntries_HaveTheirKeysAndCaptions) {
    WindowFixture f;
    auto entries = [&f](int button) {
        QStringList list;
        for (QAction* a :
             f.window->action(QStringLiteral("ToolbarButton%1").arg(button))->menu()->actions()) {
            list << a->objectName() + "=" + a->text();
        }
        return list;
    };
    EXPECT_EQ(entries(4), QStringList({"AddFiles=Add File(s)", "AddDirectory=Add Directory"}));
    EXPECT_EQ(entries(6),
              QStringList({"CheckForDupes=For: Duplicated Files", "CheckForDead=For: Dead Files"}));
    for (QAction* a : f.window->action("ToolbarButton4")->menu()->actions()) {
        a->trigger();
    }
    for (QAction* a : f.window->action("ToolbarButton6")->menu()->actions()) {
        a->trigger();
    }
    EXPECT_EQ(f.calls, QStringList({"AddFiles", "AddDirectoryBox", "RemoveDuplicatedFiles",
                                    "RemoveDeadFiles"}));
}

TEST(Toolbar, Buttons_ForwardByIndex) {
    WindowFixture f;
    for (int i : {2, 3, 4, 5, 7}) {
        f.window->action(QStringLiteral("ToolbarButton%1").arg(i))->trigger();
    }
    EXPECT_EQ(f.calls,
              QStringList({"OpenList", "SaveList 0", "AddFiles", "SortWizard", "StartJoin"}));
}

TEST(Toolbar, CheckListButton_OnlySaysToUseTheArrow) {
    WindowFixture f;
    f.window->action("ToolbarButton6")->trigger();
    ASSERT_EQ(f.questions.asked.size(), 1);
    EXPECT_EQ(f.questions.asked[0].prompt,
              "Please, select one of the check-tools by clicking on the arrow.");
    EXPECT_EQ(f.questions.asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_TRUE(f.calls.isEmpty());
}

TEST(ImageButtons, PressAndRelease_SwapThePictures) {
    WindowFixture f;
    f.window->show();
    auto* up = f.window->findChild<ImageButton*>("UpButton");
    const QImage normal = up->pixmap().toImage();
    QTest::mousePress(up, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(up->showsPressedPicture());
    EXPECT_NE(up->pixmap().toImage(), normal);
    QTest::mouseRelease(up, Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_FALSE(up->showsPressedPicture());
    EXPECT_EQ(up->pixmap().toImage(), normal);
}

TEST(ImageButtons, ReleasedOutside_NormalPictureAndNoClick) {
    WindowFixture f;
    f.fillMp3List(2);
    f.window->show();
    auto* down = f.window->findChild<ImageButton*>("DownButton");
    QTest::mousePress(down, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::mouseRelease(down, Qt::LeftButton, {}, QPoint(200, 200));
    EXPECT_FALSE(down->showsPressedPicture());
    EXPECT_TRUE(f.calls.isEmpty());
}

TEST(ImageButtons, Clicks_ForwardWithTheSelectedRow) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->show();
    f.window->listView()->selectRow(1);
    for (const char* name :
         {"UpButton", "DownButton", "DeleteButton", "PlayButton", "PropertiesButton"}) {
        QTest::mouseClick(f.window->findChild<ImageButton*>(name), Qt::LeftButton);
    }
    // A right click on UpButton works as a left one.
    QTest::mouseClick(f.window->findChild<ImageButton*>("UpButton"), Qt::RightButton);
    EXPECT_EQ(f.calls, QStringList({"MoveItemUp 2", "MoveItemDown 2", "RemoveItem 2",
                                    "ShellOpen /music/2.mp3", "FileProperties /music/2.mp3",
                                    "MoveItemUp 2"}));
}

TEST(ImageButtons, DeleteRightClick_PopsUpRemoveItemsAndRemovesNothing) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->show();
    f.window->setClientSize(QSize(441, 336));
    f.window->listView()->selectRow(0);
    ImageButton* del = f.window->deleteButton();
    for (int round = 0; round < 2; ++round) {
        QPoint at;
        QWidget* shown = nullptr;
        WhenModalShows([&](QWidget* popup) {
            shown = popup;
            at = popup->pos();
            popup->close();
        });
        QTest::mouseClick(del, Qt::RightButton);
        EXPECT_EQ(shown, f.window->menu("EditRemoveItems"));
        // Fixed spot: x = width of ListView + 130 twips, y = its top + 1150 twips.
        const QPoint spot = f.window->client()->mapToGlobal(
            QPoint(qRound((f.window->listView()->width() * 15 + 130) / 15.0),
                   qRound((885 + 1150) / 15.0)));
        EXPECT_EQ(at, spot);
        EXPECT_EQ(del->tag(), "") << "the click after the pop-up clears the tag";
    }
    EXPECT_TRUE(f.calls.isEmpty());
    // The rules ran for the pop-up: the bitrate caption follows the selected row.
    EXPECT_EQ(f.window->action("RemoveSpecialOnlyKeepBitrateItems")->text(),
              "&Only Keep [32 kbps] Items");
    QTest::mouseClick(del, Qt::LeftButton);
    EXPECT_EQ(f.calls, QStringList{"RemoveItem 1"});
}

TEST(ImageButtons, DeleteRightClick_PressedPictureWhileDown_NormalPictureBeforeThePopUp) {
    WindowFixture f;
    f.fillMp3List(3);
    f.window->show();
    f.window->listView()->selectRow(0);
    ImageButton* del = f.window->deleteButton();
    const QImage normal = Pictures::pixmap("button_delete_normal", QSize(42, 38)).toImage();
    const QImage pressed = Pictures::pixmap("button_delete_pressed", QSize(42, 38)).toImage();
    ASSERT_NE(normal, pressed);
    EXPECT_EQ(del->pixmap().toImage(), normal);

    QTest::mousePress(del, Qt::RightButton, {}, QPoint(5, 5));
    EXPECT_TRUE(del->showsPressedPicture());
    EXPECT_EQ(del->pixmap().toImage(), pressed);

    QWidget* shown = nullptr;
    QImage duringPopUp;
    WhenModalShows([&](QWidget* popup) {
        shown = popup;
        duringPopUp = del->pixmap().toImage();
        popup->close();
    });
    QTest::mouseRelease(del, Qt::RightButton, {}, QPoint(5, 5));
    EXPECT_EQ(shown, f.window->menu("EditRemoveItems"));
    // The picture went back to Normal before the pop-up came up.
    EXPECT_EQ(duringPopUp, normal);
    EXPECT_FALSE(del->showsPressedPicture());
    EXPECT_EQ(del->pixmap().toImage(), normal);
    EXPECT_TRUE(f.calls.isEmpty());
}
