#pragma once

#include <string_view>
#include <vector>

// An input cut into its pieces at each "@@@@", so that a target can take one
// input apart into several files or texts; an input without it is one piece.
inline std::vector<std::string_view> FuzzPieces(std::string_view data) {
    std::vector<std::string_view> result;
    for (;;) {
        const std::size_t at = data.find("@@@@");
        result.push_back(data.substr(0, at));
        if (at == std::string_view::npos) {
            return result;
        }
        data.remove_prefix(at + 4);
    }
}
