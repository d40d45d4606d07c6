// Hostile tags into the MP3 fix tool's tag reading: the input is cut at each
// "@@@@" into the text of a sources file and then, for up to eight sources in
// turn, the bytes of an ID3v2 tag and of an ID3v1 tag. The joined tag made of
// them must render to the same length whatever the chapter times, and read
// back as an ID3v2.3 tag with one chapter per source.
#include <taglib/id3v2tag.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "FuzzPieces.h"
#include "mpegaudio/JoinSources.h"
#include "mpegaudio/JoinedTag.h"
#include "mpegaudio/TagBytes.h"

namespace {

TagLib::ByteVector bytesOf(std::string_view piece) {
    return TagLib::ByteVector(piece.data(), static_cast<unsigned int>(piece.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string_view> parts =
        FuzzPieces(std::string_view(reinterpret_cast<const char*>(data), size));
    std::vector<JoinSource> sources;
    ParseJoinSources(std::string(parts[0]), sources);

    JoinedTag tag("/joined/Fuzzed Book.mp3", true);
    std::size_t count = 0;
    for (std::size_t i = 1; i < parts.size() && count < 8; i += 2, ++count) {
        JoinSourceTags source;
        source.id3v2 = bytesOf(parts[i]);
        if (i + 1 < parts.size()) {
            source.id3v1 = bytesOf(parts[i + 1]);
        }
        source.name = count < sources.size() ? sources[count].name : "source.mp3";
        tag.addSource(source);
    }
    const TagLib::ByteVector first = tag.render({}, 0);
    std::vector<std::uint32_t> starts(count);
    for (std::size_t i = 0; i < count; ++i) {
        starts[i] = static_cast<std::uint32_t>(i * 1000);
    }
    const TagLib::ByteVector last = tag.render(starts, 0xFFFFFFF0u);
    if (first.size() != last.size()) {
        std::abort();
    }
    const std::unique_ptr<TagBytes> back = TagBytes::id3v2(last);
    if (!back->v2() || back->v2()->frameList("CHAP").size() != count) {
        std::abort();
    }
    return 0;
}
