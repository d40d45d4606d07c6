#include "list/RemoveByValue.h"

#include <QSet>

#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "platform/EventTurn.h"

QStringList DistinctColumnValues(const ItemList& items, int column) {
    QStringList values;
    QSet<QString> seen;
    for (int i = 1; i <= items.count(); ++i) {
        const QString text = items.cell(i, column);
        if (!seen.contains(text)) {
            seen.insert(text);
            values.append(text);
        }
    }
    return values;
}

bool RemoveRowsByValue(MainModel& model, int column, const QString& value, RemoveAction action,
                       const short& cancelRemove,
                       const std::function<void(int handled, int rows)>& progress) {
    if (value.isEmpty()) {
        model.questions.msgBox(QStringLiteral("Invalid value selected!"),
                               Msg::OkOnly + Msg::Exclamation);
        return false;
    }
    ItemList& items = model.items;
    const int rows = items.count();
    // The rows to go are marked during the run and taken out together when
    // it ends (also when it is cancelled), followed by the totals once: the
    // same list as removing them one by one from the bottom, without moving
    // the rows below on every removal. The totals are brought up to date by
    // the removal alone, so a run that removes nothing leaves them as they
    // were.
    QList<bool> keep(rows, true);
    int handled = 0;
    for (int i = rows; i >= 1; --i) {
        if (cancelRemove == -1) {
            break;
        }
        const bool matches = items.cell(i, column) == value;
        if (action == RemoveAction::RemoveMatchingRows ? matches : !matches) {
            keep[i - 1] = false;
        }
        ++handled;
        if (progress) {
            progress(handled, rows);
        }
        giveEventsATurn();
    }
    if (items.removeRowsExcept(keep) > 0) {
        UpdateListTotals(model);
    }
    return true;
}
