#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

#include "MainWindowTestHelpers.h"
#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "ui/NewListWindow.h"

namespace {

class NewListWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        previous = AppDataFolder();
        SetAppDataFolder(dir.path());
        NewListAtStartup = 0;
    }
    void TearDown() override {
        SetAppDataFolder(previous);
        NewListAtStartup = 0;
    }
    void settings(const QByteArray& text) {
        QFile file(SettingsFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    // Runs the window; action sees it once it is up (when it comes at all).
    void run(std::function<void(NewListWindow&)> action) {
        NewListWindow window;
        window.createList = [this](const QString& type) { created << type; };
        StopPolling stop = WhenModalShows(
            [&window, action](QWidget* shown) {
                EXPECT_EQ(shown, &window);
                action(window);
                shownOnce = true;
            },
            1500);
        window.run();
        stop();
        skipped = window.skipped();
        stillOpen = window.isVisible();
        window.hide();
    }

    QTemporaryDir dir;
    QString previous;
    QStringList created;
    bool skipped = false;
    bool stillOpen = false;
    static inline bool shownOnce = false;
};

}  // namespace

TEST_F(NewListWindowTest, Controls_HaveTheirNamesAndCaptions) {
    NewListWindow window;
    EXPECT_EQ(window.objectName(), "NewList");
    EXPECT_EQ(window.windowTitle(), "New List");
    EXPECT_TRUE(window.isModal());
    struct Caption {
        const char* name;
        const char* text;
    };
    for (const Caption& c :
         {Caption{"HeaderText", "New List"},
          Caption{"HeaderSubText", "Create a new type of list..."},
          Caption{"InfoLabel1", "What type of list would you like to create?"}}) {
        auto* label = window.findChild<QLabel*>(c.name);
        ASSERT_NE(label, nullptr) << c.name;
        EXPECT_EQ(label->text(), c.text);
    }
    for (const char* name : {"HeaderImage", "HeaderBackground", "Line1"}) {
        EXPECT_NE(window.findChild<QWidget*>(name), nullptr) << name;
    }
    EXPECT_EQ(window.findChild<QRadioButton*>("OptionMP3")->text(), "MP3");
    EXPECT_TRUE(window.findChild<QRadioButton*>("OptionMP3")->isChecked());
    EXPECT_EQ(window.findChild<QRadioButton*>("OptionMPEG")->text(), "MPEG");
    EXPECT_EQ(window.findChild<QCheckBox*>("DoNotAskMeAgain")->text(), "Do not ask me again");
    EXPECT_EQ(window.findChild<QPushButton*>("CreateNewList")->text(), "&Create");
    EXPECT_EQ(window.findChild<QPushButton*>("CancelButton")->text(), "C&ancel");
}

TEST_F(NewListWindowTest, UserOpened_MpegThenCancel_KeepsListButStoresMpeg) {
    settings("[NewList]\nDoNotAskMeAgain=0\nListType=MP3\n");
    run([](NewListWindow& w) {
        EXPECT_TRUE(w.doNotAskMeAgain()->isHidden());
        EXPECT_TRUE(w.findChild<QPushButton*>("CancelButton")->isEnabled());
        w.optionMPEG()->setChecked(true);
        QTest::mouseClick(w.findChild<QPushButton*>("CancelButton"), Qt::LeftButton);
    });
    EXPECT_TRUE(created.isEmpty());
    EXPECT_FALSE(stillOpen);
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MPEG");
    EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "0");
    // The next opening preselects MPEG.
    run([](NewListWindow& w) {
        EXPECT_TRUE(w.optionMPEG()->isChecked());
        w.createNewList();
    });
    EXPECT_EQ(created, QStringList{"MPEG"});
}

TEST_F(NewListWindowTest, Startup_CancelDisabledCloseRefusedSettingsStillWritten) {
    settings("[NewList]\nListType=MPEG\n");
    NewListAtStartup = -1;
    run([](NewListWindow& w) {
        EXPECT_FALSE(w.doNotAskMeAgain()->isHidden());
        EXPECT_FALSE(w.findChild<QPushButton*>("CancelButton")->isEnabled());
        EXPECT_TRUE(w.optionMPEG()->isChecked());
        w.optionMP3()->setChecked(true);
        w.doNotAskMeAgain()->setChecked(true);
        EXPECT_FALSE(w.close());
        QTest::keyClick(&w, Qt::Key_Escape);
        EXPECT_TRUE(w.isVisible());
        // The refused close wrote the settings all the same.
        EXPECT_EQ(ReadSetting("NewList", "ListType"), "MP3");
        EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "1");
        QTest::mouseClick(w.findChild<QPushButton*>("CreateNewList"), Qt::LeftButton);
    });
    EXPECT_EQ(created, QStringList{"MP3"});
    EXPECT_EQ(NewListAtStartup, 0);
    EXPECT_FALSE(stillOpen);
}

TEST_F(NewListWindowTest, Startup_EnterKeyCreates) {
    NewListAtStartup = -1;
    run([](NewListWindow& w) {
        w.findChild<QPushButton*>("CancelButton")->setFocus();
        QTest::keyClick(&w, Qt::Key_Return);
    });
    EXPECT_EQ(created, QStringList{"MP3"});
    EXPECT_FALSE(stillOpen);
}

TEST_F(NewListWindowTest, StartupWithDoNotAskMeAgain_CreatesSavedTypeUnseen) {
    settings("[NewList]\nDoNotAskMeAgain=1\nListType=MPEG\n");
    NewListAtStartup = -1;
    shownOnce = false;
    run([](NewListWindow& w) { w.createNewList(); });
    EXPECT_FALSE(shownOnce);
    EXPECT_TRUE(skipped);
    EXPECT_EQ(created, QStringList{"MPEG"});
    EXPECT_EQ(NewListAtStartup, 0);
    EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "1");
}

TEST_F(NewListWindowTest, OnlyValueOneSkips_GreyValueShowsTheDialog) {
    settings("[NewList]\nDoNotAskMeAgain=2\n");
    NewListAtStartup = -1;
    shownOnce = false;
    run([](NewListWindow& w) {
        EXPECT_EQ(w.doNotAskMeAgain()->checkState(), Qt::PartiallyChecked);
        w.createNewList();
    });
    EXPECT_TRUE(shownOnce);
    EXPECT_FALSE(skipped);
    EXPECT_EQ(ReadSetting("NewList", "DoNotAskMeAgain"), "2");
}

TEST_F(NewListWindowTest, LowerCaseMpeg_CountsAsMp3AndIsStoredSo) {
    settings("[NewList]\nListType=mpeg\n");
    run([](NewListWindow& w) {
        EXPECT_TRUE(w.optionMP3()->isChecked());
        w.close();
    });
    EXPECT_EQ(ReadSetting("NewList", "ListType"), "MP3");
}

TEST_F(NewListWindowTest, FromTheMenuWithAFullList_CreateEmptiesItWithoutQuestion) {
    WindowFixture f;
    f.window->commands().newItemList = nullptr;
    WireMainCommands(*f.window, f.window->commands());
    f.window->commands().newItemList(QStringLiteral("MP3"));
    f.model().items.addRow("a.mp3");
    f.model().items.addRow("b.mp3");
    WhenModalShows([](QWidget* w) { static_cast<NewListWindow*>(w)->createNewList(); });
    f.window->action("FileNewList")->trigger();
    EXPECT_EQ(f.model().items.count(), 0);
    EXPECT_TRUE(f.questions.asked.isEmpty());
    EXPECT_EQ(f.model().state.listType(), "MP3");
}
