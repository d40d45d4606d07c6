#pragma once

#include <cstddef>

// The columns of the list, named once. A row holds one text cell per column,
// in the order of the columns: cell 0 is the row's own text (Filename), the
// others its sub-items. Every list begins with the four shared columns; an
// MP3 list follows them with the MP3 columns, any other list with the MPEG
// columns. Everything that reads or writes a cell names it here; only the
// list file and the clipboard record, which store all cells in order, count
// them by position.
//
// To add a column: name its cell here, put its header in the table of its
// layout below, and fill it in media/ItemCells.cpp.

// The cells of every list.
namespace SharedCell {
enum : int { Filename, Filesize, DateModified, Filepath, Count };
}

// The cells behind the shared ones in an MP3 list.
namespace Mp3Cell {
enum : int {
    Artist = SharedCell::Count,
    Title,
    Album,
    Year,
    Genre,
    Duration,
    Bitrate,
    Hertz,
    Count
};
}

// The cells behind the shared ones in an MPEG list (and a list of any other
// type).
namespace MpegCell {
enum : int { VideoCodec = SharedCell::Count, VideoSize, Duration, Count };
}

// One column of a layout: its cell, its header text, and whether it is kept
// out of sight (width 0).
struct ColumnHeader {
    int cell;
    const char* text;
    bool hidden = false;
};

// The shared columns; Filepath has width 0, which keeps the full path out of
// sight while it stands in the row.
inline constexpr ColumnHeader kSharedColumns[] = {
    {SharedCell::Filename, "Filename"},
    {SharedCell::Filesize, "Filesize"},
    {SharedCell::DateModified, "Date Modified"},
    {SharedCell::Filepath, "Filepath", true},
};

inline constexpr ColumnHeader kMp3Columns[] = {
    {Mp3Cell::Artist, "Artist"},   {Mp3Cell::Title, "Title"}, {Mp3Cell::Album, "Album"},
    {Mp3Cell::Year, "Year"},       {Mp3Cell::Genre, "Genre"}, {Mp3Cell::Duration, "Duration"},
    {Mp3Cell::Bitrate, "Bitrate"}, {Mp3Cell::Hertz, "Hertz"},
};

inline constexpr ColumnHeader kMpegColumns[] = {
    {MpegCell::VideoCodec, "Video Codec"},
    {MpegCell::VideoSize, "Video Size"},
    {MpegCell::Duration, "Duration"},
};

// The header text of a cell in a layout; nullptr when the layout lacks it.
template <std::size_t N>
constexpr const char* HeaderText(const ColumnHeader (&columns)[N], int cell) {
    for (const ColumnHeader& column : columns) {
        if (column.cell == cell) {
            return column.text;
        }
    }
    return nullptr;
}
