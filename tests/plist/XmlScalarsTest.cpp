// SPDX-License-Identifier: MIT
// Reading the numbers, dates and data of property lists in XML.
#include "foundation/plist/XmlScalars.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"
#include "tests/models/Base64.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

/// Reads bytes and units, which must agree.
template <class Reader>
std::string readBoth(Reader reader, std::string_view text) {
    const Exact<char> bytes(text);
    const std::u16string wide(text.begin(), text.end());
    const Exact<char16_t> units{std::u16string_view(wide)};
    NSObject fromBytes;
    NSObject fromUnits;
    const auto first = reader(bytes.data(), bytes.size(), fromBytes);
    const auto second = reader(units.data(), units.size(), fromUnits);
    EXPECT_EQ(first, second) << text;
    EXPECT_EQ(show(fromBytes), show(fromUnits)) << text;
    return show(fromBytes);
}

#define ZQ_READ_BOTH(function, text)                                                                         \
    readBoth(                                                                                                \
        [](const auto* start, std::size_t count, NSObject& out) { return function(start, count, out); },     \
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

TEST(XmlScalars, readsDataOfEveryLengthBrokenAnywhere) {
    std::string bytes;
    for (int length = 0; length < 120; ++length, bytes += static_cast<char>(length * 37)) {
        std::string text = models::base64Encoded(bytes, false);
        const std::string expected = show(NSData::dataWithBytes_length(bytes.data(), bytes.size()));
        EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlData, text), expected);
        for (std::size_t place = 0; place < text.size(); place += 1 + place % 7) {
            text.insert(place, 1, "\n\t -*"[place % 5]);
        }
        EXPECT_EQ(ZQ_READ_BOTH(detail::readXmlData, text), expected) << text;
    }
}

} // namespace
