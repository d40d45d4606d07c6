#include "media/ItemCells.h"

#include <QFileInfo>
#include <QLocale>
#include <cmath>
#include <cstdint>
#include <limits>

#include "media/ID3Reader.h"
#include "media/Id3v2TagCells.h"
#include "media/MediaInfoFile.h"
#include "platform/FileHelpers.h"

namespace {

constexpr int kMp3CellCount = 12;
constexpr int kMpegCellCount = 7;

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
    ItemCellTexts cells(mp3 ? kMp3CellCount : kMpegCellCount);

    cells[0] = GetFileNameFromPath(path);
    const QFileInfo info(path);
    const bool isThere = !path.isEmpty() && info.exists();
    cells[1] = FileSizeText(isThere && info.isFile() ? info.size() : 0);
    if (isThere) {
        const QDateTime modified = info.lastModified();
        if (modified.isValid()) {
            cells[2] = FileDateText(modified);
        }
    }

    if (mp3) {
        ID3Reader reader;
        reader.setFileName(path);
        if (reader.TagWasRead()) {
            cells[4] = reader.Artist();
            cells[5] = reader.Title();
            cells[6] = reader.Album();
            cells[7] = reader.Year();
            cells[8] = ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre()));
        } else if (const std::optional<Id3v2TagCells> tag = ReadId3v2TagCells(path)) {
            cells[4] = tag->artist;
            cells[5] = tag->title;
            cells[6] = tag->album;
            cells[7] = tag->year;
            cells[8] = tag->genre;
        }
        MediaInfoFile media(path);
        cells[9] = DurationCellFromPlayTime(media.inform(QStringLiteral("General;%PlayTime%")));
        cells[10] = BitrateCell(media.inform(QStringLiteral("Audio;%BitRate%")));
        const QString rate = media.inform(QStringLiteral("Audio;%SamplingRate%"));
        cells[11] = HertzCell(rate, media.inform(QStringLiteral("Audio;%Channel(s)%")));
    } else {
        MediaInfoFile media(path);
        cells[4] = media.inform(QStringLiteral("Video;%Codec%"));
        const QString width = media.inform(QStringLiteral("Video;%Width%"));
        cells[5] = VideoSizeCell(width, media.inform(QStringLiteral("Video;%Height%")));
        cells[6] = VideoDurationCell(media.inform(QStringLiteral("General;%PlayTime%")));
    }
    return cells;
}
