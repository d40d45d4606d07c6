#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

// One file opened in the MediaInfo library through its C interface. The
// handle is made, told not to ask the network and to give the classic value
// names (so "Video;%Codec%" reads "MPEG-1V" or "MPEG-2V" and
// "General;%PlayTime%" gives milliseconds), and the file is opened; the
// destructor closes and frees the handle.
class MediaInfoFile {
public:
    explicit MediaInfoFile(const QString& path);
    ~MediaInfoFile();
    MediaInfoFile(const MediaInfoFile&) = delete;
    MediaInfoFile& operator=(const MediaInfoFile&) = delete;

    // The library's answer to an "Inform" template such as
    // "Audio;%BitRate%"; the empty text for a value it doesn't know.
    QString inform(const QString& templateText);

    // Several fields of every stream of several kinds in one answer of the
    // library: asked maps a stream kind ("General", "Audio", "Video") to the
    // field names ("SamplingRate", "Channel(s)"); the result maps each kind to
    // one record per stream of that kind, the fields' values in the order
    // asked. A kind without streams has no records. Each value is what the
    // template "<kind>;%<field>%" gives for that stream alone.
    using Records = QHash<QString, QList<QStringList>>;
    Records informRecords(const QList<std::pair<QString, QStringList>>& asked);

    // True when the library could open the file (false only for a file that
    // isn't there).
    bool opened() const { return opened_; }

private:
    void* handle_ = nullptr;
    bool opened_ = false;
};

// The values of one field over all records, one after the other with nothing
// between: what the single template "<kind>;%<field>%" gives for the file.
QString JoinedField(const QList<QStringList>& records, int field);

// The library's wide text as text of the program, copied at once (the
// library keeps its buffer and reuses it at the next call). A null pointer
// gives the empty text.
QString MediaText(const wchar_t* text);
