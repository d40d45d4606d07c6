#include "ui/WindowHeader.h"

#include <QLabel>
#include <QPalette>

#include "ui/Twips.h"

namespace WindowHeader {

Labels build(QWidget* window, int innerWidth, const QPixmap& picture, const QString& text,
             const QString& subText, int textWidth, const std::optional<QFont>& textFont) {
    Labels labels;

    labels.background = new QLabel(window);
    labels.background->setObjectName(QStringLiteral("HeaderBackground"));
    labels.background->setAutoFillBackground(true);
    QPalette white = labels.background->palette();
    white.setColor(QPalette::Window, Qt::white);
    labels.background->setPalette(white);
    // The band is white under any desktop palette, so its text is painted dark.
    QPalette dark = window->palette();
    dark.setColor(QPalette::WindowText, Qt::black);
    labels.background->setGeometry(Twips::rect(0, 0, innerWidth, 735));

    labels.image = new QLabel(window);
    labels.image->setObjectName(QStringLiteral("HeaderImage"));
    labels.image->setPixmap(picture);
    labels.image->setGeometry(Twips::rect(240, 120, 480, 480));

    labels.text = new QLabel(window);
    if (!text.isEmpty()) {
        labels.text->setText(text);
    }
    labels.text->setObjectName(QStringLiteral("HeaderText"));
    labels.text->setPalette(dark);
    QFont bold = textFont.value_or(labels.text->font());
    bold.setBold(true);
    labels.text->setFont(bold);
    labels.text->setGeometry(Twips::rect(1080, 120, textWidth, 240));

    labels.subText = new QLabel(window);
    if (!subText.isEmpty()) {
        labels.subText->setText(subText);
    }
    labels.subText->setObjectName(QStringLiteral("HeaderSubText"));
    labels.subText->setPalette(dark);
    labels.subText->setGeometry(Twips::rect(1080, 360, textWidth, 255));

    return labels;
}

}  // namespace WindowHeader
