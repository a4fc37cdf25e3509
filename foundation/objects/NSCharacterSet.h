// SPDX-License-Identifier: MIT
// Declares NSCharacterSet and its builder, NSMutableCharacterSet.
#ifndef ZQFOUNDATION_OBJECTS_NSCHARACTERSET_H
#define ZQFOUNDATION_OBJECTS_NSCHARACTERSET_H

#include "../text/NSRange.h"
#include "NSString.h"

namespace ZQFoundation::detail {
struct CharacterSetPages;
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// An immutable set of characters. A test of membership takes constant time.
///
///     const NSCharacterSet whitespace = NSCharacterSet::whitespaceCharacterSet();
///     whitespace.characterIsMember(u' '); // true
///
/// String operations test unit by unit, so no set contains a surrogate unless it was added as a separate
/// unit. The sets named after Unicode's categories follow the Unicode character database, version 15.0; each
/// is made on first request and kept until the process ends. Two sets are equal when they have the same
/// members. A nil set has none. `description` lists the first members in hexadecimal.
class ZQFOUNDATION_EXPORT NSCharacterSet : public NSObject {
public:
    constexpr NSCharacterSet() noexcept = default;
    constexpr NSCharacterSet(std::nullptr_t) noexcept {}

    /// The value if it is a character set, else nil.
    explicit NSCharacterSet(const NSObject& object) noexcept : NSObject(object, detail::Kind::characterSet) {}

    /// U+0009 and category Zs.
    static NSCharacterSet whitespaceCharacterSet();

    /// U+000A to U+000D, U+0085, U+2028, U+2029.
    static NSCharacterSet newlineCharacterSet();

    /// The members of `whitespaceCharacterSet` and `newlineCharacterSet`.
    static NSCharacterSet whitespaceAndNewlineCharacterSet();

    /// Categories Cc and Cf.
    static NSCharacterSet controlCharacterSet();

    /// Category Nd: the digits of all scripts.
    static NSCharacterSet decimalDigitCharacterSet();

    /// Categories L* and M*.
    static NSCharacterSet letterCharacterSet();

    /// Category Ll.
    static NSCharacterSet lowercaseLetterCharacterSet();

    /// Categories Lu and Lt.
    static NSCharacterSet uppercaseLetterCharacterSet();

    /// Categories L*, M* and N*.
    static NSCharacterSet alphanumericCharacterSet();

    /// Categories P*.
    static NSCharacterSet punctuationCharacterSet();

    /// Categories S*.
    static NSCharacterSet symbolCharacterSet();

    /// ASCII letters, digits and "!$&'()*+,-./:=@_~": the characters that a URL's path may contain unescaped.
    static NSCharacterSet URLPathAllowedCharacterSet();

    /// The members of `URLPathAllowedCharacterSet`, ";" and "?": the characters that a URL's query may
    /// contain unescaped.
    static NSCharacterSet URLQueryAllowedCharacterSet();

    /// The characters of the text. A surrogate pair is one character, and so is an unpaired surrogate. Empty
    /// for an empty text, nil for nil.
    static NSCharacterSet characterSetWithCharactersInString(StringView characters);

    /// A set of the code points from `range.location` on. Raises NSInvalidArgumentException if one is above
    /// U+10FFFF.
    static NSCharacterSet characterSetWithRange(NSRange range);

    /// All code points that are not members.
    NSCharacterSet invertedSet() const;

    /// Whether the unit is a member; false for nil.
    bool characterIsMember(char16_t unit) const noexcept;

    /// Whether the code point is a member; false above U+10FFFF and for nil.
    bool longCharacterIsMember(char32_t codePoint) const noexcept;

    /// Whether all members of the other set are members of this one too; true for a nil argument, false for a
    /// nil receiver.
    bool isSupersetOfSet(const NSCharacterSet& other) const noexcept;

    /// @name NSCharacterSet(ZQFoundation)
    /// Shared sets, made on first request and kept until the process ends.
    /// @{

    /// No characters.
    static NSCharacterSet emptyCharacterSet();

    /// U+0000 alone.
    static NSCharacterSet nullByteCharacterSet();

    /// `whitespaceCharacterSet` and `controlCharacterSet` together.
    static NSCharacterSet whitespaceAndControlCharacterSet();

    /// @}

private:
    friend struct detail::Access;
    explicit NSCharacterSet(Payload payload) noexcept : NSObject(payload, detail::Kind::characterSet) {}
};

/// Builds a character set step by step. Movable, not copyable; `characterSet()` transfers the members.
class ZQFOUNDATION_EXPORT NSMutableCharacterSet {
public:
    NSMutableCharacterSet();

    /// A mutable copy; of nil the empty one.
    explicit NSMutableCharacterSet(const NSCharacterSet& set);
    NSMutableCharacterSet(NSMutableCharacterSet&& other) noexcept;
    NSMutableCharacterSet& operator=(NSMutableCharacterSet&& other) noexcept;
    ~NSMutableCharacterSet();

    /// Adds the characters of the text; nil adds none.
    void addCharactersInString(StringView characters);

    /// Removes the characters of the text; nil removes none.
    void removeCharactersInString(StringView characters);

    /// Adds the other set's members; nil adds none.
    void formUnionWithCharacterSet(const NSCharacterSet& other);

    /// Keeps only the members that are also in the other set; nil changes nothing.
    void formIntersectionWithCharacterSet(const NSCharacterSet& other);

    /// Adds the code points from `range.location` on. Raises NSInvalidArgumentException if one is above
    /// U+10FFFF.
    void addCharactersInRange(NSRange range);

    /// Removes the code points from `range.location` on. Raises NSInvalidArgumentException if one is above
    /// U+10FFFF.
    void removeCharactersInRange(NSRange range);

    /// Replaces the members with all other code points.
    void invert();

    /// Whether the unit is a member now.
    bool characterIsMember(char16_t unit) const noexcept;

    /// Whether the code point is a member now; false above U+10FFFF.
    bool longCharacterIsMember(char32_t codePoint) const noexcept;

    /// The members as an immutable set; the builder is empty afterwards.
    [[nodiscard]] NSCharacterSet characterSet();

private:
    detail::CharacterSetPages* pages_;
};

} // namespace ZQFoundation

#endif
