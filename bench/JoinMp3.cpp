// The whole MP3 join of a long list with the real tools, next to the bare
// commands: Velmora from StartJoin to "Finished!" (and the close) through the
// run that the window drives, the same join by `velmora-cli join` as a
// process, the same script commands run straight through a shell, a plain cat
// of the files, ffmpeg's concat demuxer, and the MP3 fix tool alone on the
// raw join (with its peak memory). Each reports the output's MPEG audio frames next
// to the sum of the inputs'. The list: 200 files of about 5 MB, each with an
// ID3v2.4 tag and a front cover, once constant and once variable bit rate
// (VELMORA_BENCH_JOIN_FILES sets another count). Velmora's join writes the
// joined file's tag, cover and chapters, as it does by default.
// Each figure is the best of several runs (VELMORA_BENCH_JOIN_RUNS, 3).
#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "BenchDoubles.h"
#include "FfmpegRun.h"
#include "app/AppPaths.h"
#include "join/JoinProgress.h"
#include "join/JoinRun.h"
#include "join/JoinScripts.h"
#include "join/JoinWizardState.h"
#include "join/StartJoin.h"
#include "list/ListviewLayout.h"
#include "list/MainModel.h"
#include "platform/Questions.h"

namespace {

constexpr double kTargetBytes = 5.0 * 1024 * 1024;

// Each figure is the best of this many runs (VELMORA_BENCH_JOIN_RUNS), so that
// other work on the machine weighs as little as possible.
int runCount() {
    const int count = qEnvironmentVariableIntValue("VELMORA_BENCH_JOIN_RUNS");
    return count >= 1 ? count : 3;
}

int fileCount() {
    const int count = qEnvironmentVariableIntValue("VELMORA_BENCH_JOIN_FILES");
    return count >= 2 ? count : 200;
}

// Answers every question with Yes and the save dialog with the output path.
class YesQuestions : public Questions {
public:
    QString output;
    int msgBox(const QString&, int, const QString&) override { return Msg::Yes; }
    void showOpen(CommonDialog& dialog) override { dialog.fileName.clear(); }
    void showSave(CommonDialog& dialog) override {
        dialog.fileName = output;
        dialog.fileTitle = QFileInfo(output).fileName();
    }
};

QString run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    process.waitForFinished(-1);
    return QString::fromUtf8(process.readAllStandardOutput());
}

long long audioFrames(const QString& path) {
    return run(QStringLiteral("ffprobe"),
               {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                QStringLiteral("a:0"), QStringLiteral("-count_packets"),
                QStringLiteral("-show_entries"), QStringLiteral("stream=nb_read_packets"),
                QStringLiteral("-of"), QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed()
        .toLongLong();
}

double probedSeconds(const QString& path) {
    return run(QStringLiteral("ffprobe"),
               {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                QStringLiteral("format=duration"), QStringLiteral("-of"),
                QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed()
        .toDouble();
}

// One list: a folder of copies of one encoded file, the per-user folder and
// the install folder with the real tools.
struct JoinBed {
    QTemporaryDir dir;
    QString media, appData, install, output;
    QStringList files;
    long long inputFrames = 0;
    double inputSeconds = 0;
    qint64 bytes = 0;

    explicit JoinBed(bool vbr) {
        media = dir.path() + QStringLiteral("/media");
        appData = dir.path() + QStringLiteral("/appdata");
        install = dir.path() + QStringLiteral("/install");
        output = dir.path() + QStringLiteral("/out/joined.mp3");
        for (const QString& folder :
             {media, appData, install, dir.path() + QStringLiteral("/out")}) {
            QDir().mkpath(folder);
        }
        const QStringList codec = vbr ? QStringList{QStringLiteral("-q:a"), QStringLiteral("0")}
                                      : QStringList{QStringLiteral("-b:a"), QStringLiteral("128k")};
        // A short probe gives the bytes per second; the real file is sized to 5 MB.
        const QString probe = dir.path() + QStringLiteral("/probe.mp3");
        // Each file carries an ID3v2.4 tag with a front cover, so the join
        // writes the joined file's tag, cover and chapters (on by default).
        const QString cover = dir.path() + QStringLiteral("/cover.jpg");
        RunFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                   QStringLiteral("testsrc2=size=500x500:duration=1"), QStringLiteral("-frames:v"),
                   QStringLiteral("1"), cover});
        const auto encode = [&](const QString& path, double seconds) {
            return RunFfmpeg(QStringList{QStringLiteral("-f"),
                                         QStringLiteral("lavfi"),
                                         QStringLiteral("-i"),
                                         QStringLiteral("anoisesrc=color=pink:amplitude=0.3:"
                                                        "duration=%1")
                                             .arg(seconds),
                                         QStringLiteral("-i"),
                                         cover,
                                         QStringLiteral("-map"),
                                         QStringLiteral("0:a"),
                                         QStringLiteral("-map"),
                                         QStringLiteral("1:v"),
                                         QStringLiteral("-c:v"),
                                         QStringLiteral("copy"),
                                         QStringLiteral("-disposition:v"),
                                         QStringLiteral("attached_pic"),
                                         QStringLiteral("-metadata:s:v"),
                                         QStringLiteral("comment=Cover (front)"),
                                         QStringLiteral("-metadata"),
                                         QStringLiteral("title=Part"),
                                         QStringLiteral("-metadata"),
                                         QStringLiteral("album=Bench Book"),
                                         QStringLiteral("-metadata"),
                                         QStringLiteral("artist=Velmora"),
                                         QStringLiteral("-ac"),
                                         QStringLiteral("2"),
                                         QStringLiteral("-ar"),
                                         QStringLiteral("44100"),
                                         QStringLiteral("-c:a"),
                                         QStringLiteral("libmp3lame")} +
                             codec + QStringList{path});
        };
        encode(probe, 20);
        const double perSecond = QFileInfo(probe).size() / 20.0;
        const QString first = media + QStringLiteral("/track 001.mp3");
        encode(first, perSecond > 0 ? kTargetBytes / perSecond : 300);
        const long long framesEach = audioFrames(first);
        const double secondsEach = probedSeconds(first);
        files << first;
        for (int i = 2; i <= fileCount(); ++i) {
            const QString copy =
                media + QStringLiteral("/track %1.mp3").arg(i, 3, 10, QLatin1Char('0'));
            QFile::copy(first, copy);
            files << copy;
        }
        inputFrames = framesEach * files.size();
        inputSeconds = secondsEach * files.size();
        bytes = QFileInfo(first).size() * files.size();
        for (const auto& [source, name] :
             {std::pair{QStringLiteral(VELMORA_MP3_FIX_TOOL), QStringLiteral("MP3.dll")},
              std::pair{QStringLiteral("/usr/bin/mpgtx"), QStringLiteral("MPEG.dll")},
              std::pair{QStringLiteral("/usr/bin/ffmpeg"), QStringLiteral("MPEG2.dll")}}) {
            QFile::copy(source, install + u'/' + name);
        }
    }

    void enter() const {
        SetAppDataFolder(appData);
        SetInstallFolderOverride(install);
    }

    void fillModel(MainModel& model) const {
        model.state.setListType(QStringLiteral("MP3"));
        ClearColumns(model);
        AddSharedColumns(model);
        AddMP3Columns(model);
        for (const QString& file : files) {
            const int row = model.items.addRow(QFileInfo(file).fileName());
            model.items.setCell(row, 3, file);
        }
        model.state.setSizeCaption(FormatThousands(bytes / 1024.0) + QStringLiteral(" KB"));
        model.state.setListStatusText(QStringLiteral("Green"));
    }

    void clearOutputs() const {
        QDir(QFileInfo(output).path()).removeRecursively();
        QDir().mkpath(QFileInfo(output).path());
    }
};

JoinBed& bedFor(bool vbr) {
    static std::unique_ptr<JoinBed> beds[2];
    auto& bed = beds[vbr ? 1 : 0];
    if (!bed) {
        bed = std::make_unique<JoinBed>(vbr);
    }
    return *bed;
}

QMap<QString, double>& seconds() {
    static QMap<QString, double> map;
    return map;
}

void report(benchmark::State& state, const JoinBed& bed, const QString& path, const QString& key,
            double elapsed) {
    seconds()[key] = elapsed;
    state.counters["seconds"] = elapsed;
    state.counters["output_frames"] = static_cast<double>(audioFrames(path));
    state.counters["input_frames"] = static_cast<double>(bed.inputFrames);
    state.counters["output_s"] = probedSeconds(path);
    state.counters["input_s"] = bed.inputSeconds;
    state.counters["MB"] = bed.bytes / 1048576.0;
}

// One Velmora join from StartJoin to "Finished!" and the close; its seconds.
double velmoraJoin(benchmark::State& state, const JoinBed& bed) {
    bed.clearOutputs();
    YesQuestions questions;
    questions.output = bed.output;
    NoClipboard clipboard;
    MainModel model(questions, clipboard);
    bed.fillModel(model);
    JoinWizardState wizard;
    QElapsedTimer timer;
    timer.start();
    if (!StartJoin(model)) {
        state.SkipWithError("the pre-flight refused the join");
        return 0;
    }
    JoinRun joinRun(model, wizard);
    joinRun.load(true);
    while (wizard.operationText() != QStringLiteral("Finished!")) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    joinRun.cancelClicked();  // "&Close": the clean-up of the per-user folder
    return timer.nsecsElapsed() / 1e9;
}

// The same scripts, written the same way, run one after the other by a shell
// that waits for each; its seconds.
double scriptCommandsInShell(const JoinBed& bed) {
    bed.clearOutputs();
    YesQuestions questions;
    NoClipboard clipboard;
    MainModel model(questions, clipboard);
    bed.fillModel(model);
    model.commonDialog.fileName = bed.output;
    WriteJoinScripts(model);
    const QString marker = bed.appData + QStringLiteral("/JoinTemp");
    QElapsedTimer timer;
    timer.start();
    QDir().mkpath(marker);
    run(QStringLiteral("/bin/sh"), {bed.appData + QStringLiteral("/TempFile.bat")});
    QDir().mkpath(marker);
    run(QStringLiteral("/bin/sh"), {bed.appData + QStringLiteral("/MP3.bat")});
    QFile::remove(bed.output + QStringLiteral(".vlr.mp3"));
    const double taken = timer.nsecsElapsed() / 1e9;
    for (const char* name : {"TempFile.bat", "MP3.bat", "MP3.exe", "MPEG2.exe"}) {
        QFile::remove(bed.appData + u'/' + QLatin1String(name));
    }
    return taken;
}

// The same join by the command line, as a user runs it: `velmora-cli join`
// of the list's files, with a per-user folder of its own (no Settings.ini,
// so tags and chapters are written, as in the window's join) and no
// progress; its seconds from the start of the process to its end.
double commandLineJoin(benchmark::State& state, const JoinBed& bed) {
    bed.clearOutputs();
    const QString home = bed.dir.path() + QStringLiteral("/cli-home");
    QDir().mkpath(home);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
    env.remove(QStringLiteral("DISPLAY"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    QProcess cli;
    cli.setProcessEnvironment(env);
    cli.setStandardInputFile(QProcess::nullDevice());
    cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    cli.start(
        QStringLiteral(VELMORA_CLI_PROGRAM),
        QStringList{QStringLiteral("--quiet"), QStringLiteral("join"), QStringLiteral("--type"),
                    QStringLiteral("mp3"), QStringLiteral("-o"), bed.output} +
            bed.files);
    const bool ended = cli.waitForFinished(-1);
    const double taken = timer.nsecsElapsed() / 1e9;
    if (!ended || cli.exitStatus() != QProcess::NormalExit || cli.exitCode() != 0) {
        state.SkipWithError("velmora-cli join failed");
    }
    return taken;
}

// cat of the list's files into the output; its seconds.
double catJoin(const JoinBed& bed) {
    bed.clearOutputs();
    QElapsedTimer timer;
    timer.start();
    QProcess cat;
    cat.setStandardOutputFile(bed.output);
    cat.start(QStringLiteral("cat"), bed.files);
    cat.waitForFinished(-1);
    return timer.nsecsElapsed() / 1e9;
}

// Velmora's two faces, the bare script commands and cat take turns, so that
// the load of the machine falls on all alike; each figure is the best of its
// runs. The ratios: the command line against cat, and the window's run
// against the command line.
void BM_VelmoraAndScriptCommands(benchmark::State& state) {
    const bool vbr = state.range(0) != 0;
    JoinBed& bed = bedFor(vbr);
    bed.enter();
    run(QStringLiteral("sync"), {});  // the new sources reach the disk before the clock runs
    double velmora = 0;
    double cli = 0;
    double shell = 0;
    double cat = 0;
    long long velmoraFrames = 0;
    long long cliFrames = 0;
    for (auto _ : state) {
        for (int round = 0; round < runCount(); ++round) {
            const double v = velmoraJoin(state, bed);
            if (round == 0) {
                velmoraFrames = audioFrames(bed.output);
            }
            const double c = commandLineJoin(state, bed);
            if (round == 0) {
                cliFrames = audioFrames(bed.output);
            }
            const double k = catJoin(bed);
            const double s = scriptCommandsInShell(bed);
            velmora = round == 0 ? v : std::min(velmora, v);
            cli = round == 0 ? c : std::min(cli, c);
            cat = round == 0 ? k : std::min(cat, k);
            shell = round == 0 ? s : std::min(shell, s);
        }
    }
    seconds()[QStringLiteral("velmora%1").arg(vbr)] = velmora;
    report(state, bed, bed.output, QStringLiteral("shell%1").arg(vbr), shell);
    state.counters["velmora_s"] = velmora;
    state.counters["velmora_output_frames"] = static_cast<double>(velmoraFrames);
    state.counters["cli_s"] = cli;
    state.counters["cli_output_frames"] = static_cast<double>(cliFrames);
    state.counters["cat_s"] = cat;
    state.counters["ratio"] = shell > 0 ? velmora / shell : 0;
    state.counters["cli_per_cat"] = cat > 0 ? cli / cat : 0;
    state.counters["window_per_cli"] = cli > 0 ? velmora / cli : 0;
    std::printf(
        "%s: Velmora (window's run) %.2f s, velmora-cli join %.2f s, cat %.2f s, script "
        "commands in a shell %.2f s; velmora-cli / cat %.2f, window / velmora-cli %.2f, "
        "window / script commands %.3f\n",
        vbr ? "VBR" : "CBR", velmora, cli, cat, shell, cat > 0 ? cli / cat : 0.0,
        cli > 0 ? velmora / cli : 0.0, shell > 0 ? velmora / shell : 0.0);
    std::fflush(stdout);
}

void BM_Cat(benchmark::State& state) {
    const bool vbr = state.range(0) != 0;
    JoinBed& bed = bedFor(vbr);
    double elapsed = 0;
    for (auto _ : state) {
        for (int round = 0; round < runCount(); ++round) {
            bed.clearOutputs();
            QElapsedTimer timer;
            timer.start();
            QProcess cat;
            cat.setStandardOutputFile(bed.output);
            cat.start(QStringLiteral("cat"), bed.files);
            cat.waitForFinished(-1);
            const double taken = timer.nsecsElapsed() / 1e9;
            elapsed = round == 0 ? taken : std::min(elapsed, taken);
        }
    }
    report(state, bed, bed.output, QStringLiteral("cat%1").arg(vbr), elapsed);
}

void BM_FfmpegConcat(benchmark::State& state) {
    const bool vbr = state.range(0) != 0;
    JoinBed& bed = bedFor(vbr);
    const QString list = bed.dir.path() + QStringLiteral("/concat.txt");
    QFile file(list);
    if (file.open(QIODevice::WriteOnly)) {
        for (const QString& path : bed.files) {
            QString quoted = path;
            quoted.replace(u'\'', QStringLiteral("'\\''"));
            file.write((QStringLiteral("file '") + quoted + QStringLiteral("'\n")).toUtf8());
        }
        file.close();
    }
    double elapsed = 0;
    for (auto _ : state) {
        for (int round = 0; round < runCount(); ++round) {
            bed.clearOutputs();
            QElapsedTimer timer;
            timer.start();
            RunFfmpeg({QStringLiteral("-f"), QStringLiteral("concat"), QStringLiteral("-safe"),
                       QStringLiteral("0"), QStringLiteral("-i"), list, QStringLiteral("-c"),
                       QStringLiteral("copy"), bed.output});
            const double taken = timer.nsecsElapsed() / 1e9;
            elapsed = round == 0 ? taken : std::min(elapsed, taken);
        }
    }
    report(state, bed, bed.output, QStringLiteral("concat%1").arg(vbr), elapsed);
}

// The fix tool alone, from the raw join (made by cat beforehand) to the
// output; its seconds and its peak resident memory.
void BM_FixToolAlone(benchmark::State& state) {
    const bool vbr = state.range(0) != 0;
    JoinBed& bed = bedFor(vbr);
    const QString temp = bed.output + QStringLiteral(".vlr.mp3");
    const QByteArray tool = QByteArrayLiteral(VELMORA_MP3_FIX_TOOL);
    double elapsed = 0;
    long peakKb = 0;
    for (auto _ : state) {
        for (int round = 0; round < runCount(); ++round) {
            bed.clearOutputs();
            QProcess cat;
            cat.setStandardOutputFile(temp);
            cat.start(QStringLiteral("cat"), bed.files);
            cat.waitForFinished(-1);
            const QByteArray in = temp.toLocal8Bit();
            const QByteArray out = bed.output.toLocal8Bit();
            char* argv[] = {const_cast<char*>(tool.constData()), const_cast<char*>(in.constData()),
                            const_cast<char*>(out.constData()), nullptr};
            QElapsedTimer timer;
            timer.start();
            pid_t pid = 0;
            if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv, environ) != 0) {
                state.SkipWithError("the fix tool did not start");
                return;
            }
            int status = 0;
            rusage usage{};
            wait4(pid, &status, 0, &usage);
            const double taken = timer.nsecsElapsed() / 1e9;
            elapsed = round == 0 ? taken : std::min(elapsed, taken);
            peakKb = std::max(peakKb, usage.ru_maxrss);
            QFile::remove(temp);
        }
    }
    report(state, bed, bed.output, QStringLiteral("fix%1").arg(vbr), elapsed);
    state.counters["peak_rss_MB"] = peakKb / 1024.0;
    const auto& s = seconds();
    const QString k = QString::number(vbr);
    const double velmora = s.value(QStringLiteral("velmora") + k);
    const double concat = s.value(QStringLiteral("concat") + k);
    const double cat = s.value(QStringLiteral("cat") + k);
    std::printf(
        "%s: Velmora %.2f s, concat demuxer %.2f s, cat %.2f s, fix tool alone %.2f s "
        "(peak %.1f MB); Velmora / concat %.3f, Velmora / cat %.2f\n",
        vbr ? "VBR" : "CBR", velmora, concat, cat, elapsed, peakKb / 1024.0,
        concat > 0 ? velmora / concat : 0.0, cat > 0 ? velmora / cat : 0.0);
    std::fflush(stdout);
}

}  // namespace

// Arg 0: constant bit rate; 1: variable bit rate.
BENCHMARK(BM_VelmoraAndScriptCommands)
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->UseRealTime();
BENCHMARK(BM_Cat)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();
BENCHMARK(BM_FfmpegConcat)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();
BENCHMARK(BM_FixToolAlone)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();
