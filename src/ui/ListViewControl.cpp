#include "ui/ListViewControl.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <QUrl>
#include <algorithm>

#include "list/ItemList.h"
#include "platform/EventTurn.h"
#include "ui/ListHeaderView.h"
#include "ui/Pictures.h"
#include "ui/Twips.h"

namespace {
// Layouts inside an event turn: at most 25 a second, like the paints.
constexpr int kLayoutIntervalMs = 40;

// Shows a cell's text up to its first character 0, as a native list view
// does: an empty tag field read from a file is 30 such characters. A row that
// will not join cleanly with the first shows its mark, the orange or the red
// status picture, before its file name.
class CellTextDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale& locale) const override {
        const QString text = QStyledItemDelegate::displayText(value, locale);
        const qsizetype end = text.indexOf(QChar(0));
        return end < 0 ? text : text.left(end);
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto mark = static_cast<RowCheck::Mark>(index.data(ItemList::RowMarkRole).toInt());
        if (mark == RowCheck::Mark::None) {
            return;
        }
        const int side = std::max(8, option->fontMetrics.height() - 3);
        const QSize size(side, side);
        const ListState::Picture picture =
            mark == RowCheck::Mark::Orange ? ListState::Picture::Orange : ListState::Picture::Red;
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->icon = QIcon(Pictures::forState(picture, size));
        option->decorationSize = size;
    }
};
}  // namespace

ListViewControl::ListViewControl(QWidget* parent)
    : QTableView(parent), layoutRate_(kLayoutIntervalMs) {
    heldLayout_.setSingleShot(true);
    connect(&heldLayout_, &QTimer::timeout, this, &ListViewControl::doItemsLayout);
    setHorizontalHeader(new ListHeaderView(this));
    setItemDelegate(new CellTextDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setSortingEnabled(false);
    setAlternatingRowColors(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setDropIndicatorShown(false);

    // Report style: a header row, no row numbers, fixed row height so that the
    // view never measures rows it doesn't show.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setMinimumSectionSize(0);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            &ListViewControl::keepUserWidth);
}

void ListViewControl::doItemsLayout() {
    if (insideEventTurn() && !layoutRate_.due()) {
        if (!heldLayout_.isActive()) {
            heldLayout_.start(layoutRate_.remainingMs());
        }
        return;
    }
    if (!insideEventTurn()) {
        layoutRate_.mark();
    }
    heldLayout_.stop();
    QTableView::doItemsLayout();
}

// A row scrolled to may be one whose layout is held: the scroll bar must know
// it first.
void ListViewControl::scrollTo(const QModelIndex& index, ScrollHint hint) {
    if (heldLayout_.isActive()) {
        heldLayout_.stop();
        layoutRate_.mark();
        QTableView::doItemsLayout();
    }
    QTableView::scrollTo(index, hint);
}

void ListViewControl::applyColumnWidths() {
    auto* list = qobject_cast<ItemList*>(model());
    if (list == nullptr) {
        return;
    }
    applyingWidths_ = true;
    for (int c = 0; c < list->headerCount(); ++c) {
        setColumnWidth(c, Twips::toPixels(list->header(c).width));
    }
    applyingWidths_ = false;
}

void ListViewControl::keepUserWidth(int column, int /*oldWidth*/, int newWidth) {
    auto* list = qobject_cast<ItemList*>(model());
    // Only a width the user set is kept; the header's own resets (a new model,
    // columns laid out anew) go through applyColumnWidths.
    if (list == nullptr || applyingWidths_ || column >= list->headerCount() ||
        horizontalHeader()->count() != list->headerCount()) {
        return;
    }
    list->setColumnWidth(column, Twips::fromPixels(newWidth));
}

QStringList ListViewControl::droppedPaths(const QMimeData* data) {
    QStringList paths;
    if (data == nullptr || !data->hasUrls()) {
        return paths;
    }
    for (const QUrl& url : data->urls()) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : url.toString();
        if (!path.isEmpty()) {
            paths.append(path);
        }
    }
    return paths;
}

void ListViewControl::mousePressEvent(QMouseEvent* event) {
    QTableView::mousePressEvent(event);
    if (event->button() == Qt::RightButton) {
        emit rightPressed(event->globalPosition().toPoint());
    }
}

void ListViewControl::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) {
        emit doubleClickedAnywhere();
    }
}

void ListViewControl::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ListViewControl::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ListViewControl::dropEvent(QDropEvent* event) {
    const QStringList paths = droppedPaths(event->mimeData());
    if (paths.isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    emit filesDropped(paths);
}
