// SPDX-License-Identifier: MIT
// Selects the localizations of a bundle that match the user's languages.
// Tags are compared in a canonical form; the names of folders are returned as they are.
#include "foundation/process/LanguageMatching.h"

#include <algorithm>

namespace ZQFoundation::detail {

namespace {

struct Alias {
    const char* name;
    const char* code;
};

// Names of localization folders from before codes came into use.
constexpr Alias englishNames[] = {
    {"English", "en"}, {"German", "de"},  {"French", "fr"}, {"Japanese", "ja"},
    {"Italian", "it"}, {"Spanish", "es"}, {"Dutch", "nl"},
};

// Codes that were withdrawn, or denote a language that has a more specific one.
constexpr Alias formerCodes[] = {
    {"iw", "he"}, {"in", "id"}, {"ji", "yi"}, {"jw", "jv"}, {"mo", "ro"}, {"no", "nb"}, {"tl", "fil"},
};

// Tags are ASCII, and the C library's functions depend on the locale.
char lower(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

char upper(char character) noexcept {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

bool hasOnlyLetters(const std::string& text) noexcept {
    return std::all_of(text.begin(), text.end(), [](char c) { return lower(c) >= 'a' && lower(c) <= 'z'; });
}

// A script has four letters, a region two letters or three digits.
bool isScript(const std::string& part) noexcept { return part.size() == 4 && hasOnlyLetters(part); }

bool isRegion(const std::string& part) noexcept {
    return (part.size() == 2 && hasOnlyLetters(part)) || part.size() == 3;
}

// Both separators are in use: "de-AT" in settings, "de_AT" in locales and old folders.
std::vector<std::string> partsOf(const std::string& tag) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= tag.size()) {
        const std::size_t end = std::min(tag.find_first_of("-_", start), tag.size());
        parts.push_back(tag.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::string joined(const std::vector<std::string>& parts) {
    std::string tag;
    for (const std::string& part : parts) {
        tag += tag.empty() ? "" : "-";
        tag += part;
    }
    return tag;
}

// Returns the name itself when the table lacks it, so that tables can be applied one after another.
template <std::size_t count>
std::string codeFor(const std::string& name, const Alias (&table)[count]) {
    for (const Alias& alias : table) {
        if (name == alias.name) {
            return alias.code;
        }
    }
    return name;
}

std::string englishNameOf(const std::string& code) {
    for (const Alias& alias : englishNames) {
        if (code == alias.code) {
            return alias.name;
        }
    }
    return {};
}

// "de-at" is spelled "de-AT", "ZH-HANT" "zh-Hant".
void setCase(std::vector<std::string>& parts) {
    for (std::size_t index = 0; index < parts.size(); ++index) {
        std::string& part = parts[index];
        const bool capital = index > 0 && isRegion(part);
        std::transform(part.begin(), part.end(), part.begin(), capital ? upper : lower);
        if (index > 0 && isScript(part)) {
            part[0] = upper(part[0]);
        }
    }
}

/// Adds the script, which a region implies: readers of one do not accept the other.
void addChineseScript(std::vector<std::string>& parts) {
    if (parts.size() > 1 && isScript(parts[1])) {
        return;
    }
    // Hong Kong and Macao use the traditional script like Taiwan; all other regions are taken to use the
    // simplified one.
    const std::string region = parts.size() > 1 ? parts[1] : std::string();
    const bool traditional = region == "TW" || region == "HK" || region == "MO";
    parts.insert(parts.begin() + 1, traditional ? "Hant" : "Hans");
    if (region == "TW" || region == "CN") {
        // These regions were the usual names for the scripts themselves.
        parts.erase(parts.begin() + 2);
    }
}

/// Removes the last part; empty when nothing shorter denotes the language.
std::string shorterForm(const std::string& canonical) {
    // Chinese without a script means one of them, so nothing shorter is acceptable.
    if (canonical == "zh-Hant" || canonical == "zh-Hans") {
        return {};
    }
    const std::size_t hyphen = canonical.find_last_of('-');
    return hyphen == std::string::npos ? std::string() : canonical.substr(0, hyphen);
}

void addOnce(std::vector<std::string>& list, const std::string& name) {
    if (!name.empty() && std::find(list.begin(), list.end(), name) == list.end()) {
        list.push_back(name);
    }
}

std::vector<std::string> localizationsOfLanguage(const std::string& language,
                                                 const std::vector<std::string>& available) {
    std::vector<std::string> found;
    // The exact match comes first, then those of the shorter forms.
    addOnce(found, localizationOfLanguage(language, available));
    std::string form = shorterForm(canonicalLanguage(language));
    while (!form.empty()) {
        addOnce(found, localizationOfLanguage(form, available));
        form = shorterForm(form);
    }
    return found;
}

} // namespace

std::string canonicalLanguage(const std::string& tag) {
    std::vector<std::string> parts = partsOf(codeFor(tag, englishNames));
    setCase(parts);
    parts[0] = codeFor(parts[0], formerCodes);
    if (parts[0] == "zh") {
        addChineseScript(parts);
    }
    return joined(parts);
}

std::string localizationOfLanguage(const std::string& tag, const std::vector<std::string>& available) {
    // "Base" is the name of a folder for all languages.
    if (tag.empty() || tag == "Base") {
        return {};
    }
    const auto has = [&](const std::string& name) {
        return std::find(available.begin(), available.end(), name) != available.end();
    };
    // Names as they are come before canonical forms, so that a bundle with both spellings gets the requested
    // one.
    std::string exchanged = tag;
    for (char& character : exchanged) {
        character = character == '-' ? '_' : character == '_' ? '-' : character;
    }
    for (const std::string& name : {tag, exchanged, englishNameOf(tag)}) {
        if (!name.empty() && has(name)) {
            return name;
        }
    }
    const std::string canonical = canonicalLanguage(tag);
    for (const std::string& name : available) {
        if (name != "Base" && canonicalLanguage(name) == canonical) {
            return name;
        }
    }
    return {};
}

std::vector<std::string> matchingLocalizations(const std::vector<std::string>& languages,
                                               const std::vector<std::string>& available) {
    // The first language with any match decides: a user who reads it does not want the next one.
    for (const std::string& language : languages) {
        std::vector<std::string> found = localizationsOfLanguage(language, available);
        if (!found.empty()) {
            return found;
        }
    }
    return {};
}

} // namespace ZQFoundation::detail
