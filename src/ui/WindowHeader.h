#pragma once

#include <QFont>
#include <QPixmap>
#include <QString>

#include <optional>

class QLabel;
class QWidget;

namespace WindowHeader {

// The labels of the white band across the top of a window.
struct Labels {
    QLabel* background = nullptr;
    QLabel* image = nullptr;
    QLabel* text = nullptr;
    QLabel* subText = nullptr;
};

// Builds the white header band of a window: a white background over the top 735 twips of
// the inner width, the picture at the left, the bold title and the line under it. Lengths
// are in twips. The title is bold in its own font unless another base font is given. Empty
// texts leave the labels blank for a window that fills them in later.
Labels build(QWidget* window, int innerWidth, const QPixmap& picture, const QString& text,
             const QString& subText, int textWidth = 3420,
             const std::optional<QFont>& textFont = std::nullopt);

}  // namespace WindowHeader
