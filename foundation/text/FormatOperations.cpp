// SPDX-License-Identifier: MIT
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/Format.h"

namespace ZQFoundation {

NSString NSString::stringWithFormat_arguments(StringView format, ArgumentList arguments) {
    return detail::formatted(format, arguments);
}

void NSMutableString::appendFormat_arguments(StringView format, ArgumentList arguments) {
    // Formatted apart: an argument may look at a text that this builder holds, and an object's description
    // may throw.
    appendString(detail::formatted(format, arguments));
}

void NSException::raise_format_arguments(const NSString& name, StringView format, ArgumentList arguments) {
    throw NSException(name, detail::formatted(format, arguments));
}

} // namespace ZQFoundation
