#pragma once

#include <QStringList>
#include <QTableView>
#include <QTimer>

#include "platform/RateLimit.h"

// The list view of the main window: a report-style table with full-row, single
// selection. It reports the three user events the window reacts to: a double
// click anywhere on it, a right press (on the press, not the release), and
// files dropped from a file manager, in the order of the dropped data.
class ListViewControl : public QTableView {
    Q_OBJECT
public:
    explicit ListViewControl(QWidget* parent = nullptr);

    // Sets every column to the width of its header (twips), Filepath included
    // with its width 0. A column the user dragged keeps the width he gave it,
    // since the drag writes that width into the header of the list.
    void applyColumnWidths();

    // Lays the view out (scroll bars, header), at a bounded rate while a loop
    // gives events their turn: every added row asks for a layout.
    void doItemsLayout() override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

    // The local paths of a drop, in order (text/uri-list).
    static QStringList droppedPaths(const QMimeData* data);

signals:
    void doubleClickedAnywhere();
    void rightPressed(const QPoint& globalPosition);
    void filesDropped(const QStringList& paths);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void keepUserWidth(int column, int oldWidth, int newWidth);

    bool applyingWidths_ = false;
    RateLimit layoutRate_;
    QTimer heldLayout_;
};
