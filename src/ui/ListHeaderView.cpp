#include "ui/ListHeaderView.h"

#include <QEvent>

ListHeaderView::ListHeaderView(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    connect(this, &QHeaderView::sectionCountChanged, this, &ListHeaderView::forgetSizeHint);
}

void ListHeaderView::setModel(QAbstractItemModel* model) {
    forgetSizeHint();
    if (this->model() != nullptr) {
        disconnect(this->model(), &QAbstractItemModel::headerDataChanged, this,
                   &ListHeaderView::forgetSizeHint);
    }
    QHeaderView::setModel(model);
    if (model != nullptr) {
        connect(model, &QAbstractItemModel::headerDataChanged, this,
                &ListHeaderView::forgetSizeHint);
    }
}

QSize ListHeaderView::sizeHint() const {
    if (!sizeHint_.isValid()) {
        sizeHint_ = QHeaderView::sizeHint();
    }
    return sizeHint_;
}

bool ListHeaderView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::FontChange:
        case QEvent::StyleChange:
        case QEvent::ScreenChangeInternal:
        case QEvent::Show:
        case QEvent::Hide:
            forgetSizeHint();
            break;
        default:
            break;
    }
    return QHeaderView::event(event);
}
