#pragma once

#include <QObject>

class QSocketNotifier;

// Turns the signals that ask a program run from a terminal or a script to
// stop (SIGINT from Ctrl-C, SIGTERM, SIGHUP) into a Qt signal on the thread
// of the event loop, where it is safe to act on it. While a watcher lives,
// those signals no longer end the process at once; the first one that came
// is kept. One watcher at a time.
class InterruptWatcher : public QObject {
    Q_OBJECT
public:
    explicit InterruptWatcher(QObject* parent = nullptr);
    ~InterruptWatcher() override;
    InterruptWatcher(const InterruptWatcher&) = delete;
    InterruptWatcher& operator=(const InterruptWatcher&) = delete;

    // The number of the first signal that came; 0 while none did.
    int signalNumber() const { return signalNumber_; }

    // The exit status a shell gives a program ended by that signal: 128 + its
    // number (130 for SIGINT).
    static int ExitStatusFor(int signalNumber) { return 128 + signalNumber; }

signals:
    // Once for each signal that came, in the event loop.
    void interrupted(int signalNumber);

private:
    void readSignals();

    QSocketNotifier* notifier_ = nullptr;
    int signalNumber_ = 0;
};
