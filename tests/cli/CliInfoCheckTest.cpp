// velmora-cli info and check, run as processes with no display, against what
// ffprobe and MediaInfo's own program read of the same files.
#include <gtest/gtest.h>

#include <QFile>

#include "cli/CliTestBed.h"
#include "list/AddFilesModule.h"
#include "list/ListFunctions.h"
#include "list/MainModel.h"
#include "support/MemoryClipboard.h"
#include "support/RequireFfmpeg.h"
#include "support/ScriptedQuestions.h"

namespace {

QString probe(const QString& path, const QString& stream, const QString& entry) {
    return RunFfprobe({QStringLiteral("-v"), QStringLiteral("error"),
                       QStringLiteral("-select_streams"), stream, QStringLiteral("-show_entries"),
                       QStringLiteral("stream=") + entry, QStringLiteral("-of"),
                       QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed();
}

// A list file of these files, written by the window's own routines.
QString writeListFile(const QString& path, const QString& listType, const QStringList& files) {
    ScriptedQuestions questions;
    MemoryClipboard clipboard;
    MainModel model(questions, clipboard);
    NewItemList(model, listType);
    AddDroppedFiles(model, files);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(ListFileText(model));
    return path;
}

}  // namespace

TEST(CliInfo, Mp3AndMpegFiles_JsonAgreesWithFfprobeAndMediaInfo) {
    REQUIRE_FFMPEG();
    CliTestBed bed;
    const QString mp3 = bed.makeMp3(bed.media, QStringLiteral("song.mp3"), 48000, 3.0);
    const QString mpeg = bed.makeMpeg2(bed.media, QStringLiteral("title.mpg"), 720, 576, 2.0);
    const CliRun run = bed.run({QStringLiteral("info"), QStringLiteral("--json"), mp3, mpeg});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_FALSE(run.crashed);

    const QStringList values = PythonJsonValues(
        run.out, {QStringLiteral("d['format_version']"), QStringLiteral("len(d['files'])"),
                  QStringLiteral("d['files'][0]['cells']['Hertz']"),
                  QStringLiteral("d['files'][0]['check']['audio'][0]['rate']"),
                  QStringLiteral("d['files'][0]['check']['audio'][0]['channels']"),
                  QStringLiteral("d['files'][0]['check']['audio'][0]['layer']"),
                  QStringLiteral("d['files'][0]['cells']['Duration']"),
                  QStringLiteral("d['files'][1]['cells']['Video Size']"),
                  QStringLiteral("d['files'][1]['cells']['Video Codec']"),
                  QStringLiteral("d['files'][1]['check']['video']['width']"),
                  QStringLiteral("len(d['files'][1]['check']['audio'])"),
                  QStringLiteral("d['files'][1]['cells']['Filename']")});
    ASSERT_EQ(values.size(), 12) << run.out.toStdString();
    EXPECT_EQ(values.at(0), QStringLiteral("1"));
    EXPECT_EQ(values.at(1), QStringLiteral("2"));
    // The MP3 file as ffprobe and MediaInfo see it.
    const QString rate = probe(mp3, QStringLiteral("a:0"), QStringLiteral("sample_rate"));
    EXPECT_EQ(rate, QStringLiteral("48000"));
    EXPECT_EQ(values.at(2), MediaInfoProgramValue(mp3, QStringLiteral("Audio;%SamplingRate%")) +
                                QStringLiteral(" (Stereo)"));
    EXPECT_EQ(values.at(3), rate);
    EXPECT_EQ(values.at(4), probe(mp3, QStringLiteral("a:0"), QStringLiteral("channels")));
    EXPECT_EQ(values.at(5), QStringLiteral("Layer 3"));
    const qint64 milliseconds =
        MediaInfoProgramValue(mp3, QStringLiteral("General;%Duration%")).toLongLong();
    EXPECT_EQ(values.at(6), QString::number(milliseconds / 1000) + QStringLiteral(" seconds"));
    // The MPEG file.
    EXPECT_EQ(values.at(7), probe(mpeg, QStringLiteral("v:0"), QStringLiteral("width")) + u'x' +
                                probe(mpeg, QStringLiteral("v:0"), QStringLiteral("height")));
    EXPECT_EQ(values.at(8), MediaInfoProgramValue(mpeg, QStringLiteral("Video;%Codec%")));
    EXPECT_EQ(values.at(9), QStringLiteral("720"));
    EXPECT_EQ(values.at(10).toInt(),
              probe(mpeg, QStringLiteral("a"), QStringLiteral("index")).split(u'\n').size());
    EXPECT_EQ(values.at(11), QStringLiteral("title.mpg"));
}

TEST(CliInfo, TextForm_NamesEachCellByItsColumn) {
    REQUIRE_FFMPEG();
    CliTestBed bed;
    const QString mp3 = bed.makeMp3(bed.media, QStringLiteral("song.mp3"));
    const CliRun run = bed.run({QStringLiteral("info"), mp3});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    for (const char* line :
         {"  Filename: song.mp3", "  Artist: The Band", "  Album: The Album",
          "  Hertz: 44100 (Stereo)", "  Bitrate: 128 kbps", "  Audio: MPEG-1 Layer III"}) {
        EXPECT_TRUE(run.out.contains(QLatin1String(line))) << line << "\n" << run.out.toStdString();
    }
}

TEST(CliInfo, MissingFile_ExitsTwoAfterTheOthers) {
    REQUIRE_FFMPEG();
    CliTestBed bed;
    const QString mp3 = bed.makeMp3(bed.media, QStringLiteral("song.mp3"));
    const CliRun run =
        bed.run({QStringLiteral("info"), bed.media + QStringLiteral("/gone.mp3"), mp3});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.startsWith(QStringLiteral("error: "))) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Filename: song.mp3")));
}

class CliCheck : public ::testing::Test {
protected:
    void SetUp() override { REQUIRE_FFMPEG(); }
    CliTestBed bed;
};

TEST_F(CliCheck, GreenList_ExitsZeroWithTheStatusText) {
    const QString a = bed.makeMp3(bed.media, QStringLiteral("a.mp3"));
    const QString b = bed.makeMp3(bed.media, QStringLiteral("b.mp3"), 44100, 2.0, 660);
    const CliRun run = bed.run({QStringLiteral("check"), a, b});
    EXPECT_EQ(run.exitCode, 0) << run.out.toStdString() << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Grade: Green")));
    EXPECT_TRUE(run.out.contains(
        QStringLiteral("This status indicates that there is nothing wrong with your list.")));
}

TEST_F(CliCheck, OrangeList_ExitsOneAndNamesTheRowThatDiffers) {
    const QString a = bed.makeMp3(bed.media, QStringLiteral("a.mp3"));
    const QString b = bed.makeMp3(bed.media, QStringLiteral("b.mp3"), 48000);
    const CliRun run = bed.run({QStringLiteral("check"), a, b});
    EXPECT_EQ(run.exitCode, 1) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Grade: Orange")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("-Different Kilohertz")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("Row 2 (b.mp3): Orange: ")))
        << run.out.toStdString();

    const CliRun json = bed.run({QStringLiteral("check"), QStringLiteral("--json"), a, b});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_EQ(PythonJsonValues(
                  json.out,
                  {QStringLiteral("d['grade']"), QStringLiteral("d['differing_rows']"),
                   QStringLiteral("d['rows'][1]['mark']"), QStringLiteral("d['format_version']")}),
              (QStringList{"Orange", "[2]", "orange", "1"}));
}

TEST_F(CliCheck, RedList_ExitsThree) {
    const QString a = bed.makeMpeg2(bed.media, QStringLiteral("a.mpg"), 720, 576);
    const QString b = bed.makeMpeg2(bed.media, QStringLiteral("b.mpg"), 352, 288);
    const CliRun run = bed.run({QStringLiteral("check"), a, b});
    EXPECT_EQ(run.exitCode, 3) << run.out.toStdString() << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Grade: Red")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("Row 2 (b.mpg): Red: ")));
    // One file is too few to join.
    EXPECT_EQ(bed.run({QStringLiteral("check"), a}).exitCode, 3);
}

TEST_F(CliCheck, ListFile_InItsOwnOrderWithItsRowsChecked) {
    const QString a = bed.makeMp3(bed.media, QStringLiteral("a.mp3"));
    const QString b = bed.makeMp3(bed.media, QStringLiteral("b.mp3"), 48000);
    const QString list =
        writeListFile(bed.root + QStringLiteral("/list.vlr"), QStringLiteral("MP3"), {b, a});
    const CliRun run = bed.run({QStringLiteral("check"), QStringLiteral("--json"), list});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_EQ(PythonJsonValues(run.out, {QStringLiteral("d['list_type']"),
                                         QStringLiteral("d['rows'][0]['cells']['Filename']"),
                                         QStringLiteral("d['rows'][1]['mark']"),
                                         QStringLiteral("d['rows'][1]['check']['access']")}),
              (QStringList{"MP3", "b.mp3", "orange", "readable"}));
}

TEST_F(CliCheck, SourcesOfBothTypes_AreABadCommandLine) {
    const QString a = bed.makeMp3(bed.media, QStringLiteral("a.mp3"));
    const QString b = bed.makeMpeg2(bed.media, QStringLiteral("b.mpg"));
    const CliRun run = bed.run({QStringLiteral("check"), a, b});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains(QStringLiteral("error: the sources hold both MP3 and MPEG")))
        << run.err.toStdString();
    // A type asked for that a source contradicts.
    EXPECT_EQ(
        bed.run({QStringLiteral("check"), QStringLiteral("--type"), QStringLiteral("mpeg"), a})
            .exitCode,
        2);
    // A source that is not there.
    EXPECT_EQ(bed.run({QStringLiteral("check"), a, bed.media + QStringLiteral("/x.mp3")}).exitCode,
              2);
}
