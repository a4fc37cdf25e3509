// SPDX-License-Identifier: MIT
// Formats whose arguments are known at run time only. Input: a byte for the locale, one for the form of the
// format (UTF-8 or units) and of the texts (ended by a zero or not), the format up to a zero byte, and the
// arguments: a byte for the kind, then the value.
#include <algorithm>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDictionary.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "fuzz/PlainFormat.h"
#include "tests/kit/Texts.h"

using namespace ZQFoundation;
using fuzzing::PlainArgument;

namespace {

constexpr std::size_t maxArguments = 8;

const detail::FormatLocale* localeNumbered(unsigned number) {
    static const detail::FormatLocale locales[] = {
        {",", ".", 3, 0, 1},           {".", ",", 3, 2, 1}, {u"\u066B", u"\u066C", 3, 0, 1},
        {nullptr, u"\u202F", 4, 1, 2}, {"", "", 3, 0, 1},   {"::", "'", 1, 0, 1},
        {",", nullptr, 3, 0, 1},
    };
    return number % 16 < std::size(locales) ? &locales[number % 16] : nullptr;
}

NSObject objectFrom(fuzzing::InputReader& input) {
    switch (input.byte() % 12) {
    case 0:
        return NSNumber(input.number<std::int64_t>());
    case 1:
        return NSNumber(input.number<std::uint64_t>());
    case 2:
        return NSNumber(input.number<double>());
    case 3:
        return NSNumber(input.number<float>());
    case 4:
        return NSNumber(input.byte() % 2 == 0);
    case 5:
        return NSString(input.piece('\0'));
    case 6:
        return NSString(fuzzing::unitsFromBytes(input.piece('\0')));
    case 7:
        return NSArray{NSNumber(input.number<std::int16_t>()), NSString(input.piece('\0'))};
    case 8:
        return NSDictionary{{NSString(input.piece('\0')), NSNumber(input.number<float>())}};
    case 9:
        return NSData::dataWithBytes_length("\1\xFE", 2);
    case 10:
        return NSNull::null();
    default:
        return nullptr;
    }
}

/// A number whose bits are those of a valid one; rarely of the largest or smallest magnitudes, which take
/// long.
long double longRealFrom(fuzzing::InputReader& input) {
    const auto digits = static_cast<long double>(input.number<std::int64_t>());
    const int exponent = input.number<std::int16_t>();
    return std::ldexp(digits, exponent % 64 == 0 ? exponent : exponent % 300);
}

PlainArgument argumentFrom(fuzzing::InputReader& input) {
    using Kind = PlainArgument::Kind;
    PlainArgument argument;
    argument.kind = static_cast<Kind>(input.byte() % 9);
    switch (argument.kind) {
    case Kind::signedInteger:
    case Kind::unsignedInteger:
        argument.integer = input.number<std::int64_t>();
        break;
    case Kind::real:
        argument.real = input.number<double>();
        break;
    case Kind::longReal:
        argument.longReal = longRealFrom(input);
        break;
    case Kind::bytes:
        argument.bytes = input.piece('\0');
        break;
    case Kind::units:
        argument.units = fuzzing::unitsFromBytes(input.piece('\0'));
        break;
    case Kind::object:
        argument.object = objectFrom(input);
        break;
    case Kind::pointer:
        argument.pointer = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(input.byte()));
        break;
    case Kind::nilText:
        break;
    }
    return argument;
}

/// The argument as the library takes it; with `isCString` as a pointer whose text ends at a zero. The value
/// must outlive it.
Argument argumentOf(PlainArgument& value, bool isCString) {
    using Kind = PlainArgument::Kind;
    const char* bytes = value.bytes.c_str();
    const char16_t* units = value.units.c_str();
    switch (value.kind) {
    case Kind::signedInteger:
        return value.integer;
    case Kind::unsignedInteger:
        return static_cast<std::uint64_t>(value.integer);
    case Kind::real:
        return value.real;
    case Kind::longReal:
        return value.longReal;
    case Kind::bytes:
        value.pointer = bytes;
        return isCString ? Argument(bytes) : Argument(StringView(bytes, value.bytes.size()));
    case Kind::units:
        isCString = isCString && value.units.find(u'\0') == value.units.npos;
        value.pointer = units;
        return isCString ? Argument(units) : Argument(StringView(units, value.units.size()));
    case Kind::object:
        return value.object;
    case Kind::pointer:
        return value.pointer;
    case Kind::nilText:
        break;
    }
    return isCString ? Argument(static_cast<const char*>(nullptr)) : Argument(StringView());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzzing::InputReader input(data, size);
    const detail::FormatLocale* locale = localeNumbered(input.byte());
    const unsigned form = input.byte();
    const std::string_view text = input.piece('\0');
    const std::u16string units = form % 2 == 0 ? NSString(text).utf16() : fuzzing::unitsFromBytes(text);
    std::vector<PlainArgument> values;
    while (!input.rest().empty() && values.size() < maxArguments) {
        values.push_back(argumentFrom(input));
    }
    std::vector<Argument> arguments;
    for (PlainArgument& value : values) {
        arguments.push_back(argumentOf(value, form & 2));
    }
    fuzzing::PlainFormat plain(values, locale);
    const std::u16string expected = plain.format(units);
    if (plain.hasGivenUp()) {
        return 0;
    }
    const ArgumentList list(arguments.data(), arguments.size());
    const NSString found =
        form % 2 == 0 ? detail::formatted(text, list, locale) : detail::formatted(units, list, locale);
    if (!found.isEqualToString(expected)) {
        fuzzing::requireEqual(kit::shownUnits(found.utf16()), kit::shownUnits(expected),
                              "a format is carried out as documented");
    }
    return 0;
}
