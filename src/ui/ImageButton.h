#pragma once

#include <QLabel>
#include <QPixmap>
#include <QString>

// A picture (by its name among the program's pictures) that works as a button: it shows its Pressed
// picture while a mouse button is down on it and its Normal picture otherwise. mouseUp comes for
// every release; clicked follows it when the release was inside the button.
class ImageButton : public QLabel {
    Q_OBJECT
public:
    ImageButton(const QString& normalPicture, const QString& pressedPicture,
                QWidget* parent = nullptr);

    bool showsPressedPicture() const { return pressed_; }
    // A free text the window keeps with the button ("popup" on DeleteButton).
    const QString& tag() const { return tag_; }
    void setTag(const QString& tag) { tag_ = tag; }

signals:
    void mouseUp(Qt::MouseButton button);
    void clicked(Qt::MouseButton button);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void showPicture(bool pressed);

    QPixmap normal_;
    QPixmap pressedPicture_;
    bool pressed_ = false;
    QString tag_;
};
