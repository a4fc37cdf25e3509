// SPDX-License-Identifier: MIT
// Converts text arguments to ASCII or UTF-16.
// Most arguments are literals or strings of the library, whose form is known, and cost nothing here.
#include "foundation/objects/AsciiOrUtf16.h"

#include <new>

#include "foundation/objects/NSString.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

AsciiOrUtf16::AsciiOrUtf16(StringView text) {
    switch (text.form()) {
    case StringView::Form::absent:
        isNil_ = true;
        // A pointer that may be passed on, so that operations need no test for nil before they compare
        // lengths.
        ascii_ = "";
        break;
    case StringView::Form::ascii:
        ascii_ = text.size() != 0 ? text.bytes() : "";
        length_ = text.size();
        break;
    case StringView::Form::utf8:
        // An ASCII text that came as UTF-8 is recognized once, here.
        convert(text.size() != 0 ? text.bytes() : "", text.size());
        break;
    case StringView::Form::utf16:
        narrow(text.units(), text.size());
        break;
    }
}

AsciiOrUtf16::~AsciiOrUtf16() { ::operator delete(allocated_); }

void AsciiOrUtf16::convert(const char* bytes, std::size_t count) {
    if (asciiPrefixLength(bytes, count) == count) {
        ascii_ = bytes;
        length_ = count;
        return;
    }
    // A byte of UTF-8 never yields more than one unit.
    // The inline buffer fits every text of up to its length, so the exact length is only computed for longer
    // ones.
    char16_t* units = inline_;
    if (count > inlineUnits) {
        allocated_ = static_cast<char16_t*>(
            ::operator new(utf16Length(bytes, count, IllFormed::replace) * sizeof(char16_t)));
        units = allocated_;
    }
    length_ = static_cast<std::size_t>(utf8ToUtf16(bytes, count, units, IllFormed::replace) - units);
    units_ = units;
}

// Units that are all ASCII are narrowed, since equality and hashing rely on equal texts having the same
// form.
void AsciiOrUtf16::narrow(const char16_t* units, std::size_t count) {
    length_ = count;
    if (asciiPrefixLength(units, count) != count) {
        units_ = units;
        return;
    }
    char* bytes = reinterpret_cast<char*>(inline_);
    if (count > sizeof inline_) {
        // Allocated as bytes, and released as such; the pointer's type does not matter.
        allocated_ = static_cast<char16_t*>(::operator new(count));
        bytes = reinterpret_cast<char*>(allocated_);
    }
    narrowAscii(units, count, bytes);
    ascii_ = bytes;
}

} // namespace ZQFoundation::detail
