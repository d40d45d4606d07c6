#pragma once

#include <QDialog>

class QComboBox;
class QPushButton;
struct MainModel;

// The Sort Wizard: sorts the list once by one column (every column is
// offered, the hidden Filepath too), ascending or descending, by the text of
// the cells.
class SortWizard : public QDialog {
    Q_OBJECT
public:
    explicit SortWizard(MainModel& model, QWidget* parent = nullptr);

    // SortButton or the Enter key: sorts and closes.
    void Sort();

private:
    MainModel& model_;
    QComboBox* sortField_ = nullptr;
    QComboBox* sortMethod_ = nullptr;
};
