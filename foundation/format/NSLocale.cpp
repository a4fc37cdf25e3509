// SPDX-License-Identifier: MIT
// Makes locales from identifiers and dictionaries.
// Locales decide about numbers only: their separators and groups.
#include "foundation/format/NSLocale.h"

#include <string>

#include "foundation/format/LocaleNumbers.h"

namespace ZQFoundation {

namespace {

/// With "_" before the region and whatever follows it, and without an encoding and a modifier.
std::string usualForm(std::string_view identifier, const detail::LocaleName& name) {
    std::string text(identifier.substr(0, identifier.find_first_of(".@")));
    // The hyphen between language and script stays; the one before the region becomes an underscore.
    std::size_t at = name.language.size() + (name.script.empty() ? 0 : 1 + name.script.size());
    while (!name.language.empty() && (at = text.find('-', at)) != std::string::npos) {
        text[at] = '_';
    }
    return text;
}

} // namespace

NSLocale::NSLocale(const NSDictionary& separators) {
    if (!separators) {
        return;
    }
    identifier_ = NSString::string();
    // A dictionary in place of a locale gives the decimal separator and nothing else.
    decimalSeparator_ = NSString(separators.objectForKey("NSDecimalSeparator"));
    if (decimalSeparator_.length() == 0) {
        decimalSeparator_ = NSString(".");
    }
    groupingSeparator_ = NSString::string();
}

NSLocale NSLocale::localeWithLocaleIdentifier(StringView identifier) {
    NSLocale locale;
    if (!identifier) {
        return locale;
    }
    const std::string text = NSString(identifier).utf8();
    const detail::LocaleName name = detail::localeName(text);
    // Every text gives a locale; an unknown one writes numbers like the root.
    const detail::LocaleNumbers& numbers = detail::numbersOfLocale(name);
    locale.identifier_ = NSString(usualForm(text, name));
    locale.decimalSeparator_ = NSString(numbers.decimalSeparator);
    locale.groupingSeparator_ = NSString(numbers.groupingSeparator);
    locale.groupSize_ = numbers.groupSize;
    locale.secondaryGroupSize_ = numbers.secondaryGroupSize;
    locale.minimumGroupingDigits_ = numbers.minimumGroupingDigits;
    return locale;
}

} // namespace ZQFoundation
