// SPDX-License-Identifier: MIT
// Growing and widening of text builders, and appending text that is not ASCII.
// What stays in the header is the path of short ASCII pieces; everything here is reached once in a while.
#include "foundation/objects/TextBuilder.h"

#include <cstdint>
#include <new>

#include "foundation/objects/StringBodies.h"
#include "foundation/system/SignalSafeMemory.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

/// Keeps every byte count that follows from a capacity far from overflow.
constexpr std::size_t maxTextUnits = StringBody::maxLength;

/// Up to this many bytes, one pass that copies while it looks beats a look and a copy.
constexpr std::size_t maxShortText = 128;

template <class Word>
Word copyWord(const char* from, char* to) noexcept {
    Word word;
    std::memcpy(&word, from, sizeof word);
    std::memcpy(to, &word, sizeof word);
    return word;
}

/// Copies at least one word: word by word, the last one over the end of the one before it.
template <class Word>
bool copyWordsIfAscii(const char* from, std::size_t count, char* to) noexcept {
    const std::size_t last = count - sizeof(Word);
    Word seen = copyWord<Word>(from + last, to + last);
    for (std::size_t i = 0; i < last; i += sizeof(Word)) {
        seen |= copyWord<Word>(from + i, to + i);
    }
    constexpr Word highBits = static_cast<Word>(0x8080808080808080);
    return (seen & highBits) == 0;
}

/// False if a byte is not ASCII; what was copied then means nothing.
bool copyIfAscii(const char* from, std::size_t count, char* to) noexcept {
    if (count >= sizeof(std::uint64_t)) {
        return copyWordsIfAscii<std::uint64_t>(from, count, to);
    }
    if (count >= sizeof(std::uint32_t)) {
        return copyWordsIfAscii<std::uint32_t>(from, count, to);
    }
    return count == 0 || copyWordsIfAscii<unsigned char>(from, count, to);
}

} // namespace

/// Empty, with the memory inside the builder: what was allocated must have been released or handed over.
void TextBuilder::reset() noexcept {
    data_ = inline_;
    length_ = 0;
    capacityBytes_ = inlineBytes;
    allocated_ = nullptr;
    form_ = Form::ascii;
}

// Memory of a builder for UTF-8 may belong to a signal handler's line, so it comes from elsewhere.
void TextBuilder::release(void* memory) const noexcept {
    form_ == Form::utf8 ? giveBackSignalSafeMemory(memory) : ::operator delete(memory);
}

/// The new memory is complete before the old one is released, so a lack of memory changes nothing.
void TextBuilder::growTo(std::size_t bytes) {
    const std::size_t held = holdsBytes() ? length_ : length_ * sizeof(char16_t);
    void* memory = nullptr;
    void* text = nullptr;
    if (form_ == Form::utf8) {
        text = memory = takeSignalSafeMemory(bytes);
    } else {
        // Room for the header of a string is kept in front, so that the memory can become the string itself.
        auto* const body = static_cast<StringBody*>(::operator new(sizeof(StringBody) + bytes));
        memory = body;
        text = body->ascii();
    }
    std::memcpy(text, data_, held);
    release(allocated_);
    allocated_ = memory;
    data_ = text;
    capacityBytes_ = bytes;
}

void TextBuilder::makeRoom(std::size_t moreUnits) {
    const std::size_t unitBytes = holdsBytes() ? 1 : sizeof(char16_t);
    // Each checked by itself, so that the sum does not wrap.
    if (moreUnits > maxTextUnits || length_ + moreUnits > maxTextUnits) {
        throw std::bad_alloc();
    }
    const std::size_t needed = (length_ + moreUnits) * unitBytes;
    if (needed > capacityBytes_) {
        // By half, so that appending n units moves at most about 3n, with less waste than doubling.
        const std::size_t larger = capacityBytes_ + capacityBytes_ / 2;
        growTo(needed > larger ? needed : larger);
    }
}

/// From bytes to units, with room for the units that come next. A builder never becomes narrow again before
/// its text is taken.
void TextBuilder::widen(std::size_t moreUnits) {
    if (moreUnits > maxTextUnits) {
        throw std::bad_alloc();
    }
    // More than needed: a text that is not ASCII will continue to be appended to.
    const std::size_t needed = (length_ + moreUnits) * sizeof(char16_t);
    const std::size_t capacity = needed + needed / 2;
    auto* const body = static_cast<StringBody*>(::operator new(sizeof(StringBody) + capacity));
    widenAscii(asciiData(), length_, body->units());
    // Only memory of a plain builder, never of one for UTF-8, gets here.
    ::operator delete(allocated_);
    allocated_ = body;
    data_ = body->units();
    capacityBytes_ = capacity;
    form_ = Form::units;
}

void TextBuilder::appendAsciiSlowly(const char* bytes, std::size_t count) {
    makeRoom(count);
    if (holdsBytes()) {
        std::memcpy(static_cast<char*>(data_) + length_, bytes, count);
    } else {
        widenAscii(bytes, count, static_cast<char16_t*>(data_) + length_);
    }
    length_ += count;
}

// A loop for units: a repeated character is padding, and short.
void TextBuilder::appendRepeated(char character, std::size_t count) {
    makeRoom(count);
    if (holdsBytes()) {
        std::memset(static_cast<char*>(data_) + length_, character, count);
    } else {
        char16_t* const units = static_cast<char16_t*>(data_) + length_;
        for (std::size_t i = 0; i < count; ++i) {
            units[i] = static_cast<unsigned char>(character);
        }
    }
    length_ += count;
}

// The first unit that is not ASCII turns all of the text into units, once.
void TextBuilder::appendUnits(const char16_t* units, std::size_t count) {
    if (holdsBytes()) {
        if (asciiPrefixLength(units, count) == count) {
            makeRoom(count);
            narrowAscii(units, count, static_cast<char*>(data_) + length_);
            length_ += count;
            return;
        }
        if (form_ == Form::utf8) {
            return appendUnitsAsUtf8(units, count);
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

/// The two units of a pair are appended together, so that a builder for UTF-8 sees a whole character.
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
    if (holdsBytes() && count <= maxShortText && count <= capacityBytes_ - length_ &&
        copyIfAscii(bytes, count, static_cast<char*>(data_) + length_)) [[likely]] {
        length_ += count;
    } else {
        appendLongUtf8(bytes, count);
    }
}

/// Copies the part that needs no conversion, which is usually all of it, and converts the rest.
void TextBuilder::appendLongUtf8(const char* bytes, std::size_t count) {
    const std::size_t plain =
        form_ == Form::utf8 ? wellFormedUtf8Prefix(bytes, count) : asciiPrefixLength(bytes, count);
    appendAscii(bytes, plain);
    if (plain == count) {
        return;
    }
    bytes += plain;
    count -= plain;
    // In UTF-8 only what is ill-formed is left; the other forms share no more than ASCII with the bytes.
    if (form_ == Form::utf8) {
        return appendIllFormed(bytes, count);
    }
    const std::size_t units = utf16Length(bytes, count, IllFormed::replace);
    if (form_ == Form::ascii) {
        widen(units);
    }
    makeRoom(units);
    utf8ToUtf16(bytes, count, static_cast<char16_t*>(data_) + length_, IllFormed::replace);
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

NSString TextBuilder::string() {
    NSString result;
    const std::size_t held = isAscii() ? length_ : length_ * sizeof(char16_t);
    // The memory becomes the string if at most about a third of it is unused; otherwise a copy is smaller.
    const bool fits = allocated_ != nullptr && capacityBytes_ - held <= held / 2 + 64;
    if (isAscii() && !fits) {
        result = makeAsciiString(asciiData(), length_);
    } else if (!isAscii() && (!fits || asciiPrefixLength(unitData(), length_) == length_)) {
        // Units may have become ASCII again by truncation: a string of them must be narrow.
        result = makeString(unitData(), length_);
    } else {
        auto* const body = static_cast<StringBody*>(allocated_);
        body->references = 1;
        body->setForm(length_, isAscii(), false);
        result = Access::adoptString(body);
        allocated_ = nullptr;
    }
    ::operator delete(allocated_);
    reset();
    return result;
}

} // namespace ZQFoundation::detail
