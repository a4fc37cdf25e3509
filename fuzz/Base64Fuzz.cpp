// SPDX-License-Identifier: MIT
// Checks the codecs of every vector instruction set that the processor has, and the operations above them,
// against the model.
//
// Input: a byte of switches (1 arbitrary text to decode, 2 separate lines, 4 the operations above the
// codecs), then the bytes. Texts to decode are long or short, whole or full of foreign
// characters.
#include <cstdlib>
#include <memory>
#include <string>

#include "encoding/Base64.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/text/Base64Codec.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/Texts.h"
#include "tests/models/Base64.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;
namespace base64 = ZQFoundation::detail::base64;

namespace {

/// Buffers have exactly the promised room, so that an access beyond it is noticed.
std::string decodedBy(const base64::Codec& codec, std::string_view text, std::uint64_t& reported) {
    const std::size_t capacity = (text.size() + 3) / 4 * 3;
    const std::unique_ptr<std::uint8_t[]> room(new std::uint8_t[capacity]);
    const kit::Exact<char> input(text);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(input.data());
    reported = base64::decode(codec, bytes, input.size(), room.get());
    return std::string(reinterpret_cast<char*>(room.get()), reported <= capacity ? reported : 0);
}

std::string encodedBy(const base64::Codec& codec, std::string_view bytes, bool separateLines,
                      std::size_t expectedSize) {
    const std::unique_ptr<char[]> room(new char[expectedSize]);
    const kit::Exact<char> copy(bytes);
    const auto* const input = reinterpret_cast<const std::uint8_t*>(copy.data());
    const char* const end = base64::encode(codec, input, copy.size(), separateLines, room.get());
    return std::string(room.get(), static_cast<std::size_t>(end - room.get()));
}

void checkDecoding(std::string_view text) {
    const models::Base64Decoding expected = models::base64Decoded(text);
    for (const base64::Codec* const* codec = base64::availableCodecs(); *codec != nullptr; ++codec) {
        std::uint64_t reported = 0;
        const std::string found = decodedBy(**codec, text, reported);
        require(reported == expected.reported, (*codec)->name);
        requireEqual(found, expected.kept(), (*codec)->name);
    }
}

void checkEncoding(std::string_view bytes, bool separateLines) {
    const std::string expected = models::base64Encoded(bytes, separateLines);
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
    requireEqual(text.get(), models::base64Encoded(bytes, separateLines), "NewBase64Encode");
    require(length == std::string_view(text.get()).size(), "length that NewBase64Encode reports");

    const models::Base64Decoding expected = models::base64Decoded(bytes);
    const std::unique_ptr<void, void (*)(void*)> decoded(
        NewBase64Decode(bytes.data(), static_cast<std::int64_t>(bytes.size()), &length), std::free);
    require(length == expected.reported, "length that NewBase64Decode reports");
    if (length <= bytes.size()) {
        requireEqual({static_cast<char*>(decoded.get()), length}, expected.kept(), "NewBase64Decode");
    }

    const NSData data = NSData::dataWithBytes_length(bytes.data(), bytes.size());
    const NSString string =
        separateLines ? data.base64EncodedStringInSeparateLines() : data.base64EncodedStringInSingleLine();
    requireEqual(string.utf8(), models::base64Encoded(bytes, separateLines), "text of data");
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
