#pragma once

struct MainModel;

// Fills the cells of a row from the file whose path stands in its cell 3,
// for the list type of the list. Row 0 means the last row.
void FillListItem(MainModel& model, int row);
