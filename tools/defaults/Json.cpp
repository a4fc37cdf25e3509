// SPDX-License-Identifier: MIT
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

std::string quoted(const NSString& text) { return zqmigrate::quoted(text.utf8()); }

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

/// From "2024-03-05 14:07:09 +0000".
std::string dateText(const NSDate& date) {
    std::string text = date.description().utf8();
    text[text.find(' ')] = 'T';
    return text.replace(text.rfind(' '), std::string::npos, "Z");
}

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
    bool isFirst_ = true;
    bool isAfterKey_ = false;
};

} // namespace

std::string jsonOf(const NSObject& value) { return JsonWriter().write(value); }

} // namespace ZQFoundation::defaults
