#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "app/AppPaths.h"

namespace {

// The files that make a folder a complete install folder of the program.
const QStringList kInstallFiles = {
    "velmora", "DefaultSettings.ini", "ReadMe.htm", "MP3.dll", "MPEG.dll", "MPEG2.dll"};
const QStringList kExecutables = {"velmora", "MP3.dll", "MPEG.dll", "MPEG2.dll"};

// The test programs land in the build's output folder, beside the program.
QString buildOutputFolder() {
    return QCoreApplication::applicationDirPath();
}
QString buildFolder() {
    return QDir(buildOutputFolder() + "/..").absolutePath();
}

void expectCompleteInstallFolder(const QString& folder) {
    for (const QString& name : kInstallFiles) {
        const QFileInfo info(folder + u'/' + name);
        EXPECT_TRUE(info.isFile()) << qPrintable(info.filePath());
        EXPECT_GT(info.size(), 0) << qPrintable(info.filePath());
    }
    for (const QString& name : kExecutables) {
        EXPECT_TRUE(QFileInfo(folder + u'/' + name).isExecutable()) << qPrintable(name);
    }
}

bool programBuilt() {
    return QFileInfo::exists(buildOutputFolder() + "/velmora");
}

TEST(InstallFolder, WithoutOverride_IsTheFolderOfTheRunningProgram) {
    SetInstallFolderOverride(QString());
    EXPECT_EQ(InstallFolder(), buildOutputFolder());
}

TEST(InstallFolder, BuildOutputFolder_HoldsAllFiveFilesBesideTheProgram) {
    if (!programBuilt()) {
        GTEST_SKIP() << "the velmora target is not built in this build folder";
    }
    expectCompleteInstallFolder(buildOutputFolder());
}

TEST(InstallFolder, ToolCopies_AreTheDebianToolsAndTheBuiltFixTool) {
    if (!programBuilt()) {
        GTEST_SKIP() << "the velmora target is not built in this build folder";
    }
    EXPECT_EQ(QFileInfo(buildOutputFolder() + "/MP3.dll").canonicalFilePath(),
              QFileInfo(VELMORA_MP3_FIX_TOOL).canonicalFilePath());
    EXPECT_TRUE(QFileInfo(buildOutputFolder() + "/MP3.dll").isExecutable());
    const QList<QPair<QString, QString>> tools = {{"MPEG.dll", "mpgtx"}, {"MPEG2.dll", "ffmpeg"}};
    for (const auto& [copy, tool] : tools) {
        const QFileInfo original(QFileInfo("/usr/bin/" + tool).canonicalFilePath());
        ASSERT_TRUE(original.exists()) << qPrintable(tool);
        EXPECT_EQ(QFileInfo(buildOutputFolder() + u'/' + copy).size(), original.size())
            << qPrintable(copy);
    }
}

TEST(InstallFolder, CmakeInstall_GivesCompleteFolderLinkDesktopFileIconAndListFileType) {
    if (!programBuilt()) {
        GTEST_SKIP() << "the velmora target is not built in this build folder";
    }
    QTemporaryDir prefix;
    ASSERT_TRUE(prefix.isValid());
    QProcess install;
    install.setProcessChannelMode(QProcess::MergedChannels);
    install.start("cmake", {"--install", buildFolder(), "--prefix", prefix.path()});
    ASSERT_TRUE(install.waitForFinished(120000));
    ASSERT_EQ(install.exitCode(), 0) << install.readAll().toStdString();

    // The program folder may sit under lib or lib/<architecture>.
    QString programFolder;
    for (const QString& candidate :
         QDir(prefix.path()).entryList({"lib*"}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (QFileInfo::exists(prefix.path() + u'/' + candidate + "/velmora/velmora")) {
            programFolder = prefix.path() + u'/' + candidate + "/velmora";
        }
    }
    if (programFolder.isEmpty()) {
        for (const QString& arch : QDir(prefix.path() + "/lib").entryList(QDir::Dirs)) {
            if (QFileInfo::exists(prefix.path() + "/lib/" + arch + "/velmora/velmora")) {
                programFolder = prefix.path() + "/lib/" + arch + "/velmora";
            }
        }
    }
    ASSERT_FALSE(programFolder.isEmpty());
    expectCompleteInstallFolder(programFolder);

    const QFileInfo link(prefix.path() + "/bin/velmora");
    EXPECT_TRUE(link.isSymLink());
    EXPECT_EQ(link.canonicalFilePath(), QFileInfo(programFolder + "/velmora").canonicalFilePath());
    EXPECT_TRUE(QFileInfo::exists(prefix.path() + "/share/applications/velmora.desktop"));
    EXPECT_TRUE(
        QFileInfo::exists(prefix.path() + "/share/icons/hicolor/scalable/apps/velmora.svg"));
    // The type of list files, and the databases built from it and from the
    // desktop entry, as a plain install brings them up to date.
    EXPECT_TRUE(QFileInfo::exists(prefix.path() + "/share/mime/packages/velmora.xml"));
    EXPECT_TRUE(QFileInfo::exists(prefix.path() + "/share/mime/application/x-velmora-list.xml"));
    QFile cache(prefix.path() + "/share/applications/mimeinfo.cache");
    ASSERT_TRUE(cache.open(QIODevice::ReadOnly));
    EXPECT_TRUE(cache.readAll().contains("application/x-velmora-list=velmora.desktop;"));
}

}  // namespace
