// SPDX-License-Identifier: MIT
// A second implementation of formats, to compare the library's with.
#ifndef ZQFOUNDATION_FUZZ_PLAINFORMAT_H
#define ZQFOUNDATION_FUZZ_PLAINFORMAT_H

#include <climits>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/format/Format.h"
#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::fuzzing {

/// An argument of a format with everything that it may be.
struct PlainArgument {
    enum class Kind {
        signedInteger,
        unsignedInteger,
        real,
        longReal,
        bytes,
        units,
        nilText,
        object,
        pointer
    };
    Kind kind = Kind::signedInteger;
    std::int64_t integer = 0;
    double real = 0;
    long double longReal = 0;
    std::string bytes;
    std::u16string units;
    NSObject object;
    const void* pointer = nullptr; ///< for texts, where they are
};

/// Carries out formats by their documentation: numbers by the C library, padding and grouping by hand. Gives
/// up where the C library differs or would take too long.
class PlainFormat {
public:
    static constexpr int maxField = 300;

    PlainFormat(const std::vector<PlainArgument>& arguments, const ZQFoundation::detail::FormatLocale* locale)
        : arguments_(arguments), locale_(locale) {}

    bool hasGivenUp() const { return hasGivenUp_; }

    std::u16string format(std::u16string_view text) {
        std::u16string result;
        std::size_t at = 0;
        while (at < text.size() && !hasGivenUp_) {
            if (text[at] != u'%') {
                result += text[at++];
                continue;
            }
            rest_ = text.substr(at + 1);
            const std::u16string inserted = convert();
            if (isCutOff_) {
                break;
            }
            result += inserted;
            at = text.size() - rest_.size();
        }
        return result;
    }

private:
    using Access = ZQFoundation::detail::Access;
    using ObjectKind = ZQFoundation::detail::Kind;
    using Kind = PlainArgument::Kind;

    struct Field {
        bool isThere = false;
        int value = 0;
    };

    bool take(std::u16string_view text) {
        const bool isThere = rest_.starts_with(text);
        rest_.remove_prefix(isThere ? text.size() : 0);
        return isThere;
    }

    bool isAtDigit() const { return !rest_.empty() && rest_[0] >= u'0' && rest_[0] <= u'9'; }

    int takeDigits() {
        long long value = 0;
        for (; isAtDigit(); rest_.remove_prefix(1)) {
            value = std::min<long long>(value * 10 + (rest_[0] - u'0'), INT_MAX);
        }
        return static_cast<int>(value);
    }

    /// "n$" with n from 1 on, else 0 and nothing taken.
    int takePosition() {
        const std::u16string_view before = rest_;
        const int position = takeDigits();
        if (position > 0 && take(u"$")) {
            return position;
        }
        rest_ = before;
        return 0;
    }

    const PlainArgument* argument(int position) {
        const std::size_t index = position > 0 ? static_cast<std::size_t>(position) - 1 : next_++;
        return index < arguments_.size() ? &arguments_[index] : nullptr;
    }

    /// The values of stars are taken only after the conversion is known to be complete.
    struct FieldText {
        bool isThere = false;
        bool isStar = false;
        int number = 0;
    };

    FieldText takeField(bool mayBeEmpty) {
        FieldText field;
        field.isThere = mayBeEmpty || isAtDigit();
        if (take(u"*")) {
            field = {true, true, takePosition()};
        } else {
            field.number = takeDigits();
        }
        return field;
    }

    Field valueOf(const FieldText& text) {
        Field field{text.isThere, text.number};
        if (text.isStar) {
            const PlainArgument* star = argument(text.number);
            field.value = 0;
            if (star != nullptr && star->kind == Kind::signedInteger) {
                field.value = static_cast<int>(std::clamp<std::int64_t>(star->integer, INT_MIN, INT_MAX));
            } else if (star != nullptr && star->kind == Kind::unsignedInteger) {
                const auto value = static_cast<std::uint64_t>(star->integer);
                field.value = static_cast<int>(std::min<std::uint64_t>(value, INT_MAX));
            }
        }
        hasGivenUp_ = hasGivenUp_ || field.value > maxField || field.value < -maxField;
        return field;
    }

    void takeFlags() {
        isLeft_ = hasZero_ = false;
        flags_.clear();
        for (constexpr std::u16string_view known = u"-+ 0#";
             !rest_.empty() && known.find(rest_[0]) != known.npos; rest_.remove_prefix(1)) {
            isLeft_ |= rest_[0] == u'-';
            hasZero_ |= rest_[0] == u'0';
            if (rest_[0] != u'-' && rest_[0] != u'0') {
                flags_ += static_cast<char>(rest_[0]);
            }
        }
    }

    /// Bits of an integer; 0 for a long real.
    void takeLength() {
        constexpr std::u16string_view wide[] = {u"ll", u"l", u"q", u"z", u"t", u"j"};
        bits_ = take(u"hh") ? 8 : take(u"h") ? 16 : take(u"L") ? 0 : 32;
        for (std::size_t index = 0; bits_ == 32 && index < std::size(wide); ++index) {
            bits_ = take(wide[index]) ? 64 : 32;
        }
        // "L" is not a length of integers and leaves them at 64 bits.
    }

    /// After a "%".
    std::u16string convert() {
        const int position = takePosition();
        takeFlags();
        const FieldText width = takeField(false);
        const bool hasPrecision = take(u".");
        const FieldText precision = hasPrecision ? takeField(true) : FieldText();
        takeLength();
        isCutOff_ = rest_.empty();
        if (isCutOff_) {
            return {};
        }
        width_ = valueOf(width).value;
        precision_ = valueOf(precision).value;
        if (!hasPrecision || precision_ < 0) {
            precision_ = -1;
        }
        isLeft_ |= width_ < 0;
        width_ = std::abs(width_);
        constexpr std::u16string_view letters = u"@diuoxXcCeEfFgGaAsSpn";
        if (take(u"%")) {
            return u"%";
        }
        if (letters.find(rest_[0]) == letters.npos) {
            return {}; // the letter stands for itself
        }
        letter_ = static_cast<char>(rest_[0]);
        rest_.remove_prefix(1);
        return hasGivenUp_ ? std::u16string() : insert(argument(position));
    }

    std::u16string insert(const PlainArgument* value) {
        switch (letter_) {
        case '@':
            return object(value);
        case 'c':
            return padded(std::u16string(1, static_cast<char16_t>(integerOf(value, true) & 0xFF)), 1);
        case 'C':
            return std::u16string(1, static_cast<char16_t>(integerOf(value, true)));
        case 's':
            return text(value, true);
        case 'S':
            return text(value, false);
        case 'p':
            return address(value);
        case 'n':
            return {};
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return integer(integerOf(value, letter_ == 'd' || letter_ == 'i'));
        default:
            return real(value);
        }
    }

    /// `length`: the width that the text counts for.
    std::u16string padded(std::u16string text, std::size_t length) const {
        const std::size_t width = static_cast<std::size_t>(width_);
        const std::u16string blanks(width > length ? width - length : 0, u' ');
        return isLeft_ ? text + blanks : blanks + text;
    }

    template <class Real>
    static std::uint64_t truncated(Real value, bool asSigned) {
        constexpr Real limit = 9223372036854775808.0;
        if (std::isnan(value)) {
            return 0;
        }
        if (value < limit) {
            return static_cast<std::uint64_t>(value > -limit ? static_cast<std::int64_t>(value) : INT64_MIN);
        }
        if (asSigned) {
            return INT64_MAX;
        }
        return value < limit * 2 ? static_cast<std::uint64_t>(value) : UINT64_MAX;
    }

    static std::uint64_t integerOf(const PlainArgument* value, bool asSigned) {
        const NSNumber number(value != nullptr ? value->object : NSObject());
        switch (value != nullptr ? value->kind : Kind::nilText) {
        case Kind::signedInteger:
        case Kind::unsignedInteger:
            return static_cast<std::uint64_t>(value->integer);
        case Kind::real:
            return truncated(value->real, asSigned);
        case Kind::longReal:
            return truncated(value->longReal, asSigned);
        default:
            return number.isReal() ? truncated(number.doubleValue(), asSigned)
                                   : number.unsignedLongLongValue();
        }
    }

    static long double realOf(const PlainArgument* value) {
        const NSNumber number(value != nullptr ? value->object : NSObject());
        switch (value != nullptr ? value->kind : Kind::nilText) {
        case Kind::signedInteger:
            return static_cast<long double>(value->integer);
        case Kind::unsignedInteger:
            return static_cast<long double>(static_cast<std::uint64_t>(value->integer));
        case Kind::real:
            return static_cast<long double>(value->real);
        case Kind::longReal:
            return value->longReal;
        default:
            break;
        }
        if (number.isReal()) {
            return static_cast<long double>(number.doubleValue());
        }
        const bool isNegative = number && number.compare(NSNumber(0)) == NSOrderedAscending;
        return isNegative ? static_cast<long double>(number.integerValue())
                          : static_cast<long double>(number.unsignedLongLongValue());
    }

    template <class Value>
    std::string printed(const char* length, Value value) const {
        const std::string format = "%" + flags_ + ".*" + length + letter_;
        char buffer[6000];
        const int count = std::snprintf(buffer, sizeof buffer, format.c_str(), precision_, value);
        return std::string(buffer, static_cast<std::size_t>(count));
    }

    std::u16string integer(std::uint64_t value) {
        const bool isSigned = letter_ == 'd' || letter_ == 'i';
        const bool isDecimal = isSigned || letter_ == 'u';
        const unsigned dropped = bits_ == 0 ? 0 : 64 - static_cast<unsigned>(bits_);
        value <<= dropped;
        const std::string text = isSigned ? printed("ll", static_cast<long long>(value) >> dropped)
                                          : printed("ll", static_cast<unsigned long long>(value >> dropped));
        return number(text, hasZero_ && precision_ < 0, isDecimal, isDecimal);
    }

    std::u16string real(const PlainArgument* value) {
        const long double wide = realOf(value);
        const auto narrow = static_cast<double>(wide);
        const bool isLong = bits_ == 0;
        const std::string text = isLong ? printed("L", std::isnan(wide) ? fabsl(wide) : wide)
                                        : printed("", std::isnan(narrow) ? std::fabs(narrow) : narrow);
        // GNU's library loses zeros that "#" keeps when rounding carries.
        hasGivenUp_ |= (letter_ == 'g' || letter_ == 'G') && flags_.find('#') != flags_.npos &&
                       (text.find(".e+") != text.npos || text.find(".E+") != text.npos);
        const bool isFinite = isLong ? std::isfinite(wide) : std::isfinite(narrow);
        const bool isHexadecimal = letter_ == 'a' || letter_ == 'A';
        const bool isGrouped = letter_ == 'f' || letter_ == 'F' || letter_ == 'g' || letter_ == 'G';
        return number(text, hasZero_ && isFinite, isGrouped && isFinite, !isHexadecimal && isFinite);
    }

    std::u16string number(const std::string& text, bool zeroPads, bool isGrouped, bool isLocalized) const {
        std::size_t prefix = text.find_first_not_of("+- ");
        prefix = prefix == text.npos ? text.size() : prefix;
        if (text.substr(prefix, 2) == "0x" || text.substr(prefix, 2) == "0X") {
            prefix += 2;
        }
        const std::u16string head(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(prefix));
        const std::u16string body = localized(text.substr(prefix), isGrouped, isLocalized);
        const std::size_t length = head.size() + body.size();
        if (!zeroPads || isLeft_) {
            return padded(head + body, length);
        }
        const std::size_t width = static_cast<std::size_t>(width_);
        return head + std::u16string(width > length ? width - length : 0, u'0') + body;
    }

    /// A number without its sign.
    std::u16string localized(const std::string& body, bool isGrouped, bool isLocalized) const {
        std::u16string text(body.begin(), body.end());
        if (locale_ == nullptr || !isLocalized) {
            return text;
        }
        const std::size_t whole = std::min(body.find_first_not_of("0123456789"), body.size());
        if (whole < body.size() && body[whole] == '.' && locale_->decimalSeparator) {
            text =
                text.substr(0, whole) + NSString(locale_->decimalSeparator).utf16() + text.substr(whole + 1);
        }
        const bool hasGroups =
            isGrouped && locale_->groupSize > 0 && whole >= locale_->groupSize + locale_->minimumDigits;
        std::size_t size = locale_->groupSize;
        for (std::size_t place = whole; hasGroups && place > size;) {
            place -= size;
            text.insert(place, NSString(locale_->groupingSeparator).utf16());
            size = locale_->secondaryGroupSize > 0 ? locale_->secondaryGroupSize : locale_->groupSize;
        }
        return text;
    }

    std::u16string localizedNumber(const std::string& text) const {
        const bool isFinite = text.find_first_of("0123456789") != text.npos;
        const std::size_t sign = text[0] == '-' ? 1 : 0;
        return std::u16string(sign, u'-') + localized(text.substr(sign), isFinite, isFinite);
    }

    template <class Real>
    static std::string shortReal(Real value, int digits) {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%0.*g", digits,
                      static_cast<double>(std::isnan(value) ? std::fabs(value) : value));
        return buffer;
    }

    std::u16string object(const PlainArgument* value) {
        switch (value != nullptr ? value->kind : Kind::nilText) {
        case Kind::signedInteger:
            return localizedNumber(std::to_string(value->integer));
        case Kind::unsignedInteger:
            return localizedNumber(std::to_string(static_cast<std::uint64_t>(value->integer)));
        case Kind::real:
            return localizedNumber(shortReal(value->real, 16));
        case Kind::longReal:
            return localizedNumber(shortReal(static_cast<double>(value->longReal), 16));
        case Kind::bytes:
            return NSString(value->bytes).utf16();
        case Kind::units:
            return value->units;
        case Kind::pointer:
            width_ = 0;
            return value->pointer != nullptr ? address(value) : u"(null)";
        case Kind::object:
            break;
        case Kind::nilText:
            return u"(null)";
        }
        switch (Access::kind(value->object)) {
        case ObjectKind::real:
            return localizedNumber(shortReal(Access::real(value->object), 16));
        case ObjectKind::singleReal:
            return localizedNumber(shortReal(Access::real(value->object), 7));
        case ObjectKind::boolean:
        case ObjectKind::signedInteger:
            return localizedNumber(std::to_string(Access::integer(value->object)));
        case ObjectKind::unsignedInteger:
            return localizedNumber(
                std::to_string(static_cast<std::uint64_t>(Access::integer(value->object))));
        default:
            return value->object ? value->object.description().utf16() : u"(null)";
        }
    }

    std::u16string text(const PlainArgument* value, bool countsBytes) {
        const std::size_t limit = precision_ < 0 ? SIZE_MAX : static_cast<std::size_t>(precision_);
        const Kind kind = value != nullptr ? value->kind : Kind::nilText;
        const bool isObject = kind == Kind::object && value->object;
        if (kind != Kind::bytes && kind != Kind::units && !isObject) {
            return u"(null)";
        }
        if (countsBytes && kind == Kind::bytes) {
            const std::string cut = value->bytes.substr(0, limit);
            return padded(NSString(cut).utf16(), cut.size());
        }
        const std::u16string units = kind == Kind::bytes   ? NSString(value->bytes).utf16()
                                     : kind == Kind::units ? value->units
                                                           : value->object.description().utf16();
        return countsBytes ? unitsAsBytes(units, limit)
                           : padded(units.substr(0, limit), std::min(units.size(), limit));
    }

    /// As many characters as fit into `limit` bytes of UTF-8, and U+FFFD for a part of the next.
    std::u16string unitsAsBytes(const std::u16string& units, std::size_t limit) const {
        std::size_t used = 0;
        std::u16string result;
        for (std::size_t at = 0; at < units.size() && used < limit;) {
            const bool isPair =
                at + 1 < units.size() && units[at] >> 10 == 0x36 && units[at + 1] >> 10 == 0x37;
            const std::size_t bytes = isPair ? 4 : units[at] < 0x80 ? 1 : units[at] < 0x800 ? 2 : 3;
            const bool fits = bytes <= limit - used;
            result += fits ? units.substr(at, isPair ? 2 : 1) : u"\uFFFD";
            used += fits ? bytes : limit - used;
            at += isPair ? 2 : 1;
        }
        return padded(result, used);
    }

    std::u16string address(const PlainArgument* value) const {
        std::uintptr_t place = 0;
        switch (value != nullptr ? value->kind : Kind::nilText) {
        case Kind::signedInteger:
        case Kind::unsignedInteger:
            place = static_cast<std::uintptr_t>(value->integer);
            break;
        case Kind::bytes:
        case Kind::units:
        case Kind::pointer:
            place = reinterpret_cast<std::uintptr_t>(value->pointer);
            break;
        case Kind::object:
            if (Access::kind(value->object) >= ObjectKind::string) {
                place = reinterpret_cast<std::uintptr_t>(Access::body(value->object));
            }
            break;
        default:
            break;
        }
        char buffer[40];
        const int count =
            std::snprintf(buffer, sizeof buffer, "0x%llx", static_cast<unsigned long long>(place));
        const std::u16string text(buffer, buffer + count);
        return padded(text, text.size());
    }

    const std::vector<PlainArgument>& arguments_;
    const ZQFoundation::detail::FormatLocale* locale_;
    std::u16string_view rest_; ///< of the format, after what was taken
    std::size_t next_ = 0;
    bool hasGivenUp_ = false;
    bool isCutOff_ = false;
    std::string flags_; ///< those that the C library is to see
    bool isLeft_ = false;
    bool hasZero_ = false;
    int width_ = 0;
    int precision_ = -1; ///< -1: none
    int bits_ = 32;
    char letter_ = 0;
};

} // namespace ZQFoundation::fuzzing

#endif
