#include <gtest/gtest.h>

#include <QThread>
#include <atomic>
#include <mutex>
#include <set>

#include "list/ReadAhead.h"

namespace {

QStringList Paths(int count) {
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(QStringLiteral("/music/%1.mp3").arg(i));
    }
    return paths;
}

// A reader that takes its time and records which files it read on which thread.
struct SlowReader {
    int delayMs = 0;
    std::atomic<int> begun{0};
    std::atomic<int> ended{0};
    std::mutex mutex;
    std::set<Qt::HANDLE> threads;

    ReadAhead::Reader reader() {
        return [this](const QString& path, const QString& type) {
            ++begun;
            {
                const std::lock_guard<std::mutex> lock(mutex);
                threads.insert(QThread::currentThreadId());
            }
            if (delayMs > 0) {
                QThread::msleep(delayMs);
            }
            ItemCellTexts cells(4);
            cells[0] = path;
            cells[1] = type;
            ++ended;
            return cells;
        };
    }
};

}  // namespace

TEST(ReadAhead, TakenInOrder_EachPathGetsItsOwnCells) {
    SlowReader slow;
    slow.delayMs = 1;
    ReadAhead files(Paths(200), QStringLiteral("MP3"), slow.reader(), 2, 8);
    for (int i = 0; i < files.count(); ++i) {
        const ItemCellTexts cells = files.take(i);
        ASSERT_EQ(cells.size(), 4);
        EXPECT_EQ(cells[0].value_or(QString()), QStringLiteral("/music/%1.mp3").arg(i));
        EXPECT_EQ(cells[1].value_or(QString()), "MP3");
        EXPECT_FALSE(cells[2].has_value());
    }
    EXPECT_EQ(slow.begun.load(), 200);
}

TEST(ReadAhead, ReadsRunOnMoreThanOneThread) {
    SlowReader slow;
    slow.delayMs = 3;
    ReadAhead files(Paths(40), QStringLiteral("MP3"), slow.reader(), 2, 8);
    for (int i = 0; i < files.count(); ++i) {
        files.take(i);
    }
    EXPECT_GE(slow.threads.size(), 2u);
}

TEST(ReadAhead, EndedAfterAGivenRow_DropsLaterReadsAndLeavesNoWorkerRunning) {
    SlowReader slow;
    slow.delayMs = 40;
    {
        ReadAhead files(Paths(500), QStringLiteral("MP3"), slow.reader(), 2, 6);
        for (int i = 0; i < 3; ++i) {
            files.take(i);
        }
        // The workers are busy with the reads ahead when the loop stops.
        EXPECT_GT(ReadAhead::runningReads(), 0);
    }
    EXPECT_EQ(ReadAhead::runningReads(), 0);
    EXPECT_EQ(slow.begun.load(), slow.ended.load());
    // Only the few reads ahead of row 3 were ever begun, not the other 490.
    EXPECT_LE(slow.begun.load(), 3 + 6 + 2);
    const int begun = slow.begun.load();
    QThread::msleep(100);
    EXPECT_EQ(slow.begun.load(), begun);
}

TEST(ReadAhead, IndexOutsideThePaths_GivesNoCells) {
    ReadAhead files(Paths(2), QStringLiteral("MP3"));
    EXPECT_TRUE(files.take(-1).isEmpty());
    EXPECT_TRUE(files.take(5).isEmpty());
}
