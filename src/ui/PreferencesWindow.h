#pragma once

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;
struct MainModel;

// The Preferences window: whether the splash screen and the New List dialog
// come at start-up, the default list type, and whether MP3 joins write tags
// and chapters into the joined file. It reads the settings when it
// is created and writes them back whenever it closes, by any way; there is no
// way to leave it without saving. The program creates one hidden at start-up,
// so the first opening in a run shows the values of the start of the run.
class PreferencesWindow : public QDialog {
    Q_OBJECT
public:
    explicit PreferencesWindow(MainModel& model, QWidget* parent = nullptr);

    // Every way out (CloseButton, the close box, Escape) ends here.
    void done(int result) override;

private:
    void getPreferences();
    void savePreferences();

    MainModel& model_;
    QLabel* headerText_ = nullptr;
    QLabel* headerSubText_ = nullptr;
    QGroupBox* newListFrame_ = nullptr;
    QCheckBox* doNotShowSplash_ = nullptr;
    QCheckBox* doNotShowNewList_ = nullptr;
    QRadioButton* typeMp3_ = nullptr;
    QRadioButton* typeMpeg_ = nullptr;
    QCheckBox* writeTagsAndChapters_ = nullptr;
    QPushButton* closeButton_ = nullptr;
    QPushButton* ford_ = nullptr;
};
