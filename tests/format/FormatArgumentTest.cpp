// SPDX-License-Identifier: MIT
// What arguments are for conversions of another type.
#include "foundation/format/FormatArgument.h"

#include <cmath>
#include <string>

#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSObjectProtocol.h"
#include "tests/format/FormatTesting.h"

using namespace ZQFoundation;
using namespace formattesting;

namespace {

class Stamped {
public:
    virtual ~Stamped() = default;
    int stamp = 0;
};

class StampedParcel : public Stamped, public NSObjectProtocol {};

enum class Color : unsigned char { red = 7 };
enum Old { oldest = -3 };

std::string hexadecimal(const void* pointer) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(pointer)));
    return buffer;
}

TEST(FormatArgument, pointers) {
    const int value = 0;
    const Described parcel("x");
    const StampedParcel stamped;
    expectRows({
        ROW("%p", "0x0", static_cast<void*>(nullptr)),
        ROW("%p", "0x0", nullptr),
        ROW("%8p|%-8p|%08p|", "     0x0|0x0     |     0x0|", nullptr, nullptr, nullptr),
        ROW("%p", "0xff", reinterpret_cast<const void*>(255)),
        ROW("%p", hexadecimal(&value).c_str(), &value),
        ROW("%p", hexadecimal(&parcel).c_str(), &parcel),
        // The address as the caller knows it, not that of the part inside.
        ROW("%p", hexadecimal(&stamped).c_str(), &stamped),
        ROW("%p", hexadecimal(nullText).c_str(), nullText),
    });
    const char* const bytes = "bytes";
    volatile int changing = 0;
    EXPECT_EQ(text(NSString::stringWithFormat("%p", bytes)), hexadecimal(bytes));
    EXPECT_EQ(text(NSString::stringWithFormat("%p", &changing)), hexadecimal(const_cast<int*>(&changing)));
    EXPECT_EQ(text(NSString::stringWithFormat("%p", &hexadecimal)),
              hexadecimal(reinterpret_cast<const void*>(&hexadecimal)));
}

TEST(FormatArgument, integersOfEveryKindServe) {
    EXPECT_EQ(text(NSString::stringWithFormat("%d %d %d %u %x %c", true, Color::red, oldest, Color::red,
                                              static_cast<short>(16), 'c')),
              "1 7 -3 7 10 c");
    struct Bits {
        unsigned three : 3;
    };
    const Bits bits{5};
    EXPECT_EQ(text(NSString::stringWithFormat("%u", bits.three + 0)), "5");
}

TEST(FormatArgument, misfitsHaveADefinedResult) {
    const Described parcel("parcel");
    expectRows({
        ROW("%d", "0"),
        ROW("%d %d", "1 0", 1),
        ROW("%f %g %a", "0.000000 0 0x0p+0"),
        ROW("%@ %s %S %p", "(null) (null) (null) 0x0"),
        ROW("%*d", "0"),
        ROW("%d %d", "2 -2", 2.9, -2.9),
        ROW("%ld %ld", "9223372036854775807 -9223372036854775808", 1e300, -1e300),
        ROW("%lu %lu", "10000000000000000000 18446744073709551615", 1e19, 1e30),
        ROW("%d", "0", std::nan("")),
        ROW("%d", "1410065408", 1e10),
        ROW("%d", "3", 3.5L),
        ROW("%f %.0f", "5.000000 18446744073709551616", 5, UINT64_MAX),
        ROW("%Lf", "5.000000", 5),
        ROW("%d %f %s", "0 0.000000 (null)", "text", "text", 5),
        ROW("%d %f", "0 0.000000", NSString("12"), NSString("12")),
        ROW("%d %f %.1f", "5 5.000000 0.5", NSNumber(5), NSNumber(5), NSNumber(0.5)),
        ROW("%d %lu", "2 18446744073709551615", NSNumber(2.5), NSNumber(UINT64_MAX)),
        ROW("%s %S", "(null) (null)", 5, 5.5),
        ROW("%s %S", "(null) (null)", static_cast<const void*>(&parcel), static_cast<const void*>(&parcel)),
        ROW("%s %S %6s|", "5 5      5|", NSNumber(5), NSNumber(5), NSNumber(5)),
        ROW("%s %S", "parcel parcel", parcel, &parcel),
        ROW("%d %f", "0 0.000000", &parcel, &parcel),
        ROW("%@ %@ %@ %@", "5 18446744073709551615 0.5 0.25", 5, UINT64_MAX, 0.5, 0.25L),
        ROW("%@", "0xff", reinterpret_cast<void*>(255)),
        ROW("%20@", "0xff", reinterpret_cast<void*>(255)),
        ROW("%p %p %p", "0xff 0x0 0x0", 255, 0.5, NSNumber(5)),
        ROW("%p %p", "0x0 0x0", NSObject(), NSString()),
        ROW("%*d", "5", "x", 5),
        ROW("%*d|", "5|", 2.5, 5),
        ROW("%d", "1", 1, 2, 3),
    });
}

} // namespace
