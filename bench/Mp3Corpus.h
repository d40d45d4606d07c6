#pragma once

// Real MP3 files for the benchmarks: a few encodings made with ffmpeg into a
// temporary folder (three of five with an ID3v2.4 tag and a front cover and no
// ID3v1 tag, one with an ID3v1 tag, one without a tag), and any number of files
// named track00000.mp3 and up that are copies of them (hard links where the
// file system allows, so that 100,000 files cost no disk space; the files read
// the same either way).

#include <QStringList>
#include <QTemporaryDir>

class Mp3Corpus {
public:
    explicit Mp3Corpus(int files);

    bool ok() const { return ok_; }
    QString folder() const { return dir_.path(); }
    const QStringList& names() const { return names_; }
    const QStringList& paths() const { return paths_; }

private:
    QTemporaryDir dir_;
    QStringList names_;
    QStringList paths_;
    bool ok_ = false;
};

// The memory the process holds now (resident set), in megabytes.
double ResidentMegabytes();
