// SPDX-License-Identifier: MIT
// Rows of formats with what they give, and numbers that are formatted with a locale.
#ifndef ZQFOUNDATION_TESTS_FORMAT_FORMATTESTING_H
#define ZQFOUNDATION_TESTS_FORMAT_FORMATTESTING_H

#include <initializer_list>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "foundation/format/Format.h"
#include "foundation/format/NSLocale.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Values.h"

namespace ZQFoundation::formattesting {

using kit::Described;

inline const char* const nullText = nullptr;

/// Formats with a format that the compiler does not check, so that misfits get through.
template <class... Arguments>
std::string unchecked(StringView format, const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    return NSString::stringWithFormat_arguments(format, packed.list()).utf8();
}

template <class... Arguments>
std::string withLocale(const detail::FormatLocale& locale, StringView format, const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    return detail::formatted(format, packed.list(), &locale).utf8();
}

inline std::string text(const NSString& string) { return string.utf8(); }

inline NSLocale locale(const std::string& identifier) {
    return NSLocale::localeWithLocaleIdentifier(identifier);
}

template <class... Arguments>
std::string formatted(const NSLocale& locale, FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
    return NSString::initWithFormat_locale(format, locale, arguments...).utf8();
}

/// With "_" for the no-break space and "~" for the narrow one.
inline std::string visible(std::string text) {
    for (const auto& [space, mark] : {std::pair{"\u00A0", "_"}, std::pair{"\u202F", "~"}}) {
        const std::string wanted = space;
        for (std::size_t at = 0; (at = text.find(wanted)) != std::string::npos;) {
            text.replace(at, wanted.size(), mark);
        }
    }
    return text;
}

struct Row {
    const char* format;
    std::string result;
    const char* expected;
};

inline void expectRows(std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.result, row.expected) << row.format;
    }
}

#define ROW(format, expected, ...)                                                                           \
    Row { format, unchecked(format __VA_OPT__(, ) __VA_ARGS__), expected }

} // namespace ZQFoundation::formattesting

#endif
