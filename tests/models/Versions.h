// SPDX-License-Identifier: MIT
// The comparisons of versions, which cut both texts into tokens before they compare them.
#ifndef ZQFOUNDATION_TESTS_MODELS_VERSIONS_H
#define ZQFOUNDATION_TESTS_MODELS_VERSIONS_H

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/objects/NSCharacterSet.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::models {

enum VersionClass { digitClass = 0, otherClass = 1, periodClass = 2 };

using VersionTokens = std::vector<std::u16string>;

inline VersionClass classOfToken(std::u16string_view token) {
    if (token == u".") {
        return periodClass;
    }
    return NSCharacterSet::decimalDigitCharacterSet().characterIsMember(token[0]) ? digitClass : otherClass;
}

inline VersionTokens versionTokens(std::u16string_view version) {
    VersionTokens tokens;
    VersionClass last = periodClass;
    for (const char16_t unit : version) {
        const VersionClass unitClass = classOfToken({&unit, 1});
        if (unitClass != periodClass && last == unitClass) {
            tokens.back() += unit;
        } else {
            tokens.emplace_back(1, unit);
        }
        last = unitClass;
    }
    return tokens;
}

/// The ASCII digits at the front, up to the greatest 32-bit integer.
inline long numberOfToken(std::u16string_view token) {
    long value = 0;
    for (std::size_t i = 0; i < token.size() && token[i] >= u'0' && token[i] <= u'9'; ++i) {
        value = std::min(value * 10 + (token[i] - u'0'), 2147483647L);
    }
    return value;
}

inline int orderOfNumbers(long left, long right) { return left < right ? -1 : left > right ? 1 : 0; }

/// 0 when the tokens do not decide.
inline int orderOfTokens(const std::u16string& left, const std::u16string& right) {
    const VersionClass leftClass = classOfToken(left);
    const VersionClass rightClass = classOfToken(right);
    if (leftClass != rightClass) {
        const auto rank = [](VersionClass tokenClass) {
            return tokenClass == otherClass ? 0 : tokenClass == periodClass ? 1 : 2;
        };
        return orderOfNumbers(rank(leftClass), rank(rightClass));
    }
    if (leftClass == digitClass) {
        return orderOfNumbers(numberOfToken(left), numberOfToken(right));
    }
    return leftClass == otherClass ? NSString(left).compare(NSString(right)) : 0;
}

inline int orderOfVersions(std::u16string_view leftVersion, std::u16string_view rightVersion) {
    const VersionTokens left = versionTokens(leftVersion);
    const VersionTokens right = versionTokens(rightVersion);
    for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
        if (const int order = orderOfTokens(left[i], right[i]); order != 0) {
            return order;
        }
    }
    const auto orderOfSurplus = [](const std::u16string& token) {
        return classOfToken(token) == otherClass ? -1 : 1;
    };
    if (left.size() > right.size()) {
        return orderOfSurplus(left[right.size()]);
    }
    return right.size() > left.size() ? -orderOfSurplus(right[left.size()]) : 0;
}

/// The versions are not empty.
inline int orderOfVersionsWithPlus(std::u16string left, std::u16string right) {
    for (std::u16string* const version : {&left, &right}) {
        if (version->back() == u'+') {
            version->pop_back();
            *version += u".0";
        }
    }
    return orderOfVersions(left, right);
}

inline int orderOfMajorVersions(std::u16string left, std::u16string right) {
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
    return orderOfVersions(left, right);
}

} // namespace ZQFoundation::models

#endif
