// SPDX-License-Identifier: MIT
// User defaults from a command line: the input holds the arguments, each after a zero byte.
#include "foundation/process/CommandLineDefaults.h"
#include "fuzz/InputReader.h"
#include "fuzz/PlainOldStyleReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;

namespace {

/// Bytes that are not UTF-8 become units of U+DC00 plus the byte.
std::u16string unitsOf(std::string_view argument) {
    std::u16string units;
    for (std::size_t at = 0; at < argument.size();) {
        if (const auto character = models::characterAt(argument, at)) {
            models::appendUtf16(units, character->number);
            at += character->length;
        } else {
            units += static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(argument[at]));
            ++at;
        }
    }
    return units;
}

NSObject plainValue(std::string_view argument) {
    constexpr std::u16string_view blanks =
        u"\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A"
        u"\u2028\u2029\u202F\u205F\u3000";
    constexpr std::u16string_view openings = u"{([<\"";
    const std::u16string units = unitsOf(argument);
    std::u16string_view text = units;
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    text = text.substr(0, text.find_last_not_of(blanks) + 1);
    if (!text.empty() && openings.find(text.front()) != openings.npos) {
        detail::PropertyListError error;
        if (const NSObject value = detail::readXml(text.data(), text.size(), error)) {
            return value;
        }
        if (const NSObject value = fuzzing::PlainOldStyleReader(text).read()) {
            return value;
        }
    }
    return NSString(text);
}

NSDictionary plainDefaults(const std::vector<std::string>& arguments) {
    NSMutableDictionary defaults;
    for (std::size_t index = 1; index + 1 < arguments.size(); ++index) {
        const std::string& key = arguments[index];
        if (key.size() > 1 && key[0] == '-' && !arguments[index + 1].starts_with('-')) {
            defaults.setObject_forKey(plainValue(arguments[index + 1]), NSString(unitsOf(key).substr(1)));
            ++index;
        }
    }
    return defaults.dictionary();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> arguments{"program"};
    fuzzing::InputReader input(data, size);
    while (!input.rest().empty()) {
        arguments.emplace_back(input.piece('\0'));
    }
    const NSDictionary defaults = detail::defaultsFromArguments(arguments);
    fuzzing::require(fuzzing::isSame(defaults, plainDefaults(arguments), fuzzing::Kept::everything),
                     "the arguments, read plainly, give the same defaults");
    fuzzing::require(detail::isPropertyListValue(defaults), "defaults can be kept in a file");
    return 0;
}
