#include "ui/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>

QString QtClipboard::text() const {
    const QClipboard* clipboard = QGuiApplication::clipboard();
    return clipboard ? clipboard->text() : QString();
}

void QtClipboard::setText(const QString& text) {
    if (QClipboard* clipboard = QGuiApplication::clipboard()) {
        clipboard->setText(text);
    }
}

void QtClipboard::clear() {
    if (QClipboard* clipboard = QGuiApplication::clipboard()) {
        clipboard->clear();
    }
}
