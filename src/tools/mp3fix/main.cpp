// The MP3 fix of a join as a command of its own:
//
//   MP3.exe [options] INPUT OUTPUT
//
// It writes the audio frames of INPUT, the raw join of MP3 files, into OUTPUT
// behind one right header frame (see Mp3Fixer). The options of the fix line
// ("--removedId3v1", "--removeId3v2", "--removeUnknown", "--keepLame") are
// what it always does, and are accepted so. Exit status 0 when OUTPUT is
// written; otherwise one line on standard error and no OUTPUT.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "mpegaudio/Mp3Fixer.h"

int main(int argc, char** argv) {
    static const char* const kAlwaysDone[] = {"--removedId3v1", "--removeId3v2", "--removeUnknown",
                                              "--keepLame"};
    const char* name = argc > 0 ? std::strrchr(argv[0], '/') : nullptr;
    name = name ? name + 1 : (argc > 0 ? argv[0] : "MP3.exe");
    std::vector<std::string> paths;
    bool options = true;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (options && argument == "--") {
            options = false;
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
        std::fprintf(stderr, "%s: usage: %s [--] INPUT OUTPUT\n", name, name);
        return Mp3Fixer::UsageError;
    }
    std::string error;
    const Mp3Fixer::Status status = Mp3Fixer::FixFile(paths[0], paths[1], error);
    if (status != Mp3Fixer::Fixed) {
        std::fprintf(stderr, "%s: %s\n", name, error.c_str());
    }
    return status;
}
