// The main window's toolbar: seven captioned buttons, two with a drop-down
// menu, and what their clicks run.
#include <QAction>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>

#include "ui/MainWindow.h"
#include "ui/Pictures.h"

void MainWindow::buildToolbar() {
    toolbar_ = new QToolBar(client_);
    toolbar_->setObjectName(QStringLiteral("Toolbar"));
    toolbar_->setMovable(false);
    toolbar_->setFloatable(false);
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    toolbar_->setIconSize(QSize(24, 24));
    // Seven captioned buttons share the design width of the window.
    toolbar_->setStyleSheet(
        QStringLiteral("QToolBar { spacing: 0px; padding: 0px; }"
                       "QToolButton { font-size: 7pt; padding: 1px 1px; margin: 0px; }"
                       "QToolButton[popupMode=\"1\"] { padding-right: 11px; }"
                       "QToolButton::menu-button { width: 10px; border: none;"
                       " background: transparent; }"));

    struct Button {
        const char* caption;
        const char* icon;
        bool dropDown;
    };
    const Button buttons[] = {
        {"New List", "toolbar_new", false},     {"Open List", "toolbar_open", false},
        {"Save List", "toolbar_save", false},   {"Add File(s)", "toolbar_add", true},
        {"Sort List", "toolbar_sort", false},   {"Check List", "toolbar_check", true},
        {"Join Files!", "toolbar_join", false},
    };
    int index = 0;
    for (const Button& b : buttons) {
        ++index;
        auto* button = new QAction(Pictures::icon(QString::fromLatin1(b.icon)),
                                   QString::fromLatin1(b.caption), this);
        button->setObjectName(QStringLiteral("ToolbarButton%1").arg(index));
        button->setToolTip(QString::fromLatin1(b.caption));
        connect(button, &QAction::triggered, this, [this, index] { toolbarButtonClick(index); });
        toolbar_->addAction(button);
        actions_.insert(button->objectName(), button);
        if (!b.dropDown) {
            continue;
        }
        auto* dropDown = new QMenu(this);
        dropDown->setObjectName(QStringLiteral("ToolbarButton%1Menu").arg(index));
        const QList<QPair<QString, QString>> entries =
            index == 4 ? QList<QPair<QString, QString>>{{"AddFiles", "Add File(s)"},
                                                        {"AddDirectory", "Add Directory"}}
                       : QList<QPair<QString, QString>>{{"CheckForDupes", "For: Duplicated Files"},
                                                        {"CheckForDead", "For: Dead Files"}};
        for (const auto& [key, caption] : entries) {
            QAction* entry = dropDown->addAction(caption);
            entry->setObjectName(key);
            connect(entry, &QAction::triggered, this, [this, key = key] { toolbarMenuClick(key); });
        }
        button->setMenu(dropDown);
        menus_.insert(dropDown->objectName(), dropDown);
        if (auto* tool = qobject_cast<QToolButton*>(toolbar_->widgetForAction(button))) {
            tool->setPopupMode(QToolButton::MenuButtonPopup);
        }
    }
}

void MainWindow::toolbarButtonClick(int index) {
    switch (index) {
        case 1:
            showNewList();
            break;
        case 2:
            RunCommand(commands_.openList);
            break;
        case 3:
            RunCommand(commands_.saveList, short(0));
            break;
        case 4:
            RunCommand(commands_.addFiles);
            break;
        case 5:
            RunCommand(commands_.showSortWizard);
            break;
        case 6:
            model_.questions.msgBox(
                QStringLiteral("Please, select one of the check-tools by clicking on the arrow."),
                Msg::OkOnly + Msg::Information);
            break;
        case 7:
            RunCommand(commands_.startJoin);
            break;
        default:
            break;
    }
}

void MainWindow::toolbarMenuClick(const QString& key) {
    if (key == QLatin1String("AddFiles")) {
        RunCommand(commands_.addFiles);
    } else if (key == QLatin1String("AddDirectory")) {
        RunCommand(commands_.showAddDirectoryBox);
    } else if (key == QLatin1String("CheckForDupes")) {
        RunCommand(commands_.removeDuplicatedFiles);
    } else if (key == QLatin1String("CheckForDead")) {
        RunCommand(commands_.removeDeadFiles);
    }
}
