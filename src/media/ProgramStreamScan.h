#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

// Where each stream of an MPEG program stream (MPEG-1 system stream, MPEG-2
// program stream, DVD VOB) first appears, read from the pack and packet
// headers alone in one pass with a fixed buffer: memory stays flat whatever
// the size of the file, and the reading goes at the speed of the disk.
//
// A stream is named as the MPEG-2 tool names it: a packet stream by 0x100 +
// its stream id (0x1e0 video, 0x1c0 the first MPEG audio track, 0x1bf the
// navigation packets of a DVD); a sub-stream of private stream 1 by its
// sub-stream id (0x80 the first AC-3 track, 0xa0 LPCM, 0x20 the first
// subpicture track). Padding, the program stream map and the other system
// packets are walked over and name no stream.

// The first packet of one stream.
struct StreamAppearance {
    int id = 0;
    // Where the packet starts (its start code), counted from the start of the file.
    std::int64_t offset = 0;
    // The system clock run from the first pack to the pack that carries this
    // packet, in seconds (see ProgramStreamMap::clockSeconds).
    double clockSeconds = 0;
};

struct ProgramStreamMap {
    // Every stream, in the order of first appearance.
    std::vector<StreamAppearance> streams;
    // Bytes read: the file's length when it was read to its end.
    std::int64_t bytes = 0;
    // Pack headers met; none means the bytes are no program stream.
    std::int64_t packs = 0;
    // The time the system clock runs over the file, in seconds: the sum of
    // the steps of the clock reference from one pack to the next, each step
    // counted as at most one second, so that a clock that starts again or
    // jumps (a seam, an edit) adds no more than that.
    double clockSeconds = 0;
    // True when the bytes were read to their end; false when the scan was
    // stopped or a read failed.
    bool complete = false;

    // The first appearance of a stream, or nullptr.
    const StreamAppearance* find(int id) const;
};

// Hands out the next bytes: fills up to size bytes at data and gives the
// count, 0 at the end, a negative count on a read error.
using ByteReader = std::function<std::int64_t(char* data, std::int64_t size)>;
// Asked between reads; true ends the scan early (incomplete).
using ScanStop = std::function<bool()>;

// Walks the bytes from the reader to their end. Bytes that are no header
// (garbage, a damaged stretch, a container's own header) are passed over up
// to the next start code; a packet cut short by the end counts where it
// starts.
ProgramStreamMap ScanProgramStream(const ByteReader& read, const ScanStop& stop = {});

// The same over a file. Only a regular file is read (a pipe or a device
// would be drained or would block): for anything else, or a file that does
// not open, the map is empty and incomplete.
ProgramStreamMap ScanProgramStreamFile(const QString& path, const ScanStop& stop = {});
