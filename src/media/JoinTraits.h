#pragma once

#include <QList>
#include <QString>

// What decides whether a file joins cleanly with the other files of its list,
// as the adding read it from the media library (the same answer that fills
// the row's cells). An MP3 list looks at the first audio stream; an MPEG list
// at the container, the first video stream and every audio stream.
struct AudioTraits {
    QString format;   // "MPEG Audio", "AC-3", "FLAC"...; empty when unknown
    QString version;  // MPEG audio: "Version 1", "Version 2", "Version 2.5"
    QString layer;    // MPEG audio: "Layer 1", "Layer 2", "Layer 3"
    int rate = 0;     // Hz, 0 when unknown
    int channels = 0;

    bool isMpegAudio() const { return format == QLatin1String("MPEG Audio"); }
    // In user words: "MPEG-1 Layer III", or the library's format name.
    QString codecText() const;
};

struct JoinTraits {
    enum class Kind { Mp3, Mpeg };
    enum class Access { Readable, Missing, Unreadable };
    enum class Container { ProgramStream, ElementaryStream, Other };

    Kind kind = Kind::Mp3;
    Access access = Access::Readable;
    Container container = Container::Other;
    QString containerFormat;  // the library's name: "MPEG-PS", "MPEG Video"...
    QString videoCodec;       // "MPEG-2 video"; empty when there is no video
    int width = 0;
    int height = 0;
    double frameRate = 0;  // pictures per second, 0 when unknown
    QString aspectRatio;   // display aspect ratio: "4:3", "16:9", "1.85"
    QList<AudioTraits> audio;

    // The container kind in user words: "program stream", "MPEG video
    // elementary stream", "MPEG-4 file".
    QString containerText() const;
};

// The container kind of the library's general format: "MPEG-PS" is a program
// stream, "MPEG Video" and "MPEG Audio" elementary streams, the rest other.
JoinTraits::Container ContainerOfFormat(const QString& generalFormat);
// A video codec in user words: "MPEG-1 video", "AVC video"; empty for none.
QString VideoCodecText(const QString& format, const QString& version);
// The whole number the text starts with ("2 / 1" gives 2); 0 for none.
int WholeNumberAtStart(const QString& text);
