// The joined MP3's tag as the fix tool builds it, the sources file that tells
// the tool where each source lies, and the tool with a sources file that no
// longer fits its input.
#include <gtest/gtest.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/chapterframe.h>
#include <taglib/commentsframe.h>
#include <taglib/id3v2tag.h>
#include <taglib/tableofcontentsframe.h>
#include <taglib/textidentificationframe.h>

#include <QProcess>
#include <QTemporaryDir>
#include <functional>

#include "ByteFiles.h"
#include "mpegaudio/JoinSources.h"
#include "mpegaudio/JoinedTag.h"
#include "mpegaudio/TagBytes.h"
#include "support/MediaMaker.h"

namespace {

JoinSourceTags named(const std::string& name) {
    JoinSourceTags source;
    source.name = name;
    return source;
}

JoinSourceTags withV1(const std::string& name, const QByteArray& title, const QByteArray& album) {
    JoinSourceTags source = named(name);
    const QByteArray tag = bytefiles::Tag(title, "Artist", album, "1999", "Comment", 17);
    source.id3v1 = TagLib::ByteVector(tag.constData(), static_cast<unsigned int>(tag.size()));
    return source;
}

std::string text(const TagLib::String& value) {
    return value.to8Bit(true);
}

using PictureType = TagLib::ID3v2::AttachedPictureFrame::Type;

// An ID3v2.4 tag, rendered by TagLib, with a title, the given pictures (each
// a type and its bytes) and the given comments (each a description and its
// text).
JoinSourceTags withV2(const std::string& name, const std::string& title,
                      const std::vector<std::pair<PictureType, std::string>>& pictures,
                      const std::vector<std::pair<std::string, std::string>>& notes = {}) {
    TagLib::ID3v2::Tag tag;
    tag.setTitle(TagLib::String(title, TagLib::String::UTF8));
    for (const auto& [type, bytes] : pictures) {
        auto* frame = new TagLib::ID3v2::AttachedPictureFrame;
        frame->setMimeType("image/png");
        frame->setType(type);
        frame->setPicture(
            TagLib::ByteVector(bytes.data(), static_cast<unsigned int>(bytes.size())));
        tag.addFrame(frame);
    }
    for (const auto& [description, note] : notes) {
        auto* frame = new TagLib::ID3v2::CommentsFrame;
        frame->setLanguage("eng");
        frame->setDescription(TagLib::String(description, TagLib::String::UTF8));
        frame->setText(TagLib::String(note, TagLib::String::UTF8));
        tag.addFrame(frame);
    }
    JoinSourceTags source = named(name);
    source.id3v2 = tag.render();
    return source;
}

}  // namespace

TEST(JoinSourcesTest, FormatAndParse_GiveTheSameSourcesBack) {
    const std::vector<JoinSource> sources = {
        {123456789012ULL, "one.mp3"}, {0, "with blank and 100%"}, {7, "line\nbreak\tand Ωmega"}};
    const std::string text = FormatJoinSources(sources);
    EXPECT_EQ(text.find("line\n"), std::string::npos);
    std::vector<JoinSource> read;
    ASSERT_TRUE(ParseJoinSources(text, read));
    ASSERT_EQ(read.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(read[i].length, sources[i].length);
        EXPECT_EQ(read[i].name, sources[i].name);
    }
}

TEST(JoinSourcesTest, OtherText_IsNoSourcesFile) {
    std::vector<JoinSource> read;
    EXPECT_FALSE(ParseJoinSources("", read));
    EXPECT_FALSE(ParseJoinSources("12 one.mp3\n", read));
    EXPECT_FALSE(ParseJoinSources("Velmora join sources 1\nx12 one.mp3\n", read));
    EXPECT_FALSE(ParseJoinSources("Velmora join sources 1\n12 bad%G1\n", read));
    EXPECT_FALSE(ParseJoinSources("Velmora join sources 1\n99999999999999999999999 a\n", read));
    EXPECT_TRUE(read.empty());
}

TEST(JoinedTagTest, Length_DependsOnTheSourcesNotOnTheTimes) {
    JoinedTag tag("/out/Book.mp3", true);
    tag.addSource(withV1("a.mp3", "First", "Album"));
    tag.addSource(named("b.mp3"));
    const TagLib::ByteVector before = tag.render({}, 0);
    const TagLib::ByteVector after = tag.render({0, 123456}, 4000000000u);
    EXPECT_EQ(before.size(), after.size());
    EXPECT_NE(before, after);
}

TEST(JoinedTagTest, Id3v1Template_AlbumTitleAndChapterTitlesFromTagOrName) {
    JoinedTag tag("/out/Book.mp3", true);
    tag.addSource(named("intro.mp3"));
    tag.addSource(withV1("b.mp3", "Second", "The Album"));
    tag.addSource(withV1("c.mp3", "", "Other"));
    const TagLib::ByteVector bytes = tag.render({0, 1000, 2000}, 3000);
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(bytes);
    ASSERT_NE(read->v2(), nullptr);
    const TagLib::ID3v2::Tag& v2 = *read->v2();
    EXPECT_EQ(v2.header()->majorVersion(), 3u);
    EXPECT_EQ(text(v2.title()), "The Album");
    EXPECT_EQ(text(v2.album()), "The Album");
    EXPECT_EQ(text(v2.artist()), "Artist");
    EXPECT_EQ(text(v2.genre()), "Rock");
    EXPECT_EQ(v2.year(), 1999u);
    const TagLib::ID3v2::FrameList chapters = v2.frameList("CHAP");
    ASSERT_EQ(chapters.size(), 3u);
    const char* const titles[] = {"intro", "Second", "c"};
    unsigned int i = 0;
    for (TagLib::ID3v2::Frame* frame : chapters) {
        auto* chapter = dynamic_cast<TagLib::ID3v2::ChapterFrame*>(frame);
        ASSERT_NE(chapter, nullptr);
        EXPECT_EQ(chapter->startTime(), 1000 * i);
        EXPECT_EQ(chapter->endTime(), 1000 * (i + 1));
        EXPECT_EQ(text(chapter->embeddedFrameList("TIT2").front()->toString()), titles[i]);
        ++i;
    }
}

TEST(JoinedTagTest, FrontCoverInTheSecondSourceBehindOtherTypes_IsThePictureKept) {
    JoinedTag tag("/out/Album.mp3", true);
    tag.addSource(withV2("a.mp3", "A", {{PictureType::Illustration, "illustration of a"}}));
    tag.addSource(withV2("b.mp3", "B",
                         {{PictureType::BackCover, "back of b"},
                          {PictureType::FrontCover, "front of b"},
                          {PictureType::FrontCover, "second front of b"}}));
    tag.addSource(withV2("c.mp3", "C", {{PictureType::FrontCover, "front of c"}}));
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(tag.render({0, 1000, 2000}, 3000));
    ASSERT_NE(read->v2(), nullptr);
    const TagLib::ID3v2::FrameList pictures = read->v2()->frameList("APIC");
    ASSERT_EQ(pictures.size(), 1u);
    auto* picture = dynamic_cast<TagLib::ID3v2::AttachedPictureFrame*>(pictures.front());
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->type(), PictureType::FrontCover);
    EXPECT_EQ(picture->picture(), TagLib::ByteVector("front of b"));
}

TEST(JoinedTagTest, CommentsOfTheTemplate_KeptWithoutThePlayersOwn) {
    JoinedTag tag("/out/Album.mp3", true);
    tag.addSource(withV2(
        "a.mp3", "A", {},
        {{"iTunNORM", " 0000044E 00000000"}, {"", "Recorded live"}, {"Ωmega", "Second take"}}));
    tag.addSource(withV2("b.mp3", "B", {}, {{"", "Not the template"}}));
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(tag.render({0, 1000}, 2000));
    ASSERT_NE(read->v2(), nullptr);
    std::vector<std::string> kept;
    for (TagLib::ID3v2::Frame* frame : read->v2()->frameList("COMM")) {
        auto* comment = dynamic_cast<TagLib::ID3v2::CommentsFrame*>(frame);
        ASSERT_NE(comment, nullptr);
        kept.push_back(std::string(comment->language().data(), comment->language().size()) + "|" +
                       text(comment->description()) + "|" + text(comment->text()));
    }
    EXPECT_EQ(kept, (std::vector<std::string>{"eng||Recorded live", "eng|Ωmega|Second take"}));
}

TEST(JoinedTagTest, NoTagAnywhere_TitleIsTheOutputsNameAndThereIsAnEncoder) {
    JoinedTag tag("/out/My Book.final.mp3", false);
    tag.addSource(named("a.mp3"));
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(tag.render({}, 0));
    ASSERT_NE(read->v2(), nullptr);
    EXPECT_EQ(text(read->v2()->title()), "My Book.final");
    EXPECT_TRUE(read->v2()->frameList("CHAP").isEmpty());
    EXPECT_TRUE(read->v2()->frameList("CTOC").isEmpty());
    ASSERT_FALSE(read->v2()->frameList("TSSE").isEmpty());
    EXPECT_EQ(text(read->v2()->frameList("TSSE").front()->toString()).rfind("Velmora ", 0), 0u);
}

TEST(JoinedTagTest, MoreThan255Sources_TablesNestSoEveryChapterIsReachable) {
    constexpr std::size_t kSources = 600;
    JoinedTag tag("/out/Long.mp3", true);
    std::vector<std::uint32_t> starts;
    for (std::size_t i = 0; i < kSources; ++i) {
        tag.addSource(named("part " + std::to_string(i) + ".mp3"));
        starts.push_back(static_cast<std::uint32_t>(i * 100));
    }
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(tag.render(starts, kSources * 100));
    ASSERT_NE(read->v2(), nullptr);
    const TagLib::ID3v2::Tag& v2 = *read->v2();
    EXPECT_EQ(v2.frameList("CHAP").size(), kSources);
    // Walks the tables from the top-level one, depth first.
    std::vector<std::string> reached;
    std::function<void(const TagLib::ByteVector&)> walk = [&](const TagLib::ByteVector& id) {
        if (auto* table = TagLib::ID3v2::TableOfContentsFrame::findByElementID(&v2, id)) {
            EXPECT_LE(table->entryCount(), 255u);
            EXPECT_TRUE(table->isOrdered());
            for (const TagLib::ByteVector& child : table->childElements()) {
                walk(child);
            }
        } else {
            reached.push_back(std::string(id.data(), id.size()));
        }
    };
    const TagLib::ID3v2::TableOfContentsFrame* top =
        TagLib::ID3v2::TableOfContentsFrame::findTopLevel(&v2);
    ASSERT_NE(top, nullptr);
    walk(top->elementID());
    ASSERT_EQ(reached.size(), kSources);
    for (std::size_t i = 0; i < kSources; ++i) {
        EXPECT_EQ(reached[i], "chp" + std::to_string(i + 1));
    }
}

TEST(Mp3FixToolTagsTest, SourcesThatNoLongerAddUp_TagWithoutChaptersAndOneLineOnStandardError) {
    ASSERT_TRUE(HaveFfmpeg());
    QTemporaryDir dir;
    Mp3Options options;
    options.id3v2 = true;
    options.metadata = {{QStringLiteral("album"), QStringLiteral("Kept Album")}};
    const QString source = MakeMp3(dir.path(), QStringLiteral("a.mp3"), options);
    ASSERT_FALSE(source.isEmpty());
    const QByteArray bytes = bytefiles::Read(source);
    const QString raw = dir.filePath(QStringLiteral("raw.mp3"));
    ASSERT_TRUE(bytefiles::Write(raw, bytes + bytes));
    const QString sources = dir.filePath(QStringLiteral("JoinSources.txt"));
    ASSERT_TRUE(
        bytefiles::Write(sources, QByteArray::fromStdString(FormatJoinSources(
                                      {{static_cast<std::uint64_t>(bytes.size()), "a.mp3"},
                                       {static_cast<std::uint64_t>(bytes.size()) + 1, "b.mp3"}}))));
    const QString output = dir.filePath(QStringLiteral("out.mp3"));
    QProcess tool;
    tool.start(QStringLiteral(VELMORA_MP3_FIX_TOOL),
               {QStringLiteral("--sources"), sources, raw, output});
    ASSERT_TRUE(tool.waitForFinished(60000));
    EXPECT_EQ(tool.exitCode(), 0);
    const QString errors = QString::fromUtf8(tool.readAllStandardError());
    EXPECT_EQ(errors.count(u'\n'), 1) << errors.toStdString();
    EXPECT_TRUE(errors.contains(QStringLiteral("no chapters"))) << errors.toStdString();

    const QByteArray joined = bytefiles::Read(output);
    const std::unique_ptr<TagBytes> read = TagBytes::id3v2(
        TagLib::ByteVector(joined.constData(), static_cast<unsigned int>(joined.size())));
    ASSERT_NE(read->v2(), nullptr);
    EXPECT_EQ(text(read->v2()->title()), "Kept Album");
    EXPECT_TRUE(read->v2()->frameList("CHAP").isEmpty());
}
