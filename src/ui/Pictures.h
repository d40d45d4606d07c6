#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>

#include "list/ListState.h"

// The program's own pictures, drawn as SVG and compiled into the program.
namespace Pictures {
// ":/velmora/icons/<name>.svg"
QString path(const QString& name);

// The path of the program's own icon among the compiled-in pictures.
QString programIconPath();
QPixmap pixmap(const QString& name, const QSize& size);
QIcon icon(const QString& name);
// The list type icons and the three status dots; a null pixmap for None.
QPixmap forState(ListState::Picture picture, const QSize& size);
}  // namespace Pictures
