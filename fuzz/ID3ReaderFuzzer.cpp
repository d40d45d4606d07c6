// Any bytes as an MP3 file: the analysis, every property, the tag fields, and
// a tag written back, which must keep the file's length.
#include <QFileInfo>
#include <cstdlib>

#include "FuzzSupport.h"
#include "media/ID3Reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PrepareFuzzProcess();
    const QString path = WriteFuzzFile(QStringLiteral("input.mp3"), data, size);

    ID3Reader reader;
    reader.setFileName(path);
    if (reader.FileBytes() != static_cast<std::int32_t>(size)) {
        std::abort();
    }
    std::int64_t sink = 0;
    sink += reader.InfoString().size() + reader.Seconds() + reader.MpegVersion() +
            reader.LayerVersion() + reader.Kbits() + reader.Frames() + reader.Hz() +
            reader.Mode().size() + reader.PrivateBit().size() + reader.CRCs().size() +
            reader.Copyrighted().size() + reader.Original().size() + reader.Emphasis().size() +
            reader.Channels();
    sink += reader.Title().size() + reader.Artist().size() + reader.Album().size() +
            reader.Year().size() + reader.Comments().size() + reader.Genre();
    sink += ID3Reader::GenreText(static_cast<std::int16_t>(reader.Genre())).size();
    sink += reader.HasTag() ? 1 : 0;
    KeepFuzzResult(sink);

    // Writing the tag back: the file keeps its length, and a file of at least
    // 128 bytes has a tag afterwards.
    reader.setTitle(reader.Title() + QStringLiteral("x"));
    reader.setGenre(static_cast<std::int32_t>(size % 300));
    const bool written = reader.WriteTag();
    if (QFileInfo(path).size() != static_cast<qint64>(size)) {
        std::abort();
    }
    if (written && size >= 128 && !reader.HasTag()) {
        std::abort();
    }
    if (reader.ClearTag() && QFileInfo(path).size() != static_cast<qint64>(size)) {
        std::abort();
    }
    return 0;
}
