// SPDX-License-Identifier: MIT
// Writes values as JSON, iteratively instead of recursively, so that no depth exceeds the stack.
#include "tools/defaults/Json.h"

#include <cmath>

#include "foundation/objects/CollectionLayout.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/ValueWalk.h"
#include "foundation/text/NumberText.h"
#include "foundation/text/RealText.h"
#include "tools/common/Program.h"
#include "tools/common/Text.h"

namespace ZQFoundation::tools::defaults {

namespace {

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

/// A value of any type that a property list can contain, except collections.
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

constexpr detail::CollectionLayout layout{
    .array = {"[", "\n", ",\n", "\n", "", "]"},
    .dictionary = {"{", "\n", ",\n", "\n", "", "}"},
    .set = {}, // refused
    .assignment = ": ",
    .indentation = 2,
};

} // namespace

std::string jsonOf(const NSObject& value) {
    std::string text;
    detail::ValueWalk walk(value);
    while (walk.next()) {
        const detail::CollectionLayout::Lead lead = layout.leadOf(walk);
        text.append(lead.text).append(lead.spaces, ' ');
        if (walk.event() == detail::ValueWalk::Event::leaf) {
            text.append(scalarText(walk.value()));
        } else {
            text.append(layout.bracketOf(walk));
        }
    }
    if (walk.refusal() != nullptr) {
        fail("this cannot be written: %s", walk.refusal());
    }
    return text;
}

} // namespace ZQFoundation::tools::defaults
