// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LANGUAGEMATCHING_H
#define ZQFOUNDATION_PROCESS_LANGUAGEMATCHING_H

#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// One spelling for each language: "de_at" "de-AT", "German" "de", "iw" "he". Chinese always names its
/// script: "zh" and "zh_CN" give "zh-Hans", "zh-TW" "zh-Hant", "zh-HK" "zh-Hant-HK".
std::string canonicalLanguage(const std::string& tag);

/// The localization among `available` that stands for exactly this language, or empty. Tried in turn: the
/// name as it is, with "-" and "_" exchanged, the old English name ("German" for "de"), any name of the same
/// canonical form. "Base" stands for no language.
std::string localizationOfLanguage(const std::string& tag, const std::vector<std::string>& available);

/// The localizations to use, the most exact first, for languages in order of preference; empty without a
/// match.
///
/// Each language is tried with its shorter forms ("de-AT", then "de"; Traditional Chinese never becomes
/// Simplified). The first that matches decides; its shorter forms follow when they are available.
std::vector<std::string> matchingLocalizations(const std::vector<std::string>& languages,
                                               const std::vector<std::string>& available);

} // namespace ZQFoundation::detail

#endif
