// SPDX-License-Identifier: MIT
// Percent-encodes URLs and their parts.
#include "foundation/objects/NSString.h"
#include "foundation/objects/PercentEscapes.h"

namespace ZQFoundation {

namespace {

using detail::EscapeTable;

constexpr EscapeTable pathEscapes(detail::urlPathCharacters);
constexpr EscapeTable queryEscapes(detail::urlQueryCharacters);

constexpr EscapeTable without(EscapeTable table, const char* characters) noexcept {
    for (; *characters != '\0'; ++characters) {
        table.escape(static_cast<unsigned char>(*characters));
    }
    return table;
}

/// The characters that separate parts of a URL are escaped, so the text can be put into any part. The table
/// is made when the library is compiled.
constexpr EscapeTable componentEscapes = without(pathEscapes, ":/?@$&+,;=# ");

/// Only ASCII units matter: all others are escaped anyway.
EscapeTable without(EscapeTable table, StringView characters) noexcept {
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto unit = characters.form() == StringView::Form::utf16
                              ? characters.units()[i]
                              : static_cast<char16_t>(static_cast<unsigned char>(characters.bytes()[i]));
        if (unit < 0x80) {
            table.escape(static_cast<unsigned char>(unit));
        }
    }
    return table;
}

} // namespace

NSString NSString::urlEncodedStringWithExceptions(StringView exceptions) const {
    return detail::addPercentEscapes(*this, without(pathEscapes, exceptions));
}

NSString NSString::urlEncodedString() const { return detail::addPercentEscapes(*this, componentEscapes); }

NSString NSString::urlPathEncodedString() const { return detail::addPercentEscapes(*this, pathEscapes); }

NSString NSString::urlQueryEncodedString() const { return detail::addPercentEscapes(*this, queryEscapes); }

NSString NSString::urlDecodedString() const { return detail::removePercentEscapes(*this); }

} // namespace ZQFoundation
