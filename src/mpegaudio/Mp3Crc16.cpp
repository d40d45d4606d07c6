#include "mpegaudio/Mp3Crc16.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define VELMORA_CRC_FOLDING 1
#endif

namespace {

struct Crc16Table {
    std::uint16_t entries[8][256];
    Crc16Table() {
        for (int byte = 0; byte < 256; ++byte) {
            std::uint16_t crc = static_cast<std::uint16_t>(byte);
            for (int bit = 0; bit < 8; ++bit) {
                crc = static_cast<std::uint16_t>((crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1);
            }
            entries[0][byte] = crc;
        }
        for (int byte = 0; byte < 256; ++byte) {
            for (int slice = 1; slice < 8; ++slice) {
                const std::uint16_t previous = entries[slice - 1][byte];
                entries[slice][byte] =
                    static_cast<std::uint16_t>((previous >> 8) ^ entries[0][previous & 0xFF]);
            }
        }
    }
};

const Crc16Table& crcTable() {
    static const Crc16Table table;
    return table;
}

#ifdef VELMORA_CRC_FOLDING

// The bytes are read as one polynomial whose first bit is the highest, and
// each 16 of them as a 128-bit register whose bit k holds x^(127 - k). A
// carry-less product of two such 64-bit halves comes out one place short,
// so each constant is taken one power lower: folding the register X = H x^64
// + L onto the bytes d further on takes H x^(d + 64) + L x^d, which is
// H (x^(d + 63) mod P) x + L (x^(d - 1) mod P) x, and stays below 80 bits. A
// folded register is congruent to the bytes it stands for modulo P, so its
// CRC is theirs. Four registers fold 64 bytes a round side by side, then
// fold into one another 16 bytes apart.
constexpr long long constant(std::uint64_t reflected) {
    return static_cast<long long>(reflected);
}
// x^191 mod P = 0x0B33 and x^127 mod P = 0x0083, reflected into 64 bits.
constexpr long long kFold16High = constant(0xCCD0000000000000ULL);
constexpr long long kFold16Low = constant(0xC100000000000000ULL);
// x^575 mod P = 0x0A23 and x^511 mod P = 0x8081, reflected into 64 bits.
constexpr long long kFold64High = constant(0xC450000000000000ULL);
constexpr long long kFold64Low = constant(0x8101000000000000ULL);

__attribute__((target("pclmul,sse2"))) __m128i fold(__m128i folded, __m128i constants,
                                                    __m128i next) {
    const __m128i high = _mm_clmulepi64_si128(folded, constants, 0x00);
    const __m128i low = _mm_clmulepi64_si128(folded, constants, 0x11);
    return _mm_xor_si128(_mm_xor_si128(high, low), next);
}

__attribute__((target("pclmul,sse2"))) __m128i load(const std::uint8_t* data) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
}

// The CRC of blocks of 16 bytes (at least one), going on from crc.
__attribute__((target("pclmul,sse2"))) std::uint16_t foldedCrc16(std::uint16_t crc,
                                                                 const std::uint8_t* data,
                                                                 std::size_t blocks) {
    const __m128i by16 = _mm_set_epi64x(kFold16Low, kFold16High);
    // The CRC so far stands on the first two bytes, as in a round of the tables.
    __m128i folded = _mm_xor_si128(load(data), _mm_cvtsi32_si128(crc));
    std::size_t block = 1;
    if (blocks >= 8) {
        const __m128i by64 = _mm_set_epi64x(kFold64Low, kFold64High);
        __m128i lanes[4] = {folded, load(data + 16), load(data + 32), load(data + 48)};
        for (block = 4; block + 4 <= blocks; block += 4) {
            for (int lane = 0; lane < 4; ++lane) {
                lanes[lane] = fold(lanes[lane], by64, load(data + 16 * (block + lane)));
            }
        }
        folded = fold(fold(fold(lanes[0], by16, lanes[1]), by16, lanes[2]), by16, lanes[3]);
    }
    for (; block < blocks; ++block) {
        folded = fold(folded, by16, load(data + 16 * block));
    }
    alignas(16) std::uint8_t bytes[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(bytes), folded);
    return Mp3Crc16ByTables(0, bytes, sizeof bytes);
}

bool canFold() {
    static const bool supported = __builtin_cpu_supports("pclmul") != 0;
    return supported;
}

#endif

}  // namespace

std::uint16_t Mp3Crc16ByTables(std::uint16_t crc, const std::uint8_t* data, std::size_t length) {
    const auto& t = crcTable().entries;
    // Eight bytes a round through eight tables, the rest byte by byte.
    while (length >= 8) {
        const std::uint16_t a = static_cast<std::uint16_t>(crc ^ (data[0] | (data[1] << 8)));
        crc = static_cast<std::uint16_t>(t[7][a & 0xFF] ^ t[6][a >> 8] ^ t[5][data[2]] ^
                                         t[4][data[3]] ^ t[3][data[4]] ^ t[2][data[5]] ^
                                         t[1][data[6]] ^ t[0][data[7]]);
        data += 8;
        length -= 8;
    }
    while (length-- > 0) {
        crc = static_cast<std::uint16_t>((crc >> 8) ^ t[0][(crc ^ *data++) & 0xFF]);
    }
    return crc;
}

std::uint16_t Mp3Crc16(std::uint16_t crc, const std::uint8_t* data, std::size_t length) {
#ifdef VELMORA_CRC_FOLDING
    // Folding pays from a few blocks on; the rest goes through the tables.
    constexpr std::size_t kLeastFolded = 64;
    if (length >= kLeastFolded && canFold()) {
        const std::size_t blocks = length / 16;
        crc = foldedCrc16(crc, data, blocks);
        data += blocks * 16;
        length -= blocks * 16;
    }
#endif
    return Mp3Crc16ByTables(crc, data, length);
}
