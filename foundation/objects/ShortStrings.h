// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_SHORTSTRINGS_H
#define ZQFOUNDATION_OBJECTS_SHORTSTRINGS_H

#include <new>
#include <utility>

#include "foundation/objects/ArrayBodies.h"
#include "foundation/objects/StringBodies.h"

namespace ZQFoundation::detail {

/// Makes many strings of one text. The bodies of short ones share blocks of memory, which takes a fraction of
/// the time of an allocation for each. A block is freed with its last string. It is small, so that a string
/// that a host keeps does not keep much else.
class ShortStrings {
public:
    ShortStrings() noexcept = default;
    ShortStrings(const ShortStrings&) = delete;
    ShortStrings& operator=(const ShortStrings&) = delete;
    ~ShortStrings() { leaveBlock(); }

    /// The string of `count` units of the text, which has `rest` units from there on; bytes are ASCII. About
    /// `expected` strings are still to be made of the rest.
    NSString make(const char* text, std::size_t count, std::size_t rest, std::size_t expected);
    NSString make(const char16_t* text, std::size_t count, std::size_t rest, std::size_t expected);

private:
    void leaveBlock() noexcept;
    void startBlock(std::size_t bytes, std::size_t restBytes, std::size_t expected);
    StringBody* place(std::size_t count, bool isAscii, std::size_t restBytes, std::size_t expected);

    bool hasRoomForBlock(const void* text) const noexcept;

    StringBlock* block_ = nullptr; ///< counted as if it had one more string
    std::size_t used_ = 0;         ///< bytes of the block
    std::size_t capacity_ = 0;     ///< the same
};

/// Collects pieces of a text, of bytes that are ASCII or of units, as an array of strings.
template <class Unit>
class StringPieces {
public:
    /// The text must stay valid while pieces are added; `expected` is the likely number of pieces.
    StringPieces(const Unit* text, std::size_t length, std::size_t expected)
        : text_(text), length_(length), expected_(expected), body_(allocateArray(expected)) {}
    StringPieces(const StringPieces&) = delete;
    StringPieces& operator=(const StringPieces&) = delete;
    ~StringPieces() { freeArray(body_); }

    void add(std::size_t start, std::size_t end) {
        body_ = withRoom(body_);
        const std::size_t toCome = expected_ > body_->count ? expected_ - body_->count : 1;
        new (body_->elements() + body_->count)
            NSObject(strings_.make(text_ + start, end - start, length_ - start, toCome));
        ++body_->count;
    }

    NSArray array() { return arrayOf(std::exchange(body_, nullptr)); }

private:
    const Unit* text_;
    std::size_t length_;
    std::size_t expected_;
    ArrayBody* body_;
    ShortStrings strings_;
};

} // namespace ZQFoundation::detail

#endif
