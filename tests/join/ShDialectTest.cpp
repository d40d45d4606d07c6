#include <gtest/gtest.h>

#include "join/ShDialect.h"

namespace {

TEST(ShDialect, Quote_PlainPath_StandsInSingleQuotes) {
    EXPECT_EQ(ShDialect::quote("/home/me/My Music/a b.mp3"), "'/home/me/My Music/a b.mp3'");
}

TEST(ShDialect, Quote_EmbeddedSingleQuote_IsClosedEscapedAndReopened) {
    EXPECT_EQ(ShDialect::quote("/m/it's.mp3"), "'/m/it'\\''s.mp3'");
    EXPECT_EQ(ShDialect::quote("''"), "''\\'''\\'''");
}

TEST(ShDialect, Quote_ShellCharacters_StayLiteral) {
    EXPECT_EQ(ShDialect::quote("/m/$(touch x) `y` \"z\" & ; % * \\ ! #.mp3"),
              "'/m/$(touch x) `y` \"z\" & ; % * \\ ! #.mp3'");
    EXPECT_EQ(ShDialect::quote("/m/line\nbreak.mp3"), "'/m/line\nbreak.mp3'");
}

TEST(ShDialect, Quote_LeadingDash_GetsDotSlash) {
    EXPECT_EQ(ShDialect::quote("-n.mp3"), "'./-n.mp3'");
    EXPECT_EQ(ShDialect::quote("/m/-n.mp3"), "'/m/-n.mp3'");
}

TEST(ShDialect, Lines_HaveNoInputAndLfEnds) {
    ShDialect sh;
    EXPECT_EQ(sh.lineEnd(), "\n");
    EXPECT_EQ(sh.childPath("/a b", "JoinTemp"), "/a b/JoinTemp");
    EXPECT_EQ(sh.firstCopyLine("/m/a.mp3", "/o/t"),
              "command exec 3> '/o/t' && cat '/m/a.mp3' >&3 < /dev/null");
    EXPECT_EQ(sh.appendCopyLine("/m/a.mp3", "/o/t"), "cat '/m/a.mp3' >&3 < /dev/null");
    EXPECT_EQ(sh.removeMarkerLine("/a/JoinTemp"), "rmdir '/a/JoinTemp' < /dev/null");
    EXPECT_EQ(sh.deleteFileLine("/o/t"), "rm -f '/o/t' < /dev/null");
    EXPECT_EQ(sh.stopIfGoneLines("/a/x.bat"), QStringList{"[ -f '/a/x.bat' ] || exit 1"});
    EXPECT_EQ(sh.echoLine("Fixing MP3 File..."), "echo Fixing MP3 File...");
    EXPECT_EQ(sh.exitLine(), "exit");
    EXPECT_EQ(sh.headLines("host.example"), (QStringList{"#!/bin/sh", "echo Generated with Velmora",
                                                         "echo Visit us at: host.example"}));
}

// The check of a step that a fix line carries: record, marker, no error log.
ScriptDialect::StepCheck fixCheck() {
    ScriptDialect::StepCheck check;
    check.step = 1;
    check.failureRecord = "/a/JoinStep.failed";
    check.markerFolder = "/a/JoinTemp";
    return check;
}
const char kFixCheckTail[] =
    " || { echo \"$?\" 1 > '/a/JoinStep.failed'; rmdir '/a/JoinTemp'; exit 1; }";

TEST(ShDialect, Mp3Fix_OneCheckedCallOfTheFixToolFromTempFileToOutput) {
    ShDialect sh;
    ScriptDialect::Mp3Fix fix;
    fix.scriptPath = "/a/MP3.bat";
    fix.fixTool = "/a/MP3.exe";
    fix.tempFile = "/o/it's.mp3.vlr.mp3";
    fix.outputFile = "/o/it's.mp3";
    fix.check = fixCheck();
    EXPECT_EQ(sh.mp3FixLines(fix),
              (QStringList{"[ -f '/a/MP3.bat' ] || exit 1",
                           "'/a/MP3.exe' '/o/it'\\''s.mp3.vlr.mp3' '/o/it'\\''s.mp3' < /dev/null" +
                               QString(kFixCheckTail)}));
}

TEST(ShDialect, Mp3FixWithoutTag_AsksTheToolForNone) {
    ShDialect sh;
    ScriptDialect::Mp3Fix fix;
    fix.scriptPath = "/a/MP3.bat";
    fix.fixTool = "/a/MP3.exe";
    fix.tempFile = "/o/j.mp3.vlr.mp3";
    fix.outputFile = "/o/j.mp3";
    fix.tag = false;
    fix.check = fixCheck();
    EXPECT_EQ(
        sh.mp3FixLines(fix).value(1),
        "'/a/MP3.exe' --no-tag '/o/j.mp3.vlr.mp3' '/o/j.mp3' < /dev/null" + QString(kFixCheckTail));
}

TEST(ShDialect, CheckedStep_ErrorOutputToTheLog_StatusAndStepToTheRecord_MarkerGoes) {
    ShDialect sh;
    ScriptDialect::StepCheck check = fixCheck();
    check.step = 3;
    check.errorLog = "/a/JoinStep.log";
    EXPECT_EQ(sh.checkedStep("cat '/m/c' >> '/o/t' < /dev/null", check),
              "{ cat '/m/c' >> '/o/t' < /dev/null; } 2> '/a/JoinStep.log' || { echo \"$?\" 3 > "
              "'/a/JoinStep.failed'; rmdir '/a/JoinTemp'; exit 1; }");
    // No record named: the command as it stands.
    EXPECT_EQ(sh.checkedStep("true", ScriptDialect::StepCheck{}), "true");
}

TEST(ShDialect, ToolLines_UseTheOptionsOfTheInstalledTools) {
    ShDialect sh;
    EXPECT_EQ(sh.mpegJoinLine("/a/MPEG.exe", {"/m/1.mpg", "/m/2.mpg"}, "/o/t.vlr.mpg"),
              "'/a/MPEG.exe' -j -f --force '/m/1.mpg' '/m/2.mpg' -o '/o/t.vlr.mpg' < /dev/null");
    ScriptDialect::MpegRemake remake;
    remake.tool = "/a/MPEG2.exe";
    remake.tempFile = "/o/t.vlr.mpg";
    remake.outputFile = "/o/t";
    remake.probeBytes = 3000000000;
    remake.analyzeMicroseconds = 360000000000;
    remake.check = fixCheck();
    // Every stream but data streams, in their order, found within the probe.
    EXPECT_EQ(sh.mpeg2FixLine(remake),
              "'/a/MPEG2.exe' -nostdin -stats_period 0.1 -analyzeduration 360000000000 -probesize "
              "3000000000 -i '/o/t.vlr.mpg' -map 0 -map -0:d -c copy -f vob -y '/o/t' < /dev/null" +
                  QString(kFixCheckTail));
    EXPECT_TRUE(sh.remakesMpeg1());
    // The probe's figures go into the line as they are given.
    remake.probeBytes = 5020000;
    remake.analyzeMicroseconds = 31500000;
    EXPECT_EQ(sh.mpeg1FixLine(remake),
              "'/a/MPEG2.exe' -nostdin -analyzeduration 31500000 -probesize 5020000 -i "
              "'/o/t.vlr.mpg' -map 0 -map -0:d -c copy -f mpeg -y '/o/t' < /dev/null" +
                  QString(kFixCheckTail));
    // A join known to be a program stream is read as one, keeping nothing of the probe.
    remake.programStream = true;
    EXPECT_EQ(sh.mpeg2FixLine(remake),
              "'/a/MPEG2.exe' -nostdin -stats_period 0.1 -fflags nobuffer -f mpeg -analyzeduration "
              "31500000 -probesize 5020000 -i '/o/t.vlr.mpg' -map 0 -map -0:d -c copy -f vob -y "
              "'/o/t' < /dev/null" +
                  QString(kFixCheckTail));
}

}  // namespace
