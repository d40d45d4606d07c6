#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <QVariant>
#include <memory>
#include <optional>

#include "media/JoinCheck.h"
#include "media/JoinTraits.h"

// The one list of the program: ordered rows of text cells (the join order),
// with the column headers beside them. Row positions count from 1. Cell 0 is
// the row's own text (column Filename); cells 1 and up are its sub-items in
// the order of the columns behind the first. Every cell holds the text in the
// form in which it is shown.
//
// The list is also the Qt item model of the view: it hands out only the cells
// the view asks for, so a list of 100,000 rows shows at once.
//
// Each row also carries its join check: the traits of its file as the adding
// read them, and how they compare with the first row's (RowCheck). The checks
// are worked out again whenever another row comes first, and the view shows
// them in the first column (RowMarkRole, and the tool tip).
class ItemList : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kDefaultColumnWidth = 1440;  // twips: one inch
    // The row's mark for the first column: an int of RowCheck::Mark.
    static constexpr int RowMarkRole = Qt::UserRole + 1;

    struct Column {
        QString text;
        int width = kDefaultColumnWidth;  // twips
    };

    explicit ItemList(QObject* parent = nullptr);

    // Column headers.
    void clearColumns();
    void addColumn(const QString& text, int widthTwips = kDefaultColumnWidth);
    int headerCount() const { return static_cast<int>(columns_.size()); }
    const Column& header(int position) const { return columns_.at(position); }  // 0-based
    // A width the user gave a column (twips). It stays with the column until a
    // layout routine clears the columns and adds them anew with their defaults.
    void setColumnWidth(int position, int widthTwips);  // 0-based

    // Rows, positions from 1.
    int count() const { return static_cast<int>(rows_.size()); }
    int addRow(const QString& text = QString());       // at the end; returns its position
    int insertRow(int position, const QString& text);  // before position; returns it
    void appendRows(QList<QStringList> rows);          // many rows at the end, one notice
    bool removeRow(int position);
    void clearRows();

    // Cells. Reading a cell that was never written gives the empty text.
    // Writing a sub-item beyond the last column fails (returns false) and
    // changes nothing; cell 0 can always be written.
    QString cell(int position, int cell) const;
    // The same text without a copy; valid until the row changes.
    QStringView cellView(int position, int cell) const;
    bool setCell(int position, int cell, const QString& text);
    const QStringList& cells(int position) const { return rows_.at(position - 1); }
    // Writes the cells that have a value (entry i for cell i) as setCell does,
    // skipping those beyond the last column, with one notice to the view for
    // the whole row.
    void setCells(int position, const QList<std::optional<QString>>& texts);

    // Removes every row for which keep[position - 1] is false, in one pass;
    // keep holds one entry per row. Returns the number of rows removed. The
    // view hears of a few removed ranges one by one, of many as one reset.
    int removeRowsExcept(const QList<bool>& keep);

    // Puts the rows in a new order: order[i] is the old position (from 1) of
    // the row that comes at position i + 1.
    void reorder(const QList<int>& order);

    // The join check. A row without traits (not read yet, or made from a list
    // file's text) is not compared, and a first row without them leaves
    // every row unmarked.
    void setJoinTraits(int position, std::shared_ptr<const JoinTraits> traits);
    std::shared_ptr<const JoinTraits> joinTraits(int position) const;
    RowCheck rowCheck(int position) const;
    // Each row has an id of its own for as long as it is in the list (a row
    // built anew has a new one); 0 for no row.
    quint64 rowId(int position) const;
    // The position of the row with that id; 0 when it is gone.
    int positionOfRow(quint64 id) const;
    // The positions of the rows that carry a mark, first to last.
    QList<int> markedRows() const;

    // QAbstractTableModel
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    // All rows went (clearRows): what was begun for them has no list any more.
    void rowsCleared();

private:
    // What a row carries beside its cells.
    struct RowJoin {
        quint64 id = 0;
        std::shared_ptr<const JoinTraits> traits;
        RowCheck check;
    };
    RowJoin newRowJoin();
    // True when the row's check changed.
    bool setCheck(int position, const RowCheck& check);
    // Tells the view that the marks of rows first to last changed.
    void marksChanged(int first, int last);
    // After rows came, went or moved: the checks again if another row is first.
    void recheckIfFirstChanged();
    void recheckAll();
    void rowsMoved();

    QList<Column> columns_;
    QList<QStringList> rows_;
    QList<RowJoin> joins_;  // one per row, in the order of rows_
    // The traits of the first row when the checks were last worked out.
    std::shared_ptr<const JoinTraits> checkedAgainst_;
    quint64 nextRowId_ = 1;
    mutable QHash<quint64, int> positionOfId_;
    mutable bool positionsKnown_ = false;
};
