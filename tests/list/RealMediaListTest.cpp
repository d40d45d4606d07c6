// The list routines on real media files: rows filled from the files, graded
// and summed from what the files give.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "ListTestModel.h"
#include "list/AddFilesModule.h"
#include "list/ClipboardModule.h"
#include "list/ListInfoFigures.h"
#include "list/ListTotals.h"
#include "list/ReadAhead.h"
#include "media/ItemCells.h"
#include "platform/EventTurn.h"
#include "support/TestEnvironment.h"

namespace {

// Copies samples into a temporary folder; the shared folder stays untouched.
QString copySample(const QTemporaryDir& dir, const QString& name, const QString& as = {}) {
    const QString target = dir.filePath(as.isEmpty() ? name : as);
    QFile::copy(SampleMediaFolder() + "/" + name, target);
    return target;
}

class QuietTurns {
public:
    QuietTurns() {
        previous_ = setEventTurnHook([] {});
    }
    ~QuietTurns() { setEventTurnHook(previous_); }

private:
    std::function<void()> previous_;
};

}  // namespace

TEST(RealMediaList, TwoStereo44100Mp3s_AreGreenWithTheirSecondsSummed) {
    ListTestModel t;
    QTemporaryDir dir;
    copySample(dir, "filetype-fixture.mp3");  // 0.81 s
    copySample(dir, "mimetype-mp3.mp3");      // 27.7 s
    QuietTurns turns;
    AddFolderFiles(t.model, dir.path());
    ASSERT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.items.cell(1, 0), "filetype-fixture.mp3");
    EXPECT_EQ(t.model.items.cell(1, 11), "44100 (Stereo)");
    EXPECT_EQ(t.model.items.cell(2, 11), "44100 (Stereo)");
    EXPECT_EQ(t.model.items.cell(1, 9), "0 seconds");
    EXPECT_EQ(t.model.items.cell(2, 9), "27 seconds");
    EXPECT_EQ(t.model.state.durationCaption(), "00:00:27");
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST(RealMediaList, Mp3OfAnotherRate_MakesTheListOrange) {
    ListTestModel t;
    QTemporaryDir dir;
    QuietTurns turns;
    AddDroppedFiles(t.model, {copySample(dir, "mimetype-mp3.mp3"),
                              copySample(dir, "mimetype-mp3.v2.notag.mp3")});
    ASSERT_EQ(t.model.items.count(), 2);
    // A mono file reads Stereo; only the rate differs.
    EXPECT_EQ(t.model.items.cell(2, 11), "22050 (Stereo)");
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(RealMediaList, MpegFilesOfDifferentPictures_AreRed) {
    ListTestModel t("MPEG");
    QTemporaryDir dir;
    copySample(dir, "filetype-fixture.ps.mpg", "a.mpg");
    copySample(dir, "mimetype-mpeg.mpeg", "b.mpeg");
    QuietTurns turns;
    AddFolderFiles(t.model, dir.path());
    ASSERT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.items.cell(2, 5), "320x240");
    EXPECT_NE(t.model.items.cell(1, 5), t.model.items.cell(2, 5));
    EXPECT_EQ(t.model.state.listStatus(), "Red");
}

TEST(RealMediaList, MoveRefillsTheRowsWithoutNewTotals) {
    ListTestModel t;
    QTemporaryDir dir;
    QuietTurns turns;
    AddDroppedFiles(t.model, {copySample(dir, "mimetype-mp3.mp3"),
                              copySample(dir, "mimetype-mp3.v2.notag.mp3")});
    ASSERT_EQ(t.model.state.listStatus(), "Orange");
    MoveItemUp(t.model, 2);
    EXPECT_EQ(t.model.items.cell(1, 0), "mimetype-mp3.v2.notag.mp3");
    EXPECT_EQ(t.model.items.cell(1, 11), "22050 (Stereo)");
    EXPECT_EQ(t.model.items.cell(2, 11), "44100 (Stereo)");
    EXPECT_EQ(t.model.items.cell(2, 9), "27 seconds");
    EXPECT_EQ(t.model.state.listStatus(), "Orange");
}

TEST(RealMediaList, PastedEntry_IsFilledForTheListItIsPastedInto) {
    ListTestModel t;
    QTemporaryDir dir;
    const QString path = copySample(dir, "mimetype-mpeg.mpeg");
    t.clipboard.setText("VLR:x|1 KB|d|" + path + "|a|b|c|d|e|f|g|h");
    NewItemList(t.model, "MPEG");
    PasteItem(t.model);
    ASSERT_EQ(t.model.items.count(), 1);
    EXPECT_EQ(t.model.items.cell(1, 0), "mimetype-mpeg.mpeg");
    EXPECT_EQ(t.model.items.cell(1, 5), "320x240");
    EXPECT_EQ(t.model.items.cell(1, 6), "0 seconds");
}

TEST(RealMediaList, Mp3RowPastedIntoAGreenMpegList_IsFilledAsAnMpegRowWithoutAWord_ListTurnsRed) {
    QTemporaryDir dir;
    QuietTurns turns;
    const QString song = copySample(dir, "mimetype-mp3.mp3");
    ListTestModel mp3;
    AddDroppedFiles(mp3.model, {song});
    CopyItem(mp3.model, 1, 0);
    ASSERT_EQ(mp3.clipboard.text().split(u'|').size(), 12);

    ListTestModel mpeg("MPEG");
    AddDroppedFiles(mpeg.model, {copySample(dir, "mimetype-mpeg.mpeg", "one.mpeg"),
                                 copySample(dir, "mimetype-mpeg.mpeg", "two.mpeg")});
    ASSERT_EQ(mpeg.model.state.listStatus(), "Green");
    mpeg.clipboard.setText(mp3.clipboard.text());
    PasteItem(mpeg.model);

    // The same file added to an MPEG list straight away.
    ListTestModel direct("MPEG");
    AddDroppedFiles(direct.model, {song});
    ASSERT_EQ(mpeg.model.items.count(), 3);
    EXPECT_EQ(mpeg.model.items.cells(3), direct.model.items.cells(1));
    EXPECT_NE(mpeg.model.items.cells(3), mp3.model.items.cells(1));
    EXPECT_NE(mpeg.model.items.cell(3, 4), mpeg.model.items.cell(1, 4));
    EXPECT_EQ(mpeg.model.state.selectedIndex(), 3);
    EXPECT_TRUE(mpeg.questions.asked.isEmpty());
    EXPECT_EQ(mpeg.model.state.countCaption(), "3");
    EXPECT_EQ(mpeg.model.state.listStatus(), "Red");
}

// Files of 3 GiB (a real MP3 whose file then runs on as a hole, which costs
// no disk) have lengths beyond 32 bits, and every figure counts them whole.
TEST(RealMediaList, FilesOfThreeGibibytes_SizeCellsTotalsAndListInfoCountIn64Bits) {
    QTemporaryDir dir;
    QuietTurns turns;
    QStringList paths;
    for (const char* name : {"one.mp3", "two.mp3"}) {
        paths << copySample(dir, "mimetype-mp3.mp3", name);
        ASSERT_TRUE(QFile::resize(paths.last(), qint64{3} << 30));
    }
    ListTestModel t;
    AddDroppedFiles(t.model, paths);
    ASSERT_EQ(t.model.items.count(), 2);
    EXPECT_EQ(t.model.items.cell(1, 1), "3,145,728 KB");
    EXPECT_EQ(t.model.items.cell(2, 1), "3,145,728 KB");
    EXPECT_EQ(t.model.state.sizeCaption(), "6,291,456 KB");
    const QList<ListInfoRow> rows = ListInfoRows(t.model);
    EXPECT_EQ(rows.at(6), (ListInfoRow{"Filesize", "6,291,456 KB"}));
    EXPECT_EQ(rows.at(9), (ListInfoRow{"Average Size (Per File)", "3,145,728 KB"}));
}

TEST(RealMediaList, FilesReadOnSeveralThreads_GiveTheSameCellsAsReadOneByOne) {
    QTemporaryDir dir;
    const QStringList samples{"filetype-fixture.mp3", "mimetype-mp3.v2.notag.mp3",
                              "mimetype-mp3.v2.5.notag.mp3", "mimetype-mp3.mp3"};
    QStringList paths;
    for (int i = 0; i < 160; ++i) {
        const QString& sample = samples.at(i % samples.size());
        paths.append(copySample(dir, sample, QStringLiteral("%1-%2").arg(i).arg(sample)));
    }
    QList<ItemCellTexts> oneByOne;
    for (const QString& path : paths) {
        oneByOne.append(ItemCells(path, QStringLiteral("MP3")));
    }
    ReadAhead files(paths, QStringLiteral("MP3"), ItemCells, 2, 16);
    for (int i = 0; i < files.count(); ++i) {
        const ItemCellTexts cells = files.take(i);
        ASSERT_EQ(cells, oneByOne.at(i)) << paths.at(i).toStdString();
    }
}
