#include "support/MediaMaker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {

QString g_lastError;

QString FindTool(const QString& name) {
    const QString fixed = QStringLiteral("/usr/bin/") + name;
    if (QFileInfo(fixed).isExecutable()) {
        return fixed;
    }
    return QStandardPaths::findExecutable(name);
}

// Cuts a leading ID3v2 header (10 bytes, a sync-safe size, an optional footer).
bool StripId3v2Header(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QByteArray data = file.readAll();
    file.close();
    if (data.size() < 10 || !data.startsWith("ID3")) {
        return true;
    }
    const auto b = [&](int i) { return static_cast<qint64>(static_cast<unsigned char>(data[i])); };
    qint64 size = (b(6) << 21) | (b(7) << 14) | (b(8) << 7) | b(9);
    size += 10;
    if (b(5) & 0x10) {
        size += 10;
    }
    if (size > data.size()) {
        return false;
    }
    data.remove(0, size);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return false;
    }
    return file.write(data) == data.size();
}

QString Secs(double seconds) {
    return QString::number(seconds, 'f', 3);
}

}  // namespace

QString FfmpegProgram() {
    return FindTool(QStringLiteral("ffmpeg"));
}

QString LastMediaMakerError() {
    return g_lastError;
}

bool HaveFfmpeg() {
    static const bool have = [] {
        const QString program = FfmpegProgram();
        if (program.isEmpty()) {
            return false;
        }
        QProcess process;
        process.start(program, {QStringLiteral("-hide_banner"), QStringLiteral("-version")});
        return process.waitForFinished(20000) && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }();
    return have;
}

bool RunFfmpeg(const QStringList& arguments, int timeoutMs) {
    const QString program = FfmpegProgram();
    if (program.isEmpty()) {
        g_lastError = QStringLiteral("ffmpeg not found");
        return false;
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QStringList all{QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"),
                    QStringLiteral("-y"), QStringLiteral("-loglevel"), QStringLiteral("error")};
    all += arguments;
    process.start(program, all);
    if (!process.waitForStarted(20000)) {
        g_lastError = QStringLiteral("ffmpeg did not start");
        return false;
    }
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished(5000);
        g_lastError = QStringLiteral("ffmpeg timed out");
        return false;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        g_lastError = QString::fromUtf8(process.readAll());
        return false;
    }
    return true;
}

QString RunFfprobe(const QStringList& arguments, int timeoutMs) {
    const QString program = FindTool(QStringLiteral("ffprobe"));
    if (program.isEmpty()) {
        return {};
    }
    QProcess process;
    QStringList all{QStringLiteral("-hide_banner"), QStringLiteral("-loglevel"),
                    QStringLiteral("error")};
    all += arguments;
    process.start(program, all);
    if (!process.waitForFinished(timeoutMs) || process.exitCode() != 0) {
        process.kill();
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString MakeMp3(const QString& folder, const QString& fileName, const Mp3Options& options) {
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(fileName);
    QStringList args{QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                     QStringLiteral("sine=frequency=%1:sample_rate=%2:duration=%3")
                         .arg(options.frequencyHz)
                         .arg(options.sampleRate)
                         .arg(Secs(options.seconds))};
    args += {QStringLiteral("-ac"),  QString::number(options.channels),
             QStringLiteral("-ar"),  QString::number(options.sampleRate),
             QStringLiteral("-c:a"), QStringLiteral("libmp3lame")};
    if (options.vbrQuality >= 0) {
        args += {QStringLiteral("-q:a"), QString::number(options.vbrQuality)};
    } else {
        args += {QStringLiteral("-b:a"), QStringLiteral("%1k").arg(options.bitrateKbps)};
    }
    // ffmpeg writes the ID3v1 tag only together with an ID3v2 header; when only
    // the ID3v1 tag is wanted, the ID3v2 header is cut off afterwards.
    const bool stripId3v2 = !options.id3v2 && options.id3v1;
    if (!options.id3v2 && !options.id3v1) {
        args += {QStringLiteral("-id3v2_version"), QStringLiteral("0")};
    }
    args +=
        {QStringLiteral("-write_id3v1"), options.id3v1 ? QStringLiteral("1") : QStringLiteral("0")};
    for (auto it = options.metadata.cbegin(); it != options.metadata.cend(); ++it) {
        args += {QStringLiteral("-metadata"), it.key() + QLatin1Char('=') + it.value()};
    }
    args += {QStringLiteral("-f"), QStringLiteral("mp3"), path};
    if (!RunFfmpeg(args)) {
        return {};
    }
    if (stripId3v2 && !StripId3v2Header(path)) {
        g_lastError = QStringLiteral("could not remove the ID3v2 header of ") + path;
        return {};
    }
    return path;
}

QString MakeMpeg(const QString& folder, const QString& fileName, const MpegOptions& options) {
    QDir().mkpath(folder);
    const QString path = QDir(folder).filePath(fileName);
    QStringList args;
    if (options.withVideo) {
        args += {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                 QStringLiteral("testsrc=size=%1x%2:rate=%3:duration=%4")
                     .arg(options.width)
                     .arg(options.height)
                     .arg(options.frameRate)
                     .arg(Secs(options.seconds))};
    }
    if (options.withAudio) {
        args += {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                 QStringLiteral("sine=frequency=440:sample_rate=%1:duration=%2")
                     .arg(options.audioRate)
                     .arg(Secs(options.seconds))};
    }
    if (options.withVideo) {
        args += {QStringLiteral("-c:v"), options.mpegVersion == 2 ? QStringLiteral("mpeg2video")
                                                                  : QStringLiteral("mpeg1video")};
        if (options.videoKbps > 0) {
            args += {QStringLiteral("-vf"), QStringLiteral("noise=alls=60:allf=t")};
            args += {QStringLiteral("-b:v"),     QStringLiteral("%1k").arg(options.videoKbps),
                     QStringLiteral("-maxrate"), QStringLiteral("%1k").arg(options.videoKbps),
                     QStringLiteral("-bufsize"), QStringLiteral("%1k").arg(options.videoKbps)};
        }
    }
    if (options.withAudio) {
        args += {QStringLiteral("-c:a"), QStringLiteral("mp2"),
                 QStringLiteral("-b:a"), QStringLiteral("%1k").arg(options.audioKbps),
                 QStringLiteral("-ar"),  QString::number(options.audioRate)};
    }
    QString format = options.format;
    if (format.isEmpty()) {
        format = options.mpegVersion == 2 ? QStringLiteral("vob") : QStringLiteral("mpeg");
    }
    args += {QStringLiteral("-f"), format, path};
    if (!RunFfmpeg(args)) {
        return {};
    }
    return path;
}

QString MakeFreeFormatMp3(const QString& folder, const QString& fileName, int kbps,
                          const Mp3Options& options, const QString& title) {
    const QString lame = FindTool(QStringLiteral("lame"));
    if (lame.isEmpty()) {
        g_lastError = QStringLiteral("lame not installed");
        return {};
    }
    const QString path = QDir(folder).filePath(fileName);
    const QString wave = path + QStringLiteral(".wav");
    if (!RunFfmpeg({QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                    QStringLiteral("sine=frequency=%1:duration=%2")
                        .arg(options.frequencyHz)
                        .arg(Secs(options.seconds)),
                    QStringLiteral("-ar"), QString::number(options.sampleRate),
                    QStringLiteral("-ac"), QString::number(options.channels), wave})) {
        return {};
    }
    QStringList arguments{QStringLiteral("--quiet"), QStringLiteral("--freeformat"),
                          QStringLiteral("-b"), QString::number(kbps)};
    if (!title.isEmpty()) {
        arguments += {QStringLiteral("--id3v2-only"), QStringLiteral("--tt"), title};
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(lame, arguments + QStringList{wave, path});
    const bool made = process.waitForFinished(120000) &&
                      process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    QFile::remove(wave);
    if (!made) {
        g_lastError = QStringLiteral("lame failed: ") + QString::fromUtf8(process.readAll());
        return {};
    }
    return path;
}

QString ProbeValues(const QString& path, const QStringList& entries) {
    return RunFfprobe(QStringList{QStringLiteral("-v"), QStringLiteral("error")} + entries +
                      QStringList{QStringLiteral("-of"), QStringLiteral("default=nw=1:nk=1"), path})
        .trimmed();
}

long long ProbeAudioFrames(const QString& path) {
    return ProbeValues(path, {QStringLiteral("-select_streams"), QStringLiteral("a:0"),
                              QStringLiteral("-count_packets"), QStringLiteral("-show_entries"),
                              QStringLiteral("stream=nb_read_packets")})
        .toLongLong();
}

QString FfmpegDecodeErrors(const QString& path) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(FfmpegProgram(),
                  {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"),
                   QStringLiteral("-i"), path, QStringLiteral("-f"), QStringLiteral("null"),
                   QStringLiteral("-")});
    if (!process.waitForFinished(60000)) {
        process.kill();
        return QStringLiteral("ffmpeg did not finish");
    }
    return QString::fromUtf8(process.readAll());
}

Mpg123Decode DecodeWithMpg123(const QString& path) {
    Mpg123Decode decode;
    const QString program = FindTool(QStringLiteral("mpg123"));
    if (program.isEmpty()) {
        decode.complaints = QStringLiteral("mpg123 not installed");
        return decode;
    }
    // -t decodes without playing; -v writes a status line per few frames,
    // the last of which holds the count of frames decoded ("> 2155+0000 ...").
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, {QStringLiteral("-t"), QStringLiteral("-v"), path});
    if (!process.waitForFinished(120000) || process.exitCode() != 0) {
        process.kill();
        decode.complaints = QStringLiteral("mpg123 failed: ") + process.errorString();
        return decode;
    }
    static const QRegularExpression status(QStringLiteral("^> (\\d+)\\+"));
    static const QRegularExpression complaint(
        QStringLiteral("error|warning|illegal|resync|skipped|can't|cannot|big value"),
        QRegularExpression::CaseInsensitiveOption);
    const QString output = QString::fromUtf8(process.readAll());
    for (const QString& line : output.split(QRegularExpression(QStringLiteral("[\\r\\n]")))) {
        const QRegularExpressionMatch match = status.match(line);
        if (match.hasMatch()) {
            decode.frames = match.captured(1).toLongLong();
        } else if (complaint.match(line).hasMatch()) {
            decode.complaints += line + QLatin1Char('\n');
        }
    }
    return decode;
}
