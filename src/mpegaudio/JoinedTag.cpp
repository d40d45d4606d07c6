#include "mpegaudio/JoinedTag.h"

#include <taglib/attachedpictureframe.h>
#include <taglib/chapterframe.h>
#include <taglib/commentsframe.h>
#include <taglib/id3v1tag.h>
#include <taglib/id3v2tag.h>
#include <taglib/tableofcontentsframe.h>
#include <taglib/textidentificationframe.h>

#include <algorithm>

#include "mpegaudio/TagBytes.h"

#ifndef VELMORA_VERSION
#define VELMORA_VERSION "0"
#endif

namespace {

using TagLib::ByteVector;
using TagLib::String;
using TagLib::StringList;
namespace ID3v2 = TagLib::ID3v2;

// The frames of a source's tag that describe the whole work. A year of an
// ID3v2.3 tag reads as TDRC through TagLib, which writes it back as TYER.
const char* const kWorkFrames[] = {"TALB", "TPE1", "TPE2", "TCOM", "TCON",
                                   "TDRC", "TYER", "TPUB", "TCOP"};
constexpr std::size_t kMostChildren = 255;
constexpr unsigned int kNoOffset = 0xFFFFFFFFu;

String::Type encodingFor(const StringList& texts) {
    for (const String& text : texts) {
        if (!text.isLatin1()) {
            return String::UTF16;
        }
    }
    return String::Latin1;
}

bool hasText(const StringList& values) {
    for (const String& value : values) {
        if (!value.stripWhiteSpace().isEmpty()) {
            return true;
        }
    }
    return false;
}

// A comment that a player keeps about one file (gapless and loudness data,
// disc identifiers).
bool isPlayerComment(const String& description) {
    return description.startsWith("iTun");
}

ID3v2::TextIdentificationFrame* textFrame(const ByteVector& id, const StringList& values) {
    auto* frame = new ID3v2::TextIdentificationFrame(id, encodingFor(values));
    frame->setText(values);
    return frame;
}

std::string withoutExtension(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

String utf8(const std::string& text) {
    return String(text, String::UTF8);
}

ByteVector elementId(const char* prefix, std::size_t number) {
    return ByteVector((prefix + std::to_string(number)).c_str());
}

}  // namespace

JoinedTag::JoinedTag(const std::string& outputPath, bool chapters)
    : outputTitle_(withoutExtension(fileNameOf(outputPath))), chapters_(chapters) {}

JoinedTag::~JoinedTag() = default;

void JoinedTag::addSource(const JoinSourceTags& source) {
    // Each tag is read once, and only where something is still wanted of it.
    const std::unique_ptr<TagBytes> v2 = TagBytes::id3v2(source.id3v2);
    const std::unique_ptr<TagBytes> v1 = TagBytes::id3v1(source.id3v1);
    if (!haveTemplate_) {
        haveTemplate_ = takeTemplate(v2->v2(), v1->v1());
    }
    if (!haveFrontCover_ && v2->v2()) {
        takePicture(*v2->v2());
    }
    if (!chapters_) {
        return;
    }
    String title = v2->v2() ? v2->v2()->title().stripWhiteSpace() : String();
    if (title.isEmpty() && v1->v1()) {
        title = v1->v1()->title().stripWhiteSpace();
    }
    if (title.isEmpty()) {
        title = utf8(withoutExtension(source.name));
    }
    chapterTitles_.push_back(title);
}

bool JoinedTag::takeTemplate(const TagLib::ID3v2::Tag* v2, const TagLib::ID3v1::Tag* v1) {
    if (v2) {
        for (const char* id : kWorkFrames) {
            for (ID3v2::Frame* frame : v2->frameList(id)) {
                if (auto* text = dynamic_cast<ID3v2::TextIdentificationFrame*>(frame);
                    text && hasText(text->fieldList())) {
                    texts_.push_back({ByteVector(id), text->fieldList()});
                }
            }
        }
        for (ID3v2::Frame* frame : v2->frameList("COMM")) {
            auto* comment = dynamic_cast<ID3v2::CommentsFrame*>(frame);
            if (comment && !isPlayerComment(comment->description()) && !comment->text().isEmpty()) {
                comments_.push_back({comment->language(), comment->description(), comment->text()});
            }
        }
        album_ = v2->album().stripWhiteSpace();
        if (!texts_.empty() || !comments_.empty() || !v2->title().isEmpty()) {
            return true;
        }
    }
    if (!v1) {
        return false;
    }
    const auto add = [this](const char* id, const String& value) {
        if (!value.stripWhiteSpace().isEmpty()) {
            texts_.push_back({ByteVector(id), StringList(value.stripWhiteSpace())});
        }
    };
    add("TALB", v1->album());
    add("TPE1", v1->artist());
    add("TDRC", v1->year() > 0 ? String::number(static_cast<int>(v1->year())) : String());
    add("TCON", v1->genre());
    if (!v1->comment().stripWhiteSpace().isEmpty()) {
        comments_.push_back({ByteVector("eng"), String(), v1->comment().stripWhiteSpace()});
    }
    album_ = v1->album().stripWhiteSpace();
    return true;
}

void JoinedTag::takePicture(const TagLib::ID3v2::Tag& v2) {
    for (ID3v2::Frame* frame : v2.frameList("APIC")) {
        auto* picture = dynamic_cast<ID3v2::AttachedPictureFrame*>(frame);
        if (!picture || picture->picture().isEmpty()) {
            continue;
        }
        const bool front = picture->type() == ID3v2::AttachedPictureFrame::FrontCover;
        if (!havePicture_ || front) {
            picture_ = {picture->mimeType(), static_cast<int>(picture->type()),
                        picture->description(), picture->picture()};
            havePicture_ = true;
            haveFrontCover_ = front;
        }
        if (front) {
            return;
        }
    }
}

void JoinedTag::build() {
    tag_ = std::make_unique<ID3v2::Tag>();
    ID3v2::Tag& tag = *tag_;
    tag.addFrame(textFrame("TIT2", StringList(album_.isEmpty() ? utf8(outputTitle_) : album_)));
    for (const TextFrame& text : texts_) {
        if (tag.frameList(text.id).isEmpty()) {
            tag.addFrame(textFrame(text.id, text.values));
        }
    }
    for (const Comment& comment : comments_) {
        auto* frame = new ID3v2::CommentsFrame(
            encodingFor(StringList(comment.description).append(comment.text)));
        frame->setLanguage(comment.language);
        frame->setDescription(comment.description);
        frame->setText(comment.text);
        tag.addFrame(frame);
    }
    tag.addFrame(textFrame("TSSE", StringList(String("Velmora " VELMORA_VERSION))));
    if (havePicture_) {
        auto* frame = new ID3v2::AttachedPictureFrame;
        frame->setTextEncoding(encodingFor(StringList(picture_.description)));
        frame->setMimeType(picture_.mimeType);
        frame->setType(static_cast<ID3v2::AttachedPictureFrame::Type>(picture_.type));
        frame->setDescription(picture_.description);
        frame->setPicture(picture_.data);
        tag.addFrame(frame);
    }
    if (!chapters_ || chapterTitles_.empty()) {
        return;
    }

    // The tables of contents: each lists at most 255 entries, so past that
    // the chapters are grouped under tables of their own, level by level,
    // until the top-level table lists few enough.
    TagLib::ByteVectorList entries;
    for (std::size_t i = 0; i < chapterTitles_.size(); ++i) {
        entries.append(elementId("chp", i + 1));
    }
    std::vector<ID3v2::TableOfContentsFrame*> tables;
    for (std::size_t level = 1; entries.size() > kMostChildren; ++level) {
        TagLib::ByteVectorList groups;
        for (std::size_t first = 0; first < entries.size(); first += kMostChildren) {
            const ByteVector id =
                elementId(("toc" + std::to_string(level) + "-").c_str(), groups.size() + 1);
            auto* table = new ID3v2::TableOfContentsFrame(id);
            table->setIsTopLevel(false);
            table->setIsOrdered(true);
            for (std::size_t i = first; i < entries.size() && i < first + kMostChildren; ++i) {
                table->addChildElement(entries[static_cast<unsigned int>(i)]);
            }
            tables.push_back(table);
            groups.append(id);
        }
        entries = groups;
    }
    auto* top = new ID3v2::TableOfContentsFrame(ByteVector("toc"));
    top->setIsTopLevel(true);
    top->setIsOrdered(true);
    top->setChildElements(entries);
    tag.addFrame(top);
    for (ID3v2::TableOfContentsFrame* table : tables) {
        tag.addFrame(table);
    }
    for (std::size_t i = 0; i < chapterTitles_.size(); ++i) {
        const String& title = chapterTitles_[i];
        auto* chapter =
            new ID3v2::ChapterFrame(elementId("chp", i + 1), 0, 0, kNoOffset, kNoOffset);
        chapter->addEmbeddedFrame(textFrame("TIT2", StringList(title)));
        tag.addFrame(chapter);
        chapterFrames_.push_back(chapter);
    }
}

TagLib::ByteVector JoinedTag::render(const std::vector<std::uint32_t>& startsMs,
                                     std::uint32_t endMs) {
    if (!tag_) {
        build();
    }
    for (std::size_t i = 0; i < chapterFrames_.size(); ++i) {
        const std::uint32_t start = i < startsMs.size() ? startsMs[i] : endMs;
        const std::uint32_t end = i + 1 < startsMs.size() ? startsMs[i + 1] : endMs;
        chapterFrames_[i]->setStartTime(start);
        chapterFrames_[i]->setEndTime(std::max(start, end));
    }
    return tag_->render(ID3v2::v3);
}
