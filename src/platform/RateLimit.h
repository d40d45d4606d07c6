#pragma once

#include <QtGlobal>
#include <functional>

// Decides whether something that may happen often (painting the window while
// a long loop runs) is due again: at most once per interval. The clock gives
// milliseconds; tests put their own in place of the monotonic one.
class RateLimit {
public:
    using Clock = std::function<qint64()>;

    explicit RateLimit(int intervalMs, Clock clock = {});

    // True when the interval has passed since the last time it was done; the
    // caller then does it, and the interval starts anew.
    bool due();
    // Records that it was done now, for a caller that had to do it anyway.
    void mark();
    // Milliseconds until it is due again (0 when it is due).
    int remainingMs() const;
    int intervalMs() const { return intervalMs_; }

private:
    int intervalMs_;
    Clock clock_;
    qint64 last_;
};
