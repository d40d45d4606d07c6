#pragma once

#include <cstddef>
#include <cstdint>

#include "mpegaudio/Mp3FrameWalker.h"

// The bytes of an open file, read from where the file stands on.
class Mp3FileSource : public Mp3ByteSource {
public:
    explicit Mp3FileSource(int fd) : fd_(fd) {}
    long long read(std::uint8_t* to, std::size_t max) override;

private:
    int fd_;
};

// Bytes in memory, which stay the caller's.
class Mp3MemorySource : public Mp3ByteSource {
public:
    Mp3MemorySource(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}
    long long read(std::uint8_t* to, std::size_t max) override;

private:
    const std::uint8_t* bytes_;
    std::size_t size_;
    std::size_t at_ = 0;
};
