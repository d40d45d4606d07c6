// Writing the join scripts for long lists, and the whole pre-flight up to the
// written scripts.

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "BenchDoubles.h"
#include "app/AppPaths.h"
#include "join/BatchDialect.h"
#include "join/JoinScripts.h"
#include "join/ShDialect.h"
#include "join/StartJoin.h"
#include "list/MainModel.h"
#include "platform/Questions.h"

namespace {

// Answers the save dialog with one path and every box with Yes.
class FixedAnswers : public Questions {
public:
    explicit FixedAnswers(QString path) : path_(std::move(path)) {}
    int msgBox(const QString&, int, const QString&) override { return Msg::Yes; }
    void showOpen(CommonDialog&) override {}
    void showSave(CommonDialog& dialog) override {
        dialog.fileName = path_;
        dialog.fileTitle = path_.mid(path_.lastIndexOf(u'/') + 1);
    }

private:
    QString path_;
};

struct Bed {
    explicit Bed(int rows) : questions(dir.path() + "/out/joined 'all'.mp3") {
        QDir().mkpath(dir.path() + "/app");
        QDir().mkpath(dir.path() + "/install");
        QDir().mkpath(dir.path() + "/out");
        for (const char* name : {"MP3.dll", "MPEG.dll", "MPEG2.dll"}) {
            QFile file(dir.path() + "/install/" + name);
            file.open(QIODevice::WriteOnly);
            file.write("tool");
        }
        SetAppDataFolder(dir.path() + "/app");
        SetInstallFolderOverride(dir.path() + "/install");
        model.state.setListType("MP3");
        model.state.setListStatusText("Green");
        model.state.setSizeCaption("1 KB");
        for (const char* header :
             {"Filename", "Filesize", "Date Modified", "Filepath", "Artist", "Title", "Album",
              "Year", "Genre", "Duration", "Bitrate", "Hertz"}) {
            model.items.addColumn(header);
        }
        QList<QStringList> list;
        list.reserve(rows);
        for (int i = 0; i < rows; ++i) {
            const QString name = QString("Track %1 'live' & more.mp3").arg(i);
            list.append({name, "4,321 KB", "11/21/2026 12:00:00 PM",
                         "/home/user/Music/Some Album/" + name, "Artist", "Title", "Album", "2026",
                         "Rock", "00:04:30", "128", "44100"});
        }
        model.items.appendRows(std::move(list));
    }
    ~Bed() {
        SetInstallFolderOverride(QString());
        SetAppDataFolder(QString());
    }

    QTemporaryDir dir;
    FixedAnswers questions;
    NoClipboard clipboard;
    MainModel model{questions, clipboard};
};

void BM_WriteJoinScripts_Sh(benchmark::State& state) {
    Bed bed(static_cast<int>(state.range(0)));
    const ShDialect dialect;
    for (auto _ : state) {
        QString path = bed.dir.path() + "/out/joined.mp3";
        WriteJoinScripts(bed.model, path, dialect);
        benchmark::DoNotOptimize(path);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_WriteJoinScripts_Sh)->Arg(200)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_WriteJoinScripts_Batch(benchmark::State& state) {
    Bed bed(static_cast<int>(state.range(0)));
    const BatchDialect dialect;
    for (auto _ : state) {
        QString path = bed.dir.path() + "/out/joined.mp3";
        WriteJoinScripts(bed.model, path, dialect);
        benchmark::DoNotOptimize(path);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_WriteJoinScripts_Batch)->Arg(100000)->Unit(benchmark::kMillisecond);

// From the join command to the written scripts (free space read from the disk).
void BM_StartJoin(benchmark::State& state) {
    Bed bed(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(StartJoin(bed.model));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_StartJoin)->Arg(200)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
