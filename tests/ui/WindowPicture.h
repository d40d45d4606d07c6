#pragma once

#include <QApplication>
#include <QImage>
#include <QString>
#include <QWidget>

// Renders the window; when VELMORA_SCREENSHOT_DIR names a folder the picture
// is saved there under the given name, for the documentation's gallery.
inline QImage takePicture(QWidget& window, const QString& name) {
    QApplication::processEvents();
    const QImage image = window.grab().toImage();
    const QString folder = qEnvironmentVariable("VELMORA_SCREENSHOT_DIR");
    if (!folder.isEmpty()) {
        image.save(folder + u'/' + name);
    }
    return image;
}

// True when the picture holds more than one colour: something was drawn.
inline bool hasContent(const QImage& image) {
    if (image.isNull()) {
        return false;
    }
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3) {
            if (image.pixel(x, y) != first) {
                return true;
            }
        }
    }
    return false;
}
