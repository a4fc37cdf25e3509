// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_TEXT_BASE64CODEC_H
#define ZQFOUNDATION_TEXT_BASE64CODEC_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

/// The two loops of Base64, once in plain C++ and once for each vector instruction set. The vector forms
/// process the long stretches and leave the rest to the plain one, so all of them produce the same bytes.
namespace ZQFoundation::detail::base64 {

inline constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The decoding table's value for every byte outside the alphabet.
inline constexpr std::uint8_t foreign = 65;

inline constexpr std::array<std::uint8_t, 256> valueOfByte = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(foreign);
    for (std::uint8_t value = 0; value < 64; ++value) {
        values[static_cast<unsigned char>(alphabet[value])] = value;
    }
    return values;
}();

inline constexpr std::size_t bytesOfLine = 48;
inline constexpr std::size_t charactersOfLine = 64;

/// The state of a loop: what it has not read yet and where it writes next.
struct Encoding {
    const std::uint8_t* input;
    const std::uint8_t* inputEnd;
    char* output;
};

struct Decoding {
    const std::uint8_t* input;
    const std::uint8_t* inputEnd;
    std::uint8_t* output;
    std::uint8_t* outputEnd;      ///< of the whole buffer, which has room for what the input can give
    std::uint8_t pending[4] = {}; ///< values of a group that is not complete
    int pendingCount = 0;
};

/// One way to do the long stretches.
struct Codec {
    const char* name;

    /// Encodes whole groups of three bytes, at most up to `limit`, as long as there is enough input to read
    /// in vectors; all of it for the plain codec, but for the last one or two bytes.
    void (*encodeGroups)(Encoding& state, const std::uint8_t* limit) noexcept;

    /// Encodes whole lines, each with its break, as long as more input follows than a vector loop reads; none
    /// for the plain codec.
    void (*encodeLines)(Encoding& state) noexcept;

    /// Decodes whole groups of four characters, foreign bytes between groups ignored, as long as there is
    /// enough input and room to work in vectors. Stops anywhere between two groups, never after foreign bytes
    /// that follow a last whole group; or at the end of the input, all of it decoded. May leave up to three
    /// values of a group begun in `pending`.
    void (*decodeGroups)(Decoding& state) noexcept;
};

/// The best one for this processor.
const Codec& codec() noexcept;

/// All that this processor can run, the plain one first; null-terminated. For tests.
const Codec* const* availableCodecs() noexcept;

/// As `NewBase64Encode`, into a buffer with enough room; returns the end of what was written, without a zero.
char* encode(const Codec& codec, const std::uint8_t* input, std::size_t count, bool separateLines,
             char* output) noexcept;

/// As `NewBase64Decode`, into a buffer of (count + 3) / 4 * 3 bytes; returns the length reported.
std::uint64_t decode(const Codec& codec, const std::uint8_t* input, std::size_t count,
                     std::uint8_t* output) noexcept;

/// How far a vector loop goes on from a block: over groups whose bytes it has written, or over leading
/// foreign bytes. Bytes written after the groups are meaningless and overwritten later.
struct Step {
    int characters;
    int groups;
};

/// By the foreign bytes of a block, a bit each, the first one lowest. No step at all where a group is broken
/// in itself, and for a block of foreign bytes alone, which may reach up to the end.
///
/// The common cases come first and answer constants: the processor then guesses where the next block starts
/// and need not wait for the look at this one.
template <int size>
inline Step stepOver(std::uint64_t foreignBytes) noexcept {
    if (foreignBytes == 0) [[likely]] {
        return {size, size / 4};
    }
    if ((foreignBytes & 7U) == 3U) { // CR LF
        return {2, 0};
    }
    if ((foreignBytes & 3U) == 1U) { // LF
        return {1, 0};
    }
    if (const int good = std::countr_zero(foreignBytes) & ~3; good != 0) {
        return {good, good / 4};
    }
    const int skipped = std::countr_one(foreignBytes);
    return {skipped < size ? skipped : 0, 0};
}

// The vector forms; present where the compiler aims at such a processor.
extern const Codec avx2Codec;
extern const Codec avx512Codec;
extern const Codec neonCodec;

} // namespace ZQFoundation::detail::base64

#endif
