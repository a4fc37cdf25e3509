// SPDX-License-Identifier: MIT
// Paths and numbers as text for lines and for JSON.
#include "tools/zqmigrate/Text.h"

#include "foundation/format/NSLocale.h"

namespace ZQFoundation::tools::zqmigrate {

NSString pathOf(const std::string& bytes) {
    return NSString::stringWithFileSystemBytes(bytes.data(), bytes.size());
}

// A path with a surrogate that represents no byte cannot come from the command line.
std::string bytesOf(const NSString& path) {
    std::string bytes;
    return path.getFileSystemBytes(bytes) ? bytes : path.utf8();
}

std::string member(const char* name, const std::string& value) {
    return std::string("\"").append(name).append("\": ").append(value);
}

// Hexadecimal digits only where they are needed, so that programs can ignore them for ordinary names.
std::string memberOfPath(const char* name, const NSString& path) {
    std::string text;
    if (!path || path.getUTF8(text)) {
        return member(name, quoted(path));
    }
    NSMutableString digits;
    for (const char byte : bytesOf(path)) {
        digits.appendFormat("%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    }
    return member(name, quoted(path)) + ", " +
           member((std::string(name) + "Bytes").c_str(), quoted(digits.string()));
}

// Commas in any locale: the program's own texts are English.
std::string grouped(std::uint64_t number) {
    return NSString::initWithFormat_locale("%lu", NSLocale::localeWithLocaleIdentifier("en_US"), number)
        .utf8();
}

} // namespace ZQFoundation::tools::zqmigrate
