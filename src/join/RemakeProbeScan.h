#pragma once

#include <QStringList>
#include <atomic>
#include <stop_token>
#include <thread>

#include "join/RemakeProbe.h"

// The scan of a join's parts on a thread of its own, so that the window and
// the run go on meanwhile. The run starts it with the first script, whose
// copy reads the same bytes at the same time (the system's file cache serves
// the second reader), and asks for the map before the remake starts. The
// destructor ends a scan still running and waits for it: a read of a
// regular file ends within a buffer's time.
class RemakeProbeScan {
public:
    explicit RemakeProbeScan(QStringList parts);
    ~RemakeProbeScan();
    RemakeProbeScan(const RemakeProbeScan&) = delete;
    RemakeProbeScan& operator=(const RemakeProbeScan&) = delete;

    const QStringList& parts() const { return parts_; }
    // True once the map is there (whole, or stopped short).
    bool finished() const { return finished_.load(std::memory_order_acquire); }
    // The map: only once finished.
    const JoinStreamMap& map() const { return map_; }

private:
    void scan(const std::stop_token& stop);

    const QStringList parts_;
    JoinStreamMap map_;
    std::atomic<bool> finished_{false};
    // Last, so that it ends before the members it writes.
    std::jthread worker_;
};
