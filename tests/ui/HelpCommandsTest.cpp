#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "app/AppPaths.h"
#include "list/MainModel.h"
#include "platform/Shell.h"
#include "support/MemoryClipboard.h"
#include "support/ScriptedQuestions.h"
#include "ui/HelpCommands.h"

namespace {

class HelpCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(install.isValid());
        SetInstallFolderOverride(install.path());
        previous = setShellLauncherHook([this](const QString& program, const QStringList& arguments,
                                               const QString& workingFolder) {
            launched.append(program + u' ' + arguments.join(u' '));
            folders.append(workingFolder);
            return true;
        });
    }
    void TearDown() override {
        setShellLauncherHook(previous);
        SetInstallFolderOverride(QString());
    }

    QTemporaryDir install;
    ShellLauncher previous;
    QStringList launched;
    QStringList folders;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(HelpCommandsTest, UpdatePageAddress_IsTheSiteWithPathQueryAndVersion) {
    EXPECT_EQ(PublisherSiteAddress(), "http://www.velmora.example");
    EXPECT_EQ(UpdatePageAddress(),
              "http://www.velmora.example/Content/VLR/?page=update&version=1.61");
}

TEST_F(HelpCommandsTest, HelpManual_WithoutReadMe_ShowsTheCriticalBox) {
    HelpManual(model);
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, "Unable to find (ReadMe.htm) document!");
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Critical);
    EXPECT_TRUE(launched.isEmpty());
}

TEST_F(HelpCommandsTest, HelpManual_WithReadMe_OpensItFromTheInstallFolder) {
    QFile readMe(install.filePath("ReadMe.htm"));
    ASSERT_TRUE(readMe.open(QIODevice::WriteOnly));
    readMe.write("<html></html>");
    readMe.close();
    HelpManual(model);
    EXPECT_TRUE(questions.asked.isEmpty());
    EXPECT_EQ(launched, QStringList{"xdg-open " + install.path() + "/ReadMe.htm"});
    EXPECT_EQ(folders, QStringList{install.path()});
}

TEST_F(HelpCommandsTest, CheckForUpdate_AsksWithFourLinesAndOpensThePageOnOk) {
    questions.answer(Msg::Ok);
    HelpCheckForUpdate(model);
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].style, Msg::OkCancel + Msg::Information);
    EXPECT_EQ(questions.asked[0].prompt.split(u'\r'),
              (QStringList{"You will be directed to our website, where you can find the latest "
                           "version information.",
                           "Please, make sure that you are connected to the internet.", "",
                           "Click the \"Ok\" button to visit our website, or click the "
                           "\"Cancel\" button to close this dialog."}));
    EXPECT_FALSE(questions.asked[0].prompt.contains(u'\n'));
    EXPECT_EQ(launched, QStringList{"xdg-open "
                                    "http://www.velmora.example/Content/VLR/"
                                    "?page=update&version=1.61"});
}

TEST_F(HelpCommandsTest, CheckForUpdate_Cancel_OpensNothing) {
    questions.answer(Msg::Cancel);
    HelpCheckForUpdate(model);
    EXPECT_EQ(questions.asked.size(), 1);
    EXPECT_TRUE(launched.isEmpty());
}

}  // namespace
