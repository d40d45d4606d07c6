#pragma once

#include <QByteArray>

// The two number forms of ID3v2 headers, for tests that build tags byte by
// byte: a plain big-endian 32-bit number (frame sizes of version 2.3) and a
// sync-safe one of four 7-bit bytes (tag sizes, frame sizes of version 2.4).
inline QByteArray Be32Bytes(quint32 value) {
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<char>(value >> (24 - 8 * i));
    }
    return bytes;
}

inline QByteArray SyncSafeBytes(quint32 value) {
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<char>((value >> (21 - 7 * i)) & 0x7F);
    }
    return bytes;
}

// The length of the ID3v2 tag at the start of bytes, header included (0 when
// they do not start with one).
inline qsizetype Id3v2TagLength(const QByteArray& bytes) {
    if (!bytes.startsWith("ID3") || bytes.size() < 10) {
        return 0;
    }
    qsizetype size = 0;
    for (int i = 6; i < 10; ++i) {
        size = (size << 7) | (static_cast<unsigned char>(bytes.at(i)) & 0x7F);
    }
    return 10 + size;
}
