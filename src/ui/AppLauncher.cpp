#include "ui/AppLauncher.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>

#include "app/AppPaths.h"
#include "app/Settings.h"
#include "app/Startup.h"
#include "media/ListType.h"
#include "platform/RunCommand.h"
#include "platform/Shell.h"
#include "ui/MainWindow.h"
#include "ui/NewListWindow.h"
#include "ui/PreferencesWindow.h"
#include "ui/Splashscreen.h"
#include "ui/TipsWindow.h"

namespace {
bool checkBoxIsSet(QWidget* window, const char* name) {
    if (window == nullptr) {
        return false;
    }
    auto* box = window->findChild<QCheckBox*>(QString::fromLatin1(name));
    return box != nullptr && box->checkState() == Qt::Checked;
}

// A dialog is centred over its parent when it shows. Right after show() the
// window manager may not have placed the main window yet, so the dialogs of
// the start-up wait (a short, bounded time) until it is on the screen.
void waitUntilPlaced(QWidget* window) {
    // Without a window manager (the offscreen platform) a window is placed at once.
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        return;
    }
    constexpr int kLongestWaitMs = 1000;
    QElapsedTimer waited;
    waited.start();
    while (window->windowHandle() != nullptr && !window->windowHandle()->isExposed() &&
           waited.elapsed() < kLongestWaitMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    QCoreApplication::processEvents();
}
}  // namespace

AppLauncher::AppLauncher(Questions& questions, Clipboard& clipboard)
    : questions_(questions), mainWindow_(std::make_unique<MainWindow>(questions, clipboard)) {
    openSite = [](const QString& address) { ShellOpen(address, InstallFolder()); };
}

AppLauncher::~AppLauncher() {
    delete splash_.data();
}

Splashscreen* AppLauncher::splashscreen() const {
    return splash_.data();
}

void AppLauncher::start(const QStringList& arguments, const QString& listFile) {
    listFile_ = listFile;
    PrepareStartup(arguments, questions_);

    auto* splash = new Splashscreen();
    splash_ = splash;
    splash->handOver = [this] { handOver(); };
    splash->openSite = [this](const QString& address) {
        if (openSite) {
            openSite(address);
        }
    };

    // Both windows read their settings as they are created, and stay hidden
    // until the user opens them (the tips perhaps right after the hand-over).
    QDialog* tips = new TipsWindow(mainWindow_->model(), mainWindow_.get());
    QDialog* preferences = new PreferencesWindow(mainWindow_->model(), mainWindow_.get());
    for (QDialog* lasting : {tips, preferences}) {
        connect(lasting, &QDialog::finished, lasting, &QObject::deleteLater);
    }
    mainWindow_->tipsWindow = tips;
    mainWindow_->preferencesWindow = preferences;

    if (checkBoxIsSet(mainWindow_->preferencesWindow, "DoNotShowSplashscreenAtStartup")) {
        handOver();
        return;
    }
    splash->showSplash();
}

bool AppLauncher::openListFile() {
    if (listFile_.isEmpty()) {
        return false;
    }
    MainCommands& commands = mainWindow_->commands();
    // The file fills a list of the saved type, as a start-up without the New
    // List dialog makes it, so that a file of no known type still shows the
    // shared columns, as after File, Open List.
    RunCommand(commands.newItemList,
               ListTypeText(Settings::NewListTypeIsMpeg() ? ListType::Mpeg : ListType::Mp3));
    return commands.openListFile && commands.openListFile(listFile_);
}

void AppLauncher::handOver() {
    if (handedOver_) {
        return;
    }
    handedOver_ = true;
    if (splash_) {
        splash_->timer()->stop();
        splash_->close();
    }
    mainWindow_->show();
    waitUntilPlaced(mainWindow_.get());
    NewListAtStartup = -1;
    // A list file given to the program is the list the user wants: the New
    // List dialog, which asks for the type of an empty list, would only be in
    // the way. When the file cannot be opened, the start goes on as without it.
    if (openListFile()) {
        NewListAtStartup = 0;
    } else {
        mainWindow_->showNewList();
    }
    QDialog* tips = mainWindow_->tipsWindow;
    if (tips != nullptr && checkBoxIsSet(tips, "ShowAtStartup")) {
        tips->show();
    }
}
