#include "ui/ScreenshotScenes.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QMenu>
#include <QPalette>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <QToolTip>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "list/Columns.h"
#include "ui/AppLauncher.h"
#include "ui/ListViewControl.h"
#include "ui/MainWindow.h"
#include "ui/Splashscreen.h"

namespace {

[[noreturn]] void SaveAndEnd(const QRect& area, const QString& file) {
    QScreen* screen = QGuiApplication::primaryScreen();
    QPixmap shot = screen->grabWindow(0);
    // The grab is in device pixels: at a scale factor the area grows with it.
    const qreal ratio = shot.devicePixelRatio();
    const QRect logical = area.adjusted(-8, -8, 8, 8);
    const QRect crop = QRect(qRound(logical.x() * ratio), qRound(logical.y() * ratio),
                             qRound(logical.width() * ratio), qRound(logical.height() * ratio))
                           .intersected(QRect(QPoint(0, 0), shot.size()));
    const bool saved = shot.copy(crop).save(file);
    std::fprintf(stderr, "%s %s\n", saved ? "saved" : "could not save", qPrintable(file));
    std::fflush(nullptr);
    std::_Exit(saved ? 0 : 1);
}

// Runs step after ms milliseconds of event handling.
void After(int ms, std::function<void()> step) {
    QTimer::singleShot(ms, std::move(step));
}

void DropMedia(MainWindow& window) {
    const QString media = qEnvironmentVariable("VELMORA_SCREENSHOT_MEDIA");
    if (!media.isEmpty()) {
        window.dropFiles(media.split(u':', Qt::SkipEmptyParts));
    }
    window.model().state.setSelectedIndex(window.model().items.count() >= 2 ? 2 : 1);
}

using Scene = std::function<void(AppLauncher&, const QString& file)>;

// A dark desktop palette, as a dark desktop theme gives the program.
QPalette DarkPalette() {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    dark.setColor(QPalette::Base, QColor(30, 30, 32));
    dark.setColor(QPalette::AlternateBase, QColor(50, 50, 54));
    dark.setColor(QPalette::Text, QColor(230, 230, 230));
    dark.setColor(QPalette::Button, QColor(55, 55, 58));
    dark.setColor(QPalette::ButtonText, QColor(230, 230, 230));
    dark.setColor(QPalette::ToolTipBase, QColor(60, 60, 64));
    dark.setColor(QPalette::ToolTipText, QColor(230, 230, 230));
    dark.setColor(QPalette::Highlight, QColor(60, 110, 180));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(120, 170, 255));
    return dark;
}

QHash<QString, Scene> Scenes() {
    QHash<QString, Scene> scenes;
    scenes.insert(QStringLiteral("splash"), [](AppLauncher& launcher, const QString& file) {
        After(400, [&launcher, file] {
            if (Splashscreen* splash = launcher.splashscreen()) {
                SaveAndEnd(splash->frameGeometry(), file);
            }
        });
    });
    // The main window behind the NewList dialog, as at a first start.
    scenes.insert(QStringLiteral("newlist"), [](AppLauncher& launcher, const QString& file) {
        After(2800, [&launcher, file] {
            QRect area = launcher.mainWindow()->frameGeometry();
            if (QWidget* dialog = QApplication::activeModalWidget()) {
                area = area.united(dialog->frameGeometry());
            }
            SaveAndEnd(area, file);
        });
    });
    // Not a picture: the places of the main window and the start-up New List
    // dialog, written as two lines "x y width height" of their client areas.
    scenes.insert(QStringLiteral("placement"), [](AppLauncher& launcher, const QString& file) {
        After(2800, [&launcher, file] {
            QWidget* dialog = launcher.mainWindow()->findChild<QDialog*>(QStringLiteral("NewList"));
            QFile out(file);
            const bool written = dialog != nullptr && out.open(QIODevice::WriteOnly);
            if (written) {
                for (const QRect& r : {launcher.mainWindow()->geometry(), dialog->geometry()}) {
                    out.write(QStringLiteral("%1 %2 %3 %4\n")
                                  .arg(r.x())
                                  .arg(r.y())
                                  .arg(r.width())
                                  .arg(r.height())
                                  .toLatin1());
                }
                out.close();
            }
            std::fflush(nullptr);
            std::_Exit(written ? 0 : 1);
        });
    });
    const Scene main = [](AppLauncher& launcher, const QString& file) {
        After(600, [&launcher, file] {
            MainWindow& window = *launcher.mainWindow();
            DropMedia(window);
            After(400, [&window, file] { SaveAndEnd(window.frameGeometry(), file); });
        });
    };
    scenes.insert(QStringLiteral("main"), main);
    // The main window under a dark desktop palette.
    scenes.insert(QStringLiteral("maindark"), [main](AppLauncher& launcher, const QString& file) {
        QApplication::setPalette(DarkPalette());
        main(launcher, file);
    });
    scenes.insert(QStringLiteral("contextmenu"), [](AppLauncher& launcher, const QString& file) {
        After(600, [&launcher, file] {
            MainWindow& window = *launcher.mainWindow();
            DropMedia(window);
            After(500, [&window, file] {
                QRect area = window.frameGeometry();
                if (QWidget* popup = QApplication::activePopupWidget()) {
                    area = area.united(popup->frameGeometry());
                }
                SaveAndEnd(area, file);
            });
            ListViewControl* view = window.listView();
            const int row = window.selectedIndex() - 1;
            const QRect cell =
                view->visualRect(window.model().items.index(row, SharedCell::Filename));
            window.showContextMenu(view->viewport()->mapToGlobal(cell.center()));
        });
    });
    // A list with rows that will not join cleanly, the tool tip of the first
    // red mark shown (of the last mark when none is red).
    scenes.insert(QStringLiteral("marks"), [](AppLauncher& launcher, const QString& file) {
        After(600, [&launcher, file] {
            MainWindow& window = *launcher.mainWindow();
            DropMedia(window);
            After(400, [&window, file] {
                const ItemList& items = window.model().items;
                const QList<int> marked = items.markedRows();
                if (marked.isEmpty()) {
                    std::_Exit(4);
                }
                int row = marked.last();
                for (int position : marked) {
                    if (items.rowCheck(position).mark == RowCheck::Mark::Red) {
                        row = position;
                        break;
                    }
                }
                ListViewControl* view = window.listView();
                const QModelIndex name = items.index(row - 1, SharedCell::Filename);
                // The tip stands below the last row, so that no mark is hidden.
                const QRect cell = view->visualRect(name);
                const QRect last =
                    view->visualRect(items.index(items.count() - 1, SharedCell::Filename));
                QToolTip::showText(
                    view->viewport()->mapToGlobal(QPoint(cell.center().x(), last.bottom())),
                    name.data(Qt::ToolTipRole).toString(), view->viewport());
                After(600, [&window, file] {
                    QRect area = window.frameGeometry();
                    for (QWidget* top : QApplication::topLevelWidgets()) {
                        if (top->isVisible() && top->inherits("QTipLabel")) {
                            area = area.united(top->frameGeometry());
                        }
                    }
                    SaveAndEnd(area, file);
                });
            });
        });
    });
    return scenes;
}

}  // namespace

void PrepareScreenshotScene(AppLauncher& launcher) {
    const QString name = qEnvironmentVariable("VELMORA_SCREENSHOT_SCENE");
    const QString file = qEnvironmentVariable("VELMORA_SCREENSHOT_FILE");
    if (name.isEmpty() || file.isEmpty()) {
        return;
    }
    const QHash<QString, Scene> scenes = Scenes();
    const auto scene = scenes.find(name);
    if (scene == scenes.end()) {
        std::fprintf(stderr, "unknown screenshot scene %s\n", qPrintable(name));
        std::_Exit(2);
    }
    (*scene)(launcher, file);
    // A scene that cannot come about must not leave the program hanging.
    After(20000, [] { std::_Exit(3); });
}
