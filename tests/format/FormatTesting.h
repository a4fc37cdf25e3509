// SPDX-License-Identifier: MIT
// Rows of formats with what they give.
#ifndef ZQFOUNDATION_TESTS_FORMAT_FORMATTESTING_H
#define ZQFOUNDATION_TESTS_FORMAT_FORMATTESTING_H

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "foundation/format/Format.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::formattesting {

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
