#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <functional>

#include "WindowPicture.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "platform/EventTurn.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/RemoveWizard.h"

namespace {

class RemoveWizardTest : public ::testing::Test {
protected:
    void SetUp() override { NewItemList(model, QStringLiteral("MP3")); }
    void TearDown() override { setEventTurnHook({}); }

    // A row with a name and an Artist (cell 4).
    void addRow(const QString& name, const QString& artist) {
        const int row = model.items.addRow(name);
        model.items.setCell(row, 3, "/music/" + name);
        model.items.setCell(row, 4, artist);
    }

    QStringList names() const {
        QStringList out;
        for (int row = 1; row <= model.items.count(); ++row) {
            out.append(model.items.cell(row, 0));
        }
        return out;
    }

    static QStringList entries(const QComboBox* box) {
        QStringList out;
        for (int i = 0; i < box->count(); ++i) {
            out.append(box->itemText(i));
        }
        return out;
    }

    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(RemoveWizardTest, Controls_HaveTheirNamesCaptionsEntriesAndTabOrder) {
    addRow("a.mp3", "Zed");
    RemoveWizard window(model);
    EXPECT_EQ(window.windowTitle(), "Remove Wizard");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.findChild<QLabel*>("HeaderText")->text(), "Remove Wizard");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderSubText")->text(), "Remove unwanted files...");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel1")->text(),
              "Get values from the following column:");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel2")->text(),
              "Check rows for the following value:");
    EXPECT_EQ(window.findChild<QLabel*>("InfoLabel3")->text(), "Action to apply on matching-rows:");
    auto* columns = window.findChild<QComboBox*>("ColumnToCheck");
    EXPECT_FALSE(columns->isEditable());
    EXPECT_FALSE(window.findChild<QComboBox*>("ValueToCheck")->isEditable());
    ASSERT_EQ(columns->count(), 12);
    EXPECT_EQ(columns->itemText(3), "Filepath");
    EXPECT_EQ(window.findChild<QRadioButton*>("RemoveMatchingRows")->text(), "Remove Rows");
    EXPECT_EQ(window.findChild<QRadioButton*>("KeepMatchingRows")->text(), "Keep Rows");
    EXPECT_TRUE(window.findChild<QRadioButton*>("KeepMatchingRows")->isChecked());
    EXPECT_TRUE(window.findChild<QProgressBar*>("ProgressBar")->isHidden());
    EXPECT_EQ(window.findChild<QPushButton*>("FinishButton")->text(), "&Finish");
    EXPECT_EQ(window.findChild<QPushButton*>("CancelButton")->text(), "&Cancel");
    EXPECT_EQ(window.cancelRemove(), 0);
    for (QWidget* w : window.findChildren<QWidget*>()) {
        if (w->parentWidget() == &window) {
            EXPECT_TRUE(window.rect().contains(w->geometry())) << w->objectName().toStdString();
        }
    }
    QStringList order;
    QWidget* w = columns;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && w->parentWidget() == &window) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != columns);
    EXPECT_EQ(order, (QStringList{"ColumnToCheck", "ValueToCheck", "RemoveMatchingRows",
                                  "KeepMatchingRows", "FinishButton", "CancelButton"}));
}

TEST_F(RemoveWizardTest, Values_InOrderOfFirstAppearanceWithLetterCase) {
    addRow("a.mp3", "Zed");
    addRow("b.mp3", "abba");
    addRow("c.mp3", "Zed");
    addRow("d.mp3", "ABBA");
    RemoveWizard window(model);
    auto* values = window.findChild<QComboBox*>("ValueToCheck");
    EXPECT_EQ(entries(values), (QStringList{"a.mp3", "b.mp3", "c.mp3", "d.mp3"}));
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    EXPECT_EQ(entries(values), (QStringList{"Zed", "abba", "ABBA"}));
    EXPECT_EQ(values->currentIndex(), 0);
}

TEST_F(RemoveWizardTest, RemoveRows_TakesOutTheMatchingRowsAndCloses) {
    addRow("a.mp3", "Zed");
    addRow("b.mp3", "Abba");
    addRow("c.mp3", "Zed");
    RemoveWizard window(model);
    window.show();
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    window.findChild<QRadioButton*>("RemoveMatchingRows")->setChecked(true);
    window.findChild<QPushButton*>("FinishButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), QStringList{"b.mp3"});
    EXPECT_EQ(model.state.countCaption(), "1");
}

TEST_F(RemoveWizardTest, KeepRows_WithAValueAllRowsHave_RemovesNothing) {
    addRow("a.mp3", "Zed");
    addRow("b.mp3", "Zed");
    RemoveWizard window(model);
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    window.Finish();
    EXPECT_EQ(names(), (QStringList{"a.mp3", "b.mp3"}));
}

TEST_F(RemoveWizardTest, EmptyFirstValue_GivesTheMessageUntilAnotherIsPicked) {
    addRow("a.mp3", "");
    addRow("b.mp3", "Zed");
    RemoveWizard window(model);
    window.show();
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    auto* values = window.findChild<QComboBox*>("ValueToCheck");
    EXPECT_EQ(entries(values), (QStringList{"", "Zed"}));
    window.findChild<QPushButton*>("FinishButton")->click();
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Invalid value selected!");
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(window.findChild<QPushButton*>("FinishButton")->isEnabled());
    EXPECT_EQ(model.items.count(), 2);
    values->setCurrentIndex(1);
    window.findChild<QPushButton*>("FinishButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(names(), QStringList{"b.mp3"});
}

TEST_F(RemoveWizardTest, EmptyList_GivesTheMessage) {
    RemoveWizard window(model);
    window.Finish();
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Invalid value selected!");
}

TEST_F(RemoveWizardTest, CancelHalfWayThroughAThousandRows_KeepsWhatWasDone) {
    // Even rows by "Keep", odd rows by "Drop"; the run removes the "Drop" rows
    // from the bottom up, and the cancel comes after 500 rows were handled.
    for (int i = 1; i <= 1000; ++i) {
        addRow(QStringLiteral("%1.mp3").arg(i, 4, 10, QChar(u'0')),
               i % 2 == 0 ? QStringLiteral("Keep") : QStringLiteral("Drop"));
    }
    RemoveWizard window(model);
    window.show();
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    auto* values = window.findChild<QComboBox*>("ValueToCheck");
    values->setCurrentIndex(values->findText("Drop"));
    window.findChild<QRadioButton*>("RemoveMatchingRows")->setChecked(true);
    auto* bar = window.findChild<QProgressBar*>("ProgressBar");
    auto* finish = window.findChild<QPushButton*>("FinishButton");
    int turns = 0;
    int barAtCancel = -1;
    setEventTurnHook([&] {
        ++turns;
        EXPECT_FALSE(finish->isEnabled());
        EXPECT_TRUE(bar->isVisible());
        if (turns == 500) {
            barAtCancel = bar->value();
            window.findChild<QPushButton*>("CancelButton")->click();
        }
    });
    finish->click();
    setEventTurnHook({});
    EXPECT_EQ(turns, 500);
    EXPECT_EQ(barAtCancel, 500);
    EXPECT_EQ(bar->maximum(), 1000);
    EXPECT_EQ(window.cancelRemove(), -1);
    EXPECT_FALSE(window.isVisible());
    // Rows 501 to 1000 were handled: their 250 "Drop" rows are gone. Rows 1 to
    // 500 are untouched and in their order.
    ASSERT_EQ(model.items.count(), 750);
    for (int row = 1; row <= 500; ++row) {
        EXPECT_EQ(model.items.cell(row, 0), QStringLiteral("%1.mp3").arg(row, 4, 10, QChar(u'0')));
    }
    for (int row = 501; row <= 750; ++row) {
        EXPECT_EQ(model.items.cell(row, 4), "Keep");
    }
    EXPECT_EQ(model.items.cell(501, 0), "0502.mp3");
    EXPECT_EQ(model.items.cell(750, 0), "1000.mp3");
}

// A run of 1,000 rows stopped after 500 by the given action: the rows handled
// so far are gone, the others stay, and the window is closed.
static void expectStoppedHalfWay(MainModel& model, RemoveWizard& window,
                                 const std::function<void()>& stop) {
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    auto* values = window.findChild<QComboBox*>("ValueToCheck");
    values->setCurrentIndex(values->findText("Drop"));
    window.findChild<QRadioButton*>("RemoveMatchingRows")->setChecked(true);
    int turns = 0;
    setEventTurnHook([&] {
        if (++turns == 500) {
            stop();
        }
    });
    window.findChild<QPushButton*>("FinishButton")->click();
    setEventTurnHook({});
    EXPECT_EQ(turns, 500);
    EXPECT_EQ(window.cancelRemove(), -1);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(model.items.count(), 750);
}

TEST_F(RemoveWizardTest, EscapeDuringARun_CancelsItLikeCancelButton) {
    for (int i = 1; i <= 1000; ++i) {
        addRow(QStringLiteral("%1.mp3").arg(i), i % 2 == 0 ? "Keep" : "Drop");
    }
    RemoveWizard window(model);
    window.show();
    expectStoppedHalfWay(model, window, [&] { QTest::keyClick(&window, Qt::Key_Escape); });
}

TEST_F(RemoveWizardTest, CloseBoxDuringARun_CancelsItLikeCancelButton) {
    for (int i = 1; i <= 1000; ++i) {
        addRow(QStringLiteral("%1.mp3").arg(i), i % 2 == 0 ? "Keep" : "Drop");
    }
    RemoveWizard window(model);
    window.show();
    expectStoppedHalfWay(model, window, [&] { window.close(); });
}

TEST_F(RemoveWizardTest, EscapeBeforeARun_ClosesWithTheCancelFlag) {
    addRow("a.mp3", "A");
    RemoveWizard window(model);
    window.show();
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.cancelRemove(), -1);
    EXPECT_EQ(model.items.count(), 1);
}

TEST_F(RemoveWizardTest, Picture_ShowsTheWindow) {
    addRow("a.mp3", "The Lanterns");
    addRow("b.mp3", "Marble Coast");
    addRow("c.mp3", "The Lanterns");
    RemoveWizard window(model);
    window.findChild<QComboBox*>("ColumnToCheck")->setCurrentIndex(4);
    window.show();
    const QImage image = takePicture(window, "remove-wizard.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
