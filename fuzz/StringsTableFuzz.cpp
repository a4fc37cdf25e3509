// SPDX-License-Identifier: MIT
// The files of localized texts: the encoding of the bytes, then any of the forms of the text.
#include "foundation/plist/TextDecoding.h"
#include "fuzz/PlainBinaryReader.h"
#include "fuzz/PlainOldStyleReader.h"
#include "fuzz/PropertyLists.h"

using namespace ZQFoundation;
using namespace std::string_view_literals;

namespace {

using Text = std::optional<std::u16string>;

/// Nothing for an ill-formed text, too.
Text widened(std::string_view bytes, unsigned size, bool isLittle) {
    Text units = models::unitsOfWide(bytes, size, isLittle);
    return units && models::wellFormedUtf8(*units) ? units : std::nullopt;
}

/// An encoding that an XML declaration names is left to the library; the harness for XML checks it.
Text declared(std::string_view bytes) {
    detail::DecodedText text;
    detail::PropertyListError error;
    if (!detail::decodeText(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), text,
                            error)) {
        return std::nullopt;
    }
    return text.utf8 != nullptr ? models::wellFormedUtf16({text.utf8, text.count})
                                : Text(std::u16string(text.units.get(), text.count));
}

Text decoded(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) {
        return widened(bytes.substr(4), 4, true);
    }
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) {
        return widened(bytes.substr(4), 4, false);
    }
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) {
        return models::wellFormedUtf16(bytes.substr(3));
    }
    if (bytes.starts_with("\xFF\xFE"sv)) {
        return widened(bytes.substr(2), 2, true);
    }
    if (bytes.starts_with("\xFE\xFF"sv)) {
        return widened(bytes.substr(2), 2, false);
    }
    const bool isXml = bytes.starts_with("<?xml"sv);
    const bool isEven = bytes.size() % 2 == 0 && !bytes.empty();
    const bool isWide = bytes.find('\0') != bytes.npos || (!isXml && !models::wellFormedUtf16(bytes));
    if (isEven && isWide) {
        return widened(bytes, 2, bytes[1] == '\0');
    }
    return isXml ? declared(bytes) : models::wellFormedUtf16(bytes);
}

NSDictionary plainTable(std::string_view bytes) {
    detail::PropertyListError error;
    const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
    if (bytes.starts_with("bplist0")) {
        const bool isRead = static_cast<bool>(detail::readBinary(start, bytes.size(), error));
        if (isRead || !fuzzing::isLimitOnObjects(error.message)) {
            if (const NSObject value = fuzzing::PlainBinaryReader(bytes).read()) {
                return NSDictionary(value);
            }
        }
    }
    const Text text = decoded(bytes);
    if (!text) {
        return nullptr;
    }
    const kit::Exact<char16_t> exact{std::u16string_view(*text)};
    if (const NSObject value = detail::readXml(exact.data(), exact.size(), error)) {
        return NSDictionary(value);
    }
    return NSDictionary(fuzzing::PlainOldStyleReader(*text).read());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    detail::PropertyListError error;
    const NSDictionary table = detail::parseStringsFileBytes(data, size, &error);
    fuzzing::requireSameShared(table, plainTable(bytes), "the table, read plainly, is the same");
    fuzzing::require(static_cast<bool>(detail::describePropertyListError(error)) ==
                         (error.message != nullptr),
                     "a failure can be told");
    fuzzing::require(table || error.message != nullptr, "failure has a reason");
    return 0;
}
