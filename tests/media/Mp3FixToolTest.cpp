// The MP3 fix tool as the scripts run it: its exit status, its one line on
// standard error, and no output when it fails.
#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "support/FileSizeLimit.h"
#include "support/MediaMaker.h"

namespace {

struct ToolRun {
    int status = -1;
    QString error;
};

ToolRun fix(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(VELMORA_MP3_FIX_TOOL), arguments);
    process.waitForFinished(60000);
    ToolRun run;
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.error = QString::fromUtf8(process.readAllStandardError());
    return run;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

}  // namespace

TEST(Mp3FixTool, NoMpegAudioFrame_Status3OneLineNoOutput) {
    QTemporaryDir dir;
    writeFile(dir.filePath("in.mp3"), QByteArray(20000, 'x'));
    const ToolRun run = fix({dir.filePath("in.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.error.count(u'\n'), 1);
    EXPECT_TRUE(run.error.contains("no MPEG audio frame")) << run.error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, UnreadableInput_Status2OneLine) {
    QTemporaryDir dir;
    const ToolRun run = fix({dir.filePath("missing.mp3"), dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.error.count(u'\n'), 1);
    EXPECT_TRUE(run.error.contains("cannot read")) << run.error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, WriteFailsHalfWay_Status4AndTheOutputIsRemoved) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    Mp3Options options;
    options.seconds = 10;
    const QString input = MakeMp3(dir.path(), "in.mp3", options);
    ASSERT_FALSE(input.isEmpty());
    ToolRun run;
    {
        FileSizeLimit limit(50000);  // the tool inherits it
        ASSERT_TRUE(limit.active());
        run = fix({input, dir.filePath("out.mp3")});
    }
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.error.count(u'\n'), 1);
    EXPECT_TRUE(run.error.contains("cannot write")) << run.error.toStdString();
    EXPECT_FALSE(QFile::exists(dir.filePath("out.mp3")));
}

TEST(Mp3FixTool, OptionsOfTheOldFixLine_AreAcceptedAndOtherCallsAreUsageErrors) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    const QString input = MakeMp3(dir.path(), "in.mp3");
    ASSERT_FALSE(input.isEmpty());
    const ToolRun run = fix({"--removedId3v1", "--removeId3v2", "--removeUnknown", "--keepLame",
                             input, dir.filePath("out.mp3")});
    EXPECT_EQ(run.status, 0) << run.error.toStdString();
    EXPECT_EQ(run.error, "");
    EXPECT_GT(QFileInfo(dir.filePath("out.mp3")).size(), 0);
    EXPECT_EQ(fix({input}).status, 1);
}
