#pragma once

struct MainModel;

// The column layouts of the list. A layout is always set in the order
// ClearColumns, AddSharedColumns, then AddMP3Columns or AddMPEGColumns. The
// routines touch the column headers only: never the rows, the list type or
// the type image.

// Removes all column headers.
void ClearColumns(MainModel& model);
// Adds Filename, Filesize, Date Modified and Filepath; Filepath with width 0,
// which keeps the full path out of sight while it stands in the row.
void AddSharedColumns(MainModel& model);
// Adds Artist, Title, Album, Year, Genre, Duration, Bitrate, Hertz.
void AddMP3Columns(MainModel& model);
// Adds Video Codec, Video Size, Duration.
void AddMPEGColumns(MainModel& model);
