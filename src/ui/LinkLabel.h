#pragma once

#include <QLabel>

// A label that works as a link: dark-blue text, the hand pointer, and a click
// signal. The press is taken by the label, so it never reaches the window
// behind it.
class LinkLabel : public QLabel {
    Q_OBJECT
public:
    explicit LinkLabel(const QString& text, QWidget* parent = nullptr);

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};

// A label that reports a click but keeps the look of its owner (a status bar
// panel, a background).
class ClickableLabel : public QLabel {
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};
