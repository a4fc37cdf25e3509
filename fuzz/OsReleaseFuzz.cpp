// SPDX-License-Identifier: MIT
// Release descriptions against a reader that takes each value apart into protected and unprotected pieces
// before it decides what belongs to the value.
//
// Input: the bytes of the file.
#include <map>
#include <string>
#include <vector>

#include "foundation/objects/NSString.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "info/ReleaseFile.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

struct Piece {
    std::string text;
    bool isBlank; ///< without anything that protects it
};

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// From after the opening quote to after the closing one, which may be missing.
std::string takeQuoted(std::string_view line, std::size_t& at, char quote) {
    std::string text;
    for (; at < line.size() && line[at] != quote; ++at) {
        const bool escapes =
            quote == '"' && line[at] == '\\' && at + 1 < line.size() &&
            (line[at + 1] == '"' || line[at + 1] == '\\' || line[at + 1] == '$' || line[at + 1] == '`');
        at += escapes ? 1 : 0;
        text += line[at];
    }
    ++at;
    return text;
}

std::vector<Piece> slowPieces(std::string_view line) {
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at < line.size();) {
        const char c = line[at++];
        if (c == '#' && !pieces.empty() && pieces.back().isBlank) {
            break;
        }
        if (c == '"' || c == '\'') {
            pieces.push_back({takeQuoted(line, at, c), false});
        } else if (c != '\\') {
            pieces.push_back({std::string(1, c), isBlank(c)});
        } else {
            pieces.push_back({at < line.size() ? std::string(1, line[at++]) : "", false});
        }
    }
    return pieces;
}

std::string slowValue(std::string_view line) {
    std::vector<Piece> pieces = slowPieces(line);
    while (!pieces.empty() && pieces.back().isBlank) {
        pieces.pop_back();
    }
    while (!pieces.empty() && pieces.front().isBlank) {
        pieces.erase(pieces.begin());
    }
    std::string value;
    for (const Piece& piece : pieces) {
        value += piece.text;
    }
    return value;
}

std::map<std::string, std::string> slowEntries(std::string_view bytes) {
    std::map<std::string, std::string> entries;
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
    }
    while (!bytes.empty()) {
        std::string_view line = bytes.substr(0, bytes.find('\n'));
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        while (!line.empty() && isBlank(line[0])) {
            line.remove_prefix(1);
        }
        for (const std::string_view key : {"NAME", "VERSION", "VERSION_ID", "BUILD_ID"}) {
            if (line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
                entries[std::string(key)] = slowValue(line.substr(key.size() + 1));
            }
        }
    }
    return entries;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const NSDictionary found = detail::releaseEntriesFromBytes(bytes);
    const std::map<std::string, std::string> expected = slowEntries(bytes);
    require(found.count() == expected.size(), "number of entries");
    for (const auto& [key, value] : expected) {
        const NSString text(found.objectForKey(key));
        require(static_cast<bool>(text), "an entry is missing");
        requireEqual(text.utf8(), NSString(value).utf8(), "value");
    }
    return 0;
}
