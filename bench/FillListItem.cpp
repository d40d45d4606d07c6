// The cost of filling one row of an MP3 list, per file, next to the cost of
// the media library alone on the same files (open, the seven value templates,
// close). 1,000 real MP3 files are made once with ffmpeg (copies of a few
// encodings) into a temporary folder.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <string>

#include "BenchDoubles.h"
#include "Mp3Corpus.h"
#include "list/FillListItem.h"
#include "list/MainModel.h"
#include "media/ID3Reader.h"
#include "media/MediaInfoC.h"
#include "media/MediaInfoFile.h"

namespace {

constexpr int kFiles = 1000;

Mp3Corpus& Files() {
    static Mp3Corpus corpus(kFiles);
    return corpus;
}

void BM_MediaInfoAlone(benchmark::State& state) {
    Mp3Corpus& corpus = Files();
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    std::vector<std::wstring> names;
    for (const QString& path : corpus.paths()) {
        names.push_back(path.toStdWString());
    }
    const wchar_t* templates[] = {
        L"General;%PlayTime%", L"Audio;%BitRate%", L"Audio;%SamplingRate%", L"Audio;%Channel(s)%",
        L"Video;%Codec%",      L"Video;%Width%",   L"Video;%Height%"};
    std::size_t i = 0;
    for (auto _ : state) {
        void* handle = MediaInfo_New();
        MediaInfo_Option(handle, L"Internet", L"no");
        MediaInfo_Open(handle, names[i++ % names.size()].c_str());
        for (const wchar_t* text : templates) {
            MediaInfo_Option(handle, L"Inform", text);
            benchmark::DoNotOptimize(MediaInfo_Inform(handle, 0));
        }
        MediaInfo_Close(handle);
        MediaInfo_Delete(handle);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("per file");
}

void BM_FillListItem(benchmark::State& state) {
    Mp3Corpus& corpus = Files();
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    AnsweringQuestions questions;
    NoClipboard clipboard;
    MainModel model(questions, clipboard);
    for (const char* header : {"Filename", "Filesize", "Date Modified", "Filepath", "Artist",
                               "Title", "Album", "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
        model.items.addColumn(header);
    }
    model.state.setListType(QStringLiteral("MP3"));
    for (const QString& path : corpus.paths()) {
        const int row = model.items.addRow(QString());
        model.items.setCell(row, 3, path);
    }
    int row = 0;
    for (auto _ : state) {
        FillListItem(model, row % kFiles + 1);
        ++row;
    }
    if (model.items.cell(1, 10) != QStringLiteral("128 kbps")) {
        state.SkipWithError("the row was not filled as expected");
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("per file");
}

// The media half of a row as FillListItem does it: the wrapper (which also
// asks for the classic value names) and the four MP3 templates.
void BM_MediaInfoFileMp3Templates(benchmark::State& state) {
    Mp3Corpus& corpus = Files();
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        MediaInfoFile media(corpus.paths()[static_cast<int>(i++ % kFiles)]);
        for (const char* text : {"General;%PlayTime%", "Audio;%BitRate%", "Audio;%SamplingRate%",
                                 "Audio;%Channel(s)%"}) {
            benchmark::DoNotOptimize(media.inform(QString::fromLatin1(text)));
        }
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("per file");
}

void BM_ID3ReaderAlone(benchmark::State& state) {
    Mp3Corpus& corpus = Files();
    if (!corpus.ok()) {
        state.SkipWithError("could not make the MP3 files with ffmpeg");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        ID3Reader reader;
        reader.setFileName(corpus.paths()[static_cast<int>(i++ % kFiles)]);
        benchmark::DoNotOptimize(reader.Kbits());
    }
    state.SetItemsProcessed(state.iterations());
    state.SetLabel("per file");
}

}  // namespace

// Both main benchmarks go over the 1,000 files at least three times.
BENCHMARK(BM_MediaInfoAlone)->Unit(benchmark::kMicrosecond)->MinTime(2.0)->Repetitions(3);
BENCHMARK(BM_FillListItem)->Unit(benchmark::kMicrosecond)->MinTime(2.0)->Repetitions(3);
BENCHMARK(BM_MediaInfoFileMp3Templates)->Unit(benchmark::kMicrosecond)->MinTime(2.0);
BENCHMARK(BM_ID3ReaderAlone)->Unit(benchmark::kMicrosecond)->MinTime(1.0);
