// SPDX-License-Identifier: MIT
// Runs a format: literal text and conversions in order.
// The format is read once, and nothing is remembered of it: the result grows while the format is read, and
// each conversion takes its argument when it is met.
#include "foundation/format/Format.h"

#include <bit>
#include <cstring>

#include "foundation/format/FormatArgument.h"
#include "foundation/format/FormatNumber.h"
#include "foundation/format/FormatText.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/FormatSyntax.h"

namespace ZQFoundation::detail {

namespace {

/// The conversions of one format, run one after another.
class Conversions {
public:
    Conversions(TextBuilder& out, ArgumentList arguments, const FormatLocale* locale) noexcept
        : out_(out), arguments_(arguments), locale_(locale) {}

    /// Runs a conversion that is only its letter, as most are. Does nothing and returns false when it is
    /// more.
    /// A template in the class, so that the common conversions need neither a call nor a parsed description.
    template <class Unit>
    bool carryOutPlain(Unit letter) {
        const FormatClass wanted = formatClassOf(static_cast<char16_t>(letter));
        // Letters come after all flags, digits and the percent sign, which need the parser.
        if (wanted == FormatClass::unknown || letter < Unit{'@'}) {
            return false;
        }
        FormatSpec spec;
        spec.letter = static_cast<char>(letter);
        insert(wanted, spec, take(0));
        return true;
    }

    /// Returns false for an unknown conversion, whose letter is copied. It takes no argument but those of its
    /// stars.
    bool carryOut(const FormatConversion& found);

private:
    /// Positions count from 1; 0 means the next argument. A missing argument is null, and each conversion
    /// knows what that means.
    const Argument* take(int position) noexcept {
        const std::size_t index = position == 0 ? next_++ : static_cast<std::size_t>(position) - 1;
        return index < arguments_.count() ? &arguments_[index] : nullptr;
    }

    int fieldValue(const FormatField& field) noexcept {
        return field.source == FormatField::Source::digits
                   ? field.value
                   : fieldOf(take(field.source == FormatField::Source::nextArgument ? 0 : field.value));
    }

    void setWidth(FormatSpec& spec, const FormatField& field) noexcept;
    void setPrecision(FormatSpec& spec, const FormatField& field) noexcept;
    void insert(FormatClass wanted, const FormatSpec& spec, const Argument* argument);

    TextBuilder& out_;
    ArgumentList arguments_;
    const FormatLocale* locale_;
    std::size_t next_ = 0;
};

void Conversions::setWidth(FormatSpec& spec, const FormatField& field) noexcept {
    // A negative width from an argument means left-justified, as in C.
    int width = fieldValue(field);
    if (width < 0) {
        spec.flags |= formatLeftJustified;
        // The lowest integer has no positive counterpart, hence the comparison first.
        width = width < -maxFormatField ? maxFormatField : -width;
    }
    spec.width = width < maxFormatField ? width : maxFormatField;
}

void Conversions::setPrecision(FormatSpec& spec, const FormatField& field) noexcept {
    // A negative precision from an argument counts as none.
    const int precision = fieldValue(field);
    spec.hasPrecision = precision >= 0;
    spec.precision = precision >= 0 ? precision : 0;
}

bool Conversions::carryOut(const FormatConversion& found) {
    FormatSpec spec;
    spec.letter = static_cast<char>(found.letter);
    spec.flags = found.flags;
    spec.length = found.length;
    if (found.width.source != FormatField::Source::absent) {
        setWidth(spec, found.width);
    }
    if (found.precision.source != FormatField::Source::absent) {
        setPrecision(spec, found.precision);
    }
    const FormatClass wanted = formatClassOf(found.letter);
    if (wanted == FormatClass::percentSign) {
        out_.appendAscii('%');
    } else if (wanted != FormatClass::unknown) {
        insert(wanted, spec, take(found.position));
    }
    return wanted != FormatClass::unknown;
}

// Only the classes that a locale affects get it.
void Conversions::insert(FormatClass wanted, const FormatSpec& spec, const Argument* argument) {
    // Length modifiers of integers are applied where they are written, since the cut depends on the sign.
    const bool isLong = spec.length == FormatLength::longDouble;
    switch (wanted) {
    case FormatClass::object:
        return appendObject(out_, spec, argument, locale_);
    case FormatClass::integer:
        return appendInteger(out_, spec, integerOf(argument, spec.letter == 'd' || spec.letter == 'i'),
                             locale_);
    case FormatClass::character:
        return appendCharacter(out_, spec, integerOf(argument, true));
    case FormatClass::real:
        return isLong ? appendReal(out_, spec, longRealOf(argument), locale_)
                      : appendReal(out_, spec, realOf(argument), locale_);
    case FormatClass::hexadecimalReal:
        return isLong ? appendHexadecimalReal(out_, spec, longRealOf(argument))
                      : appendHexadecimalReal(out_, spec, realOf(argument));
    case FormatClass::bytes:
        return appendBytes(out_, spec, argument);
    case FormatClass::units:
        return appendUnits(out_, spec, argument);
    case FormatClass::address:
        return appendAddress(out_, spec, addressOf(argument));
    default:
        return; // n, which stores nothing
    }
}

/// Appends literal text up to a '%' or the end, and returns where that is.
const char16_t* appendLiteralText(TextBuilder& out, const char16_t* start, const char16_t* end) {
    const char16_t* at = start;
    while (at != end && *at != u'%') {
        ++at;
    }
    out.appendUnits(start, static_cast<std::size_t>(at - start));
    return at;
}

constexpr std::uint64_t everyByte = 0x0101010101010101;
constexpr std::uint64_t highBits = everyByte * 0x80;

/// How many of the eight bytes come before the first '%'. A byte equal to the sign becomes 0, and the
/// subtraction finds the lowest such byte; those above it may be wrong by the borrow. On machines with the
/// highest byte first a '%' is only found, at 0.
int bytesBeforeSign(std::uint64_t bytes) noexcept {
    const std::uint64_t zeros = bytes ^ everyByte * '%';
    const std::uint64_t found = (zeros - everyByte) & ~zeros & highBits;
    if (found == 0) {
        return 8;
    }
    return std::endian::native == std::endian::little ? std::countr_zero(found) / 8 : 0;
}

/// Copies bytes while it looks at them. Text that turns out not to be ASCII is appended again, as UTF-8.
const char* appendLiteralText(TextBuilder& out, const char* start, const char* end) {
    char* const room = out.reserveAscii(static_cast<std::size_t>(end - start));
    if (room == nullptr) {
        const void* const sign = std::memchr(start, '%', static_cast<std::size_t>(end - start));
        const char* const at = sign != nullptr ? static_cast<const char*>(sign) : end;
        out.appendUtf8(start, static_cast<std::size_t>(at - start));
        return at;
    }
    std::uint64_t seen = 0;
    const char* at = start;
    for (int before = 8; before == 8 && end - at >= 8; at += before) {
        std::uint64_t bytes;
        std::memcpy(&bytes, at, sizeof bytes);
        std::memcpy(room + (at - start), &bytes, sizeof bytes);
        before = bytesBeforeSign(bytes);
        seen |= before == 8 ? bytes : bytes & ~(UINT64_MAX << 8 * before);
    }
    for (; at != end && *at != '%'; ++at) {
        room[at - start] = *at;
        seen |= static_cast<unsigned char>(*at);
    }
    const auto count = static_cast<std::size_t>(at - start);
    (seen & highBits) == 0 ? out.commitAscii(count) : out.appendUtf8(start, count);
    return at;
}

template <class Unit>
void appendParsed(TextBuilder& out, const Unit* at, const Unit* end, ArgumentList arguments,
                  const FormatLocale* locale) {
    Conversions conversions(out, arguments, locale);
    while (at != end) {
        if (*at != Unit{'%'}) {
            at = appendLiteralText(out, at, end);
            continue;
        }
        // Two units are enough for a plain conversion, which most are.
        if (end - at >= 2 && conversions.carryOutPlain(at[1])) {
            at += 2;
            continue;
        }
        FormatConversion conversion;
        at = readFormatConversion(at + 1, end, conversion);
        // Nothing is written for a conversion that the text cuts off.
        if (conversion.isCutOff) {
            return;
        }
        if (!conversions.carryOut(conversion)) {
            --at; // the letter is literal text, as is what follows
        }
    }
}

} // namespace

void appendFormat(TextBuilder& out, StringView format, ArgumentList arguments, const FormatLocale* locale) {
    switch (format.form()) {
    case StringView::Form::absent:
        return;
    case StringView::Form::utf16:
        return appendParsed(out, format.units(), format.units() + format.size(), arguments, locale);
    case StringView::Form::utf8:
    case StringView::Form::ascii:
        return appendParsed(out, format.bytes(), format.bytes() + format.size(), arguments, locale);
    }
}

NSString formatted(StringView format, ArgumentList arguments, const FormatLocale* locale) {
    // Only this form raises; appending a nil format does nothing.
    if (!format) {
        throw NSException(NSInvalidArgumentException, "A format must not be nil");
    }
    TextBuilder out;
    appendFormat(out, format, arguments, locale);
    return out.string();
}

} // namespace ZQFoundation::detail
