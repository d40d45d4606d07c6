#pragma once

#include <gtest/gtest.h>

#include "support/MediaMaker.h"

// Skips the running test when ffmpeg, which makes its media, is not there.
#define REQUIRE_FFMPEG()                            \
    do {                                            \
        if (!HaveFfmpeg()) {                        \
            GTEST_SKIP() << "ffmpeg not installed"; \
        }                                           \
    } while (false)
