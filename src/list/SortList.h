#pragma once

struct MainModel;

// Sorts the rows once by one column, by what the column means: column 0 is
// the row's own text, column n its cell n; order 0 is ascending, 1
// descending. Filesize, Year, Duration, Bitrate and Hertz (the rate, then
// Mono before Stereo) sort by their numbers, Date Modified by date and time,
// Video Size by width and then height; a cell that holds no such value comes
// first in ascending order. Every other column (the names, the path, the tag
// texts, the codec) sorts in natural order: numbers by value, case ignored.
// The sort is stable: equal cells keep their order in either direction.
// Nothing else changes: totals, status and title stay, and rows added later
// go to the end.
void SortList(MainModel& model, int column, int order);
