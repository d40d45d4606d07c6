#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QPushButton>
#include <QTreeWidget>

#include "WindowPicture.h"
#include "list/ListFunctions.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/ListInfo.h"

namespace {

class ListInfoTest : public ::testing::Test {
protected:
    void SetUp() override { NewItemList(model, QStringLiteral("MP3")); }

    // An MP3 row with a size and a duration (cells 1 and 9) and a rate (11).
    void addRow(const QString& name, const QString& size, const QString& duration) {
        const int row = model.items.addRow(name);
        model.items.setCell(row, 1, size);
        model.items.setCell(row, 3, "/music/" + name);
        model.items.setCell(row, 9, duration);
        model.items.setCell(row, 11, "44100");
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(ListInfoTest, Controls_HaveTheirNamesCaptionsColumnsAndTabOrder) {
    ListInfo window(model);
    EXPECT_EQ(window.windowTitle(), "List Info");
    EXPECT_TRUE(window.isModal());
    auto* view = window.findChild<QTreeWidget*>("ListView");
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->columnCount(), 2);
    EXPECT_EQ(view->headerItem()->text(0), "Item");
    EXPECT_EQ(view->headerItem()->text(1), "Value");
    // At least the design widths (2010 and 2000 twips), more where a text needs it.
    EXPECT_GE(view->columnWidth(0), 134);
    EXPECT_GE(view->columnWidth(1), 133);
    EXPECT_EQ(window.findChild<QPushButton*>("CopyButton")->text(), "C&opy");
    EXPECT_EQ(window.findChild<QPushButton*>("CloseButton")->text(), "&Close");
    for (const char* name : {"ListView", "CopyButton", "CloseButton"}) {
        QWidget* w = window.findChild<QWidget*>(name);
        EXPECT_TRUE(window.rect().contains(w->geometry())) << name;
    }
    QStringList order;
    QWidget* w = view;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && w->parentWidget() == &window) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != view);
    EXPECT_EQ(order, (QStringList{"ListView", "CopyButton", "CloseButton"}));
}

TEST_F(ListInfoTest, UntitledEmptyList_ShowsTheTenRowsAndCopiesEightLines) {
    ListInfo window(model);
    auto* view = window.findChild<QTreeWidget*>("ListView");
    ASSERT_EQ(view->topLevelItemCount(), 10);
    QStringList items;
    QStringList values;
    for (int i = 0; i < 10; ++i) {
        items.append(view->topLevelItem(i)->text(0));
        values.append(view->topLevelItem(i)->text(1));
    }
    EXPECT_EQ(items, (QStringList{"Filename", "Status", "", "List Type", "Total items in list",
                                  "Duration", "Filesize", "", "Average Duration (Per File)",
                                  "Average Size (Per File)"}));
    EXPECT_EQ(values, (QStringList{"(unsaved)", "RED", "", "MP3", "0", "00:00:00", "0 KB", "",
                                   "00:00:00", "0 KB"}));

    clipboard.setText("old");
    window.findChild<QPushButton*>("CopyButton")->click();
    EXPECT_EQ(clipboard.text(),
              "Filename=(unsaved)\r\nStatus=RED\r\nList Type=MP3\r\nTotal items in list=0\r\n"
              "Duration=00:00:00\r\nFilesize=0 KB\r\nAverage Duration (Per File)=00:00:00\r\n"
              "Average Size (Per File)=0 KB\r\n");
}

TEST_F(ListInfoTest, ThreeRows_CopiesTheFileNameOnlyAndTheRoundedAverages) {
    addRow("a.mp3", "4 KB", "3 seconds");
    addRow("b.mp3", "4 KB", "3 seconds");
    addRow("c.mp3", "4 KB", "4 seconds");
    UpdateListTotals(model);
    model.state.setListFileName("/home/user/lists/My Songs.vlr");
    ASSERT_EQ(model.state.durationCaption(), "00:00:10");
    ASSERT_EQ(model.state.sizeCaption(), "12 KB");
    ListInfo window(model);
    window.show();
    window.findChild<QPushButton*>("CopyButton")->click();
    EXPECT_TRUE(window.isVisible());  // the window stays open
    EXPECT_EQ(clipboard.text(),
              "Filename=My Songs.vlr\r\nStatus=GREEN\r\nList Type=MP3\r\n"
              "Total items in list=3\r\nDuration=00:00:10\r\nFilesize=12 KB\r\n"
              "Average Duration (Per File)=00:00:03\r\nAverage Size (Per File)=4 KB\r\n");
    window.findChild<QPushButton*>("CloseButton")->click();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ListInfoTest, Figures_AreTakenOnceWhenTheWindowIsMade) {
    ListInfo window(model);
    addRow("a.mp3", "4 KB", "3 seconds");
    UpdateListTotals(model);
    window.findChild<QPushButton*>("CopyButton")->click();
    EXPECT_TRUE(clipboard.text().contains("Total items in list=0\r\n"));
}

TEST_F(ListInfoTest, Picture_ShowsTheWindow) {
    addRow("a.mp3", "4,210 KB", "263 seconds");
    addRow("b.mp3", "3,877 KB", "242 seconds");
    addRow("c.mp3", "5,020 KB", "313 seconds");
    UpdateListTotals(model);
    model.state.setListFileName("/home/user/lists/Road Trip.vlr");
    ListInfo window(model);
    window.show();
    const QImage image = takePicture(window, "list-info.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
