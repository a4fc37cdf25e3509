// SPDX-License-Identifier: MIT
// The digits of reals of every magnitude, against the C library.
#include "foundation/format/FormatDecimal.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <random>

#include "tests/format/SnprintfComparison.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

/// Numbers of every magnitude, and those next to a power of ten or halfway between two short decimals.
std::vector<double> manyReals() {
    std::vector<double> all;
    for (int exponent = DBL_MIN_EXP - DBL_MANT_DIG; exponent < DBL_MAX_EXP; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        all.insert(all.end(), {power, std::nextafter(power, 0.0), power * 1.3333333333333333});
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        all.insert(all.end(),
                   {power, std::nextafter(power, 0.0), std::nextafter(power, DBL_MAX), power * 9.5});
    }
    for (int i = 0; i < 2000; ++i) {
        all.insert(all.end(), {i / 8.0, i / 1000.0, i * 1.005, i + 0.5, i * 12345.0 / 64.0});
    }
    std::mt19937_64 random(20010101); // always the same numbers
    while (all.size() < 25000) {
        double value;
        const std::uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            all.push_back(value);
        }
    }
    return all;
}

TEST(FormatDecimal, realsOfEveryMagnitude) {
    Comparison comparison;
    const std::vector<double> values = manyReals();
    for (const char* const precision :
         {"", ".0", ".1", ".2", ".3", ".6", ".15", ".16", ".17", ".18", ".19", ".20", ".30"}) {
        for (const char letter : {'e', 'f', 'g', 'a'}) {
            for (const double value : values) {
                comparison.compare(std::string("%") + precision + letter, value);
            }
        }
    }
    EXPECT_GE(comparison.count(), 1000000U);
}

TEST(FormatDecimal, allDigitsOfTheLongestNumbers) {
    Comparison comparison;
    for (const char letter : {'e', 'f', 'g'}) {
        for (const char* const precision : {".308", ".767", ".1074", ".1100", ".3000"}) {
            for (const double value : reals()) {
                comparison.compare(std::string("%#") + precision + letter, value);
                comparison.compare(std::string("%") + precision + letter, value);
            }
        }
    }
}

} // namespace
