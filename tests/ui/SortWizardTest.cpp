#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "WindowPicture.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/SortWizard.h"

namespace {

class SortWizardTest : public ::testing::Test {
protected:
    void SetUp() override { NewItemList(model, QStringLiteral("MP3")); }

    void addRow(const QString& name, const QString& size, const QString& path) {
        const int row = model.items.addRow(name);
        model.items.setCell(row, 1, size);
        model.items.setCell(row, 3, path);
    }

    QStringList names() const {
        QStringList out;
        for (int row = 1; row <= model.items.count(); ++row) {
            out.append(model.items.cell(row, 0));
        }
        return out;
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(SortWizardTest, Controls_HaveTheirNamesCaptionsEntriesAndTabOrder) {
    SortWizard window(model);
    EXPECT_EQ(window.windowTitle(), "Sort Wizard");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.findChild<QLabel*>("HeaderText")->text(), "Sort Wizard");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderSubText")->text(),
              "Use this wizard to sort your list...");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel1")->text(),
              "On which column would you like to sort?");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel2")->text(),
              "How would you like to sort this column?");
    auto* field = window.findChild<QComboBox*>("SortField");
    auto* method = window.findChild<QComboBox*>("SortMethod");
    EXPECT_FALSE(field->isEditable());
    EXPECT_FALSE(method->isEditable());
    ASSERT_EQ(field->count(), 12);
    EXPECT_EQ(field->itemText(0), "Filename");
    EXPECT_EQ(field->itemText(3), "Filepath");
    EXPECT_EQ(field->itemText(11), "Hertz");
    EXPECT_EQ(field->currentIndex(), 0);
    ASSERT_EQ(method->count(), 2);
    EXPECT_EQ(method->itemText(0), "Ascending (ABC)");
    EXPECT_EQ(method->itemText(1), "Descending (ZYX)");
    EXPECT_EQ(method->currentIndex(), 0);
    EXPECT_EQ(window.findChild<QPushButton*>("SortButton")->text(), "&Sort List");
    EXPECT_EQ(window.findChild<QPushButton*>("CancelButton")->text(), "&Cancel");
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (w->parentWidget() == &window) {
            EXPECT_TRUE(window.rect().contains(w->geometry())) << w->objectName().toStdString();
        }
    }
    QStringList order;
    QWidget* w = field;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && w->parentWidget() == &window) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != field);
    EXPECT_EQ(order, (QStringList{"SortField", "SortMethod", "SortButton", "CancelButton"}));
}

TEST_F(SortWizardTest, MpegList_OffersSevenColumns) {
    NewItemList(model, QStringLiteral("MPEG"));
    SortWizard window(model);
    EXPECT_EQ(window.findChild<QComboBox*>("SortField")->count(), 7);
}

TEST_F(SortWizardTest, SortOnFilesizeAscending_ComparesText) {
    addRow("nine.mp3", "9 KB", "/b");
    addRow("big.mp3", "1,024 KB", "/a");
    SortWizard window(model);
    window.show();
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(1);
    window.findChild<QPushButton*>("SortButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"big.mp3", "nine.mp3"}));
}

TEST_F(SortWizardTest, SortOnFilepathDescending_WithTheEnterKey) {
    addRow("x.mp3", "1 KB", "/a/x.mp3");
    addRow("y.mp3", "1 KB", "/c/y.mp3");
    addRow("z.mp3", "1 KB", "/b/z.mp3");
    SortWizard window(model);
    window.show();
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(3);
    window.findChild<QComboBox*>("SortMethod")->setCurrentIndex(1);
    QTest::keyClick(&window, Qt::Key_Return);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"y.mp3", "z.mp3", "x.mp3"}));
    // Rows added later go to the end.
    addRow("a.mp3", "1 KB", "/0");
    EXPECT_EQ(names().last(), "a.mp3");
}

TEST_F(SortWizardTest, Cancel_LeavesTheOrder) {
    addRow("b.mp3", "1 KB", "/b");
    addRow("a.mp3", "1 KB", "/a");
    SortWizard window(model);
    window.show();
    window.findChild<QPushButton*>("CancelButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), (QStringList{"b.mp3", "a.mp3"}));
}

TEST_F(SortWizardTest, EmptyList_SortsNothingAndCloses) {
    SortWizard window(model);
    window.show();
    window.findChild<QPushButton*>("SortButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(model.items.count(), 0);
}

TEST_F(SortWizardTest, Picture_ShowsTheWindow) {
    SortWizard window(model);
    window.findChild<QComboBox*>("SortField")->setCurrentIndex(4);
    window.show();
    const QImage image = takePicture(window, "sort-wizard.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
