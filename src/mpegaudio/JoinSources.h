#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The sources of an MP3 join, as the program hands them to the fix tool: in
// list order, each source's length in bytes (its bytes follow one another in
// the raw join) and its path (the fix tool names a source by it, and takes
// its file name from behind the last "/"). The file is UTF-8 text: a first
// line "Velmora join sources 1", then one line per source, the length in
// decimal digits, one blank and the path, in which "%", control characters
// and DEL are written as "%" and two upper-case hex digits.
struct JoinSource {
    std::uint64_t length = 0;
    std::string name;  // the path
};

std::string FormatJoinSources(const std::vector<JoinSource>& sources);

// False (and no sources) for text that is not such a file.
bool ParseJoinSources(const std::string& text, std::vector<JoinSource>& sources);
