// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_TEXTBUILDER_H
#define ZQFOUNDATION_OBJECTS_TEXTBUILDER_H

#include <cstring>
#include <new>

#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// Builds a text piece by piece: short ones in the builder itself (so on the stack), long ones in the body
/// that becomes the string. The text is kept as bytes while all of it is ASCII, as units from the first other
/// unit on.
///
/// The other kind of builder makes the bytes of a log line: UTF-8, in memory that the caller lends and, when
/// that is full, in memory that a signal handler may allocate. Its only string is `signalSafeString`.
class TextBuilder {
public:
    TextBuilder() noexcept = default;
    TextBuilder(char* lent, std::size_t capacity) noexcept
        : data_(lent), capacityBytes_(capacity), form_(Form::utf8) {}
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;
    ~TextBuilder() {
        if (allocated_ != nullptr) {
            release(allocated_);
        }
    }

    /// In units; in bytes for UTF-8.
    std::size_t length() const noexcept { return length_; }
    bool isAscii() const noexcept { return form_ == Form::ascii; }
    /// Valid only while `isAscii()`, and until the next append.
    const char* asciiData() const noexcept { return static_cast<const char*>(data_); }
    /// Valid only for units, and until the next append.
    const char16_t* unitData() const noexcept { return static_cast<const char16_t*>(data_); }

    void appendAscii(const char* bytes, std::size_t count) {
        if (holdsBytes() && count <= capacityBytes_ - length_) [[likely]] {
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

    /// Appends any units, including unpaired surrogates.
    void appendUnits(const char16_t* units, std::size_t count);
    void appendUnit(char16_t unit);
    void appendCodePoint(char32_t codePoint);

    /// Appends UTF-8; ill-formed bytes become U+FFFD.
    void appendUtf8(const char* bytes, std::size_t count);

    /// Appends any text; nil appends nothing.
    void append(StringView text);

    /// As `%@` does: nil appends "(null)".
    void appendObjectText(StringView text) { append(text ? text : StringView("(null)")); }

    /// Room for `count` ASCII bytes to be written in place, or null once the text is no longer ASCII: then
    /// use `appendAscii`. `commitAscii` appends what was written.
    char* reserveAscii(std::size_t count) {
        if (holdsBytes() && count > capacityBytes_ - length_) [[unlikely]] {
            makeRoom(count);
        }
        return holdsBytes() ? static_cast<char*>(data_) + length_ : nullptr;
    }
    void commitAscii(std::size_t count) noexcept { length_ += count; }

    /// Removes everything from unit `length` on.
    void truncate(std::size_t length) noexcept { length_ = length; }

    /// The text built so far; the builder is empty afterwards. A long text is not copied. Not for UTF-8.
    NSString string();

    // Only for UTF-8.

    /// Valid until the next append.
    char* bytes() noexcept { return static_cast<char*>(data_); }

    /// Unpaired surrogates, which two appends may bring together, become U+FFFD.
    void replaceUnpairedSurrogates() noexcept;

    /// The text from that byte on, with its unpaired surrogates, as a string that a signal handler may make
    /// and release.
    NSString signalSafeString(std::size_t start = 0) const;

    static constexpr std::size_t inlineBytes = 480;

private:
    enum class Form : unsigned char { ascii, units, utf8 };

    bool holdsBytes() const noexcept { return form_ != Form::units; }
    void appendAsciiSlowly(const char* bytes, std::size_t count);
    void appendLongUtf8(const char* bytes, std::size_t count);
    void appendUnitsAsUtf8(const char16_t* units, std::size_t count);
    void appendWithSurrogates(const char16_t* units, std::size_t count);
    void appendSurrogate(char16_t surrogate);
    void appendIllFormed(const char* bytes, std::size_t count);
    void growTo(std::size_t bytes);
    void makeRoom(std::size_t moreUnits);
    void widen(std::size_t moreUnits);
    void release(void* memory) const noexcept;
    void reset() noexcept;

    void* data_ = inline_;
    std::size_t length_ = 0;
    std::size_t capacityBytes_ = inlineBytes;
    void* allocated_ =
        nullptr; // null while the text is inline, or in lent memory; else a body, or plain bytes
    Form form_ = Form::ascii;
    bool hasUnpaired_ = false; // possibly; in UTF-8 each is three bytes of a special form
    alignas(char16_t) char inline_[inlineBytes];
};

} // namespace ZQFoundation::detail

#endif
