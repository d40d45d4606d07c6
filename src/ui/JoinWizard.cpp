#include "ui/JoinWizard.h"

#include <QAction>
#include <QFontDatabase>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QPalette>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QTimer>

#include "join/JoinRun.h"
#include "join/JoinWizardState.h"
#include "list/MainModel.h"
#include "ui/ID3Tag.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
// The bar's own range: the run's value and maximum are shown as a fraction.
constexpr int kBarRange = 10000;
}  // namespace

QString JoinWizard::FontFamily() {
    const QStringList families = QFontDatabase::families();
    for (const QString& candidate : {JoinWizardState::kFontFamily, QStringLiteral("DejaVu Sans"),
                                     QStringLiteral("Bitstream Vera Sans")}) {
        if (families.contains(candidate, Qt::CaseInsensitive)) {
            return candidate;
        }
    }
    return QFont().defaultFamily();
}

JoinWizard::JoinWizard(MainModel& model, QWidget* parent)
    : QDialog(parent),
      model_(model),
      state_(std::make_unique<JoinWizardState>()),
      run_(std::make_unique<JoinRun>(model, *state_)) {
    setObjectName(QStringLiteral("JoinWizard"));
    ProgramLook::apply(this);
    setModal(true);
    setFixedSize(
        Twips::rect(0, 0, JoinWizardState::kInnerWidthTwips, JoinWizardState::kInnerHeightTwips)
            .size());
    QFont font(FontFamily());
    font.setPointSize(8);
    setFont(font);

    const WindowHeader::Labels header = WindowHeader::build(
        this, 6375, style()->standardIcon(QStyle::SP_MediaSeekForward).pixmap(32), QString(),
        QString(), 3420, font);
    headerText_ = header.text;
    headerSubText_ = header.subText;

    frame1_ = new QGroupBox(this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    frame1_->setGeometry(Twips::rect(120, 780, 4455, 915));

    auto* image1 = new QLabel(frame1_);
    image1->setObjectName(QStringLiteral("Image1"));
    image1->setPixmap(style()->standardIcon(QStyle::SP_DriveHDIcon).pixmap(32));
    image1->setGeometry(Twips::rect(120, 240, 480, 480));

    elapsedTime_ = new QLabel(frame1_);
    elapsedTime_->setObjectName(QStringLiteral("ElapsedTime"));
    elapsedTime_->setGeometry(Twips::rect(720, 240, 1815, 240));
    elapsedTimeLabel_ = new QLabel(frame1_);
    elapsedTimeLabel_->setObjectName(QStringLiteral("ElapsedTimeLabel"));
    elapsedTimeLabel_->setGeometry(Twips::rect(2640, 240, 1620, 240));
    writtenSize_ = new QLabel(frame1_);
    writtenSize_->setObjectName(QStringLiteral("WrittenSize"));
    writtenSize_->setGeometry(Twips::rect(720, 480, 1830, 240));
    writtenSizeLabel_ = new QLabel(frame1_);
    writtenSizeLabel_->setObjectName(QStringLiteral("WrittenSizeLabel"));
    writtenSizeLabel_->setGeometry(Twips::rect(2640, 480, 1620, 240));

    lblOperation_ = new QLabel(this);
    lblOperation_->setObjectName(QStringLiteral("lblOperation"));
    lblOperation_->setGeometry(Twips::rect(120, 1800, 1395, 195));

    progressBar_ = new QProgressBar(this);
    progressBar_->setObjectName(QStringLiteral("ProgressBar"));
    progressBar_->setGeometry(Twips::rect(120, 2040, 4455, 255));
    progressBar_->setRange(0, kBarRange);
    progressBar_->setTextVisible(false);

    cancelButton_ = new QPushButton(this);
    cancelButton_->setObjectName(QStringLiteral("CancelButton"));
    cancelButton_->setGeometry(Twips::rect(1313, 2400, 975, 375));
    cancelButton_->setAutoDefault(false);
    connect(cancelButton_, &QPushButton::clicked, this, [this] { run_->cancelClicked(); });

    optionsButton_ = new QPushButton(this);
    optionsButton_->setObjectName(QStringLiteral("OptionsButton"));
    optionsButton_->setGeometry(Twips::rect(2393, 2400, 975, 375));
    optionsButton_->setAutoDefault(false);
    connect(optionsButton_, &QPushButton::clicked, this, &JoinWizard::ShowOptionsMenu);

    // Ford lies below the visible area; it only takes the focus.
    ford_ = new QPushButton(QStringLiteral("Mondeo (UI)"), this);
    ford_->setObjectName(QStringLiteral("Ford"));
    ford_->setGeometry(Twips::rect(240, 3840, 1095, 375));
    ford_->setAutoDefault(false);

    optionsMenu_ = new QMenu(state_->optionsButtonCaption(), this);
    optionsMenu_->setObjectName(QStringLiteral("OptionsMenu"));
    launchFile_ = optionsMenu_->addAction(state_->launchFileCaption());
    launchFile_->setObjectName(QStringLiteral("OptionsLaunchFile"));
    openFolder_ = optionsMenu_->addAction(state_->openFolderCaption());
    openFolder_->setObjectName(QStringLiteral("OptionsOpenFolder"));
    separator_ = optionsMenu_->addSeparator();
    separator_->setObjectName(QStringLiteral("OptionsSeperator1"));
    setID3Tag_ = optionsMenu_->addAction(state_->setID3TagCaption());
    setID3Tag_->setObjectName(QStringLiteral("OptionsSetID3Tag"));
    connect(launchFile_, &QAction::triggered, this, [this] { run_->launchFile(); });
    connect(openFolder_, &QAction::triggered, this, [this] { run_->openFolder(); });
    connect(setID3Tag_, &QAction::triggered, this, [this] { run_->setID3Tag(); });

    setTabOrder(cancelButton_, optionsButton_);
    setTabOrder(optionsButton_, ford_);

    timer_ = new QTimer(this);
    timer_->setObjectName(QStringLiteral("Timer"));
    timer_->setInterval(10);
    connect(timer_, &QTimer::timeout, this, [this] { run_->tick(); });
    // A script's end moves the run on at once, not at the next tick.
    connect(run_.get(), &JoinRun::shellEnded, this, [this] { run_->tick(); });
    elapsedTimer_ = new QTimer(this);
    elapsedTimer_->setObjectName(QStringLiteral("ElapsedTimer"));
    elapsedTimer_->setInterval(1000);
    connect(elapsedTimer_, &QTimer::timeout, this, [this] { run_->clockTick(); });

    connect(state_.get(), &JoinWizardState::changed, this, &JoinWizard::showState);
    connect(state_.get(), &JoinWizardState::closeRequested, this, [this] {
        closeRequested_ = true;
        done(QDialog::Accepted);
    });
    connect(state_.get(), &JoinWizardState::focusOnFordRequested, this,
            [this] { ford_->setFocus(); });
    connect(state_.get(), &JoinWizardState::tagEditorRequested, this,
            [this](const QString& path) { ID3Tag::ShowFor(model_, path, this); });
    showState();
}

JoinWizard::~JoinWizard() {
    timer_->stop();
    elapsedTimer_->stop();
    // The run goes before its state.
    run_.reset();
}

void JoinWizard::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    Load();
}

void JoinWizard::Load() {
    if (loaded_) {
        return;
    }
    loaded_ = true;
    run_->load(false);
    showState();
}

void JoinWizard::showState() {
    const JoinWizardState& s = *state_;
    setWindowTitle(s.windowCaption());
    headerText_->setText(s.headerText());
    headerSubText_->setText(s.headerSubText());
    elapsedTime_->setText(s.elapsedTimeCaption());
    elapsedTimeLabel_->setText(s.elapsedTimeText());
    writtenSize_->setText(s.writtenSizeCaption());
    writtenSizeLabel_->setText(s.writtenSizeText());
    lblOperation_->setText(s.operationText());
    progressBar_->setValue(qRound(s.progressFraction() * kBarRange));
    cancelButton_->setText(s.cancelButtonCaption());
    cancelButton_->setEnabled(s.cancelButtonEnabled());
    optionsButton_->setText(s.optionsButtonCaption());
    optionsButton_->setEnabled(s.optionsButtonEnabled());
    launchFile_->setEnabled(s.launchFileEnabled());
    openFolder_->setEnabled(s.openFolderEnabled());
    setID3Tag_->setEnabled(s.setID3TagEnabled());
    syncTimers();
}

void JoinWizard::syncTimers() {
    if (!loaded_) {
        return;
    }
    if (state_->timerEnabled() != timer_->isActive()) {
        state_->timerEnabled() ? timer_->start() : timer_->stop();
    }
    if (state_->elapsedTimerEnabled() != elapsedTimer_->isActive()) {
        state_->elapsedTimerEnabled() ? elapsedTimer_->start() : elapsedTimer_->stop();
    }
}

void JoinWizard::ShowOptionsMenu() {
    optionsMenu_->popup(optionsButton_->mapToGlobal(QPoint(0, 0)));
}

void JoinWizard::done(int result) {
    if (closeRequested_) {
        timer_->stop();
        elapsedTimer_->stop();
        QDialog::done(result);
        return;
    }
    // The close box and Escape: the same as CancelButton, while it can be clicked.
    if (cancelButton_->isEnabled()) {
        cancelButton_->click();
    }
}

void JoinWizard::RunJoin(MainModel& model, QWidget* parent) {
    JoinWizard window(model, parent);
    window.exec();
}
