// SPDX-License-Identifier: MIT
// Checks numbers in texts against the C library, and a scanner that follows a script against a plain place in
// a text.
//
// Input: the script, a byte for each step, up to a line feed; a target, up to another; then the text (see
// InputReader for its units). An empty script: the text as a whole is read as a number.
#include <cmath>
#include <cstdlib>
#include <string>

#include "foundation/format/NSScanner.h"
#include "foundation/objects/NSString.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/Texts.h"
#include "tests/models/StringSearch.h"
#include "tests/models/Strings.h"

using namespace ZQFoundation;
using fuzzing::require;
using kit::stringOf;

namespace {

bool isBlankForNumbers(char16_t unit) {
    constexpr std::u16string_view blanks =
        u" \t\n\v\f\r\u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005"
        u"\u2006\u2007\u2008\u2009\u200A\u202F\u205F\u3000";
    return blanks.find(unit) != blanks.npos;
}

/// The text of a number for the C library, and the places between which it is.
struct NumberText {
    std::string ascii;
    std::size_t end = 0;
    bool isNumber = false;
};

/// Takes characters one by one while they continue a number.
class NumberReader {
public:
    NumberReader(std::u16string_view text, std::size_t at) : text_(text), at_(at) {
        while (at_ < text_.size() && isBlankForNumbers(text_[at_])) {
            ++at_;
        }
    }

    NumberText integer() {
        takeSign();
        found_.isNumber = takeDigits(u"0123456789") > 0;
        found_.end = at_;
        return found_;
    }

    NumberText real() {
        takeSign();
        std::size_t digits = takeDigits(u"0123456789");
        if (at_ < text_.size() && text_[at_] == u'.') {
            const std::size_t fraction = at_;
            take();
            const std::size_t more = takeDigits(u"0123456789");
            at_ = digits + more == 0 ? fraction : at_;
            digits += more;
        }
        found_.isNumber = digits > 0;
        found_.end = at_;
        if (found_.isNumber && at_ < text_.size() && (text_[at_] == u'e' || text_[at_] == u'E')) {
            const std::string mantissa = found_.ascii;
            take();
            takeSign();
            if (takeDigits(u"0123456789") > 0) {
                found_.end = at_;
            } else {
                found_.ascii = mantissa;
            }
        }
        return found_;
    }

    NumberText hexadecimal() {
        constexpr std::u16string_view digits = u"0123456789abcdefABCDEF";
        if (at_ + 2 < text_.size() && text_[at_] == u'0' &&
            (text_[at_ + 1] == u'x' || text_[at_ + 1] == u'X') &&
            digits.find(text_[at_ + 2]) != digits.npos) {
            at_ += 2;
        }
        found_.isNumber = takeDigits(digits) > 0;
        found_.end = at_;
        return found_;
    }

private:
    void take() { found_.ascii += static_cast<char>(text_[at_++]); }

    void takeSign() {
        if (at_ < text_.size() && (text_[at_] == u'+' || text_[at_] == u'-')) {
            take();
        }
    }

    std::size_t takeDigits(std::u16string_view digits) {
        const std::size_t start = at_;
        while (at_ < text_.size() && digits.find(text_[at_]) != digits.npos) {
            take();
        }
        return at_ - start;
    }

    std::u16string_view text_;
    std::size_t at_;
    NumberText found_;
};

long slowInteger(const NumberText& number) {
    return number.isNumber ? std::strtol(number.ascii.c_str(), nullptr, 10) : 0;
}

int cutToInt(long value) {
    return static_cast<int>(std::min(std::max(value, long{INT32_MIN}), long{INT32_MAX}));
}

double slowReal(const NumberText& number) {
    return number.isNumber ? std::strtod(number.ascii.c_str(), nullptr) : 0;
}

void requireReal(double found, double expected) {
    require(std::memcmp(&found, &expected, sizeof found) == 0, "real number");
}

void checkReadings(const NSString& text, std::u16string_view units) {
    const long integer = slowInteger(NumberReader(units, 0).integer());
    require(text.integerValue() == integer && text.longLongValue() == integer, "integer value");
    require(text.intValue() == cutToInt(integer), "int value");
    const double real = slowReal(NumberReader(units, 0).real());
    requireReal(text.doubleValue(), real);
    requireReal(static_cast<double>(text.floatValue()), static_cast<double>(static_cast<float>(real)));
}

/// A scanner and a place in the same text. Each step is done by both.
class Script {
public:
    Script(const std::u16string& text, const std::u16string& target)
        : text_(text), target_(target), scanner_(stringOf(text)),
          members_(NSCharacterSet::characterSetWithCharactersInString(target)) {}

    void step(unsigned command) {
        start_ = location_;
        while (start_ < text_.size() && isSkipped(text_[start_])) {
            ++start_;
        }
        require(scanner_.isAtEnd() == (start_ == text_.size()), "whether a scanner is at its end");
        switch (command % 16) {
        case 0:
            return number<int>(NumberReader(text_, start_).integer(), &NSScanner::scanInt);
        case 1:
            return number<std::int64_t>(NumberReader(text_, start_).integer(), &NSScanner::scanInteger);
        case 2:
            return number<double>(NumberReader(text_, start_).real(), &NSScanner::scanDouble);
        case 3:
            return number<float>(NumberReader(text_, start_).real(), &NSScanner::scanFloat);
        case 4:
            return number<unsigned>(NumberReader(text_, start_).hexadecimal(), &NSScanner::scanHexInt);
        case 5:
            return number<std::uint64_t>(NumberReader(text_, start_).hexadecimal(),
                                         &NSScanner::scanHexLongLong);
        case 6:
            return stretch(true);
        case 7:
            return stretch(false);
        case 8:
            return textRightHere();
        case 9:
            return textFurtherOn();
        case 10:
            return move(false);
        case 11:
            return move(true);
        case 12:
            return skip(command / 16);
        case 13:
            return scanner_.setCaseSensitive((command & 16U) != 0);
        default:
            location_ = std::min<std::size_t>(command / 16, text_.size());
            scanner_.setScanLocation(location_);
        }
    }

    void requireLocation() const { require(scanner_.scanLocation() == location_, "location"); }

private:
    bool isMember(char16_t unit) const { return members_.characterIsMember(unit); }

    bool isSkipped(char16_t unit) const {
        return skipping_ == 1   ? isMember(unit)
               : skipping_ == 0 ? (isBlankForNumbers(unit) || models::isNewline(unit))
                                : false;
    }

    template <class Value>
    void number(const NumberText& expected, bool (NSScanner::*scan)(Value*)) {
        Value value = 77;
        require((scanner_.*scan)(&value) == expected.isNumber, "whether there is a number");
        if (!expected.isNumber) {
            require(value == 77, "output of a scan that failed");
            return;
        }
        location_ = expected.end;
        if constexpr (std::is_floating_point_v<Value>) {
            requireReal(static_cast<double>(value),
                        static_cast<double>(static_cast<Value>(slowReal(expected))));
        } else if constexpr (std::is_signed_v<Value>) {
            const long whole = slowInteger(expected);
            require(value == (sizeof value == sizeof whole ? whole : cutToInt(whole)), "integer");
        } else {
            const unsigned long whole = std::strtoul(expected.ascii.c_str(), nullptr, 16);
            require(value == std::min<unsigned long>(whole, std::numeric_limits<Value>::max()),
                    "hexadecimal number");
        }
    }

    void requireTaken(bool isTaken, std::size_t end, const NSString& output) {
        if (isTaken) {
            require(output.utf16() == text_.substr(start_, end - start_), "output");
            location_ = end;
        } else {
            require(!output, "output of a scan that failed");
        }
    }

    void stretch(bool ofMembers) {
        std::size_t end = start_;
        while (end < text_.size() && isMember(text_[end]) == ofMembers) {
            ++end;
        }
        NSString output;
        const bool isTaken = ofMembers ? scanner_.scanCharactersFromSet_intoString(members_, &output)
                                       : scanner_.scanUpToCharactersFromSet_intoString(members_, &output);
        require(isTaken == (end != start_), "whether there is a stretch");
        requireTaken(isTaken, end, output);
    }

    NSRange place() const {
        return models::placeOf(text_, start_, target_,
                               scanner_.caseSensitive() ? 0U : unsigned{NSCaseInsensitiveSearch});
    }

    void textRightHere() {
        const NSRange found = place();
        NSString output;
        const bool isTaken = scanner_.scanString_intoString(target_, &output);
        require(isTaken == (found.location == start_), "whether a text stands there");
        requireTaken(isTaken, found.location + found.length, output);
    }

    void textFurtherOn() {
        const std::size_t end = std::min(place().location, text_.size());
        NSString output;
        const bool isTaken = scanner_.scanUpToString_intoString(target_, &output);
        require(isTaken == (end != start_), "whether there is something in front of a text");
        requireTaken(isTaken, end, output);
    }

    /// Up to the target, or past it: the steps are those of the scans above, undone when one fails.
    void move(bool past) {
        const std::size_t start = location_;
        const NSRange found = place();
        if (std::min(found.location, text_.size()) != start_) {
            location_ = std::min(found.location, text_.size());
        }
        std::size_t rest = location_;
        while (rest < text_.size() && isSkipped(text_[rest])) {
            ++rest;
        }
        bool isReached = rest != text_.size();
        if (past && isReached) {
            start_ = rest;
            const NSRange again = place();
            isReached = again.location == rest;
            location_ = again.location + again.length;
        }
        location_ = isReached ? location_ : start;
        require((past ? scanner_.scanPastString(target_) : scanner_.scanUpToString(target_)) == isReached,
                "whether a target is reached");
    }

    void skip(unsigned which) {
        skipping_ = which % 3;
        scanner_.setCharactersToBeSkipped(skipping_ == 0 ? NSCharacterSet::whitespaceAndNewlineCharacterSet()
                                          : skipping_ == 1 ? members_
                                                           : NSCharacterSet());
    }

    const std::u16string& text_;
    const std::u16string& target_;
    NSScanner scanner_;
    NSCharacterSet members_;
    unsigned skipping_ = 0;
    std::size_t location_ = 0;
    std::size_t start_ = 0; ///< after what is skipped from the location on
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const std::string_view commands = input.piece('\n');
    const std::u16string target = fuzzing::unitsFromBytes(input.piece('\n'));
    const std::u16string text = fuzzing::unitsFromBytes(input.rest());
    if (commands.empty()) {
        checkReadings(stringOf(text), text);
        return 0;
    }
    Script script(text, target);
    for (const char command : commands.substr(0, 6)) {
        script.step(static_cast<unsigned char>(command));
        script.requireLocation();
    }
    return 0;
}
