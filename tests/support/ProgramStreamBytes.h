#pragma once

// The bytes of MPEG program streams, built by hand for the tests: pack
// headers of both generations, packets with MPEG-2 and MPEG-1 headers, the
// sub-streams of private stream 1, navigation and padding packets.

#include <QByteArray>
#include <cstdint>
#include <initializer_list>

namespace psbytes {

inline QByteArray startCode(int code) {
    QByteArray bytes("\x00\x00\x01", 3);
    bytes.append(static_cast<char>(code));
    return bytes;
}

inline void append(QByteArray& bytes, std::initializer_list<int> values) {
    for (const int value : values) {
        bytes.append(static_cast<char>(value));
    }
}

// An MPEG-2 pack header: the clock reference (a 90 kHz base and a 27 MHz
// extension), a mux rate and stuffing bytes.
inline QByteArray mpeg2Pack(std::int64_t base, int extension = 0, int stuffing = 0) {
    constexpr int kMuxRate = 25200;
    QByteArray bytes = startCode(0xba);
    append(bytes, {static_cast<int>(0x44 | ((base >> 27) & 0x38) | ((base >> 28) & 0x03)),
                   static_cast<int>((base >> 20) & 0xff),
                   static_cast<int>(0x04 | ((base >> 12) & 0xf8) | ((base >> 13) & 0x03)),
                   static_cast<int>((base >> 5) & 0xff),
                   static_cast<int>(0x04 | ((base & 0x1f) << 3) | ((extension >> 7) & 0x03)),
                   ((extension & 0x7f) << 1) | 1, (kMuxRate >> 14) & 0xff, (kMuxRate >> 6) & 0xff,
                   ((kMuxRate & 0x3f) << 2) | 0x03, 0xf8 | stuffing});
    bytes.append(QByteArray(stuffing, '\xff'));
    return bytes;
}

// An MPEG-1 pack header: the clock reference at 90 kHz.
inline QByteArray mpeg1Pack(std::int64_t base) {
    constexpr int kMuxRate = 3528;
    QByteArray bytes = startCode(0xba);
    append(bytes,
           {static_cast<int>(0x21 | ((base >> 29) & 0x0e)), static_cast<int>((base >> 22) & 0xff),
            static_cast<int>(0x01 | ((base >> 14) & 0xfe)), static_cast<int>((base >> 7) & 0xff),
            static_cast<int>(0x01 | ((base & 0x7f) << 1)), 0x80 | ((kMuxRate >> 15) & 0x7f),
            (kMuxRate >> 7) & 0xff, ((kMuxRate & 0x7f) << 1) | 1});
    return bytes;
}

inline QByteArray withLength(int code, const QByteArray& body) {
    QByteArray bytes = startCode(code);
    append(bytes,
           {static_cast<int>((body.size() >> 8) & 0xff), static_cast<int>(body.size() & 0xff)});
    return bytes + body;
}

// A packet with an MPEG-2 header that carries a time stamp.
inline QByteArray mpeg2Packet(int code, const QByteArray& payload) {
    QByteArray body;
    append(body, {0x81, 0x80, 0x05, 0x21, 0x00, 0x01, 0x00, 0x01});
    return withLength(code, body + payload);
}

// A packet with an MPEG-1 header: stuffing, the buffer size and a time stamp.
inline QByteArray mpeg1Packet(int code, const QByteArray& payload) {
    QByteArray body;
    append(body, {0xff, 0xff, 0x40, 0x20, 0x21, 0x00, 0x01, 0x00, 0x01});
    return withLength(code, body + payload);
}

// A sub-stream packet of private stream 1: its id, then its data.
inline QByteArray privatePacket(int subStream, int length = 40) {
    return mpeg2Packet(0xbd, QByteArray(1, static_cast<char>(subStream)) + QByteArray(length, 'a'));
}

// Packets without a header of their own: navigation, padding.
inline QByteArray navPacket() {
    QByteArray body(980, '\0');
    body[0] = 0;  // PCI
    return withLength(0xbf, body);
}

inline QByteArray padding(int length) {
    return withLength(0xbe, QByteArray(length, '\xff'));
}

inline QByteArray systemHeader() {
    QByteArray body;
    append(body, {0x80, 0xc4, 0xe1, 0x04, 0xe1, 0xff, 0xb9, 0xe0, 0xe8, 0xb8, 0xc0, 0x20});
    return withLength(0xbb, body);
}

}  // namespace psbytes
