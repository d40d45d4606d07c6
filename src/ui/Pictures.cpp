#include "ui/Pictures.h"

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

QPixmap pixmap(const QString& name, const QSize& size) {
    QPixmap result(size);
    result.fill(Qt::transparent);
    QSvgRenderer renderer(path(name));
    if (!renderer.isValid()) {
        return QPixmap();
    }
    QPainter painter(&result);
    renderer.render(&painter);
    return result;
}

QIcon icon(const QString& name) {
    return QIcon(path(name));
}

QPixmap forState(ListState::Picture picture, const QSize& size) {
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

}  // namespace Pictures
