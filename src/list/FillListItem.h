#pragma once

#include "media/ItemCells.h"

struct MainModel;

// Fills the cells of a row from the file whose path stands in its Filepath
// cell, for the list type of the list, and gives the row the join traits of
// the file (its check against the first row follows). Row 0 means the last
// row.
void FillListItem(MainModel& model, int row);

// The same with the file read already (by a read-ahead of the adding loop,
// for the list's present type). Row 0 means the last row.
void FillListItemWith(MainModel& model, int row, const ItemReading& reading);
