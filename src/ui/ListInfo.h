#pragma once

#include <QDialog>
#include <QList>

#include "list/ListInfoFigures.h"

class QPushButton;
class QTreeWidget;
struct MainModel;

// The List Info window: ten rows of facts about the list, worked out once
// when the window is made, and a button that copies them as text.
class ListInfo : public QDialog {
    Q_OBJECT
public:
    explicit ListInfo(MainModel& model, QWidget* parent = nullptr);

    // The click on CopyButton: the eight labelled rows onto the clipboard.
    void Copy();

private:
    MainModel& model_;
    QList<ListInfoRow> rows_;
    QTreeWidget* listView_ = nullptr;
};
