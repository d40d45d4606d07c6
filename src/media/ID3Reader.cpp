#include "media/ID3Reader.h"

#include "mpegaudio/Mp3ByteSources.h"
#include "mpegaudio/Mp3StreamFacts.h"
#include "mpegaudio/MpegFrameHeader.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr int kTitleLength = 30;
constexpr int kArtistLength = 30;
constexpr int kAlbumLength = 30;
constexpr int kYearLength = 4;
constexpr int kCommentsLength = 30;
constexpr int kTagSize = 128;
constexpr int kRecordSize = 125;  // the tag behind its three marker bytes
constexpr std::uint8_t kOtherGenre = 12;

// The sync search looks at positions 1 to 6000; the Xing count lies up to 47
// bytes behind the header, so the first 6047 bytes hold all the header needs.
// A free-format header needs the frames behind it too, to measure their
// length: five of the longest MPEG-1 free-format frames (a header frame and
// the four frames that the measure looks at).
constexpr int kLastSyncPosition = 6000;
constexpr int kHeadBytes = kLastSyncPosition + 47;
constexpr int kFreeFormatBytes = 5 * 2881;

const std::array<const char*, 148> kGenres = {
    "Blues",
    "Classic Rock",
    "Country",
    "Dance",
    "Disco",
    "Funk",
    "Grunge",
    "Hip-Hop",
    "Jazz",
    "Metal",
    "New Age",
    "Oldies",
    "Other",
    "Pop",
    "R&B",
    "Rap",
    "Reggae",
    "Rock",
    "Techno",
    "Industrial",
    "Alternative",
    "Ska",
    "Death Metal",
    "Pranks",
    "Soundtrack",
    "Euro-Techno",
    "Ambient",
    "Trip-Hop",
    "Vocal",
    "Jazz+Funk",
    "Fusion",
    "Trance",
    "Classical",
    "Instrumental",
    "Acid",
    "House",
    "Game",
    "Sound Clip",
    "Gospel",
    "Noise",
    "Alt. Rock",
    "Bass",
    "Soul",
    "Punk",
    "Space",
    "Meditative",
    "Instrumental Pop",
    "Instrumental Rock",
    "Ethnic",
    "Gothic",
    "Darkwave",
    "Techno-Industrial",
    "Electronic",
    "Pop-Folk",
    "Eurodance",
    "Dream",
    "Southern Rock",
    "Comedy",
    "Cult",
    "Gangsta",
    "Top 40",
    "Christian Rap",
    "Pop/Funk",
    "Jungle",
    "Native American",
    "Cabaret",
    "New Wave",
    "Psychadelic",
    "Rave",
    "Showtunes",
    "Trailer",
    "Lo-Fi",
    "Tribal",
    "Acid Punk",
    "Acid Jazz",
    "Polka",
    "Retro",
    "Musical",
    "Rock & Roll",
    "Hard Rock",
    "Folk",
    "Folk/Rock",
    "National Folk",
    "Swing",
    "Fast-Fusion",
    "Bebob",
    "Latin",
    "Revival",
    "Celtic",
    "Bluegrass",
    "Avantgarde",
    "Gothic Rock",
    "Progressive Rock",
    "Psychedelic Rock",
    "Symphonic Rock",
    "Slow Rock",
    "Big Band",
    "Chorus",
    "Easy Listening",
    "Acoustic",
    "Humour",
    "Speech",
    "Chanson",
    "Opera",
    "Chamber Music",
    "Sonata",
    "Symphony",
    "Booty Bass",
    "Primus",
    "Porn Groove",
    "Satire",
    "Slow Jam",
    "Club",
    "Tango",
    "Samba",
    "Folklore",
    "Ballad",
    "Power Ballad",
    "Rhythmic Soul",
    "Freestyle",
    "Duet",
    "Punk Rock",
    "Drum Solo",
    "A Cappella",
    "Euro-House",
    "Dance Hall",
    "Goa",
    "Drum & Bass",
    "Club-House",
    "Hardcore",
    "Terror",
    "Indie",
    "BritPop",
    "Negerpunk",
    "Polsk Punk",
    "Beat",
    "Christian Gangsta Rap",
    "Heavy Metal",
    "Black Metal",
    "Crossover",
    "Contemporary Christian",
    "Christian Rock",
    "Merengue",
    "Salsa",
    "Thrash Metal",
    "Anime",
    "JPop",
    "Synthpop",
};

// A fixed-length field from text: ISO-8859-1, cut at the length or filled up
// with blanks.
QByteArray FixedField(const QString& text, int length) {
    QByteArray bytes = text.toLatin1().left(length);
    if (bytes.size() < length) {
        bytes.append(QByteArray(length - bytes.size(), ' '));
    }
    return bytes;
}

// A field's text with the blanks at its end removed (zero bytes stay).
QString FieldText(const QByteArray& field) {
    qsizetype end = field.size();
    while (end > 0 && field.at(end - 1) == ' ') {
        --end;
    }
    return QString::fromLatin1(field.constData(), end);
}

// The first bytes of the file, positions counted from 1. A position outside
// what was read (before the first byte, past the end) reads as "failed".
class FileHead {
public:
    explicit FileHead(const QByteArray& bytes) : bytes_(bytes) {}
    bool byteAt(qint64 position, std::uint8_t& value) const {
        if (position < 1) {
            return false;
        }
        value = position <= bytes_.size() ? static_cast<std::uint8_t>(bytes_.at(position - 1)) : 0;
        return true;
    }
    std::uint8_t byteOrZero(qint64 position) const {
        std::uint8_t value = 0;
        byteAt(position, value);
        return value;
    }

private:
    QByteArray bytes_;
};

// Opens the file for reading and writing without changing it; the tag writes
// go through this.
bool OpenForWriting(QFile& file) {
    return file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
}

}  // namespace

ID3Reader::ID3Reader() {
    ClearFields();
}

void ID3Reader::ClearFields() {
    title_ = QByteArray(kTitleLength, ' ');
    artist_ = QByteArray(kArtistLength, ' ');
    album_ = QByteArray(kAlbumLength, ' ');
    year_ = QByteArray(kYearLength, ' ');
    comments_ = QByteArray(kCommentsLength, ' ');
    genre_ = kOtherGenre;
    tagRead_ = false;
    fileBytes_ = 0;
    seconds_ = 0;
    mpegVersion_ = 0;
    layerVersion_ = 0;
    kbits_ = 0;
    freeFormat_ = false;
    frames_ = 0;
    hz_ = 0;
    channels_ = 0;
    mode_.clear();
    privateBit_.clear();
    crcs_.clear();
    copyrighted_.clear();
    original_.clear();
    emphasis_.clear();
    // infoString_ is left alone on purpose: a reused reader keeps the former
    // report when the new file ends the analysis before the report is made.
}

bool ID3Reader::FileIsThere(const QString& path) {
    if (path.isEmpty()) {
        return false;
    }
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}

void ID3Reader::setFileName(const QString& path) {
    ClearFields();
    if (!FileIsThere(path)) {
        fileName_.clear();
        return;
    }
    fileName_ = path;
    ReadFromFile();
}

void ID3Reader::ReadFromFile() {
    if (!FileIsThere(fileName_)) {
        return;
    }
    // One opening for the tag at the end and the frame header at the start.
    QFile file(fileName_);
    QByteArray head;
    qint64 length = 0;
    if (file.open(QIODevice::ReadOnly)) {
        length = file.size();
        head = file.read(kHeadBytes + kFreeFormatBytes);
        if (length >= kTagSize && file.seek(length - kTagSize)) {
            ReadTag(file.read(kTagSize));
        }
    } else {
        length = QFileInfo(fileName_).size();
    }
    ReadMpegHeader(head, length);
}

// The tag as HasTag sees it: "TAG" in any letter case, then the record.
void ID3Reader::ReadTag(const QByteArray& tag) {
    if (tag.size() != kTagSize || tag.left(3).toUpper() != QByteArrayLiteral("TAG")) {
        return;
    }
    tagRead_ = true;
    int at = kTagSize - kRecordSize;
    title_ = tag.mid(at, kTitleLength);
    at += kTitleLength;
    artist_ = tag.mid(at, kArtistLength);
    at += kArtistLength;
    album_ = tag.mid(at, kAlbumLength);
    at += kAlbumLength;
    year_ = tag.mid(at, kYearLength);
    at += kYearLength;
    comments_ = tag.mid(at, kCommentsLength);
    at += kCommentsLength;
    genre_ = static_cast<std::uint8_t>(tag.at(at));
}

QString ID3Reader::BytesToBitText(std::uint8_t (&bytes)[5]) {
    QString text;
    text.reserve(32);
    for (int entry = 1; entry <= 4; ++entry) {
        for (int weight = 128; weight >= 1; weight /= 2) {
            if (bytes[entry] & weight) {
                text.append(QLatin1Char('1'));
            } else if (!text.isEmpty()) {
                text.append(QLatin1Char('0'));
            }
        }
        bytes[entry] = 0;
    }
    return text;
}

bool ID3Reader::BitTextToNumber(const QString& text, std::int32_t& number) {
    std::int64_t sum = 0;
    const qsizetype length = text.size();
    for (qsizetype i = 1; i <= length; ++i) {
        if (text.at(i - 1) == QLatin1Char('1')) {
            const qsizetype power = length - i;
            if (power >= 31) {
                return false;  // 2^31 and more do not fit
            }
            sum += std::int64_t{1} << power;
        }
    }
    if (sum > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    number = static_cast<std::int32_t>(sum);
    return true;
}

void ID3Reader::ReadMpegHeader(const QByteArray& head, qint64 length) {
    // 1. The head as read and the length as measured; an unreadable file
    // decodes zeros.
    if (length >= 0 && length <= std::numeric_limits<std::int32_t>::max()) {
        fileBytes_ = static_cast<std::int32_t>(length);
    }
    const FileHead bytes(head);
    std::int16_t syncPosition = 0;

    // 2. The first 0xFF 0xFA or 0xFF 0xFB pair that starts at 1 to 6000.
    for (int p = 1; p <= kLastSyncPosition; ++p) {
        if (bytes.byteOrZero(p) == 255) {
            const std::uint8_t next = bytes.byteOrZero(p + 1);
            if (next == 250 || next == 251) {
                syncPosition = static_cast<std::int16_t>(p);
                break;
            }
        }
    }

    // 3. The Xing frame count, most significant byte first.
    std::uint8_t entries[5] = {0, 0, 0, 0, 0};  // entries 1 to 4 are used
    QByteArray xing;
    for (int i = 0; i < 4; ++i) {
        xing.append(static_cast<char>(bytes.byteOrZero(syncPosition + 36 + i)));
    }
    if (xing == QByteArrayLiteral("Xing")) {
        for (int entry = 1; entry <= 4; ++entry) {
            bytes.byteAt(syncPosition + 44 + entry - 1, entries[entry]);
        }
        std::int32_t frames = 0;
        if (BitTextToNumber(BytesToBitText(entries), frames)) {
            frames_ = frames;
        }
    }

    // 4. The four header bytes. Without a sync position the read of entry 1
    // at position 0 fails and the entry keeps its value.
    for (int entry = 1; entry <= 4; ++entry) {
        bytes.byteAt(syncPosition + entry - 1, entries[entry]);
    }

    // 5., 6. The header as binary digits, leading zeros dropped; the fields
    // are cut out of that text by position, so a text shorter than 32 digits
    // shifts them all.
    const QString bits = BytesToBitText(entries);
    std::uint32_t digits = 0;
    for (const QChar digit : bits) {
        digits = (digits << 1) | (digit == QLatin1Char('1') ? 1u : 0u);
    }
    const int known = static_cast<int>(bits.size());
    const MpegFrameHeader header(known == 0 ? 0 : digits << (32 - known), known);

    // 7. Version, layer, mode, channels, emphasis.
    mpegVersion_ = static_cast<std::int16_t>(header.mpegVersion());
    layerVersion_ = static_cast<std::int16_t>(header.layer());
    mode_ = QString::fromLatin1(header.modeName());
    channels_ = static_cast<std::int16_t>(header.channels());
    emphasis_ = QString::fromLatin1(header.emphasisName());

    // 8. Only MPEG-1 goes on; sample-rate index 3 has no entry.
    if (mpegVersion_ != 1) {
        hz_ = 0;
        return;
    }
    if (header.sampleRateIndex() < 3) {
        hz_ = header.sampleRateHz();
    }

    // 9. Bit rate from the table of the layer; the reserved layer is marked 1.
    if (layerVersion_ == 0) {
        kbits_ = 1;
        return;
    }
    if (header.bitrateIndex() < 15) {
        kbits_ = static_cast<std::int16_t>(header.bitrateKbps());
    }
    // Free format: the rate that the length of the stream's frames makes,
    // where the frames behind the header show it.
    freeFormat_ = known == 32 && header.isFreeFormat();
    if (freeFormat_) {
        const QByteArray frames = head.mid(syncPosition - 1);
        Mp3MemorySource source(reinterpret_cast<const std::uint8_t*>(frames.constData()),
                               static_cast<std::size_t>(frames.size()));
        const Mp3StreamFacts facts = ReadMp3StreamFacts(source, 1);
        if (facts.freeFormat() && facts.first.sameStreamAs(header)) {
            kbits_ = static_cast<std::int16_t>(facts.kbps());
        }
    }

    // 10. The yes-or-no flags, each from its one digit; a missing digit
    // leaves the flag empty.
    const auto flag = [&header](int position, const char* zero, const char* one, QString& target) {
        const std::optional<std::uint32_t> digit = header.field(position, 1);
        if (!digit) {
            return;
        }
        target = QString::fromLatin1(*digit == 1 ? one : zero);
    };
    flag(30, "No", "Yes", original_);
    flag(29, "No", "Yes", copyrighted_);
    flag(24, "No", "Yes", privateBit_);
    flag(16, "Yes", "No", crcs_);  // a clear protection bit means a CRC follows

    // 11. Seconds from the size and the first frame's rate. The product is
    // 32-bit; a product, a divisor or a result out of range leaves 0.
    const std::int64_t bits8 = std::int64_t{fileBytes_} * 8;
    if (bits8 <= std::numeric_limits<std::int32_t>::max() && kbits_ != 0) {
        const double seconds = std::floor(static_cast<double>(bits8) / kbits_ / 1000.0);
        if (seconds <= std::numeric_limits<std::int16_t>::max() &&
            seconds >= std::numeric_limits<std::int16_t>::min()) {
            seconds_ = static_cast<std::int16_t>(seconds);
        }
    }

    // 12. The report of ten lines.
    QLocale locale;
    const QString version = (mpegVersion_ == 0 ? QString() : QString::number(mpegVersion_)) +
                            locale.decimalPoint() + QLatin1Char('0');
    const QString crlf = QStringLiteral("\r\n");
    infoString_ =
        QStringLiteral("Size: ") + QString::number(fileBytes_) + QStringLiteral(" bytes") + crlf +
        QStringLiteral("Length: ") + QString::number(seconds_) + QStringLiteral(" seconds") + crlf +
        QStringLiteral("MPEG ") + version + QStringLiteral(" layer ") +
        QString::number(layerVersion_) + crlf + QString::number(kbits_) + QStringLiteral("kbit") +
        (freeFormat_ ? QStringLiteral(" free format, ") : QStringLiteral(", ")) +
        QString::number(frames_) + QStringLiteral(" frames") + crlf + QString::number(hz_) +
        QStringLiteral("hz ") + mode_ + crlf + QStringLiteral("Private: ") + privateBit_ + crlf +
        QStringLiteral("CRCs: ") + crcs_ + crlf + QStringLiteral("Copyrighted: ") + copyrighted_ +
        crlf + QStringLiteral("Original: ") + original_ + crlf + QStringLiteral("Emphasis: ") +
        emphasis_;
}

void ID3Reader::setComments(const QString& text) {
    comments_ = FixedField(text, kCommentsLength);
}
QString ID3Reader::Comments() const {
    return FieldText(comments_);
}
void ID3Reader::setYear(const QString& text) {
    year_ = FixedField(text, kYearLength);
}
QString ID3Reader::Year() const {
    return FieldText(year_);
}
void ID3Reader::setAlbum(const QString& text) {
    album_ = FixedField(text, kAlbumLength);
}
QString ID3Reader::Album() const {
    return FieldText(album_);
}
void ID3Reader::setArtist(const QString& text) {
    artist_ = FixedField(text, kArtistLength);
}
QString ID3Reader::Artist() const {
    return FieldText(artist_);
}
void ID3Reader::setTitle(const QString& text) {
    title_ = FixedField(text, kTitleLength);
}
QString ID3Reader::Title() const {
    return FieldText(title_);
}

void ID3Reader::setGenre(std::int32_t genre) {
    if (genre < 0 || genre > 255) {
        return;
    }
    genre_ = static_cast<std::uint8_t>(genre);
}

bool ID3Reader::ClearTag() {
    if (!FileIsThere(fileName_)) {
        return false;
    }
    QFile file(fileName_);
    if (!OpenForWriting(file)) {
        return false;
    }
    const qint64 length = file.size();
    if (length < kTagSize || !file.seek(length - kTagSize)) {
        return false;
    }
    const QByteArray zeros(kTagSize - 1, '\0');
    return file.write(zeros) == zeros.size() && file.flush();
}

bool ID3Reader::HasTag() const {
    if (!FileIsThere(fileName_)) {
        return false;
    }
    QFile file(fileName_);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const qint64 length = file.size();
    if (length < kTagSize || !file.seek(length - kTagSize)) {
        return false;
    }
    return file.read(3).toUpper() == QByteArrayLiteral("TAG");
}

bool ID3Reader::WriteTag() {
    if (!FileIsThere(fileName_)) {
        return false;
    }
    QFile file(fileName_);
    if (!OpenForWriting(file)) {
        return false;
    }
    const qint64 length = file.size();
    if (length < kTagSize || !file.seek(length - kTagSize)) {
        return false;
    }
    QByteArray tag = QByteArrayLiteral("TAG");
    tag += title_;
    tag += artist_;
    tag += album_;
    tag += year_;
    tag += comments_;
    tag += static_cast<char>(genre_);
    return file.write(tag) == tag.size() && file.flush();
}

QString ID3Reader::GenreText(std::int16_t iGenreID) {
    if (iGenreID < 0 || iGenreID >= static_cast<std::int16_t>(kGenres.size())) {
        return QStringLiteral("Unknown");
    }
    return QString::fromLatin1(kGenres[static_cast<std::size_t>(iGenreID)]);
}

void ID3Reader::FillComboGenre(GenreComboTarget& inCombo, std::int16_t& iWhich) {
    if (iWhich < 0 || iWhich > 147) {
        iWhich = 0;
    }
    inCombo.clear();
    for (std::int16_t genre = 0; genre <= 147; ++genre) {
        inCombo.addItem(GenreText(genre));
    }
    inCombo.setCurrentIndex(iWhich);
}

void ID3Reader::FillComboGenre(GenreComboTarget& inCombo) {
    std::int16_t first = 0;
    FillComboGenre(inCombo, first);
}
