// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TEXT_NSLOCALE_H
#define ZQFOUNDATION_TEXT_NSLOCALE_H

#include "../objects/NSDictionary.h"
#include "../objects/NSString.h"

namespace ZQFoundation {

/// How numbers are written in a language and region. A nullable handle, copied in a nanosecond; nil means no
/// locale: "." and no grouping.
///
/// The data are the library's own, so the same identifier gives the same texts on every system, whatever
/// locales are installed there. All operations may be called from any thread.
class ZQFOUNDATION_EXPORT NSLocale {
public:
    constexpr NSLocale() noexcept = default;
    constexpr NSLocale(std::nullptr_t) noexcept {}

    /// A dictionary may stand for a locale; only its `NSDecimalSeparator` is used. Nil gives nil.
    NSLocale(const NSDictionary& separators);

    /// The user's: the default `AppleLocale`, else what the environment says in LC_ALL, LC_NUMERIC or LANG,
    /// the first that is set counting; "C" and "POSIX" are "en_US_POSIX". Never nil; read anew at each call.
    static NSLocale currentLocale();

    /// "de_DE", "de-AT", "zh-Hant_TW", "de_DE.UTF-8"; an unknown region has its language's customs, an
    /// unknown language those of the root locale ("." and "," and groups of three). Nil for nil.
    static NSLocale localeWithLocaleIdentifier(StringView identifier);

    explicit operator bool() const noexcept { return bool(identifier_); }

    /// As given, with "_" between language and region; empty for a locale made of a dictionary.
    NSString localeIdentifier() const noexcept { return identifier_; }

    NSString decimalSeparator() const noexcept { return decimalSeparator_; }

    /// Empty when numbers are not grouped.
    NSString groupingSeparator() const noexcept { return groupingSeparator_; }

    /// Digits next to the decimal separator, and of every further group.
    unsigned groupSize() const noexcept { return groupSize_; }
    unsigned secondaryGroupSize() const noexcept { return secondaryGroupSize_; }

private:
    NSString identifier_;
    NSString decimalSeparator_;
    NSString groupingSeparator_;
    unsigned groupSize_ = 0;
    unsigned secondaryGroupSize_ = 0;
};

} // namespace ZQFoundation

#endif
