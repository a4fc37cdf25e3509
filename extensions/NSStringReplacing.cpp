// SPDX-License-Identifier: MIT
// NSString(ZQFoundation): replaces characters, indents lines, adds a newline, repeats strings.
#include <cstring>
#include <new>

#include "extensions/LineWalk.h"
#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

using detail::AsciiOrUtf16;
using detail::CharacterMembership;
using detail::TextBuilder;

namespace {

/// One name for both forms, for the templates below.
void append(TextBuilder& out, const char* units, std::size_t count) { out.appendAscii(units, count); }
void append(TextBuilder& out, const char16_t* units, std::size_t count) { out.appendUnits(units, count); }

/// The place of the first member from `at` on, or the length.
template <class Unit>
std::size_t nextMember(const Unit* units, std::size_t at, std::size_t length,
                       const CharacterMembership& members) noexcept {
    while (at < length && !members.contains(units[at])) {
        ++at;
    }
    return at;
}

/// The new text; nil if there is nothing to replace.
template <class Unit>
NSString replaced(const Unit* units, std::size_t length, const CharacterMembership& members,
                  StringView replacement) {
    std::size_t found = nextMember(units, 0, length, members);
    if (found == length) {
        return nullptr;
    }
    TextBuilder out;
    std::size_t start = 0;
    for (; found < length; found = nextMember(units, start, length, members)) {
        append(out, units + start, found - start);
        out.append(replacement);
        start = found + 1;
    }
    append(out, units + start, length - start);
    return out.string();
}

/// The text with the indent before each line, and LF for each break. The empty text has no lines, but gets
/// the indent.
template <class Unit>
NSString indented(const Unit* units, std::size_t length, StringView indent) {
    TextBuilder out;
    out.append(indent);
    bool isFirst = true;
    detail::forEachLine(units, length, [&](std::size_t start, std::size_t end) {
        if (!isFirst) {
            out.appendAscii('\n');
            out.append(indent);
        }
        isFirst = false;
        append(out, units + start, end - start);
    });
    return out.string();
}

/// Fills the buffer by doubling what has been copied, which takes few calls: 20 for a million copies.
template <class Unit>
void fillRepeatedly(Unit* out, const Unit* piece, std::size_t length, std::size_t total) noexcept {
    std::memcpy(out, piece, length * sizeof(Unit));
    for (std::size_t filled = length; filled < total;) {
        const std::size_t step = filled < total - filled ? filled : total - filled;
        std::memcpy(out + filled, out, step * sizeof(Unit));
        filled += step;
    }
}

/// Directly into the body of the result, whose length is known.
NSString repeated(const AsciiOrUtf16& piece, std::size_t total) {
    detail::StringBody* const body = detail::allocateString(total, piece.isAscii());
    if (piece.isAscii()) {
        fillRepeatedly(body->ascii(), piece.ascii(), piece.length(), total);
    } else {
        fillRepeatedly(body->units(), piece.units(), piece.length(), total);
    }
    return detail::Access::adoptString(body);
}

} // namespace

NSString
NSString::stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(const NSCharacterSet& set,
                                                                         StringView replacement) const {
    if (!*this || !set || !replacement) {
        return *this;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    const CharacterMembership members(set);
    const NSString result = body.isAscii ? replaced(body.ascii(), body.length, members, replacement)
                                         : replaced(body.units(), body.length, members, replacement);
    return result ? result : *this;
}

// Removing is replacing by nothing.
NSString NSString::stringByRemovingEveryOccurrenceOfCharactersFromSet(const NSCharacterSet& set) const {
    return stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(set, "");
}

NSString NSString::stringByIndentingLinesWithString(StringView indent) const {
    if (!*this || !indent) {
        return *this;
    }
    const detail::StringBody& body = *detail::Access::string(*this);
    return body.isAscii ? indented(body.ascii(), body.length, indent)
                        : indented(body.units(), body.length, indent);
}

// Any newline at the end will do, and stays as it is; what is added is always LF.
NSString NSString::addMissingNewline() const {
    const std::size_t count = length();
    if (count == 0 || detail::isNewline(characterAtIndex(count - 1))) {
        return *this;
    }
    return stringByAppendingString("\n");
}

// Hosts pass counts from outside. One that is too large raises before anything is allocated, or when the
// allocation fails; the limit keeps the number of bytes, with the header of the body, from overflowing.
NSString NSString::stringByRepeating_count(StringView piece, std::int64_t count) {
    if (!piece || count < 0) {
        return nullptr;
    }
    const AsciiOrUtf16 text(piece);
    if (count == 0 || text.length() == 0) {
        return string();
    }
    constexpr std::size_t maxUnits = static_cast<std::size_t>(PTRDIFF_MAX) / (2 * sizeof(char16_t));
    const auto times = static_cast<std::size_t>(count);
    try {
        if (times <= maxUnits / text.length()) {
            return repeated(text, times * text.length());
        }
    } catch (const std::bad_alloc&) {
        // reported below
    }
    NSException::raise_format(NSMallocException, "%ld times %lu characters do not fit into memory", count,
                              text.length());
}

} // namespace ZQFoundation
