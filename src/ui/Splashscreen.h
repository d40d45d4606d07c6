#pragma once

#include <QWidget>
#include <functional>

class QTimer;

// The borderless window shown while the program starts: its own picture, the
// version, the publisher's site and a disclaimer. It hands over to the main
// window after 2000 ms or at a click on its background, whichever comes first;
// a click on the site opens it in the browser and leaves the splash standing.
class Splashscreen : public QWidget {
    Q_OBJECT
public:
    static constexpr int kWidthTwips = 6000;
    static constexpr int kHeightTwips = 4245;
    static constexpr int kTimerInterval = 2000;  // ms

    explicit Splashscreen(QWidget* parent = nullptr);

    // Called by the timer tick and by the click on the background.
    std::function<void()> handOver;
    // Opens the publisher's site (the desktop's browser in the program).
    std::function<void(const QString& address)> openSite;

    // Shows the window and starts the timer.
    void showSplash();
    QTimer* timer() const { return timer_; }

    // "http://" + the publisher's host.
    static QString siteAddress();
    static QString disclaimerText();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void fire();

    QTimer* timer_ = nullptr;
};
