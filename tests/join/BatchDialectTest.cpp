#include <gtest/gtest.h>

#include "join/BatchDialect.h"

namespace {

TEST(BatchDialect, Lines_AreTheCommandProcessorsWithCrLf) {
    BatchDialect bat;
    EXPECT_EQ(bat.lineEnd(), "\r\n");
    EXPECT_EQ(bat.childPath("C:\\Data & Co", "MP3.exe"), "C:\\Data & Co\\MP3.exe");
    EXPECT_EQ(bat.headLines("www.velmora.example"),
              (QStringList{"@echo off", "echo Generated with Velmora",
                           "echo Visit us at: www.velmora.example"}));
    EXPECT_EQ(bat.firstCopyLine("C:\\m\\a b.mp3", "D:\\o.mp3.vlr.mp3"),
              "Copy /b \"C:\\m\\a b.mp3\" \"D:\\o.mp3.vlr.mp3\"");
    EXPECT_EQ(bat.appendCopyLine("C:\\m\\b.mp3", "D:\\t"),
              "Copy /b \"D:\\t\"+\"C:\\m\\b.mp3\" \"D:\\t\"");
    EXPECT_EQ(bat.removeMarkerLine("C:\\a\\JoinTemp"), "rmdir \"C:\\a\\JoinTemp\"");
    EXPECT_EQ(bat.deleteFileLine("D:\\t"), "del \"D:\\t\"");
    EXPECT_EQ(bat.echoLine("Joined Succesfully!"), "echo Joined Succesfully!");
    EXPECT_EQ(bat.exitLine(), "exit");
    EXPECT_TRUE(bat.stopIfGoneLines("C:\\a\\TempFile.bat").isEmpty());
    EXPECT_FALSE(bat.remakesMpeg1());
}

TEST(BatchDialect, ToolLines_AreWrittenExactlyWithTheirOldOptions) {
    BatchDialect bat;
    EXPECT_EQ(bat.mpegJoinLine("C:\\a\\MPEG.exe", {"C:\\1.mpg", "C:\\2.mpg"}, "D:\\t"),
              "\"C:\\a\\MPEG.exe\" -j --force \"C:\\1.mpg\" \"C:\\2.mpg\" -o \"D:\\t\"");
    // What a step leaves on failure changes no line of this language.
    ScriptDialect::StepCheck check;
    check.step = 1;
    check.failureRecord = "C:\\a\\JoinStep.failed";
    check.errorLog = "C:\\a\\JoinStep.log";
    check.markerFolder = "C:\\a\\JoinTemp";
    ScriptDialect::Mp3Fix fix;
    fix.fixTool = "C:\\a\\MP3.exe";
    fix.tempFile = "D:\\o.mp3.vlr.mp3";
    fix.outputFile = "D:\\o.mp3";
    fix.check = check;
    EXPECT_EQ(bat.mp3FixLines(fix),
              QStringList{"\"C:\\a\\MP3.exe\" --removedId3v1 --removeId3v2 --removeUnknown "
                          "--keepLame \"D:\\o.mp3.vlr.mp3\" \"D:\\o.mp3\""});
    ScriptDialect::MpegRemake remake;
    remake.tool = "C:\\a\\MPEG2.exe";
    remake.tempFile = "D:\\t";
    remake.outputFile = "D:\\o";
    remake.probeBytes = 123456789;
    remake.check = check;
    EXPECT_EQ(bat.mpeg2FixLine(remake), "\"C:\\a\\MPEG2.exe\" -i \"D:\\t\" -sameq -y \"D:\\o\"");
    EXPECT_EQ(bat.checkedStep("Copy /b \"C:\\1.mpg\" \"D:\\t\"", check),
              "Copy /b \"C:\\1.mpg\" \"D:\\t\"");
}

TEST(BatchDialect, Paths_AreNotEscaped) {
    BatchDialect bat;
    EXPECT_EQ(bat.firstCopyLine("C:\\100% & more\\a.mp3", "D:\\t"),
              "Copy /b \"C:\\100% & more\\a.mp3\" \"D:\\t\"");
}

}  // namespace
