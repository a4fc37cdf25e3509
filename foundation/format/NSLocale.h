// SPDX-License-Identifier: MIT
// Declares NSLocale, how numbers are written in a language and region.
#ifndef ZQFOUNDATION_FORMAT_NSLOCALE_H
#define ZQFOUNDATION_FORMAT_NSLOCALE_H

#include "../objects/NSDictionary.h"
#include "../objects/NSString.h"

namespace ZQFoundation {

/// How numbers are written in a language and region. A nullable handle, cheap to copy; nil means no locale:
/// "." and no grouping.
///
/// The data are the library's own, so the same identifier gives the same texts on every system, whatever
/// locales are installed there. All operations may be called from any thread.
///
///     const NSLocale german = NSLocale::localeWithLocaleIdentifier("de_DE");
///     NSString::initWithFormat_locale("%d %.1f", german, 12345, 0.5);  // "12.345 0,5"
class ZQFOUNDATION_EXPORT NSLocale {
public:
    constexpr NSLocale() noexcept = default;
    constexpr NSLocale(std::nullptr_t) noexcept {}

    /// A locale made from a dictionary, of which only `NSDecimalSeparator` is used ("." when it is missing,
    /// empty or not a string), and nothing is grouped. Nil makes a nil locale.
    NSLocale(const NSDictionary& separators);

    /// The user's locale: the default `AppleLocale`, else the first that is set of LC_ALL, LC_NUMERIC and
    /// LANG in the environment; "C", "POSIX" and none at all are "en_US_POSIX". Never nil; read again at each
    /// call.
    static NSLocale currentLocale();

    /// "de_DE", "de-AT", "zh-Hant_TW", "de_DE.UTF-8"; an unknown region has its language's conventions, an
    /// unknown language those of the root locale ("." and "," and groups of three). Nil for nil.
    static NSLocale localeWithLocaleIdentifier(StringView identifier);

    /// True unless the locale is nil.
    explicit operator bool() const noexcept { return bool(identifier_); }

    /// As given, with "_" before the region and what follows it, without an encoding or a modifier; empty for
    /// a locale made from a dictionary.
    NSString localeIdentifier() const noexcept { return identifier_; }

    /// The text between the whole part of a number and its fraction; nil for nil.
    NSString decimalSeparator() const noexcept { return decimalSeparator_; }

    /// The text between groups of digits; empty if numbers are not grouped.
    NSString groupingSeparator() const noexcept { return groupingSeparator_; }

    /// The number of digits in the group next to the decimal separator.
    unsigned groupSize() const noexcept { return groupSize_; }

    /// The number of digits in every further group.
    unsigned secondaryGroupSize() const noexcept { return secondaryGroupSize_; }

    /// The minimum number of digits before the last group for which a number is grouped at all: 2 in Spanish,
    /// which writes 1234 and 12.345.
    unsigned minimumGroupingDigits() const noexcept { return minimumGroupingDigits_; }

private:
    NSString identifier_;
    NSString decimalSeparator_;
    NSString groupingSeparator_;
    unsigned groupSize_ = 0;
    unsigned secondaryGroupSize_ = 0;
    unsigned minimumGroupingDigits_ = 1;
};

} // namespace ZQFoundation

#endif
