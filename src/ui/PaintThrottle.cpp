#include "ui/PaintThrottle.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>

#include "platform/EventTurn.h"

PaintThrottle::PaintThrottle(QWidget* window, int intervalMs)
    : QObject(window), window_(window), rate_(intervalMs) {
    heldTimer_.setSingleShot(true);
    connect(&heldTimer_, &QTimer::timeout, this, &PaintThrottle::paintHeld);
    window_->installEventFilter(this);
}

PaintThrottle::~PaintThrottle() {
    window_->removeEventFilter(this);
}

bool PaintThrottle::eventFilter(QObject* watched, QEvent* event) {
    if (watched != window_ || event->type() != QEvent::UpdateRequest || painting_) {
        return false;
    }
    if (!insideEventTurn()) {
        rate_.mark();
        return false;
    }
    if (rate_.due()) {
        return false;
    }
    // The window keeps what is to be painted and asks no more until it has
    // painted; the timer makes that paint once the interval is up.
    ++held_;
    if (!heldTimer_.isActive()) {
        heldTimer_.start(rate_.remainingMs());
    }
    return true;
}

void PaintThrottle::paintHeld() {
    rate_.mark();
    painting_ = true;
    QEvent request(QEvent::UpdateRequest);
    QCoreApplication::sendEvent(window_, &request);
    painting_ = false;
}
