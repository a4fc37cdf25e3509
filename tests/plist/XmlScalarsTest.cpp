// SPDX-License-Identifier: MIT
// Reading the numbers, dates and data of property lists in XML.
#include "foundation/plist/XmlScalars.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

/// Reads bytes and units, which must agree.
template <class ReadBytes, class ReadUnits>
std::string readBoth(ReadBytes readBytes, ReadUnits readUnits, std::string_view text) {
    const Exact<char> bytes(text);
    const std::u16string wide(text.begin(), text.end());
    const Exact<char16_t> units{std::u16string_view(wide)};
    NSObject fromBytes;
    NSObject fromUnits;
    const auto first = readBytes(bytes.data(), bytes.size(), fromBytes);
    const auto second = readUnits(units.data(), units.size(), fromUnits);
    EXPECT_EQ(first, second) << text;
    EXPECT_EQ(show(fromBytes), show(fromUnits)) << text;
    return show(fromBytes);
}

#define ZQ_READ_BOTH(function, text)                                                                         \
    readBoth(                                                                                                \
        [](const char* start, std::size_t count, NSObject& out) { return function(start, count, out); },     \
        [](const char16_t* start, std::size_t count, NSObject& out) { return function(start, count, out); }, \
        text)

TEST(XmlScalars, distinguishesMalformedIntegersFromLargeOnes) {
    NSObject value;
    EXPECT_EQ(detail::readXmlInteger("1", 1, value), detail::IntegerReading::good);
    EXPECT_EQ(detail::readXmlInteger("x", 1, value), detail::IntegerReading::malformed);
    EXPECT_EQ(detail::readXmlInteger("99999999999999999999x", 21, value), detail::IntegerReading::malformed);
    EXPECT_EQ(detail::readXmlInteger("99999999999999999999", 20, value), detail::IntegerReading::outOfRange);
    EXPECT_EQ(show(value), "1") << "a failure leaves the value alone";
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlInteger, " -0x1f"), "-31");
}

TEST(XmlScalars, readsBytesAndUnitsAlike) {
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlReal, " -Inf"), "r-inf");
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlReal, "1.5x"), "nil");
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlDate, "2001-01-02T00:00:01Z"), "d86401");
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlDate, "2001-01-02"), "nil");
    EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlData, "A Q\nI="), "<0102>");
}

std::string base64(const std::string& bytes) {
    constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    unsigned bits = 0;
    int have = 0;
    for (const char byte : bytes) {
        bits = bits << 8 | static_cast<unsigned char>(byte);
        for (have += 8; have >= 6; have -= 6) {
            text += alphabet[bits >> (have - 6) & 63];
        }
    }
    if (have > 0) {
        text += alphabet[bits << (6 - have) & 63];
    }
    text.append((4 - text.size() % 4) % 4, '=');
    return text;
}

TEST(XmlScalars, readsDataOfEveryLengthBrokenAnywhere) {
    ValueMaker maker(1);
    for (std::size_t length = 0; length < 120; ++length) {
        std::string bytes;
        for (std::size_t index = 0; index < length; ++index) {
            bytes += static_cast<char>(maker.pick(256));
        }
        std::string text = base64(bytes);
        const std::string expected = show(NSData::dataWithBytes_length(bytes.data(), bytes.size()));
        EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlData, text), expected);
        for (unsigned breaks = maker.pick(20); breaks > 0; --breaks) {
            text.insert(maker.pick(static_cast<unsigned>(text.size() + 1)), 1, "\n\t -*"[maker.pick(5)]);
        }
        EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlData, text), expected) << text;
    }
}

} // namespace
