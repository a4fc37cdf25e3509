// SPDX-License-Identifier: MIT
// The comparisons of versions against ones that cut both texts into tokens first and then look at them.
//
// Input: a byte of switches (1 texts are handed over as UTF-8 and not as units, the next ones choose the
// comparison), then two versions with a line feed between them (see InputReader for their units).
#include <string>
#include <vector>

#include "foundation/objects/NSCharacterSet.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "version/ZQVersionComparator.h"

using namespace ZQFoundation;
using fuzzing::require;

namespace {

enum Class { digit = 0, other = 1, period = 2 };

/// Pieces of a text that somebody keeps.
using Tokens = std::vector<std::u16string_view>;

Class classOf(std::u16string_view token) {
    if (token == u".") {
        return period;
    }
    return NSCharacterSet::decimalDigitCharacterSet().characterIsMember(token[0]) ? digit : other;
}

Tokens slowTokens(std::u16string_view version) {
    Tokens tokens;
    Class last = period;
    for (std::size_t i = 0; i < version.size(); ++i) {
        const Class unitClass = classOf(version.substr(i, 1));
        if (unitClass != period && last == unitClass) {
            tokens.back() = {tokens.back().data(), tokens.back().size() + 1};
        } else {
            tokens.push_back(version.substr(i, 1));
        }
        last = unitClass;
    }
    return tokens;
}

int slowNumber(std::u16string_view token) {
    long value = 0;
    for (std::size_t i = 0; i < token.size() && token[i] >= u'0' && token[i] <= u'9'; ++i) {
        value = std::min(value * 10 + (token[i] - u'0'), 2147483647L);
    }
    return static_cast<int>(value);
}

int signOf(long value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

NSString stringOf(std::u16string_view units) {
    return NSString::stringWithCharacters_length(units.data(), units.size());
}

/// Of the whole texts' first token that is left over.
int orderOfSurplus(std::u16string_view token) { return classOf(token) == other ? -1 : 1; }

int slowOrderOfTokens(std::u16string_view left, std::u16string_view right) {
    const Class leftClass = classOf(left);
    const Class rightClass = classOf(right);
    if (leftClass != rightClass) {
        const auto rank = [](Class tokenClass) {
            return tokenClass == other ? 0 : tokenClass == period ? 1 : 2;
        };
        return signOf(rank(leftClass) - rank(rightClass));
    }
    if (leftClass == digit) {
        return signOf(static_cast<long>(slowNumber(left)) - slowNumber(right));
    }
    return leftClass == other ? stringOf(left).compare(stringOf(right)) : 0;
}

int slowOrder(std::u16string_view leftText, std::u16string_view rightText) {
    const Tokens left = slowTokens(leftText);
    const Tokens right = slowTokens(rightText);
    for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
        if (const int order = slowOrderOfTokens(left[i], right[i]); order != 0) {
            return order;
        }
    }
    if (left.size() > right.size()) {
        return orderOfSurplus(left[right.size()]);
    }
    return right.size() > left.size() ? -orderOfSurplus(right[left.size()]) : 0;
}

std::u16string withoutPlus(std::u16string_view text) {
    return text.back() == u'+' ? std::u16string(text.substr(0, text.size() - 1)).append(u".0")
                               : std::u16string(text);
}

int slowMajorOrder(std::u16string left, std::u16string right) {
    const auto periods = [](const std::u16string& text) {
        return std::count(text.begin(), text.end(), u'.');
    };
    const auto cut = [](std::u16string& text) {
        text.resize(std::min(text.rfind(u'.'), text.size()));
    };
    if (periods(left) == periods(right)) {
        cut(left);
        cut(right);
    }
    while (periods(left) > periods(right)) {
        cut(left);
    }
    while (periods(right) > periods(left)) {
        cut(right);
    }
    return slowOrder(left, right);
}

void checkTokens(std::u16string_view units, StringView version) {
    const Tokens expected = slowTokens(units);
    const NSMutableArray tokens = ZQVersionComparator::splitVersionString(version);
    require(tokens.count() == expected.size(), "number of tokens");
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const NSString token(tokens.objectAtIndex(i));
        require(token.utf16() == expected[i], "token");
        require(ZQVersionComparator::typeOfCharacter(token) == classOf(expected[i]), "class of a token");
    }
}

struct Versions {
    std::u16string leftUnits;
    std::u16string rightUnits;
    StringView left;
    StringView right;
};

void checkOrder(const Versions& versions) {
    const int order = slowOrder(versions.leftUnits, versions.rightUnits);
    require(ZQVersionComparator::compareVersion_toVersion(versions.left, versions.right) == order, "order");
    require(ZQVersionComparator::compareVersion_toVersion(versions.right, versions.left) == -order,
            "order the other way round");
}

void checkOneRule(unsigned rule, const Versions& versions) {
    switch (rule % 4) {
    case 0:
        checkTokens(versions.leftUnits, versions.left);
        break;
    case 1:
        require(ZQVersionComparator::compareMajorVersion_toMajorVersion(versions.left, versions.right) ==
                    slowMajorOrder(versions.leftUnits, versions.rightUnits),
                "order of major versions");
        break;
    case 2:
        if (!versions.leftUnits.empty() && !versions.rightUnits.empty()) {
            require(ZQVersionComparator::compareVersionWithPlus_toVersionWithPlus(versions.left,
                                                                                  versions.right) ==
                        slowOrder(withoutPlus(versions.leftUnits), withoutPlus(versions.rightUnits)),
                    "order of versions with a plus");
        }
        break;
    default:
        checkOrder(versions);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    const unsigned switches = input.byte();
    Versions versions{
        fuzzing::unitsFromBytes(input.piece('\n')), fuzzing::unitsFromBytes(input.rest()), {}, {}};
    std::string leftBytes;
    std::string rightBytes;
    if ((switches & 1U) != 0) { // unpaired surrogates turn into others
        leftBytes = stringOf(versions.leftUnits).utf8();
        rightBytes = stringOf(versions.rightUnits).utf8();
        versions.leftUnits = NSString(leftBytes).utf16();
        versions.rightUnits = NSString(rightBytes).utf16();
        versions.left = leftBytes;
        versions.right = rightBytes;
    } else {
        versions.left = versions.leftUnits;
        versions.right = versions.rightUnits;
    }
    checkOneRule(switches >> 1U, versions);
    return 0;
}
