// SPDX-License-Identifier: MIT
// The functions for localized texts with C linkage.
#include "extensions/LocalizedStrings.h"

#ifdef __clang__
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage" // C linkage for the names' sake; callers are C++
#endif

namespace ZQFoundation {

namespace {

/// As of a bundle without any tables. Never nil, since that would be no format.
NSString textOfNoBundle(const NSString& key, const NSString& defaultValue) {
    if (defaultValue.length() > 0) {
        return defaultValue;
    }
    return key ? key : NSString("");
}

/// The localized text as a format whose one argument stands for the caller's whole list. It is no value and
/// nothing of the caller's, so that a text from a table decides nothing about what is read.
NSString formattedText(const NSString& key, const NSString& table, const NSBundle& bundle,
                       const NSString& defaultValue) {
    const Argument argumentList(nullptr);
    const NSString text = bundle ? bundle.localizedStringForKey_value_table(key, defaultValue, table)
                                 : textOfNoBundle(key, defaultValue);
    return NSString::stringWithFormat_arguments(text, {&argumentList, 1});
}

} // namespace

extern "C" {

NSString ZQLocalizedStringWithFormat(const NSString& key, const NSString&, ...) {
    return formattedText(key, nullptr, NSBundle::mainBundle(), "");
}

NSString ZQLocalizedStringWithFormatv(const NSString& key, const NSString&, ArgumentList) {
    return formattedText(key, nullptr, NSBundle::mainBundle(), "");
}

NSString ZQLocalizedStringFromTableWithFormat(const NSString& key, const NSString& table, const NSString&,
                                              ...) {
    return formattedText(key, table, NSBundle::mainBundle(), "");
}

NSString ZQLocalizedStringFromTableWithFormatv(const NSString& key, const NSString& table, const NSString&,
                                               ArgumentList) {
    return formattedText(key, table, NSBundle::mainBundle(), "");
}

NSString ZQLocalizedStringFromTableInBundleWithFormat(const NSString& key, const NSString& table,
                                                      const NSBundle& bundle, const NSString&, ...) {
    return formattedText(key, table, bundle, "");
}

NSString ZQLocalizedStringFromTableInBundleWithFormatv(const NSString& key, const NSString& table,
                                                       const NSBundle& bundle, const NSString&,
                                                       ArgumentList) {
    return formattedText(key, table, bundle, "");
}

NSString ZQLocalizedStringWithDefaultValueWithFormat(const NSString& key, const NSString& table,
                                                     const NSBundle& bundle, const NSString& defaultValue,
                                                     const NSString&, ...) {
    return formattedText(key, table, bundle, defaultValue);
}

NSString ZQLocalizedStringWithDefaultValueWithFormatv(const NSString& key, const NSString& table,
                                                      const NSBundle& bundle, const NSString& defaultValue,
                                                      const NSString&, ArgumentList) {
    return formattedText(key, table, bundle, defaultValue);
}

} // extern "C"

} // namespace ZQFoundation
