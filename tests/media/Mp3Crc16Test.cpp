#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "mpegaudio/Mp3Crc16.h"

namespace {

// The CRC bit by bit, straight from its definition: polynomial 0x8005 with
// the bits reflected (0xA001), each byte's lowest bit first.
std::uint16_t crcBitByBit(std::uint16_t crc, const std::vector<std::uint8_t>& data,
                          std::size_t from, std::size_t length) {
    for (std::size_t i = from; i < from + length; ++i) {
        crc = static_cast<std::uint16_t>(crc ^ data[i]);
        for (int bit = 0; bit < 8; ++bit) {
            crc = static_cast<std::uint16_t>((crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1);
        }
    }
    return crc;
}

std::vector<std::uint8_t> randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

}  // namespace

TEST(Mp3Crc16, KnownCheckValue_OfTheNineDigits_IsBB3D) {
    const std::uint8_t digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(Mp3Crc16(0, digits, sizeof digits), 0xBB3D);
}

// Every length from nothing to past several rounds of 64 bytes, from a
// start of 0 and from a CRC carried on, at every alignment of the data.
TEST(Mp3Crc16, AnyLengthAndStart_SameAsBitByBit) {
    const std::vector<std::uint8_t> bytes = randomBytes(1200, 7);
    std::mt19937 random(11);
    for (std::size_t length = 0; length <= 1100; ++length) {
        const std::size_t from = length % 17;
        const auto start = static_cast<std::uint16_t>(length % 3 == 0 ? 0 : random());
        ASSERT_EQ(Mp3Crc16(start, bytes.data() + from, length),
                  crcBitByBit(start, bytes, from, length))
            << "length " << length << ", from " << from << ", start " << start;
        ASSERT_EQ(Mp3Crc16ByTables(start, bytes.data() + from, length),
                  crcBitByBit(start, bytes, from, length))
            << "length " << length << ", from " << from << ", start " << start;
    }
}

// A megabyte at once, as the fix sums each buffer of audio, is the CRC of
// the same bytes in pieces of a frame's length.
TEST(Mp3Crc16, OneLargeRun_SameAsFrameByFrame) {
    const std::vector<std::uint8_t> bytes = randomBytes(1 << 20, 3);
    std::uint16_t pieces = 0;
    for (std::size_t at = 0; at < bytes.size(); at += 417) {
        const std::size_t length = std::min<std::size_t>(417, bytes.size() - at);
        pieces = Mp3Crc16ByTables(pieces, bytes.data() + at, length);
    }
    EXPECT_EQ(Mp3Crc16(0, bytes.data(), bytes.size()), pieces);
    EXPECT_EQ(Mp3Crc16(0, bytes.data(), bytes.size()), crcBitByBit(0, bytes, 0, bytes.size()));
}
