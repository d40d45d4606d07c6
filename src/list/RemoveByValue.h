#pragma once

#include <QString>
#include <QStringList>
#include <functional>

struct MainModel;
class ItemList;

// The distinct texts of one column (0 is the row's own text), in the order in
// which they first appear, compared exactly, letter case included. An empty
// cell gives an empty value.
QStringList DistinctColumnValues(const ItemList& items, int column);

enum class RemoveAction { RemoveMatchingRows, KeepMatchingRows };

// The run of the Remove Wizard. From the last row up, each row whose cell in
// the column equals the value (RemoveMatchingRows) or differs from it
// (KeepMatchingRows) is removed. After each row, progress is told the number
// of rows handled and events get a turn; when cancelRemove is -1 at the top of
// a round the run ends there, and the rows removed so far stay removed. The
// totals follow at the end.
//
// An empty value shows "Invalid value selected!" and returns false without
// running.
bool RemoveRowsByValue(MainModel& model, int column, const QString& value, RemoveAction action,
                       const short& cancelRemove,
                       const std::function<void(int handled, int rows)>& progress = {});
