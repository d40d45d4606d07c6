#include "ui/ImageButton.h"

#include <QMouseEvent>

#include "ui/Pictures.h"

ImageButton::ImageButton(const QString& normalPicture, const QString& pressedPicture,
                         QWidget* parent)
    : QLabel(parent),
      normal_(Pictures::pixmap(normalPicture, QSize(42, 38))),
      pressedPicture_(Pictures::pixmap(pressedPicture, QSize(42, 38))) {
    setCursor(Qt::PointingHandCursor);
    setAlignment(Qt::AlignCenter);
    showPicture(false);
}

void ImageButton::showPicture(bool pressed) {
    pressed_ = pressed;
    setPixmap(pressed ? pressedPicture_ : normal_);
}

void ImageButton::mousePressEvent(QMouseEvent* event) {
    showPicture(true);
    event->accept();
}

void ImageButton::mouseReleaseEvent(QMouseEvent* event) {
    showPicture(false);
    event->accept();
    const Qt::MouseButton button = event->button();
    const bool inside = rect().contains(event->position().toPoint());
    emit mouseUp(button);
    if (inside) {
        emit clicked(button);
    }
}
