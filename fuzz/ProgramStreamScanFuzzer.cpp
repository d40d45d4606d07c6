// Any bytes as an MPEG program stream, scanned once whole and once in pieces
// of varying size as a file hands them out: both scans must agree, read every
// byte, and name each stream once, where it starts inside the bytes, in the
// order of the bytes; the clock may not run more than a second a pack.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

#include "media/ProgramStreamScan.h"

namespace {

ByteReader readerOf(const std::uint8_t* data, std::size_t size, bool pieces) {
    auto at = std::make_shared<std::size_t>(0);
    return [data, size, pieces, at](char* to, std::int64_t max) {
        // Piece sizes from the data itself, so that the fuzzer steers them.
        const std::size_t piece =
            pieces ? 1 + (size > 0 ? data[(*at * 7) % size] * 37u : 0u) : size;
        const std::size_t count =
            std::min({static_cast<std::size_t>(max), std::max<std::size_t>(piece, 1), size - *at});
        std::memcpy(to, data + *at, count);
        *at += count;
        return static_cast<std::int64_t>(count);
    };
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ProgramStreamMap whole = ScanProgramStream(readerOf(data, size, false));
    const ProgramStreamMap pieces = ScanProgramStream(readerOf(data, size, true));
    if (!whole.complete || !pieces.complete || whole.bytes != static_cast<std::int64_t>(size) ||
        pieces.bytes != whole.bytes || pieces.packs != whole.packs ||
        pieces.streams.size() != whole.streams.size() ||
        pieces.clockSeconds != whole.clockSeconds ||
        whole.clockSeconds > static_cast<double>(whole.packs)) {
        std::abort();
    }
    std::set<int> ids;
    std::int64_t previous = -1;
    for (std::size_t i = 0; i < whole.streams.size(); ++i) {
        const StreamAppearance& stream = whole.streams[i];
        if (stream.id != pieces.streams[i].id || stream.offset != pieces.streams[i].offset ||
            stream.offset <= previous || stream.offset + 6 > static_cast<std::int64_t>(size) ||
            !ids.insert(stream.id).second || stream.clockSeconds > whole.clockSeconds) {
            std::abort();
        }
        previous = stream.offset;
    }
    return 0;
}
