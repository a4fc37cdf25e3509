// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSSTRING_H
#define ZQFOUNDATION_OBJECTS_NSSTRING_H

#include "../text/FormatString.h"
#include "NSObject.h"

namespace ZQFoundation {

/// An immutable sequence of UTF-16 code units. Lengths, indexes and characters count units; an unpaired
/// surrogate and U+0000 are units like any other.
class ZQFOUNDATION_EXPORT NSString : public NSObject {
public:
    constexpr NSString() noexcept = default;
    constexpr NSString(std::nullptr_t) noexcept {}

    /// A copy of the text; nil for a nil text. Ill-formed UTF-8 becomes U+FFFD.
    template <detail::PlainText T>
    NSString(const T& text) : NSString(fromText(StringView(text))) {}

    /// The value when it is a string, else nil.
    explicit NSString(const NSObject& object) noexcept : NSObject(object, detail::Kind::string) {}

    static NSString string();

    /// Exact: nil when the bytes are not well-formed UTF-8.
    static NSString stringWithUTF8Bytes(const char* bytes, std::size_t byteCount);

    /// A copy of the units as they are; unpaired surrogates are kept.
    static NSString stringWithCharacters_length(const char16_t* units, std::size_t unitCount);

    /// The text of a file name: bytes that are not well-formed UTF-8 become the units U+DC00 + byte.
    static NSString stringWithFileSystemBytes(const char* bytes, std::size_t byteCount);

    /// Formats without a locale. Nil format: raises NSInvalidArgumentException.
    template <class... Arguments>
    static NSString stringWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                     const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return stringWithFormat_arguments(format.text(), packed.list());
    }

    /// The same for a started argument list.
    static NSString stringWithFormat_arguments(StringView format, ArgumentList arguments);

    /// Units.
    std::size_t length() const noexcept;

    /// The unit at `index`; raises NSRangeException from the length on.
    char16_t characterAtIndex(std::size_t index) const;

    /// Copies `count` units from `start` on to `out`; raises NSRangeException beyond the end.
    void getCharacters(char16_t* out, std::size_t start, std::size_t count) const;

    /// The UTF-8 form; unpaired surrogates as U+FFFD; empty for nil.
    std::string utf8() const;

    /// The exact UTF-8 form, or false (and `out` untouched) when an unpaired surrogate has none.
    bool getUTF8(std::string& out) const;

    /// The bytes of the text as a file name, the inverse of `stringWithFileSystemBytes`; false for nil,
    /// U+0000 and surrogates that stand for no byte.
    bool getFileSystemBytes(std::string& out) const;

    /// The units, for ordinary C++ code.
    std::u16string utf16() const;

    /// Exact comparison of units. False when either is nil.
    bool isEqualToString(StringView other) const;

    /// Canonically equivalent texts are the same; otherwise by units, a prefix first. Nil other: the same as
    /// empty.
    NSComparisonResult compare(StringView other) const;

    /// Both folded to lower case, then by code point.
    NSComparisonResult caseInsensitiveCompare(StringView other) const;

    /// By units; false for an empty or nil argument.
    bool hasPrefix(StringView prefix) const;
    bool hasSuffix(StringView suffix) const;

    /// Full mapping, not bound to a locale: U+00DF becomes "SS".
    NSString uppercaseString() const;
    NSString lowercaseString() const;

    /// Raise NSRangeException beyond the length.
    NSString substringToIndex(std::size_t index) const;
    NSString substringFromIndex(std::size_t index) const;
    NSString substringWithRange(std::size_t location, std::size_t count) const;

    NSString stringByAppendingString(StringView other) const;

    /// The lenient decimal readings: white space, a sign, then ASCII digits up to the first other unit;
    /// saturating.
    int intValue() const noexcept;
    std::int64_t integerValue() const noexcept;
    std::int64_t longLongValue() const noexcept { return integerValue(); }
    double doubleValue() const noexcept;
    float floatValue() const noexcept;

    /// What follows the last "/", a trailing "/" dropped first; "/" for slashes alone.
    NSString lastPathComponent() const;

    /// The property list that the text spells, in the old-style or the XML form; raises
    /// NSParseErrorException.
    NSObject propertyList() const;

    /// As `propertyList` for the strings-table form; nil when that gives no dictionary, never raises.
    NSDictionary propertyListFromStringsFileFormat() const;

    friend bool operator==(const NSString& left, const NSString& right) {
        return left && right ? left.isEqualToString(right) : !left && !right;
    }
    template <detail::PlainText T>
    friend bool operator==(const NSString& left, const T& right) {
        const StringView text(right);
        return left && text ? left.isEqualToString(text) : !left && !text;
    }

    // NSString(ZQFoundation)

    /// True when the upper-cased text is "YES" or `intValue` is not zero. Replaces the platform's own rule.
    bool boolValue() const;

private:
    friend struct detail::Access;
    friend class StringView;
    explicit NSString(Payload payload) noexcept : NSObject(payload, detail::Kind::string) {}

    static NSString fromText(StringView text);
    StringView view() const noexcept;
};

inline StringView::StringView(const NSString& string) noexcept
    : StringView(string ? string.view() : StringView()) {}

/// Builds a text piece by piece. Exclusive and movable; `string()` hands the text over without a copy of long
/// texts and leaves the builder empty.
class ZQFOUNDATION_EXPORT NSMutableString {
public:
    NSMutableString();
    explicit NSMutableString(StringView text);
    NSMutableString(NSMutableString&& other) noexcept;
    NSMutableString& operator=(NSMutableString&& other) noexcept;
    ~NSMutableString();

    /// Nil appends nothing.
    void appendString(StringView text);
    void appendCharacter(char16_t unit);

    template <class... Arguments>
    void appendFormat(FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        appendFormat_arguments(format.text(), packed.list());
    }
    void appendFormat_arguments(StringView format, ArgumentList arguments);

    std::size_t length() const noexcept;

    /// The text built so far as an immutable string; the builder is empty afterwards.
    NSString string();

private:
    detail::TextBuilder& builder();

    detail::TextBuilder* builder_;
};

} // namespace ZQFoundation

#endif
