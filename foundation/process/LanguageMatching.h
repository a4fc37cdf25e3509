// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LANGUAGEMATCHING_H
#define ZQFOUNDATION_PROCESS_LANGUAGEMATCHING_H

#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// One spelling for each language: "de_at" "de-AT", "German" "de", "iw" "he". Chinese always includes its
/// script: "zh" and "zh_CN" become "zh-Hans", "zh-TW" "zh-Hant", "zh-HK" "zh-Hant-HK".
std::string canonicalLanguage(const std::string& tag);

/// The localization among `available` that is for exactly this language, or empty. Tried in turn: the name as
/// it is, with "-" and "_" exchanged, the old English name ("German" for "de"), any name of the same
/// canonical form. "Base" is not a language.
std::string localizationOfLanguage(const std::string& tag, const std::vector<std::string>& available);

/// The localizations to use, the most specific first, for languages in order of preference; empty without a
/// match.
///
/// Each language is tried with its shorter forms ("de-AT", then "de"; Traditional Chinese never becomes
/// Simplified). The first match decides; its shorter forms follow if available.
std::vector<std::string> matchingLocalizations(const std::vector<std::string>& languages,
                                               const std::vector<std::string>& available);

} // namespace ZQFoundation::detail

#endif
