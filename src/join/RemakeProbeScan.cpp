#include "join/RemakeProbeScan.h"

#include <utility>

RemakeProbeScan::RemakeProbeScan(QStringList parts)
    : parts_(std::move(parts)), worker_([this](const std::stop_token& stop) { scan(stop); }) {}

RemakeProbeScan::~RemakeProbeScan() {
    worker_.request_stop();
}

void RemakeProbeScan::scan(const std::stop_token& stop) {
    map_ = ScanJoinParts(parts_, [&stop] { return stop.stop_requested(); });
    finished_.store(true, std::memory_order_release);
}
