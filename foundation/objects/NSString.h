// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSSTRING_H
#define ZQFOUNDATION_OBJECTS_NSSTRING_H

#include "../text/FormatString.h"
#include "../text/NSRange.h"
#include "NSObject.h"

namespace ZQFoundation {

/// How a text is searched; combined by `|`. The numbers are the platform's.
enum NSStringCompareOptions : unsigned {
    NSCaseInsensitiveSearch = 1,
    NSLiteralSearch = 2,   ///< unit by unit: canonical equivalents differ
    NSBackwardsSearch = 4, ///< the last occurrence
    NSAnchoredSearch = 8,  ///< only at the start, or with `NSBackwardsSearch` at the end
};

/// Text encodings by the platform's numbers. Those of the other table of encodings that the platform knows
/// are `0x80000000 + n`: 0x80000201 to 0x80000210 are ISO 8859-1 to -16, 0x80000A02 is KOI8-R, 0x80000400 and
/// up are DOS pages.
enum NSStringEncoding : std::uint32_t {
    NSASCIIStringEncoding = 1,
    NSNEXTSTEPStringEncoding = 2,
    NSJapaneseEUCStringEncoding = 3,
    NSUTF8StringEncoding = 4,
    NSISOLatin1StringEncoding = 5,
    NSSymbolStringEncoding = 6,
    NSNonLossyASCIIStringEncoding = 7, ///< "\351" and "\u20ac" for what is not ASCII
    NSShiftJISStringEncoding = 8,
    NSISOLatin2StringEncoding = 9,
    NSUTF16StringEncoding = 10, ///< behind a byte-order mark, in the machine's order
    NSUnicodeStringEncoding = 10,
    NSWindowsCP1251StringEncoding = 11,
    NSWindowsCP1252StringEncoding = 12,
    NSWindowsCP1253StringEncoding = 13,
    NSWindowsCP1254StringEncoding = 14,
    NSWindowsCP1250StringEncoding = 15,
    NSISO2022JPStringEncoding = 21,
    NSMacOSRomanStringEncoding = 30,
    NSUTF16BigEndianStringEncoding = 0x90000100, ///< the four without a mark
    NSUTF16LittleEndianStringEncoding = 0x94000100,
    NSUTF32StringEncoding = 0x8C000100, ///< as UTF-16
    NSUTF32BigEndianStringEncoding = 0x98000100,
    NSUTF32LittleEndianStringEncoding = 0x9C000100,
};

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

    /// The empty string.
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

    /// As `stringWithFormat`, with the locale's decimal separator and grouping; a nil locale has neither.
    template <class... Arguments>
    static NSString initWithFormat_locale(FormatString<std::type_identity_t<Arguments>...> format,
                                          const NSLocale& locale, const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithFormat_locale_arguments(format.text(), locale, packed.list());
    }

    /// The same for a started argument list.
    static NSString initWithFormat_locale_arguments(StringView format, const NSLocale& locale,
                                                    ArgumentList arguments);

    /// The same with the user's locale.
    template <class... Arguments>
    static NSString localizedStringWithFormat(FormatString<std::type_identity_t<Arguments>...> format,
                                              const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return localizedStringWithFormat_arguments(format.text(), packed.list());
    }
    static NSString localizedStringWithFormat_arguments(StringView format, ArgumentList arguments);

    /// The text that the bytes spell, without a byte-order mark in front. Nil for nil data, bytes that the
    /// encoding does not know and an unknown encoding. ASCII is read leniently: bytes from 0x80 on are the
    /// units of the same number.
    static NSString initWithData_encoding(const NSData& data, NSStringEncoding encoding);

    /// How many units there are.
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

    /// Whether the text begins, or ends, with the other one, by units; false for an empty or nil argument.
    bool hasPrefix(StringView prefix) const;
    bool hasSuffix(StringView suffix) const;

    /// Full mapping, not bound to a locale: U+00DF becomes "SS".
    NSString uppercaseString() const;
    NSString lowercaseString() const;

    /// The units in front of the index, from it on, or `count` of them from the location on. Raise
    /// NSRangeException beyond the length.
    NSString substringToIndex(std::size_t index) const;
    NSString substringFromIndex(std::size_t index) const;
    NSString substringWithRange(std::size_t location, std::size_t count) const;

    /// This text and the other one behind it; a nil one adds nothing. Nil for a nil receiver.
    NSString stringByAppendingString(StringView other) const;

    /// Where the text first occurs, in units; `{NSNotFound, 0}` when it does not, and for an empty or nil
    /// text. Canonical equivalents match, and no match cuts a composed sequence, unless the search is
    /// literal; so a match may be longer or shorter than the text. Raise NSRangeException for a range beyond
    /// the end.
    NSRange rangeOfString(StringView text) const;
    NSRange rangeOfString_options(StringView text, unsigned options) const;
    NSRange rangeOfString_options_range(StringView text, unsigned options, NSRange range) const;

    /// The first unit that is a member, or with `NSBackwardsSearch` the last one.
    NSRange rangeOfCharacterFromSet(const NSCharacterSet& set) const;
    NSRange rangeOfCharacterFromSet_options(const NSCharacterSet& set, unsigned options) const;
    NSRange rangeOfCharacterFromSet_options_range(const NSCharacterSet& set, unsigned options,
                                                  NSRange range) const;

    /// The pieces between the separators, empty ones among them; the whole for an empty separator.
    NSArray componentsSeparatedByString(StringView separator) const;

    /// Without members at either end, however many there are.
    NSString stringByTrimmingCharactersInSet(const NSCharacterSet& set) const;

    /// Bytes, without a byte-order mark; 0 when the text cannot be converted.
    std::size_t lengthOfBytesUsingEncoding(NSStringEncoding encoding) const;

    /// The text in the encoding, nothing lost; nil when a character has no place in it, and for an unknown
    /// encoding. UTF-16 and UTF-32 of no stated order have a byte-order mark in front, also of no text.
    NSData dataUsingEncoding(NSStringEncoding encoding) const;

    /// The text's UTF-8 bytes: those of members of the set as they are (only ASCII ones count), all others as
    /// "%" and two upper-case hexadecimal digits. Nil when an unpaired surrogate has no UTF-8 form.
    NSString stringByAddingPercentEncodingWithAllowedCharacters(const NSCharacterSet& allowed) const;

    /// The lenient decimal readings: white space, a sign, then ASCII digits up to the first other unit;
    /// saturating.
    int intValue() const noexcept;
    std::int64_t integerValue() const noexcept;
    std::int64_t longLongValue() const noexcept { return integerValue(); }
    double doubleValue() const noexcept;
    float floatValue() const noexcept;

    // Paths. "Squeezed" means each run of "/" made one, and none left at the end of anything but "/".

    /// What follows the last "/", a trailing "/" dropped first; "/" for slashes alone.
    NSString lastPathComponent() const;

    /// "/a/b" gives "/a", "/a" gives "/", "a" the empty string. Squeezed.
    NSString stringByDeletingLastPathComponent() const;

    /// One "/" between the two, squeezed: "a/" and "/x" give "a/x".
    NSString stringByAppendingPathComponent(StringView component) const;

    /// "/", "a", "b" for "/a//b"; a final slash is a component "/" of its own.
    NSArray pathComponents() const;

    /// The components joined as by `stringByAppendingPathComponent`; empty ones are passed over.
    static NSString pathWithComponents(const NSArray& components);

    /// What follows the last "." of the last component, unless that "." is its first character.
    NSString pathExtension() const;

    /// The path without that extension and its ".".
    NSString stringByDeletingPathExtension() const;

    /// Begins with "/" or "~".
    bool isAbsolutePath() const;

    /// A leading "~" becomes the user's home folder ($HOME when that is an absolute path, else the user
    /// database's), "~name" that account's; unchanged when there is none. Loses a final "/".
    NSString stringByExpandingTildeInPath() const;

    /// Tilde expanded, squeezed, without "." components; in absolute paths ".." is resolved: through the
    /// file system when everything on the path exists, else by its text.
    NSString stringByStandardizingPath() const;

    /// Tilde expanded, every link replaced by its target, then standardized. From the first item on that is
    /// missing the rest is kept as text; a dangling link stays, and so does a whole path with a loop of
    /// links.
    ///
    /// In a sticky folder that others may write to (/tmp) a link that belongs to neither the user nor the
    /// folder's owner is not followed: it stays, as a dangling one does.
    NSString stringByResolvingSymlinksInPath() const;

    /// The property list that the text spells, in the old-style or the XML form; raises
    /// NSParseErrorException.
    NSObject propertyList() const;

    /// As `propertyList` for the strings-table form; nil when that gives no dictionary, never raises.
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

    // NSString(ZQFoundation)

    /// True when the upper-cased text is "YES" or `intValue` is not zero. Replaces the platform's own rule.
    bool boolValue() const;

    /// `other` unless it is nil, else this string: **the receiver is the default**.
    NSString asDefaultOr(const NSString& other) const;

    /// Whether there is no unit; false for nil.
    bool isEmpty() const noexcept;

    /// Whether the text occurs, unit by unit; false for an empty or nil one.
    bool containsString(StringView other) const;
    bool containsString_caseInsensitiveSearch(StringView other, bool caseInsensitive) const;

    /// Whether a unit is a decimal digit of any script; false for nil.
    bool containsDecimalDigit() const;

    /// Without members at the front, **but removes no more than about half of the string**: at most the
    /// smallest count that is at least half its length. "   x" gives " x".
    NSString trimLeftCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// Without members at the end, however many there are.
    NSString trimRightCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// The left trim with its limit, then the right one.
    NSString trimCharactersOfCharacterSet(const NSCharacterSet& set) const;

    /// The same for `NSCharacterSet::whitespaceAndControlCharacterSet`.
    NSString trim() const;

    /// What follows the **first** occurrence of the marker; nil when there is none, and for an empty or nil
    /// marker.
    NSString substringFromEndOfString(StringView marker) const;

    /// How many units equal this one.
    std::size_t occurrenceCountOfCharacter(char16_t unit) const noexcept;

    /// Each member is replaced by itself, runs are not made one. Unchanged when either argument is nil.
    NSString stringByReplacingEveryOccurrenceOfCharactersFromSet_withString(const NSCharacterSet& set,
                                                                            StringView replacement) const;
    NSString stringByRemovingEveryOccurrenceOfCharactersFromSet(const NSCharacterSet& set) const;

    /// The lines; CR LF and LF CR are one break each. A break at the end is followed by an empty line; the
    /// empty string has no lines.
    NSArray componentsSeparatedByLineBreak() const;

    /// The pieces between runs of members: a run is one separator. The empty string has no pieces. Replaces
    /// the platform's own rule.
    NSArray componentsSeparatedByCharacterSet(const NSCharacterSet& set) const;

    /// The same for white space; newlines are none.
    NSArray componentsSeparatedByWhitespace() const;
    NSArray componentsSeparatedByWhitespaces() const;

    /// The indent in front of every line, also of the empty one behind a break at the end; every break
    /// becomes LF. A nil indent changes nothing.
    NSString stringByIndentingLinesWithString(StringView indent) const;

    /// Ends with a newline of any kind: LF is appended when there is none. The empty string stays empty.
    NSString addMissingNewline() const;

    /// **Longer strings come first:** NSOrderedAscending when this one has more units. Nil has none.
    NSComparisonResult compareLength(StringView other) const noexcept;

    /// The piece `count` times; nil for a nil piece and a negative count. Raises NSMallocException when
    /// the result would not fit into memory.
    static NSString stringByRepeating_count(StringView piece, std::int64_t count);

    /// Percent-encoded: letters, digits and those of "!$&'()*+,-./:=@_~" that are no `exceptions` stay. Nil,
    /// as in the three that follow, when an unpaired surrogate has no UTF-8 form.
    NSString urlEncodedStringWithExceptions(StringView exceptions) const;

    /// For a component of a URL: letters, digits and "!'()*-._~" stay.
    NSString urlEncodedString() const;

    /// For a path: letters, digits and "!$&'()*+,-./:=@_~" stay.
    NSString urlPathEncodedString() const;

    /// For a query: as for a path, and ";" and "?" stay.
    NSString urlQueryEncodedString() const;

    /// Every "%" and two hexadecimal digits replaced by their byte; "+" stays. Nil when a "%" has no two
    /// digits or the bytes are not well-formed UTF-8.
    NSString urlDecodedString() const;

    /// The MD5 digest of the UTF-8 form up to the first U+0000, as 32 lower-case hexadecimal digits. It
    /// protects nothing: two texts with one digest are easily made.
    NSString md5String() const;

    /// A new random UUID (version 4): "3F2504E0-4F89-41D3-9A0C-0305E82C3301".
    static NSString stringWithNewUUID();

    /// Appends the text to a file in one write, making the file when it is missing. False when it cannot be
    /// opened, made or written, and when the text does not fit the encoding: then nothing is written.
    bool appendToFile_encoding(StringView path, NSStringEncoding encoding) const;

    // Localized texts: the key's text in the table `Localizable` of the main bundle; the key itself when it
    // is missing there. The language is the user's.

    /// The localized text.
    static NSString initWithLocalizedString(const NSString& key);

    /// The localized text as a format, checked when it runs, since only the table knows it.
    template <class... Arguments>
    static NSString initWithLocalizedFormat(const NSString& key, const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithLocalizedFormat_arguments(key, packed.list());
    }
    static NSString initWithLocalizedFormat_arguments(const NSString& key, ArgumentList arguments);

    /// The same with a locale's decimal separator and grouping; nil for none.
    template <class... Arguments>
    static NSString initWithLocalizedFormat_locale(const NSString& key, const NSLocale& locale,
                                                   const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        return initWithLocalizedFormat_locale_arguments(key, locale, packed.list());
    }
    static NSString initWithLocalizedFormat_locale_arguments(const NSString& key, const NSLocale& locale,
                                                             ArgumentList arguments);

    /// The localized text **as it stands**: it is no format here, and further arguments are passed over.
    template <class... Arguments>
    static NSString stringWithLocalizedFormat(const NSString& key, const Arguments&...) {
        return stringWithLocalizedFormat(key);
    }
    static NSString stringWithLocalizedFormat(const NSString& key);
    template <class... Arguments>
    static NSString localizedStringWithLocalizedFormat(const NSString& key, const Arguments&...) {
        return localizedStringWithLocalizedFormat(key);
    }
    static NSString localizedStringWithLocalizedFormat(const NSString& key);

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

    /// Begins with the text; nil is as good as an empty one.
    explicit NSMutableString(StringView text);
    NSMutableString(NSMutableString&& other) noexcept;
    NSMutableString& operator=(NSMutableString&& other) noexcept;
    ~NSMutableString();

    /// Appends a text, or one unit; nil appends nothing.
    void appendString(StringView text);
    void appendCharacter(char16_t unit);

    /// Appends the formatted text, as `NSString::stringWithFormat` makes it.
    template <class... Arguments>
    void appendFormat(FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
        const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
        appendFormat_arguments(format.text(), packed.list());
    }
    void appendFormat_arguments(StringView format, ArgumentList arguments);

    /// Units so far.
    std::size_t length() const noexcept;

    /// The text built so far as an immutable string; the builder is empty afterwards.
    NSString string();

private:
    detail::TextBuilder& builder();

    detail::TextBuilder* builder_;
};

} // namespace ZQFoundation

#endif
