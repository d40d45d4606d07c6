#include "ui/Pictures.h"

#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

// The pictures are compiled into the window library, a static library, so
// they are registered on first use.
static void registerPictures() {
    static const bool registered = [] {
        Q_INIT_RESOURCE(velmora);
        return true;
    }();
    (void)registered;
}

namespace Pictures {

QString path(const QString& name) {
    registerPictures();
    return QStringLiteral(":/velmora/icons/%1.svg").arg(name);
}

QString programIconPath() {
    registerPictures();
    return QStringLiteral(":/velmora/velmora.svg");
}

QPixmap pixmap(const QString& name, const QSize& size) {
    // Drawn at the screen's pixel ratio, so the picture stays sharp when the
    // desktop is scaled.
    const qreal ratio = qGuiApp != nullptr ? qGuiApp->devicePixelRatio() : 1.0;
    QPixmap result(size * ratio);
    result.setDevicePixelRatio(ratio);
    result.fill(Qt::transparent);
    QSvgRenderer renderer(path(name));
    if (!renderer.isValid()) {
        return QPixmap();
    }
    QPainter painter(&result);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return result;
}

QIcon icon(const QString& name) {
    return QIcon(path(name));
}

namespace {
QPixmap renderForState(ListState::Picture picture, const QSize& size) {
    switch (picture) {
        case ListState::Picture::MP3:
            return pixmap(QStringLiteral("type_mp3"), size);
        case ListState::Picture::MPEG:
            return pixmap(QStringLiteral("type_mpeg"), size);
        case ListState::Picture::Green:
            return pixmap(QStringLiteral("status_green"), size);
        case ListState::Picture::Orange:
            return pixmap(QStringLiteral("status_orange"), size);
        case ListState::Picture::Red:
            return pixmap(QStringLiteral("status_red"), size);
        case ListState::Picture::None:
            break;
    }
    return QPixmap();
}
}  // namespace

QPixmap forState(ListState::Picture picture, const QSize& size) {
    // Each picture is drawn from its SVG once per size; the panel asks for the
    // same few pictures over and over while a list grows.
    static QHash<QString, QPixmap> drawn;
    const QString key = QStringLiteral("%1/%2x%3")
                            .arg(static_cast<int>(picture))
                            .arg(size.width())
                            .arg(size.height());
    const auto found = drawn.constFind(key);
    if (found != drawn.constEnd()) {
        return *found;
    }
    const QPixmap result = renderForState(picture, size);
    drawn.insert(key, result);
    return result;
}

}  // namespace Pictures
