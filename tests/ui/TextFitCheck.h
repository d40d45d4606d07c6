#pragma once

// Measures, with the font of each control, whether the texts of a window show
// whole in their controls as the window lays them out.

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStringList>
#include <QStyle>
#include <QStyleOption>
#include <QTreeWidget>
#include <QWidget>

namespace TextFitCheck {

inline QString withoutMnemonic(QString text) {
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(u'&');
    text.replace(u'\x01', u'&');
    return text;
}

inline QString describe(const QWidget* w, const QString& text, int needed, int has) {
    return QStringLiteral("%1 \"%2\": needs %3 px, has %4 px")
        .arg(w->objectName().isEmpty() ? QString::fromLatin1(w->metaObject()->className())
                                       : w->objectName(),
             text)
        .arg(needed)
        .arg(has);
}

inline void checkLabel(const QLabel* label, QStringList& cuts) {
    if (label->text().isEmpty() || !label->pixmap().isNull()) {
        return;
    }
    const QString text = label->textFormat() == Qt::RichText ? QString() : label->text();
    if (text.isEmpty()) {
        return;
    }
    const int margin = label->margin();
    const QRect room = label->contentsRect().adjusted(margin, margin, -margin, -margin);
    const int flags = int(label->alignment()) | (label->wordWrap() ? Qt::TextWordWrap : 0);
    const QRect needed = label->fontMetrics().boundingRect(room, flags, text);
    if (needed.width() > room.width()) {
        cuts << describe(label, text, needed.width(), room.width());
    } else if (label->wordWrap() && needed.height() > room.height()) {
        cuts << describe(label, text, needed.height(), room.height()) + QStringLiteral(" high");
    }
}

inline void checkButton(const QAbstractButton* button, QStringList& cuts) {
    if (button->text().isEmpty()) {
        return;
    }
    const QString text = withoutMnemonic(button->text());
    int needed = 0;
    if (qobject_cast<const QCheckBox*>(button) != nullptr ||
        qobject_cast<const QRadioButton*>(button) != nullptr) {
        // The indicator, its spacing and the text, as the style lays them out.
        needed = button->sizeHint().width();
    } else if (qobject_cast<const QPushButton*>(button) != nullptr) {
        QStyleOptionButton option;
        option.initFrom(button);
        needed = button->fontMetrics().horizontalAdvance(text) +
                 2 * button->style()->pixelMetric(QStyle::PM_ButtonMargin, &option, button) / 2 +
                 2 * button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, button);
    } else {
        return;
    }
    if (needed > button->width()) {
        cuts << describe(button, text, needed, button->width());
    }
}

inline void checkGroupBox(const QGroupBox* box, QStringList& cuts) {
    if (box->title().isEmpty()) {
        return;
    }
    const QString text = withoutMnemonic(box->title());
    const int needed = box->fontMetrics().horizontalAdvance(text) + 16;
    if (needed > box->width()) {
        cuts << describe(box, text, needed, box->width());
    }
}

inline void checkComboBox(const QComboBox* combo, QStringList& cuts) {
    // The shown entry beside the arrow.
    QStyleOptionComboBox option;
    option.initFrom(combo);
    const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                       QStyle::SC_ComboBoxEditField, combo);
    const QString text = combo->currentText();
    const int needed = combo->fontMetrics().horizontalAdvance(text);
    if (needed > field.width()) {
        cuts << describe(combo, text, needed, field.width());
    }
}

inline void checkTree(const QTreeWidget* tree, QStringList& cuts) {
    const QFontMetrics fm = tree->fontMetrics();
    // The view keeps a little room on each side of a cell's text.
    const int spacing =
        2 * (tree->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, tree) + 1);
    for (int column = 0; column < tree->columnCount(); ++column) {
        const int has = tree->columnWidth(column);
        const QString header = tree->headerItem()->text(column);
        const int headerNeeded = tree->header()->fontMetrics().horizontalAdvance(header) + spacing;
        if (headerNeeded > has) {
            cuts << describe(tree, header, headerNeeded, has);
        }
        for (int row = 0; row < tree->topLevelItemCount(); ++row) {
            const QString text = tree->topLevelItem(row)->text(column);
            const int needed = fm.horizontalAdvance(text) + spacing;
            if (!text.isEmpty() && needed > has) {
                cuts << describe(tree, text, needed, has);
            }
        }
    }
}

// Every visible text of the window that its control cuts, described; empty
// when all show whole. Controls placed out of sight (a focus-only button) are
// not looked at.
inline QStringList cutTexts(const QWidget& window) {
    QStringList cuts;
    for (const QWidget* w : window.findChildren<QWidget*>()) {
        if (!w->isVisibleTo(&window)) {
            continue;
        }
        const QRect placed(w->mapTo(&window, QPoint(0, 0)), w->size());
        if (!window.rect().intersects(placed)) {
            continue;
        }
        if (const auto* label = qobject_cast<const QLabel*>(w)) {
            checkLabel(label, cuts);
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(w)) {
            checkButton(button, cuts);
        } else if (const auto* box = qobject_cast<const QGroupBox*>(w)) {
            checkGroupBox(box, cuts);
        } else if (const auto* combo = qobject_cast<const QComboBox*>(w)) {
            checkComboBox(combo, cuts);
        } else if (const auto* tree = qobject_cast<const QTreeWidget*>(w)) {
            checkTree(tree, cuts);
        }
    }
    return cuts;
}

}  // namespace TextFitCheck
