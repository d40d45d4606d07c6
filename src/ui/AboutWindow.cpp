#include "ui/AboutWindow.h"

#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QStyle>

#include "app/Version.h"
#include "list/MainModel.h"
#include "ui/HelpCommands.h"

namespace {
QRect tw(int left, int top, int width, int height) {
    return QRect(qRound(left / 15.0), qRound(top / 15.0), qRound(width / 15.0),
                 qRound(height / 15.0));
}

constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 3000;
}  // namespace

AboutWindow::AboutWindow(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("AboutWindow"));
    setWindowTitle(QStringLiteral("About"));
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
    headerImage->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32));
    headerImage->setGeometry(tw(240, 120, 480, 480));

    auto* headerText = new QLabel(QStringLiteral("About"), this);
    headerText->setObjectName(QStringLiteral("HeaderText"));
    QFont bold = headerText->font();
    bold.setBold(true);
    headerText->setFont(bold);
    headerText->setGeometry(tw(1080, 120, 3420, 240));

    auto* headerSubText = new QLabel(QStringLiteral("View program information..."), this);
    headerSubText->setObjectName(QStringLiteral("HeaderSubText"));
    headerSubText->setGeometry(tw(1080, 360, 3420, 255));

    // The load step: the name and version.
    auto* programVersion = new QLabel(this);
    programVersion->setObjectName(QStringLiteral("ProgramVersion"));
    programVersion->setText(Version::kProgramTitle + u' ' + QString::number(Version::kMajor) +
                            u'.' + QString::number(Version::kMinor));
    QFont versionFont = programVersion->font();
    versionFont.setBold(true);
    programVersion->setFont(versionFont);
    programVersion->setGeometry(tw(240, 960, 4200, 300));

    auto* copyright = new QLabel(LegalLine(), this);
    copyright->setObjectName(QStringLiteral("Copyright"));
    copyright->setGeometry(tw(240, 1320, 4200, 300));

    auto* linkLabel = new QLabel(this);
    linkLabel->setObjectName(QStringLiteral("LinkLabel"));
    linkLabel->setText(QStringLiteral("<a href=\"%1\">%2</a>")
                           .arg(PublisherSiteAddress(), Version::kPublisherHost));
    linkLabel->setTextFormat(Qt::RichText);
    linkLabel->setOpenExternalLinks(false);
    linkLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    linkLabel->setFocusPolicy(Qt::StrongFocus);
    linkLabel->setCursor(Qt::PointingHandCursor);
    linkLabel->setGeometry(tw(240, 1680, 4200, 300));
    connect(linkLabel, &QLabel::linkActivated, this, [this] { OpenSite(); });

    auto* cmdCredits = new QPushButton(QStringLiteral("&Credits"), this);
    cmdCredits->setObjectName(QStringLiteral("cmdCredits"));
    cmdCredits->setGeometry(tw(2520, 2490, 975, 375));
    cmdCredits->setAutoDefault(false);
    connect(cmdCredits, &QPushButton::clicked, this, &AboutWindow::ShowCredits);

    auto* closeButton = new QPushButton(QStringLiteral("&Close"), this);
    closeButton->setObjectName(QStringLiteral("CloseButton"));
    closeButton->setGeometry(tw(3600, 2490, 975, 375));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);

    // Ford lies below the visible area; it only takes the focus.
    auto* ford = new QPushButton(QStringLiteral("Focus"), this);
    ford->setObjectName(QStringLiteral("Ford"));
    ford->setGeometry(tw(240, kInnerHeight + 480, 1095, 375));
    ford->setAutoDefault(false);

    setTabOrder(ford, linkLabel);
    setTabOrder(linkLabel, cmdCredits);
    setTabOrder(cmdCredits, closeButton);
    ford->setFocus();
}

QString AboutWindow::CreditsText() {
    const QString crlf = QStringLiteral("\r\n");
    return QStringLiteral("Velmora uses portions of the following products:") + crlf + crlf +
           QStringLiteral("Vbrfix, for fixing MP3 files.") + crlf +
           QStringLiteral("MpgTx, for joining MPEG1 files.") + crlf +
           QStringLiteral("FFMpeg, for fixing MPEG2 files.") + crlf + crlf +
           QStringLiteral("More information about the above products is available upon request.");
}

QString AboutWindow::LegalLine() {
    return QStringLiteral("Copyright \u00A9 Kestor. All rights reserved.");
}

void AboutWindow::OpenSite() {
    OpenThroughShell(PublisherSiteAddress());
}

void AboutWindow::ShowCredits() {
    model_.questions.msgBox(CreditsText(), Msg::Information);
}
