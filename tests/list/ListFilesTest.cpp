#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ListTestModel.h"
#include "app/IniFile.h"
#include "support/FileSizeLimit.h"
#include "support/PlainUser.h"

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return "<missing>";
    }
    return f.readAll();
}

void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// Opens the file through the dialog and expects the one refusal message.
void ExpectRefusedAsInvalid(ListTestModel& t, const QString& path) {
    t.questions.chooseFile(path);
    OpenList(t.model);
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_EQ(t.questions.asked.first().prompt, "Unable to open; Invalid File!");
}

QStringList rowCells(const ItemList& items, int row) {
    QStringList cells;
    for (int i = 0; i < items.headerCount(); ++i) {
        cells.append(items.cell(row, i));
    }
    return cells;
}

const QStringList kRowA = {"a.mp3",        "4,211 KB", "3/4/2021 9:15:02 PM",
                           "/music/a.mp3", "Artist A", "Title A",
                           "Album A",      "1999",     "Rock",
                           "61 seconds",   "128 kbps", "44100 (Stereo)"};
const QStringList kRowB = {
    "b.mp3",     "1 KB",     "3/4/2021 9:15:03 PM", "/music/b.mp3", "", "", "", "", "",
    "2 seconds", "320 kbps", "44100 (Stereo)"};

}  // namespace

TEST(NewItemList, Mp3_SetsTitleTypeColumnsImageAndTotals) {
    ListTestModel t;
    t.addRow(kRowA);
    t.model.state.setListFileName("/x/old.vlr");
    NewItemList(t.model, "MP3");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (Untitled List)");
    EXPECT_EQ(t.model.state.listFileName(), "");
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.listType(), "MP3");
    EXPECT_EQ(t.model.state.typeImage(), ListState::Picture::MP3);
    EXPECT_EQ(t.model.items.headerCount(), 12);
    EXPECT_EQ(t.model.state.listStatus(), "Red");
    EXPECT_EQ(t.model.state.countCaption(), "0");
}

TEST(NewItemList, Mpeg_SetsSevenColumnsAndMpegImage) {
    ListTestModel t;
    NewItemList(t.model, "MPEG");
    EXPECT_EQ(t.model.state.listType(), "MPEG");
    EXPECT_EQ(t.model.state.typeImage(), ListState::Picture::MPEG);
    EXPECT_EQ(t.model.items.headerCount(), 7);
}

TEST(SaveList, EmptyList_WritesTheTwoLines) {
    ListTestModel t;
    const QString path = t.appData.filePath("empty.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    EXPECT_EQ(readAll(path), QByteArray("VLR List v1.0\r\n<MP3>\r\n"));
}

TEST(SaveList, Rows_AreWrittenByteForByte) {
    ListTestModel t;
    t.addRow(kRowA);
    t.addRow(kRowB);
    const QString path = t.appData.filePath("two.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    EXPECT_EQ(readAll(path),
              QByteArray("VLR List v1.0\r\n<MP3>\r\n"
                         "a.mp3|4,211 KB|3/4/2021 9:15:02 PM|/music/a.mp3|Artist A|Title A|"
                         "Album A|1999|Rock|61 seconds|128 kbps|44100 (Stereo)\r\n"
                         "b.mp3|1 KB|3/4/2021 9:15:03 PM|/music/b.mp3||||||2 seconds|320 kbps|"
                         "44100 (Stereo)\r\n"));
}

TEST(SaveList, NonAsciiCells_AreUtf8) {
    ListTestModel t("MPEG");
    t.addMpeg(QString::fromUtf8("/v/Überfahrt é.mpg"), "1 KB", "MPEG-1V", "1x1", "1 seconds");
    const QString path = t.appData.filePath("u.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    EXPECT_TRUE(readAll(path).contains(QString::fromUtf8("|/v/Überfahrt é.mpg|").toUtf8()));
    EXPECT_TRUE(readAll(path).startsWith("VLR List v1.0\r\n<MPEG>\r\n"));
}

TEST(SaveList, Untitled_AsksWithTheSaveDialog) {
    ListTestModel t;
    WriteSetting("Commondialog", "SaveList", "/some/folder/");
    const QString path = t.appData.filePath("l.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    ASSERT_EQ(t.questions.dialogsShown.size(), 1);
    EXPECT_TRUE(t.questions.dialogWasSave.first());
    const CommonDialog& shown = t.questions.dialogsShown.first();
    EXPECT_EQ(shown.dialogTitle, "Save List");
    EXPECT_EQ(shown.initDir, "/some/folder/");
    EXPECT_EQ(shown.fileName, "");
    EXPECT_EQ(shown.filter, "VLR Files|*.vlr");
    EXPECT_EQ(shown.flags, 4);
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (l.vlr)");
    EXPECT_EQ(t.model.state.listFileName(), path);
    EXPECT_EQ(ReadSetting("Commondialog", "SaveList"), t.appData.path() + "/");
}

TEST(SaveList, SameFolderAsBefore_IsNotWrittenAgain) {
    ListTestModel t;
    WriteSetting("Commondialog", "SaveList", t.appData.path() + "/");
    QFile::remove(SettingsFile());
    // The dialog opened in the folder it was given: nothing to remember, so
    // the settings file isn't even created.
    t.questions.onDialog([&](CommonDialog& d) {
        d.initDir = t.appData.path() + "/";
        d.fileName = t.appData.filePath("l.vlr");
        d.fileTitle = "l.vlr";
    });
    SaveList(t.model, 0);
    EXPECT_FALSE(QFile::exists(SettingsFile()));
}

TEST(SaveList, CancelledDialog_WritesNothingAndKeepsTitle) {
    ListTestModel t;
    t.questions.cancelDialog();
    SaveList(t.model, 0);
    EXPECT_EQ(t.model.commonDialog.fileName, "");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (Untitled List)");
    EXPECT_EQ(t.model.state.listFileName(), "");
    EXPECT_TRUE(QDir(t.appData.path()).entryList({"*.vlr"}).isEmpty());
}

TEST(SaveList, PlainSaveOfNamedList_WritesOverWithoutDialog) {
    ListTestModel t;
    const QString path = t.appData.filePath("named.vlr");
    writeBytes(path, "old content");
    t.model.state.setListFileName(path);
    t.addRow(kRowB);
    SaveList(t.model, 0);
    EXPECT_TRUE(t.questions.dialogsShown.isEmpty());
    EXPECT_EQ(t.model.commonDialog.fileName, path);
    EXPECT_TRUE(readAll(path).startsWith("VLR List v1.0\r\n<MP3>\r\nb.mp3|"));
}

TEST(SaveList, SaveAs_AsksEvenForANamedList) {
    ListTestModel t;
    t.model.state.setListFileName(t.appData.filePath("named.vlr"));
    const QString other = t.appData.filePath("other.vlr");
    t.questions.chooseFile(other);
    SaveList(t.model, -1);
    EXPECT_EQ(t.questions.dialogsShown.size(), 1);
    EXPECT_EQ(t.model.state.listFileName(), other);
    EXPECT_FALSE(QFile::exists(t.appData.filePath("named.vlr")));
}

TEST(SaveList, NameWithoutExtension_IsWrittenAsGiven) {
    ListTestModel t;
    const QString path = t.appData.filePath("mylist");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_FALSE(QFile::exists(path + ".vlr"));
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (mylist)");
}

TEST(SaveList, UnwritablePath_SaysWhyAndKeepsNameAndTitle) {
    ListTestModel t;
    t.model.state.setWindowTitle("Velmora - (Untitled)");
    const QString path = t.appData.filePath("no/such/folder/l.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    ASSERT_EQ(t.questions.asked.size(), 1);
    const QString prompt = t.questions.asked[0].prompt;
    EXPECT_TRUE(prompt.startsWith("Unable to save the list!\r\n" + path + "\r\n\r\n"))
        << prompt.toStdString();
    EXPECT_TRUE(prompt.contains("No such file or directory")) << prompt.toStdString();
    EXPECT_EQ(t.questions.asked[0].style, Msg::OkOnly + Msg::Critical);
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(t.model.state.listFileName(), "");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (Untitled)");
}

namespace {
// "named.vlr" holding old bytes, with the given permissions, in a folder
// "closed" of place that may be read and entered but takes no new file.
QString ListInAClosedFolder(QTemporaryDir& place, QFileDevice::Permissions permissions) {
    QFile::setPermissions(place.path(), QFileDevice::Permissions(0x7755));
    const QString folder = place.filePath("closed");
    const QString path = folder + "/named.vlr";
    QDir().mkpath(folder);
    writeBytes(path, "old list bytes");
    QFile::setPermissions(path, permissions);
    const QFileDevice::Permissions readAndEnter(0x5555);
    QFile::setPermissions(folder, readAndEnter);
    return path;
}
}  // namespace

// A folder that allows no new file (here: mode 555 for a plain user) while
// the list file itself may be written: the list is written in place.
TEST(SaveList, FolderRefusingNewFiles_WritesTheListInPlace) {
    ListTestModel t;
    QTemporaryDir place;
    const QString path = ListInAClosedFolder(place, QFileDevice::Permissions(0x6666));
    const QString folder = QFileInfo(path).path();
    t.model.state.setListFileName(path);
    t.addRow(kRowA);
    {
        PlainUser user;
        SaveList(t.model, 0);
    }
    QFile::setPermissions(folder, QFileDevice::Permissions(0x7755));
    EXPECT_TRUE(t.questions.asked.isEmpty());
    EXPECT_EQ(readAll(path), ListFileText(t.model));
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{"named.vlr"});
    EXPECT_EQ(t.model.state.listFileName(), path);
}

// Neither a new file nor the list file may be written: the message gives the
// system's reason, and the list keeps its old name and title.
TEST(SaveList, ReadOnlyFileInAClosedFolder_SaysWhyAndKeepsNameAndTitle) {
    ListTestModel t;
    QTemporaryDir place;
    const QString path = ListInAClosedFolder(place, QFileDevice::Permissions(0x4444));
    const QString folder = QFileInfo(path).path();
    t.model.state.setWindowTitle("Velmora - (old)");
    t.model.state.setListFileName(t.appData.filePath("old.vlr"));
    t.questions.chooseFile(path);
    {
        PlainUser user;
        SaveList(t.model, -1);
    }
    QFile::setPermissions(folder, QFileDevice::Permissions(0x7755));
    ASSERT_EQ(t.questions.asked.size(), 1);
    const QString prompt = t.questions.asked[0].prompt;
    EXPECT_TRUE(prompt.endsWith("Permission denied") || prompt.endsWith("is not writable"))
        << prompt.toStdString();
    EXPECT_EQ(readAll(path), "old list bytes");
    EXPECT_EQ(t.model.state.listFileName(), t.appData.filePath("old.vlr"));
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (old)");
}

TEST(SaveList, LeavesNoTemporaryFileBehind) {
    ListTestModel t;
    t.addRow(kRowA);
    const QString path = t.appData.filePath("x.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    const QStringList files = QDir(t.appData.path()).entryList(QDir::Files | QDir::Hidden);
    EXPECT_TRUE(files.contains("x.vlr"));
    for (const QString& f : files) {
        EXPECT_TRUE(f == "x.vlr" || f == "Settings.ini") << f.toStdString();
    }
}

// A save that fails half way (here: the file size limit of the process is
// reached) leaves the list file as it was, and no partial file beside it.
TEST(SaveList, WriteFailingHalfWay_LeavesTheOldFileWhole) {
    ListTestModel t;
    const QString path = t.appData.filePath("named.vlr");
    writeBytes(path, "old list bytes");
    t.model.state.setListFileName(path);
    for (int i = 0; i < 2000; ++i) {
        t.addRow(kRowA);
    }
    ASSERT_GT(ListFileText(t.model).size(), 65536);

    {
        FileSizeLimit limit(65536);
        ASSERT_TRUE(limit.active());
        SaveList(t.model, 0);
    }

    EXPECT_EQ(readAll(path), "old list bytes");
    EXPECT_EQ(QDir(t.appData.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{"named.vlr"});
    EXPECT_EQ(t.model.state.listFileName(), path);
    ASSERT_EQ(t.questions.asked.size(), 1);
    EXPECT_TRUE(t.questions.asked[0].prompt.startsWith("Unable to save the list!"));
}

TEST(OpenList, SavedList_OpensWithAllCellsAndGrades) {
    ListTestModel t;
    t.addRow(kRowA);
    t.addRow(kRowB);
    const QString path = t.appData.filePath("two.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);

    ListTestModel u("MPEG");
    u.questions.chooseFile(path);
    OpenList(u.model);
    EXPECT_TRUE(u.questions.asked.isEmpty());
    EXPECT_EQ(u.model.state.listType(), "MP3");
    EXPECT_EQ(u.model.state.typeImage(), ListState::Picture::MP3);
    EXPECT_EQ(u.model.items.headerCount(), 12);
    ASSERT_EQ(u.model.items.count(), 2);
    EXPECT_EQ(rowCells(u.model.items, 1), kRowA);
    EXPECT_EQ(rowCells(u.model.items, 2), kRowB);
    EXPECT_EQ(u.model.state.windowTitle(), "Velmora - (two.vlr)");
    EXPECT_EQ(u.model.state.listFileName(), path);
    EXPECT_EQ(u.model.state.countCaption(), "2");
    EXPECT_EQ(u.model.state.sizeCaption(), "4,212 KB");
    EXPECT_EQ(u.model.state.durationCaption(), "00:01:03");
    EXPECT_EQ(u.model.state.listStatus(), "Green");
}

TEST(OpenList, DialogIsSetUpAndFolderRemembered) {
    ListTestModel t;
    WriteSetting("Commondialog", "OpenList", "/start/");
    const QString path = t.appData.filePath("l.vlr");
    writeBytes(path, "VLR List v1.0\r\n<MP3>\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    ASSERT_EQ(t.questions.dialogsShown.size(), 1);
    EXPECT_FALSE(t.questions.dialogWasSave.first());
    const CommonDialog& shown = t.questions.dialogsShown.first();
    EXPECT_EQ(shown.dialogTitle, "Open List");
    EXPECT_EQ(shown.initDir, "/start/");
    EXPECT_EQ(shown.filter, "VLR Files|*.vlr");
    EXPECT_EQ(shown.flags, 4);
    EXPECT_EQ(ReadSetting("Commondialog", "OpenList"), t.appData.path() + "/");
    EXPECT_EQ(ReadSetting("Commondialog", "SaveList"), "");
}

TEST(OpenList, CancelledDialog_ChangesNothing) {
    ListTestModel t;
    t.addRow(kRowA);
    t.questions.cancelDialog();
    OpenList(t.model);
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_TRUE(t.questions.asked.isEmpty());
}

TEST(OpenList, EmptyListFile_OpensEmptyOfItsTypeAndRed) {
    ListTestModel t;
    t.addRow(kRowA);
    const QString path = t.appData.filePath("e.vlr");
    writeBytes(path, "VLR List v1.0\r\n<MPEG>\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.listType(), "MPEG");
    EXPECT_EQ(t.model.items.headerCount(), 7);
    EXPECT_EQ(t.model.state.listStatus(), "Red");
}

TEST(OpenList, WrongHeader_ShowsMessageAndKeepsListButFolderMoved) {
    ListTestModel t;
    t.addRow(kRowA);
    t.model.state.setListFileName("/keep/me.vlr");
    t.model.state.setWindowTitle("Velmora - (me.vlr)");
    const QString path = t.appData.filePath("bad.vlr");
    writeBytes(path, "VLR List v1.1\r\n<MPEG>\r\nx|y\r\n");
    ASSERT_NO_FATAL_FAILURE(ExpectRefusedAsInvalid(t, path));
    EXPECT_EQ(t.questions.asked.first().style, Msg::OkOnly + Msg::Exclamation);
    EXPECT_EQ(t.questions.asked.first().title, "");
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.listType(), "MP3");
    EXPECT_EQ(t.model.state.listFileName(), "/keep/me.vlr");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (me.vlr)");
    EXPECT_EQ(ReadSetting("Commondialog", "OpenList"), t.appData.path() + "/");
}

TEST(OpenList, HeaderWithTrailingBlank_IsInvalid) {
    ListTestModel t;
    const QString path = t.appData.filePath("bad.vlr");
    writeBytes(path, "VLR List v1.0 \r\n<MP3>\r\n");
    ASSERT_NO_FATAL_FAILURE(ExpectRefusedAsInvalid(t, path));
}

TEST(OpenList, HeaderAfterByteOrderMark_IsInvalid) {
    ListTestModel t;
    const QString path = t.appData.filePath("bom.vlr");
    writeBytes(path, "\xEF\xBB\xBFVLR List v1.0\r\n<MP3>\r\n");
    ASSERT_NO_FATAL_FAILURE(ExpectRefusedAsInvalid(t, path));
}

TEST(OpenList, HeaderInOtherCase_IsInvalid) {
    ListTestModel t;
    const QString path = t.appData.filePath("bad.vlr");
    writeBytes(path, "vlr list v1.0\r\n<MP3>\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_EQ(t.questions.asked.size(), 1);
}

TEST(OpenList, MissingFile_ShowsTheInvalidFileMessage) {
    ListTestModel t;
    t.addRow(kRowA);
    ASSERT_NO_FATAL_FAILURE(ExpectRefusedAsInvalid(t, t.appData.filePath("gone.vlr")));
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.listFileName(), "");
}

TEST(OpenList, ZeroByteFile_KeepsRowsAndTypeButTakesTheName) {
    ListTestModel t;
    t.addRow(kRowA);
    t.model.state.setCountCaption("stale");
    const QString path = t.appData.filePath("zero.vlr");
    writeBytes(path, "");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_TRUE(t.questions.asked.isEmpty());
    EXPECT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.state.listType(), "MP3");
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (zero.vlr)");
    EXPECT_EQ(t.model.state.listFileName(), path);
    EXPECT_EQ(t.model.state.countCaption(), "1");  // totals recomputed
}

TEST(OpenList, HeaderOnlyFile_ClearsRowsKeepsTypeAndColumns) {
    ListTestModel t("MPEG");
    t.addMpeg("/v/a.mpg", "1 KB", "MPEG-1V", "1x1", "1 seconds");
    const QString path = t.appData.filePath("head.vlr");
    writeBytes(path, "VLR List v1.0\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_TRUE(t.questions.asked.isEmpty());
    EXPECT_EQ(t.model.items.count(), 0);
    EXPECT_EQ(t.model.state.listType(), "MPEG");
    EXPECT_EQ(t.model.items.headerCount(), 7);
    EXPECT_EQ(t.model.state.windowTitle(), "Velmora - (head.vlr)");
}

TEST(OpenList, TypeInSmallLetters_LeavesFourColumnsAndOldImage) {
    ListTestModel t("MPEG");
    const QString path = t.appData.filePath("small.vlr");
    writeBytes(path,
               "VLR List v1.0\r\n<mp3>\r\n"
               "a.mp3|4,211 KB|d|/music/a.mp3|Artist|Title|Album|1999|Rock|61 seconds|128 "
               "kbps|44100 (Stereo)\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_EQ(t.model.state.listType(), "mp3");
    EXPECT_EQ(t.model.items.headerCount(), 4);
    EXPECT_EQ(t.model.state.typeImage(), ListState::Picture::MPEG);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cells(1), QStringList({"a.mp3", "4,211 KB", "d", "/music/a.mp3"}));
    EXPECT_EQ(t.model.items.cell(1, 4), "");
    // Saved again, the row has its four cells and the type its small letters.
    t.questions.chooseFile(t.appData.filePath("again.vlr"));
    SaveList(t.model, -1);
    EXPECT_EQ(readAll(t.appData.filePath("again.vlr")),
              QByteArray("VLR List v1.0\r\n<mp3>\r\na.mp3|4,211 KB|d|/music/a.mp3\r\n"));
}

TEST(OpenList, BracketsAnywhereInLineTwo_AreDeleted) {
    ListTestModel t;
    const QString path = t.appData.filePath("b.vlr");
    writeBytes(path, "VLR List v1.0\r\nMP<E>G<\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_EQ(t.model.state.listType(), "MPEG");
    EXPECT_EQ(t.model.items.headerCount(), 7);
}

TEST(OpenList, SeparatorInTitleTag_ShiftsLaterCells) {
    ListTestModel t;
    QStringList row = kRowA;
    row[5] = "Left|Right";
    t.addRow(row);
    const QString path = t.appData.filePath("sep.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    EXPECT_TRUE(readAll(path).contains("|Left|Right|"));

    ListTestModel u;
    u.questions.chooseFile(path);
    OpenList(u.model);
    ASSERT_EQ(u.model.items.count(), 1);
    EXPECT_EQ(u.model.items.cell(1, 5), "Left");
    EXPECT_EQ(u.model.items.cell(1, 6), "Right");      // Album holds the rest of the title
    EXPECT_EQ(u.model.items.cell(1, 7), "Album A");    // one column off from here
    EXPECT_EQ(u.model.items.cell(1, 11), "128 kbps");  // Hertz holds the former Bitrate
    EXPECT_EQ(u.model.items.cells(1).size(), 12);      // the former Hertz fell off
}

TEST(OpenList, EmptyLine_GivesNoRow) {
    ListTestModel t;
    const QString path = t.appData.filePath("gap.vlr");
    writeBytes(path, "VLR List v1.0\r\n<MP3>\r\na.mp3\r\n\r\nb.mp3\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_EQ(t.column(0), QStringList({"a.mp3", "b.mp3"}));
}

TEST(OpenList, LineWithFewerFields_LeavesTheRestEmpty) {
    ListTestModel t("MPEG");
    const QString path = t.appData.filePath("few.vlr");
    writeBytes(path, "VLR List v1.0\r\n<MPEG>\r\nonly.mpg|5 KB\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 1), "5 KB");
    EXPECT_EQ(t.model.items.cell(1, 3), "");
}

TEST(OpenList, RowsOfGoneFiles_ComeBackUnchanged) {
    ListTestModel t;
    QStringList row = kRowA;
    row[3] = t.appData.filePath("never-existed.mp3");
    t.addRow(row);
    t.addRow(row);
    const QString path = t.appData.filePath("gone.vlr");
    t.questions.chooseFile(path);
    SaveList(t.model, 0);
    ListTestModel u;
    u.questions.chooseFile(path);
    OpenList(u.model);
    ASSERT_EQ(u.model.items.count(), 2);
    EXPECT_EQ(rowCells(u.model.items, 1), row);
    EXPECT_EQ(u.model.state.listStatus(), "Green");
}

TEST(OpenList, LinesEndingInLfOnly_AreReadToo) {
    ListTestModel t;
    const QString path = t.appData.filePath("lf.vlr");
    writeBytes(path, "VLR List v1.0\n<MP3>\na.mp3\nb.mp3");
    t.questions.chooseFile(path);
    OpenList(t.model);
    EXPECT_TRUE(t.questions.asked.isEmpty());
    EXPECT_EQ(t.column(0), QStringList({"a.mp3", "b.mp3"}));
}

TEST(ListFile, HundredThousandRows_OpenSaveReopenByteIdentical) {
    ListTestModel t;
    QList<QStringList> rows;
    for (int i = 0; i < 100000; ++i) {
        QStringList row = kRowA;
        row[0] = QStringLiteral("track %1.mp3").arg(i);
        row[3] = QStringLiteral("/music/album %1/track %2.mp3").arg(i / 100).arg(i);
        row[1] = QLocale().toString(1000 + i) + " KB";
        rows.append(row);
    }
    t.model.items.appendRows(rows);
    const QString first = t.appData.filePath("big1.vlr");
    t.questions.chooseFile(first);
    SaveList(t.model, 0);

    ListTestModel u;
    u.questions.chooseFile(first);
    OpenList(u.model);
    ASSERT_EQ(u.model.items.count(), 100000);
    EXPECT_EQ(u.model.items.rowCount(), 100000);
    EXPECT_EQ(u.model.items.data(u.model.items.index(99999, 0)).toString(), "track 99999.mp3");
    EXPECT_EQ(u.model.state.countCaption(), "100000");
    const QString second = u.appData.filePath("big2.vlr");
    u.questions.chooseFile(second);
    SaveList(u.model, -1);
    const QByteArray a = readAll(first);
    EXPECT_GT(a.size(), 10'000'000);
    EXPECT_TRUE(a == readAll(second));
}

TEST(OpenList, FolderChosenAsListFile_ShowsTheInvalidFileMessage) {
    ListTestModel t;
    t.addRow(kRowA);
    QDir(t.appData.path()).mkdir("folder.vlr");
    ASSERT_NO_FATAL_FAILURE(ExpectRefusedAsInvalid(t, t.appData.filePath("folder.vlr")));
    EXPECT_EQ(t.model.items.count(), 1);
}

TEST(OpenList, NotUtf8_IsReadByteForCharacter) {
    ListTestModel t;
    const QString path = t.appData.filePath("latin1.vlr");
    writeBytes(path, "VLR List v1.0\r\n<MP3>\r\ncaf\xe9.mp3|1 KB\r\n");
    t.questions.chooseFile(path);
    OpenList(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 0), QString::fromUtf8("caf\xc3\xa9.mp3"));
}
