// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LANGUAGESETTINGS_H
#define ZQFOUNDATION_PROCESS_LANGUAGESETTINGS_H

#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// The user's languages from the process's environment, most preferred first: "de-AT", "sr-Latn-RS".
///
/// The first of LANGUAGE, LC_ALL, LC_MESSAGES and LANG that is set and not empty decides. LANGUAGE is a list
/// with colons; the others name one locale. The locales C and POSIX name no language and end the list. Empty
/// when the environment names none, and in a set-user-ID process.
std::vector<std::string> languagesFromEnvironment();

/// The language tag of a locale's name: "de_AT.UTF-8@euro" becomes "de-AT", "sr_RS@latin" "sr-Latn-RS". Empty
/// for C, POSIX and names that are not locales.
std::string languageOfLocale(const std::string& locale);

} // namespace ZQFoundation::detail

#endif
