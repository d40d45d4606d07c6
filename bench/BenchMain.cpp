// Benchmark main: a QCoreApplication (for the install folder and events) and a
// pinned locale, then Google Benchmark.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QLocale>
#include <clocale>
#include <cstdlib>

int main(int argc, char** argv) {
    setenv("LC_ALL", "C.UTF-8", 1);
    std::setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
