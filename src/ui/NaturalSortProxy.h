#pragma once

#include <QSortFilterProxyModel>

#include "list/NaturalOrder.h"

// Shows the rows of a model sorted by their text in natural order, the order
// in which the program lists names everywhere: numbers by their value, letter
// case ignored. Rows of equal text keep the model's order.
class NaturalSortProxy : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit NaturalSortProxy(QObject* parent = nullptr);

protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

private:
    NaturalOrder order_;
};
