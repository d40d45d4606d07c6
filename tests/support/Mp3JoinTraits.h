#pragma once

#include <memory>

#include "media/JoinTraits.h"

// The values the row check reads of an MPEG-1 Layer III file at this rate
// and channel count, for tests that set a row's check without a file.
inline std::shared_ptr<JoinTraits> Mp3Traits(int rate, int channels = 2) {
    auto traits = std::make_shared<JoinTraits>();
    AudioTraits audio;
    audio.format = "MPEG Audio";
    audio.version = "Version 1";
    audio.layer = "Layer 3";
    audio.rate = rate;
    audio.channels = channels;
    traits->audio.append(audio);
    return traits;
}
