// SPDX-License-Identifier: MIT
// Converts text arguments to ASCII or UTF-16.
#include "foundation/objects/AsciiOrUtf16.h"

#include <new>

#include "foundation/objects/NSString.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

AsciiOrUtf16::AsciiOrUtf16(StringView text) {
    switch (text.form()) {
    case StringView::Form::absent:
        isNil_ = true;
        ascii_ = "";
        break;
    case StringView::Form::ascii:
        ascii_ = text.size() != 0 ? text.bytes() : "";
        length_ = text.size();
        break;
    case StringView::Form::utf8:
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
    char16_t* units = inline_;
    if (count > inlineUnits) {
        allocated_ = static_cast<char16_t*>(
            ::operator new(utf16Length(bytes, count, IllFormed::replace) * sizeof(char16_t)));
        units = allocated_;
    }
    length_ = static_cast<std::size_t>(utf8ToUtf16(bytes, count, units, IllFormed::replace) - units);
    units_ = units;
}

void AsciiOrUtf16::narrow(const char16_t* units, std::size_t count) {
    length_ = count;
    if (asciiPrefixLength(units, count) != count) {
        units_ = units;
        return;
    }
    char* bytes = reinterpret_cast<char*>(inline_);
    if (count > sizeof inline_) {
        allocated_ = static_cast<char16_t*>(::operator new(count));
        bytes = reinterpret_cast<char*>(allocated_);
    }
    narrowAscii(units, count, bytes);
    ascii_ = bytes;
}

} // namespace ZQFoundation::detail
