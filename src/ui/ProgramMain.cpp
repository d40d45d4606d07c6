#include "ui/ProgramMain.h"

#include <QApplication>
#include <QStringList>

#include "app/IniFile.h"
#include "app/Startup.h"
#include "app/Version.h"
#include "media/Utf8Locale.h"
#include "ui/AppLauncher.h"
#include "ui/MainWindow.h"
#include "ui/ProgramLook.h"
#include "ui/QtClipboard.h"
#include "ui/QtQuestions.h"

int RunProgram(int argc, char** argv, const std::function<void(AppLauncher&)>& beforeStart) {
    // File names beyond ASCII must reach the media library intact.
    EnsureUtf8CLocale();
    // The debug switch is looked for on the command line as the process
    // received it: Qt takes its own options (-style and so on) out of argv.
    const QStringList commandLine = CommandLineOf(argc, argv);
    QApplication app(argc, argv);
    QApplication::setApplicationName(Version::kProgramTitle);
    QApplication::setApplicationVersion(Version::text());
    // Message boxes and file dialogs too carry the program's font and icon;
    // the desktop matches the windows to the program's desktop entry.
    QApplication::setFont(ProgramLook::font());
    QApplication::setWindowIcon(ProgramLook::icon());
    QGuiApplication::setDesktopFileName(QStringLiteral("velmora"));
    // The program ends only through its own exits (File, Exit; the answered
    // close question): closing the splash before the main window shows must
    // not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    QtQuestions questions;
    QtClipboard clipboard;
    // A setting that could not be written is not kept silently.
    SetIniWriteFailureReporter([&questions](const QString& file, const QString& reason) {
        questions.msgBox(IniWriteFailureMessage(file, reason), Msg::OkOnly + Msg::Critical);
    });
    AppLauncher launcher(questions, clipboard);
    questions.setParent(launcher.mainWindow());
    // Ending the program is immediate: no window's closing step runs any more,
    // so a tips window still open doesn't write its settings.
    launcher.mainWindow()->exitProgram = EndProcessAtOnce;

    if (beforeStart) {
        beforeStart(launcher);
    }
    // A list file named on the command line (by a file manager, say) opens
    // once the start-up has shown the main window.
    launcher.start(commandLine, ListFileOfArguments(QApplication::arguments()));
    return QApplication::exec();
}
