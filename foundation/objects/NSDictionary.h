// SPDX-License-Identifier: MIT
// Declares NSDictionary and its builder, NSMutableDictionary.
#ifndef ZQFOUNDATION_OBJECTS_NSDICTIONARY_H
#define ZQFOUNDATION_OBJECTS_NSDICTIONARY_H

#include "NSArray.h"

namespace ZQFoundation {

class NSMutableDictionary;

/// One key with its value.
struct NSDictionaryEntry {
    NSObject key;   ///< never nil inside a dictionary
    NSObject value; ///< never nil inside a dictionary
};

/// An immutable collection of values under distinct keys, none of them nil. Iteration follows the order in
/// which the keys were first inserted, so it is the same in every run.
///
///     const NSDictionary page{{"size", 12}, {"font", "serif"}};
///     page["font"];                                        // "serif"
///     page.objectForKey("color");                          // nil
///     for (const NSDictionaryEntry& entry : page) ...      // size, then font
class ZQFOUNDATION_EXPORT NSDictionary : public NSObject {
public:
    constexpr NSDictionary() noexcept = default;
    constexpr NSDictionary(std::nullptr_t) noexcept {}

    /// `NSDictionary{{"b", 2}, {"A", NSArray{"x"}}}`. Of equal keys, the last value is kept. Raises
    /// NSInvalidArgumentException when a key or value is nil.
    NSDictionary(std::initializer_list<NSDictionaryEntry> entries);

    /// The dictionary that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSDictionary> T>
    NSDictionary(const T& object) : NSDictionary(detail::convertedObject(object)) {}

    /// The value if it is a dictionary, else nil.
    explicit NSDictionary(const NSObject& object) noexcept : NSObject(object, detail::Kind::dictionary) {}

    /// The empty dictionary.
    static NSDictionary dictionary();

    /// The property list in the file (old-style text, XML or binary) if it is a dictionary; nil for any
    /// other, and for a file that cannot be read.
    static NSDictionary dictionaryWithContentsOfFile(StringView path);

    /// The entries of a range of pairs, such as a `std::map`. Raises NSInvalidArgumentException when a key or
    /// value is nil.
    ///
    ///     NSDictionary::dictionaryWithRange(std::map<std::string, int>{{"a", 1}});  // { a = 1; }
    template <class Range>
    static NSDictionary dictionaryWithRange(Range&& range);

    /// The number of entries; 0 for nil.
    std::size_t count() const noexcept;

    /// The same as `count`, for templates that expect containers.
    std::size_t size() const noexcept { return count(); }

    /// The value under the key; nil for a key that is missing or nil.
    NSObject objectForKey(const NSObject& key) const;

    /// The value under a key given as text, which needs no conversion and no allocation; nil for a key that
    /// is missing or nil.
    template <detail::PlainText T>
    NSObject objectForKey(const T& key) const {
        return objectForText(StringView(key));
    }

    /// The value under the key; nil for a key that is missing or nil.
    NSObject objectForKey(const NSString& key) const { return objectForText(key); }

    /// Nil: there is nothing under a nil key.
    NSObject objectForKey(std::nullptr_t) const { return {}; }

    /// As `objectForKey`: `dictionary["key"]`. Read-only; entries are added by `NSMutableDictionary`.
    template <class Key>
    const NSObject operator[](const Key& key) const {
        if constexpr (detail::PlainText<Key> || std::is_base_of_v<NSObject, Key>) {
            return objectForKey(key);
        } else {
            return objectForKey(NSObject(key));
        }
    }

    /// The keys, in the order of the entries; nil for nil.
    ///
    ///     NSDictionary{{"b", 1}, {"a", 2}}.allKeys();  // b, a
    NSArray allKeys() const;

    /// The values, in the order of the entries; nil for nil.
    NSArray allValues() const;

    /// Whether the same keys have equal values, in whatever order. False when either is nil.
    ///
    ///     NSDictionary{{"a", 1}, {"b", 2}}.isEqualToDictionary({{"b", 2.0}, {"a", 1}});  // true
    bool isEqualToDictionary(const NSDictionary& other) const;

    /// The first entry, for `for` loops; valid as long as a handle holds the dictionary.
    const NSDictionaryEntry* begin() const noexcept;

    /// The end of the entries that start at `begin`.
    const NSDictionaryEntry* end() const noexcept { return begin() + count(); }

    /// @name NSDictionary(ZQFoundation)
    /// @{

    /// The dictionary in a property-list text (old-style or XML); nil for any other text. Never raises.
    ///
    ///     NSDictionary::dictionaryWithContentsOfString("{ a = 1; b = (x, y); }");  // two entries
    ///     NSDictionary::dictionaryWithContentsOfString("( 1, 2 )");                // nil: an array
    static NSDictionary dictionaryWithContentsOfString(StringView text);

    /// "{ A = ( x ); b = 2; }", keys in case-insensitive order; "{ }" when empty; nil for nil.
    NSString condensedDescription() const;

    /// The truth value: its string form by the string rule (so 0.5 is false here), else the low 8 bits of its
    /// integer form; false when missing.
    ///
    ///     const NSDictionary values{{"a", 0.5}, {"b", "Yes"}};
    ///     values.boolForKey("a");  // false
    ///     values.boolForKey("b");  // true
    bool boolForKey(StringView key) const;

    /// The value's `floatValue`; 0 when missing or without one.
    ///
    ///     NSDictionary{{"r", "2.5 cm"}}.floatForKey("r");  // 2.5
    float floatForKey(StringView key) const;

    /// The value's 32-bit `intValue`, widened; 0 when missing or without one.
    ///
    ///     NSDictionary{{"n", "12abc"}}.integerForKey("n");     // 12
    ///     NSDictionary{{"n", 5000000000}}.integerForKey("n");  // 705032704: the low 32 bits
    std::int64_t integerForKey(StringView key) const;

    /// The key if the dictionary, which may be nil, has no value for it; else nil, **whether or not a key
    /// with a counter is free**.
    ///
    ///     const NSDictionary values{{"a", 1}};
    ///     values.uniqueKeyForKey_usingIntermediateString("b", " ");  // "b"
    ///     values.uniqueKeyForKey_usingIntermediateString("a", " ");  // nil, although "a 1" is free
    NSString uniqueKeyForKey_usingIntermediateString(const NSString& key,
                                                     StringView intermediateString) const;

    /// The key if the dictionary has no value for it, else nil: **no key with a counter is tried, whatever
    /// `maxAttempts` says**.
    NSString uniqueKeyForKey_usingIntermediateString_maxAttempts(const NSString& key,
                                                                 StringView intermediateString,
                                                                 std::uint64_t maxAttempts) const;

    /// @}

private:
    friend struct detail::Access;
    explicit NSDictionary(Payload payload) noexcept : NSObject(payload, detail::Kind::dictionary) {}
    NSObject objectForText(StringView key) const;
};

/// Builds a dictionary entry by entry. Movable, not copyable; `dictionary()` transfers the entries without a
/// copy.
///
///     NSMutableDictionary page;
///     page.setObject_forKey(12, "size");
///     page.setObject_forKey("serif", "font");
///     const NSDictionary result = page.dictionary();  // { font = serif; size = 12; }
class ZQFOUNDATION_EXPORT NSMutableDictionary {
public:
    NSMutableDictionary() noexcept = default;

    /// A mutable copy; of nil the empty one.
    explicit NSMutableDictionary(const NSDictionary& dictionary);
    NSMutableDictionary(NSMutableDictionary&& other) noexcept : body_(other.body_) { other.body_ = nullptr; }
    NSMutableDictionary& operator=(NSMutableDictionary&& other) noexcept;
    ~NSMutableDictionary();

    /// Stores the object under the key. Raises NSInvalidArgumentException when either is nil. An equal key
    /// keeps its place and gets the new value.
    void setObject_forKey(NSObject object, NSObject key);

    /// Removes the key with its value; a missing key is ignored.
    void removeObjectForKey(const NSObject& key);

    /// The value under the key, or nil.
    NSObject objectForKey(const NSObject& key) const;

    /// The number of entries so far.
    std::size_t count() const noexcept;

    /// The same as `count`, for templates that expect containers.
    std::size_t size() const noexcept { return count(); }

    /// The entries as an immutable dictionary; the builder is empty afterwards.
    [[nodiscard]] NSDictionary dictionary();

private:
    detail::Body* body_ = nullptr;
};

template <class Range>
NSDictionary NSDictionary::dictionaryWithRange(Range&& range) {
    typename detail::IteratedRange<std::remove_cvref_t<Range>>::type& iterated = range;
    NSMutableDictionary entries;
    for (const auto& [key, value] : iterated) {
        entries.setObject_forKey(value, key);
    }
    return entries.dictionary();
}

} // namespace ZQFoundation

#endif
