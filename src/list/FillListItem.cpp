// PLACEHOLDER until the media inspection lands: fills only the file name.
#include "list/FillListItem.h"

#include "list/MainModel.h"
#include "platform/FileHelpers.h"

void FillListItem(MainModel& model, int row) {
    if (row == 0) {
        row = model.items.count();
    }
    model.items.setCell(row, 0, GetFileNameFromPath(model.items.cell(row, 3)));
}
