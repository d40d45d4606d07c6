#pragma once

#include <QObject>
#include <QTimer>

#include "platform/RateLimit.h"

class QWidget;

// Bounds how often a window paints while a long loop (adding files, the
// removal run) gives events their turn after each round. Every paint of a
// window goes through one update request to it; inside such a turn the
// request is held back unless the last paint is an interval old, and a held
// paint is made when the interval is up, whether the loop still runs or not.
// Input is never held back: a click on the cancel link is served in the very
// turn it arrives in. Outside the turns the window paints as always.
class PaintThrottle : public QObject {
public:
    static constexpr int kIntervalMs = 40;  // 25 paints a second

    explicit PaintThrottle(QWidget* window, int intervalMs = kIntervalMs);
    ~PaintThrottle() override;

    // How many paints were held back so far.
    int heldPaints() const { return held_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void paintHeld();

    QWidget* window_;
    RateLimit rate_;
    QTimer heldTimer_;
    bool painting_ = false;
    int held_ = 0;
};
