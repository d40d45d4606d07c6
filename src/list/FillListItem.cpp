#include "list/FillListItem.h"

#include "list/MainModel.h"
#include "media/ItemCells.h"

void FillListItem(MainModel& model, int row) {
    if (row == 0) {
        row = model.items.count();
    }
    // A row that isn't there (row 0 of an empty list) can't be read: nothing
    // happens.
    if (row < 1 || row > model.items.count()) {
        return;
    }
    const QString path = model.items.cell(row, 3);
    const ItemCellTexts cells = ItemCells(path, model.state.listType());
    for (int cell = 0; cell < cells.size(); ++cell) {
        if (cells[cell].has_value()) {
            // A cell beyond the list's columns is refused by the list and skipped.
            model.items.setCell(row, cell, *cells[cell]);
        }
    }
}
