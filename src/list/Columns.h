#pragma once

#include <cstddef>

#include "media/CellNames.h"

// The columns of the list and their headers, by layout. A row holds one text
// cell per column, in the order of the columns; the cells themselves are
// named in media/CellNames.h, below the list, since the cells of a file are
// read in media. Every list begins with the four shared columns; an MP3 list
// follows them with the MP3 columns, any other list with the MPEG columns.
//
// To add a column: name its cell in media/CellNames.h, put its header in the
// table of its layout below, and fill it in media/ItemCells.cpp.

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
