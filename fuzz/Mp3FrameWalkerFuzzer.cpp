// Any bytes as the raw join of MP3 files, walked in pieces of varying size as
// a file hands them out: the items must cover every byte once, in order, and
// every frame taken must be a whole Layer III frame whose bytes are at hand.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "mpegaudio/Mp3FrameWalker.h"
#include "mpegaudio/Mp3HeaderFrame.h"

namespace {

class PieceSource : public Mp3ByteSource {
public:
    PieceSource(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
    long long read(std::uint8_t* to, std::size_t max) override {
        // Piece sizes from the data itself, so that the fuzzer steers them.
        const std::size_t piece = 1 + (size_ > 0 ? data_[(at_ * 7) % size_] * 37u : 0u);
        const std::size_t count = std::min({max, piece, size_ - at_});
        std::memcpy(to, data_ + at_, count);
        at_ += count;
        return static_cast<long long>(count);
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PieceSource source(data, size);
    Mp3FrameWalker walker(source, 16384);
    std::uint64_t covered = 0;
    std::int64_t sink = 0;
    for (;;) {
        const Mp3FrameWalker::Item item = walker.next();
        if (item == Mp3FrameWalker::Item::End) {
            break;
        }
        if (item == Mp3FrameWalker::Item::ReadError || walker.offset() != covered ||
            walker.length() == 0) {
            std::abort();
        }
        if (item == Mp3FrameWalker::Item::Audio || item == Mp3FrameWalker::Item::HeaderFrame) {
            const MpegFrameHeader& header = walker.header();
            if (!header.isLayer3Audio() ||
                walker.length() != static_cast<std::size_t>(header.frameLength()) ||
                std::memcmp(walker.data(), data + walker.offset(), walker.length()) != 0) {
                std::abort();
            }
            const Mp3HeaderFrame found =
                Mp3HeaderFrame::read(walker.data(), walker.length(), header);
            sink += found.frames + found.delay + found.padding;
        }
        covered += walker.length();
        if (covered > size) {
            std::abort();
        }
    }
    if (covered != size) {
        std::abort();
    }
    // Handed outside so that the reads that made it are not optimised away.
    static volatile std::int64_t kept = 0;
    kept = kept + sink;
    return 0;
}
