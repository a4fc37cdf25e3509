// SPDX-License-Identifier: MIT
// Declares NSSet, a collection of distinct values.
#ifndef ZQFOUNDATION_OBJECTS_NSSET_H
#define ZQFOUNDATION_OBJECTS_NSSET_H

#include "NSArray.h"
#include "NSDictionary.h"

namespace ZQFoundation::detail {

/// Walks the members of a set, which are the keys of its entries: a set has the layout of a dictionary. A
/// forward iterator; valid as long as a handle holds the set.
class SetIterator {
public:
    using value_type = NSObject;
    using difference_type = std::ptrdiff_t;

    /// A position in no set.
    constexpr SetIterator() noexcept = default;
    constexpr explicit SetIterator(const NSDictionaryEntry* entry) noexcept : entry_(entry) {}

    /// The member; the next one; whether it is the same position.
    const NSObject& operator*() const noexcept { return entry_->key; }
    const NSObject* operator->() const noexcept { return &entry_->key; }
    SetIterator& operator++() noexcept {
        ++entry_;
        return *this;
    }
    SetIterator operator++(int) noexcept { return SetIterator(entry_++); }
    friend bool operator==(const SetIterator&, const SetIterator&) noexcept = default;

private:
    const NSDictionaryEntry* entry_ = nullptr;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// An immutable collection of distinct values, none of them nil; iterated in the order of insertion.
///
///     const NSSet names{"a", "b", "a"};
///     names.count();               // 2
///     names.containsObject("b");   // true, by content, in constant time
///
/// Values are distinct by `isEqual`: 1 and 1.0 are the same member, the first one given.
class ZQFOUNDATION_EXPORT NSSet : public NSObject {
public:
    constexpr NSSet() noexcept = default;
    constexpr NSSet(std::nullptr_t) noexcept {}

    /// A set of these members; of equal ones the first is kept. Raises NSInvalidArgumentException if one is
    /// nil.
    NSSet(std::initializer_list<NSObject> members);

    /// The set that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSSet> T>
    NSSet(const T& object) : NSSet(detail::convertedObject(object)) {}

    /// The value if it is a set, else nil.
    explicit NSSet(const NSObject& object) noexcept : NSObject(object, detail::Kind::set) {}

    /// The empty set.
    static NSSet set();

    /// A set of the array's elements, the first of equal ones; empty for nil.
    ///
    ///     NSSet::setWithArray(NSArray{"a", "b", "a"}).allObjects();  // a, b
    static NSSet setWithArray(const NSArray& array);

    /// The number of members; 0 for nil.
    std::size_t count() const noexcept;

    /// The same as `count`, for templates that expect containers.
    std::size_t size() const noexcept { return count(); }

    /// The members, for `for` loops; valid as long as a handle holds the set.
    detail::SetIterator begin() const noexcept;

    /// The end of the members, for `for` loops.
    detail::SetIterator end() const noexcept;

    /// Whether a member equals the object; false for nil, and for a nil set.
    bool containsObject(const NSObject& object) const;

    /// The equal member, or nil. It may differ from the object: for 1.0 it may be 1.
    ///
    ///     NSSet{1, "a"}.member(1.0);  // 1
    NSObject member(const NSObject& object) const;

    /// The members in the order of insertion; nil for nil.
    NSArray allObjects() const;

    /// Whether both have the same members. False when either is nil.
    ///
    ///     NSSet{1, 2}.isEqualToSet({2, 1});  // true
    bool isEqualToSet(const NSSet& other) const;

    /// @name NSSet(ZQFoundation)
    /// @{

    /// The string if it is not a member, else the first concatenation of string, intermediate string and
    /// counter that is not one, the counter from 1 to `maxAttempts`; nil if all are members. A nil set has no
    /// members; a nil intermediate string is empty.
    ///
    ///     const NSSet names{"a", "a 1"};
    ///     names.uniqueStringForString_usingIntermediateString_maxAttempts("a", " ", 10);  // "a 2"
    NSString uniqueStringForString_usingIntermediateString_maxAttempts(const NSString& string,
                                                                       StringView intermediateString,
                                                                       std::uint64_t maxAttempts) const;

    /// @}

private:
    friend struct detail::Access;
    explicit NSSet(Payload payload) noexcept : NSObject(payload, detail::Kind::set) {}
};

} // namespace ZQFoundation

#endif
