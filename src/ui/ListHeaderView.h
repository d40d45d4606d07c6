#pragma once

#include <QHeaderView>

// The column header of the list view. Its size hint depends only on the
// column captions, the font and the style, so it is measured once and kept
// until one of them changes. The table asks for it at every layout, and a
// layout follows every added row: measured each time, the captions were
// shaped anew for every row while a folder of files was being added.
class ListHeaderView : public QHeaderView {
    Q_OBJECT
public:
    explicit ListHeaderView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;

private:
    void forgetSizeHint() { sizeHint_ = QSize(); }

    mutable QSize sizeHint_;
};
