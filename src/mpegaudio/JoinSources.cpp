#include "mpegaudio/JoinSources.h"

#include <limits>

namespace {

const std::string kFirstLine = "Velmora join sources 1";

bool escaped(unsigned char c) {
    return c < 0x20 || c == 0x7F || c == '%';
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

bool parseLine(const std::string& line, JoinSource& source) {
    const std::size_t blank = line.find(' ');
    if (blank == 0 || blank == std::string::npos || blank > 20) {
        return false;
    }
    std::uint64_t length = 0;
    for (std::size_t i = 0; i < blank; ++i) {
        const char c = line[i];
        if (c < '0' || c > '9' || length > (std::numeric_limits<std::uint64_t>::max() - 9) / 10) {
            return false;
        }
        length = length * 10 + static_cast<std::uint64_t>(c - '0');
    }
    std::string name;
    for (std::size_t i = blank + 1; i < line.size(); ++i) {
        if (line[i] != '%') {
            name += line[i];
            continue;
        }
        const int high = i + 2 < line.size() ? hexValue(line[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(line[i + 2]) : -1;
        if (low < 0) {
            return false;
        }
        name += static_cast<char>(high * 16 + low);
        i += 2;
    }
    source.length = length;
    source.name = name;
    return true;
}

}  // namespace

std::string FormatJoinSources(const std::vector<JoinSource>& sources) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string text = kFirstLine + '\n';
    for (const JoinSource& source : sources) {
        text += std::to_string(source.length);
        text += ' ';
        for (const char c : source.name) {
            const auto byte = static_cast<unsigned char>(c);
            if (escaped(byte)) {
                text += '%';
                text += kHex[byte >> 4];
                text += kHex[byte & 0x0F];
            } else {
                text += c;
            }
        }
        text += '\n';
    }
    return text;
}

bool ParseJoinSources(const std::string& text, std::vector<JoinSource>& sources) {
    sources.clear();
    std::size_t at = 0;
    bool first = true;
    while (at < text.size()) {
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) {
            end = text.size();
        }
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        if (first) {
            first = false;
            if (line != kFirstLine) {
                return false;
            }
            continue;
        }
        JoinSource source;
        if (!parseLine(line, source)) {
            sources.clear();
            return false;
        }
        sources.push_back(source);
    }
    return !first;
}
