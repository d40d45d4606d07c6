#pragma once

// Byte-built files for the tests of the media area.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <ostream>

// Readable failure messages for texts (zero characters shown as \0).
inline void PrintTo(const QString& text, std::ostream* os) {
    QString shown = text;
    shown.replace(QChar(0), QStringLiteral("\\0"));
    *os << '"' << shown.toStdString() << '"';
}

namespace bytefiles {

// Writes bytes to path (replacing the file); true on success.
inline bool Write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return false;
    }
    return file.write(bytes) == bytes.size();
}

inline QByteArray Read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

struct Header {
    bool crc = false;      // protection bit clear: a CRC follows (second byte 0xFA)
    int bitrateIndex = 9;  // 128 kbit/s in Layer III
    int rateIndex = 0;     // 44100
    bool padding = false;
    bool privateBit = false;
    int mode = 1;  // Joint Stereo
    int modeExtension = 2;
    bool copyright = false;
    bool original = true;
    int emphasis = 0;
};

// The four bytes of an MPEG-1 Layer III frame header.
inline QByteArray FrameHeader(const Header& h = {}) {
    QByteArray bytes(4, '\0');
    bytes[0] = static_cast<char>(0xFF);
    bytes[1] = static_cast<char>(h.crc ? 0xFA : 0xFB);
    bytes[2] = static_cast<char>((h.bitrateIndex << 4) | (h.rateIndex << 2) | (h.padding << 1) |
                                 (h.privateBit ? 1 : 0));
    bytes[3] = static_cast<char>((h.mode << 6) | (h.modeExtension << 4) | (h.copyright << 3) |
                                 (h.original << 2) | h.emphasis);
    return bytes;
}

// A 128-byte ID3v1 tag: marker, five fields cut or zero-padded, genre byte.
inline QByteArray Tag(const QByteArray& title, const QByteArray& artist, const QByteArray& album,
                      const QByteArray& year, const QByteArray& comment, std::uint8_t genre,
                      const QByteArray& marker = "TAG") {
    const auto field = [](QByteArray text, int length) {
        text = text.left(length);
        text.append(QByteArray(length - text.size(), '\0'));
        return text;
    };
    QByteArray tag = marker;
    tag += field(title, 30);
    tag += field(artist, 30);
    tag += field(album, 30);
    tag += field(year, 4);
    tag += field(comment, 30);
    tag += static_cast<char>(genre);
    return tag;
}

// Bytes of a given length filled with a byte that holds no 0xFF.
inline QByteArray Filler(qsizetype length, char fill = '\x11') {
    return QByteArray(length, fill);
}

}  // namespace bytefiles
