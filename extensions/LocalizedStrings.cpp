// SPDX-License-Identifier: MIT
// The functions with C linkage that look up localized texts.
#include "extensions/LocalizedStrings.h"

#ifdef __clang__
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage" // C linkage for the names' sake; callers are C++
#endif

namespace ZQFoundation {

namespace {

/// The text for a nil bundle: the same as for a bundle without tables. Never nil, because nil is not a
/// format.
NSString textOfNoBundle(const NSString& key, const NSString& defaultValue) {
    if (defaultValue.length() > 0) {
        return defaultValue;
    }
    return key ? key : NSString("");
}

/// Uses the localized text as a format with one argument that stands for the caller's whole list. That
/// argument is not one of the caller's values, so a text from a table cannot decide what is read.
NSString formattedText(const NSString& key, const NSString& table, const NSBundle& bundle,
                       const NSString& defaultValue) {
    const Argument argumentList(nullptr);
    const NSString text = bundle ? bundle.localizedStringForKey_value_table(key, defaultValue, table)
                                 : textOfNoBundle(key, defaultValue);
    return NSString::stringWithFormat_arguments(text, {&argumentList, 1});
}

} // namespace

// All eight functions differ only in what they fix. A list of arguments is ignored like the arguments
// themselves.
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
