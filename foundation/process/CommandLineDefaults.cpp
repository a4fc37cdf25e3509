// SPDX-License-Identifier: MIT
#include "foundation/process/CommandLineDefaults.h"

#include "foundation/objects/NSException.h"

namespace ZQFoundation::detail {

namespace {

bool isBlank(char16_t unit) noexcept {
    switch (unit) {
    case 0x0020:
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return (unit >= 0x0009 && unit <= 0x000D) || (unit >= 0x2000 && unit <= 0x200A);
    }
}

NSString trimmed(const NSString& text) {
    std::size_t start = 0;
    std::size_t end = text.length();
    while (start < end && isBlank(text.characterAtIndex(start))) {
        ++start;
    }
    while (end > start && isBlank(text.characterAtIndex(end - 1))) {
        --end;
    }
    return text.substringWithRange(start, end - start);
}

bool mayBePropertyList(const NSString& text) {
    if (text.length() == 0) {
        return false;
    }
    switch (text.characterAtIndex(0)) {
    case '{':
    case '(':
    case '[':
    case '<':
    case '"':
        return true;
    default:
        return false;
    }
}

NSObject valueOfArgument(const std::string& argument) {
    const NSString text = trimmed(NSString::stringWithFileSystemBytes(argument.data(), argument.size()));
    if (mayBePropertyList(text)) {
        try {
            if (NSObject parsed = text.propertyList()) {
                return parsed;
            }
        } catch (const NSException&) {
            return text; // a text that only looks like a property list is meant as it stands
        }
    }
    return text;
}

bool startsWithHyphen(const std::string& argument) noexcept {
    return !argument.empty() && argument.front() == '-';
}

} // namespace

NSDictionary defaultsFromArguments(const std::vector<std::string>& arguments) {
    NSMutableDictionary result;
    std::size_t index = 1;
    while (index + 1 < arguments.size()) {
        const std::string& key = arguments[index];
        const std::string& value = arguments[index + 1];
        if (startsWithHyphen(key) && key.size() > 1 && !startsWithHyphen(value)) {
            result.setObject_forKey(valueOfArgument(value),
                                    NSString::stringWithFileSystemBytes(key.data() + 1, key.size() - 1));
            index += 2;
        } else {
            ++index;
        }
    }
    return result.dictionary();
}

} // namespace ZQFoundation::detail
