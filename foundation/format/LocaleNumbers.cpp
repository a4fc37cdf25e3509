// SPDX-License-Identifier: MIT
// Separators and grouping of numbers by language and region.
// The conventions of all locales are a table of a few rows: most languages share one of about ten ways to
// write numbers.
#include "foundation/format/LocaleNumbers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::string_view noBreakSpace = "\u00A0";
constexpr std::string_view narrowNoBreakSpace = "\u202F";

constexpr LocaleNumbers rootNumbers = {".", ",", 1, 3, 3};
constexpr LocaleNumbers posixNumbers = {".", "", 1, 0, 0};

/// One way to write numbers, and the locales that use it, each between spaces.
struct Conventions {
    LocaleNumbers numbers;
    std::string_view locales;
};

// Release 48 of the Unicode locale data, for ASCII digits. A locale that is not listed has its language's
// conventions, an unlisted language those of the root locale; regions are listed only if they differ.
constexpr Conventions conventions[] = {
    {{",", ".", 1, 3, 3},
     " ar_DZ ar_LB ar_LY ar_MA ar_MR ar_TN ast az bs ca da de dsb el en_AT en_BE en_DE en_DK"
     " en_NL en_SI es_AR es_BO es_CL es_CO es_EC es_PY es_UY es_VE eu fo fr_LU fr_MA fur fy gl"
     " hr hsb id is jgo jv kkj kl ku lb ln lo lu mgh mk ms_BN ms_ID mua nds nl nnh ps pt qu_BO"
     " rn ro rw seh sg sr su sw_CD tr uz_AF uz_Arab vi wo "},
    {{",", noBreakSpace, 1, 3, 3},
     " af agq bas br cs de_AT dua dyo en_FI en_SE en_ZA es_CR ewo ff fi fr_CA kab kea kk ksf"
     " ksh ky lt nb nmg nn no os pt_AO ru sah se shi sk smn sv tg tk tt tzm uk uz yav zgh "},
    {{",", noBreakSpace, 2, 3, 3},
     " be bg et hu hy ka lv pl pt_CH pt_CV pt_GQ pt_GW pt_LU pt_MO pt_MZ pt_PT pt_ST pt_TL"
     " ru_UA sq "},
    {{".", ",", 1, 3, 3},
     " es_419 es_BR es_BZ es_CU es_DO es_GT es_HN es_MX es_NI es_PA es_PE es_PR es_SV es_US"
     " pa_Arab pa_PK ta_MY ta_SG "},
    {{".", ",", 1, 3, 2}, " as bn brx ccp dz en_IN gu hi kok ml mr ne or pa sa ta te "},
    {{".", noBreakSpace, 1, 3, 3}, " dje khq mfe ses twq xh "},
    {{",", ".", 2, 3, 3}, " es ia it sl "},
    {{".", "'", 1, 3, 3}, " de_CH de_LI en_CH gsw "},
    {{",", narrowNoBreakSpace, 1, 3, 3}, " eo fr rm "},
    {{",", "'", 1, 3, 3}, " wae "},
    {{".", "'", 2, 3, 3}, " it_CH "},
    {{".", ",", 3, 3, 3}, " ee "},
    {{".", "\u060C", 1, 3, 3}, " ks "},
    {{".", "\u2E41", 1, 3, 3}, " ff_Adlm "},
};

/// A listed locale: its name's characters as one number, and the index of its conventions.
/// Compared as numbers when a locale is looked up; made when the library is compiled.
struct Listed {
    std::uint64_t name;
    std::size_t conventions;
};

constexpr std::size_t maxNameLength = sizeof(Listed::name);

/// 0 for names that are longer than any in the list.
constexpr std::uint64_t packed(std::string_view name) noexcept {
    std::uint64_t number = 0;
    // A name is at most eight characters, one for each byte.
    for (const char character : name.substr(0, name.size() <= maxNameLength ? name.size() : 0)) {
        number = number << 8 | static_cast<unsigned char>(character);
    }
    return number;
}

constexpr bool operator<(const Listed& left, const Listed& right) noexcept { return left.name < right.name; }

consteval std::size_t listedCount() {
    std::size_t count = 0;
    for (const Conventions& row : conventions) {
        count += static_cast<std::size_t>(std::count(row.locales.begin(), row.locales.end(), ' ')) - 1;
    }
    return count;
}

/// In ascending order. A name that is too long to be packed does not compile.
consteval std::array<Listed, listedCount()> sortedNames() {
    std::array<Listed, listedCount()> names{};
    std::size_t count = 0;
    for (std::size_t row = 0; row < std::size(conventions); ++row) {
        std::string_view rest = conventions[row].locales.substr(1);
        for (; !rest.empty(); rest.remove_prefix(rest.find(' ') + 1)) {
            names[count] = {packed(rest.substr(0, rest.find(' '))), row};
            if (names[count++].name == 0) {
                // Not a real exception: the compiler stops here.
                throw "a name is too long";
            }
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

constexpr auto listedNames = sortedNames();

/// Null for a locale that has no conventions of its own.
const LocaleNumbers* listed(const std::string& locale) noexcept {
    const Listed wanted{packed(locale), 0};
    const auto found = std::lower_bound(listedNames.begin(), listedNames.end(), wanted);
    return found != listedNames.end() && found->name == wanted.name ? &conventions[found->conventions].numbers
                                                                    : nullptr;
}

bool isLetter(char character) noexcept {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool areAll(bool (*is)(char) noexcept, std::string_view text) noexcept {
    for (const char character : text) {
        if (!is(character)) {
            return false;
        }
    }
    return true;
}

std::string inUpperCase(std::string_view text) {
    std::string result(text);
    for (char& character : result) {
        character = isLetter(character) ? static_cast<char>(character & ~0x20) : character;
    }
    return result;
}

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    for (char& character : result) {
        character = isLetter(character) ? static_cast<char>(character | 0x20) : character;
    }
    return result;
}

/// Removes the part up to the next "-" or "_" from the front.
std::string_view takePart(std::string_view& rest) noexcept {
    const std::size_t end = rest.find_first_of("-_");
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return part;
}

} // namespace

LocaleName localeName(std::string_view identifier) {
    LocaleName name;
    // Encoding and modifier follow the first of these two marks.
    std::string_view rest = identifier.substr(0, identifier.find_first_of(".@"));
    const std::string_view language = takePart(rest);
    // A text that is not an identifier gets the conventions of the root locale.
    if (language.size() < 2 || language.size() > 8 || !areAll(isLetter, language)) {
        return name;
    }
    name.language = inLowerCase(language);
    while (!rest.empty()) {
        const std::string_view part = takePart(rest);
        // The order is language, script, region; what comes later in another place is a variant.
        if (part.size() == 4 && areAll(isLetter, part) && name.script.empty() && name.region.empty()) {
            name.script = inUpperCase(part.substr(0, 1)) + inLowerCase(part.substr(1));
        } else if (name.region.empty() && ((part.size() == 2 && areAll(isLetter, part)) ||
                                           (part.size() == 3 && areAll(isDigit<char>, part)))) {
            name.region = inUpperCase(part);
        } else {
            // A variant. Only the one for programs matters, and nothing that follows does.
            name.isPosix = inUpperCase(part) == "POSIX";
            break;
        }
    }
    return name;
}

const LocaleNumbers& numbersOfLocale(const LocaleName& name) {
    if (name.isPosix) {
        return posixNumbers;
    }
    // From the most specific name to the least; a script may have its own conventions, whatever the region.
    const std::string script = name.script.empty() ? "" : "_" + name.script;
    const std::string region = name.region.empty() ? "" : "_" + name.region;
    for (const std::string& tried :
         {name.language + script + region, name.language + script, name.language + region, name.language}) {
        if (const LocaleNumbers* const found = listed(tried)) {
            return *found;
        }
    }
    return rootNumbers;
}

} // namespace ZQFoundation::detail
