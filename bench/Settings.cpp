// Reading and writing 1,000 keys of a settings file, one key per call, as the
// program does: each call opens, parses and (for writes) rewrites the file.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include "app/IniFile.h"

namespace {

constexpr int kKeys = 1000;

QString keyName(int i) {
    return QStringLiteral("Key") + QString::number(i);
}

QString valueText(int i) {
    return QStringLiteral("/home/user/Music/Album %1/Track %1.mp3").arg(i);
}

// A settings file with kKeys keys spread over ten sections.
void writeFile(const QString& path) {
    QByteArray content;
    for (int section = 0; section < 10; ++section) {
        content += "[Section" + QByteArray::number(section) + "]\r\n";
        for (int i = section; i < kKeys; i += 10) {
            content += (keyName(i) + u'=' + valueText(i)).toUtf8() + "\r\n";
        }
    }
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
}

QString sectionOf(int i) {
    return QStringLiteral("Section") + QString::number(i % 10);
}

void BM_ReadIniValue_1000Keys(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/Settings.ini";
    writeFile(path);
    for (auto _ : state) {
        qsizetype total = 0;
        for (int i = 0; i < kKeys; ++i) {
            QString section = sectionOf(i), key = keyName(i), file = path;
            total += ReadIniValue(section, key, file).size();
        }
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}
BENCHMARK(BM_ReadIniValue_1000Keys)->Unit(benchmark::kMillisecond);

void BM_WriteIniValue_Update1000Keys(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/Settings.ini";
    writeFile(path);
    int round = 0;
    for (auto _ : state) {
        ++round;
        for (int i = 0; i < kKeys; ++i) {
            QString section = sectionOf(i), key = keyName(i), file = path;
            QString value = valueText(i + round);
            benchmark::DoNotOptimize(WriteIniValue(section, key, value, file));
        }
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}
BENCHMARK(BM_WriteIniValue_Update1000Keys)->Unit(benchmark::kMillisecond);

void BM_WriteIniValue_Add1000KeysToNewFile(benchmark::State& state) {
    QTemporaryDir dir;
    const QString path = dir.path() + "/Settings.ini";
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(path);
        state.ResumeTiming();
        for (int i = 0; i < kKeys; ++i) {
            QString section = sectionOf(i), key = keyName(i), file = path;
            QString value = valueText(i);
            benchmark::DoNotOptimize(WriteIniValue(section, key, value, file));
        }
    }
    state.SetItemsProcessed(state.iterations() * kKeys);
}
BENCHMARK(BM_WriteIniValue_Add1000KeysToNewFile)->Unit(benchmark::kMillisecond);

}  // namespace
