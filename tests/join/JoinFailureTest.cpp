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
