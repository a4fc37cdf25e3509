// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FORMAT_LOCALENUMBERS_H
#define ZQFOUNDATION_FORMAT_LOCALENUMBERS_H

#include <string>
#include <string_view>

namespace ZQFoundation::detail {

/// How a language and region write numbers. The texts are UTF-8.
struct LocaleNumbers {
    std::string_view decimalSeparator;
    std::string_view groupingSeparator; ///< empty: no grouping
    unsigned minimumGroupingDigits;     ///< least number of digits before the last group
    unsigned groupSize;
    unsigned secondaryGroupSize;
};

/// The parts of a locale's identifier that decide, in their usual case: "zh", "Hant", "TW".
struct LocaleName {
    std::string language;
    std::string script;
    std::string region;
    bool isPosix = false; ///< the variant for programs: no grouping
};

/// "de-AT", "zh_hant_TW", "de_DE.UTF-8@euro". All parts are empty for a text that is not an identifier.
LocaleName localeName(std::string_view identifier);

/// The conventions of the most specific combination of language, script and region that has its own; those of
/// the root locale for an unknown language.
const LocaleNumbers& numbersOfLocale(const LocaleName& name);

} // namespace ZQFoundation::detail

#endif
