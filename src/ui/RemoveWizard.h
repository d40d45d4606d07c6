#pragma once

#include <QDialog>

class QComboBox;
class QProgressBar;
class QPushButton;
class QRadioButton;
struct MainModel;

// The Remove Wizard: thins out the list by the value of one column. The user
// picks a column, one of the values that occur in it, and whether the rows
// with that value go or stay. The run goes from the last row up, gives events
// a turn after each row, and can be cancelled; rows removed stay removed.
class RemoveWizard : public QDialog {
    Q_OBJECT
public:
    explicit RemoveWizard(MainModel& model, QWidget* parent = nullptr);

    // A column chosen in ColumnToCheck: its distinct values in ValueToCheck.
    void ColumnChosen(int column);

    // FinishButton: the run, then the window closes.
    void Finish();
    // CancelButton: ends a run at its next round, and closes the window.
    void Cancel();

    // Esc and the close box act as CancelButton, during a run too.
    void reject() override;

    // CancelRemove: 0, or -1 once the user cancelled.
    short cancelRemove() const { return cancelRemove_; }

private:
    MainModel& model_;
    short cancelRemove_ = 0;
    QComboBox* columnToCheck_ = nullptr;
    QComboBox* valueToCheck_ = nullptr;
    QRadioButton* removeMatchingRows_ = nullptr;
    QRadioButton* keepMatchingRows_ = nullptr;
    QProgressBar* progressBar_ = nullptr;
    QPushButton* finishButton_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
};
