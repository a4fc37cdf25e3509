// SPDX-License-Identifier: MIT
// Comparison of values, as far as a form of property lists keeps them.
#ifndef ZQFOUNDATION_FUZZ_SAMEVALUE_H
#define ZQFOUNDATION_FUZZ_SAMEVALUE_H

#include <bit>
#include <cmath>
#include <cstdint>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSData.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/objects/NSString.h"

namespace ZQFoundation::fuzzing {

/// How much of a value a form of property lists keeps.
enum class Kept {
    everything, ///< kinds and bits; all not-a-numbers are the same
    xml,        ///< dates lose fractions of a second, singles become doubles
    texts,      ///< numbers, booleans and dates become their descriptions
};

/// Deep values are compared by recursion; the readers allow a few hundred levels.
bool isSame(const NSObject& found, const NSObject& original, Kept kept);

using ZQFoundation::detail::Access;
using ZQFoundation::detail::Kind;

inline bool isSameReal(double found, double original) {
    return std::bit_cast<std::uint64_t>(found) == std::bit_cast<std::uint64_t>(original) ||
           (std::isnan(found) && std::isnan(original));
}

inline Kind kindOf(const NSObject& value, Kept kept) {
    const Kind kind = Access::kind(value);
    return kept == Kept::xml && kind == Kind::singleReal ? Kind::real : kind;
}

inline bool isSameArray(const NSArray& found, const NSArray& original, Kept kept) {
    if (found.count() != original.count()) {
        return false;
    }
    for (std::size_t index = 0; index < found.count(); ++index) {
        if (!isSame(found.objectAtIndex(index), original.objectAtIndex(index), kept)) {
            return false;
        }
    }
    return true;
}

inline bool isSameDictionary(const NSDictionary& found, const NSDictionary& original, Kept kept) {
    if (found.count() != original.count()) {
        return false;
    }
    for (const NSDictionaryEntry& entry : found) {
        if (!isSame(entry.value, original.objectForKey(entry.key), kept)) {
            return false;
        }
    }
    return true;
}

inline bool isSameScalar(const NSObject& found, const NSObject& original, Kept kept) {
    switch (Access::kind(found)) {
    case Kind::boolean:
    case Kind::signedInteger:
    case Kind::unsignedInteger:
        return Access::integer(found) == Access::integer(original);
    case Kind::real:
    case Kind::singleReal:
        return isSameReal(Access::real(found), Access::real(original));
    case Kind::date: {
        const double seconds = NSDate(original).timeIntervalSince1970();
        return isSameReal(NSDate(found).timeIntervalSince1970(),
                          kept == Kept::xml ? std::floor(seconds) : seconds);
    }
    case Kind::string:
        return NSString(found).isEqualToString(NSString(original));
    case Kind::data:
        return NSData(found).isEqualToData(NSData(original));
    default:
        return true; // nil and the null object have one value each
    }
}

inline bool isSame(const NSObject& found, const NSObject& original, Kept kept) {
    const Kind kind = kindOf(original, kept);
    const bool isContainerOrBytes = kind == Kind::array || kind == Kind::dictionary || kind == Kind::data;
    if (kept == Kept::texts && !isContainerOrBytes) {
        return NSString(found).isEqualToString(original.description());
    }
    if (kindOf(found, Kept::everything) != kind) {
        return false;
    }
    switch (kind) {
    case Kind::array:
        return isSameArray(NSArray(found), NSArray(original), kept);
    case Kind::dictionary:
        return isSameDictionary(NSDictionary(found), NSDictionary(original), kept);
    default:
        return isSameScalar(found, original, kept);
    }
}

} // namespace ZQFoundation::fuzzing

#endif
