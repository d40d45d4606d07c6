#include "ui/Splashscreen.h"

#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <QTimer>

#include "app/Version.h"
#include "ui/LinkLabel.h"
#include "ui/Pictures.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"

namespace {
QLabel* addLabel(QWidget* parent, const QString& name, const QString& text, const QRect& place,
                 bool bold) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setGeometry(place);
    label->setTextFormat(Qt::PlainText);
    if (bold) {
        QFont f = label->font();
        f.setBold(true);
        label->setFont(f);
    }
    return label;
}

QFrame* addLine(QWidget* parent, const QString& name, const QRect& place) {
    auto* line = new QFrame(parent);
    line->setObjectName(name);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    line->setGeometry(place);
    return line;
}
}  // namespace

QString Splashscreen::siteAddress() {
    return QStringLiteral("http://") + Version::kPublisherHost;
}

QString Splashscreen::disclaimerText() {
    return QStringLiteral(
        "This program is provided \"as is\", without warranty of any kind. The authors are not "
        "liable for any loss or damage that comes from its use. Always keep a copy of the files "
        "you join.");
}

Splashscreen::Splashscreen(QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("Splashscreen"));
    ProgramLook::apply(this);
    setWindowTitle(Version::kProgramTitle);
    setFixedSize(Twips::size(kWidthTwips, kHeightTwips));
    setAttribute(Qt::WA_DeleteOnClose);

    timer_ = new QTimer(this);
    timer_->setObjectName(QStringLiteral("Timer"));
    timer_->setInterval(kTimerInterval);
    connect(timer_, &QTimer::timeout, this, &Splashscreen::fire);

    addLabel(this, QStringLiteral("VersionLabel"), QStringLiteral("Version: ") + Version::text(),
             Twips::rect(360, 1560, 3000, 240), true);
    addLine(this, QStringLiteral("Line1"), Twips::rect(360, 1905, 5280, 30));
    addLabel(this, QStringLiteral("VisitUsAtLabel"), QStringLiteral("Visit us at:"),
             Twips::rect(360, 2040, 1320, 240), false);
    auto* site = new LinkLabel(Version::kPublisherHost, this);
    site->setObjectName(QStringLiteral("VisitUsAtValue"));
    site->setGeometry(Twips::rect(1740, 2040, 3600, 240));
    connect(site, &LinkLabel::clicked, this, [this] {
        if (openSite) {
            openSite(siteAddress());
        }
    });
    addLine(this, QStringLiteral("Line2"), Twips::rect(360, 2400, 5280, 30));
    addLabel(this, QStringLiteral("DisclaimerLabel"), QStringLiteral("Disclaimer:"),
             Twips::rect(360, 2535, 1800, 240), true);
    QLabel* disclaimer = addLabel(this, QStringLiteral("DisclaimerValue"), disclaimerText(),
                                  Twips::rect(360, 2820, 5280, 1200), false);
    disclaimer->setWordWrap(true);
    disclaimer->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void Splashscreen::showSplash() {
    show();
    raise();
    timer_->start();
}

void Splashscreen::fire() {
    // The hand-over closes this window; its timer goes with it, so this runs once.
    timer_->stop();
    if (handOver) {
        handOver();
    }
}

void Splashscreen::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QSvgRenderer renderer(Pictures::path(QStringLiteral("splash_background")));
    renderer.render(&painter, QRectF(rect()));
    painter.setPen(QColor(0x1b, 0x3f, 0x86));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void Splashscreen::mousePressEvent(QMouseEvent* event) {
    event->accept();
    fire();
}
