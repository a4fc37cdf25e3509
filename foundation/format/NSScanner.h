// SPDX-License-Identifier: MIT
// Declares NSScanner, which reads a string from front to back.
#ifndef ZQFOUNDATION_FORMAT_NSSCANNER_H
#define ZQFOUNDATION_FORMAT_NSSCANNER_H

#include "../objects/NSCharacterSet.h"

namespace ZQFoundation {

/// Reads a string from front to back.
///
///     NSScanner scanner("key: value");
///     NSString key;
///     scanner.scanUpToString_intoString(":", &key); // true; key is "key"
///
/// Every scan first skips the characters to be skipped. A scan that fails does not move the location, not
/// even past those characters, and does not change its output. Outputs may be null. A scanner belongs to one
/// thread at a time.
class ZQFOUNDATION_EXPORT NSScanner {
public:
    /// A nil string reads as the empty one.
    explicit NSScanner(NSString string);

    /// A scanner of the string, at its start.
    static NSScanner scannerWithString(NSString string);

    /// The string that is read; empty when made from nil.
    const NSString& string() const noexcept { return string_; }

    /// Where the next scan begins, in units from the start.
    std::size_t scanLocation() const noexcept { return location_; }

    /// Moves to that unit; raises NSRangeException beyond the length.
    void setScanLocation(std::size_t location);

    /// The characters that every scan skips first: white space and newlines unless set otherwise.
    const NSCharacterSet& charactersToBeSkipped() const noexcept { return skipped_; }

    /// Sets the characters that every scan skips first; nil or an empty set: none.
    void setCharactersToBeSkipped(NSCharacterSet set);

    /// Whether a text that is searched for must have the same case; false unless set otherwise.
    bool caseSensitive() const noexcept { return isCaseSensitive_; }

    /// Sets whether a text that is searched for must have the same case.
    void setCaseSensitive(detail::Flag isCaseSensitive) noexcept { isCaseSensitive_ = isCaseSensitive; }

    /// Whether only characters to be skipped remain.
    bool isAtEnd() const;

    /// Takes the text if it follows right here; the output is the text as it is written in the string. An
    /// empty or nil text never follows.
    bool scanString_intoString(StringView text, NSString* output);

    /// Takes everything up to the text, or to the end if it does not follow. False if the text follows right
    /// here or nothing is left. An empty or nil text never follows.
    bool scanUpToString_intoString(StringView text, NSString* output);

    /// Takes the longest run of members of the set. False if there is none.
    bool scanCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output);

    /// Takes the longest run of characters that are not members of the set. False if there is none.
    bool scanUpToCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output);

    /// @name Numbers
    /// They are read as by a string's own value operations, so leading white space is skipped even if it is
    /// not among the characters to be skipped. Numbers beyond the range of their type saturate.
    /// @{

    /// Takes a sign and ASCII digits, as a 32-bit number; false if there is no digit.
    ///
    ///     NSScanner scanner("12 apples");
    ///     int count = 0;
    ///     scanner.scanInt(&count);  // true; count is 12, and scanLocation() is 2
    bool scanInt(int* value);

    /// Takes a sign and ASCII digits, as a 64-bit number. False if there is no digit.
    bool scanInteger(std::int64_t* value);

    /// Another name for `scanInteger`.
    bool scanLongLong(std::int64_t* value) { return scanInteger(value); }

    /// Takes a decimal number with a point, as `NSString::doubleValue` reads it. False if there is no digit.
    bool scanDouble(double* value);

    /// Takes a decimal number with a point, rounded to a float. False if there is no digit.
    bool scanFloat(float* value);

    /// Takes hexadecimal digits without a sign, with or without "0x", as a 32-bit number. "0x" alone is digit
    /// 0. False if there is no digit.
    bool scanHexInt(unsigned* value);

    /// Takes hexadecimal digits without a sign, with or without "0x", as a 64-bit number. "0x" alone is digit
    /// 0. False if there is no digit.
    bool scanHexLongLong(std::uint64_t* value);

    /// @}

    /// @name NSScanner(ZQFoundation)
    /// @{

    /// Moves to the start of the target; false, without moving, if the target does not follow, or if it
    /// consists of characters to be skipped and nothing else remains. Also true, without moving, if only
    /// characters to be skipped, or none, are before the target.
    bool scanUpToString(StringView target);

    /// Moves to the end of the target; false, with the location as it was, if the target does not follow.
    ///
    ///     NSScanner scanner("key: value");
    ///     scanner.scanPastString(":");  // true; scanLocation() is 4
    bool scanPastString(StringView target);

    /// @}

private:
    std::size_t locationAfterSkipping() const;

    NSString string_;
    NSCharacterSet skipped_;
    std::size_t location_ = 0;
    bool isCaseSensitive_ = false;
};

} // namespace ZQFoundation

#endif
