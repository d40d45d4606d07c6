#include "ui/AboutWindow.h"

#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QStyle>

#include "app/Version.h"
#include "list/MainModel.h"
#include "ui/HelpCommands.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"
#include "ui/WindowHeader.h"

namespace {
constexpr int kInnerWidth = 4680;
constexpr int kInnerHeight = 3000;
}  // namespace

AboutWindow::AboutWindow(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("AboutWindow"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("About"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    WindowHeader::build(this, kInnerWidth,
                        style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32),
                        QStringLiteral("About"), QStringLiteral("View program information..."));

    // The load step: the name and version.
    auto* programVersion = new QLabel(this);
    programVersion->setObjectName(QStringLiteral("ProgramVersion"));
    programVersion->setText(Version::kProgramTitle + u' ' + QString::number(Version::kMajor) +
                            u'.' + QString::number(Version::kMinor));
    QFont versionFont = programVersion->font();
    versionFont.setBold(true);
    programVersion->setFont(versionFont);
    programVersion->setGeometry(Twips::rect(240, 960, 4200, 300));

    auto* copyright = new QLabel(LegalLine(), this);
    copyright->setObjectName(QStringLiteral("Copyright"));
    copyright->setGeometry(Twips::rect(240, 1320, 4200, 300));

    auto* linkLabel = new QLabel(this);
    linkLabel->setObjectName(QStringLiteral("LinkLabel"));
    linkLabel->setText(QStringLiteral("<a href=\"%1\">%2</a>")
                           .arg(PublisherSiteAddress(), Version::kPublisherHost));
    linkLabel->setTextFormat(Qt::RichText);
    linkLabel->setOpenExternalLinks(false);
    linkLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    linkLabel->setFocusPolicy(Qt::StrongFocus);
    linkLabel->setCursor(Qt::PointingHandCursor);
    linkLabel->setGeometry(Twips::rect(240, 1680, 4200, 300));
    connect(linkLabel, &QLabel::linkActivated, this, [this] { OpenSite(); });

    auto* cmdCredits = new QPushButton(QStringLiteral("&Credits"), this);
    cmdCredits->setObjectName(QStringLiteral("cmdCredits"));
    cmdCredits->setGeometry(Twips::rect(2520, 2490, 975, 375));
    cmdCredits->setAutoDefault(false);
    connect(cmdCredits, &QPushButton::clicked, this, &AboutWindow::ShowCredits);

    auto* closeButton = new QPushButton(QStringLiteral("&Close"), this);
    closeButton->setObjectName(QStringLiteral("CloseButton"));
    closeButton->setGeometry(Twips::rect(3600, 2490, 975, 375));
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);

    // Ford lies below the visible area; it only takes the focus.
    auto* ford = new QPushButton(QStringLiteral("Focus"), this);
    ford->setObjectName(QStringLiteral("Ford"));
    ford->setGeometry(Twips::rect(240, kInnerHeight + 480, 1095, 375));
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
