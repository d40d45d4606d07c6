#pragma once

// The cells of a list row, named once. A row holds one text cell per column,
// in the order of the columns: cell 0 is the row's own text (Filename), the
// others its sub-items. Everything that reads or writes a cell names it here;
// only the list file and the clipboard record, which store all cells in
// order, count them by position. The cells are named below the list because
// the cells of a file are read here in media (ItemCells); the headers of the
// columns are the list's own (list/Columns.h).

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
