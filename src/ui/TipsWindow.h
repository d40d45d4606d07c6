#pragma once

#include <QDialog>
#include <functional>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
struct MainModel;

// The "Tip of the day" window. When it is created it reads the ShowAtStartup
// setting and picks a first tip; when it closes it writes the setting back.
// The program creates one hidden at start-up and shows it without waiting
// when the user asked for tips at start-up.
class TipsWindow : public QDialog {
    Q_OBJECT
public:
    explicit TipsWindow(MainModel& model, QWidget* parent = nullptr);

    // The number of the tip for Count tips and a random r with 0 <= r < 1:
    // Count x r in single precision, rounded half to even, and 0 becomes 1.
    static int PickTipNumber(short count, double r);

    // The random numbers in [0, 1) used by the next tip; a fresh generator
    // seeded from the clock on every pick when none is set (tests set one).
    static void SetRandomSource(std::function<double()> source);

    // The NextTipButton command: picks a tip and shows it.
    void NextTip();

    void done(int result) override;

private:
    MainModel& model_;
    QPlainTextEdit* tipText_ = nullptr;
    QCheckBox* showAtStartup_ = nullptr;
    QPushButton* nextTipButton_ = nullptr;
    QPushButton* closeButton_ = nullptr;
};
