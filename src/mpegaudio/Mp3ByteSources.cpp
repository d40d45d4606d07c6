#include "mpegaudio/Mp3ByteSources.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

long long Mp3FileSource::read(std::uint8_t* to, std::size_t max) {
    for (;;) {
        const ssize_t got = ::read(fd_, to, max);
        if (got >= 0 || errno != EINTR) {
            return got;
        }
    }
}

long long Mp3MemorySource::read(std::uint8_t* to, std::size_t max) {
    const std::size_t count = std::min(max, size_ - at_);
    if (count > 0) {
        std::memcpy(to, bytes_ + at_, count);
    }
    at_ += count;
    return static_cast<long long>(count);
}
