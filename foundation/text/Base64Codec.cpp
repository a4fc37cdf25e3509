// SPDX-License-Identifier: MIT
// Base64 in plain C++, and the choice of the best form for the processor.
// The plain codec also takes over where the others stop, so its table and loops decide about special cases.
#include "foundation/text/Base64Codec.h"

#include <algorithm>
#include <atomic>
#include <utility>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace ZQFoundation::detail::base64 {

namespace {

/// Three bytes as four characters.
inline void encodeGroup(const std::uint8_t* bytes, char* text) noexcept {
    text[0] = alphabet[bytes[0] >> 2U];
    text[1] = alphabet[(bytes[0] & 3U) << 4U | bytes[1] >> 4U];
    text[2] = alphabet[(bytes[1] & 15U) << 2U | bytes[2] >> 6U];
    text[3] = alphabet[bytes[2] & 63U];
}

void encodePlainGroups(Encoding& state, const std::uint8_t* limit) noexcept {
    while (limit - state.input >= 3) {
        encodeGroup(state.input, state.output);
        state.input += 3;
        state.output += 4;
    }
}

/// The one or two bytes that no group of three takes.
/// Missing bytes count as 0, and "=" fills the group.
char* encodeRest(const std::uint8_t* bytes, std::size_t count, char* text) noexcept {
    if (count == 0) {
        return text;
    }
    const std::uint8_t group[3] = {bytes[0], count == 2 ? bytes[1] : std::uint8_t{0}, 0};
    encodeGroup(group, text);
    text[3] = '=';
    if (count == 1) {
        text[2] = '=';
    }
    return text + 4;
}

/// Four values as three bytes.
inline void decodeGroup(const std::uint8_t* values, std::uint8_t* bytes) noexcept {
    bytes[0] = static_cast<std::uint8_t>(values[0] << 2U | values[1] >> 4U);
    bytes[1] = static_cast<std::uint8_t>(values[1] << 4U | values[2] >> 2U);
    bytes[2] = static_cast<std::uint8_t>(values[2] << 6U | values[3]);
}

/// Groups without a foreign byte in them.
/// A foreign byte in a group ends the loop before that group, and a pass takes over.
void decodePlainGroups(Decoding& state) noexcept {
    while (state.inputEnd - state.input >= 4) {
        std::uint8_t values[4];
        for (int i = 0; i < 4; ++i) {
            values[i] = valueOfByte[state.input[i]];
        }
        // Bit 6 is set in `foreign` and in no value.
        if (((values[0] | values[1] | values[2] | values[3]) & 64U) != 0) {
            return;
        }
        decodeGroup(values, state.output);
        state.input += 4;
        state.output += 3;
    }
}

/// One pass: collects up to four values, over foreign bytes, and writes what they spell. The count collected.
/// The slow way, which copes with anything: it is taken for one group, and then the fast loops go on.
int decodePass(Decoding& state) noexcept {
    std::uint8_t values[4] = {};
    int count = std::exchange(state.pendingCount, 0);
    for (int i = 0; i < count; ++i) {
        values[i] = state.pending[i];
    }
    while (count < 4 && state.input != state.inputEnd) {
        const std::uint8_t value = valueOfByte[*state.input++];
        if (value != foreign) {
            values[count++] = value;
        }
    }
    std::uint8_t bytes[3];
    decodeGroup(values, bytes);
    // A group of n values gives n - 1 bytes, also an incomplete one at the end.
    for (int i = 0; i + 1 < count; ++i) {
        *state.output++ = bytes[i];
    }
    return count;
}

// Without vectors there is no gain in treating whole lines separately.
void encodeNoLines(Encoding&) noexcept {}

constexpr Codec plainCodec{"plain", encodePlainGroups, encodeNoLines, decodePlainGroups};

#if defined(__x86_64__)

/// What the operating system saves of the vector registers: bits of the register XCR0.
/// The processor may have registers that the system does not save when it switches threads; using those
/// would corrupt data.
unsigned savedRegisters() noexcept {
    unsigned low = 0;
    unsigned high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

// The compiler's own question for processor features would bring code that runs when the library is loaded.
struct Features {
    bool avx2 = false;
    bool avx512 = false; ///< with permutations of bytes
};

Features processorFeatures() noexcept {
    // Positions of bits as the processor's manual gives them: OSXSAVE; SSE and AVX state; with those of
    // AVX-512.
    constexpr unsigned osSavesVectors = 1U << 27U;
    constexpr unsigned halfRegisters = 0x06;
    constexpr unsigned fullRegisters = 0xE6;
    constexpr unsigned avx2 = 1U << 5U;
    constexpr unsigned avx512Foundation = 1U << 16U;
    constexpr unsigned avx512Bytes = 1U << 30U;
    constexpr unsigned avx512Permutations = 1U << 1U | 1U << 6U; // of bytes, and squeezing

    Features found;
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & osSavesVectors) == 0) {
        return found;
    }
    // Only now: the instruction is itself invalid where the previous bit is not set.
    const unsigned saved = savedRegisters();
    if (__get_cpuid_count(7, 0, &a, &b, &c, &d) == 0) {
        return found;
    }
    found.avx2 = (saved & halfRegisters) == halfRegisters && (b & avx2) != 0;
    found.avx512 = found.avx2 && (saved & fullRegisters) == fullRegisters && (b & avx512Foundation) != 0 &&
                   (b & avx512Bytes) != 0 && (c & avx512Permutations) == avx512Permutations;
    return found;
}

/// The plain codec, then better and better ones, then null.
using Codecs = std::array<const Codec*, 4>;

Codecs findCodecs() noexcept {
    const Features features = processorFeatures();
    Codecs codecs{&plainCodec};
    if (features.avx2) {
        codecs[1] = &avx2Codec;
    }
    if (features.avx512) {
        codecs[2] = &avx512Codec;
    }
    return codecs;
}

#elif defined(__aarch64__)

using Codecs = std::array<const Codec*, 3>;

Codecs findCodecs() noexcept { return {&plainCodec, &neonCodec}; }

#else

using Codecs = std::array<const Codec*, 2>;

Codecs findCodecs() noexcept { return {&plainCodec}; }

#endif

/// Relaxed, because the codecs themselves are constants.
constinit std::atomic<const Codec*> chosen{nullptr};

} // namespace

const Codec* const* availableCodecs() noexcept {
    static const Codecs codecs = findCodecs();
    return codecs.data();
}

const Codec& codec() noexcept {
    // Threads that meet here at first find the same answer each.
    const Codec* known = chosen.load(std::memory_order_relaxed);
    if (known == nullptr) {
        const Codecs codecs = findCodecs();
        known =
            *std::find_if(codecs.rbegin(), codecs.rend(), [](const Codec* one) { return one != nullptr; });
        chosen.store(known, std::memory_order_relaxed);
    }
    return *known;
}

// Vector loops first. Without line breaks, one call takes nearly everything; with them, whole lines first,
// and then the last line.
char* encode(const Codec& codec, const std::uint8_t* input, std::size_t count, bool separateLines,
             char* output) noexcept {
    Encoding state{input, input + count, output};
    separateLines = separateLines && count > bytesOfLine;
    if (separateLines) {
        codec.encodeLines(state);
    }
    for (;;) {
        const auto left = static_cast<std::size_t>(state.inputEnd - state.input);
        // The last line has no break after it.
        const bool isLast = !separateLines || left <= bytesOfLine;
        const std::uint8_t* const limit = state.input + (isLast ? left : bytesOfLine);
        codec.encodeGroups(state, limit);
        encodePlainGroups(state, limit);
        if (isLast) {
            break;
        }
        *state.output++ = '\r';
        *state.output++ = '\n';
    }
    return encodeRest(state.input, static_cast<std::size_t>(state.inputEnd - state.input), state.output);
}

std::uint64_t decode(const Codec& codec, const std::uint8_t* input, std::size_t count,
                     std::uint8_t* output) noexcept {
    Decoding state{input, input + count, output, output + (count + 3) / 4 * 3};
    std::uint64_t lost = 0;
    // Fast and slow alternate: a fast loop ends at a broken group or near the end, where one pass goes on.
    while (state.input != state.inputEnd) {
        codec.decodeGroups(state);
        if (state.pendingCount == 0) {
            decodePlainGroups(state);
        }
        // A pass that finds nothing takes one byte off the length.
        // That is how the length has always been reported for such input, and callers may rely on it.
        if (state.input != state.inputEnd && decodePass(state) == 0) {
            lost = 1;
        }
    }
    return static_cast<std::uint64_t>(state.output - output) - lost;
}

} // namespace ZQFoundation::detail::base64
