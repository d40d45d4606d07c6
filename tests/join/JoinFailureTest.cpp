// The pieces the run reads a failure from: the reason in a tool's error text,
// the reason of an exit status, and the streams a remake left out.
#include <gtest/gtest.h>

#include "join/JoinFailure.h"
#include "join/RemakeStreams.h"
#include "platform/ExitStatus.h"

TEST(ReasonInErrorText, TheLastLineWithAColon_GivesWhatStandsBehindItsLastColon) {
    EXPECT_EQ(ReasonInErrorText("cat: write error: No space left on device\n"),
              "No space left on device");
    EXPECT_EQ(ReasonInErrorText("TempFile.bat: 9: cannot create /o/j.vlr.mpg: Directory "
                                "nonexistent\n"),
              "Directory nonexistent");
    EXPECT_EQ(ReasonInErrorText("frame=  300 fps=0.0\r/o/j.vlr.mpg: Invalid data found when "
                                "processing input\nConversion failed!\n"),
              "Invalid data found when processing input");
    EXPECT_EQ(ReasonInErrorText("no reason here\n"), "");
    EXPECT_EQ(ReasonInErrorText(""), "");
}

TEST(ReadErrorText, PathsWithColonAndBlank_FileAndReasonTakenWhole) {
    const QString source = QStringLiteral("/m/Live: Tokyo/02: Encore.mp3");
    const QString temp = QStringLiteral("/o/Live: Tokyo.mp3.vlr.mp3");
    const QStringList known{source, temp, QStringLiteral("/o/Live: Tokyo.mp3"),
                            QStringLiteral("/m/Live")};
    // The fix tool: its name, the file, the reason.
    ErrorInText error = ReadErrorText("Fixing MP3 File...\nMP3.exe: " + source +
                                          ": no MPEG audio Layer III frame could be "
                                          "read in it\n",
                                      known);
    EXPECT_EQ(error.file, source);
    EXPECT_EQ(error.reason, "no MPEG audio Layer III frame could be read in it");
    EXPECT_EQ(error.line,
              "MP3.exe: " + source + ": no MPEG audio Layer III frame could be read in it");
    // cat quotes a name with a blank; the shell does not.
    error = ReadErrorText("cat: '" + source + "': Permission denied\n", known);
    EXPECT_EQ(error.file, source);
    EXPECT_EQ(error.reason, "Permission denied");
    error = ReadErrorText("TempFile.bat: 9: cannot create " + temp + ": Directory nonexistent\n",
                          known);
    EXPECT_EQ(error.file, temp);
    EXPECT_EQ(error.reason, "Directory nonexistent");
    // A reason that names the file at its end, behind a ": " of its own.
    error =
        ReadErrorText("MP3.exe: no chapters: cannot read the sources in " + source + '\n', known);
    EXPECT_EQ(error.file, QString());
    EXPECT_EQ(error.reason, "cannot read the sources in " + source);
    // A line whose only ": " stand inside a file is no error line.
    error =
        ReadErrorText("MP3.exe: " + source + ": bad\nOutput #0, vob, to '" + temp + "':\n", known);
    EXPECT_EQ(error.reason, "bad");
    // No file known: the last ": " of the line, as before.
    EXPECT_EQ(ReasonInErrorText("cat: '/m/Live: Tokyo/a.mp3': No such file or directory\n"),
              "No such file or directory");
}

TEST(ExitStatusReason, SignalsMissingAndRefusedCommandsAndOtherStatuses) {
    EXPECT_EQ(ExitStatusReason(128 + 25), "File size limit exceeded");
    EXPECT_EQ(ExitStatusReason(128 + 9), "Killed");
    EXPECT_EQ(ExitStatusReason(127), "No such file or directory");
    EXPECT_EQ(ExitStatusReason(126), "Permission denied");
    EXPECT_EQ(ExitStatusReason(1), "exit status 1");
}

TEST(LeftOutStreams, DataStreamsOfTheInputThatNoMappingNames) {
    const QString output =
        "Input #0, mpeg, from '/o/j.vlr.mpg':\n"
        "  Duration: 00:00:12.00, start: 0.500000, bitrate: 1161 kb/s\n"
        "  Stream #0:0[0x1bf]: Data: dvd_nav_packet\n"
        "  Stream #0:1[0x1e0]: Video: mpeg2video (Main), yuv420p(tv, progressive), 720x576\n"
        "  Stream #0:2[0x80]: Audio: ac3, 48000 Hz, mono, fltp, 96 kb/s\n"
        "  Stream #0:3[0x1c0]: Audio: mp2, 48000 Hz, mono, s16p, 384 kb/s\n"
        "Output #0, vob, to '/o/j':\n"
        "  Stream #0:0: Video: mpeg2video (Main), yuv420p(tv, progressive), 720x576\n"
        "  Stream #0:1: Audio: ac3, 48000 Hz, mono, fltp, 96 kb/s (default)\n"
        "  Stream #0:2: Audio: mp2, 48000 Hz, mono, s16p, 384 kb/s\n"
        "Stream mapping:\n"
        "  Stream #0:1 -> #0:0 (copy)\n"
        "  Stream #0:2 -> #0:1 (copy)\n"
        "  Stream #0:3 -> #0:2 (copy)\n"
        "Press [q] to stop, [?] for help\n";
    EXPECT_EQ(LeftOutStreams(output), QStringList{"Stream #0:0[0x1bf]: Data: dvd_nav_packet"});
}

TEST(LeftOutStreams, EveryStreamMapped_OrNoMappingAtAll_GivesNothing) {
    const QString mapped =
        "Input #0, mpeg, from 't':\n"
        "  Stream #0:0[0x1e0]: Video: mpeg1video\n"
        "Stream mapping:\n"
        "  Stream #0:0 -> #0:0 (copy)\n";
    EXPECT_TRUE(LeftOutStreams(mapped).isEmpty());
    EXPECT_TRUE(
        LeftOutStreams("Input #0, mpeg, from 't':\n  Stream #0:0[0x1e0]: Video: x\n").isEmpty());
}
