// SPDX-License-Identifier: MIT
// Fills formats from the tables of localized texts.
#include "foundation/format/NSLocale.h"
#include "foundation/objects/NSString.h"
#include "foundation/process/NSBundle.h"

namespace ZQFoundation {

NSString NSString::initWithLocalizedString(const NSString& key) {
    return NSBundle::mainBundle().localizedStringForKey_value_table(key, "", nullptr);
}

NSString NSString::initWithLocalizedFormat_arguments(const NSString& key, ArgumentList arguments) {
    return initWithLocalizedFormat_locale_arguments(key, nullptr, arguments);
}

NSString NSString::initWithLocalizedFormat_locale_arguments(const NSString& key, const NSLocale& locale,
                                                            ArgumentList arguments) {
    return initWithFormat_locale_arguments(initWithLocalizedString(key), locale, arguments);
}

NSString NSString::stringWithLocalizedFormat(const NSString& key) {
    return stringWithFormat("%@", initWithLocalizedString(key));
}

NSString NSString::localizedStringWithLocalizedFormat(const NSString& key) {
    // A locale does not affect text inserted by "%@", so the user's locale need not be looked up.
    return stringWithLocalizedFormat(key);
}

} // namespace ZQFoundation
