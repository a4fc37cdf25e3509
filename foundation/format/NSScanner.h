// SPDX-License-Identifier: MIT
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
/// Every scan first passes over the characters to be skipped. One that fails leaves the location as it was,
/// before those, and its output untouched. Outputs may be null. A scanner belongs to one thread at a time.
class ZQFOUNDATION_EXPORT NSScanner {
public:
    /// A nil string reads as the empty one.
    explicit NSScanner(NSString string);

    /// A scanner of the string, at its start.
    static NSScanner scannerWithString(NSString string);

    /// The string that is read; empty when it was made of nil.
    const NSString& string() const noexcept { return string_; }

    /// Where the next scan begins, in units from the start.
    std::size_t scanLocation() const noexcept { return location_; }

    /// Moves to that unit; raises NSRangeException beyond the length.
    void setScanLocation(std::size_t location);

    /// White space and newlines unless set otherwise; nil or an empty set: nothing is skipped.
    const NSCharacterSet& charactersToBeSkipped() const noexcept { return skipped_; }
    void setCharactersToBeSkipped(NSCharacterSet set);

    /// Whether a text that is looked for must have the same case; false unless set otherwise.
    bool caseSensitive() const noexcept { return isCaseSensitive_; }
    void setCaseSensitive(bool isCaseSensitive) noexcept { isCaseSensitive_ = isCaseSensitive; }

    /// Whether only characters to be skipped remain.
    bool isAtEnd() const;

    /// Takes the text when it stands right there; the output is the text as it stands in the string. An empty
    /// or nil text is never there.
    bool scanString_intoString(StringView text, NSString* output);

    /// Takes everything up to the text, or to the end when it does not follow. False when the text stands
    /// right there or nothing is left. An empty or nil text never follows.
    bool scanUpToString_intoString(StringView text, NSString* output);

    /// Take the longest stretch of members; of non-members. False when it is empty.
    bool scanCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output);
    bool scanUpToCharactersFromSet_intoString(const NSCharacterSet& set, NSString* output);

    // Numbers are read as a string's own readings do, so white space in front is passed over also when it is
    // not among the characters to be skipped.

    /// A sign and ASCII digits, all of which are taken; saturating. False when there is no digit.
    bool scanInt(int* value);
    bool scanInteger(std::int64_t* value);
    bool scanLongLong(std::int64_t* value) { return scanInteger(value); }

    /// A decimal number with a point, as `NSString::doubleValue` reads it; false when there is no digit.
    bool scanDouble(double* value);
    bool scanFloat(float* value);

    /// Hexadecimal digits without a sign, "0x" in front of them or not; saturating. "0x" alone is digit 0.
    bool scanHexInt(unsigned* value);
    bool scanHexLongLong(std::uint64_t* value);

    // NSScanner(ZQFoundation)

    /// Moves to the start of the target; true also when the scanner stands there already or before characters
    /// to be skipped in front of it, and then it does not move. False, and the location as it was, when the
    /// target does not follow, or when it consists of characters to be skipped and nothing else remains.
    bool scanUpToString(StringView target);

    /// Moves behind the target. False, and the location as it was, when the target does not follow.
    bool scanPastString(StringView target);

private:
    std::size_t locationAfterSkipping() const;

    NSString string_;
    NSCharacterSet skipped_;
    std::size_t location_ = 0;
    bool isCaseSensitive_ = false;
};

} // namespace ZQFoundation

#endif
