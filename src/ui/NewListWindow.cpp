#include "ui/NewListWindow.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "app/WindowSettings.h"
#include "media/ListType.h"
#include "ui/Pictures.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"

short NewListAtStartup = 0;

namespace {
// A stored check box value: 0 clear, 1 checked, 2 grey.
int CheckBoxValue(const QCheckBox* box) {
    switch (box->checkState()) {
        case Qt::Checked:
            return 1;
        case Qt::PartiallyChecked:
            return 2;
        case Qt::Unchecked:
            break;
    }
    return 0;
}

void SetCheckBoxValue(QCheckBox* box, int value) {
    box->setTristate(value == 2);
    box->setCheckState(value == 1   ? Qt::Checked
                       : value == 2 ? Qt::PartiallyChecked
                                    : Qt::Unchecked);
}
}  // namespace

NewListWindow::NewListWindow(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("NewList"));
    setWindowTitle(QStringLiteral("New List"));
    setModal(true);
    ProgramLook::apply(this);
    setFixedSize(Twips::size(5400, 3780));

    auto* background = new QFrame(this);
    background->setObjectName(QStringLiteral("HeaderBackground"));
    background->setGeometry(Twips::rect(0, 0, 5400, 840));
    background->setAutoFillBackground(true);
    QPalette p = background->palette();
    // The band is white under any desktop palette, so its text is dark too.
    p.setColor(QPalette::Window, Qt::white);
    p.setColor(QPalette::WindowText, Qt::black);
    background->setPalette(p);

    auto* header = new QLabel(QStringLiteral("New List"), background);
    header->setObjectName(QStringLiteral("HeaderText"));
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    header->setGeometry(Twips::rect(240, 150, 3600, 240));
    auto* sub = new QLabel(QStringLiteral("Create a new type of list..."), background);
    sub->setObjectName(QStringLiteral("HeaderSubText"));
    sub->setGeometry(Twips::rect(480, 435, 3600, 240));
    auto* image = new QLabel(background);
    image->setObjectName(QStringLiteral("HeaderImage"));
    image->setGeometry(Twips::rect(4620, 180, 480, 480));
    image->setPixmap(Pictures::pixmap(QStringLiteral("newlist_header"), image->size()));

    auto* line = new QFrame(this);
    line->setObjectName(QStringLiteral("Line1"));
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    line->setGeometry(Twips::rect(0, 840, 5400, 30));

    auto* info = new QLabel(QStringLiteral("What type of list would you like to create?"), this);
    info->setObjectName(QStringLiteral("InfoLabel1"));
    info->setGeometry(Twips::rect(240, 1080, 4920, 240));

    optionMP3_ = new QRadioButton(ListTypeText(ListType::Mp3), this);
    optionMP3_->setObjectName(QStringLiteral("OptionMP3"));
    optionMP3_->setGeometry(Twips::rect(600, 1440, 1800, 300));
    optionMP3_->setChecked(true);
    optionMPEG_ = new QRadioButton(ListTypeText(ListType::Mpeg), this);
    optionMPEG_->setObjectName(QStringLiteral("OptionMPEG"));
    optionMPEG_->setGeometry(Twips::rect(600, 1800, 1800, 300));
    auto* group = new QButtonGroup(this);
    group->addButton(optionMP3_);
    group->addButton(optionMPEG_);

    doNotAskMeAgain_ = new QCheckBox(QStringLiteral("Do not ask me again"), this);
    doNotAskMeAgain_->setObjectName(QStringLiteral("DoNotAskMeAgain"));
    doNotAskMeAgain_->setGeometry(Twips::rect(240, 3240, 2640, 300));

    create_ = new QPushButton(QStringLiteral("&Create"), this);
    create_->setObjectName(QStringLiteral("CreateNewList"));
    create_->setGeometry(Twips::rect(2880, 3180, 1140, 375));
    create_->setDefault(true);
    cancel_ = new QPushButton(QStringLiteral("C&ancel"), this);
    cancel_->setObjectName(QStringLiteral("CancelButton"));
    cancel_->setGeometry(Twips::rect(4080, 3180, 1140, 375));
    cancel_->setAutoDefault(false);
    connect(create_, &QPushButton::clicked, this, &NewListWindow::createNewList);
    connect(cancel_, &QPushButton::clicked, this, [this] { close(); });
}

void NewListWindow::getNewListSettings() {
    NewListControls controls;
    controls.DoNotAskMeAgain = CheckBoxValue(doNotAskMeAgain_);
    controls.OptionMP3 = optionMP3_->isChecked();
    controls.OptionMPEG = optionMPEG_->isChecked();
    GetNewListSettings(controls);
    SetCheckBoxValue(doNotAskMeAgain_, controls.DoNotAskMeAgain);
    if (controls.OptionMPEG) {
        optionMPEG_->setChecked(true);
    }
}

void NewListWindow::saveNewListSettings() {
    NewListControls controls;
    controls.DoNotAskMeAgain = CheckBoxValue(doNotAskMeAgain_);
    controls.OptionMP3 = optionMP3_->isChecked();
    controls.OptionMPEG = optionMPEG_->isChecked();
    SaveNewListSettings(controls);
}

void NewListWindow::load() {
    getNewListSettings();
    if (NewListAtStartup == -1 && CheckBoxValue(doNotAskMeAgain_) == 1) {
        skipped_ = true;
        createNewList();
        return;
    }
    if (NewListAtStartup != -1) {
        // Opened by the user: the choice is made only at start-up or in the
        // preferences.
        doNotAskMeAgain_->hide();
    } else {
        cancel_->setEnabled(false);
    }
}

void NewListWindow::run() {
    load();
    if (!skipped_) {
        exec();
    }
}

void NewListWindow::createNewList() {
    NewListAtStartup = 0;
    if (createList) {
        createList(ListTypeText(optionMP3_->isChecked() ? ListType::Mp3 : ListType::Mpeg));
    }
    close();
    if (skipped_) {
        // Never shown, so no close event comes: the closing runs here.
        done(QDialog::Accepted);
    }
}

void NewListWindow::done(int result) {
    // Every way out passes here: the settings are written each time, also when
    // the close is refused.
    saveNewListSettings();
    if (NewListAtStartup == -1) {
        return;
    }
    QDialog::done(result);
}

void NewListWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        createNewList();
        return;
    }
    QDialog::keyPressEvent(event);
}
