#include "ui/StatusBarControl.h"

#include "ui/LinkLabel.h"
#include "ui/Twips.h"

StatusBarControl::StatusBarControl(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("StatusBar"));
    setFixedHeight(Twips::toPixels(kHeightTwips));
    int left = 0;
    for (int i = 0; i < 3; ++i) {
        auto* label = new ClickableLabel(this);
        label->setObjectName(QStringLiteral("StatusPanel%1").arg(i + 1));
        label->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        label->setIndent(3);
        label->setTextFormat(Qt::PlainText);
        const int width = Twips::toPixels(kPanelWidthsTwips[i]);
        label->setGeometry(left, 1, width, height() - 2);
        left += width;
        connect(label, &ClickableLabel::clicked, this, [this, i] { emit panelClicked(i + 1); });
        panels_[i] = label;
    }
    panels_[2]->setAlignment(Qt::AlignCenter);
    panels_[2]->setIndent(0);
}

QLabel* StatusBarControl::panel(int number) const {
    return number >= 1 && number <= 3 ? panels_[number - 1] : nullptr;
}

int StatusBarControl::panelWidth(int number) const {
    return number >= 1 && number <= 3 ? Twips::toPixels(kPanelWidthsTwips[number - 1]) : 0;
}
