#pragma once

#include <QDialog>
#include <memory>

class JoinRun;
class JoinWizardState;
class QAction;
class QGroupBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QTimer;
struct MainModel;

// The Join Wizard: the window of a running join. It owns the run and the
// run's state; its two timers drive the run (Timer, 10 ms: tick; ElapsedTimer,
// 1 s: the clock) while the state says they are on, and it shows the state
// and nothing of its own. CancelButton and the Options menu are forwarded to
// the run. The close box and Escape act as a click on CancelButton, so that a
// running join is never left behind unattended.
class JoinWizard : public QDialog {
    Q_OBJECT
public:
    explicit JoinWizard(MainModel& model, QWidget* parent = nullptr);
    ~JoinWizard() override;

    // The load step of the run (the first script starts); done once, when
    // the window is first shown.
    void Load();

    JoinRun& run() { return *run_; }
    JoinWizardState& state() { return *state_; }

    // The click on OptionsButton: the pop-up menu at the button's top left.
    void ShowOptionsMenu();
    QMenu* optionsMenu() const { return optionsMenu_; }

    // Shows a join wizard modally and returns when the join is over and the
    // window closed.
    static void RunJoin(MainModel& model, QWidget* parent);

    // The family of the window's font: Verdana, or the closest present.
    static QString FontFamily();

    void done(int result) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showState();
    void syncTimers();

    MainModel& model_;
    std::unique_ptr<JoinWizardState> state_;
    std::unique_ptr<JoinRun> run_;
    QTimer* timer_ = nullptr;
    QTimer* elapsedTimer_ = nullptr;
    QLabel* headerText_ = nullptr;
    QLabel* headerSubText_ = nullptr;
    QGroupBox* frame1_ = nullptr;
    QLabel* elapsedTime_ = nullptr;
    QLabel* elapsedTimeLabel_ = nullptr;
    QLabel* writtenSize_ = nullptr;
    QLabel* writtenSizeLabel_ = nullptr;
    QLabel* lblOperation_ = nullptr;
    QProgressBar* progressBar_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* optionsButton_ = nullptr;
    QPushButton* ford_ = nullptr;
    QMenu* optionsMenu_ = nullptr;
    QAction* launchFile_ = nullptr;
    QAction* openFolder_ = nullptr;
    QAction* separator_ = nullptr;
    QAction* setID3Tag_ = nullptr;
    bool loaded_ = false;
    bool closeRequested_ = false;
};
