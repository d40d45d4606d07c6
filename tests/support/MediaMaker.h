#pragma once

// Makes real media files with ffmpeg for the tests: MP3 (constant or variable
// bitrate, with or without an ID3v1 tag) and MPEG program streams (MPEG-1 or
// MPEG-2 video with MP2 audio). Each maker writes into the given folder and
// returns the full path of the new file, or the empty text when ffmpeg failed
// (the reason goes to LastMediaMakerError()).

#include <QMap>
#include <QString>
#include <QStringList>

// True when /usr/bin/ffmpeg (or ffmpeg on the PATH) runs.
bool HaveFfmpeg();

// The ffmpeg program the makers use.
QString FfmpegProgram();

// What went wrong in the last failed maker call (ffmpeg's own messages).
QString LastMediaMakerError();

struct Mp3Options {
    int bitrateKbps = 128;            // constant bitrate; ignored when vbrQuality >= 0
    int vbrQuality = -1;              // 0 (best) .. 9: variable bitrate with a Xing header
    int sampleRate = 44100;           // 32000, 44100, 48000 (MPEG-1); 16000, 22050, 24000 (MPEG-2)
    int channels = 2;                 // 1 or 2
    double seconds = 2.0;             // length of the sine tone
    bool id3v1 = false;               // append an ID3v1 tag at the end of the file
    bool id3v2 = false;               // keep the ID3v2 header ffmpeg writes at the front
    QMap<QString, QString> metadata;  // e.g. {"title","Song"},{"artist","Band"},{"album",...},
                                      // {"date","1999"},{"comment",...},{"genre","Rock"}
    int frequencyHz = 440;            // pitch of the tone (vary it to make files differ)
};

// An MP3 file named fileName in folder.
QString MakeMp3(const QString& folder, const QString& fileName, const Mp3Options& options = {});

struct MpegOptions {
    int mpegVersion = 1;  // 1: mpeg1video, 2: mpeg2video
    int width = 352;
    int height = 288;
    int frameRate = 25;
    double seconds = 2.0;
    bool withAudio = true;  // mp2 audio track
    bool withVideo = true;  // false gives an audio-only program stream
    int audioRate = 44100;
    int audioKbps = 128;
    // 0: ffmpeg's default. Set, it makes bigger files: the pictures get a
    // grain that changes from picture to picture, so the encoder spends it.
    int videoKbps = 0;
    QString format;  // muxer: "mpeg" (default for MPEG-1) or "vob" (default for MPEG-2)
};

// A free-format MP3 (bit-rate index 0 in every frame, the header frame
// included) made by the lame encoder with --freeformat at kbps from a sine
// tone of options.seconds, options.frequencyHz, options.sampleRate and
// options.channels; with the title in an ID3v2 tag when one is given.
QString MakeFreeFormatMp3(const QString& folder, const QString& fileName, int kbps,
                          const Mp3Options& options = {}, const QString& title = QString());

// An MPEG program stream named fileName in folder.
QString MakeMpeg(const QString& folder, const QString& fileName, const MpegOptions& options = {});

// Runs ffmpeg with these arguments (after "-nostdin -y -loglevel error");
// true when it ended with code 0 within timeoutMs.
bool RunFfmpeg(const QStringList& arguments, int timeoutMs = 120000);

// Runs ffprobe with these arguments and returns its standard output (empty on failure).
QString RunFfprobe(const QStringList& arguments, int timeoutMs = 60000);

// ffprobe's values of these entries for path, one a line without their keys.
QString ProbeValues(const QString& path, const QStringList& entries);

// The number of packets ffprobe reads in the first audio stream of path.
long long ProbeAudioFrames(const QString& path);

// What ffmpeg says while it decodes the whole file (nothing when it is clean).
QString FfmpegDecodeErrors(const QString& path);

// What mpg123, a decoder not built on ffmpeg, makes of an MP3 file: the audio
// frames it decoded (-1 when it could not run) and every line in which it
// complained of the stream (nothing when it is clean).
struct Mpg123Decode {
    long long frames = -1;
    QString complaints;
};
Mpg123Decode DecodeWithMpg123(const QString& path);
