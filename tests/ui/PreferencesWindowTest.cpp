#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

#include "WindowPicture.h"
#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "app/Settings.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/PreferencesWindow.h"

namespace {

class PreferencesWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        SetAppDataFolder(dir.path());
    }
    void TearDown() override { SetAppDataFolder(QString()); }

    template <typename T>
    T* child(QWidget& window, const char* name) {
        T* widget = window.findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    // The names of the widgets that take the focus by Tab, from the first.
    static QStringList tabOrder(QWidget& window, QWidget* first) {
        QStringList names;
        QWidget* w = first;
        do {
            if ((w->focusPolicy() & Qt::TabFocus) && w->window() == &window) {
                names.append(w->objectName());
            }
            w = w->nextInFocusChain();
        } while (w != first && names.size() < 50);
        return names;
    }

    QTemporaryDir dir;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(PreferencesWindowTest, Controls_HaveTheirNamesCaptionsAndTabOrder) {
    PreferencesWindow window(model);
    EXPECT_EQ(window.windowTitle(), "Preferences");
    EXPECT_TRUE(window.isModal());
    EXPECT_EQ(child<QLabel>(window, "HeaderText")->text(), "Preferences");
    EXPECT_EQ(child<QLabel>(window, "HeaderSubText")->text(),
              "Use this dialog to edit program settings...");
    auto* frame = child<QGroupBox>(window, "NewListFrame");
    auto* splash = child<QCheckBox>(window, "DoNotShowSplashscreenAtStartup");
    auto* newList = child<QCheckBox>(window, "DoNotShowNewListDialogAtStartup");
    EXPECT_EQ(splash->text(), "Do not show 'Splashscreen' at startup");
    EXPECT_EQ(newList->text(), "Do not show 'New List' dialog at startup");
    EXPECT_EQ(child<QLabel>(window, "Label1")->text(), "Default List Type:");
    EXPECT_EQ(child<QRadioButton>(window, "DefaultListTypeMP3")->text(), "MP3");
    EXPECT_EQ(child<QRadioButton>(window, "DefaultListTypeMPEG")->text(), "MPEG");
    EXPECT_EQ(child<QPushButton>(window, "CloseButton")->text(), "&Close");
    auto* ford = child<QPushButton>(window, "Ford");
    EXPECT_EQ(ford->text(), "Focus");
    // The options stand inside the frame.
    EXPECT_EQ(splash->parentWidget(), frame);
    EXPECT_EQ(child<QRadioButton>(window, "DefaultListTypeMPEG")->parentWidget(), frame);

    // Ford lies out of sight; every other control lies inside the window.
    EXPECT_GE(ford->geometry().top(), window.height());
    for (const char* name : {"HeaderText", "HeaderSubText", "NewListFrame", "CloseButton"}) {
        QWidget* w = window.findChild<QWidget*>(name);
        EXPECT_TRUE(window.rect().contains(w->geometry())) << name;
    }
    EXPECT_TRUE(frame->rect().contains(splash->geometry()));

    EXPECT_EQ(tabOrder(window, ford),
              (QStringList{"Ford", "DoNotShowSplashscreenAtStartup",
                           "DoNotShowNewListDialogAtStartup", "DefaultListTypeMP3",
                           "DefaultListTypeMPEG", "WriteTagsAndChapters", "CloseButton"}));
}

TEST_F(PreferencesWindowTest, WriteTagsAndChapters_OnByDefaultAndSavedWhenCleared) {
    EXPECT_TRUE(Settings::JoinWritesTagsAndChapters());
    PreferencesWindow window(model);
    auto* box = child<QCheckBox>(window, "WriteTagsAndChapters");
    EXPECT_EQ(box->text(), "Write tags and chapters into joined MP3 files");
    EXPECT_TRUE(window.rect().contains(box->geometry()));
    EXPECT_TRUE(box->isChecked());
    window.show();
    box->click();
    window.close();
    EXPECT_EQ(ReadSetting("Join", "WriteTagsAndChapters"), "0");
    EXPECT_FALSE(Settings::JoinWritesTagsAndChapters());

    PreferencesWindow again(model);
    EXPECT_FALSE(child<QCheckBox>(again, "WriteTagsAndChapters")->isChecked());
    again.show();
    child<QCheckBox>(again, "WriteTagsAndChapters")->click();
    child<QPushButton>(again, "CloseButton")->click();
    EXPECT_EQ(ReadSetting("Join", "WriteTagsAndChapters"), "1");
    EXPECT_TRUE(Settings::JoinWritesTagsAndChapters());
}

TEST_F(PreferencesWindowTest, NoSettingsFile_DesignStateAndFirstCloseCreatesTheFile) {
    PreferencesWindow window(model);
    EXPECT_FALSE(child<QCheckBox>(window, "DoNotShowSplashscreenAtStartup")->isChecked());
    EXPECT_FALSE(child<QCheckBox>(window, "DoNotShowNewListDialogAtStartup")->isChecked());
    EXPECT_TRUE(child<QRadioButton>(window, "DefaultListTypeMP3")->isChecked());
    EXPECT_FALSE(QFile::exists(SettingsFile()));
    child<QPushButton>(window, "CloseButton")->click();
    EXPECT_TRUE(QFile::exists(SettingsFile()));
    EXPECT_EQ(ReadSetting("Splashscreen", "DoNotShowAtStartup"), "0");
    EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "0");
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MP3");
}

TEST_F(PreferencesWindowTest, Load_ReadsTheThreeKeys) {
    WriteSetting("Splashscreen", "DoNotShowAtStartup", "1");
    WriteSetting("NewList", "DoNotAskMeAgain", "1");
    WriteSetting("NewList", "ListType", "MPEG");
    PreferencesWindow window(model);
    EXPECT_TRUE(child<QCheckBox>(window, "DoNotShowSplashscreenAtStartup")->isChecked());
    EXPECT_TRUE(child<QCheckBox>(window, "DoNotShowNewListDialogAtStartup")->isChecked());
    EXPECT_TRUE(child<QRadioButton>(window, "DefaultListTypeMPEG")->isChecked());
    EXPECT_FALSE(child<QRadioButton>(window, "DefaultListTypeMP3")->isChecked());
}

TEST_F(PreferencesWindowTest, ListTypeInSmallLetters_CountsAsMP3AndIsStoredAsMP3) {
    WriteSetting("NewList", "ListType", "mpeg");
    PreferencesWindow window(model);
    EXPECT_TRUE(child<QRadioButton>(window, "DefaultListTypeMP3")->isChecked());
    window.show();
    window.close();
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MP3");
}

TEST_F(PreferencesWindowTest, FirstClose_WritesOverWhatTheNewListDialogSavedMeanwhile) {
    WriteSetting("NewList", "DoNotAskMeAgain", "0");
    WriteSetting("NewList", "ListType", "MP3");
    // Created hidden at start-up: it holds the values of the start of the run.
    PreferencesWindow startupCopy(model);
    // The New List dialog saves other values in between.
    WriteSetting("NewList", "DoNotAskMeAgain", "1");
    WriteSetting("NewList", "ListType", "MPEG");
    // The user opens Preferences for the first time and closes it.
    startupCopy.show();
    EXPECT_FALSE(child<QCheckBox>(startupCopy, "DoNotShowNewListDialogAtStartup")->isChecked());
    child<QPushButton>(startupCopy, "CloseButton")->click();
    EXPECT_FALSE(startupCopy.isVisible());
    EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "0");
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MP3");

    // A later opening loads anew from the file.
    WriteSetting("NewList", "ListType", "MPEG");
    PreferencesWindow later(model);
    EXPECT_TRUE(child<QRadioButton>(later, "DefaultListTypeMPEG")->isChecked());
}

TEST_F(PreferencesWindowTest, CloseBox_SavesTheChangedValues) {
    PreferencesWindow window(model);
    window.show();
    child<QCheckBox>(window, "DoNotShowSplashscreenAtStartup")->click();
    child<QRadioButton>(window, "DefaultListTypeMPEG")->click();
    window.close();
    EXPECT_EQ(ReadSetting("Splashscreen", "DoNotShowAtStartup"), "1");
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MPEG");
}

TEST_F(PreferencesWindowTest, ValueThatIsNoNumber_LeavesTheCheckBoxAsItIs) {
    WriteSetting("Splashscreen", "DoNotShowAtStartup", "yes");
    PreferencesWindow window(model);
    EXPECT_FALSE(child<QCheckBox>(window, "DoNotShowSplashscreenAtStartup")->isChecked());
}

TEST_F(PreferencesWindowTest, Picture_ShowsTheWindow) {
    WriteSetting("NewList", "DoNotAskMeAgain", "1");
    PreferencesWindow window(model);
    window.show();
    const QImage image = takePicture(window, "preferences.png");
    EXPECT_EQ(image.size(), window.size() * window.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
