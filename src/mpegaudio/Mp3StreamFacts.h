#pragma once

#include <cstdint>
#include <string>

#include "mpegaudio/Mp3FrameWalker.h"
#include "mpegaudio/MpegFrameHeader.h"

// What the frame walker finds in an MP3 stream: its audio frames as the fix
// tool joins them, for a file whose audio the media library does not see (a
// free-format file) and for the frame report's free-format bit rate.
struct Mp3StreamFacts {
    bool hasAudio = false;
    MpegFrameHeader first;  // the first audio frame's header
    int firstLength = 0;    // and its length in bytes
    std::uint64_t frames = 0;
    double seconds = 0;  // the audio frames' playing time

    bool freeFormat() const { return hasAudio && first.isFreeFormat(); }
    // The first frame's bit rate in kbit/s: from the tables, or in free format
    // the rate that its frames' length makes.
    int kbps() const;
};

// The facts of the stream in source, up to the end or to mostFrames audio
// frames. The walk gives up, with no audio, where more than a megabyte of
// bytes that are no MPEG audio stand before the first audio frame: a long
// file that is no MP3 is not read to its end.
Mp3StreamFacts ReadMp3StreamFacts(Mp3ByteSource& source, std::uint64_t mostFrames = UINT64_MAX);
// The same of a file; no audio when it cannot be read.
Mp3StreamFacts ReadMp3FileFacts(const std::string& path);
