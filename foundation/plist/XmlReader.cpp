// SPDX-License-Identifier: MIT
// Reads XML property lists.
// A reader for property lists, not for XML: exactly the elements of the format, in exactly their order. What
// a general reader would do besides (expand, fetch, validate) is what makes such readers dangerous.
#include "foundation/plist/XmlReader.h"

#include <algorithm>
#include <string_view>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/plist/TextReader.h"
#include "foundation/plist/XmlScalars.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

enum class Element : unsigned char {
    unknown,
    array,
    data,
    date,
    dictionary,
    falseValue,
    integer,
    key,
    plist,
    real,
    string,
    trueValue,
};

/// How an element is nearly always closed, in the order of `Element`.
constexpr std::string_view closeTags[] = {
    "",           "</array>", "</data>",  "</date>", "</dict>",   "</false>",
    "</integer>", "</key>",   "</plist>", "</real>", "</string>", "</true>",
};

/// XML's own four kinds; other white space is text.
constexpr bool isBlank(unsigned number) noexcept {
    return number == ' ' || number == '\t' || number == '\n' || number == '\r';
}

template <class Unit, std::size_t size>
bool isName(const Unit* name, std::size_t length, const char (&wanted)[size]) noexcept {
    return length == size - 1 && startsWith(name, name + length, wanted);
}

/// Names are case-sensitive. The first letter leaves at most three to compare.
template <class Unit>
Element elementNamed(const Unit* name, std::size_t length) noexcept {
    switch (length == 0 ? 0 : unitNumber(name[0])) {
    case 'a':
        return isName(name, length, "array") ? Element::array : Element::unknown;
    case 'd':
        if (isName(name, length, "dict")) {
            return Element::dictionary;
        }
        if (isName(name, length, "data")) {
            return Element::data;
        }
        return isName(name, length, "date") ? Element::date : Element::unknown;
    case 'f':
        return isName(name, length, "false") ? Element::falseValue : Element::unknown;
    case 'i':
        return isName(name, length, "integer") ? Element::integer : Element::unknown;
    case 'k':
        return isName(name, length, "key") ? Element::key : Element::unknown;
    case 'p':
        return isName(name, length, "plist") ? Element::plist : Element::unknown;
    case 'r':
        return isName(name, length, "real") ? Element::real : Element::unknown;
    case 's':
        return isName(name, length, "string") ? Element::string : Element::unknown;
    case 't':
        return isName(name, length, "true") ? Element::trueValue : Element::unknown;
    default:
        return Element::unknown;
    }
}

template <class Unit>
class XmlReader : private TextReader<Unit> {
public:
    XmlReader(const Unit* text, std::size_t count) : TextReader<Unit>(text, count) {}

    NSObject read(PropertyListError& error) {
        NSObject result;
        if (readDocument(result)) {
            return result;
        }
        this->report(error);
        return nullptr;
    }

private:
    using Base = TextReader<Unit>;
    using Base::begin_, Base::cursor_, Base::end_, Base::fail, Base::stack_, Base::strings_;

    /// An open tag; `isEmpty` when it closes itself.
    struct Tag {
        Element element = Element::unknown;
        bool isEmpty = false;
        const Unit* start = nullptr;
    };

    bool readDocument(NSObject& result) {
        Tag tag;
        if (!skipProlog() || !readOpenTag(tag)) {
            return false;
        }
        // The element around the value may be missing.
        if (tag.element != Element::plist) {
            return readTree(tag, result);
        }
        if (tag.isEmpty) {
            return fail("The property list contains no value", tag.start);
        }
        if (!skipBetweenElements()) {
            return false;
        }
        // Reported as what it is, rather than as an unknown element.
        if (isAtCloseTag()) {
            return fail("The property list contains no value", cursor_);
        }
        // What follows the close tag is not read.
        return readOpenTag(tag) && readTree(tag, result) && skipBetweenElements() &&
               readCloseTag(Element::plist);
    }

    /// The document type may come between comments and instructions.
    bool skipProlog() noexcept {
        for (;;) {
            if (!skipBetweenElements()) {
                return false;
            }
            if (!startsWith(cursor_, end_, "<!DOCTYPE")) {
                return true;
            }
            if (!skipDocumentType()) {
                return false;
            }
        }
    }

    /// Definitions inside the document type are refused: nothing that a text defines itself is ever expanded.
    bool skipDocumentType() noexcept {
        const Unit* start = cursor_;
        // Past the name of the declaration, which takes nine units.
        for (cursor_ += 9; cursor_ != end_ && *cursor_ != '>'; ++cursor_) {
            if (*cursor_ == '[') {
                return fail("Definitions inside the document type are not allowed", cursor_);
            }
            if (!skipQuoted()) {
                return false;
            }
        }
        return cursor_ == end_ ? fail("The document type is not closed", start) : skipOne();
    }

    bool skipOne() noexcept {
        ++cursor_;
        return true;
    }

    /// At the opening quote of a value: moves on to the closing one. Anywhere else does nothing.
    bool skipQuoted() noexcept {
        if (*cursor_ != '"' && *cursor_ != '\'') {
            return true;
        }
        const Unit* closing = findUnit(cursor_ + 1, end_, static_cast<char>(*cursor_));
        if (closing == end_) {
            return fail("A quoted value in a tag is not closed", cursor_);
        }
        cursor_ = closing;
        return true;
    }

    /// Skips white space, comments and instructions.
    bool skipBetweenElements() noexcept {
        for (;;) {
            while (cursor_ != end_ && isBlank(unitNumber(*cursor_))) {
                ++cursor_;
            }
            // Anything else is an element or text, for the caller.
            if (end_ - cursor_ < 2 || *cursor_ != '<' || (cursor_[1] != '!' && cursor_[1] != '?')) {
                return true;
            }
            if (startsWith(cursor_, end_, "<!--")) {
                // A comment ends at the first "-->"; the hyphens of its opening do not count.
                if (!skipPast(4, "--", "A comment is not closed")) {
                    return false;
                }
            } else if (cursor_[1] == '?') {
                if (!skipPast(2, "?", "An instruction is not closed")) {
                    return false;
                }
            } else {
                return true;
            }
        }
    }

    /// Moves past the next `>` that follows `before`; the opening takes `openingLength` units.
    template <std::size_t size>
    bool skipPast(std::size_t openingLength, const char (&before)[size], const char* message) noexcept {
        const Unit* content = cursor_ + openingLength;
        // Each ">" is looked at once, so that even a text of openings without an end takes linear time.
        for (const Unit* close = content; (close = findUnit(close, end_, '>')) != end_; ++close) {
            if (close - content >= static_cast<std::ptrdiff_t>(size - 1) &&
                startsWith(close - (size - 1), close, before)) {
                cursor_ = close + 1;
                return true;
            }
        }
        return fail(message, end_);
    }

    bool isAtCloseTag() const noexcept { return startsWith(cursor_, end_, "</"); }

    bool readOpenTag(Tag& tag) noexcept {
        if (cursor_ == end_) {
            return fail("The text ends where an element is expected", cursor_);
        }
        if (*cursor_ != '<') {
            return fail("Text where an element is expected", cursor_);
        }
        tag.start = cursor_;
        const Unit* name = ++cursor_;
        // A name ends at white space, a slash or the end of the tag.
        while (cursor_ != end_ && *cursor_ != '>' && *cursor_ != '/' && !isBlank(unitNumber(*cursor_))) {
            ++cursor_;
        }
        tag.element = elementNamed(name, static_cast<std::size_t>(cursor_ - name));
        if (tag.element == Element::unknown) {
            return fail(isAtUnexpectedClose(name) ? "A close tag where an element is expected"
                                                  : "The element is not known",
                        tag.start);
        }
        while (cursor_ != end_ && *cursor_ != '>') {
            // Without this check, one missing ">" would be reported at the end of the text.
            if (*cursor_ == '<') {
                return fail("A tag is not closed", tag.start);
            }
            // A quoted value may contain ">" and "<".
            if (!skipQuoted()) {
                return false;
            }
            ++cursor_;
        }
        if (cursor_ == end_) {
            return fail("A tag is not closed", tag.start);
        }
        // Attributes are ignored, so only the last character matters.
        tag.isEmpty = cursor_[-1] == '/';
        ++cursor_;
        return true;
    }

    bool isAtUnexpectedClose(const Unit* name) const noexcept { return name != end_ && *name == '/'; }

    /// Skips the usual spelling, without white space, by one comparison.
    bool skipCloseTag(Element element) noexcept {
        const std::string_view tag = closeTags[static_cast<std::size_t>(element)];
        if (static_cast<std::size_t>(end_ - cursor_) < tag.size() ||
            !std::equal(tag.begin(), tag.end(), cursor_,
                        [](char wanted, Unit unit) { return static_cast<Unit>(wanted) == unit; })) {
            return false;
        }
        cursor_ += tag.size();
        return true;
    }

    bool readCloseTag(Element element) noexcept {
        return skipCloseTag(element) || readUnusualCloseTag(element);
    }

    bool readUnusualCloseTag(Element element) noexcept {
        const Unit* start = cursor_;
        if (!isAtCloseTag()) {
            return fail(cursor_ == end_ ? "An element is not closed" : "The close tag is missing", cursor_);
        }
        const Unit* name = cursor_ += 2;
        while (cursor_ != end_ && *cursor_ != '>' && !isBlank(unitNumber(*cursor_))) {
            ++cursor_;
        }
        const Element closed = elementNamed(name, static_cast<std::size_t>(cursor_ - name));
        while (cursor_ != end_ && isBlank(unitNumber(*cursor_))) {
            ++cursor_;
        }
        if (cursor_ == end_ || *cursor_ != '>') {
            return fail("A close tag is not closed", start);
        }
        return closed == element ? skipOne() : fail("The close tag does not match the open tag", start);
    }

    /// The value whose open tag was just read, with all that is inside.
    /// A loop, with the containers on a stack: one round for each open tag.
    bool readTree(Tag tag, NSObject& result) {
        NSObject value;
        for (;;) {
            // A container that closes itself is a value like others.
            const bool isContainer = tag.element == Element::dictionary || tag.element == Element::array;
            if (isContainer && !tag.isEmpty) {
                if (!open(tag)) {
                    return false;
                }
            } else {
                if (!readScalar(tag, value)) {
                    return false;
                }
                if (stack_.isEmpty()) {
                    result = std::move(value);
                    return true;
                }
                stack_.add(std::move(value));
            }
            // Several containers may end here, before the next tag is read.
            if (!closeFinished(result)) {
                return false;
            }
            if (stack_.isEmpty()) {
                return true;
            }
            if (stack_.isInDictionary() && !readKey()) {
                return false;
            }
            if (!readOpenTag(tag)) {
                return false;
            }
        }
    }

    bool open(const Tag& tag) {
        const bool isOpen = tag.element == Element::array ? stack_.openArray() : stack_.openDictionary();
        return isOpen || fail("Values are nested too deeply", tag.start);
    }

    /// Closes every container whose close tag comes next; the outermost one becomes the result.
    bool closeFinished(NSObject& result) {
        while (skipBetweenElements()) {
            if (!isAtCloseTag()) {
                return true;
            }
            if (!readCloseTag(stack_.isInDictionary() ? Element::dictionary : Element::array)) {
                return false;
            }
            NSObject finished = stack_.close();
            if (stack_.isEmpty()) {
                result = std::move(finished);
                return true;
            }
            stack_.add(std::move(finished));
        }
        return false;
    }

    /// In a dictionary: the key, up to the tag of its value.
    bool readKey() {
        Tag tag;
        if (!readOpenTag(tag)) {
            return false;
        }
        if (tag.element != Element::key) {
            return fail("A dictionary's value must follow a key", tag.start);
        }
        NSString key;
        if (!readString(tag, true, key) || !skipBetweenElements()) {
            return false;
        }
        if (isAtCloseTag()) {
            return fail("The value of a key is missing", cursor_);
        }
        stack_.setKey(std::move(key));
        return true;
    }

    /// Any value but a container with something inside.
    bool readScalar(const Tag& tag, NSObject& value) {
        switch (tag.element) {
        // A key where a value is expected is read as a string: other readers of this format accept it, too.
        case Element::key:
        case Element::string: {
            NSString string;
            if (!readString(tag, false, string)) {
                return false;
            }
            value = std::move(string);
            return true;
        }
        case Element::trueValue:
        case Element::falseValue:
            value = NSNumber(tag.element == Element::trueValue);
            // Both spellings of an empty element are allowed.
            return tag.isEmpty || readCloseTag(tag.element);
        case Element::array:
            value = NSArray::array();
            return true;
        case Element::dictionary:
            value = NSDictionary::dictionary();
            return true;
        case Element::plist:
            return fail("A property list cannot be inside another", tag.start);
        default:
            return readNotation(tag, value);
        }
    }

    /// Numbers, dates and data: plain text up to the close tag, without references.
    bool readNotation(const Tag& tag, NSObject& value) {
        if (tag.isEmpty) {
            return fail("The element must not be empty", tag.start);
        }
        const Unit* start = cursor_;
        // Up to the next tag, whatever it is; the close tag is checked after the text.
        cursor_ = findUnit(cursor_, end_, '<');
        return decodeNotation(tag.element, start, static_cast<std::size_t>(cursor_ - start), value) &&
               readCloseTag(tag.element);
    }

    bool decodeNotation(Element element, const Unit* text, std::size_t count, NSObject& value) {
        switch (element) {
        case Element::integer: {
            const IntegerReading reading = readXmlInteger(text, count, value);
            return reading == IntegerReading::good ||
                   fail(reading == IntegerReading::malformed ? "The integer is malformed"
                                                             : "The integer is out of range",
                        text);
        }
        case Element::real:
            return readXmlReal(text, count, value) || fail("The real number is malformed", text);
        case Element::date:
            return readXmlDate(text, count, value) || fail("The date is malformed", text);
        default:
            // Data skip what is not Base64, so this is the only way in which they fail.
            return readXmlData(text, count, value) ||
                   fail("The data contains a character beyond ASCII", text);
        }
    }

    bool readString(const Tag& tag, bool isKey, NSString& string) {
        if (tag.isEmpty) {
            string = NSString::string();
            return true;
        }
        const Unit* start = cursor_;
        const Unit* stop = findUnit(start, end_, '<');
        // Neither a reference nor a literal section: the text is used as it is.
        const bool isPlain = startsWith(stop, end_, "</") && findUnit(start, stop, '&') == stop;
        if (!isPlain) {
            return readMixedString(tag, string);
        }
        const auto count = static_cast<std::size_t>(stop - start);
        string = isKey ? strings_.makeKey(start, count) : strings_.makeString(start, count);
        cursor_ = stop;
        return readCloseTag(tag.element);
    }

    /// Text with references or literal sections in it.
    bool readMixedString(const Tag& tag, NSString& string) {
        TextBuilder text;
        for (;;) {
            const Unit* stop = findUnit(cursor_, end_, '<');
            // The references before the stop; the text between them is appended as it is.
            if (!appendReferences(text, stop)) {
                return false;
            }
            if (stop == end_) {
                return fail("An element is not closed", tag.start);
            }
            if (isAtCloseTag()) {
                string = text.string();
                return readCloseTag(tag.element);
            }
            // A comment inside a text is refused: elements have text only.
            if (!startsWith(cursor_, end_, "<![CDATA[")) {
                return fail("Only text is allowed here", cursor_);
            }
            if (!appendLiteralSection(text)) {
                return false;
            }
        }
    }

    void appendText(TextBuilder& text, const Unit* stop) {
        text.append(StringView(cursor_, static_cast<std::size_t>(stop - cursor_)));
        cursor_ = stop;
    }

    /// The text up to `stop`, its references replaced.
    bool appendReferences(TextBuilder& text, const Unit* stop) {
        for (;;) {
            appendText(text, findUnit(cursor_, stop, '&'));
            if (cursor_ == stop) {
                return true;
            }
            if (!appendReference(text, stop)) {
                return false;
            }
        }
    }

    bool appendReference(TextBuilder& text, const Unit* stop) {
        // No other references exist: a text cannot define any.
        if (startsWith(cursor_, stop, "&#")) {
            return appendNumbered(text, stop);
        }
        return appendNamed(text, stop, "&lt;", '<') || appendNamed(text, stop, "&gt;", '>') ||
               appendNamed(text, stop, "&amp;", '&') || appendNamed(text, stop, "&apos;", '\'') ||
               appendNamed(text, stop, "&quot;", '"') || fail("The reference is not known", cursor_);
    }

    template <std::size_t size>
    bool appendNamed(TextBuilder& text, const Unit* stop, const char (&reference)[size], char character) {
        if (!startsWith(cursor_, stop, reference)) {
            return false;
        }
        text.appendAscii(character);
        cursor_ += size - 1;
        return true;
    }

    bool appendNumbered(TextBuilder& text, const Unit* stop) {
        const Unit* reference = cursor_;
        cursor_ += 2;
        const bool isHexadecimal = startsWith(cursor_, stop, "x");
        cursor_ += isHexadecimal ? 1 : 0;
        const int base = isHexadecimal ? 16 : 10;
        const Unit* digits = cursor_;
        char32_t number = 0;
        // Checked at each digit, so that the number cannot overflow.
        for (; cursor_ != stop; ++cursor_) {
            const int digit = hexDigitValue(*cursor_);
            if (digit < 0 || digit >= base) {
                break;
            }
            number = number * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
            if (number > 0x10FFFF) {
                return fail("The reference is beyond the last character", reference);
            }
        }
        if (cursor_ == digits || cursor_ == stop || *cursor_ != ';') {
            return fail("The numeric reference is malformed", reference);
        }
        ++cursor_;
        if (number < 0x10000) {
            text.appendUnit(static_cast<char16_t>(number)); // a lone surrogate is kept
        } else {
            text.appendCodePoint(number);
        }
        return true;
    }

    bool appendLiteralSection(TextBuilder& text) {
        const Unit* section = cursor_;
        // Past the opening, which takes nine units.
        const Unit* content = cursor_ + 9;
        for (const Unit* close = content; (close = findUnit(close, end_, '>')) != end_; ++close) {
            // The end may follow the opening directly.
            if (close - content >= 2 && startsWith(close - 2, close, "]]")) {
                cursor_ = content;
                appendText(text, close - 2);
                cursor_ = close + 1;
                return true;
            }
        }
        return fail("A literal section is not closed", section);
    }
};

} // namespace

NSObject readXml(const char* utf8, std::size_t count, PropertyListError& error) {
    return XmlReader<char>(utf8, count).read(error);
}

NSObject readXml(const char16_t* units, std::size_t count, PropertyListError& error) {
    return XmlReader<char16_t>(units, count).read(error);
}

} // namespace ZQFoundation::detail
