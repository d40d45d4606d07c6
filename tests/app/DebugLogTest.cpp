#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "app/DebugLog.h"

namespace {

QByteArray readAll(const QString& file) {
    QFile in(file);
    EXPECT_TRUE(in.open(QIODevice::ReadOnly));
    return in.readAll();
}

class DebugLogTest : public ::testing::Test {
protected:
    void TearDown() override { StopLogging(); }
    QTemporaryDir dir;
};

TEST_F(DebugLogTest, LogPath_BeforeStart_IsEmpty) {
    StopLogging();
    EXPECT_TRUE(LogPath().isEmpty());
}

TEST_F(DebugLogTest, StartLogging_ModeTwo_SetsLogPathAndCreatesFile) {
    const QString path = dir.path() + "/21112026123000.log";
    StartLogging(path, 2);
    EXPECT_EQ(LogPath(), path);
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(DebugLogTest, LogEvent_WritesOneLinePerRecordInFull) {
    const QString path = dir.path() + "/a.log";
    StartLogging(path, 2);
    LogEvent(QStringLiteral("LogFile created on: 11/21/2026 12:30:00 PM"), 4);
    LogEvent(QStringLiteral("TempFile=/home/user/out.mp3.vlr.mp3"), 4);
    EXPECT_EQ(readAll(path), QByteArray("LogFile created on: 11/21/2026 12:30:00 PM\n"
                                        "TempFile=/home/user/out.mp3.vlr.mp3\n"));
}

TEST_F(DebugLogTest, LogEvent_LongAndMultiLineText_IsKeptWhole) {
    const QString path = dir.path() + "/b.log";
    StartLogging(path, 2);
    const QString longText = QString(5000, u'z');
    const QString toolOutput = QStringLiteral("frame=  10 fps=0.0\rframe=  20\nsize=   12kB");
    LogEvent(longText, 4);
    LogEvent(toolOutput, 4);
    EXPECT_EQ(readAll(path), (longText + "\n" + toolOutput + "\n").toUtf8());
}

TEST_F(DebugLogTest, LogEvent_NonAsciiText_IsWrittenAsUtf8) {
    const QString path = dir.path() + "/c.log";
    StartLogging(path, 2);
    LogEvent(QStringLiteral("Café.mp3|"), 4);
    EXPECT_EQ(readAll(path), QByteArray("Caf\xC3\xA9.mp3|\n"));
}

TEST_F(DebugLogTest, LogEvent_WhenOff_WritesNothing) {
    const QString path = dir.path() + "/d.log";
    StartLogging(path, 2);
    StopLogging();
    LogEvent(QStringLiteral("not logged"), 4);
    EXPECT_TRUE(LogPath().isEmpty());
    EXPECT_EQ(readAll(path), QByteArray());
}

TEST_F(DebugLogTest, StartLogging_UnwritableFolder_LeavesLoggingOff) {
    StartLogging(dir.path() + "/missing/folder/e.log", 2);
    EXPECT_TRUE(LogPath().isEmpty());
    LogEvent(QStringLiteral("goes nowhere"), 4);  // must not crash
}

TEST_F(DebugLogTest, StartLogging_OtherMode_LeavesLoggingOff) {
    StartLogging(dir.path() + "/f.log", 1);
    EXPECT_TRUE(LogPath().isEmpty());
}

TEST_F(DebugLogTest, StartLogging_ExistingFile_AppendsToIt) {
    const QString path = dir.path() + "/g.log";
    {
        QFile out(path);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write("earlier\n");
    }
    StartLogging(path, 2);
    LogEvent(QStringLiteral("later"), 4);
    EXPECT_EQ(readAll(path), QByteArray("earlier\nlater\n"));
}

}  // namespace
