// Connects the main window's commands to the routines of the list, join and
// window modules.
#include <QDesktopServices>
#include <QUrl>

#include "platform/FileHelpers.h"
#include "ui/MainCommands.h"
#include "ui/MainWindow.h"

void WireMainCommands(MainWindow& window, MainCommands& c) {
    MainModel& model = window.model();
    (void)model;

    // Desktop: the file opens in whatever the user's system has for it.
    c.shellOpen = [](const QString& path) {
        if (!path.isEmpty()) {
            QDesktopServices::openUrl(QUrl::fromLocalFile(path));
        }
    };
    c.showFileProperties = [&window](const QString& path) {
        ShowFileProperties(path, static_cast<std::uint32_t>(window.winId()));
    };
}
