#include "platform/RateLimit.h"

#include <QElapsedTimer>
#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

RateLimit::RateLimit(int intervalMs, Clock clock)
    : intervalMs_(intervalMs), clock_(std::move(clock)) {
    if (!clock_) {
        auto timer = std::make_shared<QElapsedTimer>();
        timer->start();
        clock_ = [timer] { return timer->elapsed(); };
    }
    // Due at once: the first time is never held back.
    last_ = clock_() - intervalMs_;
}

bool RateLimit::due() {
    if (remainingMs() > 0) {
        return false;
    }
    mark();
    return true;
}

void RateLimit::mark() {
    last_ = clock_();
}

int RateLimit::remainingMs() const {
    const qint64 left = last_ + intervalMs_ - clock_();
    return static_cast<int>(std::clamp<qint64>(left, 0, std::numeric_limits<int>::max()));
}
