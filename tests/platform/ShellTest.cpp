#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include "app/AppPaths.h"
#include "platform/FileHelpers.h"
#include "platform/Shell.h"

namespace {

struct Launch {
    QString program;
    QStringList arguments;
    QString workingFolder;
};

struct FileManagerRequest {
    QString method;
    QStringList uris;
};

// Records what would be started or asked of the file manager; nothing runs.
class ShellTest : public ::testing::Test {
protected:
    void SetUp() override {
        previousLauncher = setShellLauncherHook(
            [this](const QString& program, const QStringList& arguments, const QString& folder) {
                launches.append(Launch{program, arguments, folder});
                return launcherWorks;
            });
        previousFileManager =
            setFileManagerCallHook([this](const QString& method, const QStringList& uris) {
                requests.append(FileManagerRequest{method, uris});
                return fileManagerAnswers;
            });
        SetInstallFolderOverride(dir.path());
        QFile file(dir.path() + "/My Song.mp3");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    void TearDown() override {
        setShellLauncherHook(previousLauncher);
        setFileManagerCallHook(previousFileManager);
        SetInstallFolderOverride(QString());
    }
    QString song() const { return dir.path() + "/My Song.mp3"; }

    QTemporaryDir dir;
    QList<Launch> launches;
    QList<FileManagerRequest> requests;
    bool launcherWorks = true;
    bool fileManagerAnswers = true;
    ShellLauncher previousLauncher;
    FileManagerCall previousFileManager;
};

TEST_F(ShellTest, ShellOpen_StartsTheDesktopOpenerInInstallFolder) {
    EXPECT_TRUE(ShellOpen(song(), InstallFolder()));
    ASSERT_EQ(launches.size(), 1);
    EXPECT_EQ(launches[0].program, QStringLiteral("xdg-open"));
    EXPECT_EQ(launches[0].arguments, QStringList{song()});
    EXPECT_EQ(launches[0].workingFolder, dir.path());
}

TEST_F(ShellTest, ShellOpen_WebAddress_IsHandedOnAsIs) {
    const QString address =
        QStringLiteral("http://www.velmora.example/Content/VLR/?page=update&version=1.61");
    EXPECT_TRUE(ShellOpen(address, InstallFolder()));
    ASSERT_EQ(launches.size(), 1);
    EXPECT_EQ(launches[0].arguments, QStringList{address});
}

TEST_F(ShellTest, ShellOpen_OpenerThatCannotStart_IsFalse) {
    launcherWorks = false;
    EXPECT_FALSE(ShellOpen(song(), InstallFolder()));
    EXPECT_FALSE(ShellOpen(QString(), InstallFolder()));
    EXPECT_EQ(launches.size(), 1);
}

TEST_F(ShellTest, ShowItemInFolder_AsksFileManagerWithFileUri) {
    EXPECT_TRUE(ShowItemInFolder(song(), InstallFolder()));
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].method, QStringLiteral("ShowItems"));
    ASSERT_EQ(requests[0].uris.size(), 1);
    EXPECT_EQ(QUrl(requests[0].uris[0]).toLocalFile(), song());
    EXPECT_TRUE(requests[0].uris[0].contains(QStringLiteral("My%20Song.mp3")));
    EXPECT_TRUE(launches.isEmpty());
}

TEST_F(ShellTest, ShowItemInFolder_NoFileManager_OpensTheFolder) {
    fileManagerAnswers = false;
    EXPECT_TRUE(ShowItemInFolder(song(), InstallFolder()));
    ASSERT_EQ(launches.size(), 1);
    EXPECT_EQ(launches[0].arguments, QStringList{dir.path()});
}

TEST_F(ShellTest, ShowItemInFolder_MissingFile_IsFalseAndAsksNothing) {
    EXPECT_FALSE(ShowItemInFolder(dir.path() + "/gone.mp3", InstallFolder()));
    EXPECT_TRUE(requests.isEmpty());
    EXPECT_TRUE(launches.isEmpty());
}

TEST_F(ShellTest, ShowFileProperties_AsksFileManagerForProperties) {
    EXPECT_TRUE(ShowFileProperties(song(), InstallFolder(), 0));
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].method, QStringLiteral("ShowItemProperties"));
    EXPECT_EQ(QUrl(requests[0].uris.value(0)).toLocalFile(), song());
}

TEST_F(ShellTest, ShowFileProperties_NoFileManager_OpensTheFolder) {
    fileManagerAnswers = false;
    EXPECT_TRUE(ShowFileProperties(song(), InstallFolder(), 0));
    ASSERT_EQ(launches.size(), 1);
    EXPECT_EQ(launches[0].arguments, QStringList{dir.path()});
}

TEST_F(ShellTest, ShowFileProperties_NothingAnswers_IsFalse) {
    fileManagerAnswers = false;
    launcherWorks = false;
    EXPECT_FALSE(ShowFileProperties(song(), InstallFolder(), 0));
}

TEST_F(ShellTest, ShowFileProperties_MissingFile_IsFalse) {
    EXPECT_FALSE(ShowFileProperties(dir.path() + "/gone.mp3", InstallFolder(), 0));
    EXPECT_TRUE(requests.isEmpty());
}

}  // namespace
