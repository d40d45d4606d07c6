#include "list/ItemList.h"

#include <algorithm>
#include <utility>

#include "list/Columns.h"

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
    joins_.insert(position - 1, newRowJoin());
    rowsMoved();
    endInsertRows();
    recheckIfFirstChanged();
    return position;
}

void ItemList::appendRows(QList<QStringList> rows) {
    if (rows.isEmpty()) {
        return;
    }
    beginInsertRows(QModelIndex(), count(), count() + static_cast<int>(rows.size()) - 1);
    joins_.reserve(joins_.size() + rows.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        joins_.append(newRowJoin());
    }
    if (rows_.isEmpty()) {
        rows_ = std::move(rows);
    } else {
        rows_.append(std::move(rows));
    }
    rowsMoved();
    endInsertRows();
    recheckIfFirstChanged();
}

bool ItemList::removeRow(int position) {
    if (position < 1 || position > count()) {
        return false;
    }
    beginRemoveRows(QModelIndex(), position - 1, position - 1);
    rows_.removeAt(position - 1);
    joins_.removeAt(position - 1);
    rowsMoved();
    endRemoveRows();
    recheckIfFirstChanged();
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
            joins_.remove(it->first, it->second - it->first + 1);
            rowsMoved();
            endRemoveRows();
        }
        recheckIfFirstChanged();
        return removed;
    }
    beginResetModel();
    QList<QStringList> next;
    QList<RowJoin> nextJoins;
    next.reserve(rows_.size() - removed);
    nextJoins.reserve(rows_.size() - removed);
    for (int i = 0; i < count(); ++i) {
        if (keep.at(i)) {
            next.append(std::move(rows_[i]));
            nextJoins.append(std::move(joins_[i]));
        }
    }
    rows_ = std::move(next);
    joins_ = std::move(nextJoins);
    rowsMoved();
    endResetModel();
    recheckIfFirstChanged();
    return removed;
}

void ItemList::clearRows() {
    beginResetModel();
    rows_.clear();
    joins_.clear();
    rowsMoved();
    checkedAgainst_.reset();
    endResetModel();
    emit rowsCleared();
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
    QList<RowJoin> nextJoins;
    next.reserve(order.size());
    nextJoins.reserve(order.size());
    for (int old : order) {
        next.append(std::move(rows_[old - 1]));
        nextJoins.append(std::move(joins_[old - 1]));
    }
    rows_ = std::move(next);
    joins_ = std::move(nextJoins);
    rowsMoved();
    // The view's selection and current row go with their rows.
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before) {
        after.append(this->index(newRowOf.at(index.row()), index.column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
    recheckIfFirstChanged();
}

int ItemList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

int ItemList::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : headerCount();
}

QVariant ItemList::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count()) {
        return {};
    }
    const RowCheck& check = joins_.at(index.row()).check;
    const bool inMarkColumn = index.column() == SharedCell::Filename;
    const bool marked = inMarkColumn && check.mark != RowCheck::Mark::None;
    if (role == RowMarkRole) {
        return inMarkColumn ? static_cast<int>(check.mark) : 0;
    }
    if (role == Qt::ToolTipRole && marked) {
        return check.reason;
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
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

ItemList::RowJoin ItemList::newRowJoin() {
    RowJoin join;
    join.id = nextRowId_++;
    return join;
}

void ItemList::rowsMoved() {
    positionsKnown_ = false;
}

void ItemList::setJoinTraits(int position, std::shared_ptr<const JoinTraits> traits) {
    if (position < 1 || position > count()) {
        return;
    }
    joins_[position - 1].traits = std::move(traits);
    if (position == 1) {
        recheckAll();
        return;
    }
    const RowJoin& join = joins_.at(position - 1);
    if (setCheck(position, checkedAgainst_ && join.traits
                               ? CheckAgainstFirst(*checkedAgainst_, *join.traits)
                               : RowCheck{})) {
        marksChanged(position, position);
    }
}

std::shared_ptr<const JoinTraits> ItemList::joinTraits(int position) const {
    if (position < 1 || position > count()) {
        return {};
    }
    return joins_.at(position - 1).traits;
}

RowCheck ItemList::rowCheck(int position) const {
    if (position < 1 || position > count()) {
        return {};
    }
    return joins_.at(position - 1).check;
}

quint64 ItemList::rowId(int position) const {
    if (position < 1 || position > count()) {
        return 0;
    }
    return joins_.at(position - 1).id;
}

int ItemList::positionOfRow(quint64 id) const {
    if (!positionsKnown_) {
        positionOfId_.clear();
        positionOfId_.reserve(joins_.size());
        for (int i = 0; i < count(); ++i) {
            positionOfId_.insert(joins_.at(i).id, i + 1);
        }
        positionsKnown_ = true;
    }
    return positionOfId_.value(id, 0);
}

QList<int> ItemList::markedRows() const {
    QList<int> marked;
    for (int i = 0; i < count(); ++i) {
        if (joins_.at(i).check.mark != RowCheck::Mark::None) {
            marked.append(i + 1);
        }
    }
    return marked;
}

bool ItemList::setCheck(int position, const RowCheck& check) {
    RowCheck& present = joins_[position - 1].check;
    if (present == check) {
        return false;
    }
    present = check;
    return true;
}

void ItemList::marksChanged(int first, int last) {
    if (first >= 1) {
        emit dataChanged(index(first - 1, SharedCell::Filename),
                         index(last - 1, SharedCell::Filename), {RowMarkRole, Qt::ToolTipRole});
    }
}

void ItemList::recheckIfFirstChanged() {
    const std::shared_ptr<const JoinTraits> first = joinTraits(1);
    if (first != checkedAgainst_) {
        recheckAll();
    }
}

void ItemList::recheckAll() {
    checkedAgainst_ = joinTraits(1);
    int firstChanged = 0;
    int lastChanged = 0;
    for (int position = 1; position <= count(); ++position) {
        const std::shared_ptr<const JoinTraits>& traits = joins_.at(position - 1).traits;
        const bool compared = position > 1 && checkedAgainst_ && traits;
        if (setCheck(position,
                     compared ? CheckAgainstFirst(*checkedAgainst_, *traits) : RowCheck{})) {
            firstChanged = firstChanged == 0 ? position : firstChanged;
            lastChanged = position;
        }
    }
    marksChanged(firstChanged, lastChanged);
}
