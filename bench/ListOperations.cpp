// The list routines on long lists: list files, totals, duplicate and dead-file
// removal, the list text for the clipboard, and the sort beside the text sort
// it replaced.
#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <numeric>
#include <random>

#include "app/AppPaths.h"
#include "list/ClipboardModule.h"
#include "list/Columns.h"
#include "list/ListFunctions.h"
#include "list/ListTotals.h"
#include "list/MainModel.h"
#include "list/SortList.h"
#include "media/ItemCells.h"
#include "platform/Clipboard.h"
#include "platform/Questions.h"
#include "support/MemoryClipboard.h"

namespace {

// Answers every question with OK and every dialog with the path set in it.
class FixedAnswers : public Questions {
public:
    int msgBox(const QString&, int, const QString&) override { return Msg::Ok; }
    void showOpen(CommonDialog& d) override { answer(d); }
    void showSave(CommonDialog& d) override { answer(d); }
    QString path;

private:
    void answer(CommonDialog& d) {
        d.fileName = path;
        d.fileTitle = path.section(u'/', -1);
    }
};

struct Bench {
    Bench() {
        SetAppDataFolder(folder.path());
        NewItemList(model, QStringLiteral("MP3"));
    }
    QTemporaryDir folder;
    FixedAnswers questions;
    MemoryClipboard clipboard;
    MainModel model{questions, clipboard};
};

// Rows as the media reader writes them. pathOf gives the path of row i.
QList<QStringList> mp3Rows(int count, const std::function<QString(int)>& pathOf) {
    QList<QStringList> rows;
    rows.reserve(count);
    const QLocale locale;
    for (int i = 0; i < count; ++i) {
        const QString path = pathOf(i);
        rows.append({path.section(u'/', -1), locale.toString(3000 + i % 9000) + " KB",
                     "3/4/2021 9:15:02 PM", path, "Artist " + QString::number(i % 50),
                     "Title " + QString::number(i), "Album " + QString::number(i % 200), "1999",
                     "Rock", QString::number(120 + i % 300) + " seconds", "128 kbps",
                     "44100 (Stereo)"});
    }
    return rows;
}

QString uniquePath(int i) {
    return QStringLiteral("/music/album %1/track %2.mp3").arg(i / 12).arg(i);
}

void fill(MainModel& model, const QList<QStringList>& rows) {
    model.items.clearRows();
    model.items.appendRows(rows);
}

void BM_SaveListFile(benchmark::State& state) {
    Bench b;
    fill(b.model, mp3Rows(static_cast<int>(state.range(0)), uniquePath));
    b.model.state.setListFileName(b.folder.filePath("list.vlr"));
    for (auto _ : state) {
        SaveList(b.model, 0);
    }
    state.counters["bytes"] = static_cast<double>(QFileInfo(b.folder.filePath("list.vlr")).size());
}
BENCHMARK(BM_SaveListFile)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_OpenListFile(benchmark::State& state) {
    Bench b;
    fill(b.model, mp3Rows(static_cast<int>(state.range(0)), uniquePath));
    b.model.state.setListFileName(b.folder.filePath("list.vlr"));
    SaveList(b.model, 0);
    b.questions.path = b.folder.filePath("list.vlr");
    for (auto _ : state) {
        OpenList(b.model);
    }
    if (b.model.items.count() != state.range(0)) {
        state.SkipWithError("the list did not open whole");
    }
}
BENCHMARK(BM_OpenListFile)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_UpdateListTotals(benchmark::State& state) {
    Bench b;
    fill(b.model, mp3Rows(static_cast<int>(state.range(0)), uniquePath));
    for (auto _ : state) {
        UpdateListTotals(b.model);
    }
    if (b.model.state.listStatus() != QLatin1String("Green")) {
        state.SkipWithError("unexpected status");
    }
}
BENCHMARK(BM_UpdateListTotals)->Arg(100000)->Unit(benchmark::kMillisecond);

// An MP3 list whose Hertz cells differ in the last row: the grading has to
// build and search the joined text.
void BM_UpdateListTotalsOrange(benchmark::State& state) {
    Bench b;
    QList<QStringList> rows = mp3Rows(static_cast<int>(state.range(0)), uniquePath);
    rows.last()[11] = QStringLiteral("48000 (Stereo)");
    fill(b.model, rows);
    for (auto _ : state) {
        UpdateListTotals(b.model);
    }
    if (b.model.state.listStatus() != QLatin1String("Orange")) {
        state.SkipWithError("unexpected status");
    }
}
BENCHMARK(BM_UpdateListTotalsOrange)->Arg(100000)->Unit(benchmark::kMillisecond);

// Half of the rows repeat a path of the other half.
void BM_RemoveDuplicatedFiles(benchmark::State& state) {
    Bench b;
    const int count = static_cast<int>(state.range(0));
    const QList<QStringList> rows =
        mp3Rows(count, [](int i) { return uniquePath(i % 2 == 0 ? i : i - 1); });
    for (auto _ : state) {
        state.PauseTiming();
        fill(b.model, rows);
        state.ResumeTiming();
        RemoveDuplicatedFiles(b.model);
    }
    if (b.model.items.count() != count / 2) {
        state.SkipWithError("wrong number of rows removed");
    }
    state.SetComplexityN(count);
}
BENCHMARK(BM_RemoveDuplicatedFiles)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Every other row names a file that exists; the rest name files that don't.
void BM_RemoveDeadFiles(benchmark::State& state) {
    Bench b;
    const int count = static_cast<int>(state.range(0));
    QDir(b.folder.path()).mkdir("media");
    constexpr int kLiveFiles = 1000;
    for (int i = 0; i < kLiveFiles; ++i) {
        QFile f(b.folder.filePath(QStringLiteral("media/live %1.mp3").arg(i)));
        if (f.open(QIODevice::WriteOnly)) {
            f.write("x");
        }
    }
    const QString media = b.folder.filePath("media");
    const QList<QStringList> rows = mp3Rows(count, [&](int i) {
        return i % 2 == 0 ? QStringLiteral("%1/live %2.mp3").arg(media).arg(i % kLiveFiles)
                          : QStringLiteral("%1/dead %2.mp3").arg(media).arg(i);
    });
    for (auto _ : state) {
        state.PauseTiming();
        fill(b.model, rows);
        state.ResumeTiming();
        RemoveDeadFiles(b.model);
    }
    if (b.model.items.count() != count / 2) {
        state.SkipWithError("wrong number of rows removed");
    }
}
BENCHMARK(BM_RemoveDeadFiles)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_CopyList(benchmark::State& state) {
    Bench b;
    fill(b.model, mp3Rows(static_cast<int>(state.range(0)), uniquePath));
    for (auto _ : state) {
        CopyList(b.model);
    }
    state.counters["chars"] = static_cast<double>(b.clipboard.text().size());
}
BENCHMARK(BM_CopyList)->Arg(100000)->Unit(benchmark::kMillisecond);

// The peer of the sorts: the text sort the Sort Wizard had before it sorted
// by what a column means. Each cell's text is case-folded once, the folded
// texts are compared code unit by code unit, and the sort is stable.
void textSortPeer(ItemList& items, int column) {
    const int rows = items.count();
    QStringList keys;
    keys.reserve(rows);
    for (int i = 1; i <= rows; ++i) {
        keys.append(items.cell(i, column).toCaseFolded());
    }
    QList<int> order(rows);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return QString::compare(keys.at(a), keys.at(b), Qt::CaseSensitive) < 0;
    });
    QList<int> positions;
    positions.reserve(rows);
    for (int index : order) {
        positions.append(index + 1);
    }
    items.reorder(positions);
}

// Rows in a shuffled order, sorted once by a column: by the Sort Wizard's
// routine, or by the text sort peer.
void sortBench(benchmark::State& state, int column, bool peer,
               const std::function<void(QStringList&, int)>& change = {}) {
    Bench b;
    QList<QStringList> rows = mp3Rows(static_cast<int>(state.range(0)), uniquePath);
    if (change) {
        for (int i = 0; i < rows.size(); ++i) {
            change(rows[i], i);
        }
    }
    std::shuffle(rows.begin(), rows.end(), std::mt19937(42));
    for (auto _ : state) {
        state.PauseTiming();
        fill(b.model, rows);
        state.ResumeTiming();
        if (peer) {
            textSortPeer(b.model.items, column);
        } else {
            SortList(b.model, column, 0);
        }
    }
}

// Filename in natural order, beside the text sort of the same column.
void BM_SortByFilename(benchmark::State& state) {
    sortBench(state, SharedCell::Filename, false);
}
BENCHMARK(BM_SortByFilename)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_SortByFilenameTextPeer(benchmark::State& state) {
    sortBench(state, SharedCell::Filename, true);
}
BENCHMARK(BM_SortByFilenameTextPeer)->Arg(100000)->Unit(benchmark::kMillisecond);

// Duration by its seconds, beside the text sort of the same column.
void BM_SortByDuration(benchmark::State& state) {
    sortBench(state, Mp3Cell::Duration, false);
}
BENCHMARK(BM_SortByDuration)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_SortByDurationTextPeer(benchmark::State& state) {
    sortBench(state, Mp3Cell::Duration, true);
}
BENCHMARK(BM_SortByDurationTextPeer)->Arg(100000)->Unit(benchmark::kMillisecond);

// Date Modified by date and time, each cell a different time in the form the
// cells are written in: every cell is parsed in the locale's form.
void BM_SortByDateModified(benchmark::State& state) {
    const QDateTime start(QDate(2021, 3, 4), QTime(21, 15));
    sortBench(state, SharedCell::DateModified, false, [&](QStringList& row, int i) {
        row[SharedCell::DateModified] = FileDateText(start.addSecs(i * 61));
    });
}
BENCHMARK(BM_SortByDateModified)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_SortByDateModifiedTextPeer(benchmark::State& state) {
    const QDateTime start(QDate(2021, 3, 4), QTime(21, 15));
    sortBench(state, SharedCell::DateModified, true, [&](QStringList& row, int i) {
        row[SharedCell::DateModified] = FileDateText(start.addSecs(i * 61));
    });
}
BENCHMARK(BM_SortByDateModifiedTextPeer)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
