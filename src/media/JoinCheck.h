#pragma once

#include <QString>

#include "media/JoinTraits.h"

// How one row of a list compares with the first row on what decides whether
// a lossless join plays right. Orange: the join works, with a glitch where
// the files meet (another sampling rate or channel count, another display
// aspect ratio). Red: the joined file would be broken (another MPEG audio
// version or layer, no MPEG audio, another container, video codec, picture
// size, frame rate or set of audio streams), or a file is missing or cannot
// be read. The reason names each difference with both values in user words:
// "Mono, 22,050 Hz: the first file is stereo, 44,100 Hz".
struct RowCheck {
    enum class Mark { None, Orange, Red };
    Mark mark = Mark::None;
    QString reason;

    bool operator==(const RowCheck& other) const = default;
};

// The check of a row with these traits against the first row's. Traits of
// different list kinds are not compared (no mark).
RowCheck CheckAgainstFirst(const JoinTraits& first, const JoinTraits& row);
