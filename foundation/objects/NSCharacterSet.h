// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSCHARACTERSET_H
#define ZQFOUNDATION_OBJECTS_NSCHARACTERSET_H

#include "../text/NSRange.h"
#include "NSString.h"

namespace ZQFoundation {

namespace detail {
struct CharacterSetPages;
} // namespace detail

/// An immutable set of characters. A test of membership takes constant time.
///
///     const NSCharacterSet blanks = NSCharacterSet::whitespaceCharacterSet();
///     blanks.characterIsMember(u' '); // true
///
/// String operations test unit by unit, and a surrogate belongs to no set unless it was put in as a unit of
/// its own. The sets named after Unicode's categories follow the Unicode character database, version 15.0;
/// each is made on first request and kept until the process ends. Two sets are equal when they have the same
/// members. A nil set has none. `description` lists the first members in hexadecimal.
class ZQFOUNDATION_EXPORT NSCharacterSet : public NSObject {
public:
    constexpr NSCharacterSet() noexcept = default;
    constexpr NSCharacterSet(std::nullptr_t) noexcept {}

    /// The value when it is a character set, else nil.
    explicit NSCharacterSet(const NSObject& object) noexcept : NSObject(object, detail::Kind::characterSet) {}

    /// U+0009 and category Zs.
    static NSCharacterSet whitespaceCharacterSet();

    /// U+000A to U+000D, U+0085, U+2028, U+2029.
    static NSCharacterSet newlineCharacterSet();

    /// The members of both sets above.
    static NSCharacterSet whitespaceAndNewlineCharacterSet();

    /// Categories Cc and Cf.
    static NSCharacterSet controlCharacterSet();

    /// Category Nd: the digits of all scripts.
    static NSCharacterSet decimalDigitCharacterSet();

    /// Categories L* and M*.
    static NSCharacterSet letterCharacterSet();

    /// Category Ll, categories Lu and Lt.
    static NSCharacterSet lowercaseLetterCharacterSet();
    static NSCharacterSet uppercaseLetterCharacterSet();

    /// Categories L*, M* and N*.
    static NSCharacterSet alphanumericCharacterSet();

    /// Categories P* and S*.
    static NSCharacterSet punctuationCharacterSet();
    static NSCharacterSet symbolCharacterSet();

    /// ASCII letters, digits and "!$&'()*+,-./:=@_~": what stands in a URL's path as it is.
    static NSCharacterSet URLPathAllowedCharacterSet();

    /// The same and ";" and "?": what stands in its query.
    static NSCharacterSet URLQueryAllowedCharacterSet();

    /// The characters of the text, of which a surrogate pair is one and an unpaired surrogate another. Empty
    /// for an empty text, nil for nil.
    static NSCharacterSet characterSetWithCharactersInString(StringView characters);

    /// Code points from `range.location` on. Raises NSInvalidArgumentException when one is above U+10FFFF.
    static NSCharacterSet characterSetWithRange(NSRange range);

    /// All code points that are not members.
    NSCharacterSet invertedSet() const;

    /// Whether the unit is a member; false for nil.
    bool characterIsMember(char16_t unit) const noexcept;

    /// For any code point; false above U+10FFFF.
    bool longCharacterIsMember(char32_t codePoint) const noexcept;

    /// Whether all members of the other are members of this set too; true for nil, false of nil.
    bool isSupersetOfSet(const NSCharacterSet& other) const noexcept;

    // NSCharacterSet(ZQFoundation)
    // Shared sets, made on first request and kept until the process ends.

    /// No characters.
    static NSCharacterSet emptyCharacterSet();

    /// U+0000 alone.
    static NSCharacterSet nullByteCharacterSet();

    /// `whitespaceCharacterSet` and `controlCharacterSet` together.
    static NSCharacterSet whitespaceAndControlCharacterSet();

private:
    friend struct detail::Access;
    explicit NSCharacterSet(Payload payload) noexcept : NSObject(payload, detail::Kind::characterSet) {}
};

/// Builds a character set step by step. Exclusive and movable; `characterSet()` hands the members over.
class ZQFOUNDATION_EXPORT NSMutableCharacterSet {
public:
    NSMutableCharacterSet();

    /// A mutable copy; of nil the empty one.
    explicit NSMutableCharacterSet(const NSCharacterSet& set);
    NSMutableCharacterSet(NSMutableCharacterSet&& other) noexcept;
    NSMutableCharacterSet& operator=(NSMutableCharacterSet&& other) noexcept;
    ~NSMutableCharacterSet();

    /// Adds the characters, removes them, adds or keeps the other set's members. Nil changes nothing.
    void addCharactersInString(StringView characters);
    void removeCharactersInString(StringView characters);
    void formUnionWithCharacterSet(const NSCharacterSet& other);
    void formIntersectionWithCharacterSet(const NSCharacterSet& other);

    /// Adds or removes code points from `range.location` on. Raise NSInvalidArgumentException when one is
    /// above U+10FFFF.
    void addCharactersInRange(NSRange range);
    void removeCharactersInRange(NSRange range);

    /// From now on exactly those code points are members that were none.
    void invert();

    /// Whether the unit, or the code point, is a member now.
    bool characterIsMember(char16_t unit) const noexcept;
    bool longCharacterIsMember(char32_t codePoint) const noexcept;

    /// The members as an immutable set; the builder is empty afterwards.
    NSCharacterSet characterSet();

private:
    detail::CharacterSetPages* pages_;
};

} // namespace ZQFoundation

#endif
