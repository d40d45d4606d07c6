#pragma once

struct MainModel;

// Sorts the rows once by the text of one column: column 0 is the row's own
// text, column n its cell n; order 0 is ascending, 1 descending. Cells are
// compared as text, never as numbers, so "1,024 KB" comes before "9 KB".
// Nothing else changes: totals, status and title stay, and rows added later
// go to the end.
void SortList(MainModel& model, int column, int order);
