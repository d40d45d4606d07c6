// Adding real MP3 files through the Add Files window's path: the file dialog
// answers with a folder and its file names, AddFiles runs its loop with the
// event turn after each row, and the main window is shown (offscreen) with
// the list view attached, so rows, bar and figures are painted as they are
// for a user. Reported in milliseconds per row, beside the media library
// alone (on one thread and on two) and FillListItem alone on the same files
// in the same run, with the fill on worker threads (the program's way) and
// without (serial). The last benchmark holds 100,000 rows and reports the
// process's memory.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "BenchDoubles.h"
#include "Mp3Corpus.h"
#include "app/AppPaths.h"
#include "list/AddFilesModule.h"
#include "list/FillListItem.h"
#include "list/ListFunctions.h"
#include "list/ReadAhead.h"
#include "media/MediaInfoC.h"
#include "media/Utf8Locale.h"
#include "ui/MainWindow.h"

namespace {

Mp3Corpus& Files(int count) {
    static std::map<int, std::unique_ptr<Mp3Corpus>> corpora;
    auto& corpus = corpora[count];
    if (!corpus) {
        corpus = std::make_unique<Mp3Corpus>(count);
    }
    return *corpus;
}

QTemporaryDir& AppData() {
    static QTemporaryDir dir;
    return dir;
}

// The main window with an MP3 list, shown at its design size.
struct Window {
    AnsweringQuestions questions;
    NoClipboard clipboard;
    MainWindow window{questions, clipboard};

    explicit Window(const Mp3Corpus& corpus) {
        SetAppDataFolder(AppData().path());
        NewItemList(window.model(), QStringLiteral("MP3"));
        questions.answer = corpus.folder() + QChar(0) + corpus.names().join(QChar(0));
        window.show();
        window.setClientSize(QSize(441, 336));
        QApplication::processEvents();
    }
};

void SetPerRow(benchmark::State& state, double totalMs, int rows) {
    state.counters["ms_per_row"] = totalMs / rows;
    state.counters["rows"] = rows;
}

void BM_AddFilesWindow(benchmark::State& state, int workers) {
    const int rows = static_cast<int>(state.range(0));
    Mp3Corpus& corpus = Files(rows);
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    ReadAhead::setWorkers(workers);
    Window w(corpus);
    MainModel& model = w.window.model();
    double totalMs = 0;
    for (auto _ : state) {
        state.PauseTiming();
        ClearList(model, 0);
        QApplication::processEvents();
        state.ResumeTiming();
        QElapsedTimer clock;
        clock.start();
        AddFiles(model);
        totalMs += static_cast<double>(clock.nsecsElapsed()) / 1e6;
    }
    ReadAhead::setWorkers(ReadAhead::kOnePerCore);
    if (model.items.count() != rows || model.items.cell(1, 10) != QStringLiteral("128 kbps")) {
        state.SkipWithError("the rows were not added as expected");
    }
    SetPerRow(state, totalMs / static_cast<double>(state.iterations()), rows);
}

void BM_AddFilesWindowParallel(benchmark::State& state) {
    BM_AddFilesWindow(state, ReadAhead::kOnePerCore);
}

void BM_AddFilesWindowSerial(benchmark::State& state) {
    BM_AddFilesWindow(state, 0);
}

// The program always runs more than one thread (the read-ahead's pool, Qt's
// own), and the C library then takes its locks the full way; a process that
// never started a thread takes them cheaply, and the media library takes
// many. Every measure here runs as the program does.
void RunLikeTheProgram() {
    static const bool once = [] {
        std::thread([] {}).join();
        return true;
    }();
    benchmark::DoNotOptimize(once);
}

// The media library alone giving the four values of an MP3 row's cells (a
// handle, the options, the file, a template per value), for every step-th
// file from first on. The program asks for these and the values of the row's
// join check in one answer.
void ReadWithMediaInfo(const std::vector<std::wstring>& names, std::size_t first,
                       std::size_t step) {
    const wchar_t* templates[] = {L"General;%PlayTime%", L"Audio;%BitRate%",
                                  L"Audio;%SamplingRate%", L"Audio;%Channel(s)%"};
    static std::mutex informTurn;
    for (std::size_t i = first; i < names.size(); i += step) {
        void* handle = MediaInfo_New();
        MediaInfo_Option(handle, L"Internet", L"no");
        MediaInfo_Option(handle, L"Legacy", L"1");
        MediaInfo_Open(handle, names[i].c_str());
        for (const wchar_t* text : templates) {
            // The template is the library's for the whole process.
            const std::lock_guard<std::mutex> turn(informTurn);
            MediaInfo_Option(handle, L"Inform", text);
            benchmark::DoNotOptimize(MediaInfo_Inform(handle, 0));
        }
        MediaInfo_Close(handle);
        MediaInfo_Delete(handle);
    }
}

// The media library alone on the same files, on threads threads, each
// taking every threads-th file: one thread is the floor of a serial fill,
// two show how far the library itself gains from a second core.
void BM_MediaInfoAlone(benchmark::State& state, int threads) {
    const int rows = static_cast<int>(state.range(0));
    Mp3Corpus& corpus = Files(rows);
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    EnsureUtf8CLocale();
    RunLikeTheProgram();
    std::vector<std::wstring> names;
    for (const QString& path : corpus.paths()) {
        names.push_back(path.toStdWString());
    }
    const auto step = static_cast<std::size_t>(threads);
    double totalMs = 0;
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        std::vector<std::thread> others;
        for (std::size_t first = 1; first < step; ++first) {
            others.emplace_back(ReadWithMediaInfo, std::cref(names), first, step);
        }
        ReadWithMediaInfo(names, 0, step);
        for (std::thread& other : others) {
            other.join();
        }
        totalMs += static_cast<double>(clock.nsecsElapsed()) / 1e6;
    }
    SetPerRow(state, totalMs / static_cast<double>(state.iterations()), rows);
}

void BM_MediaInfoAlone(benchmark::State& state) {
    BM_MediaInfoAlone(state, 1);
}

void BM_MediaInfoAloneOnTwoThreads(benchmark::State& state) {
    BM_MediaInfoAlone(state, 2);
}

// FillListItem alone on the same files: rows with their paths, no view.
void BM_FillListItemAlone(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    Mp3Corpus& corpus = Files(rows);
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    AnsweringQuestions questions;
    NoClipboard clipboard;
    MainModel model(questions, clipboard);
    NewItemList(model, QStringLiteral("MP3"));
    for (const QString& path : corpus.paths()) {
        const int row = model.items.addRow(QString());
        model.items.setCell(row, 3, path);
    }
    double totalMs = 0;
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        for (int row = 1; row <= rows; ++row) {
            FillListItem(model, row);
        }
        totalMs += static_cast<double>(clock.nsecsElapsed()) / 1e6;
    }
    SetPerRow(state, totalMs / static_cast<double>(state.iterations()), rows);
}

// 100,000 real files added through the window; the memory of the whole
// process before and after.
void BM_MemoryWith100000Rows(benchmark::State& state) {
    constexpr int kRows = 100000;
    Mp3Corpus& corpus = Files(kRows);
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    Window w(corpus);
    MainModel& model = w.window.model();
    const double before = ResidentMegabytes();
    double totalMs = 0;
    for (auto _ : state) {
        QElapsedTimer clock;
        clock.start();
        AddFiles(model);
        totalMs += static_cast<double>(clock.nsecsElapsed()) / 1e6;
    }
    QApplication::processEvents();
    if (model.items.count() != kRows) {
        state.SkipWithError("the rows were not added as expected");
    }
    state.counters["rss_MB_before"] = before;
    state.counters["rss_MB_with_rows"] = ResidentMegabytes();
    SetPerRow(state, totalMs, kRows);
}

}  // namespace

BENCHMARK(BM_MediaInfoAlone)->Arg(1000)->Arg(10000)->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MediaInfoAloneOnTwoThreads)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FillListItemAlone)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddFilesWindowSerial)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddFilesWindowParallel)
    ->Arg(1000)
    ->Arg(10000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemoryWith100000Rows)->Iterations(1)->Unit(benchmark::kMillisecond);
