#include "media/ItemCells.h"

#include <QFileInfo>
#include <QLocale>
#include <cmath>
#include <cstdint>
#include <limits>

#include "list/Columns.h"
#include "media/ID3Reader.h"
#include "media/Id3v2TagCells.h"
#include "media/MediaInfoFile.h"
#include "platform/FileHelpers.h"

namespace {

// The library's value as a number: decimal, blanks around it allowed.
std::optional<double> NumberFromText(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

// The value as a whole number in [low, high], rounded half to even; no value
// when it isn't a number or lies outside.
std::optional<std::int64_t> WholeFromText(const QString& text, std::int64_t low,
                                          std::int64_t high) {
    const std::optional<double> value = NumberFromText(text);
    if (!value) {
        return std::nullopt;
    }
    const double rounded = std::nearbyint(*value);
    if (rounded < static_cast<double>(low) || rounded > static_cast<double>(high)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(rounded);
}

// A whole number of seconds as plain digits.
QString PlainNumber(double whole) {
    if (std::fabs(whole) < 9.0e18) {
        return QString::number(static_cast<std::int64_t>(whole));
    }
    return QString::number(whole, 'g', 15);
}

}  // namespace

QString FileSizeText(qint64 bytes) {
    const double kilobytes = std::round(static_cast<double>(bytes) / 1024.0);
    QString text;
    if (kilobytes != 0) {
        text = QLocale().toString(static_cast<qint64>(kilobytes));
    }
    if (text.isEmpty()) {
        text = QStringLiteral("1");
    }
    return text + QStringLiteral(" KB");
}

QString FileDateText(const QDateTime& modified) {
    return QLocale().toString(modified, QLocale::ShortFormat);
}

std::optional<QString> DurationCellFromPlayTime(const QString& playTimeMs) {
    const std::optional<double> ms = NumberFromText(playTimeMs);
    if (!ms) {
        return std::nullopt;
    }
    return PlainNumber(std::trunc(*ms / 1000.0)) + QStringLiteral(" seconds");
}

QString BitrateCell(const QString& bitRate) {
    return bitRate.left(3) + QStringLiteral(" kbps");
}

QString HertzCell(const QString& samplingRate, const QString& channels) {
    QString cell = samplingRate;
    const std::optional<double> count = NumberFromText(channels);
    if (count) {
        cell += *count != 0 ? QStringLiteral(" (Stereo)") : QStringLiteral(" (Mono)");
    }
    return cell;
}

QString VideoSizeCell(const QString& width, const QString& height) {
    constexpr std::int64_t kLow = std::numeric_limits<std::int16_t>::min();
    constexpr std::int64_t kHigh = std::numeric_limits<std::int16_t>::max();
    const std::int64_t w = WholeFromText(width, kLow, kHigh).value_or(0);
    const std::int64_t h = WholeFromText(height, kLow, kHigh).value_or(0);
    return QString::number(w) + QLatin1Char('x') + QString::number(h);
}

QString VideoDurationCell(const QString& playTimeMs) {
    const std::int64_t ms = WholeFromText(playTimeMs, std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max())
                                .value_or(0);
    return PlainNumber(std::trunc(static_cast<double>(ms) / 1000.0)) + QStringLiteral(" seconds");
}

ItemCellTexts ItemCells(const QString& path, const QString& listType) {
    const bool mp3 = listType == QLatin1String("MP3");
    const int count = mp3 ? int{Mp3Cell::Count} : int{MpegCell::Count};
    ItemCellTexts cells(count);

    cells[SharedCell::Filename] = GetFileNameFromPath(path);
    const QFileInfo info(path);
    const bool isThere = !path.isEmpty() && info.exists();
    cells[SharedCell::Filesize] = FileSizeText(isThere && info.isFile() ? info.size() : 0);
    if (isThere) {
        const QDateTime modified = info.lastModified();
        if (modified.isValid()) {
            cells[SharedCell::DateModified] = FileDateText(modified);
        }
    }

    if (mp3) {
        ID3Reader reader;
        reader.setFileName(path);
        if (reader.TagWasRead()) {
            cells[Mp3Cell::Artist] = reader.Artist();
            cells[Mp3Cell::Title] = reader.Title();
            cells[Mp3Cell::Album] = reader.Album();
            cells[Mp3Cell::Year] = reader.Year();
            cells[Mp3Cell::Genre] = ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre()));
        } else if (const std::optional<Id3v2TagCells> tag = ReadId3v2TagCells(path)) {
            cells[Mp3Cell::Artist] = tag->artist;
            cells[Mp3Cell::Title] = tag->title;
            cells[Mp3Cell::Album] = tag->album;
            cells[Mp3Cell::Year] = tag->year;
            cells[Mp3Cell::Genre] = tag->genre;
        }
        MediaInfoFile media(path);
        cells[Mp3Cell::Duration] =
            DurationCellFromPlayTime(media.inform(QStringLiteral("General;%PlayTime%")));
        cells[Mp3Cell::Bitrate] = BitrateCell(media.inform(QStringLiteral("Audio;%BitRate%")));
        const QString rate = media.inform(QStringLiteral("Audio;%SamplingRate%"));
        cells[Mp3Cell::Hertz] = HertzCell(rate, media.inform(QStringLiteral("Audio;%Channel(s)%")));
    } else {
        MediaInfoFile media(path);
        cells[MpegCell::VideoCodec] = media.inform(QStringLiteral("Video;%Codec%"));
        const QString width = media.inform(QStringLiteral("Video;%Width%"));
        cells[MpegCell::VideoSize] =
            VideoSizeCell(width, media.inform(QStringLiteral("Video;%Height%")));
        cells[MpegCell::Duration] =
            VideoDurationCell(media.inform(QStringLiteral("General;%PlayTime%")));
    }
    return cells;
}
