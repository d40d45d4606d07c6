#pragma once

#include <QString>
#include <optional>

// The tag cells of an MP3 row (Artist, Title, Album, Year, Genre) from the
// ID3v2 tag (version 2.2, 2.3 or 2.4) at the start of a file, read through
// TagLib: the year as its four digits, the genre as text (a genre number as
// its name). Only the tag's own bytes are read, not the audio behind it. No
// value when the file has no such tag or the tag holds none of the five.
struct Id3v2TagCells {
    QString artist;
    QString title;
    QString album;
    QString year;
    QString genre;
};

std::optional<Id3v2TagCells> ReadId3v2TagCells(const QString& path);
