#include "list/ListCheck.h"

#include <QLocale>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <atomic>

#include "list/Columns.h"
#include "list/ItemList.h"
#include "media/Utf8Locale.h"

// One check: the rows it was started for, and what its workers share.
struct ListCheck::Run {
    QList<quint64> ids;
    QStringList paths;
    QString listType;
    ReadAhead::ItemReader reader;
    std::shared_ptr<std::atomic<int>> filesRead;
    std::atomic<bool> stopped{false};
    std::atomic<int> next{0};
    int applied = 0;
};

ListCheck::ListCheck(ItemList& items, QObject* parent)
    : QObject(parent), items_(items), filesRead_(std::make_shared<std::atomic<int>>(0)) {
    pool_.setMaxThreadCount(std::max(1, QThread::idealThreadCount()));
    connect(&items_, &ItemList::rowsCleared, this, &ListCheck::stop);
}

ListCheck::~ListCheck() {
    stop();
    pool_.waitForDone();
}

int ListCheck::filesRead() const {
    return filesRead_->load();
}

void ListCheck::start(const QString& listType) {
    stop();
    if (items_.count() == 0) {
        return;
    }
    auto run = std::make_shared<Run>();
    run->listType = listType;
    run->reader = reader_;
    run->filesRead = filesRead_;
    for (int position = 1; position <= items_.count(); ++position) {
        run->ids.append(items_.rowId(position));
        run->paths.append(items_.cell(position, SharedCell::Filepath));
    }
    run_ = run;
    // The media library turns file names into bytes through the C locale; it
    // is set here, on this thread, and never from a worker.
    EnsureUtf8CLocale();
    // The open returns and the list is shown before the first file is read.
    QTimer::singleShot(0, this, [this, run] { launch(run); });
}

void ListCheck::stop() {
    if (run_) {
        run_->stopped = true;
        run_.reset();
    }
    pool_.clear();
}

void ListCheck::launch(const std::shared_ptr<Run>& run) {
    if (run != run_) {
        return;
    }
    // Each worker takes the next row not yet taken, so the rows are read in
    // list order, the first row among the first.
    for (int worker = 0; worker < pool_.maxThreadCount(); ++worker) {
        pool_.start([this, run] {
            for (;;) {
                const int index = run->next++;
                if (run->stopped || index >= run->paths.size()) {
                    return;
                }
                ItemReading reading = run->reader(run->paths.at(index), run->listType);
                ++*run->filesRead;
                if (run->stopped) {
                    return;
                }
                std::shared_ptr<const JoinTraits> traits = std::move(reading.traits);
                QMetaObject::invokeMethod(
                    this, [this, run, index, traits] { apply(run, index, traits); },
                    Qt::QueuedConnection);
            }
        });
    }
}

void ListCheck::apply(const std::shared_ptr<Run>& run, int index,
                      std::shared_ptr<const JoinTraits> traits) {
    if (run != run_) {
        return;
    }
    const int position = items_.positionOfRow(run->ids.at(index));
    if (position > 0) {
        items_.setJoinTraits(position, std::move(traits));
    }
    if (++run->applied == run->ids.size()) {
        run_.reset();
        emit finished();
    }
}

QString DifferingRowsLine(const ItemList& items) {
    const QList<int> marked = items.markedRows();
    if (marked.isEmpty()) {
        return {};
    }
    constexpr qsizetype kNamed = 5;
    const QLocale locale;
    QStringList rows;
    for (qsizetype i = 0; i < std::min(kNamed, marked.size()); ++i) {
        rows.append(locale.toString(marked.at(i)));
    }
    QString positions;
    if (marked.size() > kNamed) {
        positions = rows.join(QStringLiteral(", ")) + QStringLiteral(" and ") +
                    locale.toString(marked.size() - kNamed) + QStringLiteral(" more");
    } else if (rows.size() > 1) {
        const QString last = rows.takeLast();
        positions = rows.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
    } else {
        positions = rows.first();
    }
    if (marked.size() == 1) {
        return QStringLiteral("1 file differs from the first: row ") + positions + u'.';
    }
    return locale.toString(marked.size()) + QStringLiteral(" files differ from the first: rows ") +
           positions + u'.';
}
