#pragma once

#include <taglib/tbytevector.h>
#include <taglib/tstring.h>
#include <taglib/tstringlist.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TagLib {
namespace ID3v1 {
class Tag;
}
namespace ID3v2 {
class ChapterFrame;
class Tag;
}  // namespace ID3v2
}  // namespace TagLib

// What the fix tool reads of one source of a join before its audio: the bytes
// of the ID3v2 tag at its start and of the ID3v1 tag at its end (each empty
// when it has none), and its file name.
struct JoinSourceTags {
    TagLib::ByteVector id3v2;
    TagLib::ByteVector id3v1;
    std::string name;
};

// The one ID3v2.3 tag in front of a joined MP3, rendered by TagLib:
//  - the frames that describe the whole work (album, artist, album artist,
//    composer, genre, year, comment, publisher, copyright) of the first source
//    that has a tag (its ID3v2 tag, else its ID3v1 tag); comments of the
//    player's own (descriptions starting "iTun") are left out;
//  - the first front cover among the sources, else their first picture of any
//    kind, its bytes as they were;
//  - a title: that source's album, else the output's name without extension;
//  - an encoder frame naming Velmora and its version;
//  - with chapters: one chapter per source in list order, titled with the
//    source's ID3v2 title, else its ID3v1 title, else its file name without
//    extension, and a top-level ordered table of contents that lists them
//    (through tables of contents of its own past 255 chapters, the most one
//    table holds).
// Everything else of the sources is left out: track numbers, lengths,
// identifiers, volume adjustments, lyrics, chapters. Text is ISO-8859-1 where
// it fits, else UTF-16 with a byte order mark. Sources are added one at a time
// and only what the tag needs of them is kept, so memory holds one picture
// whatever the number of sources.
class JoinedTag {
public:
    JoinedTag(const std::string& outputPath, bool chapters);
    ~JoinedTag();
    JoinedTag(const JoinedTag&) = delete;
    JoinedTag& operator=(const JoinedTag&) = delete;

    // The next source in list order.
    void addSource(const JoinSourceTags& source);

    // The tag's bytes, with a little padding. startsMs[i] is where source i's
    // chapter starts, endMs where the last one ends (on the joined file's
    // playback clock). The length depends only on the sources, never on the
    // times, so the tag can be written before they are known and again after.
    TagLib::ByteVector render(const std::vector<std::uint32_t>& startsMs, std::uint32_t endMs);

    std::size_t chapterCount() const { return chapterTitles_.size(); }

private:
    struct TextFrame {
        TagLib::ByteVector id;
        TagLib::StringList values;
    };
    struct Comment {
        TagLib::ByteVector language;
        TagLib::String description;
        TagLib::String text;
    };
    struct Picture {
        TagLib::String mimeType;
        int type = 0;
        TagLib::String description;
        TagLib::ByteVector data;
    };

    bool takeTemplate(const TagLib::ID3v2::Tag* v2, const TagLib::ID3v1::Tag* v1);
    void takePicture(const TagLib::ID3v2::Tag& v2);
    void build();

    std::string outputTitle_;
    bool chapters_ = false;
    bool haveTemplate_ = false;
    std::vector<TextFrame> texts_;
    std::vector<Comment> comments_;
    TagLib::String album_;
    bool havePicture_ = false;
    bool haveFrontCover_ = false;
    Picture picture_;
    std::vector<TagLib::String> chapterTitles_;

    std::unique_ptr<TagLib::ID3v2::Tag> tag_;
    std::vector<TagLib::ID3v2::ChapterFrame*> chapterFrames_;
};
