#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileSystemModel>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QThread>
#include <QTreeView>
#include <algorithm>

#include "WindowPicture.h"
#include "app/AppPaths.h"
#include "app/IniFile.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "platform/Drives.h"
#include "platform/EventTurn.h"
#include "support/MemoryClipboard.h"
#include "support/OwnMountTable.h"
#include "support/ScriptedQuestions.h"
#include "support/TestEnvironment.h"
#include "ui/AddDirectoryBox.h"

namespace {

class AddDirectoryBoxTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(appData.isValid());
        ASSERT_TRUE(media.isValid());
        SetAppDataFolder(appData.path());
        NewItemList(model, QStringLiteral("MP3"));
    }
    void TearDown() override {
        setEventTurnHook({});
        SetDriveRootsOverride({});
        SetAppDataFolder(QString());
    }

    // Copies a sample MP3 into the media folder under a new name.
    void putSample(const QString& relativePath) {
        const QString target = media.filePath(relativePath);
        QDir().mkpath(QFileInfo(target).absolutePath());
        ASSERT_TRUE(QFile::copy(SampleMediaFolder() + "/mimetype-mp3.v2.notag.mp3", target));
    }

    QTemporaryDir appData;
    QTemporaryDir media;
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

TEST_F(AddDirectoryBoxTest, Controls_HaveTheirNamesCaptionsAndTabOrder) {
    AddDirectoryBox box(model);
    EXPECT_EQ(box.windowTitle(), "Add Directory");
    EXPECT_TRUE(box.isModal());
    EXPECT_EQ(box.findChild<QLabel*>("lblInfo")->text(), "Please, select a drive and folder...");
    auto* drives = box.findChild<QComboBox*>("DriveBox");
    ASSERT_NE(drives, nullptr);
    EXPECT_GE(drives->count(), 1);
    EXPECT_NE(drives->findData(QStringLiteral("/")), -1);
    ASSERT_NE(box.findChild<QTreeView*>("DirBox"), nullptr);
    EXPECT_EQ(box.findChild<QCheckBox*>("chkAddSubFolders")->text(),
              "Also add subfolders to my list");
    EXPECT_FALSE(box.findChild<QCheckBox*>("chkAddSubFolders")->isChecked());
    EXPECT_EQ(box.findChild<QPushButton*>("cmdOk")->text(), "&Ok");
    EXPECT_EQ(box.findChild<QPushButton*>("cmdCancel")->text(), "&Cancel");
    for (const char* name :
         {"lblInfo", "DriveBox", "DirBox", "chkAddSubFolders", "cmdOk", "cmdCancel"}) {
        QWidget* w = box.findChild<QWidget*>(name);
        EXPECT_TRUE(box.rect().contains(w->geometry())) << name;
    }
    QStringList order;
    QWidget* first = drives;
    QWidget* w = first;
    do {
        if ((w->focusPolicy() & Qt::TabFocus) && !w->objectName().isEmpty()) {
            order.append(w->objectName());
        }
        w = w->nextInFocusChain();
    } while (w != first);
    EXPECT_EQ(order, (QStringList{"DriveBox", "DirBox", "chkAddSubFolders", "cmdOk", "cmdCancel"}));
}

TEST_F(AddDirectoryBoxTest, EmptySetting_StartsAtTheRoot) {
    AddDirectoryBox box(model);
    EXPECT_EQ(box.dirPath(), "/");
    EXPECT_EQ(box.drive(), "/");
}

TEST_F(AddDirectoryBoxTest, RememberedFolderOnTheStartingDrive_IsShown) {
    // One drive only: DriveBox starts on it, so setting it changes nothing.
    SetDriveRootsOverride({QStringLiteral("/")});
    putSample("inner/a.mp3");
    WriteSetting("Commondialog", "AddFiles", media.filePath("inner"));
    AddDirectoryBox box(model);
    EXPECT_EQ(box.dirPath(), QDir::cleanPath(media.filePath("inner")));
    EXPECT_EQ(box.drive(), "/");
}

TEST_F(AddDirectoryBoxTest, RememberedFolderOnAnotherDrive_ShowsThatDrivesCurrentFolder) {
    // The media folder stands in for a second file system.
    SetDriveRootsOverride({QStringLiteral("/"), media.path()});
    putSample("inner/a.mp3");
    WriteSetting("Commondialog", "AddFiles", media.filePath("inner"));
    AddDirectoryBox box(model);
    EXPECT_EQ(box.drive(), QDir::cleanPath(media.path()));
    // Setting the drive fired its change step: the drive's current folder,
    // its root as nothing was chosen on it yet, and not the remembered one.
    EXPECT_EQ(box.dirPath(), QDir::cleanPath(media.path()));
    EXPECT_EQ(box.findChild<QTreeView*>("DirBox")
                  ->rootIndex()
                  .data(QFileSystemModel::FilePathRole)
                  .toString(),
              QDir::cleanPath(media.path()));
}

TEST_F(AddDirectoryBoxTest, RememberedFolderOnANetworkShare_DriveBoxOffersAndTakesTheShare) {
    // A mount table in which the media folder is an SMB share.
    const QString share = QDir::cleanPath(media.path());
    const OwnMountTable table({{share, "cifs", "//fileserver/music"}});
    putSample("Albums/a.mp3");
    WriteSetting("Commondialog", "AddFiles", media.filePath("Albums"));
    AddDirectoryBox box(model);
    auto* drives = box.findChild<QComboBox*>("DriveBox");
    EXPECT_EQ(drives->count(), 2);
    EXPECT_NE(drives->findData(share), -1);
    EXPECT_EQ(box.drive(), share);
    // Another drive than the starting one: its change step shows the share's
    // current folder, its root.
    EXPECT_EQ(box.dirPath(), share);
}

TEST_F(AddDirectoryBoxTest, RememberedFolderGone_LeavesTheRoot) {
    WriteSetting("Commondialog", "AddFiles", media.filePath("no-such-folder"));
    AddDirectoryBox box(model);
    EXPECT_EQ(box.dirPath(), "/");
}

TEST_F(AddDirectoryBoxTest, Ok_AddsTheFolderFilesAndRemembersTheFolder) {
    putSample("a.mp3");
    putSample("b.mp3");
    putSample("sub/c.mp3");
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.show();
    box.findChild<QPushButton*>("cmdOk")->click();
    EXPECT_FALSE(box.isVisible());
    ASSERT_EQ(model.items.count(), 2);
    EXPECT_EQ(model.items.cell(1, 0), "a.mp3");
    EXPECT_EQ(model.items.cell(2, 0), "b.mp3");
    EXPECT_EQ(ReadSetting("Commondialog", "AddFiles"), QDir::cleanPath(media.path()));
    EXPECT_EQ(model.state.countCaption(), "2");
}

TEST_F(AddDirectoryBoxTest, OkWithSubfolders_AddsTheTree) {
    putSample("a.mp3");
    putSample("sub/c.mp3");
    putSample("sub/deeper/d.mp3");
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.findChild<QCheckBox*>("chkAddSubFolders")->setChecked(true);
    box.confirm();
    ASSERT_EQ(model.items.count(), 3);
    EXPECT_EQ(model.items.cell(1, 0), "a.mp3");
    EXPECT_EQ(model.items.cell(2, 0), "c.mp3");
    EXPECT_EQ(model.items.cell(3, 0), "d.mp3");
}

// Names that letter-by-letter order puts out of place, and their natural order.
const QStringList kNumberedNames = {
    "1.mp3",          "2.mp3",           "3.mp3",       "4.mp3",       "5.mp3",  "6.mp3",
    "7.mp3",          "8.mp3",           "9.mp3",       "10.mp3",      "11.mp3", "12.mp3",
    "Disc 1 - 9.mp3", "Disc 1 - 10.mp3", "Track 2.mp3", "track 10.mp3"};

QStringList reversed(QStringList names) {
    std::reverse(names.begin(), names.end());
    return names;
}

TEST_F(AddDirectoryBoxTest, Ok_NumberedFiles_AreAddedInNaturalOrder) {
    for (const QString& name : reversed(kNumberedNames)) {
        putSample(name);
    }
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.show();
    box.findChild<QPushButton*>("cmdOk")->click();
    QStringList added;
    for (int row = 1; row <= model.items.count(); ++row) {
        added.append(model.items.cell(row, 0));
    }
    EXPECT_EQ(added, kNumberedNames);
}

TEST_F(AddDirectoryBoxTest, OkWithSubfolders_NumberedFilesAndFolders_AreAddedInNaturalOrder) {
    for (const QString& name : reversed(kNumberedNames)) {
        putSample(name);
    }
    for (const QString folder : {"Disc 10", "disc 2", "Disc 1"}) {
        putSample(folder + "/track 10.mp3");
        putSample(folder + "/Track 9.mp3");
    }
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.show();
    box.findChild<QCheckBox*>("chkAddSubFolders")->setChecked(true);
    box.findChild<QPushButton*>("cmdOk")->click();
    QStringList added;
    for (int row = 1; row <= model.items.count(); ++row) {
        added.append(QDir(media.path()).relativeFilePath(model.items.cell(row, 3)));
    }
    QStringList expected = kNumberedNames;
    for (const QString folder : {"Disc 1", "disc 2", "Disc 10"}) {
        expected << folder + "/Track 9.mp3" << folder + "/track 10.mp3";
    }
    EXPECT_EQ(added, expected);
}

// The names the tree shows under its root, once it has read and sorted them:
// the folder tree fills and sorts in the background.
QStringList shownFolders(QTreeView* tree, int expected) {
    QStringList shown;
    for (int i = 0; i < 200; ++i) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(10);
        const QModelIndex root = tree->rootIndex();
        const int rows = tree->model()->rowCount(root);
        // A moment more past the reading, for the sort that follows it.
        if (rows >= expected && i >= 20) {
            shown.clear();
            for (int row = 0; row < rows; ++row) {
                shown.append(tree->model()->index(row, 0, root).data().toString());
            }
            break;
        }
    }
    return shown;
}

TEST_F(AddDirectoryBoxTest, DirBox_ShowsNumberedFoldersInNaturalOrder) {
    // The media folder stands in for a drive, so that the tree shows it as its root.
    SetDriveRootsOverride({QStringLiteral("/"), media.path()});
    for (const char* folder : {"Disc 10", "disc 2", "Disc 1"}) {
        ASSERT_TRUE(QDir(media.path()).mkdir(folder));
    }
    const auto shown = [&] {
        AddDirectoryBox box(model);
        box.setDrive(QDir::cleanPath(media.path()));
        box.show();
        return shownFolders(box.findChild<QTreeView*>("DirBox"), 3);
    };
    EXPECT_EQ(shown(), QStringList({"Disc 1", "disc 2", "Disc 10"}));
    // The same where the locale has no collation of its own.
    const QLocale pinned;
    QLocale::setDefault(QLocale::c());
    const QStringList inTheCLocale = shown();
    QLocale::setDefault(pinned);
    EXPECT_EQ(inTheCLocale, QStringList({"Disc 1", "disc 2", "Disc 10"}));
}

TEST_F(AddDirectoryBoxTest, FolderWithoutFiles_AddsNothingButIsRemembered) {
    WriteSetting("Commondialog", "AddFiles", "/");
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.confirm();
    EXPECT_EQ(model.items.count(), 0);
    EXPECT_EQ(ReadSetting("Commondialog", "AddFiles"), QDir::cleanPath(media.path()));
}

TEST_F(AddDirectoryBoxTest, DuringTheAdding_ControlsAreDisabledAndCloseIsRefused) {
    putSample("a.mp3");
    putSample("b.mp3");
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.show();
    int turns = 0;
    setEventTurnHook([&] {
        ++turns;
        for (const char* name : {"DriveBox", "DirBox", "chkAddSubFolders", "cmdOk", "cmdCancel"}) {
            EXPECT_FALSE(box.findChild<QWidget*>(name)->isEnabled()) << name;
        }
        box.close();
        box.reject();
        EXPECT_TRUE(box.isVisible());
    });
    box.findChild<QPushButton*>("cmdOk")->click();
    EXPECT_GE(turns, 1);
    EXPECT_FALSE(box.isVisible());
    EXPECT_TRUE(box.findChild<QPushButton*>("cmdCancel")->isEnabled());
    EXPECT_EQ(model.items.count(), 2);
}

TEST_F(AddDirectoryBoxTest, Cancel_AddsNothingAndKeepsTheSetting) {
    putSample("a.mp3");
    WriteSetting("Commondialog", "AddFiles", "/");
    AddDirectoryBox box(model);
    box.setDirPath(media.path());
    box.show();
    box.findChild<QPushButton*>("cmdCancel")->click();
    EXPECT_FALSE(box.isVisible());
    EXPECT_EQ(model.items.count(), 0);
    EXPECT_EQ(ReadSetting("Commondialog", "AddFiles"), "/");
}

TEST_F(AddDirectoryBoxTest, ChangingTheDrive_ShowsThatDrivesCurrentFolder) {
    QTemporaryDir other;
    ASSERT_TRUE(other.isValid());
    SetDriveRootsOverride({QStringLiteral("/"), media.path(), other.path()});
    putSample("inner/a.mp3");
    AddDirectoryBox box(model);
    box.setDrive(QDir::cleanPath(media.path()));
    box.setDirPath(media.filePath("inner"));
    box.setDrive(QDir::cleanPath(other.path()));
    EXPECT_EQ(box.dirPath(), QDir::cleanPath(other.path()));
    box.setDrive(QDir::cleanPath(media.path()));
    EXPECT_EQ(box.dirPath(), QDir::cleanPath(media.filePath("inner")));
}

TEST_F(AddDirectoryBoxTest, Picture_ShowsTheWindow) {
    WriteSetting("Commondialog", "AddFiles", "/usr/share");
    AddDirectoryBox box(model);
    box.findChild<QCheckBox*>("chkAddSubFolders")->setChecked(true);
    box.show();
    // The folder tree fills in the background.
    for (int i = 0; i < 40; ++i) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(10);
    }
    auto* tree = box.findChild<QTreeView*>("DirBox");
    EXPECT_EQ(box.dirPath(), "/usr/share");
    // The remembered folder is selected and in view.
    ASSERT_TRUE(tree->currentIndex().isValid());
    EXPECT_EQ(tree->currentIndex().data(Qt::DisplayRole).toString(), "share");
    EXPECT_TRUE(tree->isExpanded(tree->currentIndex().parent()));
    EXPECT_TRUE(tree->viewport()->rect().intersects(tree->visualRect(tree->currentIndex())))
        << tree->verticalScrollBar()->value() << " " << tree->visualRect(tree->currentIndex()).y();
    const QImage image = takePicture(box, "add-directory.png");
    EXPECT_EQ(image.size(), box.size() * box.devicePixelRatio());
    EXPECT_TRUE(hasContent(image));
}

}  // namespace
