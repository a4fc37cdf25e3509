// SPDX-License-Identifier: MIT
// Base64 by NEON.
#include "foundation/text/Base64Codec.h"

#if defined(__aarch64__)

#include <arm_neon.h>

namespace ZQFoundation::detail::base64 {

namespace {

/// 64 bytes as the four registers that a lookup takes.
uint8x16x4_t loaded(const std::uint8_t* table) noexcept {
    return {{vld1q_u8(table), vld1q_u8(table + 16), vld1q_u8(table + 32), vld1q_u8(table + 48)}};
}

void encodeGroups(Encoding& state, const std::uint8_t* limit) noexcept {
    const uint8x16x4_t characters = loaded(reinterpret_cast<const std::uint8_t*>(alphabet));
    const uint8x16_t sixBits = vdupq_n_u8(63);
    while (limit - state.input >= 48) {
        // The load deals the three bytes of each group out to three registers, the store collects the four.
        const uint8x16x3_t bytes = vld3q_u8(state.input);
        const uint8x16_t first = vshrq_n_u8(bytes.val[0], 2);
        const uint8x16_t second = vandq_u8(vsliq_n_u8(vshrq_n_u8(bytes.val[1], 4), bytes.val[0], 4), sixBits);
        const uint8x16_t third = vandq_u8(vsliq_n_u8(vshrq_n_u8(bytes.val[2], 6), bytes.val[1], 2), sixBits);
        const uint8x16_t fourth = vandq_u8(bytes.val[2], sixBits);
        const uint8x16x4_t text = {{vqtbl4q_u8(characters, first), vqtbl4q_u8(characters, second),
                                    vqtbl4q_u8(characters, third), vqtbl4q_u8(characters, fourth)}};
        vst4q_u8(reinterpret_cast<std::uint8_t*>(state.output), text);
        state.input += 48;
        state.output += 64;
    }
}

void encodeLines(Encoding& state) noexcept {
    while (state.inputEnd - state.input > 48) {
        encodeGroups(state, state.input + 48);
        *state.output++ = '\r';
        *state.output++ = '\n';
    }
}

/// The values of sixteen characters, each at least 64 where the character is foreign.
uint8x16_t valuesOf(uint8x16_t text, const uint8x16x4_t& lower, const uint8x16x4_t& upper) noexcept {
    // A lookup beyond its table gives 0, and the second one leaves what the first one gave.
    const uint8x16_t below = vqtbl4q_u8(lower, text);
    const uint8x16_t values = vqtbx4q_u8(below, upper, veorq_u8(text, vdupq_n_u8(64)));
    return vorrq_u8(values, vandq_u8(text, vdupq_n_u8(128)));
}

/// Skips leading foreign bytes of a block that has at least one other byte. False if the first byte is not
/// foreign.
bool skipForeignBytes(Decoding& state) noexcept {
    int skipped = 0;
    while (skipped < 63 && valueOfByte[state.input[skipped]] == foreign) {
        ++skipped;
    }
    state.input += skipped;
    return skipped != 0;
}

/// Takes 64 characters at a time, each group of four spread over four vectors, and writes 48 bytes. The plain
/// loop continues at the last ones, and at a foreign byte that is not at the start of the 64.
void decodeGroups(Decoding& state) noexcept {
    const uint8x16x4_t lower = loaded(valueOfByte.data());
    const uint8x16x4_t upper = loaded(valueOfByte.data() + 64);
    while (state.inputEnd - state.input >= 64 && state.outputEnd - state.output >= 48) {
        const uint8x16x4_t text = vld4q_u8(state.input);
        const uint8x16_t first = valuesOf(text.val[0], lower, upper);
        const uint8x16_t second = valuesOf(text.val[1], lower, upper);
        const uint8x16_t third = valuesOf(text.val[2], lower, upper);
        const uint8x16_t fourth = valuesOf(text.val[3], lower, upper);
        const uint8x16_t all = vorrq_u8(vorrq_u8(first, second), vorrq_u8(third, fourth));
        if (vmaxvq_u8(all) >= 64) {
            if (!skipForeignBytes(state)) {
                return;
            }
            continue;
        }
        const uint8x16x3_t bytes = {{vsliq_n_u8(vshrq_n_u8(second, 4), first, 2),
                                     vsliq_n_u8(vshrq_n_u8(third, 2), second, 4),
                                     vsliq_n_u8(fourth, third, 6)}};
        vst3q_u8(state.output, bytes);
        state.input += 64;
        state.output += 48;
    }
}

} // namespace

constexpr Codec neonCodec{"NEON", encodeGroups, encodeLines, decodeGroups};

} // namespace ZQFoundation::detail::base64

#endif
