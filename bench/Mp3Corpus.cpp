#include "Mp3Corpus.h"

#include <unistd.h>

#include <QFile>
#include <QProcess>
#include <fstream>
#include <string>

namespace {

bool Encode(const QString& path, int kbps, int rate, int channels, double seconds, bool tag) {
    QStringList args{"-nostdin",
                     "-y",
                     "-loglevel",
                     "error",
                     "-f",
                     "lavfi",
                     "-i",
                     QStringLiteral("sine=frequency=%1:sample_rate=%2:duration=%3")
                         .arg(300 + kbps)
                         .arg(rate)
                         .arg(seconds),
                     "-ac",
                     QString::number(channels),
                     "-c:a",
                     "libmp3lame",
                     "-b:a",
                     QStringLiteral("%1k").arg(kbps),
                     "-write_id3v1",
                     tag ? "1" : "0"};
    if (tag) {
        args += {"-metadata", "title=Bench", "-metadata", "artist=Velmora"};
    } else {
        args += {"-id3v2_version", "0"};
    }
    args += {"-f", "mp3", path};
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), args);
    return ffmpeg.waitForFinished(120000) && ffmpeg.exitCode() == 0;
}

bool CopyOf(const QString& master, const QString& path) {
    const QByteArray from = QFile::encodeName(master);
    const QByteArray to = QFile::encodeName(path);
    return ::link(from.constData(), to.constData()) == 0 || QFile::copy(master, path);
}

}  // namespace

Mp3Corpus::Mp3Corpus(int files) {
    struct Kind {
        int kbps, rate, channels;
        double seconds;
        bool tag;
    };
    const Kind kinds[] = {{128, 44100, 2, 30, true},
                          {192, 48000, 2, 20, false},
                          {96, 44100, 1, 45, true},
                          {320, 44100, 2, 10, false},
                          {64, 32000, 1, 60, true}};
    QStringList masters;
    int k = 0;
    for (const Kind& kind : kinds) {
        const QString path = dir_.filePath(QStringLiteral("master%1.mp3.src").arg(k++));
        if (!Encode(path, kind.kbps, kind.rate, kind.channels, kind.seconds, kind.tag)) {
            return;
        }
        masters.append(path);
    }
    names_.reserve(files);
    paths_.reserve(files);
    for (int i = 0; i < files; ++i) {
        const QString name = QStringLiteral("track%1.mp3").arg(i, 6, 10, QChar('0'));
        const QString path = dir_.filePath(name);
        if (!CopyOf(masters.at(i % masters.size()), path)) {
            return;
        }
        names_.append(name);
        paths_.append(path);
    }
    ok_ = true;
}

double ResidentMegabytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stod(line.substr(6)) / 1024.0;
        }
    }
    return 0;
}
