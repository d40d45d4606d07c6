#include "ui/ListInfo.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>

#include "list/MainModel.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"

namespace {
constexpr int kInnerWidth = 4440;
constexpr int kInnerHeight = 3735;
// Pixels beyond a cell's measured text, for the view's own spacing.
constexpr int kColumnSpare = 6;
}  // namespace

ListInfo::ListInfo(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("ListInfo"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("List Info"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    listView_ = new QTreeWidget(this);
    listView_->setObjectName(QStringLiteral("ListView"));
    listView_->setGeometry(Twips::rect(120, 120, 4200, 2985));
    listView_->setRootIsDecorated(false);
    listView_->setColumnCount(2);
    listView_->setHeaderLabels({QStringLiteral("Item"), QStringLiteral("Value")});
    listView_->header()->setStretchLastSection(false);
    listView_->setSelectionMode(QAbstractItemView::SingleSelection);

    // Everything is worked out once, now; the window doesn't follow later changes.
    rows_ = ListInfoRows(model_);
    for (const ListInfoRow& row : rows_) {
        listView_->addTopLevelItem(new QTreeWidgetItem(QStringList{row.item, row.value}));
    }
    // The columns have their design widths, or more where a text of the
    // program's font needs it; the window grows with them.
    for (int column = 0; column < 2; ++column) {
        listView_->resizeColumnToContents(column);
        listView_->setColumnWidth(column, qMax(Twips::toPixels(column == 0 ? 2010 : 2000),
                                               listView_->columnWidth(column) + kColumnSpare));
    }
    const int extra = qMax(0, listView_->columnWidth(0) + listView_->columnWidth(1) -
                                  Twips::toPixels(2010) - Twips::toPixels(2000));
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size() + QSize(extra, 0));
    listView_->resize(listView_->width() + extra, listView_->height());

    auto* copyButton = new QPushButton(QStringLiteral("C&opy"), this);
    copyButton->setObjectName(QStringLiteral("CopyButton"));
    copyButton->setAutoDefault(false);
    copyButton->setGeometry(Twips::rect(2145, 3240, 975, 375).translated(extra, 0));
    connect(copyButton, &QPushButton::clicked, this, &ListInfo::Copy);

    auto* closeButton = new QPushButton(QStringLiteral("&Close"), this);
    closeButton->setObjectName(QStringLiteral("CloseButton"));
    closeButton->setDefault(true);
    closeButton->setGeometry(Twips::rect(3345, 3240, 975, 375).translated(extra, 0));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);

    setTabOrder(listView_, copyButton);
    setTabOrder(copyButton, closeButton);
}

void ListInfo::Copy() {
    // The table as it stands is what is copied.
    QList<ListInfoRow> shown;
    for (int i = 0; i < listView_->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = listView_->topLevelItem(i);
        shown.append(ListInfoRow{item->text(0), item->text(1)});
    }
    CopyListInfo(model_.clipboard, shown);
}
