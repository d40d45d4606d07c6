#pragma once

#include <QFrame>

class ClickableLabel;
class QLabel;

// The status bar of the main window: three panels side by side at their design
// widths. Panel 3 shows a picture and reports clicks; the other panels show
// text. Children (the progress bar, the cancel link) can be placed over them.
class StatusBarControl : public QFrame {
    Q_OBJECT
public:
    static constexpr int kHeightTwips = 300;
    static constexpr int kPanelWidthsTwips[3] = {1755, 4245, 290};

    explicit StatusBarControl(QWidget* parent = nullptr);

    // Panels count from 1.
    QLabel* panel(int number) const;
    int panelWidth(int number) const;  // pixels

signals:
    void panelClicked(int number);

private:
    QLabel* panels_[3] = {nullptr, nullptr, nullptr};
};
