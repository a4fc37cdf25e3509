// SPDX-License-Identifier: MIT
// Makes short strings in blocks of memory that they share.
#include "foundation/objects/ShortStrings.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "foundation/text/UnitBlocks.h"
#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t wordBytes = sizeof(std::size_t);

/// Longer texts get bodies of their own.
constexpr std::size_t maxSharedBytes = 96;

/// Of a block, in bytes; for longer strings as much as four of them take.
constexpr std::size_t usualCapacity = 240;
static_assert(sizeof(StringBlock) == wordBytes &&
              sizeof(StringBlock) + 4 * (sizeof(StringBody) + maxSharedBytes) < 64 * wordBytes);

constexpr std::size_t wholeWords(std::size_t bytes) noexcept {
    return (bytes + wordBytes - 1) / wordBytes * wordBytes;
}

/// Whether the units can be read as a whole block of them, which takes one instruction instead of a call.
template <class Unit>
bool fitsBlock(std::size_t count, std::size_t rest) noexcept {
    return count <= blockUnits<Unit> && rest >= blockUnits<Unit>;
}

/// A whole block is copied by one instruction; what it copies beyond the text is overwritten later or never
/// read.
template <class Unit>
void copyText(const Unit* text, std::size_t count, bool isWholeBlock, Unit* out) noexcept {
    if (isWholeBlock) {
        std::memcpy(out, text, blockBytes);
    } else {
        std::memcpy(out, text, count * sizeof(Unit));
    }
}

/// Of a block that is longer than the text, only the units of the text count.
bool isAsciiText(const char16_t* text, std::size_t count, std::size_t rest) noexcept {
    if (!fitsBlock<char16_t>(count, rest)) {
        return asciiPrefixLength(text, count) == count;
    }
    const std::uint32_t others = matchMask(loadBlock(text) > 0x7F);
    return (others & ((1U << count * sizeof(char16_t)) - 1)) == 0;
}

} // namespace

/// All strings of the newest block may be released before the next one is made: a dictionary releases a
/// repeated key at once. So the block stays until it is left. Nothing is atomic, because no other thread
/// knows the strings yet.
void ShortStrings::leaveBlock() noexcept {
    if (block_ != nullptr && --block_->live == 0) {
        ::operator delete(block_);
    }
    block_ = nullptr;
    used_ = capacity_ = 0;
}

/// A block no larger than the rest of the text is likely to need.
void ShortStrings::startBlock(std::size_t bytes, std::size_t restBytes, std::size_t expected) {
    const std::size_t most = std::max(usualCapacity, 4 * bytes);
    const bool isLong = restBytes > most || expected > most;
    const std::size_t needed = wholeWords(restBytes) + expected * wholeWords(sizeof(StringBody) + 1);
    const std::size_t capacity = isLong || needed > most ? most : std::max(bytes, needed);
    leaveBlock();
    block_ = static_cast<StringBlock*>(::operator new(sizeof(StringBlock) + capacity));
    block_->live = 1;
    used_ = sizeof(StringBlock);
    capacity_ = used_ + capacity;
}

inline StringBody* ShortStrings::place(std::size_t count, bool isAscii, std::size_t restBytes,
                                       std::size_t expected) {
    const std::size_t bytes = wholeWords(sizeof(StringBody) + count * (isAscii ? 1 : sizeof(char16_t)));
    if (bytes > capacity_ - used_) {
        startBlock(bytes, restBytes, expected);
    }
    auto* const body = reinterpret_cast<StringBody*>(reinterpret_cast<char*>(block_) + used_);
    body->references = 1;
    body->setForm(count, isAscii, false);
    body->placeInBlock = used_ / wordBytes & 63;
    used_ += bytes;
    ++block_->live;
    return body;
}

/// Whether a whole block can be written to the newest body; bodies to come overwrite the excess.
bool ShortStrings::hasRoomForBlock(const void* text) const noexcept {
    return reinterpret_cast<const char*>(block_) + capacity_ - static_cast<const char*>(text) >=
           static_cast<std::ptrdiff_t>(blockBytes);
}

NSString ShortStrings::make(const char* text, std::size_t count, std::size_t rest, std::size_t expected) {
    if (count > maxSharedBytes) {
        return makeAsciiString(text, count);
    }
    StringBody* const body = place(count, true, rest, expected);
    const bool isWhole = fitsBlock<char>(count, rest) && hasRoomForBlock(body->ascii());
    copyText(text, count, isWhole, body->ascii());
    return Access::adoptString(body);
}

NSString ShortStrings::make(const char16_t* text, std::size_t count, std::size_t rest, std::size_t expected) {
    const bool isAscii = count <= maxSharedBytes && isAsciiText(text, count, rest);
    if (!isAscii && count > maxSharedBytes / sizeof(char16_t)) {
        return makeString(text, count);
    }
    StringBody* const body = place(count, isAscii, rest * sizeof(char16_t), expected);
    const bool isWhole = fitsBlock<char16_t>(count, rest) && hasRoomForBlock(body->units());
    if (isAscii) {
        narrowAscii(text, isWhole ? blockUnits<char16_t> : count, body->ascii());
    } else {
        copyText(text, count, isWhole, body->units());
    }
    return Access::adoptString(body);
}

} // namespace ZQFoundation::detail
