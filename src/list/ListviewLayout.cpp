#include "list/ListviewLayout.h"

#include "list/Columns.h"
#include "list/MainModel.h"

void ClearColumns(MainModel& model) {
    model.items.clearColumns();
}

namespace {

template <std::size_t N>
void addColumns(MainModel& model, const ColumnHeader (&columns)[N]) {
    for (const ColumnHeader& column : columns) {
        model.items.addColumn(QString::fromLatin1(column.text),
                              column.hidden ? 0 : ItemList::kDefaultColumnWidth);
    }
}

}  // namespace

void AddSharedColumns(MainModel& model) {
    addColumns(model, kSharedColumns);
}

void AddMP3Columns(MainModel& model) {
    addColumns(model, kMp3Columns);
}

void AddMPEGColumns(MainModel& model) {
    addColumns(model, kMpegColumns);
}
