#include "ui/NaturalSortProxy.h"

NaturalSortProxy::NaturalSortProxy(QObject* parent) : QSortFilterProxyModel(parent) {
    // Rows that come later (a folder read in the background) find their place.
    setDynamicSortFilter(true);
}

bool NaturalSortProxy::lessThan(const QModelIndex& left, const QModelIndex& right) const {
    return order_.compare(left.data().toString(), right.data().toString()) < 0;
}
