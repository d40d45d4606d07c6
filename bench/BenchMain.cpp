// Benchmark main: the Qt application (a QCoreApplication for the install
// folder and events; for the benchmarks with windows a QApplication on the
// offscreen platform, unless another is asked for) and a pinned locale, then
// Google Benchmark.
#include <benchmark/benchmark.h>

#include <QLocale>
#include <clocale>
#include <cstdlib>

#ifdef VELMORA_BENCH_WINDOWS
#include <QApplication>
using BenchApplication = QApplication;
#else
#include <QCoreApplication>
using BenchApplication = QCoreApplication;
#endif

int main(int argc, char** argv) {
    setenv("LC_ALL", "C.UTF-8", 1);
#ifdef VELMORA_BENCH_WINDOWS
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
#endif
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    BenchApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
