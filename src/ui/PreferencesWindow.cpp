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

namespace {
// Window lengths are laid out in twips, 15 to a pixel.
QRect tw(int left, int top, int width, int height) {
    return QRect(qRound(left / 15.0), qRound(top / 15.0), qRound(width / 15.0),
                 qRound(height / 15.0));
}

constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 3360;

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
    setWindowTitle(QStringLiteral("Preferences"));
    setModal(true);
    setFixedSize(tw(0, 0, kInnerWidth, kInnerHeight).size());

    auto* headerBackground = new QLabel(this);
    headerBackground->setObjectName(QStringLiteral("HeaderBackground"));
    headerBackground->setAutoFillBackground(true);
    QPalette white = headerBackground->palette();
    white.setColor(QPalette::Window, Qt::white);
    headerBackground->setPalette(white);
    headerBackground->setGeometry(tw(0, 0, kInnerWidth, 735));

    auto* headerImage = new QLabel(this);
    headerImage->setObjectName(QStringLiteral("HeaderImage"));
    headerImage->setPixmap(style()->standardIcon(QStyle::SP_FileDialogDetailedView).pixmap(32));
    headerImage->setGeometry(tw(240, 120, 480, 480));

    headerText_ = new QLabel(QStringLiteral("Preferences"), this);
    headerText_->setObjectName(QStringLiteral("HeaderText"));
    QFont bold = headerText_->font();
    bold.setBold(true);
    headerText_->setFont(bold);
    headerText_->setGeometry(tw(1080, 120, kInnerWidth - 1200, 240));

    headerSubText_ =
        new QLabel(QStringLiteral("Use this dialog to edit program settings..."), this);
    headerSubText_->setObjectName(QStringLiteral("HeaderSubText"));
    headerSubText_->setGeometry(tw(1080, 360, kInnerWidth - 1200, 255));

    newListFrame_ = new QGroupBox(this);
    newListFrame_->setObjectName(QStringLiteral("NewListFrame"));
    newListFrame_->setGeometry(tw(120, 840, 4455, 1860));

    doNotShowSplash_ =
        new QCheckBox(QStringLiteral("Do not show 'Splashscreen' at startup"), newListFrame_);
    doNotShowSplash_->setObjectName(QStringLiteral("DoNotShowSplashscreenAtStartup"));
    doNotShowSplash_->setGeometry(tw(240, 240, 4000, 300));

    doNotShowNewList_ =
        new QCheckBox(QStringLiteral("Do not show 'New List' dialog at startup"), newListFrame_);
    doNotShowNewList_->setObjectName(QStringLiteral("DoNotShowNewListDialogAtStartup"));
    doNotShowNewList_->setGeometry(tw(240, 600, 4000, 300));

    auto* label1 = new QLabel(QStringLiteral("Default List Type:"), newListFrame_);
    label1->setObjectName(QStringLiteral("Label1"));
    label1->setGeometry(tw(240, 1080, 1700, 300));

    typeMp3_ = new QRadioButton(QStringLiteral("MP3"), newListFrame_);
    typeMp3_->setObjectName(QStringLiteral("DefaultListTypeMP3"));
    typeMp3_->setGeometry(tw(2040, 1080, 1000, 300));
    typeMp3_->setChecked(true);

    typeMpeg_ = new QRadioButton(QStringLiteral("MPEG"), newListFrame_);
    typeMpeg_->setObjectName(QStringLiteral("DefaultListTypeMPEG"));
    typeMpeg_->setGeometry(tw(3120, 1080, 1100, 300));

    closeButton_ = new QPushButton(QStringLiteral("&Close"), this);
    closeButton_->setObjectName(QStringLiteral("CloseButton"));
    closeButton_->setGeometry(tw(3600, 2850, 975, 375));
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);

    // Ford lies below the visible area; it only takes the focus.
    ford_ = new QPushButton(QStringLiteral("Focus"), this);
    ford_->setObjectName(QStringLiteral("Ford"));
    ford_->setGeometry(tw(240, kInnerHeight + 480, 1095, 375));
    ford_->setAutoDefault(false);

    setTabOrder(ford_, doNotShowSplash_);
    setTabOrder(doNotShowSplash_, doNotShowNewList_);
    setTabOrder(doNotShowNewList_, typeMp3_);
    setTabOrder(typeMp3_, typeMpeg_);
    setTabOrder(typeMpeg_, closeButton_);
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
    GetPreferences(controls);
    setCheckValue(doNotShowSplash_, controls.DoNotShowSplashscreenAtStartup);
    setCheckValue(doNotShowNewList_, controls.DoNotShowNewListDialogAtStartup);
    if (controls.DefaultListTypeMPEG) {
        typeMpeg_->setChecked(true);
    } else if (controls.DefaultListTypeMP3) {
        typeMp3_->setChecked(true);
    }
}

void PreferencesWindow::savePreferences() {
    PreferencesControls controls;
    controls.DoNotShowSplashscreenAtStartup = checkValue(doNotShowSplash_);
    controls.DoNotShowNewListDialogAtStartup = checkValue(doNotShowNewList_);
    controls.DefaultListTypeMP3 = typeMp3_->isChecked();
    controls.DefaultListTypeMPEG = typeMpeg_->isChecked();
    SavePreferences(controls);
}
