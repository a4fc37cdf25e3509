// SPDX-License-Identifier: MIT
// Reads old-style property lists and strings tables.
// A state machine with an explicit stack: each step reads one piece and says which comes next, so nesting
// costs neither stack nor time.
#include "foundation/plist/OldStyleReader.h"

#include <array>

#include "foundation/objects/NSData.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/plist/TextReader.h"
#include "foundation/text/Digits.h"
#include "foundation/text/NextStepEncoding.h"

namespace ZQFoundation::detail {

namespace {

/// The characters of an unquoted string.
/// As a table, because every unit of a bare string is looked up.
constexpr auto bareCharacters = [] {
    std::array<bool, 256> bare{};
    for (const char character : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                                 "0123456789_$/:.-")) {
        bare[static_cast<unsigned char>(character)] = true;
    }
    return bare;
}();

bool isBare(char unit) noexcept { return bareCharacters[static_cast<unsigned char>(unit)]; }
bool isBare(char16_t unit) noexcept { return unit < 0x80 && bareCharacters[unit]; }

template <class Unit>
class OldStyleReader : private TextReader<Unit> {
public:
    OldStyleReader(const Unit* text, std::size_t count) : TextReader<Unit>(text, count) {}

    NSObject read(PropertyListError& error) {
        NSObject result;
        if (readWhole(result)) {
            return result;
        }
        this->report(error);
        return nullptr;
    }

private:
    using Base = TextReader<Unit>;
    using Base::begin_, Base::cursor_, Base::end_, Base::fail, Base::stack_, Base::strings_;

    /// What comes next. `finished` and `failed` end the reading.
    /// In this order: everything before `finished` is a step to be taken.
    enum class Step { value, entry, element, store, finished, failed };

    Step failed(const char* message, const Unit* at) noexcept {
        fail(message, at);
        return Step::failed;
    }

    bool readWhole(NSObject& result) {
        // Only white space would be an empty dictionary; no text at all is a mistake.
        if (begin_ == end_) {
            return fail("The text is empty", begin_);
        }
        skipBlanks();
        if (cursor_ == end_) {
            result = NSDictionary::dictionary();
            return true;
        }
        if (!isAtString()) {
            return readTree(Step::value) && readNothingMore(result);
        }
        // A string first: the text is that string, or a strings table whose first key it is. The key is
        // cached in either case.
        NSString first;
        if (!readString(first, true)) {
            return false;
        }
        skipBlanks();
        if (cursor_ == end_) {
            result = std::move(first);
            return true;
        }
        // The outermost dictionary has no braces, and ends where no key follows.
        isStringsTable_ = stack_.openDictionary();
        const Step next = stepAfterKey(std::move(first));
        return next != Step::failed && readTree(next) && takeResult(result);
    }

    bool takeResult(NSObject& result) noexcept {
        result = std::move(value_);
        return true;
    }

    bool readNothingMore(NSObject& result) {
        skipBlanks();
        return cursor_ == end_ ? takeResult(result) : fail("More text follows the value", cursor_);
    }

    /// Reads on until the outermost value is finished; it is then in `value_`.
    bool readTree(Step step) {
        while (step < Step::finished) {
            skipBlanks();
            switch (step) {
            case Step::value:
                step = readValue();
                break;
            case Step::entry:
                step = readEntry();
                break;
            case Step::element:
                step = isAt(')') ? closeContainer() : Step::value;
                break;
            default:
                step = storeValue();
                break;
            }
        }
        return step == Step::finished;
    }

    Step readValue() {
        if (isAtString()) {
            NSString string;
            if (!readString(string, false)) {
                return Step::failed;
            }
            value_ = std::move(string);
            return stepAfterValue();
        }
        if (cursor_ == end_) {
            // A container that is not closed ends here as well.
            return failed("The text ends where a value is expected", cursor_);
        }
        switch (unitNumber(*cursor_)) {
        case '{':
            return open(stack_.openDictionary(), Step::entry);
        case '(':
            return open(stack_.openArray(), Step::element);
        case '<':
            return readData() ? stepAfterValue() : Step::failed;
        default:
            return failed("A value cannot start with this character", cursor_);
        }
    }

    Step stepAfterValue() const noexcept { return stack_.isEmpty() ? Step::finished : Step::store; }

    Step open(bool isOpen, Step next) noexcept {
        if (!isOpen) {
            return failed("Values are nested too deeply", cursor_);
        }
        ++cursor_;
        return next;
    }

    Step closeContainer() {
        ++cursor_;
        value_ = stack_.close();
        return stepAfterValue();
    }

    /// In a dictionary, before a key or the end.
    Step readEntry() {
        if (isAtString()) {
            NSString key;
            if (!readString(key, true)) {
                return Step::failed;
            }
            skipBlanks();
            return stepAfterKey(std::move(key));
        }
        // What cannot be a key ends the table, whatever it is: the rest of such files has always been
        // ignored.
        if (isStringsTable_ && stack_.depth() == 1) {
            value_ = stack_.close();
            return Step::finished;
        }
        if (isAt('}')) {
            return closeContainer();
        }
        return failed(cursor_ == end_ ? "A dictionary is not closed" : "A key must be a string", cursor_);
    }

    Step stepAfterKey(NSString key) {
        if (isAt('=')) {
            ++cursor_;
            stack_.setKey(std::move(key));
            return Step::value;
        }
        // A key alone is its own value.
        if (isAt(';')) {
            ++cursor_;
            stack_.setKey(key);
            stack_.add(std::move(key));
            return Step::entry;
        }
        return failed("A key must be followed by '=' or ';'", cursor_);
    }

    /// Puts the value into its container and reads the separator after it.
    Step storeValue() {
        const bool isInDictionary = stack_.isInDictionary();
        stack_.add(std::move(value_));
        // The comma after an array's last element is optional, the semicolon after an entry is not.
        if (isAt(isInDictionary ? ';' : ',')) {
            ++cursor_;
            return isInDictionary ? Step::entry : Step::element;
        }
        if (isInDictionary) {
            return failed("A dictionary's entry must end with ';'", cursor_);
        }
        return isAt(')') ? closeContainer()
                         : failed("An array's element must be followed by ',' or ')'", cursor_);
    }

    bool isAt(char character) const noexcept {
        return cursor_ != end_ && *cursor_ == static_cast<Unit>(character);
    }

    /// Called after white space was skipped: a "/" that is still there starts no comment.
    bool isAtString() const noexcept {
        return cursor_ != end_ && (isBare(*cursor_) || isAt('"') || isAt('\''));
    }

    void skipBlanks() noexcept {
        // U+00A0 and a byte-order mark are not white space here.
        while (cursor_ != end_) {
            const unsigned number = unitNumber(*cursor_);
            // Unsigned: 9 to 13 are the five control characters that count.
            if (number == ' ' || number - 0x09 < 5) {
                ++cursor_;
            } else if (number == '/') {
                if (!skipComment()) {
                    return;
                }
            } else if (const std::size_t length = number < 0x80 ? 0 : separatorLength(cursor_, end_);
                       length > 0) {
                cursor_ += length;
            } else {
                return;
            }
        }
    }

    bool skipComment() noexcept {
        if (startsWith(cursor_, end_, "//")) {
            skipLine();
            return true;
        }
        if (!startsWith(cursor_, end_, "/*")) {
            return false;
        }
        // After the asterisk of the opening, which does not close the comment.
        const Unit* from = cursor_ + 2;
        for (const Unit* star = from;; ++star) {
            star = findUnit(star, end_, '*');
            if (star == end_) {
                cursor_ = end_; // an unclosed comment is treated like a closed one
                return true;
            }
            if (star + 1 != end_ && star[1] == '/') {
                cursor_ = star + 2;
                return true;
            }
        }
    }

    void skipLine() noexcept {
        // LF, CR and the separators end a comment; the line end itself is skipped as white space.
        while (cursor_ != end_ && *cursor_ != '\n' && *cursor_ != '\r' &&
               separatorLength(cursor_, end_) == 0) {
            ++cursor_;
        }
    }

    bool readString(NSString& string, bool isKey) {
        if (isAt('"') || isAt('\'')) {
            return readQuoted(string, isKey);
        }
        const Unit* start = cursor_;
        while (cursor_ != end_ && isBare(*cursor_)) {
            ++cursor_;
        }
        string = makeString(start, cursor_, isKey);
        return true;
    }

    NSString makeString(const Unit* start, const Unit* end, bool isKey) {
        const auto count = static_cast<std::size_t>(end - start);
        return isKey ? strings_.makeKey(start, count) : strings_.makeString(start, count);
    }

    bool readQuoted(NSString& string, bool isKey) {
        const Unit* opening = cursor_;
        const char quote = static_cast<char>(*opening);
        const Unit* start = opening + 1;
        // The first quote ends the string unless it is escaped, which the slow way finds out.
        const Unit* closing = findUnit(start, end_, quote);
        if (closing == end_) {
            return fail("A quoted string is not closed", opening);
        }
        // Nearly no string has an escape: then it is made from the text as it is.
        if (findUnit(start, closing, '\\') != closing) {
            return readEscaped(string);
        }
        string = makeString(start, closing, isKey);
        cursor_ = closing + 1;
        return true;
    }

    bool readEscaped(NSString& string) {
        const Unit* opening = cursor_;
        const char quote = static_cast<char>(*opening);
        TextBuilder text;
        ++cursor_;
        const Unit* closing = findUnit(cursor_, end_, quote);
        while (closing != end_) {
            const Unit* backslash = findUnit(cursor_, closing, '\\');
            // Stretches between escapes are appended as a whole.
            text.append(StringView(cursor_, static_cast<std::size_t>(backslash - cursor_)));
            cursor_ = backslash;
            if (backslash == closing) {
                ++cursor_;
                string = text.string();
                return true;
            }
            if (!readEscape(text)) {
                return false;
            }
            // Only an escaped quote asks for the next one: each character is looked at once, however many
            // escapes.
            if (cursor_ > closing) {
                closing = findUnit(cursor_, end_, quote);
            }
        }
        return fail("A quoted string is not closed", opening);
    }

    /// At a backslash that is not the text's last character, for a quote follows somewhere.
    bool readEscape(TextBuilder& text) {
        const Unit* backslash = cursor_++;
        const unsigned number = unitNumber(*cursor_);
        if (number - '0' < 8) {
            return readOctal(text, backslash);
        }
        if (number == 'U') {
            ++cursor_;
            text.appendUnit(readHexUnit());
            return true;
        }
        // Letter and control character have the same index.
        static constexpr std::string_view letters = "abfnrtv";
        static constexpr std::string_view controls = "\a\b\f\n\r\t\v";
        const std::size_t index = number < 0x80 ? letters.find(static_cast<char>(number)) : letters.npos;
        if (index != letters.npos) {
            ++cursor_;
            text.appendAscii(controls[index]);
        } else if (number < 0x80) {
            ++cursor_;
            text.appendAscii(static_cast<char>(number));
        }
        return true; // any other character represents itself
    }

    bool readOctal(TextBuilder& text, const Unit* backslash) {
        unsigned value = 0;
        // Up to three digits make one byte, cut to eight bits.
        for (int digits = 0; digits < 3 && cursor_ != end_ && unitNumber(*cursor_) - '0' < 8; ++digits) {
            value = value * 8 + (unitNumber(*cursor_++) - '0');
        }
        const char16_t unit = nextStepToUnit(static_cast<unsigned char>(value));
        if (unit == nextStepUndefined) {
            return fail("No character is assigned to an octal escape", backslash);
        }
        text.appendUnit(unit);
        return true;
    }

    /// Without a digit the unit is U+0000.
    char16_t readHexUnit() noexcept {
        unsigned value = 0;
        for (int digits = 0; digits < 4 && cursor_ != end_; ++digits) {
            const int digit = hexDigitValue(*cursor_);
            if (digit < 0) {
                break;
            }
            value = value * 16 + static_cast<unsigned>(digit);
            ++cursor_;
        }
        return static_cast<char16_t>(value);
    }

    bool readData() {
        std::string bytes;
        ++cursor_;
        while (cursor_ != end_ && *cursor_ != '>') {
            const unsigned number = unitNumber(*cursor_);
            const int high = hexDigitValue(*cursor_);
            if (high >= 0) {
                // Both digits of a byte must be adjacent.
                const int low = cursor_ + 1 != end_ ? hexDigitValue(cursor_[1]) : -1;
                if (low < 0) {
                    return fail("Data needs its hexadecimal digits in pairs", cursor_);
                }
                bytes.push_back(static_cast<char>(high * 16 + low));
                cursor_ += 2;
            } else if (number == ' ' || number == '\t' || number == '\n' || number == '\r') {
                ++cursor_;
            } else if (const std::size_t length = separatorLength(cursor_, end_); length > 0) {
                cursor_ += length;
            } else {
                return fail("Data contains a character that is not a hexadecimal digit", cursor_);
            }
        }
        if (cursor_ == end_) {
            return fail("Data is not closed", cursor_);
        }
        ++cursor_;
        value_ = NSData::dataWithBytes_length(bytes.data(), bytes.size());
        return true;
    }

    NSObject value_;              ///< read and not yet stored
    bool isStringsTable_ = false; ///< the outermost dictionary has no braces
};

} // namespace

NSObject readOldStyle(const char* utf8, std::size_t count, PropertyListError& error) {
    return OldStyleReader<char>(utf8, count).read(error);
}

NSObject readOldStyle(const char16_t* units, std::size_t count, PropertyListError& error) {
    return OldStyleReader<char16_t>(units, count).read(error);
}

} // namespace ZQFoundation::detail
