// SPDX-License-Identifier: MIT
// The order of version strings, token by token. The comparison is written once, as templates over two views
// of a text: bytes, for the versions that nearly all are, and units for the rest.
#include "version/ZQVersionComparator.h"

#include <cstdint>
#include <cstring>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

using detail::AsciiOrUtf16;

namespace {

/// `typeOfCharacter` returns the numbers of the first three. A non-ASCII byte is undecided: then the texts
/// have to be compared unit by unit.
enum class TokenClass : unsigned char { digit = 0, other = 1, period = 2, undecided = 3 };

NSComparisonResult ordered(std::size_t left, std::size_t right) noexcept {
    return left < right ? NSOrderedAscending : left > right ? NSOrderedDescending : NSOrderedSame;
}

TokenClass classOfByte(char byte) noexcept {
    // Versions consist mostly of digits and periods, so test for these first.
    if (static_cast<unsigned char>(byte - '0') <= 9) {
        return TokenClass::digit;
    }
    if (byte == '.') {
        return TokenClass::period;
    }
    return static_cast<signed char>(byte) >= 0 ? TokenClass::other : TokenClass::undecided;
}

/// Digits of other scripts are digits here, but `leadingNumber` reads no value from them.
TokenClass classOfUnit(char16_t unit) {
    if (unit < 0x80) {
        return classOfByte(static_cast<char>(unit));
    }
    return NSCharacterSet::decimalDigitCharacterSet().characterIsMember(unit) ? TokenClass::digit
                                                                              : TokenClass::other;
}

NSString substring(const AsciiOrUtf16& text, std::size_t start, std::size_t end) {
    return text.isAscii() ? NSString(StringView::ascii(text.ascii() + start, end - start))
                          : NSString::stringWithCharacters_length(text.units() + start, end - start);
}

/// Of ASCII, the order of bytes is that of units. A prefix comes first.
NSComparisonResult compareBytes(const char* left, std::size_t leftCount, const char* right,
                                std::size_t rightCount) noexcept {
    const int order = std::memcmp(left, right, leftCount < rightCount ? leftCount : rightCount);
    return order != 0 ? (order < 0 ? NSOrderedAscending : NSOrderedDescending)
                      : ordered(leftCount, rightCount);
}

/// A text in bytes, treated as ASCII until a non-ASCII byte is found.
class ByteText {
public:
    explicit ByteText(StringView text) noexcept : bytes_(text.bytes()), length_(text.size()) {}

    std::size_t length() const noexcept { return length_; }
    char operator[](std::size_t index) const noexcept { return bytes_[index]; }
    TokenClass classAt(std::size_t index) const noexcept { return classOfByte(bytes_[index]); }

    NSComparisonResult compare(std::size_t start, std::size_t end, const ByteText& right,
                               std::size_t rightStart, std::size_t rightEnd) const noexcept {
        return compareBytes(bytes_ + start, end - start, right.bytes_ + rightStart, rightEnd - rightStart);
    }

private:
    const char* bytes_;
    std::size_t length_;
};

/// A text in any form, accessed unit by unit.
class UnitText {
public:
    explicit UnitText(StringView text) : text_(text) {}

    std::size_t length() const noexcept { return text_.length(); }
    char16_t operator[](std::size_t index) const noexcept { return text_[index]; }
    TokenClass classAt(std::size_t index) const { return classOfUnit(text_[index]); }

    NSComparisonResult compare(std::size_t start, std::size_t end, const UnitText& right,
                               std::size_t rightStart, std::size_t rightEnd) const {
        if (text_.isAscii() && right.text_.isAscii()) {
            return compareBytes(text_.ascii() + start, end - start, right.text_.ascii() + rightStart,
                                rightEnd - rightStart);
        }
        if (hasSameUnits(start, end, right, rightStart, rightEnd)) {
            return NSOrderedSame;
        }
        // Canonical equivalence rarely matters, so the cost of the two copies that it needs is acceptable.
        return substring(text_, start, end).compare(substring(right.text_, rightStart, rightEnd));
    }

    NSString token(std::size_t start, std::size_t end) const { return substring(text_, start, end); }

private:
    bool hasSameUnits(std::size_t start, std::size_t end, const UnitText& right, std::size_t rightStart,
                      std::size_t rightEnd) const noexcept {
        if (end - start != rightEnd - rightStart) {
            return false;
        }
        while (start < end && text_[start] == right.text_[rightStart]) {
            ++start;
            ++rightStart;
        }
        return start == end;
    }

    AsciiOrUtf16 text_;
};

/// The end of the token that starts at `start` and is of class `tokenClass`. Periods do not form runs: each
/// is a token of its own, so "1..2" has an empty component.
template <class Text>
std::size_t tokenEnd(const Text& text, std::size_t start, TokenClass tokenClass) {
    std::size_t end = start + 1;
    while (tokenClass != TokenClass::period && end < text.length() && text.classAt(end) == tokenClass) {
        ++end;
    }
    return end;
}

/// What `NSString::intValue` reads from a token of digits: the leading ASCII digits, saturating at 32 signed
/// bits. Moves `position` past them. Once it is too large, the number no longer grows: no count of digits
/// overflows it.
template <class Text>
std::uint32_t leadingNumber(const Text& text, std::size_t& position) noexcept {
    std::uint64_t number = 0;
    while (position < text.length()) {
        const unsigned value = static_cast<unsigned>(text[position]) - '0';
        if (value > 9) {
            break;
        }
        number = number > INT32_MAX ? number : number * 10 + value;
        ++position;
    }
    return static_cast<std::uint32_t>(number > INT32_MAX ? INT32_MAX : number);
}

/// A text and the position that the comparison has reached in it.
template <class Text>
struct Cursor {
    const Text& text;
    std::size_t position;

    bool atEnd() const noexcept { return position == text.length(); }

    /// Consumes a whole token of digits, including non-ASCII ones, and returns its number.
    std::uint32_t takeNumber() {
        const std::uint32_t number = leadingNumber(text, position);
        while (!atEnd() && text.classAt(position) == TokenClass::digit) {
            ++position;
        }
        return number;
    }

    /// Whether the token just consumed may continue with a non-ASCII character, whose class its first byte
    /// does not show.
    bool isUndecided() const { return !atEnd() && text.classAt(position) == TokenClass::undecided; }
};

/// The order of two tokens of different classes: other text, then a period, then a number. So "1.0b" is
/// before "1.0.1", and "1.b" before "1.1".
NSComparisonResult orderOfClasses(TokenClass left, TokenClass right) noexcept {
    if (left == TokenClass::other || right == TokenClass::other) {
        return left == TokenClass::other ? NSOrderedAscending : NSOrderedDescending;
    }
    return left == TokenClass::period ? NSOrderedAscending : NSOrderedDescending;
}

/// Compares two tokens that are neither numbers nor periods, and moves past both.
template <class Text>
NSComparisonResult compareOthers(Cursor<Text>& left, Cursor<Text>& right) {
    const std::size_t leftStart = left.position;
    const std::size_t rightStart = right.position;
    left.position = tokenEnd(left.text, leftStart, TokenClass::other);
    right.position = tokenEnd(right.text, rightStart, TokenClass::other);
    return left.text.compare(leftStart, left.position, right.text, rightStart, right.position);
}

/// The order when one version has ended: the one with tokens left is greater, or less if they begin with
/// letters.
template <class Text>
NSComparisonResult orderOfSurplus(const Cursor<Text>& left, const Cursor<Text>& right) {
    if (!left.atEnd()) {
        return left.text.classAt(left.position) == TokenClass::other ? NSOrderedAscending
                                                                     : NSOrderedDescending;
    }
    if (!right.atEnd()) {
        return right.text.classAt(right.position) == TokenClass::other ? NSOrderedDescending
                                                                       : NSOrderedAscending;
    }
    return NSOrderedSame;
}

/// The length of the common beginning, in whole components. Versions usually have much in common, so skipping
/// it saves most of the work.
template <class Text>
std::size_t sharedTokens(const Text& left, const Text& right) {
    const std::size_t shorter = left.length() < right.length() ? left.length() : right.length();
    std::size_t end = 0;
    while (end < shorter && left[end] == right[end]) {
        ++end;
    }
    // The last token may continue differently in the two.
    while (end > 0 && left[end - 1] != '.') {
        --end;
    }
    return end;
}

/// Compares token by token. Returns false if a class is undecided; then `result` is meaningless, and the
/// caller compares again by units.
template <class Text>
bool compareTokens(const Text& leftText, const Text& rightText, NSComparisonResult& result) {
    const std::size_t shared = sharedTokens(leftText, rightText);
    Cursor<Text> left{leftText, shared};
    Cursor<Text> right{rightText, shared};
    while (!left.atEnd() && !right.atEnd()) {
        const TokenClass leftClass = left.text.classAt(left.position);
        const TokenClass rightClass = right.text.classAt(right.position);
        if (leftClass == TokenClass::undecided || rightClass == TokenClass::undecided) {
            return false;
        }
        if (leftClass != rightClass) {
            result = orderOfClasses(leftClass, rightClass);
            return true;
        }
        if (leftClass == TokenClass::period) {
            ++left.position;
            ++right.position;
            continue;
        }
        if (leftClass == TokenClass::digit) {
            const std::uint32_t leftNumber = left.takeNumber();
            const std::uint32_t rightNumber = right.takeNumber();
            result = ordered(leftNumber, rightNumber);
        } else {
            result = compareOthers(left, right);
        }
        if (left.isUndecided() || right.isUndecided()) {
            return false;
        }
        if (result != NSOrderedSame) {
            return true;
        }
    }
    result = orderOfSurplus(left, right);
    return !left.isUndecided() && !right.isUndecided();
}

bool holdsBytes(StringView text) noexcept { return text.form() != StringView::Form::utf16; }

/// The first `count` bytes or units of a text. `count` must not split a character.
StringView prefix(StringView text, std::size_t count) noexcept {
    switch (text.form()) {
    case StringView::Form::ascii:
        return StringView::ascii(text.bytes(), count);
    case StringView::Form::utf8:
        return StringView(text.bytes(), count);
    case StringView::Form::utf16:
        return StringView(text.units(), count);
    case StringView::Form::absent:
        break;
    }
    return nullptr;
}

/// Whether there is an ASCII character at `index`. In UTF-8 its byte is never part of another character, so
/// one test does for bytes and for units.
bool hasAt(StringView text, std::size_t index, char character) noexcept {
    return holdsBytes(text) ? text.bytes()[index] == character
                            : text.units()[index] == static_cast<char16_t>(character);
}

/// In any form of text: a period is one byte in UTF-8 and one unit in UTF-16.
std::size_t periodCount(StringView text) noexcept {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        count += hasAt(text, i, '.') ? 1 : 0;
    }
    return count;
}

/// The text before the `count`-th period from the end. The text has at least `count` periods.
StringView withoutLastComponents(StringView text, std::size_t count) noexcept {
    std::size_t end = text.size();
    while (count > 0 && end > 0) {
        --end;
        count -= hasAt(text, end, '.') ? 1 : 0;
    }
    return prefix(text, end);
}

/// A version in which a "+" at the end is replaced by ".0": "3.0+" is "3.0.0", which is after "3.0". Keeps
/// the text that the view refers to.
class PlusVersion {
public:
    explicit PlusVersion(StringView version) : version_(version) {
        if (version && version.size() == 0) {
            NSString(version).characterAtIndex(0); // raises: there is no last unit
        }
        if (!version || !hasAt(version, version.size() - 1, '+')) {
            return;
        }
        spelledOut_.append(prefix(version, version.size() - 1));
        spelledOut_.appendLiteral(".0");
        version_ = spelledOut_.isAscii() ? StringView::ascii(spelledOut_.asciiData(), spelledOut_.length())
                                         : StringView(spelledOut_.unitData(), spelledOut_.length());
    }

    StringView version() const noexcept { return version_; }

private:
    StringView version_;
    detail::TextBuilder spelledOut_;
};

} // namespace

int ZQVersionComparator::typeOfCharacter(StringView character) {
    const AsciiOrUtf16 text(character);
    if (text.isNil()) {
        return static_cast<int>(TokenClass::other);
    }
    if (text.length() == 0) {
        NSString(character).characterAtIndex(0); // raises: there is no first unit
    }
    const TokenClass classOfFirst = classOfUnit(text[0]);
    return static_cast<int>(classOfFirst == TokenClass::period && text.length() != 1 ? TokenClass::other
                                                                                     : classOfFirst);
}

// By the functions that compare, so that tokens and order agree.
NSMutableArray ZQVersionComparator::splitVersionString(StringView version) {
    const UnitText text(version);
    NSMutableArray tokens;
    for (std::size_t start = 0; start < text.length();) {
        const std::size_t end = tokenEnd(text, start, text.classAt(start));
        tokens.addObject(text.token(start, end));
        start = end;
    }
    return tokens;
}

// First as bytes, without an allocation. Only a character beyond ASCII whose class matters makes the second
// pass necessary, which knows all characters.
NSComparisonResult ZQVersionComparator::compareVersion_toVersion(StringView version, StringView other) {
    NSComparisonResult result = NSOrderedSame;
    if (holdsBytes(version) && holdsBytes(other) &&
        compareTokens(ByteText(version), ByteText(other), result)) {
        return result;
    }
    compareTokens(UnitText(version), UnitText(other), result);
    return result;
}

NSComparisonResult ZQVersionComparator::compareVersionWithPlus_toVersionWithPlus(StringView version,
                                                                                 StringView other) {
    const PlusVersion left(version);
    const PlusVersion right(other);
    return compareVersion_toVersion(left.version(), right.version());
}

NSComparisonResult ZQVersionComparator::compareMajorVersion_toMajorVersion(StringView version,
                                                                           StringView other) {
    const std::size_t periods = periodCount(version);
    const std::size_t otherPeriods = periodCount(other);
    // Only versions with the same number of periods lose their last component.
    const bool alike = periods == otherPeriods;
    const std::size_t surplus = alike                    ? (periods != 0 ? 1 : 0)
                                : periods > otherPeriods ? periods - otherPeriods
                                                         : 0;
    const std::size_t otherSurplus = alike                    ? (periods != 0 ? 1 : 0)
                                     : otherPeriods > periods ? otherPeriods - periods
                                                              : 0;
    return compareVersion_toVersion(withoutLastComponents(version, surplus),
                                    withoutLastComponents(other, otherSurplus));
}

} // namespace ZQFoundation
