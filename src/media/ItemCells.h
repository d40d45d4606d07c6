#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <memory>
#include <optional>

#include "media/JoinTraits.h"

// The texts of one list row for a file, cell by cell: entry i is the text of
// cell i, as media/CellNames.h names them. An MP3 list has the cells of the MP3
// layout, any other list type those of the MPEG layout. The tag cells of an
// MP3 file come from its ID3v1 tag, or from its ID3v2 tag when it has no ID3v1
// tag. An entry without a value means "leave the cell as it is": the Filepath
// cell (the path itself) always, the tag cells of an MP3 file with neither
// tag, the date of a missing file, and a value that the media library gave in
// a form that isn't a number.
using ItemCellTexts = QList<std::optional<QString>>;

ItemCellTexts ItemCells(const QString& path, const QString& listType);

// All that reading a file for a row gives: its cells, and the traits that
// decide how it joins with the other files of the list, both from the one
// look into the file (the frame reader and one answer of the media library).
struct ItemReading {
    ItemCellTexts cells;
    std::shared_ptr<const JoinTraits> traits;
};

ItemReading ReadItem(const QString& path, const QString& listType);

// The size cell: bytes / 1024, rounded, thousands grouped in the default
// locale, + " KB"; anything that rounds to 0 (under 512 bytes) reads "1 KB".
QString FileSizeText(qint64 bytes);

// The date cell: the default locale's short date and time.
QString FileDateText(const QDateTime& modified);

// An MP3 file whose audio the media library does not see (a free-format
// file) gets the cells and join traits of the audio frames that the fix tool
// joins: its Duration from their playing time, its Bitrate "free format" (or
// the frames' rate from the tables, in the library's form), its Hertz from
// the frames' rate and channel count as from the library's values.
QString FreeFormatBitrateText();

// The cells made of the media library's values, each from its raw text.
// MP3 list: Duration ("61 seconds"; no value for a text that isn't a number),
// Bitrate (the first three characters + " kbps"), Hertz (the rate, then
// " (Stereo)" for any channel number but 0, " (Mono)" for 0, nothing more for
// a channel text that isn't a number).
std::optional<QString> DurationCellFromPlayTime(const QString& playTimeMs);
QString BitrateCell(const QString& bitRate);
QString HertzCell(const QString& samplingRate, const QString& channels);
// MPEG list: Video Size ("352x288"; a value that is empty, not a number or
// beyond 16 bits counts 0) and Duration ("0 seconds" when the play time isn't
// a number or beyond 32 bits).
QString VideoSizeCell(const QString& width, const QString& height);
QString VideoDurationCell(const QString& playTimeMs);
