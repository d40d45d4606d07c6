// Velmora: keeps an ordered list of MP3 or MPEG files, grades how well they
// fit together, and joins them into one file with external tools.
#include <QApplication>
#include <QStringList>
#include <cstdio>
#include <cstdlib>

#include "app/Version.h"
#include "media/Utf8Locale.h"
#include "ui/AppLauncher.h"
#include "ui/MainWindow.h"
#include "ui/QtClipboard.h"
#include "ui/QtQuestions.h"
#include "ui/ScreenshotScenes.h"

int main(int argc, char** argv) {
    // File names beyond ASCII must reach the media library intact.
    EnsureUtf8CLocale();
    QApplication app(argc, argv);
    QApplication::setApplicationName(Version::kProgramTitle);
    QApplication::setApplicationVersion(Version::text());
    // The program ends only through its own exits (File, Exit; the answered
    // close question): closing the splash before the main window shows must
    // not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    QtQuestions questions;
    QtClipboard clipboard;
    AppLauncher launcher(questions, clipboard);
    questions.setParent(launcher.mainWindow());
    // Ending the program is immediate: no window's closing step runs any more,
    // so a tips window still open doesn't write its settings.
    launcher.mainWindow()->exitProgram = [] {
        std::fflush(nullptr);
        std::_Exit(0);
    };

    PrepareScreenshotScene(launcher);
    launcher.start(QApplication::arguments());
    return QApplication::exec();
}
