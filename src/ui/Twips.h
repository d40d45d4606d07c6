#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QtGlobal>

// Window lengths are designed in twips: 15 twips to a pixel at 96 dots per inch.
namespace Twips {
inline constexpr int kPerPixel = 15;

inline int toPixels(int twips) {
    return qRound(static_cast<double>(twips) / kPerPixel);
}
inline int fromPixels(int pixels) {
    return pixels * kPerPixel;
}
inline QRect rect(int left, int top, int width, int height) {
    return QRect(toPixels(left), toPixels(top), toPixels(width), toPixels(height));
}
inline QSize size(int width, int height) {
    return QSize(toPixels(width), toPixels(height));
}
inline QPoint point(int left, int top) {
    return QPoint(toPixels(left), toPixels(top));
}
}  // namespace Twips
