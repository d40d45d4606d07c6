// The check of each row against the first on what decides whether a lossless
// join plays right: files made with ffmpeg, two-row lists with one difference
// each, the marks worked out again when another row comes first, and a list
// opened from a list file checked in the background.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <atomic>
#include <chrono>
#include <thread>

#include "ListTestModel.h"
#include "list/FillListItem.h"
#include "list/ListCheck.h"
#include "list/ListTotals.h"
#include "list/SortList.h"
#include "support/MediaMaker.h"
#include "support/Mp3JoinTraits.h"
#include "support/RequireFfmpeg.h"

namespace {

using Mark = RowCheck::Mark;

// The media of these tests, each made once for the whole run.
class Media {
public:
    static Media& get() {
        static Media media;
        return media;
    }
    QString folder() const { return dir_.path(); }

    // An MP3 (MPEG-1 Layer III at 44,100 Hz, stereo unless told otherwise).
    QString mp3(const QString& name, int rate = 44100, int channels = 2) {
        return once(name, [&](const QString& path) {
            Mp3Options options;
            options.sampleRate = rate;
            options.channels = channels;
            return !MakeMp3(folder(), QFileInfo(path).fileName(), options).isEmpty();
        });
    }
    // A file made from a tone by ffmpeg with these output arguments.
    QString tone(const QString& name, const QStringList& output) {
        return once(name, [&](const QString& path) {
            return RunFfmpeg(QStringList{"-f", "lavfi", "-i",
                                         "sine=frequency=440:sample_rate=44100:duration=1"} +
                             output + QStringList{path});
        });
    }
    // An MPEG file from a test picture and a tone: the video and audio inputs
    // are given, then the output arguments.
    QString mpeg(const QString& name, const QStringList& arguments) {
        return once(name,
                    [&](const QString& path) { return RunFfmpeg(arguments + QStringList{path}); });
    }

private:
    template <typename Make>
    QString once(const QString& name, Make make) {
        const QString path = dir_.filePath(name);
        if (!QFileInfo::exists(path) && !make(path)) {
            ADD_FAILURE() << "could not make " << name.toStdString() << ": "
                          << LastMediaMakerError().toStdString();
        }
        return path;
    }
    QTemporaryDir dir_;
};

// The inputs of an MPEG file: a test picture of that size and rate, and
// audioStreams tones.
QStringList MpegInputs(const QString& size = "352x288", const QString& rate = "25",
                       int audioStreams = 1) {
    QStringList args{"-f", "lavfi", "-i",
                     QStringLiteral("testsrc=size=%1:rate=%2:duration=1").arg(size, rate)};
    for (int i = 0; i < audioStreams; ++i) {
        args += {"-f", "lavfi", "-i", "sine=frequency=440:sample_rate=44100:duration=1"};
    }
    args += {"-map", "0:v"};
    for (int i = 0; i < audioStreams; ++i) {
        args += {"-map", QStringLiteral("%1:a").arg(i + 1)};
    }
    return args;
}

// The usual output: MPEG-1 video at 4:3 and MPEG-1 Layer II audio, 44,100 Hz
// stereo, in a program stream; later arguments override.
QStringList MpegOutput(const QStringList& overrides = {}) {
    return QStringList{"-c:v", "mpeg1video", "-aspect", "4:3", "-c:a", "mp2",
                       "-ar",  "44100",      "-ac",     "2",   "-b:a", "128k"} +
           overrides + QStringList{"-f", "mpeg"};
}

QString BaseMpeg() {
    return Media::get().mpeg("base.mpg", MpegInputs() + MpegOutput());
}

struct Checked {
    Mark mark;
    QString reason;
};

class RowCheckList : public ::testing::Test {
protected:
    void useType(const QString& type) { NewItemList(t.model, type); }
    // Adds rows as the adding routines do: the path in cell 3, then filled.
    void add(const QStringList& paths) {
        for (const QString& path : paths) {
            const int row = t.model.items.addRow();
            t.model.items.setCell(row, 3, path);
            FillListItem(t.model, 0);
        }
        UpdateListTotals(t.model);
    }
    Checked check(int row) const {
        const RowCheck c = t.model.items.rowCheck(row);
        return {c.mark, c.reason};
    }
    // A list of the two files: the first row unmarked, the second as given.
    void expectSecondRow(const QString& type, const QString& first, const QString& second,
                         Mark mark, const QString& reason) {
        useType(type);
        add({first, second});
        EXPECT_EQ(check(1).mark, Mark::None) << check(1).reason.toStdString();
        EXPECT_EQ(check(2).mark, mark);
        EXPECT_EQ(check(2).reason, reason);
        // The mark and the tool tip are the model's, for the first column only.
        const QModelIndex name = t.model.items.index(1, 0);
        EXPECT_EQ(name.data(ItemList::RowMarkRole).toInt(), static_cast<int>(mark));
        EXPECT_EQ(name.data(Qt::ToolTipRole).toString(), reason);
        EXPECT_EQ(t.model.items.index(1, 1).data(ItemList::RowMarkRole).toInt(), 0);
        EXPECT_EQ(t.model.items.index(0, 0).data(ItemList::RowMarkRole).toInt(), 0);
    }

    ListTestModel t;
};

}  // namespace

// --- MP3 lists -------------------------------------------------------------

TEST_F(RowCheckList, Mp3EqualFiles_NoMark) {
    REQUIRE_FFMPEG();
    useType("MP3");
    add({Media::get().mp3("a.mp3"), Media::get().mp3("a.mp3"), Media::get().mp3("a.mp3")});
    EXPECT_TRUE(t.model.items.markedRows().isEmpty());
    EXPECT_EQ(DifferingRowsLine(t.model.items), "");
}

TEST_F(RowCheckList, Mp3MonoAmongStereo_OrangeWithBothChannelCounts) {
    REQUIRE_FFMPEG();
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), Media::get().mp3("mono.mp3", 44100, 1),
                    Mark::Orange, "Mono: the first file is stereo");
    // The grade goes by the Hertz cell, which reads Stereo for both.
    EXPECT_EQ(t.model.state.listStatus(), "Green");
}

TEST_F(RowCheckList, Mp3OtherRateSameVersion_OrangeWithBothRates) {
    REQUIRE_FFMPEG();
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), Media::get().mp3("r48.mp3", 48000),
                    Mark::Orange, "48,000 Hz: the first file is 44,100 Hz");
}

TEST_F(RowCheckList, Mp3OtherMpegVersion_RedNamingVersionChannelsAndRate) {
    REQUIRE_FFMPEG();
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), Media::get().mp3("v2mono.mp3", 22050, 1),
                    Mark::Red,
                    "MPEG-2 Layer III, mono, 22,050 Hz: the first file is MPEG-1 Layer III, "
                    "stereo, 44,100 Hz");
}

TEST_F(RowCheckList, Mp3OtherLayer_Red) {
    REQUIRE_FFMPEG();
    const QString layer2 =
        Media::get().tone("layer2.mp3", {"-ac", "2", "-c:a", "mp2", "-f", "mp2"});
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), layer2, Mark::Red,
                    "MPEG-1 Layer II: the first file is MPEG-1 Layer III");
}

TEST_F(RowCheckList, Mp3NotMpegAudio_Red) {
    REQUIRE_FFMPEG();
    const QString wave = Media::get().tone("wave.mp3", {"-f", "wav"});
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), wave, Mark::Red,
                    "Not MPEG audio (PCM): the first file is MPEG-1 Layer III");
}

TEST_F(RowCheckList, Mp3MissingFile_Red) {
    REQUIRE_FFMPEG();
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), Media::get().folder() + "/gone.mp3",
                    Mark::Red, "This file is missing.");
}

TEST_F(RowCheckList, Mp3UnreadableFile_Red) {
    REQUIRE_FFMPEG();
    // A folder by the name of a file: there, but no file to read.
    const QString folder = Media::get().folder() + "/folder.mp3";
    QDir().mkpath(folder);
    expectSecondRow("MP3", Media::get().mp3("a.mp3"), folder, Mark::Red,
                    "This file cannot be read.");
}

TEST_F(RowCheckList, Mp3FirstFileMissing_EveryOtherRowRed) {
    REQUIRE_FFMPEG();
    expectSecondRow("MP3", Media::get().folder() + "/gone.mp3", Media::get().mp3("a.mp3"),
                    Mark::Red, "The first file is missing.");
}

// --- MPEG lists ------------------------------------------------------------

TEST_F(RowCheckList, MpegEqualFiles_NoMark) {
    REQUIRE_FFMPEG();
    useType("MPEG");
    add({BaseMpeg(), BaseMpeg()});
    EXPECT_TRUE(t.model.items.markedRows().isEmpty()) << check(2).reason.toStdString();
}

TEST_F(RowCheckList, MpegElementaryStreamAmongProgramStreams_Red) {
    REQUIRE_FFMPEG();
    const QString es =
        Media::get().mpeg("es.m1v", {"-f", "lavfi", "-i", "testsrc=size=352x288:rate=25:duration=1",
                                     "-c:v", "mpeg1video", "-aspect", "4:3", "-f", "mpeg1video"});
    expectSecondRow("MPEG", BaseMpeg(), es, Mark::Red,
                    "MPEG Video elementary stream, no audio: the first file is program stream, 1 "
                    "audio stream");
}

TEST_F(RowCheckList, MpegOtherVideoCodec_Red) {
    REQUIRE_FFMPEG();
    const QString mpeg2 =
        Media::get().mpeg("mpeg2.mpg", MpegInputs() + MpegOutput({"-c:v", "mpeg2video"}));
    expectSecondRow("MPEG", BaseMpeg(), mpeg2, Mark::Red,
                    "MPEG-2 video: the first file is MPEG-1 video");
}

TEST_F(RowCheckList, MpegOtherPictureSize_Red) {
    REQUIRE_FFMPEG();
    const QString small = Media::get().mpeg("small.mpg", MpegInputs("320x240") + MpegOutput());
    expectSecondRow("MPEG", BaseMpeg(), small, Mark::Red, "320x240: the first file is 352x288");
}

TEST_F(RowCheckList, MpegOtherFrameRate_Red) {
    REQUIRE_FFMPEG();
    const QString ntsc =
        Media::get().mpeg("ntsc.mpg", MpegInputs("352x288", "30000/1001") + MpegOutput());
    expectSecondRow("MPEG", BaseMpeg(), ntsc, Mark::Red, "29.97 fps: the first file is 25 fps");
}

TEST_F(RowCheckList, MpegOtherAspectRatio_Orange) {
    REQUIRE_FFMPEG();
    const QString wide =
        Media::get().mpeg("wide.mpg", MpegInputs() + MpegOutput({"-aspect", "16:9"}));
    expectSecondRow("MPEG", BaseMpeg(), wide, Mark::Orange,
                    "Aspect ratio 16:9: the first file is aspect ratio 4:3");
}

TEST_F(RowCheckList, MpegOtherNumberOfAudioStreams_Red) {
    REQUIRE_FFMPEG();
    const QString two = Media::get().mpeg("two.mpg", MpegInputs("352x288", "25", 2) + MpegOutput());
    expectSecondRow("MPEG", BaseMpeg(), two, Mark::Red,
                    "2 audio streams: the first file is 1 audio stream");
}

TEST_F(RowCheckList, MpegOtherAudioCodec_Red) {
    REQUIRE_FFMPEG();
    const QString ac3 = Media::get().mpeg("ac3.mpg", MpegInputs() + MpegOutput({"-c:a", "ac3"}));
    expectSecondRow("MPEG", BaseMpeg(), ac3, Mark::Red,
                    "Audio AC-3: the first file is audio MPEG-1 Layer II");
}

TEST_F(RowCheckList, MpegOtherAudioRate_Red) {
    REQUIRE_FFMPEG();
    const QString r48 = Media::get().mpeg("r48.mpg", MpegInputs() + MpegOutput({"-ar", "48000"}));
    expectSecondRow("MPEG", BaseMpeg(), r48, Mark::Red,
                    "Audio 48,000 Hz: the first file is audio 44,100 Hz");
}

TEST_F(RowCheckList, MpegOtherAudioChannels_Orange) {
    REQUIRE_FFMPEG();
    const QString mono = Media::get().mpeg("mono.mpg", MpegInputs() + MpegOutput({"-ac", "1"}));
    expectSecondRow("MPEG", BaseMpeg(), mono, Mark::Orange,
                    "Audio mono: the first file is audio stereo");
}

TEST_F(RowCheckList, MpegSecondAudioStreamDiffers_NamesTheStream) {
    REQUIRE_FFMPEG();
    const QString two = Media::get().mpeg("two.mpg", MpegInputs("352x288", "25", 2) + MpegOutput());
    const QString twoMixed = Media::get().mpeg(
        "twomixed.mpg", MpegInputs("352x288", "25", 2) + MpegOutput({"-ac:a:1", "1"}));
    expectSecondRow("MPEG", two, twoMixed, Mark::Orange,
                    "Audio 2 mono: the first file is audio 2 stereo");
}

TEST_F(RowCheckList, MpegMissingAndUnreadableFiles_Red) {
    REQUIRE_FFMPEG();
    expectSecondRow("MPEG", BaseMpeg(), Media::get().folder() + "/gone.mpg", Mark::Red,
                    "This file is missing.");
    const QString folder = Media::get().folder() + "/folder.mpg";
    QDir().mkpath(folder);
    expectSecondRow("MPEG", BaseMpeg(), folder, Mark::Red, "This file cannot be read.");
}

// --- Another row first -----------------------------------------------------

class RowCheckReorder : public RowCheckList {
protected:
    // Stereo, mono, stereo.
    void SetUp() override {
        if (!HaveFfmpeg()) {
            GTEST_SKIP() << "ffmpeg not installed";
        }
        useType("MP3");
        stereo = Media::get().mp3("a.mp3");
        mono = Media::get().mp3("mono.mp3", 44100, 1);
        add({stereo, mono, stereo});
        ASSERT_EQ(t.model.items.markedRows(), QList<int>({2}));
    }
    QString stereo;
    QString mono;
};

TEST_F(RowCheckReorder, RemovingTheFirstRow_MarksAgainstTheNewFirst) {
    RemoveItem(t.model, 1);
    EXPECT_EQ(check(1).mark, Mark::None);
    EXPECT_EQ(check(2).mark, Mark::Orange);
    EXPECT_EQ(check(2).reason, "Stereo: the first file is mono");
}

TEST_F(RowCheckReorder, MovingTheFirstRowDown_MarksAgainstTheNewFirst) {
    MoveItemDown(t.model, 1);
    EXPECT_EQ(t.model.items.cell(1, 3), mono);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2, 3}));
    EXPECT_EQ(check(2).reason, "Stereo: the first file is mono");
}

TEST_F(RowCheckReorder, MovingARowUpToTheTop_MarksAgainstTheNewFirst) {
    MoveItemUp(t.model, 2);
    EXPECT_EQ(check(1).mark, Mark::None);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2, 3}));
    MoveItemUp(t.model, 2);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2}));
}

TEST_F(RowCheckReorder, SortingAnotherRowFirst_MarksAgainstIt) {
    t.model.items.setCell(2, 0, "0 first by name");
    SortList(t.model, 0, 0);
    EXPECT_EQ(t.model.items.cell(1, 3), mono);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2, 3}));
}

TEST_F(RowCheckReorder, RemovingRowsByValue_MarksAgainstTheNewFirst) {
    QFile::remove(Media::get().folder() + "/gone.mp3");
    add({Media::get().folder() + "/gone.mp3"});
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2, 4}));
    RemoveDeadFiles(t.model);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2}));
    RemoveItem(t.model, 1);
    EXPECT_EQ(t.model.items.markedRows(), QList<int>({2}));
    RemoveItem(t.model, 1);
    EXPECT_TRUE(t.model.items.markedRows().isEmpty());
}

// --- The line of the status explanation ------------------------------------

TEST(DifferingRowsLine, NamesTheCountAndTheFirstFivePositions) {
    ListTestModel t;
    for (int i = 1; i <= 14; ++i) {
        t.addMp3(QStringLiteral("/m/%1.mp3").arg(i), "1 KB", "1 seconds", "44100 (Stereo)");
        t.model.items.setJoinTraits(i, Mp3Traits(44100));
    }
    EXPECT_EQ(DifferingRowsLine(t.model.items), "");
    t.model.items.setJoinTraits(4, Mp3Traits(48000));
    EXPECT_EQ(DifferingRowsLine(t.model.items), "1 file differs from the first: row 4.");
    t.model.items.setJoinTraits(9, Mp3Traits(48000));
    t.model.items.setJoinTraits(12, Mp3Traits(48000));
    EXPECT_EQ(DifferingRowsLine(t.model.items), "3 files differ from the first: rows 4, 9 and 12.");
    for (int row : {2, 3, 13, 14}) {
        t.model.items.setJoinTraits(row, Mp3Traits(32000));
    }
    EXPECT_EQ(DifferingRowsLine(t.model.items),
              "7 files differ from the first: rows 2, 3, 4, 9, 12 and 2 more.");
    // A new first row of the other rate turns the marks round.
    t.model.items.setJoinTraits(1, Mp3Traits(48000));
    EXPECT_EQ(DifferingRowsLine(t.model.items),
              "10 files differ from the first: rows 2, 3, 5, 6, 7 and 5 more.");
}

// --- A list opened from a list file -----------------------------------------

class OpenedListCheck : public RowCheckList {
protected:
    // Saves the list as it stands and opens it again into a second list.
    void saveAndOpen(ListTestModel& into) {
        const QString path = Media::get().folder() + "/checked.vlr";
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(ListFileText(t.model));
        file.close();
        into.questions.chooseFile(path);
        OpenList(into.model);
    }
    static void waitForTheCheck(ListTestModel& list) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return !list.model.listCheck.running(); }, 60000));
    }
};

TEST_F(OpenedListCheck, SameMarksAsTheListAddedByHand_AfterTheOpenReturned) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Media& m = Media::get();
    QFile::remove(m.folder() + "/gone.mp3");
    add({m.mp3("a.mp3"), m.mp3("mono.mp3", 44100, 1), m.mp3("a.mp3"), m.mp3("v2mono.mp3", 22050, 1),
         m.folder() + "/gone.mp3", m.mp3("r48.mp3", 48000)});
    ASSERT_EQ(t.model.items.markedRows(), QList<int>({2, 4, 5, 6}));

    ListTestModel opened;
    saveAndOpen(opened);
    ASSERT_EQ(opened.model.items.count(), 6);
    // The open read no file and returned with the rows unmarked; the check
    // runs once events get their turn.
    EXPECT_EQ(opened.model.listCheck.filesRead(), 0);
    EXPECT_TRUE(opened.model.listCheck.running());
    EXPECT_TRUE(opened.model.items.markedRows().isEmpty());
    waitForTheCheck(opened);
    EXPECT_EQ(opened.model.listCheck.filesRead(), 6);
    for (int row = 1; row <= 6; ++row) {
        EXPECT_EQ(opened.model.items.rowCheck(row), t.model.items.rowCheck(row)) << "row " << row;
    }
}

TEST_F(OpenedListCheck, MpegListOpened_SameMarksAsAddedByHand) {
    REQUIRE_FFMPEG();
    useType("MPEG");
    Media& m = Media::get();
    add({BaseMpeg(), m.mpeg("ntsc.mpg", MpegInputs("352x288", "30000/1001") + MpegOutput()),
         BaseMpeg()});
    ASSERT_EQ(t.model.items.markedRows(), QList<int>({2}));
    ListTestModel opened("MPEG");
    saveAndOpen(opened);
    EXPECT_EQ(opened.model.listCheck.filesRead(), 0);
    waitForTheCheck(opened);
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(opened.model.items.rowCheck(row), t.model.items.rowCheck(row)) << "row " << row;
    }
}

// A reader that takes its time, so the check is still running when the list
// goes.
struct SlowReader {
    std::shared_ptr<std::atomic<int>> reads = std::make_shared<std::atomic<int>>(0);
    ReadAhead::ItemReader reader() {
        return [reads = reads](const QString& path, const QString& type) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            ++*reads;
            return ReadItem(path, type);
        };
    }
};

TEST_F(OpenedListCheck, ClearedListOrAnotherOpen_EndsTheCheckAndDropsItsResults) {
    REQUIRE_FFMPEG();
    useType("MP3");
    Media& m = Media::get();
    QStringList paths{m.mp3("a.mp3")};
    for (int i = 0; i < 200; ++i) {
        paths.append(m.mp3("mono.mp3", 44100, 1));
    }
    for (const QString& path : paths) {
        t.addMp3(path, "1 KB", "1 seconds", "44100 (Stereo)");
    }
    const QString listPath = m.folder() + "/long.vlr";
    {
        QFile file(listPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(ListFileText(t.model));
    }
    ListTestModel opened;
    SlowReader slow;
    opened.model.listCheck.setReader(slow.reader());

    for (int way = 0; way < 3; ++way) {
        opened.questions.chooseFile(listPath);
        OpenList(opened.model);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !opened.model.items.markedRows().isEmpty(); }));
        if (way == 0) {
            ClearList(opened.model, 0);
        } else if (way == 1) {
            NewItemList(opened.model, "MP3");
        } else {
            // Another open: the first check ends before the second begins.
            opened.questions.chooseFile(listPath);
            OpenList(opened.model);
            EXPECT_TRUE(opened.model.items.markedRows().isEmpty());
            opened.model.listCheck.stop();
        }
        EXPECT_FALSE(opened.model.listCheck.running());
        // The running reads end and nothing of them reaches the list.
        const int reads = slow.reads->load();
        QTest::qWait(200);
        EXPECT_LE(slow.reads->load(), reads + 2);
        EXPECT_TRUE(opened.model.items.markedRows().isEmpty());
    }
}
