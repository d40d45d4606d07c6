#include "list/ReadAhead.h"

#include <QThread>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "media/Utf8Locale.h"

namespace {
std::atomic<int> runningOnWorkers{0};
std::atomic<int> workersSet{ReadAhead::kOnePerCore};

enum class ReadState { Waiting, Running, Done };
}  // namespace

// What the taker and the workers share; the workers' tasks hold it alive.
struct ReadAhead::Shared {
    ItemReader reader;
    QString listType;
    QStringList paths;
    std::mutex mutex;
    std::condition_variable doneOne;
    std::vector<ReadState> states;
    std::vector<std::optional<ItemReading>> readings;
    QThreadPool pool;

    // Claims the read at index for the caller; false when it was begun already.
    bool claim(int index) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (states[index] != ReadState::Waiting) {
            return false;
        }
        states[index] = ReadState::Running;
        return true;
    }

    void store(int index, ItemReading reading) {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            readings[index] = std::move(reading);
            states[index] = ReadState::Done;
        }
        doneOne.notify_all();
    }
};

ReadAhead::ReadAhead(QStringList paths, QString listType, Reader reader, int workers,
                     int aheadLimit)
    : ReadAhead(
          std::move(paths), std::move(listType),
          [reader = std::move(reader)](const QString& path, const QString& listType) {
              return ItemReading{reader(path, listType), nullptr};
          },
          workers, aheadLimit) {}

ReadAhead::ReadAhead(QStringList paths, QString listType, ItemReader reader, int workers,
                     int aheadLimit)
    : paths_(std::move(paths)),
      listType_(std::move(listType)),
      aheadLimit_(std::max(1, aheadLimit)),
      workers_(workers == kOnePerCore ? workersSet.load() : workers),
      shared_(std::make_shared<Shared>()) {
    // The media library turns file names into bytes through the C locale; it
    // is set here, once, and never from a worker.
    EnsureUtf8CLocale();
    shared_->reader = std::move(reader);
    shared_->listType = listType_;
    shared_->paths = paths_;
    shared_->states.assign(paths_.size(), ReadState::Waiting);
    shared_->readings.resize(paths_.size());
    if (workers_ == kOnePerCore) {
        workers_ = std::max(1, QThread::idealThreadCount());
    }
    shared_->pool.setMaxThreadCount(std::max(1, workers_));
}

ReadAhead::~ReadAhead() {
    // Reads not begun are dropped; the running ones end before the loop goes on.
    shared_->pool.clear();
    shared_->pool.waitForDone();
}

void ReadAhead::scheduleUpTo(int index) {
    if (workers_ <= 0) {
        return;
    }
    const int last = std::min(index, count() - 1);
    for (; scheduled_ <= last; ++scheduled_) {
        const int at = scheduled_;
        std::shared_ptr<Shared> shared = shared_;
        shared_->pool.start([shared, at] {
            if (!shared->claim(at)) {
                return;
            }
            ++runningOnWorkers;
            ItemReading reading = shared->reader(shared->paths.at(at), shared->listType);
            shared->store(at, std::move(reading));
            --runningOnWorkers;
        });
    }
}

ItemReading ReadAhead::takeReading(int index) {
    if (index < 0 || index >= count()) {
        return {};
    }
    scheduleUpTo(index + aheadLimit_);
    Shared& shared = *shared_;
    if (shared.claim(index)) {
        return shared.reader(paths_.at(index), listType_);
    }
    std::unique_lock<std::mutex> lock(shared.mutex);
    shared.doneOne.wait(lock, [&] { return shared.states[index] == ReadState::Done; });
    ItemReading reading = std::move(*shared.readings[index]);
    shared.readings[index].reset();
    return reading;
}

void ReadAhead::setWorkers(int workers) {
    workersSet = workers;
}

int ReadAhead::runningReads() {
    return runningOnWorkers.load();
}
