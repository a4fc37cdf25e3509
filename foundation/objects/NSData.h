// SPDX-License-Identifier: MIT
// Declares NSData, immutable bytes.
#ifndef ZQFOUNDATION_OBJECTS_NSDATA_H
#define ZQFOUNDATION_OBJECTS_NSDATA_H

#include "NSString.h"

namespace ZQFoundation {

/// Immutable bytes.
class ZQFOUNDATION_EXPORT NSData : public NSObject {
public:
    constexpr NSData() noexcept = default;
    constexpr NSData(std::nullptr_t) noexcept {}

    /// The data that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSData> T>
    NSData(const T& object) : NSData(detail::convertedObject(object)) {}

    /// The value if it is data, else nil.
    explicit NSData(const NSObject& object) noexcept : NSObject(object, detail::Kind::data) {}

    /// Data without bytes; not nil.
    static NSData data();

    /// A copy of `count` bytes.
    static NSData dataWithBytes_length(const void* bytes, std::size_t count);

    /// The contents of the file; nil if it cannot be read.
    static NSData dataWithContentsOfFile(StringView path);

    /// The first byte; valid as long as a handle holds the data. Null for nil.
    const unsigned char* bytes() const noexcept;

    /// The number of bytes; 0 for nil.
    std::size_t length() const noexcept;

    /// The same as `length`, for templates that expect containers.
    std::size_t size() const noexcept { return length(); }

    /// The bytes, for `for` loops; valid as long as a handle holds the data.
    const unsigned char* begin() const noexcept { return bytes(); }

    /// The end of the bytes, for `for` loops.
    const unsigned char* end() const noexcept { return bytes() + length(); }

    /// Whether both hold the same bytes. False if either is nil.
    bool isEqualToData(const NSData& other) const noexcept;

    /// @name NSData(Base64)
    /// @{

    /// The bytes that a Base64 text encodes, by the rules of `NewBase64Decode`. Empty for nil, for a text
    /// with a character that is not ASCII, and for one without any character of the alphabet.
    ///
    ///     NSData::dataFromBase64String("aGVsbG8=");  // the bytes of "hello"
    static NSData dataFromBase64String(const NSString& text);

    /// The Base64 text in lines of 64 characters with CR LF between them. Nil for nil.
    NSString base64EncodedStringInSeparateLines() const;

    /// The Base64 text in one line. Nil for nil.
    ///
    ///     NSData::dataWithBytes_length("\x01\xff", 2).base64EncodedStringInSingleLine();  // "Af8="
    NSString base64EncodedStringInSingleLine() const;

    /// @}

private:
    friend struct detail::Access;
    explicit NSData(Payload payload) noexcept : NSObject(payload, detail::Kind::data) {}
};

} // namespace ZQFoundation

#endif
