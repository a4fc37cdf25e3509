// SPDX-License-Identifier: MIT
// NSObject(ZQFoundation), and the truth value of strings.
#include "extensions/Condensed.h"
#include "extensions/Truth.h"
#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/Numbers.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/CaseMapping.h"
#include "foundation/text/NumberText.h"

namespace ZQFoundation::detail {

namespace {

/// Whether the text in upper case is "YES". This includes other letters whose upper case is "S".
bool readsYes(const AsciiOrUtf16& text) noexcept {
    constexpr char32_t yes[] = {'Y', 'E', 'S'};
    std::size_t matched = 0;
    for (std::size_t i = 0; i < text.length(); ++i) {
        char32_t upper[3];
        const unsigned count = upperCase(text[i], upper);
        for (unsigned k = 0; k < count; ++k) {
            if (matched == 3 || upper[k] != yes[matched]) {
                return false;
            }
            ++matched;
        }
    }
    return matched == 3;
}

} // namespace

// Trace keys are judged by this at each reading, so ASCII is read where it is, without an upper-case copy.
bool truthOfText(StringView view) {
    const AsciiOrUtf16 text(view);
    // The upper case of a letter has at most three units.
    if (text.length() <= 3 && readsYes(text)) {
        return true;
    }
    const std::int32_t number =
        text.isAscii() ? readInt32(text.ascii(), text.length()) : readInt32(text.units(), text.length());
    return number != 0;
}

// A number is written to the stack and read as a text, which gives the result of its string form without a
// string.
bool rootTruth(const NSObject& object) {
    if (isNumber(object)) {
        char text[numberTextCapacity];
        return truthOfText(StringView::ascii(text, writeNumber(object, text)));
    }
    if (const NSString string{object}) {
        return truthOfText(string);
    }
    const std::optional<NSString> stringForm = object.offeredStringValue();
    if (stringForm && *stringForm) {
        return truthOfText(*stringForm);
    }
    // Deliberately only the low 8 bits: a value of 256 counts as false.
    const std::optional<int> integerForm = object.offeredIntValue();
    return integerForm && (*integerForm & 0xFF) != 0;
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

// Numbers have a truth of their own, and keep it here; 0.5 is true.
bool NSObject::boolValue() const {
    return detail::isNumber(*this) ? as<NSNumber>().boolValue() : detail::rootTruth(*this);
}

bool NSString::boolValue() const { return detail::truthOfText(*this); }

NSString NSObject::condensedDescription() const {
    if (detail::isCondensable(*this)) {
        detail::TextBuilder out;
        detail::appendCondensed(out, *this);
        return out.string();
    }
    return hostObject() != nullptr ? hostObject()->condensedDescription() : description();
}

} // namespace ZQFoundation
