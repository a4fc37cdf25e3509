// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_UTF_H
#define ZQFOUNDATION_TEXT_UTF_H

#include <cstddef>

/// Conversions between UTF-8 bytes and UTF-16 code units, on raw pointers and lengths.
///
/// Every conversion comes as a pair: first the exact length of the result, then the writing into a buffer of
/// that length. Nothing allocates, nothing fails; a count of 0 goes with any pointer, the null pointer too.
/// All functions may be called from any thread. Ill-formed means what the Unicode standard calls so: overlong
/// forms, encoded surrogates, values above U+10FFFF, stray or missing continuation bytes.
namespace ZQFoundation::detail {

/// How text without an exact counterpart in the other form is treated.
enum class IllFormed {
    /// U+FFFD (bytes EF BF BD): one for each maximal subpart of an ill-formed byte sequence, that is for the
    /// longest piece that begins a well-formed sequence, or for one byte; one for each unpaired surrogate.
    replace,
    /// File names, which are bytes: each bad byte b becomes the unpaired unit U+DC00 + b (always within
    /// U+DC80 to U+DCFF) and such a unit becomes that byte again. Any bytes survive the way to units and
    /// back. The other way is exact for the units that hasFileNameForm() accepts; of others, unpaired
    /// surrogates without a byte are replaced.
    fileName
};

/// Number of leading bytes, or units, below 0x80.
std::size_t asciiPrefixLength(const char* bytes, std::size_t count) noexcept;
std::size_t asciiPrefixLength(const char16_t* units, std::size_t count) noexcept;

/// Number of units that utf8ToUtf16() writes for the same input; never more than `count`.
std::size_t utf16Length(const char* utf8, std::size_t count, IllFormed policy) noexcept;

/// The same for well-formed UTF-8, in one pass with the check; false for any other.
bool getUtf16Length(const char* utf8, std::size_t count, std::size_t& length) noexcept;

/// Writes the units of `utf8` to `out`, which does not overlap the input, and returns the end of what was
/// written.
char16_t* utf8ToUtf16(const char* utf8, std::size_t count, char16_t* out, IllFormed policy) noexcept;

/// Whether all bytes are well-formed UTF-8; U+0000 is a character like others, and so is a byte-order mark.
bool isWellFormedUtf8(const char* utf8, std::size_t count) noexcept;

/// Offset of the first ill-formed sequence, or `count`.
std::size_t wellFormedUtf8Prefix(const char* utf8, std::size_t count) noexcept;

/// Number of bytes that utf16ToUtf8() writes for the same input; never more than three times `count`, which
/// must be at most a third of the largest size.
std::size_t utf8Length(const char16_t* units, std::size_t count, IllFormed policy) noexcept;

/// Writes the bytes of `units` to `out`, which does not overlap the input, without a NUL at the end, and
/// returns the end of what was written.
char* utf16ToUtf8(const char16_t* units, std::size_t count, char* out, IllFormed policy) noexcept;

/// Whether every surrogate has its partner.
bool isWellFormedUtf16(const char16_t* units, std::size_t count) noexcept;

/// Whether `units` can be handed to the system as a path and read back as the same units. False for U+0000,
/// for unpaired surrogates other than U+DC80 to U+DCFF, and for runs of those whose bytes together hold a
/// well-formed sequence: DCC3 DCA9 would be the bytes C3 A9, which name the file U+00E9, a different text.
bool hasFileNameForm(const char16_t* units, std::size_t count) noexcept;

/// Copies ASCII bytes to units; the ranges do not overlap. Bytes from 0x80 up become the units of the same
/// number.
void widenAscii(const char* ascii, std::size_t count, char16_t* out) noexcept;

/// Copies units that the caller knows to be ASCII to bytes; the ranges do not overlap.
void narrowAscii(const char16_t* units, std::size_t count, char* out) noexcept;

} // namespace ZQFoundation::detail

#endif
