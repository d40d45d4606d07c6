#include "ui/RemoveWizard.h"

#include <QComboBox>
#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

#include "list/MainModel.h"
#include "list/RemoveByValue.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 4200;
}  // namespace

RemoveWizard::RemoveWizard(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("RemoveWizard"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("Remove Wizard"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    WindowHeader::build(this, kInnerWidth, style()->standardIcon(QStyle::SP_TrashIcon).pixmap(32),
                        QStringLiteral("Remove Wizard"),
                        QStringLiteral("Remove unwanted files..."));

    auto* infoLabel1 = new QLabel(QStringLiteral("Get values from the following column:"), this);
    infoLabel1->setObjectName(QStringLiteral("InfoLabel1"));
    infoLabel1->setGeometry(Twips::rect(240, 900, 4200, 255));

    columnToCheck_ = new QComboBox(this);
    columnToCheck_->setObjectName(QStringLiteral("ColumnToCheck"));
    columnToCheck_->setEditable(false);
    columnToCheck_->setGeometry(Twips::rect(240, 1170, 4200, 330));

    auto* infoLabel2 = new QLabel(QStringLiteral("Check rows for the following value:"), this);
    infoLabel2->setObjectName(QStringLiteral("InfoLabel2"));
    infoLabel2->setGeometry(Twips::rect(240, 1620, 4200, 255));

    valueToCheck_ = new QComboBox(this);
    valueToCheck_->setObjectName(QStringLiteral("ValueToCheck"));
    valueToCheck_->setEditable(false);
    valueToCheck_->setGeometry(Twips::rect(240, 1890, 4200, 330));

    auto* infoLabel3 = new QLabel(QStringLiteral("Action to apply on matching-rows:"), this);
    infoLabel3->setObjectName(QStringLiteral("InfoLabel3"));
    infoLabel3->setGeometry(Twips::rect(240, 2340, 4200, 255));

    removeMatchingRows_ = new QRadioButton(QStringLiteral("Remove Rows"), this);
    removeMatchingRows_->setObjectName(QStringLiteral("RemoveMatchingRows"));
    removeMatchingRows_->setGeometry(Twips::rect(240, 2610, 1935, 300));

    keepMatchingRows_ = new QRadioButton(QStringLiteral("Keep Rows"), this);
    keepMatchingRows_->setObjectName(QStringLiteral("KeepMatchingRows"));
    keepMatchingRows_->setGeometry(Twips::rect(2280, 2610, 1935, 300));
    keepMatchingRows_->setChecked(true);

    progressBar_ = new QProgressBar(this);
    progressBar_->setObjectName(QStringLiteral("ProgressBar"));
    progressBar_->setGeometry(Twips::rect(240, 3060, 4200, 255));
    progressBar_->setTextVisible(false);
    progressBar_->setRange(0, 0);
    progressBar_->setValue(0);
    progressBar_->hide();

    finishButton_ = new QPushButton(QStringLiteral("&Finish"), this);
    finishButton_->setObjectName(QStringLiteral("FinishButton"));
    finishButton_->setDefault(true);
    finishButton_->setGeometry(Twips::rect(2505, 3645, 975, 375));
    connect(finishButton_, &QPushButton::clicked, this, &RemoveWizard::Finish);

    cancelButton_ = new QPushButton(QStringLiteral("&Cancel"), this);
    cancelButton_->setObjectName(QStringLiteral("CancelButton"));
    cancelButton_->setAutoDefault(false);
    cancelButton_->setGeometry(Twips::rect(3585, 3645, 975, 375));
    connect(cancelButton_, &QPushButton::clicked, this, &RemoveWizard::Cancel);

    setTabOrder(columnToCheck_, valueToCheck_);
    setTabOrder(valueToCheck_, removeMatchingRows_);
    setTabOrder(removeMatchingRows_, keepMatchingRows_);
    setTabOrder(keepMatchingRows_, finishButton_);
    setTabOrder(finishButton_, cancelButton_);

    // The load step: every column is offered, the hidden Filepath too; the
    // first one is chosen, which gathers its values.
    cancelRemove_ = 0;
    for (int column = 0; column < model_.items.headerCount(); ++column) {
        columnToCheck_->addItem(model_.items.header(column).text);
    }
    connect(columnToCheck_, &QComboBox::currentIndexChanged, this, &RemoveWizard::ColumnChosen);
    if (columnToCheck_->count() > 0) {
        columnToCheck_->setCurrentIndex(0);
        ColumnChosen(0);
    }
}

void RemoveWizard::ColumnChosen(int column) {
    valueToCheck_->clear();
    if (column < 0) {
        return;
    }
    valueToCheck_->addItems(DistinctColumnValues(model_.items, column));
    if (valueToCheck_->count() > 0) {
        valueToCheck_->setCurrentIndex(0);
    }
}

void RemoveWizard::Finish() {
    const int column = columnToCheck_->currentIndex();
    const QString value = valueToCheck_->currentText();
    const RemoveAction action = removeMatchingRows_->isChecked() ? RemoveAction::RemoveMatchingRows
                                                                 : RemoveAction::KeepMatchingRows;
    if (value.isEmpty()) {
        // The routine refuses an empty value with its message.
        RemoveRowsByValue(model_, column, value, action, cancelRemove_);
        valueToCheck_->setFocus();
        return;
    }
    finishButton_->setEnabled(false);
    const int rows = model_.items.count();
    progressBar_->setRange(0, rows);
    progressBar_->setValue(0);
    progressBar_->show();
    RemoveRowsByValue(model_, column, value, action, cancelRemove_,
                      [this](int handled, int) { progressBar_->setValue(handled); });
    // The end of a run closes the window, as the cancel does.
    Cancel();
}

void RemoveWizard::Cancel() {
    reject();
}

void RemoveWizard::reject() {
    // The run looks at the flag after each round: without it a window hidden
    // by Esc or its close box would go on removing rows unseen.
    cancelRemove_ = -1;
    QDialog::reject();
}
