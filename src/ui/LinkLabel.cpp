#include "ui/LinkLabel.h"

#include <QMouseEvent>

LinkLabel::LinkLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setCursor(Qt::PointingHandCursor);
    QPalette p = palette();
    p.setColor(QPalette::WindowText, QColor(0, 0, 128));
    setPalette(p);
}

void LinkLabel::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void LinkLabel::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
}

void ClickableLabel::mousePressEvent(QMouseEvent* event) {
    event->accept();
}

void ClickableLabel::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
}
