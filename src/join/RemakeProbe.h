#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "media/ProgramStreamScan.h"

// How far into the raw join (TempFile) the MPEG remake reads before it
// decides which streams there are. A stream whose first packet lies beyond
// the probe is never found and is left out of the output without a word;
// every byte of the probe is read before the tool writes anything, and by
// default the tool holds what it probes in memory. So the probe reaches
// exactly as far as the deepest first appearance of a stream in the join,
// and a margin beyond it; and a join whose parts are all program streams is
// remade with nothing of the probe held.

// The first packet of a stream in the joined sequence.
struct JoinStreamAppearance {
    int id = 0;  // as in StreamAppearance
    // The list position (from 1) of the part where it first appears.
    int part = 0;
    // Where the packet starts in the raw join: the lengths of the parts
    // before it and its place in its own part.
    qint64 offset = 0;
    // The system clock run from the start of the join up to it, in seconds.
    double clockSeconds = 0;
};

// What the scan of every part found, in list order.
struct JoinStreamMap {
    // Each stream once, where it appears first in the join, in that order.
    std::vector<JoinStreamAppearance> streams;
    // The length of the raw join: the sum of the parts' lengths on disk.
    qint64 bytes = 0;
    // True when every part was read to its end and holds program stream
    // packs: only then does the map speak for the whole join.
    bool whole = false;
    // How many parts, from the first, have a clock the map can go by: one
    // that runs at least as fast as the bytes allow (see ScanJoinParts).
    int clockedParts = 0;

    // The stream that appears last, or nullptr when there is none.
    const JoinStreamAppearance* deepest() const;
};

// The probe of a remake: the bytes it reads and the play time it may analyse
// (microseconds), which must not end the probe before the bytes do.
struct RemakeProbe {
    qint64 probeBytes = 0;
    qint64 analyzeMicroseconds = 0;
    // True when the scan found every part to be a program stream (see
    // ScriptDialect::MpegRemake::programStream).
    bool programStream = false;
};

namespace RemakeProbeRule {
// Read beyond the deepest first appearance: what the tool reads of a file by
// default, so that each stream, even the last to start, gets as many of its
// packets before the decision as the tool's default gives a file whose
// streams all start at once.
constexpr qint64 kMarginBytes = 5000000;
// The probe when nothing is known of the streams: the whole join, and a
// hundred hours of play time, so that only the bytes end it.
constexpr qint64 kWholeJoinMicroseconds = 360000000000;
// The play time analysed beyond the clock of the deepest first appearance:
// the tool counts the time of the frames it has read, which may run ahead
// of the system clock by the decoder's buffer (about a second) and which it
// may count double when it misjudges a frame rate; the factor two and this
// half minute cover both, and the bytes of the margin.
constexpr qint64 kAnalyzeSlackMicroseconds = 30000000;
// No program stream carries more than this (MPEG-2 at its highest level
// needs 80 Mbit/s): a part whose bytes come faster by its clock has a clock
// that does not tell the time.
constexpr double kFastestBytesPerSecond = 100e6 / 8;
}  // namespace RemakeProbeRule

// Scans each part in list order (ScanProgramStreamFile) and puts the
// streams' first appearances together into the joined sequence. Stops early
// (and the map is not whole) when stop says so or a part cannot be read.
JoinStreamMap ScanJoinParts(const QStringList& parts, const ScanStop& stop = {});

// The whole join and a hundred hours: the probe when the streams are not known.
RemakeProbe WholeJoinProbe(qint64 joinBytes);

// The probe for a join whose streams are mapped: up to the deepest first
// appearance and the margin; the play time twice the clock there and the
// slack, or a hundred hours when a part up to there has no clock to go by;
// a program stream. A map that is not whole gives the whole join.
RemakeProbe ProbeOfJoin(const JoinStreamMap& map);

// The debug log's account of the map: one record per stream ("Stream 0x1c0
// first at byte 1073743872, in VTS_01_3.VOB"), or one record saying that the
// remake reads the whole join.
QStringList JoinStreamRecords(const JoinStreamMap& map, const QStringList& parts);
