// SPDX-License-Identifier: MIT
// Recognizes the form of a property list and has it read.
// No form is announced in a text, so all that can be tried is tried, and the reason reported is the one of
// the form that was probably meant.
#include "foundation/plist/PropertyList.h"

#include <cstring>

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/DecimalText.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/plist/BinaryReader.h"
#include "foundation/plist/FileContents.h"
#include "foundation/plist/OldStyleReader.h"
#include "foundation/plist/TextDecoding.h"
#include "foundation/plist/XmlReader.h"

namespace ZQFoundation::detail {

namespace {

using TextDecoder = bool (*)(const unsigned char*, std::size_t, DecodedText&, PropertyListError&);

// An error without lines has line 0 and is never further.
bool isFurther(const PropertyListError& left, const PropertyListError& right) noexcept {
    return left.line != right.line ? left.line > right.line : left.column > right.column;
}

/// XML first, then old-style: "<0fbd77>" is data. Of two failures, the one further in the text shows what was
/// meant.
template <class Unit>
NSObject readText(const Unit* text, std::size_t count, PropertyListError& error) {
    PropertyListError xmlError;
    if (NSObject value = readXml(text, count, xmlError)) {
        return value;
    }
    if (NSObject value = readOldStyle(text, count, error)) {
        return value;
    }
    if (isFurther(xmlError, error)) {
        error = xmlError;
    }
    return nullptr;
}

NSObject readBytes(const unsigned char* bytes, std::size_t count, TextDecoder decoder,
                   PropertyListError& error) {
    PropertyListError binaryError;
    // Bytes that only look binary may still be a text.
    if (isBinaryPropertyList(bytes, count)) {
        if (NSObject value = readBinary(bytes, count, binaryError)) {
            return value;
        }
    }
    DecodedText text;
    NSObject value;
    if (decoder(bytes, count, text, error)) {
        value = text.utf8 != nullptr ? readText(text.utf8, text.count, error)
                                     : readText(text.units.get(), text.count, error);
    }
    // A file that begins like the binary form was meant as one.
    if (!value && binaryError.message != nullptr) {
        error = binaryError;
    }
    return value;
}

} // namespace

NSObject parsePropertyListText(StringView text, PropertyListError* error) {
    PropertyListError unused;
    PropertyListError& failure = error != nullptr ? *error : unused;
    if (!text) {
        failure = {"There is no text", 1, 1};
        return nullptr;
    }
    // Both readers take ASCII and units; other UTF-8 is converted once, here.
    const AsciiOrUtf16 normalized(text);
    return normalized.isAscii() ? readText(normalized.ascii(), normalized.length(), failure)
                                : readText(normalized.units(), normalized.length(), failure);
}

NSObject parsePropertyListBytes(const unsigned char* bytes, std::size_t count, PropertyListError* error) {
    PropertyListError unused;
    return readBytes(bytes, count, decodeText, error != nullptr ? *error : unused);
}

NSDictionary parseStringsFileBytes(const unsigned char* bytes, std::size_t count, PropertyListError* error) {
    PropertyListError unused;
    PropertyListError& failure = error != nullptr ? *error : unused;
    // The reason for a wrong kind of value is added below.
    const NSObject value = readBytes(bytes, count, decodeStringsText, failure);
    if (value && !NSDictionary(value)) {
        failure = {"A strings table must be a dictionary", 1, 1};
    }
    return NSDictionary(value);
}

NSString describePropertyListError(const PropertyListError& error) {
    if (error.message == nullptr) {
        return nullptr;
    }
    TextBuilder text;
    text.appendAscii(error.message, std::strlen(error.message));
    if (error.line > 0) {
        text.appendLiteral(" (line ");
        appendDecimal(text, static_cast<std::int64_t>(error.line));
        text.appendLiteral(", column ");
    } else {
        text.appendLiteral(" (byte ");
    }
    appendDecimal(text, static_cast<std::int64_t>(error.column));
    text.appendLiteral(")");
    return text.string();
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSObject NSString::propertyList() const {
    if (!*this) {
        return nullptr;
    }
    detail::PropertyListError error;
    NSObject value = detail::parsePropertyListText(*this, &error);
    // A malformed list raises here, because the operation has no other way to report the reason.
    if (!value) {
        throw NSException(NSParseErrorException, detail::describePropertyListError(error));
    }
    return value;
}

NSDictionary NSString::propertyListFromStringsFileFormat() const {
    // Unlike the operation above, this one returns nil.
    return NSDictionary(detail::parsePropertyListText(*this, nullptr));
}

NSDictionary NSDictionary::dictionaryWithContentsOfFile(StringView path) {
    detail::FileContents contents;
    if (!detail::readFile(path, contents)) {
        return nullptr;
    }
    return NSDictionary(detail::parsePropertyListBytes(contents.bytes.get(), contents.count, nullptr));
}

} // namespace ZQFoundation
