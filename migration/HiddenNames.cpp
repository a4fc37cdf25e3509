// SPDX-License-Identifier: MIT
// Builds and parses the names of unfinished items.
#include "migration/HiddenNames.h"

#include <cstdint>
#include <string_view>

#include "foundation/system/FileSystem.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t idLength = 16;

/// How the names of a kind begin: with a period, so that file managers do not show unfinished items.
struct Mark {
    HiddenKind kind;
    std::string_view text;
};

constexpr Mark marks[] = {{HiddenKind::copy, ".zq-copy."},
                          {HiddenKind::aside, ".zq-aside."},
                          {HiddenKind::asideLong, ".zq-asides."},
                          {HiddenKind::gone, ".zq-gone."}};

std::string_view markOf(HiddenKind kind) noexcept {
    for (const Mark& mark : marks) {
        if (mark.kind == kind) {
            return mark.text;
        }
    }
    return {};
}

/// Lower-case digits only, as `newHiddenName` makes them.
bool isId(std::string_view text) noexcept {
    return text.size() == idLength && text.find_first_not_of(lowerHexDigits) == std::string_view::npos;
}

} // namespace

// A name that only begins like one of these is a user's: recovery must not touch it, so ids are checked to
// the last digit. An item that was set aside has any name after the mark, which is never empty.
HiddenName parsedHiddenName(const char* name) {
    const std::string_view text(name);
    for (const Mark& mark : marks) {
        if (text.substr(0, mark.text.size()) != mark.text) {
            continue;
        }
        const std::string_view rest = text.substr(mark.text.size());
        if (mark.kind == HiddenKind::aside ? !rest.empty() : isId(rest)) {
            return {mark.kind, mark.kind == HiddenKind::aside ? std::string(rest) : std::string()};
        }
    }
    return {};
}

// The number cannot be predicted, so nobody else in a shared folder can take the name first.
std::string newHiddenName(HiddenKind kind) {
    char id[idLength];
    writeHexDigits(system::freshRandomNumber(), idLength, id);
    return std::string(markOf(kind)).append(id, idLength);
}

std::string asideNameOf(const std::string& name) {
    return std::string(markOf(HiddenKind::aside)).append(name);
}

} // namespace ZQFoundation::detail
