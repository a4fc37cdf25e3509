// SPDX-License-Identifier: MIT
// The codecs of every vector instruction set that the processor has, and the operations above them, against
// loops that take one bit, or one character, after the other.
//
// Input: a byte of switches (1 arbitrary text to decode, 2 separate lines, 4 the operations above the
// codecs), then the bytes. Texts that are to be decoded are long or short, whole or full of foreign
// characters.
#include <cstdlib>
#include <memory>
#include <string>

#include "encoding/Base64.h"
#include "encoding/Base64Codec.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;
namespace base64 = ZQFoundation::detail::base64;

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string slowEncoding(std::string_view bytes, bool separateLines) {
    std::string text;
    unsigned value = 0;
    unsigned bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (separateLines && i != 0 && i % 48 == 0) {
            text += "\r\n";
        }
        for (int bit = 7; bit >= 0; --bit) {
            value = value << 1 | (static_cast<unsigned char>(bytes[i]) >> bit & 1U);
            if (++bits == 6) {
                text += alphabet[value];
                value = 0;
                bits = 0;
            }
        }
    }
    if (bits != 0) {
        text += alphabet[value << (6 - bits)];
        text.append(bits == 2 ? 2 : 1, '=');
    }
    return text;
}

struct SlowDecoding {
    std::string bytes;          ///< all that groups spell
    std::uint64_t reported = 0; ///< the length; a pass without a character takes one off
};

SlowDecoding slowDecoding(std::string_view text) {
    SlowDecoding decoding;
    for (std::size_t i = 0; i < text.size();) {
        std::string values;
        while (i < text.size() && values.size() < 4) {
            const std::size_t value = text[i] == '\0' ? alphabet.npos : alphabet.find(text[i]);
            if (value != alphabet.npos) {
                values += static_cast<char>(value);
            }
            ++i;
        }
        unsigned long bits = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            bits = bits * 64 + (k < values.size() ? static_cast<unsigned char>(values[k]) : 0UL);
        }
        for (std::size_t k = 0; k + 1 < values.size(); ++k) {
            decoding.bytes += static_cast<char>(bits >> (16 - 8 * k) & 0xFFU);
        }
        decoding.reported += values.size() - 1;
    }
    return decoding;
}

/// Buffers have exactly the room that the codecs are promised, so that a byte beyond is noticed.
std::string decodedBy(const base64::Codec& codec, std::string_view text, std::uint64_t& reported) {
    const std::size_t capacity = (text.size() + 3) / 4 * 3;
    const std::unique_ptr<std::uint8_t[]> room(new std::uint8_t[capacity]);
    const std::unique_ptr<std::uint8_t[]> input(new std::uint8_t[text.size()]);
    std::copy(text.begin(), text.end(), input.get());
    reported = base64::decode(codec, input.get(), text.size(), room.get());
    return std::string(reinterpret_cast<char*>(room.get()), reported <= capacity ? reported : 0);
}

std::string encodedBy(const base64::Codec& codec, std::string_view bytes, bool separateLines,
                      std::size_t expectedSize) {
    const std::unique_ptr<char[]> room(new char[expectedSize]);
    const std::unique_ptr<std::uint8_t[]> input(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), input.get());
    const char* const end = base64::encode(codec, input.get(), bytes.size(), separateLines, room.get());
    return std::string(room.get(), static_cast<std::size_t>(end - room.get()));
}

void checkDecoding(std::string_view text) {
    const SlowDecoding expected = slowDecoding(text);
    const std::string kept =
        expected.bytes.substr(0, expected.reported > text.size() ? 0 : expected.reported);
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        std::uint64_t reported = 0;
        const std::string found = decodedBy(**codec, text, reported);
        require(reported == expected.reported, (*codec)->name);
        requireEqual(found, kept, (*codec)->name);
    }
}

void checkEncoding(std::string_view bytes, bool separateLines) {
    const std::string expected = slowEncoding(bytes, separateLines);
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        requireEqual(encodedBy(**codec, bytes, separateLines, expected.size()), expected, (*codec)->name);
        std::uint64_t reported = 0;
        requireEqual(decodedBy(**codec, expected, reported), bytes, "what was encoded does not come back");
        require(reported == bytes.size(), "length of what was encoded");
    }
}

void checkFunctions(std::string_view bytes, bool separateLines) {
    std::uint64_t length = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        NewBase64Encode(bytes.data(), bytes.size(), separateLines ? 1 : 0, &length), std::free);
    requireEqual(text.get(), slowEncoding(bytes, separateLines), "NewBase64Encode");
    require(length == std::string_view(text.get()).size(), "length that NewBase64Encode reports");

    const SlowDecoding expected = slowDecoding(bytes);
    const std::unique_ptr<void, void (*)(void*)> decoded(
        NewBase64Decode(bytes.data(), static_cast<std::int64_t>(bytes.size()), &length), std::free);
    require(length == expected.reported, "length that NewBase64Decode reports");
    if (length <= bytes.size()) {
        requireEqual({static_cast<char*>(decoded.get()), length}, expected.bytes.substr(0, length),
                     "NewBase64Decode");
    }

    const NSData data = NSData::dataWithBytes_length(bytes.data(), bytes.size());
    const NSString string =
        separateLines ? data.base64EncodedStringInSeparateLines() : data.base64EncodedStringInSingleLine();
    requireEqual(string.utf8(), slowEncoding(bytes, separateLines), "text of data");
    require(NSData::dataFromBase64String(string).isEqualToData(data), "data from the text of data");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned switches = input.byte();
    if ((switches & 1U) != 0) {
        checkDecoding(input.rest());
    } else if ((switches & 4U) != 0) {
        checkFunctions(input.rest(), (switches & 2U) != 0);
    } else {
        checkEncoding(input.rest(), (switches & 2U) != 0);
    }
    return 0;
}
