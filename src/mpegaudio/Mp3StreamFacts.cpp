#include "mpegaudio/Mp3StreamFacts.h"

#include <fcntl.h>
#include <unistd.h>

#include "mpegaudio/Mp3ByteSources.h"

namespace {
constexpr std::uint64_t kMostJunkBeforeAudio = 1 << 20;
constexpr std::size_t kBufferBytes = 1 << 16;
}  // namespace

int Mp3StreamFacts::kbps() const {
    if (!hasAudio) {
        return 0;
    }
    return first.isFreeFormat() ? first.kbpsOfLength(firstLength - first.freeFormatLength(0))
                                : first.bitrateKbps();
}

Mp3StreamFacts ReadMp3StreamFacts(Mp3ByteSource& source, std::uint64_t mostFrames) {
    Mp3StreamFacts facts;
    Mp3FrameWalker walker(source, kBufferBytes);
    std::uint64_t junk = 0;
    for (Mp3FrameWalker::Item item = walker.next();
         item != Mp3FrameWalker::Item::End && item != Mp3FrameWalker::Item::ReadError &&
         facts.frames < mostFrames;
         item = walker.next()) {
        if (item == Mp3FrameWalker::Item::Junk && !facts.hasAudio) {
            junk += walker.length();
            if (junk > kMostJunkBeforeAudio) {
                break;
            }
        }
        if (item != Mp3FrameWalker::Item::Audio) {
            continue;
        }
        const MpegFrameHeader& header = walker.header();
        if (!facts.hasAudio) {
            facts.hasAudio = true;
            facts.first = header;
            facts.firstLength = static_cast<int>(walker.length());
        }
        ++facts.frames;
        facts.seconds += static_cast<double>(header.samplesPerFrame()) / header.sampleRateHz();
    }
    return facts;
}

Mp3StreamFacts ReadMp3FileFacts(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return {};
    }
    Mp3FileSource source(fd);
    const Mp3StreamFacts facts = ReadMp3StreamFacts(source);
    ::close(fd);
    return facts;
}
