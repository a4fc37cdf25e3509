// SPDX-License-Identifier: MIT
// Finds the user's locale, from the settings and the environment.
// Numbers follow this locale; the language of texts is chosen elsewhere.
#include <string_view>

#include "foundation/format/NSLocale.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/System.h"

namespace ZQFoundation {

namespace {

/// Programs without any setting write numbers as programs read them.
constexpr const char* programsLocale = "en_US_POSIX";

/// The locale that the environment names for numbers.
std::string_view localeOfEnvironment() {
    for (const char* name : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const char* const value = detail::system::environmentVariable(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return programsLocale;
}

} // namespace

NSLocale NSLocale::currentLocale() {
    // The setting wins, because users change it for all applications, and the environment may come from a
    // terminal.
    const NSString chosen = NSUserDefaults::standardUserDefaults().stringForKey("AppleLocale");
    if (chosen.length() != 0) {
        return localeWithLocaleIdentifier(chosen);
    }
    const std::string_view locale = localeOfEnvironment();
    // Without encoding and modifier: "C.UTF-8" is "C", too.
    const std::string_view name = locale.substr(0, locale.find_first_of(".@"));
    return localeWithLocaleIdentifier(name == "C" || name == "POSIX" ? programsLocale : locale);
}

} // namespace ZQFoundation
