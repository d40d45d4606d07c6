#pragma once

#include <QStringList>
#include <memory>

#include "join/RemakeProbe.h"

// The scan of a join's parts on a thread of its own, so that the window and
// the run go on meanwhile. The run starts it with the first script, whose
// copy reads the same bytes at the same time (the system's file cache serves
// the second reader), and asks for the map before the remake starts. The
// destructor tells a scan still running to stop and does not wait for it: the
// thread ends at its next read and drops what it found, so that a cancel or a
// close never waits on a slow disk.
class RemakeProbeScan {
public:
    explicit RemakeProbeScan(QStringList parts);
    ~RemakeProbeScan();
    RemakeProbeScan(const RemakeProbeScan&) = delete;
    RemakeProbeScan& operator=(const RemakeProbeScan&) = delete;

    const QStringList& parts() const;
    // True once the map is there (whole, or stopped short).
    bool finished() const;
    // The map: only once finished.
    const JoinStreamMap& map() const;

private:
    struct Scan;
    std::shared_ptr<Scan> scan_;
};
