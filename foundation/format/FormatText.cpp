// SPDX-License-Identifier: MIT
// Texts, characters, values and host objects as arguments of formats.
// Objects are inserted whole; only C texts and characters know widths.
#include "foundation/format/FormatText.h"

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/Bodies.h"
#include "foundation/objects/Description.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/Surrogates.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

void appendTextOrNull(TextBuilder& out, StringView text) {
    if (text) {
        appendText(out, text);
    } else {
        out.appendLiteral("(null)");
    }
}

void appendNumberText(TextBuilder& out, const char* start, const char* end, const FormatLocale* locale) {
    const auto length = static_cast<std::size_t>(end - start);
    if (locale == nullptr) {
        out.appendAscii(start, length);
    } else {
        appendLocalized(out, start, length, *locale);
    }
}

// Strings and numbers are written directly: they are what nearly every format inserts.
void appendHandle(TextBuilder& out, const NSObject& object, const FormatLocale* locale) {
    char number[numberTextCapacity];
    char* end = number;
    switch (Access::kind(object)) {
    case Kind::absent:
        return out.appendLiteral("(null)");
    case Kind::string: {
        const StringBody& body = *Access::string(object);
        return body.isAscii ? out.appendAscii(body.ascii(), body.length)
                            : out.appendUnits(body.units(), body.length);
    }
    case Kind::boolean:
    case Kind::signedInteger:
        end = writeInt64(Access::integer(object), number);
        break;
    case Kind::unsignedInteger:
        end = writeUInt64(static_cast<std::uint64_t>(Access::integer(object)), number);
        break;
    case Kind::real:
        end = writeDouble16g(Access::real(object), number);
        break;
    case Kind::singleReal:
        end = writeSingle7g(static_cast<float>(Access::real(object)), number);
        break;
    default:
        // Everything else describes itself, without a string being made of it.
        return appendDescription(out, object);
    }
    appendNumberText(out, number, end, locale);
}

void appendHost(TextBuilder& out, const NSObjectProtocol* object) {
    if (object == nullptr) {
        return out.appendLiteral("(null)");
    }
    appendTextOrNull(out, object->description());
}

/// Appends `text` between padding spaces; `length` is the length that it counts for.
/// The length is given, because it may count something else than the units that are appended.
template <class Append>
void appendPadded(TextBuilder& out, const FormatSpec& spec, std::size_t length, Append append) {
    const std::size_t padding = spec.paddingFor(length);
    if (padding != 0 && !spec.has(formatLeftJustified)) {
        out.appendRepeated(' ', padding);
    }
    append();
    if (padding != 0 && spec.has(formatLeftJustified)) {
        out.appendRepeated(' ', padding);
    }
}

/// The units that fit into `limit` bytes of UTF-8, and the bytes that are left for a part of the next
/// character.
struct UnitCut {
    std::size_t units;
    std::size_t bytesOver;
};

// A pair that does not fit is left out as a whole.
UnitCut cutUnits(const char16_t* units, std::size_t count, std::size_t limit) noexcept {
    std::size_t i = 0;
    while (i < count) {
        const bool isPair = isSurrogatePair(units + i, count - i);
        const std::size_t bytes = isPair ? 4 : units[i] < 0x80 ? 1 : units[i] < 0x800 ? 2 : 3;
        if (bytes > limit) {
            return {i, limit};
        }
        limit -= bytes;
        i += isPair ? 2 : 1;
    }
    return {count, 0};
}

/// A text of units inserted by s: it counts as its UTF-8 form does, but goes in as it is.
void appendUnitsAsBytes(TextBuilder& out, const FormatSpec& spec, StringView text) {
    const std::size_t length = utf8Length(text.units(), text.size(), IllFormed::replace);
    const auto limit = static_cast<std::size_t>(spec.precision);
    if (!spec.hasPrecision || length <= limit) {
        appendPadded(out, spec, length, [&] { appendText(out, text); });
        return;
    }
    const UnitCut cut = cutUnits(text.units(), text.size(), limit);
    appendPadded(out, spec, limit, [&] {
        out.appendUnits(text.units(), cut.units);
        if (cut.bytesOver != 0) {
            out.appendUnit(u'\uFFFD');
        }
    });
}

void appendBytesOf(TextBuilder& out, const FormatSpec& spec, StringView text, std::size_t limit) {
    if (!text) {
        return out.appendLiteral("(null)");
    }
    if (text.form() == StringView::Form::utf16) {
        return appendUnitsAsBytes(out, spec, text);
    }
    const std::size_t length = text.size() < limit ? text.size() : limit;
    // Cut in the middle of a character, the bytes are ill-formed there and become U+FFFD.
    appendPadded(out, spec, length, [&] { appendText(out, StringView(text.bytes(), length)); });
}

} // namespace

void appendObject(TextBuilder& out, const FormatSpec& spec, const Argument* argument,
                  const FormatLocale* locale) {
    if (argument == nullptr) {
        return out.appendLiteral("(null)");
    }
    char number[numberTextCapacity];
    switch (argument->type()) {
    case ArgumentType::object:
        return appendHandle(out, argument->object(), locale);
    case ArgumentType::text:
        return appendTextOrNull(out, argument->text());
    case ArgumentType::host:
        return appendHost(out, argument->host());
    // What a host type converts to is treated like any value.
    case ArgumentType::converted:
        return appendHandle(out, argument->converted(), locale);
    case ArgumentType::signedInteger:
        return appendNumberText(out, number, writeInt64(argument->integer(), number), locale);
    case ArgumentType::unsignedInteger:
        return appendNumberText(out, number,
                                writeUInt64(static_cast<std::uint64_t>(argument->integer()), number), locale);
    case ArgumentType::real:
    case ArgumentType::longReal:
        // As a number object of the same value would be described.
        return appendNumberText(out, number, writeDouble16g(realOf(argument), number), locale);
    case ArgumentType::pointer:
        break;
    }
    if (argument->address() == nullptr) {
        return out.appendLiteral("(null)");
    }
    // Width does not count for objects, so it must not for their addresses.
    FormatSpec plain = spec;
    plain.width = 0;
    appendAddress(out, plain, addressOf(argument));
}

void appendBytes(TextBuilder& out, const FormatSpec& spec, const Argument* argument) {
    // No more bytes may be read: a text need not have a NUL within the precision.
    const std::size_t limit = spec.hasPrecision ? static_cast<std::size_t>(spec.precision) : SIZE_MAX;
    if (argument != nullptr && argument->type() == ArgumentType::text) {
        if (spec.width == 0 && !spec.hasPrecision) {
            return appendTextOrNull(out, argument->text());
        }
        return appendBytesOf(out, spec, argument->textUpTo(limit), limit);
    }
    const TextOfArgument made = textOf(argument, limit);
    appendBytesOf(out, spec, made.text, limit);
}

void appendUnits(TextBuilder& out, const FormatSpec& spec, const Argument* argument) {
    // Only units can be counted before the end is known: a byte may be a third of a unit.
    const std::size_t limit = spec.hasPrecision ? static_cast<std::size_t>(spec.precision) : SIZE_MAX;
    const bool isUnits = argument != nullptr && argument->type() == ArgumentType::text && argument->isUnits();
    const TextOfArgument found = textOf(argument, isUnits ? limit : SIZE_MAX);
    if (!found.text) {
        return out.appendLiteral("(null)");
    }
    const AsciiOrUtf16 text(found.text);
    // Counted in units, so bytes are converted first.
    const std::size_t length = text.length() < limit ? text.length() : limit;
    appendPadded(out, spec, length, [&] {
        if (length == 0) {
            return;
        }
        text.isAscii() ? out.appendAscii(text.ascii(), length) : out.appendUnits(text.units(), length);
    });
}

void appendCharacter(TextBuilder& out, const FormatSpec& spec, std::uint64_t value) {
    // The width does not count here: two in a row may form a pair.
    if (spec.letter == 'C') {
        out.appendUnit(static_cast<char16_t>(value & 0xFFFF));
        return;
    }
    appendPadded(out, spec, 1, [&] { out.appendUnit(static_cast<char16_t>(value & 0xFF)); });
}

void appendAddress(TextBuilder& out, const FormatSpec& spec, std::uintptr_t address) {
    // Backwards, without leading zeros; null is "0x0" on every system.
    char text[2 + 2 * sizeof address];
    char* start = writeHexBefore(address, text + sizeof text);
    *--start = 'x';
    *--start = '0';
    const auto length = static_cast<std::size_t>(text + sizeof text - start);
    appendPadded(out, spec, length, [&] { out.appendAscii(start, length); });
}

} // namespace ZQFoundation::detail
