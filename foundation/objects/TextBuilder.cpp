// SPDX-License-Identifier: MIT
#include "foundation/objects/TextBuilder.h"

#include <new>

#include "foundation/objects/StringBodies.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

/// Keeps every byte count that follows from a capacity far from overflow.
constexpr std::size_t largestText = static_cast<std::size_t>(1) << 61;

} // namespace

void TextBuilder::reset() noexcept {
    data_ = inline_;
    length_ = 0;
    capacityBytes_ = inlineBytes;
    body_ = nullptr;
    ascii_ = true;
}

void TextBuilder::growTo(std::size_t bytes) {
    const std::size_t held = ascii_ ? length_ : length_ * sizeof(char16_t);
    auto* const body = static_cast<StringBody*>(::operator new(sizeof(StringBody) + bytes));
    std::memcpy(body->ascii(), data_, held);
    ::operator delete(body_);
    body_ = body;
    data_ = body->ascii();
    capacityBytes_ = bytes;
}

void TextBuilder::makeRoom(std::size_t moreUnits) {
    const std::size_t unitBytes = ascii_ ? 1 : sizeof(char16_t);
    if (moreUnits > largestText || length_ + moreUnits > largestText) {
        throw std::bad_alloc();
    }
    const std::size_t needed = (length_ + moreUnits) * unitBytes;
    if (needed > capacityBytes_) {
        const std::size_t larger = capacityBytes_ + capacityBytes_ / 2;
        growTo(needed > larger ? needed : larger);
    }
}

void TextBuilder::widen(std::size_t moreUnits) {
    if (moreUnits > largestText) {
        throw std::bad_alloc();
    }
    const std::size_t needed = (length_ + moreUnits) * sizeof(char16_t);
    const std::size_t capacity = needed + needed / 2;
    auto* const body = static_cast<StringBody*>(::operator new(sizeof(StringBody) + capacity));
    widenAscii(asciiData(), length_, body->units());
    ::operator delete(body_);
    body_ = body;
    data_ = body->units();
    capacityBytes_ = capacity;
    ascii_ = false;
}

void TextBuilder::appendAsciiSlowly(const char* bytes, std::size_t count) {
    makeRoom(count);
    if (ascii_) {
        std::memcpy(static_cast<char*>(data_) + length_, bytes, count);
    } else {
        widenAscii(bytes, count, static_cast<char16_t*>(data_) + length_);
    }
    length_ += count;
}

void TextBuilder::appendRepeated(char character, std::size_t count) {
    makeRoom(count);
    if (ascii_) {
        std::memset(static_cast<char*>(data_) + length_, character, count);
    } else {
        char16_t* const units = static_cast<char16_t*>(data_) + length_;
        for (std::size_t i = 0; i < count; ++i) {
            units[i] = static_cast<unsigned char>(character);
        }
    }
    length_ += count;
}

void TextBuilder::appendUnits(const char16_t* units, std::size_t count) {
    if (ascii_) {
        if (asciiPrefixLength(units, count) == count) {
            makeRoom(count);
            narrowAscii(units, count, static_cast<char*>(data_) + length_);
            length_ += count;
            return;
        }
        widen(count);
    }
    makeRoom(count);
    if (count != 0) {
        std::memcpy(static_cast<char16_t*>(data_) + length_, units, count * sizeof(char16_t));
    }
    length_ += count;
}

void TextBuilder::appendUnit(char16_t unit) { appendUnits(&unit, 1); }

void TextBuilder::appendCodePoint(char32_t codePoint) {
    if (codePoint < 0x10000) {
        appendUnit(static_cast<char16_t>(codePoint));
        return;
    }
    const char32_t offset = codePoint - 0x10000;
    const char16_t pair[] = {static_cast<char16_t>(0xD800 + (offset >> 10)),
                             static_cast<char16_t>(0xDC00 + (offset & 0x3FF))};
    appendUnits(pair, 2);
}

void TextBuilder::appendUtf8(const char* bytes, std::size_t count) {
    const std::size_t plain = asciiPrefixLength(bytes, count);
    appendAscii(bytes, plain);
    if (plain == count) {
        return;
    }
    const std::size_t units = utf16Length(bytes + plain, count - plain, IllFormed::replace);
    if (ascii_) {
        widen(units);
    }
    makeRoom(units);
    utf8ToUtf16(bytes + plain, count - plain, static_cast<char16_t*>(data_) + length_, IllFormed::replace);
    length_ += units;
}

void TextBuilder::append(StringView text) {
    switch (text.form()) {
    case StringView::Form::absent:
        break;
    case StringView::Form::ascii:
        appendAscii(text.bytes(), text.size());
        break;
    case StringView::Form::utf8:
        appendUtf8(text.bytes(), text.size());
        break;
    case StringView::Form::utf16:
        appendUnits(text.units(), text.size());
        break;
    }
}

char* TextBuilder::reserveAscii(std::size_t count) {
    if (!ascii_) {
        return nullptr;
    }
    makeRoom(count);
    return static_cast<char*>(data_) + length_;
}

NSString TextBuilder::string() {
    NSString result;
    const std::size_t held = ascii_ ? length_ : length_ * sizeof(char16_t);
    const bool fits = body_ != nullptr && capacityBytes_ - held <= held / 2 + 64;
    if (ascii_ && !fits) {
        result = makeAsciiString(asciiData(), length_);
    } else if (!ascii_ && (!fits || asciiPrefixLength(unitData(), length_) == length_)) {
        result = makeString(unitData(), length_);
    } else {
        body_->references = 1;
        body_->length = length_ & (SIZE_MAX >> 1);
        body_->isAscii = ascii_;
        result = Access::adoptString(body_);
        body_ = nullptr;
    }
    ::operator delete(body_);
    reset();
    return result;
}

} // namespace ZQFoundation::detail
