#include "Mp3Corpus.h"

#include "FfmpegRun.h"

#include <unistd.h>

#include <QFile>
#include <fstream>
#include <string>

namespace {

// The tags a master file carries: none; an ID3v2.4 tag with a front cover
// and no ID3v1 tag, as encoders and rippers write them today; an ID3v1 tag.
enum class Tags { None, Id3v24WithCover, Id3v1 };

bool Encode(const QString& path, int kbps, int rate, int channels, double seconds, Tags tags,
            const QString& cover) {
    QStringList args{"-f", "lavfi", "-i",
                     QStringLiteral("sine=frequency=%1:sample_rate=%2:duration=%3")
                         .arg(300 + kbps)
                         .arg(rate)
                         .arg(seconds)};
    if (tags == Tags::Id3v24WithCover) {
        args += {"-i",           cover,           "-map",
                 "0:a",          "-map",          "1:v",
                 "-c:v",         "copy",          "-disposition:v",
                 "attached_pic", "-metadata:s:v", "comment=Cover (front)"};
    }
    args += {"-ac",  QString::number(channels),      "-c:a", "libmp3lame",
             "-b:a", QStringLiteral("%1k").arg(kbps)};
    switch (tags) {
        case Tags::None:
            args += {"-id3v2_version", "0", "-write_id3v1", "0"};
            break;
        case Tags::Id3v24WithCover:
            args +=
                {"-id3v2_version", "4",         "-write_id3v1",   "0",          "-metadata",
                 "title=Bench",    "-metadata", "artist=Velmora", "-metadata",  "album=Bench Album",
                 "-metadata",      "date=2024", "-metadata",      "genre=Rock", "-metadata",
                 "track=3"};
            break;
        case Tags::Id3v1:
            args +=
                {"-write_id3v1", "1", "-metadata", "title=Bench", "-metadata", "artist=Velmora"};
            break;
    }
    args += {"-f", "mp3", path};
    return RunFfmpeg(args);
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
        Tags tags;
    };
    const Kind kinds[] = {{128, 44100, 2, 30, Tags::Id3v24WithCover},
                          {192, 48000, 2, 20, Tags::None},
                          {96, 44100, 1, 45, Tags::Id3v24WithCover},
                          {320, 44100, 2, 10, Tags::Id3v1},
                          {64, 32000, 1, 60, Tags::Id3v24WithCover}};
    // A cover of a usual size (about 40 KB).
    const QString cover = dir_.filePath(QStringLiteral("cover.jpg.src"));
    if (!RunFfmpeg({"-f", "lavfi", "-i", "testsrc2=size=500x500:duration=1", "-frames:v", "1", "-f",
                    "image2", "-c:v", "mjpeg", "-q:v", "3", cover})) {
        return;
    }
    QStringList masters;
    int k = 0;
    for (const Kind& kind : kinds) {
        const QString path = dir_.filePath(QStringLiteral("master%1.mp3.src").arg(k++));
        if (!Encode(path, kind.kbps, kind.rate, kind.channels, kind.seconds, kind.tags, cover)) {
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
