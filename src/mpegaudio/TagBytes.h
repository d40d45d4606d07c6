#pragma once

#include <taglib/tbytevector.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace TagLib {
namespace ID3v1 {
class Tag;
}
namespace ID3v2 {
class Tag;
}
}  // namespace TagLib

// The whole length of the ID3v2 tag whose first bytes are given (the header,
// the size it states and a footer when it has one), or 0 when these bytes are
// no ID3v2 header. It needs the 10 header bytes.
std::uint64_t Id3v2TagLength(const std::uint8_t* bytes, std::size_t available);

// A tag read by TagLib from bytes in memory rather than from a file: the bytes
// of one whole ID3v2 tag, or the 128 bytes of an ID3v1 tag. Bytes that are no
// such tag give no tag (a null pointer from v2() or v1()).
class TagBytes {
public:
    static std::unique_ptr<TagBytes> id3v2(const TagLib::ByteVector& bytes);
    static std::unique_ptr<TagBytes> id3v1(const TagLib::ByteVector& bytes);
    ~TagBytes();

    const TagLib::ID3v2::Tag* v2() const { return v2_.get(); }
    const TagLib::ID3v1::Tag* v1() const { return v1_.get(); }

private:
    class MemoryFile;
    explicit TagBytes(const TagLib::ByteVector& bytes);

    std::unique_ptr<MemoryFile> file_;
    std::unique_ptr<TagLib::ID3v2::Tag> v2_;
    std::unique_ptr<TagLib::ID3v1::Tag> v1_;
};
