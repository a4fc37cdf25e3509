// SPDX-License-Identifier: MIT
// Percent escapes of texts of any units, both ways, against loops that know nothing of tables.
//
// Input: a byte that chooses the encoder, then the characters that are not to be kept, up to a line feed,
// then the text (see InputReader).
#include <optional>
#include <string>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "fuzz/PlainUtf.h"

using namespace ZQFoundation;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

std::optional<std::string> slowEncoding(std::u16string_view units, std::string_view kept) {
    const std::optional<std::string> bytes = fuzzing::plainUtf8(units);
    if (!bytes) {
        return std::nullopt;
    }
    std::string text;
    for (const char byte : *bytes) {
        if (kept.find(byte) != kept.npos) {
            text += byte;
        } else {
            text += '%';
            text += "0123456789ABCDEF"[static_cast<unsigned char>(byte) / 16];
            text += "0123456789ABCDEF"[static_cast<unsigned char>(byte) % 16];
        }
    }
    return text;
}

int digitOf(char16_t unit) {
    constexpr std::u16string_view digits = u"00112233445566778899aAbBcCdDeEfF";
    const std::size_t place = digits.find(unit);
    return place == digits.npos || unit == 0 ? -1 : static_cast<int>(place / 2);
}

/// Nothing when a "%" has no digits or the bytes are not well-formed. Stretches without escapes stay as
/// units, since an unpaired surrogate may stand in them.
std::optional<std::u16string> slowDecoding(std::u16string_view units) {
    std::u16string text;
    for (std::size_t i = 0; i < units.size();) {
        if (units[i] != u'%') {
            text += units[i++];
            continue;
        }
        std::string bytes;
        while (i < units.size() && units[i] == u'%') {
            if (i + 2 >= units.size() || digitOf(units[i + 1]) < 0 || digitOf(units[i + 2]) < 0) {
                return std::nullopt;
            }
            bytes += static_cast<char>(digitOf(units[i + 1]) * 16 + digitOf(units[i + 2]));
            i += 3;
        }
        const std::optional<std::u16string> spelled = fuzzing::plainUtf16(bytes);
        if (!spelled) {
            return std::nullopt;
        }
        text += *spelled;
    }
    return text;
}

void requireDecoding(const NSString& text, const std::u16string& units) {
    const std::optional<std::u16string> expected = slowDecoding(units);
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
    const std::optional<std::string> expected = slowEncoding(units, kept);
    require(static_cast<bool>(found) == expected.has_value(), "whether a text can be encoded");
    if (expected) {
        requireEqual(found.utf8(), *expected, "encoded text");
        if (kept.find('%') == kept.npos) {
            require(found.urlDecodedString() == text, "what was encoded does not come back");
        }
    }
    return 0;
}
