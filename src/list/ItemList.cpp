#include "list/ItemList.h"

#include <algorithm>
#include <utility>

ItemList::ItemList(QObject* parent) : QAbstractTableModel(parent) {}

void ItemList::clearColumns() {
    if (columns_.isEmpty()) {
        return;
    }
    beginRemoveColumns(QModelIndex(), 0, headerCount() - 1);
    columns_.clear();
    endRemoveColumns();
}

void ItemList::addColumn(const QString& text, int widthTwips) {
    beginInsertColumns(QModelIndex(), headerCount(), headerCount());
    columns_.append(Column{text, widthTwips});
    endInsertColumns();
}

void ItemList::setColumnWidth(int position, int widthTwips) {
    if (position < 0 || position >= headerCount()) {
        return;
    }
    columns_[position].width = widthTwips;
}

int ItemList::addRow(const QString& text) {
    return insertRow(count() + 1, text);
}

int ItemList::insertRow(int position, const QString& text) {
    position = std::clamp(position, 1, count() + 1);
    beginInsertRows(QModelIndex(), position - 1, position - 1);
    rows_.insert(position - 1, QStringList{text});
    endInsertRows();
    return position;
}

void ItemList::appendRows(QList<QStringList> rows) {
    if (rows.isEmpty()) {
        return;
    }
    beginInsertRows(QModelIndex(), count(), count() + static_cast<int>(rows.size()) - 1);
    if (rows_.isEmpty()) {
        rows_ = std::move(rows);
    } else {
        rows_.append(std::move(rows));
    }
    endInsertRows();
}

bool ItemList::removeRow(int position) {
    if (position < 1 || position > count()) {
        return false;
    }
    beginRemoveRows(QModelIndex(), position - 1, position - 1);
    rows_.removeAt(position - 1);
    endRemoveRows();
    return true;
}

int ItemList::removeRowsExcept(const QList<bool>& keep) {
    if (keep.size() != rows_.size()) {
        return 0;
    }
    // Ranges of removed rows, first to last.
    QList<std::pair<int, int>> ranges;
    for (int i = 0; i < count(); ++i) {
        if (keep.at(i)) {
            continue;
        }
        if (!ranges.isEmpty() && ranges.last().second == i - 1) {
            ranges.last().second = i;
        } else {
            ranges.append({i, i});
        }
    }
    if (ranges.isEmpty()) {
        return 0;
    }
    int removed = 0;
    for (const auto& range : ranges) {
        removed += range.second - range.first + 1;
    }
    // A view follows a few range removals cheaply; many small ones cost it
    // more than building itself anew.
    constexpr int kMaxRangeNotices = 32;
    if (ranges.size() <= kMaxRangeNotices) {
        for (auto it = ranges.crbegin(); it != ranges.crend(); ++it) {
            beginRemoveRows(QModelIndex(), it->first, it->second);
            rows_.remove(it->first, it->second - it->first + 1);
            endRemoveRows();
        }
        return removed;
    }
    beginResetModel();
    QList<QStringList> next;
    next.reserve(rows_.size() - removed);
    for (int i = 0; i < count(); ++i) {
        if (keep.at(i)) {
            next.append(std::move(rows_[i]));
        }
    }
    rows_ = std::move(next);
    endResetModel();
    return removed;
}

void ItemList::clearRows() {
    beginResetModel();
    rows_.clear();
    endResetModel();
}

QString ItemList::cell(int position, int cell) const {
    if (position < 1 || position > count() || cell < 0) {
        return {};
    }
    const QStringList& row = rows_.at(position - 1);
    return cell < row.size() ? row.at(cell) : QString();
}

QStringView ItemList::cellView(int position, int cell) const {
    if (position < 1 || position > count() || cell < 0) {
        return {};
    }
    const QStringList& row = rows_.at(position - 1);
    return cell < row.size() ? QStringView(row.at(cell)) : QStringView();
}

bool ItemList::setCell(int position, int cell, const QString& text) {
    if (position < 1 || position > count() || cell < 0) {
        return false;
    }
    if (cell > 0 && cell >= headerCount()) {
        return false;
    }
    QStringList& row = rows_[position - 1];
    while (row.size() <= cell) {
        row.append(QString());
    }
    row[cell] = text;
    const QModelIndex at = index(position - 1, cell);
    emit dataChanged(at, at, {Qt::DisplayRole});
    return true;
}

void ItemList::setCells(int position, const QList<std::optional<QString>>& texts) {
    if (position < 1 || position > count()) {
        return;
    }
    QStringList& row = rows_[position - 1];
    int first = -1;
    int last = -1;
    for (int cell = 0; cell < texts.size(); ++cell) {
        if (!texts[cell].has_value() || (cell > 0 && cell >= headerCount())) {
            continue;
        }
        while (row.size() <= cell) {
            row.append(QString());
        }
        row[cell] = *texts[cell];
        first = first < 0 ? cell : first;
        last = cell;
    }
    if (first >= 0) {
        emit dataChanged(index(position - 1, first), index(position - 1, last), {Qt::DisplayRole});
    }
}

void ItemList::reorder(const QList<int>& order) {
    if (order.size() != rows_.size()) {
        return;
    }
    // Every old position must stand in the order exactly once.
    QList<int> newRowOf(order.size(), -1);
    for (int i = 0; i < order.size(); ++i) {
        const int old = order.at(i);
        if (old < 1 || old > count() || newRowOf.at(old - 1) != -1) {
            return;
        }
        newRowOf[old - 1] = i;
    }
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    QList<QStringList> next;
    next.reserve(order.size());
    for (int old : order) {
        next.append(std::move(rows_[old - 1]));
    }
    rows_ = std::move(next);
    // The view's selection and current row go with their rows.
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        after.append(this->index(newRowOf.at(index.row()), index.column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int ItemList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

int ItemList::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : headerCount();
}

QVariant ItemList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) {
        return {};
    }
    return cell(index.row() + 1, index.column());
}

QVariant ItemList::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= headerCount()) {
        return QAbstractTableModel::headerData(section, orientation, role);
    }
    return columns_.at(section).text;
}
