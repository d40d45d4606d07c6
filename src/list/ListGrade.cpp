#include "list/ListGrade.h"

#include "list/Columns.h"
#include "list/MainModel.h"

namespace {

const QString kGreen = QStringLiteral("Green");
const QString kOrange = QStringLiteral("Orange");
const QString kRed = QStringLiteral("Red");

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
        SetListStatus(model, Grade::Green);
        if (model.state.type() == ListType::Mp3) {
            if (!columnMadeOfFirstCell(items, Mp3Cell::Hertz)) {
                SetListStatus(model, Grade::Orange);
            }
        } else {
            // Every type but MP3 is graded on its video columns.
            if (!columnMadeOfFirstCell(items, MpegCell::VideoCodec)) {
                SetListStatus(model, Grade::Red);
            }
            if (!columnMadeOfFirstCell(items, MpegCell::VideoSize)) {
                SetListStatus(model, Grade::Red);
            }
        }
    }
    if (rows < 2) {
        SetListStatus(model, Grade::Red);
    }
}

Grade GradeOf(QStringView status) {
    if (status == kGreen) {
        return Grade::Green;
    }
    if (status == kOrange) {
        return Grade::Orange;
    }
    if (status == kRed) {
        return Grade::Red;
    }
    return Grade::None;
}

QString GradeText(Grade grade) {
    switch (grade) {
        case Grade::Green:
            return kGreen;
        case Grade::Orange:
            return kOrange;
        case Grade::Red:
            return kRed;
        case Grade::None:
            break;
    }
    return QString();
}

void SetListStatus(MainModel& model, const QString& status) {
    model.state.setListStatusText(status);
    switch (GradeOf(status)) {
        case Grade::Green:
            model.state.setStatusPicture(ListState::Picture::Green);
            break;
        case Grade::Orange:
            model.state.setStatusPicture(ListState::Picture::Orange);
            break;
        case Grade::Red:
            model.state.setStatusPicture(ListState::Picture::Red);
            break;
        case Grade::None:
            break;
    }
}

void SetListStatus(MainModel& model, Grade grade) {
    SetListStatus(model, GradeText(grade));
}
