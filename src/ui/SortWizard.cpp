#include "ui/SortWizard.h"

#include <QComboBox>
#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QStyle>

#include "list/MainModel.h"
#include "list/SortList.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 3075;
}  // namespace

SortWizard::SortWizard(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("SortWizard"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("Sort Wizard"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    WindowHeader::build(
        this, kInnerWidth, style()->standardIcon(QStyle::SP_FileDialogListView).pixmap(32),
        QStringLiteral("Sort Wizard"), QStringLiteral("Use this wizard to sort your list..."));

    auto* infoLabel1 = new QLabel(QStringLiteral("On which column would you like to sort?"), this);
    infoLabel1->setObjectName(QStringLiteral("InfoLabel1"));
    infoLabel1->setGeometry(Twips::rect(240, 900, 4200, 255));

    sortField_ = new QComboBox(this);
    sortField_->setObjectName(QStringLiteral("SortField"));
    sortField_->setEditable(false);
    sortField_->setGeometry(Twips::rect(240, 1170, 4200, 330));

    auto* infoLabel2 = new QLabel(QStringLiteral("How would you like to sort this column?"), this);
    infoLabel2->setObjectName(QStringLiteral("InfoLabel2"));
    infoLabel2->setGeometry(Twips::rect(240, 1620, 4200, 255));

    sortMethod_ = new QComboBox(this);
    sortMethod_->setObjectName(QStringLiteral("SortMethod"));
    sortMethod_->setEditable(false);
    sortMethod_->setGeometry(Twips::rect(240, 1890, 4200, 330));

    auto* sortButton = new QPushButton(QStringLiteral("&Sort List"), this);
    sortButton->setObjectName(QStringLiteral("SortButton"));
    sortButton->setDefault(true);  // the Enter key sorts
    sortButton->setGeometry(Twips::rect(2280, 2520, 1215, 375));
    connect(sortButton, &QPushButton::clicked, this, &SortWizard::Sort);

    auto* cancelButton = new QPushButton(QStringLiteral("&Cancel"), this);
    cancelButton->setObjectName(QStringLiteral("CancelButton"));
    cancelButton->setAutoDefault(false);
    cancelButton->setGeometry(Twips::rect(3585, 2520, 975, 375));
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);

    setTabOrder(sortField_, sortMethod_);
    setTabOrder(sortMethod_, sortButton);
    setTabOrder(sortButton, cancelButton);

    // Every column is offered, in its order; the position is the column.
    for (int column = 0; column < model_.items.headerCount(); ++column) {
        sortField_->addItem(model_.items.header(column).text);
    }
    sortMethod_->addItem(QStringLiteral("Ascending (ABC)"));
    sortMethod_->addItem(QStringLiteral("Descending (ZYX)"));
    sortField_->setCurrentIndex(sortField_->count() > 0 ? 0 : -1);
    sortMethod_->setCurrentIndex(0);
}

void SortWizard::Sort() {
    if (sortField_->currentIndex() >= 0) {
        SortList(model_, sortField_->currentIndex(), sortMethod_->currentIndex());
    }
    accept();
}
