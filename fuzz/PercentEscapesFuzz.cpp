// SPDX-License-Identifier: MIT
// Percent escapes of texts of any units, both ways, against the model.
//
// Input: a byte that chooses the encoder, then the characters that are not to be kept, up to a line feed,
// then the text (see InputReader).
#include <optional>
#include <string>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/models/PercentEscapes.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

void requireDecoding(const NSString& text, const std::u16string& units) {
    const std::optional<std::u16string> expected = models::percentDecoded(units);
    const NSString decoded = text.urlDecodedString();
    require(static_cast<bool>(decoded) == expected.has_value(), "whether a text can be decoded");
    if (expected) {
        require(decoded.utf16() == *expected, "decoded text");
    }
}

std::string without(std::string_view kept, std::u16string_view exceptions) {
    std::string left;
    for (const char character : kept) {
        if (exceptions.find(static_cast<char16_t>(character)) == exceptions.npos) {
            left += character;
        }
    }
    return left;
}

NSString encoded(const NSString& text, const NSString& exceptions, unsigned encoder, std::string& kept) {
    const std::string path = std::string(letters).append("!$&'()*+,-./:=@_~");
    switch (encoder % 5) {
    case 0:
        kept = without(path, exceptions.utf16());
        return text.urlEncodedStringWithExceptions(exceptions);
    case 1:
        kept = std::string(letters).append("!'()*-._~");
        return text.urlEncodedString();
    case 2:
        kept = path;
        return text.urlPathEncodedString();
    case 3:
        kept = std::string(path).append(";?");
        return text.urlQueryEncodedString();
    default:
        kept.clear(); // now the exceptions are the only characters that are kept
        for (const char16_t unit : exceptions.utf16()) {
            if (unit < 0x80) {
                kept += static_cast<char>(unit);
            }
        }
        return text.stringByAddingPercentEncodingWithAllowedCharacters(
            NSCharacterSet::characterSetWithCharactersInString(exceptions));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned encoder = input.byte();
    const std::u16string others = fuzzing::unitsFromBytes(input.piece('\n'));
    const std::u16string units = fuzzing::unitsFromBytes(input.rest());
    const NSString exceptions = NSString::stringWithCharacters_length(others.data(), others.size());
    const NSString text = NSString::stringWithCharacters_length(units.data(), units.size());

    requireDecoding(text, units);
    std::string kept;
    const NSString found = encoded(text, exceptions, encoder, kept);
    const std::optional<std::string> expected = models::percentEncoded(units, kept);
    require(static_cast<bool>(found) == expected.has_value(), "whether a text can be encoded");
    if (expected) {
        requireEqual(found.utf8(), *expected, "encoded text");
        if (kept.find('%') == kept.npos) {
            require(found.urlDecodedString() == text, "what was encoded does not come back");
        }
    }
    return 0;
}
