#include "list/ListGrade.h"

#include "list/Columns.h"
#include "list/MainModel.h"

namespace {

// True when the column, all its cells appended to one text, is made up of
// nothing but the first row's cell: every occurrence of that cell is deleted
// from the joined text, and the column counts as equal when nothing is left.
// So a first cell "AB" and a later one "ABAB" are equal, and an empty first
// cell matches only a column of empty cells.
bool columnMadeOfFirstCell(const ItemList& items, int cell) {
    const int rows = items.count();
    const QString first = items.cell(1, cell);
    // The common case, every cell the same text, needs no joined text.
    bool allSame = true;
    for (int i = 2; i <= rows && allSame; ++i) {
        allSame = items.cellView(i, cell) == first;
    }
    if (allSame) {
        return true;
    }
    if (first.isEmpty()) {
        return false;  // some later cell is not empty, and nothing deletes it
    }
    QString joined;
    for (int i = 1; i <= rows; ++i) {
        joined += items.cell(i, cell);
    }
    joined.remove(first);
    return joined.isEmpty();
}

}  // namespace

void UpdateListStatus(MainModel& model) {
    const ItemList& items = model.items;
    const int rows = items.count();
    if (rows >= 1) {
        SetListStatus(model, QStringLiteral("Green"));
        if (model.state.listType() == QLatin1String("MP3")) {
            if (!columnMadeOfFirstCell(items, Mp3Cell::Hertz)) {
                SetListStatus(model, QStringLiteral("Orange"));
            }
        } else {
            // Every type but MP3 is graded on its video columns.
            if (!columnMadeOfFirstCell(items, MpegCell::VideoCodec)) {
                SetListStatus(model, QStringLiteral("Red"));
            }
            if (!columnMadeOfFirstCell(items, MpegCell::VideoSize)) {
                SetListStatus(model, QStringLiteral("Red"));
            }
        }
    }
    if (rows < 2) {
        SetListStatus(model, QStringLiteral("Red"));
    }
}

void SetListStatus(MainModel& model, const QString& status) {
    model.state.setListStatusText(status);
    if (status == QLatin1String("Green")) {
        model.state.setStatusPicture(ListState::Picture::Green);
    } else if (status == QLatin1String("Orange")) {
        model.state.setStatusPicture(ListState::Picture::Orange);
    } else if (status == QLatin1String("Red")) {
        model.state.setStatusPicture(ListState::Picture::Red);
    }
}
