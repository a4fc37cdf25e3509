// SPDX-License-Identifier: MIT
// Writes values as JSON, with an iteration over the value instead of recursion, so that no depth is too much
// for the stack.
#include "tools/defaults/Json.h"

#include <cmath>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/ValueWalk.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/RealText.h"
#include "tools/defaults/Failure.h"
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::defaults {

namespace {

using Event = detail::ValueWalk::Event;

/// By the function that the other tool uses, so that both escape alike.
std::string quoted(const NSString& text) { return zqmigrate::quoted(text.utf8()); }

/// In full precision and the shortest form that is read as the same number. JSON has no infinite numbers and
/// no NaN.
std::string numberText(const NSNumber& number) {
    if (number.isBoolean()) {
        return number.boolValue() ? "true" : "false";
    }
    if (!number.isReal()) {
        return number.stringValue().utf8();
    }
    const double value = number.doubleValue();
    if (!std::isfinite(value)) {
        return quoted(number.stringValue());
    }
    char digits[detail::numberTextCapacity];
    return std::string(digits, detail::writeShortestRealText(digits, digits + sizeof digits, value));
}

/// From "2024-03-05 14:07:09 +0000", the description of a date, which is in UTC.
std::string dateText(const NSDate& date) {
    std::string text = date.description().utf8();
    text[text.find(' ')] = 'T';
    return text.replace(text.rfind(' '), std::string::npos, "Z");
}

/// A value of any type that a property list can hold but collections.
std::string scalarText(const NSObject& value) {
    if (const NSNumber number = value.as<NSNumber>()) {
        return numberText(number);
    }
    if (const NSDate date = value.as<NSDate>()) {
        return quoted(dateText(date));
    }
    if (const NSData data = value.as<NSData>()) {
        return quoted(data.base64EncodedStringInSingleLine());
    }
    return quoted(NSString(value));
}

/// Writes the events of a walk over a value: one line for each element, indented by two spaces a level.
class JsonWriter {
public:
    std::string write(const NSObject& value) {
        detail::ValueWalk walk(value);
        while (walk.next()) {
            writeEvent(walk);
        }
        if (walk.refusal() != nullptr) {
            fail("this cannot be written: %s", walk.refusal());
        }
        return text_;
    }

private:
    /// The level of an opening bracket is that of what it contains, so one is subtracted for its own line.
    void writeEvent(const detail::ValueWalk& walk) {
        switch (walk.event()) {
        case Event::key:
            separate(walk.depth());
            text_.append(quoted(NSString(walk.value()))).append(": ");
            isAfterKey_ = true;
            return;
        case Event::scalar:
            separate(walk.depth());
            text_.append(scalarText(walk.value()));
            break;
        case Event::open:
            separate(walk.depth() - 1);
            text_.append(walk.isArray() ? "[" : "{");
            isFirst_ = true;
            return;
        case Event::close:
            if (!walk.isEmpty()) {
                startLine(walk.depth());
            }
            text_.append(walk.isArray() ? "]" : "}");
            break;
        }
        isFirst_ = false;
    }

    /// Writes what comes before an element or a key.
    void separate(std::size_t depth) {
        if (isAfterKey_ || depth == 0) {
            isAfterKey_ = false;
            return;
        }
        text_.append(isFirst_ ? "" : ",");
        startLine(depth);
        isFirst_ = false;
    }

    void startLine(std::size_t depth) { text_.append("\n").append(2 * depth, ' '); }

    std::string text_;
    // Of the innermost collection: whether nothing is before the next element, so no comma.
    bool isFirst_ = true;
    // The next value belongs to a key on the same line.
    bool isAfterKey_ = false;
};

} // namespace

std::string jsonOf(const NSObject& value) { return JsonWriter().write(value); }

} // namespace ZQFoundation::defaults
