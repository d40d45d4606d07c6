#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <memory>

class Clipboard;
class MainWindow;
class Questions;
class Splashscreen;

// The start of the program: the splash screen's load step and the hand-over
// to the main window, the first list and the tips.
class AppLauncher : public QObject {
    Q_OBJECT
public:
    AppLauncher(Questions& questions, Clipboard& clipboard);
    ~AppLauncher() override;

    // The load step: prepares the per-user folder, the debug log and the
    // settings, creates the tips and preferences windows hidden, then shows
    // the splash, or hands over at once when the splash is switched off.
    // listFile, when not empty, is the list file that the hand-over opens.
    void start(const QStringList& arguments, const QString& listFile = QString());

    // Closes the splash, shows the main window, then opens the list file of
    // the command line or, when there is none or it cannot be opened, shows
    // the NewList window (waited for), then the tips when the user wants them
    // at start-up. Runs once however often it is called.
    void handOver();

    MainWindow* mainWindow() const { return mainWindow_.get(); }
    Splashscreen* splashscreen() const;
    bool handedOver() const { return handedOver_; }

    // Opens web pages and files with the desktop's programs; tests record.
    std::function<void(const QString& address)> openSite;

private:
    // Opens the list file of the command line as File, Open List would. True
    // when the list now holds it.
    bool openListFile();

    Questions& questions_;
    std::unique_ptr<MainWindow> mainWindow_;
    QPointer<Splashscreen> splash_;
    bool handedOver_ = false;
    QString listFile_;
};
