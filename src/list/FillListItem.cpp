#include "list/FillListItem.h"

#include "list/Columns.h"
#include "list/MainModel.h"

namespace {
// The row that row 0 stands for; 0 when the row isn't there (row 0 of an
// empty list), so that nothing happens.
int rowToFill(const MainModel& model, int row) {
    if (row == 0) {
        row = model.items.count();
    }
    return row >= 1 && row <= model.items.count() ? row : 0;
}
}  // namespace

void FillListItem(MainModel& model, int row) {
    row = rowToFill(model, row);
    if (row == 0) {
        return;
    }
    FillListItemWith(model, row,
                     ReadItem(model.items.cell(row, SharedCell::Filepath), model.state.listType()));
}

void FillListItemWith(MainModel& model, int row, const ItemReading& reading) {
    row = rowToFill(model, row);
    if (row == 0) {
        return;
    }
    // A cell beyond the list's columns is refused by the list and skipped.
    model.items.setCells(row, reading.cells);
    model.items.setJoinTraits(row, reading.traits);
}
