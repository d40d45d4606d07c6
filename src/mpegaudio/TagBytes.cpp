#include "mpegaudio/TagBytes.h"

#include <taglib/id3v1tag.h>
#include <taglib/id3v2tag.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/tfile.h>

#include <cstring>

namespace {
// The stream is a base of its own so that it is made before the file that
// reads from it.
struct StreamHolder {
    explicit StreamHolder(const TagLib::ByteVector& bytes) : stream(bytes) {}
    TagLib::ByteVectorStream stream;
};
}  // namespace

// TagLib reads tags from files; this one is a byte vector. It has no tag or
// audio properties of its own: the tags are read from it at offset 0.
class TagBytes::MemoryFile : private StreamHolder, public TagLib::File {
public:
    explicit MemoryFile(const TagLib::ByteVector& bytes)
        : StreamHolder(bytes), TagLib::File(&stream) {}
    TagLib::Tag* tag() const override { return nullptr; }
    TagLib::AudioProperties* audioProperties() const override { return nullptr; }
    bool save() override { return false; }
};

std::uint64_t Id3v2TagLength(const std::uint8_t* bytes, std::size_t available) {
    constexpr std::size_t kHeader = 10;
    if (available < kHeader || std::memcmp(bytes, "ID3", 3) != 0 || bytes[3] < 2 || bytes[3] > 4 ||
        bytes[4] == 0xFF) {
        return 0;
    }
    std::uint64_t size = 0;
    for (int i = 6; i < 10; ++i) {
        if (bytes[i] & 0x80) {
            return 0;
        }
        size = (size << 7) | bytes[i];
    }
    const bool footer = bytes[3] == 4 && (bytes[5] & 0x10) != 0;
    return kHeader + size + (footer ? kHeader : 0);
}

TagBytes::TagBytes(const TagLib::ByteVector& bytes) : file_(std::make_unique<MemoryFile>(bytes)) {}

TagBytes::~TagBytes() {
    // The tags refer to the file while they live.
    v2_.reset();
    v1_.reset();
}

std::unique_ptr<TagBytes> TagBytes::id3v2(const TagLib::ByteVector& bytes) {
    std::unique_ptr<TagBytes> tag(new TagBytes(bytes));
    if (Id3v2TagLength(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()) > 0) {
        tag->v2_ = std::make_unique<TagLib::ID3v2::Tag>(tag->file_.get(), 0);
    }
    return tag;
}

std::unique_ptr<TagBytes> TagBytes::id3v1(const TagLib::ByteVector& bytes) {
    std::unique_ptr<TagBytes> tag(new TagBytes(bytes));
    if (bytes.size() == 128 && bytes.startsWith("TAG")) {
        tag->v1_ = std::make_unique<TagLib::ID3v1::Tag>(tag->file_.get(), 0);
    }
    return tag;
}
