// SPDX-License-Identifier: MIT
// The operations on strings and exceptions that take a format.
// The formats themselves are in Format.cpp; these operations differ in where the locale and the result come
// from.
#include "foundation/format/Format.h"
#include "foundation/format/NSLocale.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/NSString.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation {

NSString NSString::stringWithFormat_arguments(StringView format, ArgumentList arguments) {
    return detail::formatted(format, arguments);
}

NSString NSString::initWithFormat_locale_arguments(StringView format, const NSLocale& locale,
                                                   ArgumentList arguments) {
    if (!locale) {
        return detail::formatted(format, arguments);
    }
    // The texts are kept here, because the conventions only refer to them.
    const NSString decimalSeparator = locale.decimalSeparator();
    const NSString groupingSeparator = locale.groupingSeparator();
    detail::FormatLocale conventions;
    conventions.decimalSeparator = decimalSeparator;
    conventions.groupingSeparator = groupingSeparator;
    conventions.groupSize = locale.groupSize();
    conventions.secondaryGroupSize = locale.secondaryGroupSize();
    conventions.minimumDigits = locale.minimumGroupingDigits();
    return detail::formatted(format, arguments, &conventions);
}

NSString NSString::localizedStringWithFormat_arguments(StringView format, ArgumentList arguments) {
    return initWithFormat_locale_arguments(format, NSLocale::currentLocale(), arguments);
}

void NSMutableString::appendFormat_arguments(StringView format, ArgumentList arguments) {
    // Formatted separately: an argument may refer to a text that this builder holds, and an object's
    // description may throw.
    appendString(detail::formatted(format, arguments));
}

void NSException::raise_format_arguments(const NSString& name, StringView format, ArgumentList arguments) {
    throw NSException(name, detail::formatted(format, arguments));
}

} // namespace ZQFoundation
