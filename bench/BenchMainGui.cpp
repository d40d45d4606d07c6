// Benchmark main for the benchmarks with windows: a QApplication on the
// offscreen platform (unless another is asked for) and a pinned locale, then
// Google Benchmark.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLocale>
#include <clocale>
#include <cstdlib>

int main(int argc, char** argv) {
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
