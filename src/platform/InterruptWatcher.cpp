#include "platform/InterruptWatcher.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#include <QSocketNotifier>
#include <cerrno>

namespace {

// The pipe from the signal handler to the event loop: the handler may only
// write, so it writes the signal's number as one byte.
int signalPipe[2] = {-1, -1};

constexpr int kWatchedSignals[] = {SIGINT, SIGTERM, SIGHUP};

void onSignal(int number) {
    const int saved = errno;
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = saved;
}

void setHandler(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}

}  // namespace

InterruptWatcher::InterruptWatcher(QObject* parent) : QObject(parent) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        signalPipe[0] = signalPipe[1] = -1;
        return;
    }
    notifier_ = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &InterruptWatcher::readSignals);
    for (const int number : kWatchedSignals) {
        setHandler(number, onSignal);
    }
}

InterruptWatcher::~InterruptWatcher() {
    for (const int number : kWatchedSignals) {
        setHandler(number, SIG_DFL);
    }
    delete notifier_;
    for (int& end : signalPipe) {
        if (end >= 0) {
            ::close(end);
            end = -1;
        }
    }
}

void InterruptWatcher::readSignals() {
    char byte = 0;
    while (::read(signalPipe[0], &byte, 1) == 1) {
        const int number = static_cast<unsigned char>(byte);
        if (signalNumber_ == 0) {
            signalNumber_ = number;
        }
        emit interrupted(number);
    }
}
