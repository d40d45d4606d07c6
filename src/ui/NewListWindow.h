#pragma once

#include <QDialog>
#include <functional>

class QCheckBox;
class QPushButton;
class QRadioButton;

// -1 while the run has no list yet: the NewList window may then be left only
// by creating one. Set by the start-up's hand-over, cleared by CreateNewList.
extern short NewListAtStartup;

// The NewList window: picks the type of a new list. It has three faces: at
// start-up with "Do not ask me again" set it creates the list at once and is
// never seen; at start-up otherwise it can't be cancelled or closed; opened by
// the user it can be cancelled and hides the check box.
class NewListWindow : public QDialog {
    Q_OBJECT
public:
    explicit NewListWindow(QWidget* parent = nullptr);

    // Creates the new list of the given type ("MP3" or "MPEG").
    std::function<void(const QString& listType)> createList;

    // Loads the window and, unless the load created the list already, shows it
    // modally until it closes.
    void run();
    // True when the load step created the list without showing the window.
    bool skipped() const { return skipped_; }

    void createNewList();

    QRadioButton* optionMP3() const { return optionMP3_; }
    QRadioButton* optionMPEG() const { return optionMPEG_; }
    QCheckBox* doNotAskMeAgain() const { return doNotAskMeAgain_; }

    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void load();
    void getNewListSettings();
    void saveNewListSettings();

    QRadioButton* optionMP3_ = nullptr;
    QRadioButton* optionMPEG_ = nullptr;
    QCheckBox* doNotAskMeAgain_ = nullptr;
    QPushButton* create_ = nullptr;
    QPushButton* cancel_ = nullptr;
    bool skipped_ = false;
};
