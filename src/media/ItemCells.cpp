#include "media/ItemCells.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <cmath>
#include <cstdint>
#include <limits>

#include "media/CellNames.h"
#include "media/ID3Reader.h"
#include "media/Id3v2TagCells.h"
#include "media/ListType.h"
#include "media/MediaInfoFile.h"
#include "mpegaudio/Mp3StreamFacts.h"
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

namespace {

// The fields asked of the media library, in the order of the enums below.
const QString kGeneral = QStringLiteral("General");
const QString kAudio = QStringLiteral("Audio");
const QString kVideo = QStringLiteral("Video");

enum GeneralField { PlayTime, GeneralFormat };
enum AudioField { BitRate, SamplingRate, Channels, AudioFormat, AudioVersion, AudioLayer };
enum VideoField { Codec, Width, Height, VideoFormat, VideoVersion, FrameRate, AspectRatio };

const QList<std::pair<QString, QStringList>>& askedFields() {
    static const QList<std::pair<QString, QStringList>> asked = {
        {kGeneral, {QStringLiteral("PlayTime"), QStringLiteral("Format")}},
        {kAudio,
         {QStringLiteral("BitRate"), QStringLiteral("SamplingRate"), QStringLiteral("Channel(s)"),
          QStringLiteral("Format"), QStringLiteral("Format_Version"),
          QStringLiteral("Format_Profile")}},
        {kVideo,
         {QStringLiteral("Codec"), QStringLiteral("Width"), QStringLiteral("Height"),
          QStringLiteral("Format"), QStringLiteral("Format_Version"), QStringLiteral("FrameRate"),
          QStringLiteral("DisplayAspectRatio/String")}}};
    return asked;
}

JoinTraits::Access accessOf(const QFileInfo& info, bool isThere) {
    if (!isThere) {
        return JoinTraits::Access::Missing;
    }
    return info.isFile() && info.isReadable() ? JoinTraits::Access::Readable
                                              : JoinTraits::Access::Unreadable;
}

// The traits of the file from the library's records.
std::shared_ptr<JoinTraits> traitsOf(const MediaInfoFile::Records& records, bool mp3,
                                     JoinTraits::Access access) {
    auto traits = std::make_shared<JoinTraits>();
    traits->kind = mp3 ? JoinTraits::Kind::Mp3 : JoinTraits::Kind::Mpeg;
    traits->access = access;
    const QStringList general = records.value(kGeneral).value(0);
    traits->containerFormat = general.value(GeneralFormat);
    traits->container = ContainerOfFormat(traits->containerFormat);
    for (const QStringList& stream : records.value(kAudio)) {
        AudioTraits audio;
        audio.format = stream.value(AudioFormat);
        audio.version = stream.value(AudioVersion);
        audio.layer = stream.value(AudioLayer);
        audio.rate = WholeNumberAtStart(stream.value(SamplingRate));
        audio.channels = WholeNumberAtStart(stream.value(Channels));
        traits->audio.append(audio);
    }
    const QList<QStringList> videos = records.value(kVideo);
    if (!videos.isEmpty()) {
        const QStringList& video = videos.first();
        traits->videoCodec = VideoCodecText(video.value(VideoFormat), video.value(VideoVersion));
        traits->width = WholeNumberAtStart(video.value(Width));
        traits->height = WholeNumberAtStart(video.value(Height));
        traits->frameRate = NumberFromText(video.value(FrameRate)).value_or(0);
        traits->aspectRatio = video.value(AspectRatio);
    }
    return traits;
}

// The media cells of an MP3 file from its audio frames: its playing time, its
// bit rate ("free format" for a free-format file) and its sampling rate with
// the channel text of the library's values.
void fillFromFrames(const Mp3StreamFacts& facts, ItemCellTexts& cells) {
    cells[Mp3Cell::Duration] =
        DurationCellFromPlayTime(QString::number(std::trunc(facts.seconds * 1000.0), 'f', 0));
    cells[Mp3Cell::Bitrate] = facts.freeFormat()
                                  ? FreeFormatBitrateText()
                                  : BitrateCell(QString::number(facts.kbps() * 1000));
    cells[Mp3Cell::Hertz] = HertzCell(QString::number(facts.first.sampleRateHz()),
                                      QString::number(facts.first.channels()));
}

// The traits of an MP3 file from its audio frames, in the library's words.
std::shared_ptr<JoinTraits> traitsOfFrames(const Mp3StreamFacts& facts, JoinTraits::Access access,
                                           const MediaInfoFile::Records& records) {
    auto traits = traitsOf(records, true, access);
    AudioTraits audio;
    audio.format = QStringLiteral("MPEG Audio");
    const int version = facts.first.mpegVersion();
    audio.version = version == 25 ? QStringLiteral("Version 2.5")
                                  : QStringLiteral("Version ") + QString::number(version);
    audio.layer = QStringLiteral("Layer ") + QString::number(facts.first.layer());
    audio.rate = facts.first.sampleRateHz();
    audio.channels = facts.first.channels();
    traits->audio = {audio};
    return traits;
}

}  // namespace

QString FreeFormatBitrateText() {
    return QStringLiteral("free format");
}

ItemCellTexts ItemCells(const QString& path, const QString& listType) {
    return ReadItem(path, listType).cells;
}

ItemReading ReadItem(const QString& path, const QString& listType) {
    const bool mp3 = ListTypeOf(listType) == ListType::Mp3;
    ItemReading reading;
    ItemCellTexts& cells = reading.cells;
    cells.resize(mp3 ? int{Mp3Cell::Count} : int{MpegCell::Count});

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
    }
    // One answer of the library holds every value of both the cells and the
    // traits; each cell is made of the values of its field over all streams,
    // as the field's own template gives them.
    MediaInfoFile media(path);
    const MediaInfoFile::Records records = media.informRecords(askedFields());
    const QList<QStringList> general = records.value(kGeneral);
    const QList<QStringList> audio = records.value(kAudio);
    const QList<QStringList> video = records.value(kVideo);
    if (mp3 && audio.isEmpty()) {
        // The library sees no audio (it does not read free-format MPEG audio):
        // the cells and traits of what the fix tool joins, where that is
        // more than nothing.
        const Mp3StreamFacts facts = ReadMp3FileFacts(QFile::encodeName(path).toStdString());
        if (facts.hasAudio) {
            fillFromFrames(facts, cells);
            reading.traits = traitsOfFrames(facts, accessOf(info, isThere), records);
            return reading;
        }
    }
    if (mp3) {
        cells[Mp3Cell::Duration] = DurationCellFromPlayTime(JoinedField(general, PlayTime));
        cells[Mp3Cell::Bitrate] = BitrateCell(JoinedField(audio, BitRate));
        cells[Mp3Cell::Hertz] =
            HertzCell(JoinedField(audio, SamplingRate), JoinedField(audio, Channels));
    } else {
        cells[MpegCell::VideoCodec] = JoinedField(video, Codec);
        cells[MpegCell::VideoSize] =
            VideoSizeCell(JoinedField(video, Width), JoinedField(video, Height));
        cells[MpegCell::Duration] = VideoDurationCell(JoinedField(general, PlayTime));
    }
    reading.traits = traitsOf(records, mp3, accessOf(info, isThere));
    return reading;
}
