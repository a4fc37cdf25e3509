// SPDX-License-Identifier: MIT
// Declares the C functions that look up localized texts.
#ifndef ZQFOUNDATION_EXTENSIONS_LOCALIZEDSTRINGS_H
#define ZQFOUNDATION_EXTENSIONS_LOCALIZEDSTRINGS_H

#include "../foundation/process/NSBundle.h"
#include "../foundation/text/ArgumentList.h"

/// @file
/// Functions that look a text up in a table of localized texts and format it with **one single argument that
/// replaces the whole argument list**: they never put a caller's value into the text. A text without
/// conversions is returned unchanged, "%%" as "%"; "%@" gives "(null)" and "%d" gives "0". To fill a
/// localized format with values, use `NSString::initWithLocalizedFormat`.
///
/// Without a bundle in their name they search the main one; without a table, or with a nil or empty one,
/// `Localizable`. A key that is missing there, and any key of a nil bundle, gives the default value if there
/// is one and it is not empty, else the key; a nil key gives the default value, else an empty text.
/// `comment`, a note to translators, is never read. Nothing raises. Callable from any thread.
namespace ZQFoundation {

#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreturn-type-c-linkage" // C linkage for the names' sake; callers are C++
#endif

extern "C" {

/// The text of a key in the main bundle's `Localizable` table, formatted without the caller's arguments.
///
///     ZQLocalizedStringWithFormat("Open", "a menu", 3);   // "Ouvrir" in French
///     ZQLocalizedStringWithFormat("%d of %@", nullptr);   // "0 of (null)" without such a key
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringWithFormat(const NSString& key, const NSString& comment, ...);

/// `ZQLocalizedStringWithFormat` for a started argument list, which is ignored.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringWithFormatv(const NSString& key, const NSString& comment,
                                                          ArgumentList arguments);

/// The text of a key in a table of the main bundle, formatted without the caller's arguments. The table is
/// the name of a file without ".strings".
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringFromTableWithFormat(const NSString& key, const NSString& table,
                                                                  const NSString& comment, ...);

/// `ZQLocalizedStringFromTableWithFormat` for a started argument list, which is ignored.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringFromTableWithFormatv(const NSString& key, const NSString& table,
                                                                   const NSString& comment,
                                                                   ArgumentList arguments);

/// The text of a key in a table of a bundle, formatted without the caller's arguments. For a nil bundle it is
/// the key, formatted in the same way.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringFromTableInBundleWithFormat(const NSString& key,
                                                                          const NSString& table,
                                                                          const NSBundle& bundle,
                                                                          const NSString& comment, ...);

/// `ZQLocalizedStringFromTableInBundleWithFormat` for a started argument list, which is ignored.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringFromTableInBundleWithFormatv(const NSString& key,
                                                                           const NSString& table,
                                                                           const NSBundle& bundle,
                                                                           const NSString& comment,
                                                                           ArgumentList arguments);

/// The text of a key in a table of a bundle, else a default value, formatted without the caller's arguments.
/// The default value is formatted too; a nil or empty one counts as none.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringWithDefaultValueWithFormat(const NSString& key,
                                                                         const NSString& table,
                                                                         const NSBundle& bundle,
                                                                         const NSString& defaultValue,
                                                                         const NSString& comment, ...);

/// `ZQLocalizedStringWithDefaultValueWithFormat` for a started argument list, which is ignored.
ZQFOUNDATION_EXPORT NSString ZQLocalizedStringWithDefaultValueWithFormatv(
    const NSString& key, const NSString& table, const NSBundle& bundle, const NSString& defaultValue,
    const NSString& comment, ArgumentList arguments);

} // extern "C"

#ifdef __clang__
#pragma clang diagnostic pop
#endif

/// `ZQLocalizedStringWithFormat` for arguments that `...` cannot take, values and texts of any kind; they are
/// ignored.
template <class Argument, class... Arguments>
NSString ZQLocalizedStringWithFormat(const NSString& key, const NSString& comment, const Argument&,
                                     const Arguments&...) {
    return ZQLocalizedStringWithFormatv(key, comment, {});
}

/// `ZQLocalizedStringFromTableWithFormat` for arguments that `...` cannot take, values and texts of any kind;
/// they are ignored.
template <class Argument, class... Arguments>
NSString ZQLocalizedStringFromTableWithFormat(const NSString& key, const NSString& table,
                                              const NSString& comment, const Argument&, const Arguments&...) {
    return ZQLocalizedStringFromTableWithFormatv(key, table, comment, {});
}

/// `ZQLocalizedStringFromTableInBundleWithFormat` for arguments that `...` cannot take, values and texts of
/// any kind; they are ignored.
template <class Argument, class... Arguments>
NSString ZQLocalizedStringFromTableInBundleWithFormat(const NSString& key, const NSString& table,
                                                      const NSBundle& bundle, const NSString& comment,
                                                      const Argument&, const Arguments&...) {
    return ZQLocalizedStringFromTableInBundleWithFormatv(key, table, bundle, comment, {});
}

/// `ZQLocalizedStringWithDefaultValueWithFormat` for arguments that `...` cannot take, values and texts of
/// any kind; they are ignored.
template <class Argument, class... Arguments>
NSString ZQLocalizedStringWithDefaultValueWithFormat(const NSString& key, const NSString& table,
                                                     const NSBundle& bundle, const NSString& defaultValue,
                                                     const NSString& comment, const Argument&,
                                                     const Arguments&...) {
    return ZQLocalizedStringWithDefaultValueWithFormatv(key, table, bundle, defaultValue, comment, {});
}

} // namespace ZQFoundation

#endif
