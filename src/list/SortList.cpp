#include "list/SortList.h"

#include <algorithm>
#include <numeric>

#include "list/MainModel.h"

void SortList(MainModel& model, int column, int order) {
    ItemList& items = model.items;
    const int rows = items.count();
    if (rows < 2) {
        return;
    }
    // Each cell's text is case-folded once; comparing the folded texts code
    // unit by code unit is the case-insensitive comparison of the cells.
    QStringList keys;
    keys.reserve(rows);
    for (int i = 1; i <= rows; ++i) {
        keys.append(items.cell(i, column).toCaseFolded());
    }
    QList<int> order0(rows);
    std::iota(order0.begin(), order0.end(), 0);
    const bool descending = order == 1;
    // The comparison ignores letter case and the sort is stable: rows whose
    // texts are equal without regard to case keep their order, in either
    // direction.
    std::stable_sort(order0.begin(), order0.end(), [&](int a, int b) {
        const int c = QString::compare(keys.at(a), keys.at(b), Qt::CaseSensitive);
        return descending ? c > 0 : c < 0;
    });
    QList<int> positions;
    positions.reserve(rows);
    for (int index : order0) {
        positions.append(index + 1);
    }
    items.reorder(positions);
}
