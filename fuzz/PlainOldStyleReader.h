// SPDX-License-Identifier: MIT
// A second reader of old-style property lists, to compare the library's with.
#ifndef ZQFOUNDATION_FUZZ_PLAINOLDSTYLEREADER_H
#define ZQFOUNDATION_FUZZ_PLAINOLDSTYLEREADER_H

#include <optional>
#include <string>
#include <string_view>

#include "foundation/plist/PropertyListError.h"
#include "foundation/text/NextStepEncoding.h"
#include "fuzz/SameValue.h"

namespace ZQFoundation::fuzzing {

/// The old-style form read by its grammar, one unit at a time and by recursion. Nil for any other text.
class PlainOldStyleReader {
public:
    explicit PlainOldStyleReader(std::u16string_view text) : text_(text) {}

    NSObject read() {
        if (text_.empty()) {
            return nullptr;
        }
        skipBlanks();
        if (isAtEnd()) {
            return NSDictionary::dictionary();
        }
        if (isAtString()) {
            return readStringOrTable();
        }
        NSObject value = readValue(0);
        skipBlanks();
        return isAtEnd() ? value : NSObject();
    }

private:
    static constexpr std::u16string_view bare =
        u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_$/:.-";
    static constexpr std::u16string_view blanks = u" \t\n\v\f\r\u2028\u2029";

    bool isAtEnd() const { return at_ == text_.size(); }
    char16_t next() const { return isAtEnd() ? u'\0' : text_[at_]; }
    bool isAt(std::u16string_view wanted) const { return text_.substr(at_).starts_with(wanted); }

    bool take(char16_t wanted) {
        const bool isThere = !isAtEnd() && next() == wanted;
        at_ += isThere ? 1 : 0;
        return isThere;
    }

    bool isAtString() const {
        return !isAtEnd() && (next() == u'"' || next() == u'\'' || bare.find(next()) != bare.npos);
    }

    void moveTo(std::size_t place) { at_ = place < text_.size() ? place : text_.size(); }

    void skipBlanks() {
        for (;;) {
            if (isAt(u"//")) {
                moveTo(text_.find_first_of(u"\n\r\u2028\u2029", at_));
            } else if (isAt(u"/*")) {
                const std::size_t end = text_.find(u"*/", at_ + 2);
                moveTo(end == text_.npos ? end : end + 2);
            } else if (!isAtEnd() && blanks.find(next()) != blanks.npos) {
                ++at_;
            } else {
                return;
            }
        }
    }

    NSObject readStringOrTable() {
        const std::size_t start = at_;
        const std::optional<std::u16string> string = readString();
        if (!string) {
            return nullptr;
        }
        skipBlanks();
        if (isAtEnd()) {
            return NSString(*string);
        }
        at_ = start;
        NSMutableDictionary table;
        return readEntries(table, 1) ? table.dictionary() : NSObject();
    }

    /// `depth`: containers around the value.
    NSObject readValue(std::size_t depth) {
        skipBlanks();
        if (isAtString()) {
            const std::optional<std::u16string> string = readString();
            return string ? NSObject(NSString(*string)) : NSObject();
        }
        if (take(u'<')) {
            return readData();
        }
        const bool isArray = next() == u'(';
        if (isAtEnd() || depth == ZQFoundation::detail::maxPropertyListDepth ||
            (!take(u'{') && !take(u'('))) {
            return nullptr;
        }
        if (isArray) {
            return readArray(depth + 1);
        }
        NSMutableDictionary dictionary;
        return readEntries(dictionary, depth + 1) && take(u'}') ? dictionary.dictionary() : NSObject();
    }

    NSObject readArray(std::size_t depth) {
        NSMutableArray array;
        for (skipBlanks(); !take(u')'); skipBlanks()) {
            NSObject element = readValue(depth);
            if (!element) {
                return nullptr;
            }
            array.addObject(std::move(element));
            skipBlanks();
            if (!take(u',')) {
                return take(u')') ? array.array() : NSObject();
            }
        }
        return array.array();
    }

    /// Entries up to the first token that is not a string; `depth` counts the dictionary.
    bool readEntries(NSMutableDictionary& dictionary, std::size_t depth) {
        for (skipBlanks(); isAtString(); skipBlanks()) {
            const std::optional<std::u16string> key = readString();
            if (!key) {
                return false;
            }
            skipBlanks();
            NSObject value = NSString(*key);
            if (take(u'=')) {
                value = readValue(depth);
                skipBlanks();
            }
            if (!value || !take(u';')) {
                return false;
            }
            dictionary.setObject_forKey(std::move(value), NSString(*key));
        }
        return true;
    }

    std::optional<std::u16string> readString() {
        std::u16string string;
        if (next() != u'"' && next() != u'\'') {
            while (!isAtEnd() && bare.find(next()) != bare.npos) {
                string += text_[at_++];
            }
            return string;
        }
        const char16_t quote = text_[at_++];
        while (!isAtEnd()) {
            const char16_t unit = text_[at_++];
            if (unit == quote) {
                return string;
            }
            if (unit != u'\\') {
                string += unit;
            } else if (!readEscape(string)) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    /// After a backslash.
    bool readEscape(std::u16string& string) {
        constexpr std::u16string_view letters = u"abfnrtv";
        constexpr std::u16string_view controls = u"\a\b\f\n\r\t\v";
        if (isAtEnd()) {
            return false;
        }
        if (next() >= u'0' && next() <= u'7') {
            const unsigned value = readNumber(8, 3);
            const char16_t unit = ZQFoundation::detail::nextStepToUnit(static_cast<unsigned char>(value));
            string += unit;
            return unit != ZQFoundation::detail::nextStepUndefined;
        }
        const char16_t unit = text_[at_++];
        if (unit == u'U') {
            string += static_cast<char16_t>(readNumber(16, 4));
        } else {
            const std::size_t index = letters.find(unit);
            string += index == letters.npos ? unit : controls[index];
        }
        return true;
    }

    /// The value of a digit, or 16.
    static unsigned digitValue(char16_t unit) {
        constexpr std::u16string_view digits = u"0123456789abcdef0123456789ABCDEF";
        const std::size_t index = unit == 0 ? digits.npos : digits.find(unit);
        return index == digits.npos ? 16 : static_cast<unsigned>(index % 16);
    }

    unsigned readNumber(unsigned base, unsigned digits) {
        unsigned value = 0;
        for (; digits > 0 && digitValue(next()) < base; --digits) {
            value = value * base + digitValue(text_[at_++]);
        }
        return value;
    }

    /// After the "<".
    NSObject readData() {
        constexpr std::u16string_view blanksInData = u" \t\n\r\u2028\u2029";
        std::string bytes;
        while (!take(u'>')) {
            if (isAtEnd()) {
                return nullptr;
            }
            const char16_t unit = text_[at_++];
            if (blanksInData.find(unit) != blanksInData.npos) {
                continue;
            }
            const unsigned high = digitValue(unit);
            const unsigned low = digitValue(next());
            if (high > 15 || low > 15) {
                return nullptr;
            }
            bytes += static_cast<char>(high * 16 + low);
            ++at_;
        }
        return NSData::dataWithBytes_length(bytes.data(), bytes.size());
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
};

} // namespace ZQFoundation::fuzzing

#endif
