// SPDX-License-Identifier: MIT
// The numeric conversions against the C library's own, which print the same but for the differences listed
// here:
//
//     a negative NaN     "nan", where the C library may print "-nan"
//     setlocale()        never shows, where the C library takes its decimal point from it
//     %#g                keeps its zeros, as the standard wants, when rounding carries into the style with an
//                        exponent: "%#.2g" of 99.999 is "1.0e+02", where GNU's library prints "1.e+02"
#ifndef ZQFOUNDATION_TESTS_FORMAT_SNPRINTFCOMPARISON_H
#define ZQFOUNDATION_TESTS_FORMAT_SNPRINTFCOMPARISON_H

#include <cfloat>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/format/Format.h"
#include "foundation/objects/TextBuilder.h"

namespace ZQFoundation::formattesting {

/// Counts its comparisons and prints the first differences only, there may be very many.
class Comparison {
public:
    ~Comparison() {
        EXPECT_EQ(differences_, 0U) << "of " << count_ << " comparisons";
        EXPECT_LE(listed_, count_ / 100);
        testing::Test::RecordProperty("comparisons", std::to_string(count_));
    }

    /// The C library's decimal comma, which ours must not have.
    void expectComma() { comma_ = true; }

    template <class Value>
    void compare(const std::string& format, Value value) {
        const int length = std::snprintf(expected_.data(), expected_.size(), format.c_str(), value);
        ASSERT_GE(length, 0);
        ASSERT_LT(static_cast<std::size_t>(length), expected_.size());
        if (comma_) {
            if (char* const comma = std::strchr(expected_.data(), ',')) {
                *comma = '.';
                ++commas_;
            }
        }
        detail::TextBuilder builder;
        const Argument argument(value);
        detail::appendFormat(builder, StringView::ascii(format.data(), format.size()),
                             ArgumentList(&argument, 1));
        ++count_;
        const auto size = static_cast<std::size_t>(length);
        if (!builder.isAscii() || builder.length() != size ||
            std::memcmp(builder.asciiData(), expected_.data(), size) != 0) {
            if (isListed(format)) {
                ++listed_;
            } else if (++differences_ <= 20) {
                ADD_FAILURE() << '"' << format << "\" of " << value << ": \""
                              << std::string(builder.asciiData(), builder.length()) << "\" instead of \""
                              << expected_.data() << '"';
            }
        }
    }

    std::size_t count() const { return count_; }
    std::size_t commas() const { return commas_; }

private:
    /// Whether the C library lost the zeros of "%#g".
    bool isListed(const std::string& format) const {
        const char letter = format.back();
        return (letter == 'g' || letter == 'G') && format.find('#') != std::string::npos &&
               std::strstr(expected_.data(), letter == 'g' ? "1.e+" : "1.E+") != nullptr;
    }

    std::vector<char> expected_ = std::vector<char>(40000);
    std::size_t count_ = 0;
    std::size_t differences_ = 0;
    std::size_t listed_ = 0;
    std::size_t commas_ = 0;
    bool comma_ = false;
};

inline std::vector<std::string> flagCombinations() {
    std::vector<std::string> all;
    for (unsigned mask = 0; mask < 32; ++mask) {
        std::string flags;
        for (unsigned bit = 0; bit < 5; ++bit) {
            if (mask >> bit & 1) {
                flags += "-+ 0#"[bit];
            }
        }
        all.push_back(flags);
    }
    return all;
}

/// "%" with every combination of flags, these widths and these precisions; a length and a letter are to
/// follow.
inline std::vector<std::string> starts(std::initializer_list<const char*> widths,
                                       std::initializer_list<const char*> precisions) {
    std::vector<std::string> all;
    for (const std::string& flags : flagCombinations()) {
        for (const char* const width : widths) {
            for (const char* const precision : precisions) {
                all.push_back("%" + flags + width + precision);
            }
        }
    }
    return all;
}

inline std::vector<double> reals() {
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<double> all = {0.0,   0.5,  1.0, 1.5,   2.5,         0.05,   0.1,
                               0.125, 0.25, 9.5, 9.995, 99.99999999, 123.456};
    all.insert(all.end(), {999999.5, 1234567.0, 0.0001, 0.00009999995, 1e15, 1e16, 123456789012345678.0,
                           9007199254740993.0, 1e22, 1e23, 1e100, 3.3e-100});
    all.insert(all.end(), {DBL_MAX, DBL_MIN, DBL_TRUE_MIN, DBL_MIN / 3, infinity});
    const std::size_t positive = all.size();
    for (std::size_t i = 0; i < positive; ++i) {
        all.push_back(-all[i]);
    }
    all.push_back(std::numeric_limits<double>::quiet_NaN());
    return all;
}

} // namespace ZQFoundation::formattesting

#endif
