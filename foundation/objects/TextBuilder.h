// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_TEXTBUILDER_H
#define ZQFOUNDATION_OBJECTS_TEXTBUILDER_H

#include <cstring>
#include <new>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// Builds a text piece by piece: short ones in the builder itself (so on the stack), long ones in the body
/// that becomes the string. Bytes as long as all is ASCII, units from the first other unit on.
class TextBuilder {
public:
    TextBuilder() noexcept = default;
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;
    ~TextBuilder() {
        if (body_ != nullptr) {
            ::operator delete(body_);
        }
    }

    /// Units.
    std::size_t length() const noexcept { return length_; }
    bool isAscii() const noexcept { return ascii_; }
    /// Only while `isAscii()`, and until the next append.
    const char* asciiData() const noexcept { return static_cast<const char*>(data_); }
    /// Only while not `isAscii()`, and until the next append.
    const char16_t* unitData() const noexcept { return static_cast<const char16_t*>(data_); }

    void appendAscii(const char* bytes, std::size_t count) {
        if (ascii_ && count <= capacityBytes_ - length_) [[likely]] {
            std::memcpy(static_cast<char*>(data_) + length_, bytes, count);
            length_ += count;
        } else {
            appendAsciiSlowly(bytes, count);
        }
    }

    template <std::size_t size>
    void appendLiteral(const char (&literal)[size]) {
        appendAscii(literal, size - 1);
    }

    void appendAscii(char character) { appendAscii(&character, 1); }
    void appendRepeated(char character, std::size_t count);

    /// Any units, unpaired surrogates among them.
    void appendUnits(const char16_t* units, std::size_t count);
    void appendUnit(char16_t unit);
    void appendCodePoint(char32_t codePoint);

    /// Ill-formed bytes as U+FFFD.
    void appendUtf8(const char* bytes, std::size_t count);

    /// Any text; nil appends nothing.
    void append(StringView text);

    /// As `%@` does: nil appends "(null)".
    void appendObjectText(StringView text) { append(text ? text : StringView("(null)")); }

    /// Room for `count` ASCII bytes to be written in place, or null once the text is no longer ASCII: then
    /// use `appendAscii`. `commitAscii` takes what was written.
    char* reserveAscii(std::size_t count);
    void commitAscii(std::size_t count) noexcept { length_ += count; }

    /// Drops everything from unit `length` on.
    void truncate(std::size_t length) noexcept { length_ = length; }

    /// The text built so far; the builder is empty afterwards. A long text is not copied.
    NSString string();

    static constexpr std::size_t inlineBytes = 480;

private:
    void appendAsciiSlowly(const char* bytes, std::size_t count);
    void growTo(std::size_t bytes);
    void makeRoom(std::size_t moreUnits);
    void widen(std::size_t moreUnits);
    void reset() noexcept;

    void* data_ = inline_;
    std::size_t length_ = 0;
    std::size_t capacityBytes_ = inlineBytes;
    StringBody* body_ = nullptr; // null while the text stands inline
    bool ascii_ = true;
    alignas(char16_t) char inline_[inlineBytes];
};

} // namespace ZQFoundation::detail

#endif
