#include <gtest/gtest.h>

#include <sys/statvfs.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "platform/FileHelpers.h"
#include "platform/Questions.h"
#include "support/ScriptedQuestions.h"

namespace {

// Sets an environment variable for the life of the object and restores it.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const QByteArray& value) : name_(name) {
        had_ = qEnvironmentVariableIsSet(name);
        old_ = qgetenv(name);
        qputenv(name, value);
    }
    ScopedEnv(const char* name, std::nullptr_t) : name_(name) {
        had_ = qEnvironmentVariableIsSet(name);
        old_ = qgetenv(name);
        qunsetenv(name);
    }
    ~ScopedEnv() {
        if (had_) {
            qputenv(name_, old_);
        } else {
            qunsetenv(name_);
        }
    }

private:
    const char* name_;
    QByteArray old_;
    bool had_ = false;
};

TEST(GetFileNameFromPath, FullPath_GivesNameBehindLastSeparator) {
    EXPECT_EQ(GetFileNameFromPath("/a/b.mp3"), QStringLiteral("b.mp3"));
    EXPECT_EQ(GetFileNameFromPath("/home/user/My Music/01 - Song.mp3"),
              QStringLiteral("01 - Song.mp3"));
}

TEST(GetFileNameFromPath, NameWithoutSeparator_ComesBackWhole) {
    EXPECT_EQ(GetFileNameFromPath("b.mp3"), QStringLiteral("b.mp3"));
}

TEST(GetFileNameFromPath, TrailingSeparator_GivesEmptyText) {
    EXPECT_EQ(GetFileNameFromPath("/a/"), QString());
    EXPECT_EQ(GetFileNameFromPath(""), QString());
}

TEST(FileExists, ExistingFile_IsTrue) {
    QTemporaryDir dir;
    QFile file(dir.path() + "/x.mp3");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_TRUE(FileExists(dir.path() + "/x.mp3"));
}

TEST(FileExists, ExistingFolder_IsTrue) {
    QTemporaryDir dir;
    EXPECT_TRUE(FileExists(dir.path()));
}

TEST(FileExists, MissingOrEmptyPath_IsFalse) {
    QTemporaryDir dir;
    EXPECT_FALSE(FileExists(dir.path() + "/nothing.mp3"));
    EXPECT_FALSE(FileExists(QString()));
}

TEST(FileExists, PathThatCannotBeStatted_IsFalse) {
    QTemporaryDir dir;
    QFile file(dir.path() + "/plain.txt");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    // A file used as a folder cannot be stat'ed (ENOTDIR).
    EXPECT_FALSE(FileExists(dir.path() + "/plain.txt/inner.mp3"));
    // A dangling link names nothing.
    ASSERT_TRUE(QFile::link(dir.path() + "/gone.mp3", dir.path() + "/link.mp3"));
    EXPECT_FALSE(FileExists(dir.path() + "/link.mp3"));
}

TEST(IsDirectoryPath, FolderFileAndMissing) {
    QTemporaryDir dir;
    QFile file(dir.path() + "/f");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_TRUE(IsDirectoryPath(dir.path()));
    EXPECT_FALSE(IsDirectoryPath(dir.path() + "/f"));
    EXPECT_FALSE(IsDirectoryPath(dir.path() + "/missing"));
    EXPECT_FALSE(IsDirectoryPath(QString()));
}

TEST(MakeFolderPath, TrailingSeparator_IsRemovedInPlaceAndEveryLevelMade) {
    QTemporaryDir dir;
    QString path = dir.path() + "/a/b/";
    EXPECT_TRUE(MakeFolderPath(path));
    EXPECT_EQ(path, dir.path() + "/a/b");
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/a"));
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/a/b"));
}

TEST(MakeFolderPath, OnlyOneTrailingSeparator_IsRemoved) {
    QTemporaryDir dir;
    QString path = dir.path() + "/c//";
    MakeFolderPath(path);
    EXPECT_EQ(path, dir.path() + "/c/");
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/c"));
}

TEST(MakeFolderPath, ExistingLevels_AreLeftAlone) {
    QTemporaryDir dir;
    QFile marker(dir.path() + "/keep.txt");
    ASSERT_TRUE(marker.open(QIODevice::WriteOnly));
    marker.close();
    QString path = dir.path() + "/new";
    EXPECT_TRUE(MakeFolderPath(path));
    EXPECT_EQ(path, dir.path() + "/new");
    EXPECT_TRUE(QFile::exists(dir.path() + "/keep.txt"));
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/new"));
    QString again = dir.path() + "/new";
    EXPECT_TRUE(MakeFolderPath(again));
}

TEST(MakeFolderPath, RelativePath_IsMadeBelowTheWorkingFolder) {
    QTemporaryDir dir;
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    QString path = QStringLiteral("rel/one/two/");
    EXPECT_TRUE(MakeFolderPath(path));
    EXPECT_EQ(path, QStringLiteral("rel/one/two"));
    QDir::setCurrent(previous);
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/rel/one/two"));
}

TEST(MakeFolderPath, LevelBlockedByAFile_FailsAndMakesNothingBelow) {
    QTemporaryDir dir;
    QFile file(dir.path() + "/blocker");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    QString path = dir.path() + "/blocker/sub/";
    EXPECT_FALSE(MakeFolderPath(path));
    EXPECT_EQ(path, dir.path() + "/blocker/sub");
    EXPECT_FALSE(IsDirectoryPath(dir.path() + "/blocker/sub"));
}

TEST(GetShellFolderPath, AppDataId_GivesXdgDataHome) {
    QTemporaryDir dir;
    ScopedEnv xdg("XDG_DATA_HOME", dir.path().toUtf8());
    ScriptedQuestions questions;
    EXPECT_EQ(GetShellFolderPath(kAppDataFolderId, questions), dir.path());
    EXPECT_EQ(GetShellFolderPath(26, questions), dir.path());
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST(GetShellFolderPath, XdgDataHomeUnsetOrRelative_GivesHomeLocalShare) {
    QTemporaryDir dir;
    ScopedEnv home("HOME", dir.path().toUtf8());
    ScriptedQuestions questions;
    {
        ScopedEnv xdg("XDG_DATA_HOME", nullptr);
        EXPECT_EQ(GetShellFolderPath(kAppDataFolderId, questions), dir.path() + "/.local/share");
    }
    {
        ScopedEnv xdg("XDG_DATA_HOME", "relative/share");
        EXPECT_EQ(GetShellFolderPath(kAppDataFolderId, questions), dir.path() + "/.local/share");
    }
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST(GetShellFolderPath, MissingFolderWithCreateFlag_IsCreated) {
    QTemporaryDir dir;
    ScopedEnv xdg("XDG_DATA_HOME", (dir.path() + "/new/share").toUtf8());
    ScriptedQuestions questions;
    EXPECT_EQ(GetShellFolderPath(kAppDataFolderId, questions), dir.path() + "/new/share");
    EXPECT_TRUE(IsDirectoryPath(dir.path() + "/new/share"));
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST(GetShellFolderPath, MissingFolderWithoutCreateFlag_SaysItDoesNotExist) {
    QTemporaryDir dir;
    ScopedEnv xdg("XDG_DATA_HOME", (dir.path() + "/absent").toUtf8());
    ScriptedQuestions questions;
    EXPECT_EQ(GetShellFolderPath(26, questions), QString());
    ASSERT_EQ(questions.asked.size(), 1);
    EXPECT_EQ(questions.asked[0].prompt, QStringLiteral("ApplicationData Folder does not exist!"));
    EXPECT_EQ(questions.asked[0].style, Msg::OkOnly + Msg::Critical);
    EXPECT_TRUE(questions.asked[0].title.isEmpty());
    EXPECT_FALSE(IsDirectoryPath(dir.path() + "/absent"));
}

TEST(GetShellFolderPath, UnknownFolderId_SaysInvalidFolderId) {
    ScriptedQuestions questions;
    EXPECT_EQ(GetShellFolderPath(12345, questions), QString());
    EXPECT_EQ(GetShellFolderPath(-1, questions), QString());
    ASSERT_EQ(questions.asked.size(), 2);
    for (const ScriptedQuestions::Asked& asked : questions.asked) {
        EXPECT_EQ(asked.prompt, QStringLiteral("Invalid Folder ID!"));
        EXPECT_EQ(asked.style, Msg::OkOnly + Msg::Critical);
        EXPECT_TRUE(asked.title.isEmpty());
    }
}

TEST(GetShellFolderPath, FolderThatCannotBeCreated_GivesEmptyTextWithoutMessage) {
    QTemporaryDir dir;
    QFile file(dir.path() + "/file");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ScopedEnv xdg("XDG_DATA_HOME", (dir.path() + "/file/share").toUtf8());
    ScriptedQuestions questions;
    EXPECT_EQ(GetShellFolderPath(kAppDataFolderId, questions), QString());
    EXPECT_TRUE(questions.asked.isEmpty());
}

TEST(GetDiskFreeBytes, PathWithoutSeparator_GetsOneInPlaceAndIsMeasured) {
    QTemporaryDir dir;
    QString path = dir.path();
    const double free = GetDiskFreeBytes(path);
    EXPECT_EQ(path, dir.path() + "/");
    struct statvfs info {};
    ASSERT_EQ(::statvfs(dir.path().toUtf8().constData(), &info), 0);
    const double expected = static_cast<double>(info.f_bavail) * info.f_frsize;
    // Other programs write to the disk meanwhile: allow a small drift.
    EXPECT_NEAR(free, expected, 64.0 * 1024 * 1024);
    EXPECT_GT(free, 0.0);
}

TEST(GetDiskFreeBytes, BlanksAroundThePath_AreTrimmedInPlace) {
    QTemporaryDir dir;
    QString path = "  " + dir.path() + "/  ";
    EXPECT_GT(GetDiskFreeBytes(path), 0.0);
    EXPECT_EQ(path, dir.path() + "/");
}

TEST(GetDiskFreeBytes, MissingPath_GivesZero) {
    QTemporaryDir dir;
    QString path = dir.path() + "/no/such/volume";
    EXPECT_EQ(GetDiskFreeBytes(path), 0.0);
    EXPECT_EQ(path, dir.path() + "/no/such/volume/");
}

TEST(FreeBytesToDouble, FiveGibibytes_DoNotWrap) {
    EXPECT_EQ(FreeBytesToDouble(5ull * 1024 * 1024 * 1024), 5368709120.0);
}

TEST(FreeBytesToDouble, ValuesAroundTheHalves) {
    EXPECT_EQ(FreeBytesToDouble(0), 0.0);
    EXPECT_EQ(FreeBytesToDouble(0xFFFFFFFFull), 4294967295.0);
    EXPECT_EQ(FreeBytesToDouble(0x100000000ull), 4294967296.0);
    EXPECT_EQ(FreeBytesToDouble(0x80000000ull), 2147483648.0);
    EXPECT_EQ(FreeBytesToDouble(0x123456789ABCull), 20015998343868.0);
}

TEST(BytesToDouble, BytesAreUnsignedLowestFirst) {
    EXPECT_EQ(BytesToDouble(0, 0, 0, 0), 0.0);
    EXPECT_EQ(BytesToDouble(1, 2, 3, 4), 1 + 2 * 256.0 + 3 * 65536.0 + 4 * 16777216.0);
    EXPECT_EQ(BytesToDouble(0xFF, 0xFF, 0xFF, 0xFF), 4294967295.0);
    EXPECT_EQ(BytesToDouble(0, 0, 0, 0x80), 2147483648.0);
}

TEST(GetWindowsFolder, IsEmptyOrAnExistingFolder) {
    const QString folder = GetWindowsFolder();
    if (!folder.isEmpty()) {
        EXPECT_TRUE(IsDirectoryPath(folder));
        EXPECT_TRUE(QFile::exists(folder + "/xdg-open"));
    }
}

TEST(GetWindowsFolder, FollowsTheSearchPath) {
    QTemporaryDir dir;
    QFile launcher(dir.path() + "/xdg-open");
    ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
    launcher.write("#!/bin/sh\n");
    launcher.close();
    ASSERT_TRUE(launcher.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    {
        ScopedEnv path("PATH", dir.path().toUtf8());
        EXPECT_EQ(GetWindowsFolder(), dir.path());
    }
    {
        QTemporaryDir empty;
        ScopedEnv path("PATH", empty.path().toUtf8());
        EXPECT_EQ(GetWindowsFolder(), QString());
    }
}

}  // namespace
