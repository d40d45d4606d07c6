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

#include "app/IniFile.h"
#include "app/WindowSettings.h"
#include "list/MainModel.h"

namespace {
QRect tw(int left, int top, int width, int height) {
    return QRect(qRound(left / 15.0), qRound(top / 15.0), qRound(width / 15.0),
                 qRound(height / 15.0));
}

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
    setWindowTitle(QStringLiteral("Tip of the day"));
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
    headerImage->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32));
    headerImage->setGeometry(tw(240, 120, 480, 480));

    auto* headerText = new QLabel(QStringLiteral("Tip of the day"), this);
    headerText->setObjectName(QStringLiteral("HeaderText"));
    QFont bold = headerText->font();
    bold.setBold(true);
    headerText->setFont(bold);
    headerText->setGeometry(tw(1080, 120, 4140, 240));

    auto* headerSubText = new QLabel(QStringLiteral("Did you know that..."), this);
    headerSubText->setObjectName(QStringLiteral("HeaderSubText"));
    headerSubText->setGeometry(tw(1080, 360, 4140, 255));

    tipText_ = new QPlainTextEdit(this);
    tipText_->setObjectName(QStringLiteral("TipText"));
    tipText_->setReadOnly(true);
    tipText_->setGeometry(tw(120, 855, 5160, 1665));

    showAtStartup_ = new QCheckBox(QStringLiteral("&Show at startup"), this);
    showAtStartup_->setObjectName(QStringLiteral("ShowAtStartup"));
    showAtStartup_->setGeometry(tw(120, 2700, 2055, 300));

    nextTipButton_ = new QPushButton(QStringLiteral("&Next"), this);
    nextTipButton_->setObjectName(QStringLiteral("NextTipButton"));
    nextTipButton_->setGeometry(tw(3180, 2640, 975, 375));
    connect(nextTipButton_, &QPushButton::clicked, this, &TipsWindow::NextTip);

    closeButton_ = new QPushButton(QStringLiteral("&Close"), this);
    closeButton_->setObjectName(QStringLiteral("CloseButton"));
    closeButton_->setGeometry(tw(4260, 2640, 975, 375));
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
    toShort(ReadSetting(QStringLiteral("Tips"), QStringLiteral("Count")), count);
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
    tipText_->setPlainText(
        ReadSetting(QStringLiteral("Tips"), QStringLiteral("Tip") + QString::number(n)));
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
