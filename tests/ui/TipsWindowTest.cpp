#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "WindowPicture.h"
#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/TipsWindow.h"

namespace {

const QString kErrorText =
    QStringLiteral("Error while trying to input [Tips] section. Please, re-install Velmora!");

class TipsWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        SetAppDataFolder(dir.path());
    }
    void TearDown() override {
        TipsWindow::SetRandomSource({});
        SetAppDataFolder(QString());
    }

    // Every following pick draws r from the list, in turn.
    void drawRandom(QList<double> values) {
        auto queue = std::make_shared<QList<double>>(std::move(values));
        TipsWindow::SetRandomSource([queue] {
            const double r = queue->first();
            if (queue->size() > 1) {
                queue->removeFirst();
            }
            return r;
        });
    }

    static QString tipShown(TipsWindow& window) {
        return window.findChild<QPlainTextEdit*>("TipText")->toPlainText();
    }

    QTemporaryDir dir;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(TipsWindowTest, Controls_HaveTheirNamesCaptionsAndTabOrder) {
    WriteSetting("Tips", "Count", "1");
    WriteSetting("Tips", "Tip1", "One");
    TipsWindow window(model);
    EXPECT_EQ(window.windowTitle(), "Tip of the day");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderText")->text(), "Tip of the day");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderSubText")->text(), "Did you know that...");
    auto* tip = window.findChild<QPlainTextEdit*>("TipText");
    ASSERT_NE(tip, nullptr);
    EXPECT_TRUE(tip->isReadOnly());
    EXPECT_EQ(window.findChild<QCheckBox*>("ShowAtStartup")->text(), "&Show at startup");
    EXPECT_EQ(window.findChild<QPushButton*>("NextTipButton")->text(), "&Next");
    EXPECT_EQ(window.findChild<QPushButton*>("CloseButton")->text(), "&Close");
    for (const char* name : {"TipText", "ShowAtStartup", "NextTipButton", "CloseButton"}) {
        QWidget* w = window.findChild<QWidget*>(name);
        EXPECT_TRUE(window.rect().contains(w->geometry())) << name;
    }
    QStringList order;
    QWidget* w = tip;
    do {
        if (w->focusPolicy() & Qt::TabFocus) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != tip);
    EXPECT_EQ(order, (QStringList{"TipText", "ShowAtStartup", "NextTipButton", "CloseButton"}));
}

TEST_F(TipsWindowTest, PickTipNumber_RoundsHalfToEvenAndZeroBecomesOne) {
    EXPECT_EQ(TipsWindow::PickTipNumber(0, 0.0), 1);
    EXPECT_EQ(TipsWindow::PickTipNumber(0, 0.99), 1);
    EXPECT_EQ(TipsWindow::PickTipNumber(1, 0.49), 1);  // 0 -> 1
    EXPECT_EQ(TipsWindow::PickTipNumber(1, 0.5), 1);   // 0.5 -> 0 -> 1
    EXPECT_EQ(TipsWindow::PickTipNumber(1, 0.75), 1);
    EXPECT_EQ(TipsWindow::PickTipNumber(10, 0.25), 2);   // 2.5 -> 2
    EXPECT_EQ(TipsWindow::PickTipNumber(4, 0.625), 2);   // 2.5 -> 2
    EXPECT_EQ(TipsWindow::PickTipNumber(4, 0.875), 4);   // 3.5 -> 4
    EXPECT_EQ(TipsWindow::PickTipNumber(10, 0.96), 10);  // Count itself is reachable
    EXPECT_EQ(TipsWindow::PickTipNumber(4, 0.1), 1);     // 0.4 -> 0 -> 1
}

TEST_F(TipsWindowTest, CountZero_ShowsTipOneWhateverTheDraw) {
    WriteSetting("Tips", "Count", "0");
    WriteSetting("Tips", "Tip1", "First tip");
    WriteSetting("Tips", "Tip2", "Second tip");
    drawRandom({0.99, 0.5, 0.0});
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), "First tip");
    window.findChild<QPushButton*>("NextTipButton")->click();
    EXPECT_EQ(tipShown(window), "First tip");
    window.findChild<QPushButton*>("NextTipButton")->click();
    EXPECT_EQ(tipShown(window), "First tip");
}

TEST_F(TipsWindowTest, CountOne_AlwaysShowsTipOne) {
    WriteSetting("Tips", "Count", "1");
    WriteSetting("Tips", "Tip1", "Only tip");
    WriteSetting("Tips", "Tip2", "Never shown");
    drawRandom({0.0, 0.5, 0.999});
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), "Only tip");
    window.NextTip();
    EXPECT_EQ(tipShown(window), "Only tip");
    window.NextTip();
    EXPECT_EQ(tipShown(window), "Only tip");
}

TEST_F(TipsWindowTest, CountMissing_ShowsTipOne) {
    WriteSetting("Tips", "Tip1", "First tip");
    WriteSetting("Tips", "Tip3", "Third tip");
    drawRandom({0.9});
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), "First tip");
}

TEST_F(TipsWindowTest, CountMissingAndNoTipOne_ShowsTheErrorText) {
    drawRandom({0.9});
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), kErrorText);
}

TEST_F(TipsWindowTest, CountThree_PicksByTheDraw) {
    WriteSetting("Tips", "Count", "3");
    WriteSetting("Tips", "Tip1", "A");
    WriteSetting("Tips", "Tip2", "B");
    WriteSetting("Tips", "Tip3", "C");
    drawRandom({0.9, 0.5, 0.2});  // 2.7 -> 3, 1.5 -> 2, 0.6 -> 1
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), "C");
    window.NextTip();
    EXPECT_EQ(tipShown(window), "B");
    window.NextTip();
    EXPECT_EQ(tipShown(window), "A");
}

TEST_F(TipsWindowTest, PickedKeyMissing_ShowsTheErrorText) {
    WriteSetting("Tips", "Count", "5");
    WriteSetting("Tips", "Tip1", "A");
    drawRandom({0.8});  // 4
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), kErrorText);
}

TEST_F(TipsWindowTest, RealRandomDraw_StaysWithinTheTips) {
    WriteSetting("Tips", "Count", "3");
    WriteSetting("Tips", "Tip1", "A");
    WriteSetting("Tips", "Tip2", "B");
    WriteSetting("Tips", "Tip3", "C");
    TipsWindow window(model);
    for (int i = 0; i < 20; ++i) {
        window.NextTip();
        EXPECT_TRUE(QStringList({"A", "B", "C"}).contains(tipShown(window)));
    }
}

TEST_F(TipsWindowTest, TipOfMoreThan254Characters_IsCut) {
    WriteSetting("Tips", "Count", "1");
    WriteSetting("Tips", "Tip1", QString(300, u'a'));
    TipsWindow window(model);
    EXPECT_EQ(tipShown(window), QString(254, u'a'));
}

TEST_F(TipsWindowTest, ShowAtStartup_ReadOnLoadAndWrittenOnClose) {
    WriteSetting("Tips", "ShowAtStartup", "1");
    WriteSetting("Tips", "Tip1", "A");
    TipsWindow window(model);
    auto* box = window.findChild<QCheckBox*>("ShowAtStartup");
    EXPECT_TRUE(box->isChecked());
    window.show();
    box->click();
    window.findChild<QPushButton*>("CloseButton")->click();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(ReadSetting("Tips", "ShowAtStartup"), "0");
}

TEST_F(TipsWindowTest, Picture_ShowsTheWindow) {
    WriteSetting("Tips", "Count", "1");
    WriteSetting("Tips", "Tip1", "Drop files from your file manager on the list to add them.");
    WriteSetting("Tips", "ShowAtStartup", "1");
    TipsWindow window(model);
    window.show();
    const QImage image = takePicture(window, "tips.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
