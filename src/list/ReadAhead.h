#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

#include "media/ItemCells.h"

// Reads the files of an adding ahead of the row loop, on a pool of worker
// threads: for each path the cells that FillListItem writes (file system,
// frame reader, media library; a pure function of the file and the list
// type). The loop takes the cells in list order; a read that no worker has
// begun yet is done by the taker itself, so no core waits while another
// works. Only a bounded number of reads runs ahead of the last one taken.
//
// Ending the read-ahead (a cancel leaves the loop, or the loop is done) drops
// the reads that have not begun and waits for the running ones, whose cells
// are thrown away: nothing of them reaches the list, and no worker is left
// running.
class ReadAhead {
public:
    using ItemReader = std::function<ItemReading(const QString& path, const QString& listType)>;
    // A reader of the cells alone (the rows get no join traits).
    using Reader = std::function<ItemCellTexts(const QString& path, const QString& listType)>;

    static constexpr int kOnePerCore = -1;

    // workers kOnePerCore: the number set by setWorkers (one per core unless
    // set otherwise); 0: no workers, the taker reads every file itself.
    ReadAhead(QStringList paths, QString listType, ItemReader reader = ReadItem,
              int workers = kOnePerCore, int aheadLimit = 16);
    ReadAhead(QStringList paths, QString listType, Reader reader, int workers = kOnePerCore,
              int aheadLimit = 16);
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    const QString& listType() const { return listType_; }
    int count() const { return static_cast<int>(paths_.size()); }
    const QString& path(int index) const { return paths_.at(index); }

    // What was read of the path at index (from 0), waiting for its read if a
    // worker is at it. Each index is taken once, in rising order.
    ItemReading takeReading(int index);
    // The cells alone.
    ItemCellTexts take(int index) { return takeReading(index).cells; }

    // The reads running on workers of any read-ahead of the process now.
    static int runningReads();

    // The workers of each read-ahead made from now on: kOnePerCore (the
    // default) or a number, 0 for none (to measure the serial fill).
    static void setWorkers(int workers);

private:
    struct Shared;
    void scheduleUpTo(int index);

    QStringList paths_;
    QString listType_;
    int aheadLimit_;
    int workers_;
    int scheduled_ = 0;
    std::shared_ptr<Shared> shared_;
};
