// Hostile input through the MP3 fix tool's whole path: a raw join and a
// sources file, written to files as a join leaves them, then fixed as the tool
// fixes them (the sources' tags, the joined tag, the chapters, the audio
// frames and the header frame). The input is cut at each "@@@@": the first
// piece gives the sources file, the others are the sources' bytes, put end to
// end into the raw join. A first piece that starts "Velmora join sources" is
// the sources file itself, whatever it says; any other first piece gives the
// sources' names, one a line, and the sources file is made from them and the
// lengths of the pieces, so that it adds up and the chapters are reached.
//
// The fix must end fixed or with no audio frame (and then leave no output).
// A fixed output starts with one ID3v2.3 tag: one chapter per source when
// the sources add up, each chapter ending where the next starts, none before
// the one in front of it; and behind the tag, a header frame that counts
// every byte of the audio.
#include <sys/stat.h>
#include <taglib/chapterframe.h>
#include <taglib/id3v2header.h>
#include <taglib/id3v2tag.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "FuzzPieces.h"
#include "mpegaudio/JoinSources.h"
#include "mpegaudio/Mp3Fixer.h"
#include "mpegaudio/Mp3HeaderFrame.h"
#include "mpegaudio/MpegFrameHeader.h"
#include "mpegaudio/TagBytes.h"

namespace {

constexpr std::size_t kMostSources = 16;
const std::string_view kSourcesFirstLine = "Velmora join sources";

// A private folder for the three files, removed when the process ends: in
// $TMPDIR when it is set, else in memory (/dev/shm) where the system has it,
// since writing and removing files on a disk costs more than a fix of a few
// kilobytes.
class WorkFolder {
public:
    WorkFolder() {
        const char* tmp = std::getenv("TMPDIR");
        struct stat shm {};
        const std::string parent = tmp && *tmp ? tmp
                                   : ::stat("/dev/shm", &shm) == 0 && S_ISDIR(shm.st_mode)
                                       ? "/dev/shm"
                                       : "/tmp";
        std::string pattern = parent + "/velmora_fix_XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        path_ = pattern;
    }
    ~WorkFolder() {
        for (const char* name : {kInput, kSources, kOutput}) {
            ::unlink(file(name).c_str());
        }
        ::rmdir(path_.c_str());
    }
    std::string file(const char* name) const { return path_ + '/' + name; }

    static constexpr const char* kInput = "Joined.mp3.vlr.mp3";
    static constexpr const char* kSources = "JoinSources.txt";
    static constexpr const char* kOutput = "Joined.mp3";

private:
    std::string path_;
};

void writeFile(const std::string& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file) {
        std::abort();
    }
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

// The sources file made from the names in text and the pieces' lengths.
std::string sourcesFor(std::string_view names, const std::vector<std::string_view>& parts) {
    std::vector<JoinSource> sources;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::size_t end = names.find('\n');
        JoinSource source;
        source.length = parts[i].size();
        source.name = names.empty() ? "source " + std::to_string(i) + ".mp3"
                                    : std::string(names.substr(0, end));
        names = end == std::string_view::npos ? std::string_view() : names.substr(end + 1);
        sources.push_back(source);
    }
    return FormatJoinSources(sources);
}

// The chapters of the tag: as many as expected, each ending where the next
// starts, none before the one in front of it.
void checkChapters(const TagLib::ID3v2::Tag& tag, std::size_t expected) {
    const TagLib::ID3v2::FrameList chapters = tag.frameList("CHAP");
    if (chapters.size() != expected) {
        std::abort();
    }
    std::uint32_t previousEnd = 0;
    bool first = true;
    for (TagLib::ID3v2::Frame* frame : chapters) {
        const auto* chapter = dynamic_cast<TagLib::ID3v2::ChapterFrame*>(frame);
        if (chapter == nullptr || chapter->startTime() > chapter->endTime() ||
            (!first && chapter->startTime() != previousEnd)) {
            std::abort();
        }
        previousEnd = chapter->endTime();
        first = false;
    }
}

// The output of a fix: the tag, then a header frame that counts the audio.
void checkOutput(const std::string& output, bool addsUp, std::size_t sources,
                 const std::string& warning) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(output.data());
    const std::uint64_t tagLength = Id3v2TagLength(bytes, output.size());
    if (tagLength == 0 || tagLength + 4 > output.size()) {
        std::abort();
    }
    const std::unique_ptr<TagBytes> tag =
        TagBytes::id3v2(TagLib::ByteVector(output.data(), static_cast<unsigned int>(tagLength)));
    if (tag->v2() == nullptr || tag->v2()->header()->majorVersion() != 3) {
        std::abort();
    }
    if (addsUp != warning.empty()) {
        std::abort();
    }
    checkChapters(*tag->v2(), addsUp ? sources : 0);

    const std::uint8_t* audio = bytes + tagLength;
    const std::size_t audioLength = output.size() - tagLength;
    const MpegFrameHeader header = MpegFrameHeader::fromBytes(audio);
    // A free-format header frame is as long as its stream's frames, which
    // only the distance to a next frame tells; its fields are read from its
    // start, with the rest of the output at hand.
    std::size_t length = static_cast<std::size_t>(header.frameLength());
    if (header.isLayer3FreeFormat()) {
        length = audioLength;
    } else if (!header.isLayer3Audio()) {
        std::abort();
    }
    if (length > audioLength) {
        std::abort();
    }
    const Mp3HeaderFrame written = Mp3HeaderFrame::read(audio, length, header);
    if (written.kind == Mp3HeaderFrame::Kind::None || written.kind == Mp3HeaderFrame::Kind::Vbri ||
        !written.hasFrames || written.frames == 0 || !written.hasBytes ||
        written.bytes != audioLength) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const WorkFolder folder;
    std::vector<std::string_view> parts =
        FuzzPieces(std::string_view(reinterpret_cast<const char*>(data), size));
    if (parts.size() > kMostSources + 1) {
        parts.resize(kMostSources + 1);
    }
    const bool givenSources = parts[0].substr(0, kSourcesFirstLine.size()) == kSourcesFirstLine;
    const std::string sourcesText =
        givenSources ? std::string(parts[0]) : sourcesFor(parts[0], parts);
    std::string raw;
    for (std::size_t i = 1; i < parts.size(); ++i) {
        raw += parts[i];
    }

    // Whether the sources file adds up to the raw join, as the tool must find.
    std::vector<JoinSource> sources;
    bool addsUp = ParseJoinSources(sourcesText, sources) && !sources.empty();
    std::uint64_t total = 0;
    for (const JoinSource& source : sources) {
        addsUp = addsUp && total + source.length >= total;
        total += source.length;
    }
    addsUp = addsUp && total == raw.size();
    if (!givenSources && !addsUp && parts.size() > 1) {
        std::abort();
    }

    const std::string input = folder.file(WorkFolder::kInput);
    const std::string sourcesFile = folder.file(WorkFolder::kSources);
    const std::string output = folder.file(WorkFolder::kOutput);
    writeFile(input, raw);
    writeFile(sourcesFile, sourcesText);
    ::unlink(output.c_str());

    std::string error;
    std::string warning;
    const Mp3Fixer::Status status = Mp3Fixer::FixFile(input, output, sourcesFile, error, warning);
    struct stat left {};
    const bool outputLeft = ::stat(output.c_str(), &left) == 0;
    // A source without audio, or a second free-format rate, ends the fix
    // with the reason and nothing written.
    if (status == Mp3Fixer::NoAudioFrame || status == Mp3Fixer::MixedFreeFormat) {
        if (outputLeft || error.empty()) {
            std::abort();
        }
        return 0;
    }
    if (status != Mp3Fixer::Fixed || !outputLeft) {
        std::abort();
    }
    checkOutput(readFile(output), addsUp, sources.size(), warning);
    return 0;
}
