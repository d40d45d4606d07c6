#include "join/RemakeProbeScan.h"

#include <atomic>
#include <thread>
#include <utility>

// What the scan's thread and the object share; the thread keeps it alive
// until it ends.
struct RemakeProbeScan::Scan {
    explicit Scan(QStringList list) : parts(std::move(list)) {}
    const QStringList parts;
    JoinStreamMap map;
    std::atomic<bool> stop{false};
    std::atomic<bool> finished{false};
};

RemakeProbeScan::RemakeProbeScan(QStringList parts)
    : scan_(std::make_shared<Scan>(std::move(parts))) {
    std::thread([scan = scan_] {
        scan->map = ScanJoinParts(scan->parts, [&scan] { return scan->stop.load(); });
        scan->finished.store(true, std::memory_order_release);
    }).detach();
}

RemakeProbeScan::~RemakeProbeScan() {
    scan_->stop.store(true);
}

const QStringList& RemakeProbeScan::parts() const {
    return scan_->parts;
}

bool RemakeProbeScan::finished() const {
    return scan_->finished.load(std::memory_order_acquire);
}

const JoinStreamMap& RemakeProbeScan::map() const {
    return scan_->map;
}
