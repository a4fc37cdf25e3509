// SPDX-License-Identifier: MIT
#include "foundation/objects/NSString.h"
#include "foundation/text/PercentEscapes.h"

namespace ZQFoundation {

namespace {

using detail::AsciiSet;

constexpr AsciiSet pathCharacters(detail::urlPathCharacters);
constexpr AsciiSet queryCharacters(detail::urlQueryCharacters);

/// The units of the text that are ASCII; no others are members anyway.
AsciiSet without(AsciiSet set, StringView characters) noexcept {
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto unit = characters.form() == StringView::Form::utf16
                              ? characters.units()[i]
                              : static_cast<char16_t>(static_cast<unsigned char>(characters.bytes()[i]));
        if (unit < 0x80) {
            set.remove(static_cast<unsigned char>(unit));
        }
    }
    return set;
}

} // namespace

NSString NSString::urlEncodedStringWithExceptions(StringView exceptions) const {
    return detail::addPercentEscapes(*this, without(pathCharacters, exceptions));
}

NSString NSString::urlEncodedString() const { return urlEncodedStringWithExceptions(":/?@$&+,;=# "); }

NSString NSString::urlPathEncodedString() const { return detail::addPercentEscapes(*this, pathCharacters); }

NSString NSString::urlQueryEncodedString() const { return detail::addPercentEscapes(*this, queryCharacters); }

NSString NSString::urlDecodedString() const { return detail::removePercentEscapes(*this); }

} // namespace ZQFoundation
