#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QPushButton>

#include "WindowPicture.h"
#include "list/MainModel.h"
#include "platform/Shell.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/AboutWindow.h"

namespace {

class AboutWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        previous = setShellLauncherHook(
            [this](const QString& program, const QStringList& arguments, const QString&) {
                launched.append(program + u' ' + arguments.join(u' '));
                return true;
            });
    }
    void TearDown() override { setShellLauncherHook(previous); }

    ShellLauncher previous;
    QStringList launched;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(AboutWindowTest, Controls_HaveTheirNamesCaptionsAndTabOrder) {
    AboutWindow window(model);
    EXPECT_EQ(window.windowTitle(), "About");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(window.findChild<QLabel*>("HeaderText")->text(), "About");
    EXPECT_EQ(window.findChild<QLabel*>("HeaderSubText")->text(), "View program information...");
    EXPECT_EQ(window.findChild<QLabel*>("ProgramVersion")->text(), "Velmora 1.61");
    EXPECT_EQ(window.findChild<QLabel*>("Copyright")->text(), AboutWindow::LegalLine());
    EXPECT_FALSE(AboutWindow::LegalLine().isEmpty());
    auto* link = window.findChild<QLabel*>("LinkLabel");
    ASSERT_NE(link, nullptr);
    EXPECT_TRUE(link->text().contains("www.velmora.example"));
    EXPECT_EQ(window.findChild<QPushButton*>("cmdCredits")->text(), "&Credits");
    EXPECT_EQ(window.findChild<QPushButton*>("CloseButton")->text(), "&Close");
    auto* ford = window.findChild<QPushButton*>("Ford");
    ASSERT_NE(ford, nullptr);
    EXPECT_EQ(ford->text(), "Focus");
    EXPECT_GE(ford->geometry().top(), window.height());
    for (const char* name : {"ProgramVersion", "Copyright", "LinkLabel", "cmdCredits",
                             "CloseButton", "HeaderText", "HeaderSubText"}) {
        QWidget* w = window.findChild<QWidget*>(name);
        EXPECT_TRUE(window.rect().contains(w->geometry())) << name;
    }
    QStringList order;
    QWidget* w = ford;
    do {
        if (w->focusPolicy() & Qt::TabFocus) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != ford);
    EXPECT_EQ(order, (QStringList{"Ford", "LinkLabel", "cmdCredits", "CloseButton"}));
}

TEST_F(AboutWindowTest, Credits_ShowsTheSevenLinesInAnInformationBox) {
    AboutWindow window(model);
    window.findChild<QPushButton*>("cmdCredits")->click();
    ASSERT_EQ(questions.asked.size(), 1);
    const QStringList lines = questions.asked[0].prompt.split("\r\n");
    EXPECT_EQ(lines,
              (QStringList{"Velmora uses portions of the following products:", "",
                           "Vbrfix, for fixing MP3 files.", "MpgTx, for joining MPEG1 files.",
                           "FFMpeg, for fixing MPEG2 files.", "",
                           "More information about the above products is available "
                           "upon request."}));
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_TRUE(questions.asked[0].title.isEmpty());
    EXPECT_TRUE(launched.isEmpty());
}

TEST_F(AboutWindowTest, LinkClick_OpensTheSiteInTheBrowser) {
    AboutWindow window(model);
    auto* link = window.findChild<QLabel*>("LinkLabel");
    emit link->linkActivated(QStringLiteral("http://www.velmora.example"));
    EXPECT_EQ(launched, QStringList{"xdg-open http://www.velmora.example"});
}

TEST_F(AboutWindowTest, CloseButton_ClosesTheWindow) {
    AboutWindow window(model);
    window.show();
    window.findChild<QPushButton*>("CloseButton")->click();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(AboutWindowTest, Picture_ShowsTheWindow) {
    AboutWindow window(model);
    window.show();
    const QImage image = takePicture(window, "about.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
