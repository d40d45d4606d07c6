#include "ui/TipsWindow.h"

#include <QCheckBox>
#include <QDateTime>
#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QStyle>
#include <cmath>

#include "app/Settings.h"
#include "app/WindowSettings.h"
#include "list/MainModel.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
constexpr int kInnerWidth = 5400;
constexpr int kInnerHeight = 3240;

std::function<double()>& randomSource() {
    static std::function<double()> source;
    return source;
}

// A whole number of 16 bits from a settings text: decimal, rounded half to
// even; anything else (empty, not a number, out of range) fails.
bool toShort(const QString& text, short& out) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(value)) {
        return false;
    }
    const double rounded = std::nearbyint(value);
    if (rounded < -32768.0 || rounded > 32767.0) {
        return false;
    }
    out = static_cast<short>(rounded);
    return true;
}

QString errorText() {
    return QStringLiteral(
        "Error while trying to input [Tips] section. Please, re-install Velmora!");
}
}  // namespace

TipsWindow::TipsWindow(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("TipsWindow"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("Tip of the day"));
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    WindowHeader::build(
        this, kInnerWidth, style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32),
        QStringLiteral("Tip of the day"), QStringLiteral("Did you know that..."), 4140);

    tipText_ = new QPlainTextEdit(this);
    tipText_->setObjectName(QStringLiteral("TipText"));
    tipText_->setReadOnly(true);
    tipText_->setGeometry(Twips::rect(120, 855, 5160, 1665));

    showAtStartup_ = new QCheckBox(QStringLiteral("&Show at startup"), this);
    showAtStartup_->setObjectName(QStringLiteral("ShowAtStartup"));
    showAtStartup_->setGeometry(Twips::rect(120, 2700, 2055, 300));

    nextTipButton_ = new QPushButton(QStringLiteral("&Next"), this);
    nextTipButton_->setObjectName(QStringLiteral("NextTipButton"));
    nextTipButton_->setGeometry(Twips::rect(3180, 2640, 975, 375));
    connect(nextTipButton_, &QPushButton::clicked, this, &TipsWindow::NextTip);

    closeButton_ = new QPushButton(QStringLiteral("&Close"), this);
    closeButton_->setObjectName(QStringLiteral("CloseButton"));
    closeButton_->setGeometry(Twips::rect(4260, 2640, 975, 375));
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);

    setTabOrder(tipText_, showAtStartup_);
    setTabOrder(showAtStartup_, nextTipButton_);
    setTabOrder(nextTipButton_, closeButton_);

    // The load step: the check box from the settings, then a first tip.
    TipsControls controls;
    controls.ShowAtStartup = showAtStartup_->isChecked() ? 1 : 0;
    GetTipsSettings(controls);
    showAtStartup_->setCheckState(controls.ShowAtStartup == 1   ? Qt::Checked
                                  : controls.ShowAtStartup == 2 ? Qt::PartiallyChecked
                                                                : Qt::Unchecked);
    NextTip();
}

int TipsWindow::PickTipNumber(short count, double r) {
    const float product = static_cast<float>(count) * static_cast<float>(r);
    int n = static_cast<int>(std::nearbyint(product));
    if (n == 0) {
        n = 1;
    }
    return n;
}

void TipsWindow::SetRandomSource(std::function<double()> source) {
    randomSource() = std::move(source);
}

void TipsWindow::NextTip() {
    short count = 0;
    toShort(Settings::TipsCountText(), count);
    double r = 0.0;
    if (randomSource()) {
        r = randomSource()();
    } else {
        // Seeded from the clock on every pick.
        QRandomGenerator generator(
            static_cast<quint32>(QDateTime::currentMSecsSinceEpoch() & 0xffffffffu));
        r = generator.generateDouble();
    }
    const int n = PickTipNumber(count, r);
    tipText_->setPlainText(Settings::TipText(n));
    if (tipText_->toPlainText().isEmpty()) {
        tipText_->setPlainText(errorText());
    }
}

void TipsWindow::done(int result) {
    TipsControls controls;
    controls.ShowAtStartup = showAtStartup_->checkState() == Qt::Checked            ? 1
                             : showAtStartup_->checkState() == Qt::PartiallyChecked ? 2
                                                                                    : 0;
    SaveTipsSettings(controls);
    QDialog::done(result);
}
