#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "MainWindowTestHelpers.h"
#include "app/AppPaths.h"
#include "app/DebugLog.h"
#include "list/Columns.h"
#include "ui/AppLauncher.h"
#include "ui/NewListWindow.h"
#include "ui/Splashscreen.h"

TEST(Splashscreen, Controls_SizeCaptionsAndTimer) {
    Splashscreen splash;
    EXPECT_EQ(splash.objectName(), "Splashscreen");
    EXPECT_TRUE(splash.windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(splash.size(), QSize(400, 283));
    auto text = [&splash](const char* name) {
        auto* label = splash.findChild<QLabel*>(name);
        EXPECT_NE(label, nullptr) << name;
        return label ? label->text() : QString();
    };
    EXPECT_EQ(text("VersionLabel"), "Version: 1.61");
    EXPECT_EQ(text("VisitUsAtLabel"), "Visit us at:");
    EXPECT_EQ(text("VisitUsAtValue"), "www.velmora.example");
    EXPECT_EQ(text("DisclaimerLabel"), "Disclaimer:");
    EXPECT_GT(text("DisclaimerValue").size(), 40);
    auto* site = splash.findChild<QLabel*>("VisitUsAtValue");
    EXPECT_EQ(site->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(site->palette().color(QPalette::WindowText), QColor(0, 0, 128));
    EXPECT_NE(splash.findChild<QWidget*>("Line1"), nullptr);
    EXPECT_NE(splash.findChild<QWidget*>("Line2"), nullptr);
    auto* timer = splash.findChild<QTimer*>("Timer");
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 2000);
}

TEST(Splashscreen, BackgroundClickThenTimer_HandsOverOnce) {
    auto* splash = new Splashscreen();
    int handOvers = 0;
    splash->handOver = [&] {
        ++handOvers;
        splash->close();
    };
    splash->showSplash();
    QTest::mouseClick(splash, Qt::LeftButton, {}, QPoint(10, 270));
    EXPECT_EQ(handOvers, 1);
    EXPECT_FALSE(splash->timer()->isActive());
    QTest::qWait(50);
}

TEST(Splashscreen, TimerTick_HandsOver) {
    Splashscreen splash;
    int handOvers = 0;
    splash.handOver = [&] { ++handOvers; };
    splash.showSplash();
    splash.timer()->setInterval(20);
    QTest::qWait(200);
    EXPECT_EQ(handOvers, 1);
}

TEST(Splashscreen, SiteClick_OpensTheSiteAndKeepsTheSplash) {
    Splashscreen splash;
    int handOvers = 0;
    QStringList opened;
    splash.handOver = [&] { ++handOvers; };
    splash.openSite = [&](const QString& address) { opened << address; };
    splash.showSplash();
    QTest::mouseClick(splash.findChild<QLabel*>("VisitUsAtValue"), Qt::LeftButton);
    EXPECT_EQ(opened, QStringList{"http://www.velmora.example"});
    EXPECT_EQ(handOvers, 0);
    EXPECT_TRUE(splash.isVisible());
}

namespace {

class StartupTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(home.isValid());
        previousHome = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", home.path().toUtf8());
        QDir().mkpath(home.path() + "/Kestor/Velmora");
        NewListAtStartup = 0;
    }
    void TearDown() override {
        if (stopPolling) {
            stopPolling();
        }
        qputenv("XDG_DATA_HOME", previousHome);
        NewListAtStartup = 0;
        StopLogging();
    }
    void settings(int noSplash, int noDialog, const char* type = "MPEG", int tips = 0) {
        QFile file(home.path() + "/Kestor/Velmora/Settings.ini");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral("[Splashscreen]\nDoNotShowAtStartup=%1\n[NewList]\n"
                                  "DoNotAskMeAgain=%2\nListType=%3\n[Tips]\nShowAtStartup=%4\n"
                                  "Count=1\nTip1=A tip.\n")
                       .arg(noSplash)
                       .arg(noDialog)
                       .arg(QString::fromLatin1(type))
                       .arg(tips)
                       .toUtf8());
    }
    // Answers the NewList dialog with Create when it comes; records that.
    void createWhenAsked() {
        stopPolling = WhenModalShows(
            [this](QWidget* w) {
                if (auto* dialog = qobject_cast<NewListWindow*>(w)) {
                    dialogCame = true;
                    mainVisibleBehindDialog = launcher->mainWindow()->isVisible();
                    dialog->createNewList();
                }
            },
            1500);
    }
    void start(const QStringList& arguments = {"velmora"}, const QString& listFile = QString()) {
        launcher = std::make_unique<AppLauncher>(questions, clipboard);
        launcher->mainWindow()->exitProgram = [] {};
        launcher->start(arguments, listFile);
    }
    // A list file of the given type with two rows, in the test's folder.
    QString listFile(const QString& name, const char* type = "MPEG") {
        const QString path = home.path() + u'/' + name;
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArrayLiteral("VLR List v1.0\r\n<") + type +
                   QByteArrayLiteral(">\r\n"
                                     "one.mpg|1 KB|01.01.2020|/media/one.mpg|MPEG-2V|720x576|"
                                     "00:00:01\r\n"
                                     "two.mpg|1 KB|01.01.2020|/media/two.mpg|MPEG-2V|720x576|"
                                     "00:00:01\r\n"));
        return path;
    }
    MainModel& model() { return launcher->mainWindow()->model(); }

    QTemporaryDir home;
    QByteArray previousHome;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    std::unique_ptr<AppLauncher> launcher;
    StopPolling stopPolling;
    bool dialogCame = false;
    bool mainVisibleBehindDialog = false;
};

}  // namespace

TEST_F(StartupTest, SplashAndDialog_SplashThenMainWindowWithNewList) {
    settings(0, 0);
    start();
    ASSERT_NE(launcher->splashscreen(), nullptr);
    EXPECT_TRUE(launcher->splashscreen()->isVisible());
    EXPECT_TRUE(launcher->splashscreen()->timer()->isActive());
    EXPECT_FALSE(launcher->mainWindow()->isVisible());
    EXPECT_FALSE(launcher->handedOver());
    createWhenAsked();
    QTest::mouseClick(launcher->splashscreen(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(launcher->handedOver());
    EXPECT_TRUE(dialogCame);
    EXPECT_TRUE(mainVisibleBehindDialog);
    EXPECT_EQ(launcher->mainWindow()->model().state.listType(), "MPEG");
    EXPECT_EQ(launcher->mainWindow()->windowTitle(), "Velmora - (Untitled List)");
    EXPECT_EQ(NewListAtStartup, 0);
}

TEST_F(StartupTest, NoSplashDialogWanted_DialogAtOnce) {
    settings(1, 0, "MP3");
    createWhenAsked();
    start();
    EXPECT_TRUE(launcher->handedOver());
    EXPECT_TRUE(launcher->splashscreen() == nullptr || !launcher->splashscreen()->isVisible());
    EXPECT_TRUE(dialogCame);
    EXPECT_EQ(launcher->mainWindow()->model().state.listType(), "MP3");
}

TEST_F(StartupTest, SplashNoDialog_ListOfTheSavedTypeAfterTheSplash) {
    settings(0, 1);
    createWhenAsked();
    start();
    EXPECT_FALSE(launcher->handedOver());
    ASSERT_NE(launcher->splashscreen(), nullptr);
    launcher->splashscreen()->timer()->setInterval(20);
    launcher->splashscreen()->timer()->start();
    QTest::qWait(300);
    EXPECT_TRUE(launcher->handedOver());
    EXPECT_FALSE(dialogCame);
    EXPECT_TRUE(launcher->mainWindow()->isVisible());
    EXPECT_EQ(launcher->mainWindow()->model().state.listType(), "MPEG");
}

TEST_F(StartupTest, NoSplashNoDialog_MainWindowWithUntitledListAtOnce) {
    settings(1, 1);
    createWhenAsked();
    start();
    EXPECT_TRUE(launcher->handedOver());
    EXPECT_FALSE(dialogCame);
    EXPECT_TRUE(launcher->mainWindow()->isVisible());
    EXPECT_EQ(launcher->mainWindow()->model().state.listType(), "MPEG");
    EXPECT_EQ(launcher->mainWindow()->windowTitle(), "Velmora - (Untitled List)");
    EXPECT_EQ(launcher->mainWindow()->model().items.headerCount(), 7);
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST_F(StartupTest, TipsWanted_TipsWindowShownAfterTheList) {
    settings(1, 1, "MP3", 1);
    start();
    ASSERT_NE(launcher->mainWindow()->tipsWindow, nullptr);
    EXPECT_TRUE(launcher->mainWindow()->tipsWindow->isVisible());
    EXPECT_FALSE(launcher->mainWindow()->tipsWindow->isModal() &&
                 QApplication::activeModalWidget() == launcher->mainWindow()->tipsWindow);
    launcher->mainWindow()->tipsWindow->hide();
}

TEST_F(StartupTest, TipsNotWanted_TipsWindowStaysHidden) {
    settings(1, 1, "MP3", 0);
    start();
    ASSERT_NE(launcher->mainWindow()->tipsWindow, nullptr);
    EXPECT_FALSE(launcher->mainWindow()->tipsWindow->isVisible());
    ASSERT_NE(launcher->mainWindow()->preferencesWindow, nullptr);
    EXPECT_FALSE(launcher->mainWindow()->preferencesWindow->isVisible());
}

TEST_F(StartupTest, DebugCommandLine_ShowsTheDebugBoxFirst) {
    settings(1, 1);
    start({"velmora", "/debug"});
    ASSERT_FALSE(questions.asked.isEmpty());
    EXPECT_EQ(questions.asked[0].prompt, "Velmora is now running in debug-mode.");
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_FALSE(LogPath().isEmpty());
}

TEST_F(StartupTest, ListFileGiven_OpensAfterTheSplash_WithoutTheNewListDialog) {
    settings(0, 0, "MP3");
    createWhenAsked();
    const QString path = listFile(QStringLiteral("My List.vlr"));
    start({"velmora", path}, path);
    // Nothing of the list before the hand-over.
    EXPECT_FALSE(launcher->handedOver());
    EXPECT_EQ(model().state.listFileName(), QString());
    QTest::mouseClick(launcher->splashscreen(), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_TRUE(launcher->handedOver());
    EXPECT_FALSE(dialogCame);
    EXPECT_EQ(NewListAtStartup, 0);
    EXPECT_TRUE(launcher->mainWindow()->isVisible());
    EXPECT_EQ(launcher->mainWindow()->windowTitle(), "Velmora - (My List.vlr)");
    EXPECT_EQ(model().state.listFileName(), path);
    EXPECT_EQ(model().state.listType(), "MPEG");
    EXPECT_EQ(model().items.headerCount(), 7);
    ASSERT_EQ(model().items.count(), 2);
    EXPECT_EQ(model().items.cell(2, SharedCell::Filepath), "/media/two.mpg");
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST_F(StartupTest, ListFileGivenWithoutSplash_TipsStillFollowTheList) {
    settings(1, 0, "MP3", 1);
    createWhenAsked();
    const QString path = listFile(QStringLiteral("a.vlr"), "MP3");
    start({"velmora", path}, path);
    EXPECT_FALSE(dialogCame);
    EXPECT_EQ(model().state.listType(), "MP3");
    EXPECT_EQ(launcher->mainWindow()->windowTitle(), "Velmora - (a.vlr)");
    ASSERT_NE(launcher->mainWindow()->tipsWindow, nullptr);
    EXPECT_TRUE(launcher->mainWindow()->tipsWindow->isVisible());
    launcher->mainWindow()->tipsWindow->hide();
}

TEST_F(StartupTest, ListFileThatIsNoList_SaysSo_ThenTheNewListDialog) {
    settings(1, 0, "MP3");
    createWhenAsked();
    const QString path = home.path() + QStringLiteral("/not a list.vlr");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Some other text\r\n");
    file.close();
    start({"velmora", path}, path);
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Unable to open; Invalid File!");
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_TRUE(dialogCame);
    EXPECT_EQ(NewListAtStartup, 0);
    EXPECT_EQ(model().state.listFileName(), QString());
    EXPECT_EQ(launcher->mainWindow()->windowTitle(), "Velmora - (Untitled List)");
}

TEST_F(StartupTest, ListFileMissing_SaysSo_ThenTheNewListDialog) {
    settings(1, 0, "MPEG");
    createWhenAsked();
    const QString path = home.path() + QStringLiteral("/gone.vlr");
    start({"velmora", path}, path);
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Unable to open; Invalid File!");
    EXPECT_TRUE(dialogCame);
    EXPECT_EQ(model().state.listType(), "MPEG");
}

TEST_F(StartupTest, DebugCommandLineWithAListFile_OpensTheListInAnOrdinaryRun) {
    settings(1, 0);
    createWhenAsked();
    const QString path = listFile(QStringLiteral("a.vlr"));
    start({"velmora", "/debug", path}, path);
    EXPECT_TRUE(LogPath().isEmpty());
    EXPECT_TRUE(questions.asked.isEmpty());
    EXPECT_FALSE(dialogCame);
    EXPECT_EQ(model().state.listFileName(), path);
}
