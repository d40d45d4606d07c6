// The MP3 fix of a join as a command of its own:
//
//   MP3.exe [options] INPUT OUTPUT
//
// It writes the audio frames of INPUT, the raw join of MP3 files, into OUTPUT
// behind one right header frame (see Mp3Fixer). The options of the fix line
// ("--removedId3v1", "--removeId3v2", "--removeUnknown", "--keepLame") are
// what it always does, and are accepted so. Exit status 0 when OUTPUT is
// written; otherwise one line on standard error, "MP3.exe: FILE: REASON"
// (the tool's name, the file the failure is on, why), and no OUTPUT.
//
// When the join's sources file lies beside the tool (JoinSources.txt, written
// by the program with the scripts), or is named with "--sources FILE", OUTPUT
// starts with a tag and one chapter per source; a sources file that does not
// fit the input gives a tag without chapters and one line on standard error.
// With "--no-tag" OUTPUT has no tag. Either way, a source of which no audio
// frame can be read ends the fix with that source named.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "mpegaudio/Mp3Fixer.h"

namespace {

// The sources file beside the running tool, when there is one.
std::string sourcesBesideTool() {
    std::vector<char> path(4096);
    const ssize_t length = ::readlink("/proc/self/exe", path.data(), path.size() - 1);
    if (length <= 0) {
        return {};
    }
    std::string folder(path.data(), static_cast<std::size_t>(length));
    folder.erase(folder.rfind('/') + 1);
    const std::string sources = folder + "JoinSources.txt";
    return ::access(sources.c_str(), F_OK) == 0 ? sources : std::string();
}

}  // namespace

int main(int argc, char** argv) {
    static const char* const kAlwaysDone[] = {"--removedId3v1", "--removeId3v2", "--removeUnknown",
                                              "--keepLame"};
    const char* name = argc > 0 ? std::strrchr(argv[0], '/') : nullptr;
    name = name ? name + 1 : (argc > 0 ? argv[0] : "MP3.exe");
    std::vector<std::string> paths;
    std::string sources;
    bool sourcesNamed = false;
    Mp3Fixer::TagMode tagMode = Mp3Fixer::WithTag;
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (options && argument == "--") {
            options = false;
            continue;
        }
        if (options && argument == "--no-tag") {
            tagMode = Mp3Fixer::WithoutTag;
            continue;
        }
        if (options && argument == "--sources" && i + 1 < argc) {
            sources = argv[++i];
            sourcesNamed = true;
            continue;
        }
        bool known = false;
        for (const char* option : kAlwaysDone) {
            known = known || (options && argument == option);
        }
        if (!known) {
            paths.push_back(argument);
        }
    }
    if (paths.size() != 2) {
        std::fprintf(stderr, "%s: usage: %s [--sources FILE] [--no-tag] [--] INPUT OUTPUT\n", name,
                     name);
        return Mp3Fixer::UsageError;
    }
    if (!sourcesNamed) {
        sources = sourcesBesideTool();
    }
    std::string error;
    std::string warning;
    const Mp3Fixer::Status status =
        Mp3Fixer::FixFile(paths[0], paths[1], sources, tagMode, error, warning);
    if (!warning.empty()) {
        std::fprintf(stderr, "%s: %s\n", name, warning.c_str());
    }
    if (status != Mp3Fixer::Fixed) {
        std::fprintf(stderr, "%s: %s\n", name, error.c_str());
    }
    return status;
}
