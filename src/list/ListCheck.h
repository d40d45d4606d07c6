#pragma once

#include <QObject>
#include <QString>
#include <QThreadPool>
#include <atomic>
#include <memory>

#include "list/ReadAhead.h"

class ItemList;

// The join check of a list opened from a list file, whose files the opening
// did not read. Once the open has returned and the list is shown, worker
// threads read each row's file, in list order, and each row gets its join
// traits (and so its mark) as its result comes; the cells keep the texts of
// the list file. A new list, a clear, another open or the end of the window
// ends the check: reads not begun are dropped, and the results of the running
// ones are thrown away. A row removed or built anew meanwhile is passed over.
class ListCheck : public QObject {
    Q_OBJECT
public:
    explicit ListCheck(ItemList& items, QObject* parent = nullptr);
    ~ListCheck() override;
    ListCheck(const ListCheck&) = delete;
    ListCheck& operator=(const ListCheck&) = delete;

    // Checks the rows as they stand now, for the list type, from the next
    // turn of the event loop on. A check still running is ended first.
    void start(const QString& listType);
    void stop();
    bool running() const { return run_ != nullptr; }

    // The files the checks of this object have read so far.
    int filesRead() const;

    // How a file is read (ReadItem unless set otherwise).
    void setReader(ReadAhead::ItemReader reader) { reader_ = std::move(reader); }

signals:
    // Every row of the check has its result.
    void finished();

private:
    struct Run;
    void launch(const std::shared_ptr<Run>& run);
    void apply(const std::shared_ptr<Run>& run, int index,
               std::shared_ptr<const JoinTraits> traits);

    ItemList& items_;
    ReadAhead::ItemReader reader_ = ReadItem;
    std::shared_ptr<Run> run_;
    std::shared_ptr<std::atomic<int>> filesRead_;
    QThreadPool pool_;
};

// The line that the explanation of the list's status adds when rows differ
// from the first: "3 files differ from the first: rows 4, 9 and 12." (the
// positions of the first five). Empty when no row is marked.
QString DifferingRowsLine(const ItemList& items);
