#pragma once

#include <cstddef>
#include <cstdint>

// CRC-16 as the LAME extension uses it (polynomial 0x8005, bits reflected,
// start 0): over data, going on from crc. The music CRC of a joined file runs
// over all of its audio, so it is worked out sixteen bytes at a time by
// carry-less multiplication where the processor has it, and through tables
// of eight bytes a round elsewhere; both give the same figure.
std::uint16_t Mp3Crc16(std::uint16_t crc, const std::uint8_t* data, std::size_t length);

// The same through the tables alone, for the comparison with the above.
std::uint16_t Mp3Crc16ByTables(std::uint16_t crc, const std::uint8_t* data, std::size_t length);
