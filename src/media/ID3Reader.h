#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

#include "media/GenreComboTarget.h"

// Looks into one MP3 file without any library: the ID3v1 tag in its last 128
// bytes, and the first MPEG-1 Layer III frame header within its first 6001
// bytes. Assigning FileName does the whole analysis at once; the properties
// then read the results. The analysis is narrow on purpose:
//  - only the byte pairs 0xFF 0xFA and 0xFF 0xFB starting at positions 1 to
//    6000 count as a frame header (MPEG-1 Layer III), and the first one wins;
//  - nothing after that header is checked (but for a free-format header,
//    below), and ID3v2 tags are not skipped;
//  - the Xing frame count is looked for at one offset only (36 bytes behind
//    the header, right for MPEG-1 stereo frames), flags unread;
//  - the length in seconds comes from the file size and the first frame's
//    bit rate, VBR files included.
// A free-format header (bit-rate index 0) is the one place where the frames
// behind it are looked at: the rate is the one their length makes, when the
// first bytes of the file hold enough of them, and the report says "free
// format" behind the rate.
// Nothing is ever reported: a file that is no MPEG audio shows in the values
// (Hz 0, Kbits 0 or 1, an empty InfoString).
//
// Tag text is ISO-8859-1. Each tag operation opens and closes the file on its
// own; a failed one answers false and leaves nothing behind.
class ID3Reader {
public:
    ID3Reader();

    // Results of the analysis of the file last assigned to FileName.
    QString InfoString() const { return infoString_; }
    std::int32_t FileBytes() const { return fileBytes_; }
    std::int16_t Seconds() const { return seconds_; }
    std::int16_t MpegVersion() const { return mpegVersion_; }    // 1, 2, 25 (2.5) or 0
    std::int16_t LayerVersion() const { return layerVersion_; }  // 1, 2, 3 or 0
    std::int16_t Kbits() const { return kbits_; }                // 1 marks the reserved layer
    bool FreeFormat() const { return freeFormat_; }              // bit-rate index 0
    std::int32_t Frames() const { return frames_; }
    std::int32_t Hz() const { return hz_; }
    QString Mode() const { return mode_; }
    QString PrivateBit() const { return privateBit_; }
    QString CRCs() const { return crcs_; }
    QString Copyrighted() const { return copyrighted_; }
    QString Original() const { return original_; }
    QString Emphasis() const { return emphasis_; }
    std::int16_t Channels() const { return channels_; }

    // Assigning analyses the file. A path whose length cannot be asked leaves
    // FileName empty and every field cleared (InfoString excepted).
    void setFileName(const QString& path);
    QString FileName() const { return fileName_; }

    // The tag fields. Reading removes trailing blanks (only blanks); assigning
    // cuts the text at the field's length or fills it up with blanks. Nothing
    // reaches the file before WriteTag.
    void setComments(const QString& text);
    QString Comments() const;
    void setYear(const QString& text);
    QString Year() const;
    void setAlbum(const QString& text);
    QString Album() const;
    void setArtist(const QString& text);
    QString Artist() const;
    void setTitle(const QString& text);
    QString Title() const;
    // 0 to 255; any other value leaves the genre as it was.
    void setGenre(std::int32_t genre);
    std::int32_t Genre() const { return genre_; }

    // Zeroes the 127 bytes before the file's last byte (the marker through the
    // comment; the genre byte stays). The file keeps its length.
    bool ClearTag();
    // True when the first three of the file's last 128 bytes read "TAG" in
    // any letter case.
    bool HasTag() const;
    // HasTag as it stood when the file was read (setFileName), without
    // reading the file again.
    bool TagWasRead() const { return tagRead_; }
    // Writes "TAG" and the six fields over the file's last 128 bytes, whether
    // or not a tag was there. The file keeps its length.
    bool WriteTag();

    // The genre's name for 0 to 147, "Unknown" for anything else.
    static QString GenreText(std::int16_t iGenreID);
    // Fills the target with the 148 genre names (position = genre number) and
    // selects iWhich; an iWhich outside 0 to 147 becomes 0, in the caller's
    // variable too. Without iWhich, position 0 is selected.
    static void FillComboGenre(GenreComboTarget& inCombo, std::int16_t& iWhich);
    static void FillComboGenre(GenreComboTarget& inCombo);

private:
    void ReadFromFile();
    void ReadTag(const QByteArray& tag);
    void ReadMpegHeader(const QByteArray& head, qint64 length);
    void ClearFields();
    static bool FileIsThere(const QString& path);
    static QString BytesToBitText(std::uint8_t (&bytes)[5]);
    static bool BitTextToNumber(const QString& text, std::int32_t& number);

    QString fileName_;
    // The tag record as it stands in the file: fixed-length byte fields.
    QByteArray title_;
    QByteArray artist_;
    QByteArray album_;
    QByteArray year_;
    QByteArray comments_;
    std::uint8_t genre_ = 12;
    bool tagRead_ = false;
    std::int32_t fileBytes_ = 0;
    std::int16_t seconds_ = 0;
    std::int16_t mpegVersion_ = 0;
    std::int16_t layerVersion_ = 0;
    std::int16_t kbits_ = 0;
    bool freeFormat_ = false;
    std::int32_t frames_ = 0;
    std::int32_t hz_ = 0;
    QString mode_;
    QString privateBit_;
    QString crcs_;
    QString copyrighted_;
    QString original_;
    QString emphasis_;
    std::int16_t channels_ = 0;
    QString infoString_;
};
