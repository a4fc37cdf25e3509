// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_OBJECTS_NSSET_H
#define ZQFOUNDATION_OBJECTS_NSSET_H

#include "NSArray.h"

namespace ZQFoundation {

/// An immutable collection of distinct values, none of them nil; walked in the order of entering.
class ZQFOUNDATION_EXPORT NSSet : public NSObject {
public:
    constexpr NSSet() noexcept = default;
    constexpr NSSet(std::nullptr_t) noexcept {}

    /// Raises NSInvalidArgumentException when a member is nil.
    NSSet(std::initializer_list<NSObject> members);

    /// The value when it is a set, else nil.
    explicit NSSet(const NSObject& object) noexcept : NSObject(object, detail::Kind::set) {}

    static NSSet set();
    static NSSet setWithArray(const NSArray& array);

    std::size_t count() const noexcept;
    bool containsObject(const NSObject& object) const;

    /// The equal member, or nil.
    NSObject member(const NSObject& object) const;

    NSArray allObjects() const;
    bool isEqualToSet(const NSSet& other) const;

    // NSSet(ZQFoundation)

    /// The string when it is no member, else the first of "<string><intermediate string><counter>" that is
    /// none, the counter from 1 to `maxAttempts`; nil when all are.
    NSString uniqueStringForString_usingIntermediateString_maxAttempts(const NSString& string,
                                                                       StringView intermediateString,
                                                                       std::uint64_t maxAttempts) const;

private:
    friend struct detail::Access;
    explicit NSSet(Payload payload) noexcept : NSObject(payload, detail::Kind::set) {}
};

} // namespace ZQFoundation

#endif
