#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
struct MainModel;

// The About window: program name and version, the legal line, the link to
// the web site and the credits.
class AboutWindow : public QDialog {
    Q_OBJECT
public:
    explicit AboutWindow(MainModel& model, QWidget* parent = nullptr);

    // The lines of the credits box, joined by CR LF.
    static QString CreditsText();
    // The legal line under the version.
    static QString LegalLine();

    // The click on LinkLabel: opens the web site.
    void OpenSite();
    // The click on cmdCredits: the credits box.
    void ShowCredits();

private:
    MainModel& model_;
};
