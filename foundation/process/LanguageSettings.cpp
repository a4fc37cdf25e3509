// SPDX-License-Identifier: MIT
// Reads the user's languages from the environment.
// The syntax is that of POSIX locales, language[_region][.encoding][@modifier]; anything else is ignored.
#include "foundation/process/LanguageSettings.h"

#include <algorithm>

#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

// Far more than anybody speaks; keeps a hostile environment from costing time at every lookup.
constexpr std::size_t maxLanguages = 64;

bool isLetter(char character) noexcept {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isTagCharacter(char character) noexcept {
    return isLetter(character) || (character >= '0' && character <= '9') || character == '-';
}

bool namesNoLanguage(const std::string& tag) noexcept { return tag == "C" || tag == "POSIX"; }

/// The script that a locale's modifier denotes, after a hyphen, or empty.
/// Only modifiers that name a script change the language; others, like "euro", do not.
std::string scriptOfModifier(const std::string& modifier) {
    if (modifier == "latin") {
        return "-Latn";
    }
    if (modifier == "cyrillic") {
        return "-Cyrl";
    }
    return modifier == "devanagari" ? "-Deva" : "";
}

/// Adds a locale's language. False if the name ends the list.
bool addLanguage(const std::string& locale, std::vector<std::string>& languages) {
    // After C nothing else is wanted, whatever languages follow.
    if (namesNoLanguage(locale.substr(0, locale.find_first_of(".@")))) {
        return false;
    }
    std::string language = languageOfLocale(locale);
    if (!language.empty() && std::find(languages.begin(), languages.end(), language) == languages.end()) {
        languages.push_back(std::move(language));
    }
    return languages.size() < maxLanguages;
}

std::vector<std::string> languagesOfList(const std::string& list) {
    std::vector<std::string> languages;
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t end = std::min(list.find(':', start), list.size());
        if (!addLanguage(list.substr(start, end - start), languages)) {
            break;
        }
        start = end + 1;
    }
    return languages;
}

} // namespace

std::string languageOfLocale(const std::string& locale) {
    // Encoding and modifier say nothing about the language.
    std::string tag = locale.substr(0, locale.find_first_of(".@"));
    std::replace(tag.begin(), tag.end(), '_', '-');
    // The name may come from anybody, and will become part of a path.
    if (namesNoLanguage(tag) || tag.size() < 2 || !isLetter(tag.front()) ||
        !std::all_of(tag.begin(), tag.end(), isTagCharacter)) {
        return {};
    }
    const std::size_t at = locale.find('@');
    if (at != std::string::npos) {
        tag.insert(std::min(tag.find('-'), tag.size()), scriptOfModifier(locale.substr(at + 1)));
    }
    return tag;
}

std::vector<std::string> languagesFromEnvironment() {
    // The first that is set decides, even if it names no language.
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = system::environmentVariable(name);
        if (value != nullptr && *value != '\0') {
            return languagesOfList(value);
        }
    }
    return {};
}

} // namespace ZQFoundation::detail
