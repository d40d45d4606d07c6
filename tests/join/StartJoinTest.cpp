#include <gtest/gtest.h>

#include <QFileInfo>
#include <QStorageInfo>

#include "ScriptTestSupport.h"
#include "app/IniFile.h"
#include "join/JoinScripts.h"
#include "join/ShDialect.h"
#include "join/StartJoin.h"
#include "list/FillListItem.h"
#include "list/ListTotals.h"
#include "support/OwnMountTable.h"
#include "support/TestEnvironment.h"

namespace {

const QString kRedText =
    "Unable to join one or more files!\r\nPlease, check your list for incompatible files.\r\n\r\n"
    "Tip: click the 'Red' icon in the bottom right corner for more information.";
const QString kToolsText =
    "An error occurred!\r\nVelmora cannot load one or more required files.\r\n\r\n"
    "Please, re-install Velmora to fix this problem.";
const QString kOverwrite = "Would you like to overwrite the existing file?";

class StartJoinTest : public ::testing::Test {
protected:
    void SetUp() override {
        bed.putDummyTools();
        outFolder = bed.dir.path() + "/out/";
        QDir().mkpath(outFolder);
        output = outFolder + "Joined.mp3";
        bed.makeMp3List({bed.media + "/one.mp3", bed.media + "/two.mp3"});
        bed.model.state.setListStatusText("Green");
        bed.model.state.setSizeCaption("1,000 KB");
        freeKb = 1'000'000;
        SetFreeBytesSource([this](QString& root) {
            askedRoots << root;
            return freeKb * 1024.0;
        });
    }
    void TearDown() override { SetFreeBytesSource({}); }

    ScriptedQuestions& questions() { return bed.questions; }
    QString app(const QString& name) const { return bed.appData + u'/' + name; }
    QString storedFolder() { return ReadSetting("Commondialog", "JoinFiles"); }

    ScriptTestBed bed;
    QString outFolder;
    QString output;
    double freeKb = 0;
    QStringList askedRoots;
};

// ---- the refusals before the dialog ----

TEST_F(StartJoinTest, WhileAddingFiles_AsksForPatienceFirstEvenWithOneItem) {
    bed.model.state.setProgressVisible(true);
    bed.makeMp3List({bed.media + "/one.mp3"});
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "Adding Files. Please be patient!");
    EXPECT_EQ(questions().asked[0].style, Msg::OkOnly + Msg::Information);
    EXPECT_TRUE(questions().asked[0].title.isEmpty());
    EXPECT_TRUE(questions().dialogsShown.isEmpty());
}

TEST_F(StartJoinTest, OneItem_AsksForTwoFiles) {
    bed.makeMp3List({bed.media + "/one.mp3"});
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "Please, Add at least 2 files to your list.");
    EXPECT_EQ(questions().asked[0].style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_TRUE(questions().dialogsShown.isEmpty());
}

TEST_F(StartJoinTest, EmptyRedList_AsksForTwoFilesBeforeTheRedText) {
    bed.makeMp3List({});
    bed.model.state.setListStatusText("Red");
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "Please, Add at least 2 files to your list.");
}

TEST_F(StartJoinTest, RedList_ShowsTheRedTextWithItsTipAndNeverTheDialog) {
    bed.model.state.setListStatusText("Red");
    questions().chooseFile(output);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, kRedText);
    EXPECT_EQ(questions().asked[0].style, Msg::OkOnly + Msg::Critical);
    EXPECT_TRUE(questions().dialogsShown.isEmpty());
    EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, OrangeList_PassesWithoutAWordAndWritesTheScripts) {
    bed.model.state.setListStatusText("Orange");
    questions().chooseFile(output);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_TRUE(questions().asked.isEmpty());
    EXPECT_EQ(bed.model.commonDialog.fileName, output);
    EXPECT_TRUE(QFile::exists(app("TempFile.bat")));
    EXPECT_TRUE(QFile::exists(app("MP3.bat")));
    EXPECT_TRUE(QFile::exists(app("MP3.exe")));
    EXPECT_TRUE(ScriptTestBed::readFile(app("TempFile.bat"))
                    .contains(ShDialect::quote(output + ".vlr.mp3").toUtf8()));
}

// ---- the dialog and the settings key ----

TEST_F(StartJoinTest, Dialog_IsASaveDialogPreparedForTheListType) {
    WriteSetting("Commondialog", "JoinFiles", outFolder);
    bed.model.commonDialog.fileName = "left over";
    bed.model.commonDialog.filter = "old";
    EXPECT_FALSE(StartJoin(bed.model));  // cancelled
    ASSERT_EQ(questions().dialogsShown.size(), 1);
    EXPECT_TRUE(questions().dialogWasSave[0]);
    const CommonDialog& shown = questions().dialogsShown[0];
    EXPECT_EQ(shown.dialogTitle, "Create Output File");
    EXPECT_EQ(shown.initDir, outFolder);
    EXPECT_TRUE(shown.fileName.isEmpty());
    EXPECT_EQ(shown.filter, "MP3 File|*.mp3");
    EXPECT_EQ(shown.flags, 4);

    bed.makeMpegList({bed.media + "/a.mpg", bed.media + "/b.mpg"}, "MPEG-1V");
    StartJoin(bed.model);
    EXPECT_EQ(questions().dialogsShown[1].filter, "MPEG File|*.mpg");
}

TEST_F(StartJoinTest, CancelledDialog_EndsWithoutTouchingTheSettingsKey) {
    questions().cancelDialog();
    EXPECT_FALSE(StartJoin(bed.model));
    EXPECT_TRUE(storedFolder().isEmpty());
    EXPECT_FALSE(QFile::exists(bed.appData + "/Settings.ini") &&
                 ScriptTestBed::readFile(bed.appData + "/Settings.ini").contains("JoinFiles"));
    EXPECT_TRUE(questions().asked.isEmpty());
}

TEST_F(StartJoinTest, ChosenFolder_IsStoredWithItsTrailingSeparator) {
    questions().chooseFile(output);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_EQ(storedFolder(), outFolder);
}

TEST_F(StartJoinTest, FolderNamedLikeTheFile_LosesThatNameToo) {
    const QString folder = bed.dir.path() + "/Joined.mp3/";
    QDir().mkpath(folder);
    questions().chooseFile(folder + "Joined.mp3");
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_EQ(storedFolder(), bed.dir.path() + "//");
}

// ---- the overwrite loop ----

TEST_F(StartJoinTest, ExistingFile_YesDeletesItAndTheJoinGoesOn) {
    ScriptTestBed::writeFile(output, "old output");
    questions().chooseFile(output);
    questions().answer(Msg::Yes);
    EXPECT_TRUE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, kOverwrite);
    EXPECT_EQ(questions().asked[0].title, "File Already Exists!");
    EXPECT_EQ(questions().asked[0].style, Msg::YesNo + Msg::Exclamation);
    EXPECT_FALSE(QFile::exists(output));
}

TEST_F(StartJoinTest, ExistingFile_NoShowsTheDialogAgainAndANewPathIsUsed) {
    ScriptTestBed::writeFile(output, "old output");
    const QString other = bed.dir.path() + "/elsewhere/Other.mp3";
    QDir().mkpath(bed.dir.path() + "/elsewhere");
    questions().chooseFile(output);
    questions().answer(Msg::No);
    questions().chooseFile(other);
    EXPECT_TRUE(StartJoin(bed.model));
    ASSERT_EQ(questions().dialogsShown.size(), 2);
    EXPECT_TRUE(questions().dialogWasSave[1]);
    // The second dialog keeps title, folder and filter, with an empty file name.
    EXPECT_EQ(questions().dialogsShown[1].dialogTitle, "Create Output File");
    EXPECT_EQ(questions().dialogsShown[1].filter, "MP3 File|*.mp3");
    EXPECT_TRUE(questions().dialogsShown[1].fileName.isEmpty());
    EXPECT_EQ(bed.model.commonDialog.fileName, other);
    EXPECT_EQ(ScriptTestBed::readFile(output), "old output");
    // A path chosen in the loop does not move the stored folder.
    EXPECT_EQ(storedFolder(), outFolder);
}

TEST_F(StartJoinTest, ExistingFile_NoThenCancel_EndsAfterTheKeyWasWritten) {
    ScriptTestBed::writeFile(output, "old output");
    questions().chooseFile(output);
    questions().answer(Msg::No);
    questions().cancelDialog();
    EXPECT_FALSE(StartJoin(bed.model));
    EXPECT_EQ(storedFolder(), outFolder);
    EXPECT_EQ(ScriptTestBed::readFile(output), "old output");
    EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, ExistingFile_NoThenAnotherExistingFile_AsksAgain) {
    const QString second = outFolder + "Second.mp3";
    ScriptTestBed::writeFile(output, "old output");
    ScriptTestBed::writeFile(second, "second");
    questions().chooseFile(output);
    questions().answer(Msg::No);
    questions().chooseFile(second);
    questions().answer(Msg::Yes);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_EQ(questions().asked.size(), 2);
    EXPECT_TRUE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(second));
}

TEST_F(StartJoinTest, FolderAtTheChosenPath_IsNeverDeletedAndAskedAgain) {
    QDir().mkpath(output);
    ScriptTestBed::writeFile(output + "/inside.txt", "keep");
    questions().chooseFile(output);
    questions().answer(Msg::Yes);
    questions().answer(Msg::No);
    questions().cancelDialog();
    EXPECT_FALSE(StartJoin(bed.model));
    EXPECT_EQ(questions().asked.size(), 2);
    EXPECT_EQ(ScriptTestBed::readFile(output + "/inside.txt"), "keep");
}

TEST_F(StartJoinTest, ListItemAsOutputFile_IsDeletedByYesLikeAnyFile) {
    const QString item = bed.media + "/one.mp3";
    ScriptTestBed::writeFile(item, "item");
    questions().chooseFile(item);
    questions().answer(Msg::Yes);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_FALSE(QFile::exists(item));
}

// ---- free space ----

TEST_F(StartJoinTest, FreeSpace_TwiceTheListIsNeeded_OneKbShortWarns) {
    freeKb = 1999;
    questions().chooseFile(output);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    const QString drive = DriveTextOf(output);
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "You do not have enough free diskspace on drive " +
                                               drive + ".\r\nWould you like to continue?");
    EXPECT_EQ(questions().asked[0].style, Msg::YesNo + Msg::Critical);
    EXPECT_EQ(askedRoots, QStringList{drive});
    EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, FreeSpace_ExactlyTwiceTheListPasses) {
    freeKb = 2000;
    questions().chooseFile(output);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_TRUE(questions().asked.isEmpty());
}

TEST_F(StartJoinTest, FreeSpace_YesGoesOnWithTheJoin) {
    freeKb = 10;
    questions().chooseFile(output);
    questions().answer(Msg::Yes);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_EQ(questions().asked.size(), 1);
    EXPECT_TRUE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, FreeSpace_UnderHalfAKb_Warns) {
    for (const double kb : {0.0, 0.4}) {
        freeKb = kb;
        questions().asked.clear();
        questions().chooseFile(output);
        questions().answer(Msg::No);
        EXPECT_FALSE(StartJoin(bed.model)) << kb;
        ASSERT_EQ(questions().asked.size(), 1) << kb;
        EXPECT_TRUE(questions().asked[0].prompt.startsWith("You do not have enough")) << kb;
    }
}

TEST_F(StartJoinTest, FreeSpace_MoreThanTwoTebibytesFree_PassesWithoutAWord) {
    // 3 TiB and 2 TiB + 1 KB free: figures beyond 32 bits of KB.
    for (const double kb : {3.0 * 1024 * 1024 * 1024, 2147483648.0 + 1, 1e18}) {
        freeKb = kb;
        questions().asked.clear();
        questions().chooseFile(output);
        EXPECT_TRUE(StartJoin(bed.model)) << kb;
        EXPECT_TRUE(questions().asked.isEmpty()) << kb;
        QFile::remove(app("TempFile.bat"));
    }
}

TEST_F(StartJoinTest, FreeSpace_BigListOnATebibyteDisk_IsComparedInFull) {
    // A list of 3 TiB needs 6 TiB; 5 TiB free is too little.
    bed.model.state.setSizeCaption("3,221,225,472 KB");
    freeKb = 5.0 * 1024 * 1024 * 1024;
    questions().chooseFile(output);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_TRUE(questions().asked[0].prompt.startsWith("You do not have enough"));
}

TEST_F(StartJoinTest, FreeSpace_YesToOverwriteThenNo_LeavesTheOldFileGone) {
    ScriptTestBed::writeFile(output, "old output");
    freeKb = 1;
    questions().chooseFile(output);
    questions().answer(Msg::Yes);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    EXPECT_FALSE(QFile::exists(output));
    EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, FreeSpace_ByDefaultAsksTheFileSystemOfTheOutput) {
    SetFreeBytesSource({});
    bed.model.state.setSizeCaption("1 KB");
    questions().chooseFile(output);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_TRUE(questions().asked.isEmpty());

    // A list larger than any disk here gets the warning from the real figure.
    bed.model.state.setSizeCaption("2,000,000,000 KB");
    questions().chooseFile(output);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_TRUE(questions().asked[0].prompt.contains("drive " + DriveTextOf(output) + "."));
}

TEST(DriveTextOf, IsTheMountPointWithASeparator) {
    QTemporaryDir dir;
    QString root = QStorageInfo(dir.path()).rootPath();
    if (!root.endsWith(u'/')) {
        root += u'/';
    }
    EXPECT_EQ(DriveTextOf(dir.path() + "/file.mp3"), root);
    // A folder that does not exist yet is measured where it would be made.
    EXPECT_EQ(DriveTextOf(dir.path() + "/not/yet/file.mp3"), root);
    EXPECT_EQ(DriveTextOf("/file.mp3"), QStorageInfo("/").rootPath());
}

// Two files of 3 GiB (a real MP3 that runs on as a hole: no disk is used)
// need 12 GiB: the sizes and the free bytes are counted beyond 32 bits.
TEST_F(StartJoinTest, FreeSpace_ListOfThreeGibibyteFiles_NeedsTwiceTheirWholeSize) {
    for (int position = 1; position <= 2; ++position) {
        const QString item = bed.model.items.cell(position, 3);
        ASSERT_TRUE(QFile::copy(SampleMediaFolder() + "/mimetype-mp3.mp3", item));
        ASSERT_TRUE(QFile::resize(item, qint64{3} << 30));
        FillListItem(bed.model, position);
    }
    UpdateListTotals(bed.model);
    ASSERT_EQ(bed.model.items.cell(1, 1), "3,145,728 KB");
    ASSERT_EQ(bed.model.state.sizeCaption(), "6,291,456 KB");

    freeKb = 12'582'911;
    questions().chooseFile(output);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_TRUE(questions().asked[0].prompt.startsWith("You do not have enough free diskspace"));

    freeKb = 12'582'912;
    questions().asked.clear();
    questions().chooseFile(output);
    EXPECT_TRUE(StartJoin(bed.model));
    EXPECT_TRUE(questions().asked.isEmpty());
}

TEST_F(StartJoinTest, FreeSpace_OutputOnANetworkShare_IsMeasuredAtTheSharesMountPoint) {
    // A mount table in which folders of the test are network shares: SMB,
    // NFS (a mount point with a blank) and sshfs.
    const QString smb = bed.dir.path() + "/nas";
    const QString nfs = bed.dir.path() + "/video share";
    const QString ssh = bed.dir.path() + "/ssh";
    QDir().mkpath(smb + "/Music");
    QDir().mkpath(nfs);
    QDir().mkpath(ssh);
    const OwnMountTable table({{smb, "cifs", "//fileserver/music"},
                               {nfs, "nfs4", "nas:/export/video"},
                               {ssh, "fuse.sshfs", "me@host:/srv"}});
    EXPECT_EQ(DriveTextOf(nfs + "/Films/joined.mpg"), nfs + "/");
    EXPECT_EQ(DriveTextOf(ssh + "/joined.mp3"), ssh + "/");
    EXPECT_EQ(DriveTextOf(outFolder + "Joined.mp3"), "/");

    const QString onShare = smb + "/Music/Joined.mp3";
    freeKb = 1999;
    questions().chooseFile(onShare);
    questions().answer(Msg::No);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "You do not have enough free diskspace on drive " + smb +
                                               "/.\r\nWould you like to continue?");
    EXPECT_EQ(askedRoots, QStringList{smb + "/"});
}

// ---- the tools ----

TEST_F(StartJoinTest, MissingTool_RefusesWithTheReinstallText) {
    for (const char* name : {"MP3.dll", "MPEG.dll", "MPEG2.dll"}) {
        bed.putDummyTools();
        QFile::remove(bed.install + u'/' + QLatin1String(name));
        questions().asked.clear();
        questions().chooseFile(output);
        EXPECT_FALSE(StartJoin(bed.model)) << name;
        ASSERT_EQ(questions().asked.size(), 1) << name;
        EXPECT_EQ(questions().asked[0].prompt, kToolsText);
        EXPECT_EQ(questions().asked[0].style, Msg::OkOnly + Msg::Critical);
        EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
    }
}

TEST_F(StartJoinTest, MissingTool_ComesAfterTheFreeSpaceQuestion) {
    QFile::remove(bed.install + "/MPEG2.dll");
    freeKb = 1;
    questions().chooseFile(output);
    questions().answer(Msg::Yes);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 2);
    EXPECT_TRUE(questions().asked[0].prompt.startsWith("You do not have enough"));
    EXPECT_EQ(questions().asked[1].prompt, kToolsText);
}

// ---- the records ----

TEST_F(StartJoinTest, DebugLog_HoldsEveryRowCellByCellThenTheScriptRecords) {
    const QString logFile = bed.dir.path() + "/log.log";
    StartLogging(logFile, 2);
    bed.model.items.setCell(1, 4, "Artist A");
    bed.model.items.setCell(2, 11, "44100");
    questions().chooseFile(output);
    ASSERT_TRUE(StartJoin(bed.model));
    QStringList records = QString::fromUtf8(ScriptTestBed::readFile(logFile)).split(u'\n');
    records.removeLast();
    ASSERT_EQ(records.size(), 4);
    EXPECT_EQ(records[0], "one.mp3|1 KB||" + bed.media + "/one.mp3|Artist A||||||||");
    EXPECT_EQ(records[1], "two.mp3|1 KB||" + bed.media + "/two.mp3||||||||44100|");
    EXPECT_EQ(records[2], "TempFile=" + output + ".vlr.mp3");
    EXPECT_EQ(records[3], "1BAT={ cat '" + bed.media + "/two.mp3' >&3 < /dev/null; } 2> '" +
                              bed.appData + "/JoinStep.log' || { echo \"$?\" 2 > '" + bed.appData +
                              "/JoinStep.failed'; rmdir '" + bed.appData + "/JoinTemp'; exit 1; }");
}

TEST_F(StartJoinTest, DebugLog_EmptyListNeverReachesTheItemRecords) {
    const QString logFile = bed.dir.path() + "/log.log";
    StartLogging(logFile, 2);
    bed.makeMp3List({});
    // Even a list that reads Green and a dialog with an answer ready: the
    // count check comes first and ends the pre-flight.
    bed.model.state.setListStatusText("Green");
    questions().chooseFile(output);
    EXPECT_FALSE(StartJoin(bed.model));
    ASSERT_EQ(questions().asked.size(), 1);
    EXPECT_EQ(questions().asked[0].prompt, "Please, Add at least 2 files to your list.");
    EXPECT_TRUE(questions().dialogsShown.isEmpty());
    EXPECT_TRUE(ScriptTestBed::readFile(logFile).isEmpty());
    EXPECT_FALSE(QFile::exists(app("TempFile.bat")));
}

TEST_F(StartJoinTest, DebugLog_RefusedJoinWritesNoRecord) {
    const QString logFile = bed.dir.path() + "/log.log";
    StartLogging(logFile, 2);
    questions().cancelDialog();
    EXPECT_FALSE(StartJoin(bed.model));
    EXPECT_TRUE(ScriptTestBed::readFile(logFile).isEmpty());
}

}  // namespace
