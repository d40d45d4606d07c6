#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ListTestModel.h"
#include "app/IniFile.h"
#include "list/AddFilesModule.h"
#include "list/ReadAhead.h"
#include "platform/EventTurn.h"
#include "platform/FileHelpers.h"
#include "support/PlainUser.h"

namespace {

void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("data");
}

// Puts a scripted action in place of the event turn for one test.
class EventTurns {
public:
    explicit EventTurns(std::function<void(int)> action = {}) : action_(std::move(action)) {
        previous_ = setEventTurnHook([this] {
            ++count;
            if (action_) {
                action_(count);
            }
        });
    }
    ~EventTurns() { setEventTurnHook(previous_); }
    int count = 0;

private:
    std::function<void(int)> action_;
    std::function<void()> previous_;
};

// What the adding display showed: each new text of panel 2, and whether
// the overlay and the bar were ever shown.
struct DisplayLog {
    explicit DisplayLog(ListState& state) {
        QObject::connect(&state, &ListState::changed, [this, &state] {
            if (state.statusPanel2() != lastPanel) {
                lastPanel = state.statusPanel2();
                panels.append(lastPanel);
            }
            if (state.cancelOverlayVisible()) {
                overlayShown = true;
            }
            if (state.progressVisible()) {
                barShown = true;
            }
        });
    }
    QString lastPanel;
    QStringList panels;
    bool overlayShown = false;
    bool barShown = false;
};

void expectIdle(const ListState& state) {
    EXPECT_EQ(state.statusPanel2(), "");
    EXPECT_FALSE(state.cancelOverlayVisible());
    EXPECT_FALSE(state.progressVisible());
}

}  // namespace

TEST(AddFiles, CancelledDialog_ChangesNothing) {
    ListTestModel t;
    t.model.state.setCancelAddFiles(-1);
    t.model.state.setCountCaption("untouched");
    t.questions.cancelDialog();
    AddFiles(t.model);
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.countCaption(), "untouched");
    EXPECT_EQ(t.model.state.cancelAddFiles(), -1);
}

TEST(AddFiles, DialogIsSetUpForTheListType) {
    ListTestModel t;
    WriteSetting("Commondialog", "AddFiles", "/music/");
    t.questions.cancelDialog();
    AddFiles(t.model);
    NewItemList(t.model, "MPEG");
    t.questions.cancelDialog();
    AddFiles(t.model);
    ASSERT_EQ(t.questions.dialogsShown.size(), 2);
    const CommonDialog& mp3 = t.questions.dialogsShown.at(0);
    EXPECT_FALSE(t.questions.dialogWasSave.at(0));
    EXPECT_EQ(mp3.dialogTitle, "Add File(s)");
    EXPECT_EQ(mp3.initDir, "/music/");
    EXPECT_EQ(mp3.fileName, "");
    EXPECT_EQ(mp3.filter, "MP3 Files|*.mp3|All Files|*.*");
    EXPECT_EQ(mp3.flags, 2621956);
    EXPECT_EQ(mp3.maxFileSize, 32000);
    EXPECT_EQ(t.questions.dialogsShown.at(1).filter,
              "MPEG Files|*.mpg;*.mpeg;*.mpe;*.m2v;*.mp2;*.dat;*.vob|All Files|*.*");
}

TEST(AddFiles, UnknownListType_KeepsThePreviousFilter) {
    ListTestModel t;
    t.model.commonDialog.filter = "Earlier|*.x";
    t.model.state.setListType("mp3");
    t.questions.cancelDialog();
    AddFiles(t.model);
    EXPECT_EQ(t.questions.dialogsShown.first().filter, "Earlier|*.x");
}

TEST(AddFiles, OneFile_SingularCaptionNoTurnPathAsItStands) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("song.mp3"));
    DisplayLog log(t.model.state);
    EventTurns turns;
    t.model.state.setCancelAddFiles(-1);
    t.questions.chooseFile(dir.filePath("song.mp3"));
    AddFiles(t.model);
    EXPECT_EQ(turns.count, 0);
    EXPECT_EQ(log.panels, QStringList({"Adding File...", ""}));
    EXPECT_TRUE(log.overlayShown);
    EXPECT_TRUE(log.barShown);
    EXPECT_EQ(t.model.state.progressMax(), 1);
    EXPECT_EQ(t.model.state.progressValue(), 1);
    expectIdle(t.model.state);
    EXPECT_EQ(t.model.state.cancelAddFiles(), 0);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 3), dir.filePath("song.mp3"));
    EXPECT_EQ(t.model.items.cell(1, 0), "song.mp3");
    EXPECT_EQ(t.model.state.countCaption(), "1");
    // The folder of the file, with its trailing separator, is remembered.
    EXPECT_EQ(ReadSetting("Commondialog", "AddFiles"), dir.path() + "/");
}

TEST(AddFiles, SeveralFiles_AddedInOrderWithProgressAndTurns) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n : {"b.mp3", "a.mp3", "c.mp3"}) {
        touch(dir.filePath(n));
    }
    DisplayLog log(t.model.state);
    QList<int> valuesAtTurns;
    QList<int> rowsAtTurns;
    EventTurns turns([&](int) {
        valuesAtTurns.append(t.model.state.progressValue());
        rowsAtTurns.append(t.model.items.count());
        EXPECT_EQ(t.model.state.statusPanel2(), "Adding Files...");
        EXPECT_TRUE(t.model.state.cancelOverlayVisible());
        EXPECT_TRUE(t.model.state.progressVisible());
        EXPECT_EQ(t.model.state.progressMax(), 3);
    });
    t.questions.chooseFiles(dir.path(), {"b.mp3", "a.mp3", "c.mp3"});
    AddFiles(t.model);
    EXPECT_EQ(turns.count, 3);
    EXPECT_EQ(valuesAtTurns, QList<int>({1, 2, 3}));
    EXPECT_EQ(rowsAtTurns, QList<int>({1, 2, 3}));
    EXPECT_EQ(t.column(3),
              QStringList({dir.filePath("b.mp3"), dir.filePath("a.mp3"), dir.filePath("c.mp3")}));
    EXPECT_EQ(t.column(0), QStringList({"b.mp3", "a.mp3", "c.mp3"}));
    expectIdle(t.model.state);
    EXPECT_EQ(t.model.state.countCaption(), "3");
}

TEST(AddFiles, FolderPieceWithTrailingSeparator_GetsNoSecondOne) {
    ListTestModel t;
    EventTurns turns;
    t.questions.chooseFiles("/", {"x.mp3", "y.mp3"});
    AddFiles(t.model);
    EXPECT_EQ(t.column(3), QStringList({"/x.mp3", "/y.mp3"}));
}

TEST(AddFiles, CancelDuringTheLoop_KeepsRowsAddedSoFar) {
    ListTestModel t;
    QTemporaryDir dir;
    EventTurns turns([&](int n) {
        if (n == 2) {
            CancelAdding(t.model);
            expectIdle(t.model.state);
        }
    });
    t.questions.chooseFiles(dir.path(), {"1.mp3", "2.mp3", "3.mp3", "4.mp3"});
    AddFiles(t.model);
    EXPECT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.state.cancelAddFiles(), -1);
    EXPECT_EQ(t.model.state.countCaption(), "2");
    expectIdle(t.model.state);
}

TEST(AddFiles, SameFileTwice_GivesTwoRowsAndStatusUnaffected) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("same.mp3"));
    EventTurns turns;
    t.questions.chooseFiles(dir.path(), {"same.mp3", "same.mp3"});
    AddFiles(t.model);
    EXPECT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.items.cell(1, 3), t.model.items.cell(2, 3));
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(AddFiles, OtherKindOfFileThroughAllFiles_GetsARow) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("clip.mpg"));
    t.questions.chooseFile(dir.filePath("clip.mpg"));
    AddFiles(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 0), "clip.mpg");
}

TEST(FolderFileNames, MatchesWithoutCaseSortsWithoutCaseLeavesHiddenOut) {
    QTemporaryDir dir;
    for (const char* n : {"b.mp3", "A.MP3", "c.txt", ".hidden.mp3", "C.Mp3", "sub/d.mp3"}) {
        touch(dir.filePath(n));
    }
    QDir(dir.path()).mkdir("folder.mp3");
    EXPECT_EQ(FolderFileNames(dir.path(), "*.mp3"), QStringList({"A.MP3", "b.mp3", "C.Mp3"}));
}

TEST(FolderFileNames, NumberedNames_AreInNaturalOrder) {
    QTemporaryDir dir;
    const QStringList natural = {"1.mp3",           "2.mp3",       "9.mp3",
                                 "10.mp3",          "12.mp3",      "Disc 1 - 9.mp3",
                                 "Disc 1 - 10.mp3", "Track 2.mp3", "track 10.mp3"};
    for (const QString& name : natural) {
        touch(dir.filePath(name));
    }
    EXPECT_EQ(FolderFileNames(dir.path(), "*.mp3"), natural);
}

TEST(SubFolderPaths, NumberedFolders_AreInNaturalOrder) {
    QTemporaryDir dir;
    for (const char* n : {"Disc 10", "disc 2", "Disc 1"}) {
        QDir(dir.path()).mkdir(n);
    }
    EXPECT_EQ(
        SubFolderPaths(dir.path()),
        QStringList({dir.filePath("Disc 1"), dir.filePath("disc 2"), dir.filePath("Disc 10")}));
}

TEST(FolderFileNames, MpegPatterns_AllSevenExtensions) {
    QTemporaryDir dir;
    for (const char* n :
         {"1.mpg", "2.MPEG", "3.mpe", "4.m2v", "5.mp2", "6.dat", "7.VOB", "8.mp3", "9.avi"}) {
        touch(dir.filePath(n));
    }
    EXPECT_EQ(FolderFileNames(dir.path(), FolderPattern("MPEG")),
              QStringList({"1.mpg", "2.MPEG", "3.mpe", "4.m2v", "5.mp2", "6.dat", "7.VOB"}));
}

TEST(FolderFilePath, RootFolder_GivesTwoSeparatorsAndTheNameStillReads) {
    EXPECT_EQ(FolderFilePath("/", "x.mp3"), "//x.mp3");
    EXPECT_EQ(FolderFilePath("/music", "x.mp3"), "/music/x.mp3");
    ListTestModel t;
    EventTurns turns;
    AddDroppedFiles(t.model, {FolderFilePath("/", "x.mp3")});
    EXPECT_EQ(t.model.items.cell(1, 3), "//x.mp3");
    EXPECT_EQ(t.model.items.cell(1, 0), "x.mp3");
}

TEST(AddFiles, SeveralFiles_RememberTheTextUpToTheFirstCharacterZero) {
    ListTestModel t;
    QTemporaryDir dir;
    EventTurns turns;
    t.questions.chooseFiles(dir.path(), {"a.mp3", "b.mp3"});
    AddFiles(t.model);
    EXPECT_EQ(ReadSetting("Commondialog", "AddFiles"), dir.path());
}

TEST(AddFolderFiles, AddsMatchingFilesSortedWithProgress) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n : {"b.mp3", "A.mp3", "notes.txt"}) {
        touch(dir.filePath(n));
    }
    QList<int> values;
    EventTurns turns([&](int) {
        values.append(t.model.state.progressValue());
        EXPECT_EQ(t.model.state.progressMax(), 2);
        EXPECT_EQ(t.model.state.statusPanel2(), "Adding Files...");
    });
    t.model.state.setCancelAddFiles(-1);
    AddFolderFiles(t.model, dir.path());
    EXPECT_EQ(values, QList<int>({1, 2}));
    EXPECT_EQ(t.column(3), QStringList({dir.filePath("A.mp3"), dir.filePath("b.mp3")}));
    EXPECT_EQ(t.model.state.cancelAddFiles(), 0);
    EXPECT_EQ(t.model.state.countCaption(), "2");
    expectIdle(t.model.state);
}

TEST(AddFolderFiles, FolderWithoutMatches_NoDisplayNoRowsButTotals) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("clip.mpg"));
    DisplayLog log(t.model.state);
    t.model.state.setCountCaption("stale");
    t.model.state.setCancelAddFiles(-1);
    AddFolderFiles(t.model, dir.path());
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_FALSE(log.overlayShown);
    EXPECT_FALSE(log.barShown);
    EXPECT_EQ(t.model.state.countCaption(), "0");
    EXPECT_EQ(t.model.state.cancelAddFiles(), -1);  // the flag stays as it was
}

TEST(AddFolderFiles, EmptyPath_AddsNothingButTotals) {
    ListTestModel t;
    t.model.state.setCountCaption("stale");
    AddFolderFiles(t.model, "");
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.countCaption(), "0");
}

TEST(AddFolderFiles, FolderThatCannotBeListed_ListsThePreviousFolderAgain) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("a.mp3"));
    EventTurns turns;
    AddFolderFiles(t.model, dir.path());
    AddFolderFiles(t.model, dir.filePath("no-such-folder"));
    EXPECT_EQ(t.column(3), QStringList({dir.filePath("a.mp3"), dir.filePath("a.mp3")}));
}

TEST(AddFolderFiles, MpegList_UsesTheMpegPattern) {
    ListTestModel t("MPEG");
    QTemporaryDir dir;
    for (const char* n : {"a.mp3", "b.mpg", "c.VOB", "d.dat"}) {
        touch(dir.filePath(n));
    }
    EventTurns turns;
    AddFolderFiles(t.model, dir.path());
    EXPECT_EQ(t.column(0), QStringList({"b.mpg", "c.VOB", "d.dat"}));
}

TEST(AddFolderFiles, Cancel_EndsTheFolderAndUpdatesTotals) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n : {"1.mp3", "2.mp3", "3.mp3"}) {
        touch(dir.filePath(n));
    }
    EventTurns turns([&](int n) {
        if (n == 1) {
            CancelAdding(t.model);
        }
    });
    AddFolderFiles(t.model, dir.path());
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.countCaption(), "1");
    expectIdle(t.model.state);
}

TEST(AddFolderTree, FolderFilesBeforeSubfoldersDepthFirst) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n : {"a.mp3", "Sub1/b.mp3", "Sub1/deeper/c.mp3", "sub2/d.mp3", ".hidden/e.mp3",
                          "sub2/.f.mp3"}) {
        touch(dir.filePath(n));
    }
    EventTurns turns;
    AddFolderTree(t.model, dir.path());
    EXPECT_EQ(t.column(0), QStringList({"a.mp3", "b.mp3", "c.mp3", "d.mp3"}));
    EXPECT_EQ(t.model.items.cell(3, 3), dir.filePath("Sub1/deeper/c.mp3"));
}

TEST(AddFolderTree, LinkedFolder_IsNotWalked) {
    ListTestModel t;
    QTemporaryDir dir;
    touch(dir.filePath("top/a.mp3"));
    ASSERT_TRUE(QFile::link(dir.filePath("top"), dir.filePath("top/loop")));
    EventTurns turns;
    AddFolderTree(t.model, dir.filePath("top"));
    EXPECT_EQ(t.column(0), QStringList({"a.mp3"}));
}

TEST(AddFolderTree, UnreadableSubfolder_IsSkippedAndEveryOtherFileAddedOnce) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n : {"a.mp3", "Sub1/b.mp3", "Sub1/deeper/c.mp3", "Sub2/hidden.mp3",
                          "Sub2/inner/x.mp3", "Sub3/d.mp3"}) {
        touch(dir.filePath(n));
    }
    // The temporary folder open to all, Sub2 closed to all.
    const QFileDevice::Permissions open = QFile::permissions(dir.path()) | QFile::ReadOther |
                                          QFile::ExeOther | QFile::ReadGroup | QFile::ExeGroup;
    for (const char* n : {"", "Sub1", "Sub1/deeper", "Sub3"}) {
        QFile::setPermissions(dir.filePath(n), open);
    }
    QFile::setPermissions(dir.filePath("Sub2"), QFileDevice::Permissions());
    EventTurns turns;
    {
        PlainUser user;
        ASSERT_TRUE(FolderCanBeListed(dir.filePath("Sub1"))) << "the temporary folder is closed";
        ASSERT_FALSE(FolderCanBeListed(dir.filePath("Sub2")))
            << "this user can read a folder of mode 000";
        AddFolderTree(t.model, dir.path());
    }
    QFile::setPermissions(dir.filePath("Sub2"), open);
    EXPECT_EQ(t.column(0), QStringList({"a.mp3", "b.mp3", "c.mp3", "d.mp3"}));
    EXPECT_EQ(t.model.state.countCaption(), "4");
}

TEST(AddFolderTree, NotAFolder_DoesNothing) {
    ListTestModel t;
    t.model.state.setCountCaption("untouched");
    AddFolderTree(t.model, "/no/such/folder");
    EXPECT_EQ(t.model.state.countCaption(), "untouched");
}

TEST(AddFolderTree, CancelInFirstOfThreeFolders_OtherTwoAreAdded) {
    ListTestModel t;
    QTemporaryDir dir;
    for (const char* n :
         {"f1/a1.mp3", "f1/a2.mp3", "f1/a3.mp3", "f1/f2/b1.mp3", "f1/f2/b2.mp3", "f1/f3/c1.mp3"}) {
        touch(dir.filePath(n));
    }
    EventTurns turns([&](int n) {
        if (n == 1) {
            CancelAdding(t.model);
        }
    });
    AddFolderTree(t.model, dir.filePath("f1"));
    EXPECT_EQ(t.column(0), QStringList({"a1.mp3", "b1.mp3", "b2.mp3", "c1.mp3"}));
    expectIdle(t.model.state);
    EXPECT_EQ(t.model.state.countCaption(), "4");
}

TEST(AddDroppedFiles, SingleFile_ShowsThePluralCaption) {
    ListTestModel t;
    DisplayLog log(t.model.state);
    EventTurns turns;
    AddDroppedFiles(t.model, {"/m/a.mp3"});
    EXPECT_EQ(log.panels, QStringList({"Adding Files...", ""}));
    EXPECT_EQ(turns.count, 1);
    expectIdle(t.model.state);
}

TEST(AddDroppedFiles, AnyPathBecomesARowInOrder) {
    ListTestModel t("MPEG");
    QTemporaryDir dir;
    touch(dir.filePath("x.mp3"));
    EventTurns turns;
    AddDroppedFiles(t.model,
                    {dir.filePath("x.mp3"), dir.path(), "/gone/y.mpg", dir.filePath("x.mp3")});
    EXPECT_EQ(t.column(3), QStringList({dir.filePath("x.mp3"), dir.path(), "/gone/y.mpg",
                                        dir.filePath("x.mp3")}));
    EXPECT_EQ(t.model.state.countCaption(), "4");
}

TEST(AddDroppedFiles, FlagIsResetEachPass_CancelInATurnEndsTheLoop) {
    ListTestModel t;
    t.model.state.setCancelAddFiles(-1);
    EventTurns turns([&](int n) {
        if (n == 2) {
            CancelAdding(t.model);
        }
    });
    AddDroppedFiles(t.model, {"/m/1", "/m/2", "/m/3"});
    EXPECT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.state.countCaption(), "2");
}

TEST(AddFiles, CancelDuringAParallelFill_NoLaterRowAndNoWorkerLeftRunning) {
    ListTestModel t;
    QTemporaryDir dir;
    // Real MP3 frames would take longer; the reads ahead need only be running.
    for (int i = 1; i <= 120; ++i) {
        touch(dir.filePath(QStringLiteral("%1.mp3").arg(i, 3, 10, QChar('0'))));
    }
    int readsRunningAtCancel = -1;
    EventTurns turns([&](int n) {
        if (n == 5) {
            readsRunningAtCancel = ReadAhead::runningReads();
            CancelAdding(t.model);
        }
    });
    AddFolderFiles(t.model, dir.path());
    EXPECT_EQ(ReadAhead::runningReads(), 0);
    ASSERT_EQ(t.model.items.count(), 5);
    for (int row = 1; row <= 5; ++row) {
        const QString name = QStringLiteral("%1.mp3").arg(row, 3, 10, QChar('0'));
        EXPECT_EQ(t.model.items.cell(row, 0), name);
        EXPECT_EQ(t.model.items.cell(row, 3), dir.filePath(name));
        EXPECT_EQ(t.model.items.cell(row, 1), "1 KB");
    }
    EXPECT_EQ(t.model.state.countCaption(), "5");
    EXPECT_GE(readsRunningAtCancel, 0);
    // Nothing is added after the loop has returned.
    QCoreApplication::processEvents();
    EXPECT_EQ(t.model.items.count(), 5);
}

TEST(AddFiles, ListTypeChangedInATurn_LaterRowsAreReadForTheNewType) {
    ListTestModel t;
    QTemporaryDir dir;
    for (int i = 1; i <= 6; ++i) {
        touch(dir.filePath(QStringLiteral("%1.mp3").arg(i)));
    }
    EventTurns turns([&](int n) {
        if (n == 2) {
            // What the Change link does to an emptied list.
            t.model.items.clearRows();
            NewItemList(t.model, QStringLiteral("MPEG"));
        }
    });
    AddFolderFiles(t.model, dir.path());
    ASSERT_EQ(t.model.items.count(), 4);
    // Read as MPEG files: no video, so the size cell is "0x0".
    EXPECT_EQ(t.model.items.cell(1, 5), "0x0");
    EXPECT_EQ(t.model.items.cell(4, 6), "0 seconds");
}
