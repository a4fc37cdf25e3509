// SPDX-License-Identifier: MIT
// Declares NSString and its builder, NSMutableString.
#ifndef ZQFOUNDATION_OBJECTS_NSSTRING_H
#define ZQFOUNDATION_OBJECTS_NSSTRING_H

#include <compare>

#include "../text/FormatString.h"
#include "../text/NSRange.h"
#include "NSObject.h"

namespace ZQFoundation {

/// How a text is searched; combined by `|`. The numbers are the platform's.
enum NSStringCompareOptions : unsigned {
    NSCaseInsensitiveSearch = 1, ///< regardless of case
    NSLiteralSearch = 2,         ///< unit by unit: canonical equivalents differ
    NSBackwardsSearch = 4,       ///< the last occurrence
    NSAnchoredSearch = 8,        ///< only at the start, or with `NSBackwardsSearch` at the end
};

/// Text encodings by the platform's numbers. Those of the platform's second table of encodings are
/// `0x80000000 + n`: 0x80000201 to 0x80000210 are ISO 8859-1 to -16, 0x80000A02 is KOI8-R, 0x80000400 and up
/// are DOS pages.
enum NSStringEncoding : std::uint32_t {
    NSASCIIStringEncoding = 1,                      ///< US-ASCII
    NSNEXTSTEPStringEncoding = 2,                   ///< NEXTSTEP, 8 bits
    NSJapaneseEUCStringEncoding = 3,                ///< EUC-JP
    NSUTF8StringEncoding = 4,                       ///< UTF-8
    NSISOLatin1StringEncoding = 5,                  ///< ISO 8859-1
    NSSymbolStringEncoding = 6,                     ///< Symbol: Greek and mathematics, 8 bits
    NSNonLossyASCIIStringEncoding = 7,              ///< "\351" and "\u20ac" for what is not ASCII
    NSShiftJISStringEncoding = 8,                   ///< Shift-JIS, with backslash and tilde at 5C and 7E
    NSISOLatin2StringEncoding = 9,                  ///< ISO 8859-2
    NSUTF16StringEncoding = 10,                     ///< after a byte-order mark, in the machine's order
    NSUnicodeStringEncoding = 10,                   ///< another name of NSUTF16StringEncoding
    NSWindowsCP1251StringEncoding = 11,             ///< Windows, Cyrillic
    NSWindowsCP1252StringEncoding = 12,             ///< Windows, Western European
    NSWindowsCP1253StringEncoding = 13,             ///< Windows, Greek
    NSWindowsCP1254StringEncoding = 14,             ///< Windows, Turkish
    NSWindowsCP1250StringEncoding = 15,             ///< Windows, Central European
    NSISO2022JPStringEncoding = 21,                 ///< ISO-2022-JP
    NSMacOSRomanStringEncoding = 30,                ///< Mac OS Roman
    NSUTF16BigEndianStringEncoding = 0x90000100,    ///< UTF-16BE, without a byte-order mark
    NSUTF16LittleEndianStringEncoding = 0x94000100, ///< UTF-16LE, without a byte-order mark
    NSUTF32StringEncoding = 0x8C000100,             ///< after a byte-order mark, in the machine's order
    NSUTF32BigEndianStringEncoding = 0x98000100,    ///< UTF-32BE, without a byte-order mark
    NSUTF32LittleEndianStringEncoding = 0x9C000100, ///< UTF-32LE, without a byte-order mark
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// Unit by unit, a prefix first, nil before the empty text.
ZQFOUNDATION_EXPORT std::strong_ordering orderOfUnits(const NSString& left, const NSString& right) noexcept;

/// What follows a "+".
template <class T>
concept TextOperand = PlainText<T> || std::is_same_v<T, NSString>;

/// The second type, which a template does not look up before it is instantiated.
template <class, class T>
struct DependentType {
    using type = T;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// An immutable sequence of UTF-16 code units. Lengths, indexes and characters count units; an unpaired
/// surrogate and U+0000 are ordinary units. Operations on nil raise nothing and return nil, 0, false,
/// `NSOrderedSame`, `{NSNotFound, 0}` or an empty C++ string. Any number of threads may read a string.
class ZQFOUNDATION_EXPORT NSString : public NSObject {
public:
    constexpr NSString() noexcept = default;
    constexpr NSString(std::nullptr_t) noexcept {}

    /// A copy of the text; nil for a nil text. Ill-formed UTF-8 becomes U+FFFD.
    template <detail::PlainText T>
    NSString(const T& text) : NSString(fromText(StringView(text))) {}

    template <detail::OtherText T>
    NSString(const T&) = delete; // pass StringView(data, bytes) or c_str(), or specialize ObjectConversion

    /// The string that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSString> T>
    NSString(const T& object) : NSString(detail::convertedObject(object)) {}

    /// The value if it is a string, else nil.
    explicit NSString(const NSObject& object) noexcept : NSObject(object, detail::Kind::string) {}

    /// The empty string.
    static NSString string();

    /// A string of exactly these bytes; nil if they are not well-formed UTF-8.
    static NSString stringWithUTF8Bytes(const char* bytes, std::size_t byteCount);

    /// A copy of the units; unpaired surrogates are kept.
    static NSString stringWithCharacters_length(const char16_t* units, std::size_t unitCount);

    /// The text of a file name: bytes that are not well-formed UTF-8 become the units U+DC00 + byte.
    static NSString stringWithFileSystemBytes(const char* bytes, std::size_t byteCount);

    /// The format with its arguments inserted, without a locale. Raises NSInvalidArgumentException for a nil
    /// format.
    template <class... Arguments>
    static NSString stringWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                     const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return stringWithFormat_arguments(format.text(), packed.list());
    }

    /// `stringWithFormat` for a started argument list.
    static NSString stringWithFormat_arguments(StringView format, ArgumentList arguments);

    /// As `stringWithFormat`, with the locale's decimal separator and grouping; a nil locale has neither.
    ///
    ///     const NSLocale german = NSLocale::localeWithLocaleIdentifier("de_DE");
    ///     NSString::initWithFormat_locale("%.2f", german, 1234.5);  // "1.234,50"
    template <class... Arguments>
    static NSString initWithFormat_locale(FormatString<std::type_identity_t<Arguments>...> format,
                                          const NSLocale& locale, const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithFormat_locale_arguments(format.text(), locale, packed.list());
    }

    /// `initWithFormat_locale` for a started argument list.
    static NSString initWithFormat_locale_arguments(StringView format, const NSLocale& locale,
                                                    ArgumentList arguments);

    /// As `initWithFormat_locale` with the user's locale.
    template <class... Arguments>
    static NSString localizedStringWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                              const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return localizedStringWithFormat_arguments(format.text(), packed.list());
    }

    /// `localizedStringWithFormat` for a started argument list.
    static NSString localizedStringWithFormat_arguments(StringView format, ArgumentList arguments);

    /// The text that the bytes encode, without a leading byte-order mark. Nil for nil data, for bytes that
    /// are invalid in the encoding and for an unknown encoding. ASCII is read leniently: bytes from 0x80 on
    /// are the units of the same number.
    static NSString initWithData_encoding(const NSData& data, NSStringEncoding encoding);

    /// The number of units; 0 for nil.
    std::size_t length() const noexcept;

    /// The same as `length`, for templates that expect containers.
    std::size_t size() const noexcept { return length(); }

    /// The unit at `index`; raises NSRangeException from the length on.
    char16_t characterAtIndex(std::size_t index) const;

    /// Copies `count` units from `start` on to `out`, which has room for them; raises NSRangeException beyond
    /// the end.
    void getCharacters(char16_t* out, std::size_t start, std::size_t count) const;

    /// The UTF-8 form; unpaired surrogates as U+FFFD; empty for nil.
    std::string utf8() const;

    /// Writes the exact UTF-8 form to `out`. False, with `out` unchanged, for nil and if there is an unpaired
    /// surrogate, which has none.
    bool getUTF8(std::string& out) const;

    /// The bytes of the text as a file name, the inverse of `stringWithFileSystemBytes`; false for nil,
    /// U+0000 and surrogates that represent no byte.
    bool getFileSystemBytes(std::string& out) const;

    /// The units as a C++ string; empty for nil.
    std::u16string utf16() const;

    /// `std::string(text)` is `utf8`, `std::u16string(text)` is `utf16`.
    template <class String>
        requires(std::is_same_v<String, std::string> || std::is_same_v<String, std::u16string>)
    explicit operator String() const {
        // Looked up where the string's type is complete: here it is only declared.
        const typename detail::DependentType<String, NSString>::type& self = *this;
        if constexpr (std::is_same_v<String, std::string>) {
            return self.utf8();
        } else {
            return self.utf16();
        }
    }

    /// Whether both have exactly the same units. False if either is nil.
    bool isEqualToString(StringView other) const;

    /// Orders by units, a prefix first; canonically equivalent texts are the same. A nil argument is the same
    /// as an empty one.
    NSComparisonResult compare(StringView other) const;

    /// Orders by code points, both texts folded to lower case first. A nil argument is the same as an empty
    /// one.
    NSComparisonResult caseInsensitiveCompare(StringView other) const;

    /// Whether the text begins with the other one, by units; false for an empty or nil argument.
    bool hasPrefix(StringView prefix) const;

    /// Whether the text ends with the other one, by units; false for an empty or nil argument.
    bool hasSuffix(StringView suffix) const;

    /// The text in upper case, by Unicode's full mapping, independent of any locale: U+00DF becomes "SS".
    NSString uppercaseString() const;

    /// The text in lower case, by Unicode's full mapping of each character, independent of any locale and of
    /// neighboring characters: U+03A3 becomes U+03C3, at the end of a word too.
    NSString lowercaseString() const;

    /// The units before the index; raises NSRangeException beyond the length.
    NSString substringToIndex(std::size_t index) const;

    /// The units from the index on; raises NSRangeException beyond the length.
    NSString substringFromIndex(std::size_t index) const;

    /// `count` units from the location on; raises NSRangeException beyond the length.
    NSString substringWithRange(std::size_t location, std::size_t count) const;

    /// This text followed by the other one; a nil argument adds nothing. Nil for a nil receiver.
    NSString stringByAppendingString(StringView other) const;

    /// Where the text first occurs, in units; `{NSNotFound, 0}` if it does not, and for an empty or nil text.
    /// Canonical equivalents match, and no match cuts a composed sequence; so a match may be longer or
    /// shorter than the text.
    NSRange rangeOfString(StringView text) const;

    /// As `rangeOfString`, with `NSStringCompareOptions`. A literal search compares unit by unit.
    NSRange rangeOfString_options(StringView text, unsigned options) const;

    /// As `rangeOfString_options`, searching only inside the range, as if it were the whole text: a composed
    /// sequence that the range cuts is not one. Raises NSRangeException for a range beyond the end.
    NSRange rangeOfString_options_range(StringView text, unsigned options, NSRange range) const;

    /// The first unit that is a member of the set; `{NSNotFound, 0}` if there is none.
    NSRange rangeOfCharacterFromSet(const NSCharacterSet& set) const;

    /// The first unit that is a member of the set, or with `NSBackwardsSearch` the last one; `{NSNotFound,
    /// 0}` if there is none.
    NSRange rangeOfCharacterFromSet_options(const NSCharacterSet& set, unsigned options) const;

    /// As `rangeOfCharacterFromSet_options`, searching only inside the range. Raises NSRangeException for a
    /// range beyond the end.
    NSRange rangeOfCharacterFromSet_options_range(const NSCharacterSet& set, unsigned options,
                                                  NSRange range) const;

    /// The pieces between the separators, including empty ones; the whole text for an empty or nil separator.
    ///
    ///     NSString("a,b,,c").componentsSeparatedByString(",");  // "a", "b", "", "c"
    NSArray componentsSeparatedByString(StringView separator) const;

    /// The text without members of the set at either end, however many there are. Unchanged for a nil set.
    NSString stringByTrimmingCharactersInSet(const NSCharacterSet& set) const;

    /// The number of bytes in the encoding, without a byte-order mark; 0 if the text cannot be converted.
    std::size_t lengthOfBytesUsingEncoding(NSStringEncoding encoding) const;

    /// The text in the encoding, without loss; nil if the encoding lacks a character, and for an unknown
    /// encoding. UTF-16 and UTF-32 without a stated byte order begin with a byte-order mark, even for no
    /// text.
    NSData dataUsingEncoding(NSStringEncoding encoding) const;

    /// The text's UTF-8 bytes: those of members of the set as they are (only ASCII ones count), all others as
    /// "%" and two upper-case hexadecimal digits. Nil when an unpaired surrogate has no UTF-8 form.
    NSString stringByAddingPercentEncodingWithAllowedCharacters(const NSCharacterSet& allowed) const;

    /// The leading decimal number in 32 bits, saturating: white space, a sign, then ASCII digits up to the
    /// first other unit. 0 without a digit, and for nil.
    ///
    ///     NSString("12 items").intValue();  // 12
    int intValue() const noexcept;

    /// The leading decimal number in 64 bits, saturating; read as by `intValue`.
    std::int64_t integerValue() const noexcept;

    /// Another name for `integerValue`.
    std::int64_t longLongValue() const noexcept { return integerValue(); }

    /// The leading decimal number with an optional "." and exponent, correctly rounded, whatever the locale;
    /// infinite beyond the range. 0 without a digit, and for nil.
    double doubleValue() const noexcept;

    /// `doubleValue`, rounded to a float.
    float floatValue() const noexcept;

    /// @name Paths
    /// "Squeezed" means that each run of "/" becomes one, and that a trailing "/" is removed except from "/"
    /// itself.
    /// @{

    /// The text after the last "/", a trailing "/" dropped first; "/" for slashes alone.
    NSString lastPathComponent() const;

    /// The path without its last component, squeezed: "/a/b" becomes "/a", "/a" becomes "/", "a" the empty
    /// string.
    NSString stringByDeletingLastPathComponent() const;

    /// Both with one "/" between them, squeezed: "a/" and "/x" become "a/x". A nil component adds nothing.
    NSString stringByAppendingPathComponent(StringView component) const;

    /// The components: "/", "a", "b" for "/a//b"; a final slash is a separate component "/".
    NSArray pathComponents() const;

    /// The components joined as by `stringByAppendingPathComponent`; empty ones are ignored. Empty for nil.
    static NSString pathWithComponents(const NSArray& components);

    /// The text after the last "." of the last component, unless that "." is its first character.
    ///
    ///     NSString("/a/b.tar.gz").pathExtension();  // "gz"
    ///     NSString("/a/.profile").pathExtension();  // ""
    NSString pathExtension() const;

    /// The path without the extension that `pathExtension` returns, and without its ".".
    NSString stringByDeletingPathExtension() const;

    /// Whether the path begins with "/" or "~".
    bool isAbsolutePath() const;

    /// The path with a leading "~" replaced by the user's home folder ($HOME if that is an absolute path,
    /// else the user database's), "~name" by that account's; unchanged if there is none. Loses a final "/".
    NSString stringByExpandingTildeInPath() const;

    /// The path, tilde expanded, squeezed, without "." components; in absolute paths ".." is resolved:
    /// through the file system if everything on the path exists, else textually.
    NSString stringByStandardizingPath() const;

    /// The path, tilde expanded, every link replaced by its target, then standardized. From the first missing
    /// item on the rest is kept as text; a dangling link stays, and so does a whole path with a loop of
    /// links.
    ///
    /// In a sticky folder that others may write to (/tmp) a link that belongs to neither the user nor the
    /// folder's owner is not followed: it stays, as a dangling one does.
    NSString stringByResolvingSymlinksInPath() const;

    /// The property list in the text, in the old-style or the XML form; raises NSParseErrorException if there
    /// is none.
    NSObject propertyList() const;

    /// The dictionary in the text, also in the form of strings tables; nil if there is none. Never raises.
    NSDictionary propertyListFromStringsFileFormat() const;

    /// The same units; two nil strings are the same too.
    friend bool operator==(const NSString& left, const NSString& right) {
        return left && right ? left.isEqualToString(right) : !left && !right;
    }

    /// The same units; a nil string is the same as a nil text.
    template <detail::PlainText T>
    friend bool operator==(const NSString& left, const T& right) {
        const StringView text(right);
        return left && text ? left.isEqualToString(text) : !left && !text;
    }

    /// The order consistent with `==`, for sorting and for maps: unit by unit, nil first. `compare` is the
    /// platform's order, which treats canonical equivalents as the same.
    friend std::strong_ordering operator<=>(const NSString& left, const NSString& right) noexcept {
        return detail::orderOfUnits(left, right);
    }

    /// The two texts concatenated. A nil text adds nothing; two nil ones make nil.
    template <detail::TextOperand T>
    friend NSString operator+(const NSString& left, const T& right) {
        return left ? left.stringByAppendingString(right) : NSString(right);
    }

    /// The two texts concatenated, for a left operand that is not an NSString.
    template <detail::PlainText T>
    friend NSString operator+(const T& left, const NSString& right) {
        return NSString(left) + right;
    }

    /// Appends the other text; to build a long text step by step, `NSMutableString` is faster.
    NSString& operator+=(StringView other) { return *this = *this + other; }

    /// @}

    /// @name NSString(ZQFoundation)
    /// @{

    /// Whether the upper-cased text is "YES" or `intValue` is not zero. Replaces the platform's own rule.
    ///
    ///     NSString("yes").boolValue();   // true
    ///     NSString("true").boolValue();  // false
    ///     NSString(" 2x").boolValue();   // true
    bool boolValue() const;

    /// `other` unless it is nil, else this string: **the receiver is the default**. Nil for a nil receiver,
    /// whatever the argument is.
    ///
    ///     NSString("unknown").asDefaultOr(settings["name"].as<NSString>());
    NSString asDefaultOr(const NSString& other) const;

    /// Whether there is no unit; false for nil, which is no text at all.
    bool isEmpty() const noexcept;

    /// Whether the text occurs, unit by unit; false for an empty or nil argument.
    bool containsString(StringView other) const;

    /// Whether the text occurs, unit by unit, after both were folded to lower case if `caseInsensitive`;
    /// false for an empty or nil argument.
    bool containsString_caseInsensitiveSearch(StringView other, detail::Flag caseInsensitive) const;

    /// Whether a unit is a decimal digit of any script; false for nil.
    bool containsDecimalDigit() const;

    /// The text without members at the start, **but removes no more than about half of the string**: at most
    /// the smallest count that is at least half its length.
    ///
    ///     NSString("  x").trimLeftCharactersOfCharacterSet(whitespace);    // "x"
    ///     NSString("    x").trimLeftCharactersOfCharacterSet(whitespace);  // " x": three of the four spaces
    NSString trimLeftCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// The text without members at the end, however many there are. Unchanged for a nil set.
    NSString trimRightCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// Trimmed at the start with the limit of `trimLeftCharactersOfCharacterSet`, then at the end. Unchanged
    /// for a nil set.
    NSString trimCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// `trimCharactersOfCharacterSet` for `NSCharacterSet::whitespaceAndControlCharacterSet`.
    ///
    ///     NSString("  a b \n").trim();  // "a b"
    NSString trim() const;

    /// The text after the **first** occurrence of the marker; nil if there is none, and for an empty or nil
    /// marker.
    ///
    ///     NSString("key=value=x").substringFromEndOfString("=");  // "value=x"
    NSString substringFromEndOfString(StringView marker) const;

    /// The number of units equal to this one.
    std::size_t occurrenceCountOfCharacter(char16_t unit) const noexcept;

    /// The text with each member of the set replaced; a run of members is replaced one by one. Unchanged if
    /// either argument is nil.
    NSString stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(const NSCharacterSet& set,
                                                                            StringView replacement) const;

    /// The text without the members of the set. Unchanged for a nil set.
    NSString stringByRemovingEveryOccurrenceOfCharactersFromSet(const NSCharacterSet& set) const;

    /// The lines; CR LF and LF CR are one break each. A break at the end is followed by an empty line; the
    /// empty string has no lines.
    ///
    ///     NSString("a\r\nb\n").componentsSeparatedByLineBreak();  // "a", "b", ""
    NSArray componentsSeparatedByLineBreak() const;

    /// The pieces between runs of members: a run is one separator. The whole text for a nil set; the empty
    /// string has no pieces. Replaces the platform's own rule.
    NSArray componentsSeparatedByCharacterSet(const NSCharacterSet& set) const;

    /// The pieces between runs of white space, as by `componentsSeparatedByCharacterSet`; newlines are not
    /// white space here.
    ///
    ///     NSString(" a ").componentsSeparatedByWhitespace();  // "", "a", ""
    NSArray componentsSeparatedByWhitespace() const;

    /// Another name for `componentsSeparatedByWhitespace`.
    NSArray componentsSeparatedByWhitespaces() const;

    /// The text with the indent before every line, also before the empty one after a final break; every break
    /// becomes LF. A nil indent changes nothing.
    ///
    ///     NSString("a\nb").stringByIndentingLinesWithString("  ");  // "  a\n  b"
    NSString stringByIndentingLinesWithString(StringView indent) const;

    /// The text with a newline at its end: LF is appended unless the text ends with a newline of any kind.
    /// The empty string stays empty.
    NSString addMissingNewline() const;

    /// **Longer strings come first:** NSOrderedAscending when this one has more units. A nil argument has
    /// none; on nil, the same.
    NSComparisonResult compareLength(StringView other) const noexcept;

    /// The piece `count` times; nil for a nil piece and a negative count. Raises NSMallocException when
    /// the result would not fit into memory.
    static NSString stringByRepeating_count(StringView piece, std::int64_t count);

    /// Percent-encoded: letters, digits and those of "!$&'()*+,-./:=@_~" that are not among the `exceptions`
    /// stay. Nil if an unpaired surrogate has no UTF-8 form.
    ///
    ///     NSString("a b/c").urlEncodedStringWithExceptions("/");  // "a%20b%2Fc"
    NSString urlEncodedStringWithExceptions(StringView exceptions) const;

    /// Percent-encoded for a component of a URL: letters, digits and "!'()*-._~" stay. Nil if an unpaired
    /// surrogate has no UTF-8 form.
    ///
    ///     NSString("a b/c").urlEncodedString();  // "a%20b%2Fc"
    NSString urlEncodedString() const;

    /// Percent-encoded for a path: letters, digits and "!$&'()*+,-./:=@_~" stay. Nil if an unpaired surrogate
    /// has no UTF-8 form.
    ///
    ///     NSString("a b/c").urlPathEncodedString();  // "a%20b/c"
    NSString urlPathEncodedString() const;

    /// Percent-encoded for a query: letters, digits and "!$&'()*+,-./:;=?@_~" stay. Nil if an unpaired
    /// surrogate has no UTF-8 form.
    ///
    ///     NSString("a b?c=d").urlQueryEncodedString();  // "a%20b?c=d"
    NSString urlQueryEncodedString() const;

    /// The text with every "%" and two hexadecimal digits replaced by their byte; "+" stays. Nil if a "%" has
    /// no two digits after it or the bytes are not well-formed UTF-8.
    ///
    ///     NSString("a%20b+c").urlDecodedString();  // "a b+c"
    NSString urlDecodedString() const;

    /// The MD5 digest of the UTF-8 form up to the first U+0000, as 32 lower-case hexadecimal digits. Nil for
    /// nil, and if an unpaired surrogate has no UTF-8 form. It is not secure: two texts with the same digest
    /// are easily made.
    ///
    ///     NSString("").md5String();  // "d41d8cd98f00b204e9800998ecf8427e"
    NSString md5String() const;

    /// A new random UUID (version 4): "3F2504E0-4F89-41D3-9A0C-0305E82C3301".
    static NSString stringWithNewUUID();

    /// Appends the text to a file in one write, creating the file if it is missing. False if it cannot be
    /// opened, created or written, and if the text does not fit the encoding: then nothing is written.
    [[nodiscard]] bool appendToFile_encoding(StringView path, NSStringEncoding encoding) const;

    /// @}

    /// @name Localized texts
    /// The key's text in the table `Localizable` of the main bundle, in the user's language; the key itself
    /// if it is missing there; the empty string for a nil key.
    /// @{

    /// The localized text.
    static NSString initWithLocalizedString(const NSString& key);

    /// The localized text as a format with its arguments inserted; checked at run time, because only the
    /// table knows it.
    template <class... Arguments>
    static NSString initWithLocalizedFormat(const NSString& key, const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithLocalizedFormat_arguments(key, packed.list());
    }

    /// `initWithLocalizedFormat` for a started argument list.
    static NSString initWithLocalizedFormat_arguments(const NSString& key, ArgumentList arguments);

    /// As `initWithLocalizedFormat`, with a locale's decimal separator and grouping; a nil locale has
    /// neither.
    template <class... Arguments>
    static NSString initWithLocalizedFormat_locale(const NSString& key, const NSLocale& locale,
                                                   const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithLocalizedFormat_locale_arguments(key, locale, packed.list());
    }

    /// `initWithLocalizedFormat_locale` for a started argument list.
    static NSString initWithLocalizedFormat_locale_arguments(const NSString& key, const NSLocale& locale,
                                                             ArgumentList arguments);

    /// The localized text **as it is**: not used as a format, and further arguments are ignored.
    template <class... Arguments>
    static NSString stringWithLocalizedFormat(const NSString& key, const Arguments&...) {
        return stringWithLocalizedFormat(key);
    }

    /// The localized text **as it is**: not used as a format.
    static NSString stringWithLocalizedFormat(const NSString& key);

    /// The localized text **as it is**: not used as a format, and further arguments are ignored.
    template <class... Arguments>
    static NSString localizedStringWithLocalizedFormat(const NSString& key, const Arguments&...) {
        return localizedStringWithLocalizedFormat(key);
    }

    /// The localized text **as it is**: not used as a format.
    static NSString localizedStringWithLocalizedFormat(const NSString& key);

    /// @}

private:
    friend struct detail::Access;
    friend class StringView;
    explicit NSString(Payload payload) noexcept : NSObject(payload, detail::Kind::string) {}

    static NSString fromText(StringView text);
    StringView view() const noexcept;
};

inline NSObject Argument::converted() const {
    return value_.converted.conversion->object(value_.converted.object);
}

inline StringView::StringView(const NSString& string) noexcept
    : StringView(string ? string.view() : StringView()) {}

/// Builds a text piece by piece. Movable, not copyable; `string()` transfers the text, without copying long
/// texts, and leaves the builder empty.
class ZQFOUNDATION_EXPORT NSMutableString {
public:
    NSMutableString();

    /// Begins with the text; nil is the same as an empty text.
    explicit NSMutableString(StringView text);
    NSMutableString(NSMutableString&& other) noexcept;
    NSMutableString& operator=(NSMutableString&& other) noexcept;
    ~NSMutableString();

    /// Appends a text; nil appends nothing.
    void appendString(StringView text);

    /// Appends one unit.
    void appendCharacter(char16_t unit);

    /// Appends a text; nil appends nothing.
    NSMutableString& operator+=(StringView text) {
        appendString(text);
        return *this;
    }

    /// Appends the formatted text, as `NSString::stringWithFormat` makes it.
    template <class... Arguments>
    void appendFormat(FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        appendFormat_arguments(format.text(), packed.list());
    }

    /// `appendFormat` for a started argument list.
    void appendFormat_arguments(StringView format, ArgumentList arguments);

    /// The number of units so far.
    std::size_t length() const noexcept;

    /// The text built so far as an immutable string; the builder is empty afterwards.
    [[nodiscard]] NSString string();

private:
    detail::TextBuilder& builder();

    detail::TextBuilder* builder_;
};

} // namespace ZQFoundation

#endif
