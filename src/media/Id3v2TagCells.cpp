#include "media/Id3v2TagCells.h"

#include <taglib/id3v2tag.h>

#include <QFile>
#include <algorithm>

#include "mpegaudio/TagBytes.h"

namespace {

QString fromTagLib(const TagLib::String& text) {
    return QString::fromStdString(text.to8Bit(true)).trimmed();
}

}  // namespace

std::optional<Id3v2TagCells> ReadId3v2TagCells(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray header = file.read(10);
    const std::uint64_t length =
        Id3v2TagLength(reinterpret_cast<const std::uint8_t*>(header.constData()),
                       static_cast<std::size_t>(header.size()));
    if (length == 0) {
        return std::nullopt;
    }
    const qint64 available = file.size();
    file.seek(0);
    const QByteArray bytes = file.read(std::min<qint64>(static_cast<qint64>(length), available));
    const std::unique_ptr<TagBytes> tag = TagBytes::id3v2(
        TagLib::ByteVector(bytes.constData(), static_cast<unsigned int>(bytes.size())));
    if (!tag->v2()) {
        return std::nullopt;
    }
    const TagLib::ID3v2::Tag& v2 = *tag->v2();
    Id3v2TagCells cells;
    cells.artist = fromTagLib(v2.artist());
    cells.title = fromTagLib(v2.title());
    cells.album = fromTagLib(v2.album());
    cells.year = v2.year() > 0 ? QString::number(v2.year()) : QString();
    cells.genre = fromTagLib(v2.genre());
    if (cells.artist.isEmpty() && cells.title.isEmpty() && cells.album.isEmpty() &&
        cells.year.isEmpty() && cells.genre.isEmpty()) {
        return std::nullopt;
    }
    return cells;
}
