#include "ui/PreferencesWindow.h"

#include <QCheckBox>
#include <QFont>
#include <QGroupBox>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

#include "app/WindowSettings.h"
#include "list/MainModel.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
// Window lengths are laid out in twips, 15 to a pixel.
// Wide enough for the whole line under the title in the program's font.
constexpr int kInnerWidth = 5400;
constexpr int kInnerHeight = 3840;

// Check boxes keep their stored value: 0 clear, 1 checked, 2 greyed.
int checkValue(const QCheckBox* box) {
    switch (box->checkState()) {
        case Qt::Checked:
            return 1;
        case Qt::PartiallyChecked:
            return 2;
        default:
            return 0;
    }
}

void setCheckValue(QCheckBox* box, int value) {
    box->setCheckState(value == 1   ? Qt::Checked
                       : value == 2 ? Qt::PartiallyChecked
                                    : Qt::Unchecked);
}

}  // namespace

PreferencesWindow::PreferencesWindow(MainModel& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("PreferencesWindow"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("Preferences"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    const WindowHeader::Labels header = WindowHeader::build(
        this, kInnerWidth, style()->standardIcon(QStyle::SP_FileDialogDetailedView).pixmap(32),
        QStringLiteral("Preferences"),
        QStringLiteral("Use this dialog to edit program settings..."), kInnerWidth - 1200);
    headerText_ = header.text;
    headerSubText_ = header.subText;

    newListFrame_ = new QGroupBox(this);
    newListFrame_->setObjectName(QStringLiteral("NewListFrame"));
    newListFrame_->setGeometry(Twips::rect(120, 840, kInnerWidth - 240, 1860));

    doNotShowSplash_ =
        new QCheckBox(QStringLiteral("Do not show 'Splashscreen' at startup"), newListFrame_);
    doNotShowSplash_->setObjectName(QStringLiteral("DoNotShowSplashscreenAtStartup"));
    doNotShowSplash_->setGeometry(Twips::rect(240, 240, kInnerWidth - 720, 300));

    doNotShowNewList_ =
        new QCheckBox(QStringLiteral("Do not show 'New List' dialog at startup"), newListFrame_);
    doNotShowNewList_->setObjectName(QStringLiteral("DoNotShowNewListDialogAtStartup"));
    doNotShowNewList_->setGeometry(Twips::rect(240, 600, kInnerWidth - 720, 300));

    auto* label1 = new QLabel(QStringLiteral("Default List Type:"), newListFrame_);
    label1->setObjectName(QStringLiteral("Label1"));
    label1->setGeometry(Twips::rect(240, 1080, 1700, 300));

    typeMp3_ = new QRadioButton(ListTypeText(ListType::Mp3), newListFrame_);
    typeMp3_->setObjectName(QStringLiteral("DefaultListTypeMP3"));
    typeMp3_->setGeometry(Twips::rect(2040, 1080, 1000, 300));
    typeMp3_->setChecked(true);

    typeMpeg_ = new QRadioButton(ListTypeText(ListType::Mpeg), newListFrame_);
    typeMpeg_->setObjectName(QStringLiteral("DefaultListTypeMPEG"));
    typeMpeg_->setGeometry(Twips::rect(3120, 1080, 1100, 300));

    writeTagsAndChapters_ =
        new QCheckBox(QStringLiteral("Write tags and chapters into joined MP3 files"), this);
    writeTagsAndChapters_->setObjectName(QStringLiteral("WriteTagsAndChapters"));
    writeTagsAndChapters_->setGeometry(Twips::rect(360, 2820, kInnerWidth - 720, 300));
    writeTagsAndChapters_->setChecked(true);

    closeButton_ = new QPushButton(QStringLiteral("&Close"), this);
    closeButton_->setObjectName(QStringLiteral("CloseButton"));
    closeButton_->setGeometry(Twips::rect(kInnerWidth - 1095, 3330, 975, 375));
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);

    // Ford lies below the visible area; it only takes the focus.
    ford_ = new QPushButton(QStringLiteral("Focus"), this);
    ford_->setObjectName(QStringLiteral("Ford"));
    ford_->setGeometry(Twips::rect(240, kInnerHeight + 480, 1095, 375));
    ford_->setAutoDefault(false);

    setTabOrder(ford_, doNotShowSplash_);
    setTabOrder(doNotShowSplash_, doNotShowNewList_);
    setTabOrder(doNotShowNewList_, typeMp3_);
    setTabOrder(typeMp3_, typeMpeg_);
    setTabOrder(typeMpeg_, writeTagsAndChapters_);
    setTabOrder(writeTagsAndChapters_, closeButton_);
    ford_->setFocus();

    getPreferences();
}

void PreferencesWindow::done(int result) {
    savePreferences();
    QDialog::done(result);
}

void PreferencesWindow::getPreferences() {
    PreferencesControls controls;
    controls.DoNotShowSplashscreenAtStartup = checkValue(doNotShowSplash_);
    controls.DoNotShowNewListDialogAtStartup = checkValue(doNotShowNewList_);
    controls.DefaultListTypeMP3 = typeMp3_->isChecked();
    controls.DefaultListTypeMPEG = typeMpeg_->isChecked();
    controls.WriteTagsAndChapters = checkValue(writeTagsAndChapters_);
    GetPreferences(controls);
    setCheckValue(doNotShowSplash_, controls.DoNotShowSplashscreenAtStartup);
    setCheckValue(doNotShowNewList_, controls.DoNotShowNewListDialogAtStartup);
    if (controls.DefaultListTypeMPEG) {
        typeMpeg_->setChecked(true);
    } else if (controls.DefaultListTypeMP3) {
        typeMp3_->setChecked(true);
    }
    setCheckValue(writeTagsAndChapters_, controls.WriteTagsAndChapters);
}

void PreferencesWindow::savePreferences() {
    PreferencesControls controls;
    controls.DoNotShowSplashscreenAtStartup = checkValue(doNotShowSplash_);
    controls.DoNotShowNewListDialogAtStartup = checkValue(doNotShowNewList_);
    controls.DefaultListTypeMP3 = typeMp3_->isChecked();
    controls.DefaultListTypeMPEG = typeMpeg_->isChecked();
    controls.WriteTagsAndChapters = checkValue(writeTagsAndChapters_);
    SavePreferences(controls);
}
