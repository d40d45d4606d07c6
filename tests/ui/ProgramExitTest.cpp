#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QTemporaryDir>
#include <cstdlib>

#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "app/Startup.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/MainWindow.h"
#include "ui/TipsWindow.h"

namespace {

// The per-user folder that the parent and its child process share: the child
// runs the test anew and finds the parent's folder in the environment.
const char kSharedFolderVariable[] = "VELMORA_EXIT_TEST_FOLDER";

// In the child: the main window with the program's own exit, the tips window
// open over it with ShowAtStartup cleared, then File, Exit.
void clearTipsCheckBoxThenFileExit(const QString& appData) {
    SetAppDataFolder(appData);
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window(questions, clipboard);
    window.exitProgram = EndProcessAtOnce;
    auto* tips = new TipsWindow(window.model(), &window);
    window.tipsWindow = tips;
    window.show();
    tips->show();
    QApplication::processEvents();
    tips->findChild<QCheckBox*>("ShowAtStartup")->click();
    window.action("FileExit")->trigger();
    // Not reached when the exit is immediate.
    std::exit(3);
}

TEST(ProgramExit, FileExitWhileTheTipsWindowIsOpen_LosesItsSetting) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    QTemporaryDir own;
    QString folder = qEnvironmentVariable(kSharedFolderVariable);
    if (folder.isEmpty()) {
        ASSERT_TRUE(own.isValid());
        folder = own.path();
        qputenv(kSharedFolderVariable, folder.toLocal8Bit());
        SetAppDataFolder(folder);
        WriteSetting("Tips", "ShowAtStartup", "1");
        WriteSetting("Tips", "Count", "1");
        WriteSetting("Tips", "Tip1", "A tip.");
    }
    EXPECT_EXIT(clearTipsCheckBoxThenFileExit(folder), ::testing::ExitedWithCode(0), "");
    qunsetenv(kSharedFolderVariable);

    // The box was cleared, but the process ended before the window's closing
    // step could write it.
    SetAppDataFolder(folder);
    EXPECT_EQ(ReadSetting("Tips", "ShowAtStartup"), "1");
    SetAppDataFolder(QString());
}

TEST(ProgramExit, ClosingTheTipsWindowFirst_KeepsItsSetting) {
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    SetAppDataFolder(folder.path());
    WriteSetting("Tips", "ShowAtStartup", "1");
    WriteSetting("Tips", "Tip1", "A tip.");
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainWindow window(questions, clipboard);
    int exits = 0;
    window.exitProgram = [&exits] { ++exits; };
    auto* tips = new TipsWindow(window.model(), &window);
    window.tipsWindow = tips;
    tips->show();
    tips->findChild<QCheckBox*>("ShowAtStartup")->click();
    tips->close();
    window.action("FileExit")->trigger();
    EXPECT_EQ(exits, 1);
    EXPECT_EQ(ReadSetting("Tips", "ShowAtStartup"), "0");
    SetAppDataFolder(QString());
}

}  // namespace
