// SPDX-License-Identifier: MIT
// Compares and hashes nested collections, without recursion.
// Neither depth nor sharing may do harm: explicit stacks avoid recursion, and results that are stored for
// shared parts avoid exponential time.
#include <cstring>
#include <unordered_set>
#include <vector>

#include "foundation/objects/CharacterSetPages.h"
#include "foundation/objects/Hashing.h"
#include "foundation/objects/KeyTable.h"
#include "foundation/objects/Numbers.h"

namespace ZQFoundation {

using detail::Access;
using detail::Kind;
using detail::TableBody;
using detail::tableOf;

namespace {

bool isTable(Kind kind) noexcept { return kind == Kind::dictionary || kind == Kind::set; }

bool isCollection(const NSObject& object) noexcept {
    return Access::kind(object) == Kind::array || isTable(Access::kind(object));
}

// A URL equals another one only with an equal chain of bases, whatever the resolved texts are.
bool equalUrls(NSURL left, NSURL right) {
    while (left && right) {
        if (Access::body(left) == Access::body(right)) {
            return true;
        }
        if (!left.relativeString().isEqualToString(right.relativeString())) {
            return false;
        }
        left = left.baseURL();
        right = right.baseURL();
    }
    return !left && !right;
}

// By name and not by record: the same class may be registered twice.
bool equalClasses(const NSObject& left, const NSObject& right) noexcept {
    const detail::ClassRecord& first = *Access::classRecord(left);
    const detail::ClassRecord& second = *Access::classRecord(right);
    return first.nameLength == second.nameLength &&
           std::memcmp(first.name, second.name, first.nameLength) == 0;
}

/// For everything but collections.
bool equalLeaves(const NSObject& left, const NSObject& right) {
    if (detail::isNumber(left) && detail::isNumber(right)) {
        // Across kinds: 1, 1.0 and true are equal.
        return detail::compareNumbers(left, right) == NSOrderedSame;
    }
    if (Access::kind(left) == Kind::hostObject) {
        // The host object decides, on whichever side it is.
        return left.hostObject()->isEqual(right);
    }
    if (Access::kind(right) == Kind::hostObject) {
        return right.hostObject()->isEqual(left);
    }
    if (Access::kind(left) != Access::kind(right)) {
        return false;
    }
    switch (Access::kind(left)) {
    case Kind::null:
        return true;
    case Kind::date:
        return left.as<NSDate>().isEqualToDate(right.as<NSDate>());
    case Kind::classObject:
        return equalClasses(left, right);
    case Kind::string:
        return left.as<NSString>().isEqualToString(right.as<NSString>());
    case Kind::data:
        return left.as<NSData>().isEqualToData(right.as<NSData>());
    case Kind::url:
        return equalUrls(left.as<NSURL>(), right.as<NSURL>());
    case Kind::characterSet:
        return detail::equalCharacterSets(*Access::characterSet(left), *Access::characterSet(right));
    default:
        return false;
    }
}

// A part with one reference occurs in one place only, and is not worth remembering.
bool isShared(const NSObject& collection) noexcept {
    return __atomic_load_n(&Access::body(collection)->references, __ATOMIC_RELAXED) > 1;
}

/// Compares two trees of any depth with an explicit stack. A part that either tree shares in several places
/// is compared once, so values with many shared parts do not take exponential time.
class TreeComparison {
public:
    bool equal(const NSObject& left, const NSObject& right) {
        if (!enter(left, right)) {
            return false;
        }
        while (!frames_.empty()) {
            if (!step()) {
                return false;
            }
        }
        return true;
    }

private:
    struct Frame {
        const NSObject* left; ///< next element, or null for a table
        const NSObject* right;
        const NSDictionaryEntry* leftEntry;
        TableBody* rightTable;
        std::size_t remaining;
    };

    struct Pair {
        const void* left;
        const void* right;
        bool operator==(const Pair&) const = default;
    };

    struct PairHash {
        std::size_t operator()(const Pair& pair) const noexcept {
            return detail::hashBytes(&pair, sizeof pair, 0);
        }
    };

    /// Decides what can be decided at once; the members of two collections of the same size come later. The
    /// same body on both sides is equal without a look at its members.
    bool enter(const NSObject& left, const NSObject& right) {
        if (!isCollection(left) || !isCollection(right)) {
            return equalLeaves(left, right);
        }
        if (Access::kind(left) != Access::kind(right)) {
            return false;
        }
        if (Access::body(left) == Access::body(right) || wasEntered(left, right)) {
            return true;
        }
        if (Access::kind(left) == Kind::array) {
            const auto& first = *Access::array(left);
            const auto& second = *Access::array(right);
            return first.count == second.count &&
                   push({Access::array(left)->elements(), Access::array(right)->elements(), nullptr, nullptr,
                         first.count});
        }
        TableBody& first = *tableOf(left);
        TableBody& second = *tableOf(right);
        return first.count == second.count && push({nullptr, nullptr, first.entries(), &second, first.count});
    }

    bool push(const Frame& frame) {
        frames_.push_back(frame);
        return true;
    }

    /// Every pair entered must prove equal in the end, so one that was entered before needs no second
    /// comparison.
    bool wasEntered(const NSObject& left, const NSObject& right) {
        const bool shared = isShared(left) && isShared(right);
        return shared && !entered_.insert({Access::body(left), Access::body(right)}).second;
    }

    bool step() {
        Frame& frame = frames_.back();
        if (frame.remaining == 0) {
            frames_.pop_back();
            return true;
        }
        --frame.remaining;
        if (frame.left != nullptr) {
            return enter(*frame.left++, *frame.right++);
        }
        TableBody& rightTable = *frame.rightTable;
        return enterEntry(*frame.leftEntry++, rightTable);
    }

    bool enterEntry(const NSDictionaryEntry& entry, TableBody& table) {
        const NSDictionaryEntry* match = nullptr;
        if (!isCollection(entry.key)) {
            // A leaf is found by its hash, and its key needs no further comparison.
            match = detail::findKey(table, entry.key);
            return match != nullptr && enter(entry.value, match->value);
        }
        bool several = false;
        match = detail::onlyCandidate(table, entry.key, several);
        if (several) { // only where the hashes of host objects collide; found means equal
            match = detail::findKey(table, entry.key);
            return match != nullptr && enter(entry.value, match->value);
        }
        return match != nullptr && enter(entry.key, match->key) && enter(entry.value, match->value);
    }

    std::vector<Frame> frames_;
    std::unordered_set<Pair, PairHash> entered_;
};

std::uint64_t& structuralHashSlot(const NSObject& collection) noexcept {
    return Access::kind(collection) == Kind::array ? Access::array(collection)->structuralHash
                                                   : tableOf(collection)->structuralHash;
}

// Relaxed: the number depends on the contents alone, and those are visible to all that can reach the body.
std::uint64_t storedHash(const NSObject& collection) noexcept {
    return __atomic_load_n(&structuralHashSlot(collection), __ATOMIC_RELAXED);
}

/// Calls `visit` with each member: elements, or keys and values.
template <class Visit>
void visitMembers(const NSObject& collection, const Visit& visit) {
    if (Access::kind(collection) == Kind::array) {
        detail::ArrayBody& body = *Access::array(collection);
        for (std::size_t i = 0; i < body.count; ++i) {
            visit(body.elements()[i]);
        }
        return;
    }
    TableBody& table = *tableOf(collection);
    for (std::size_t i = 0; i < table.used; ++i) {
        visit(table.entries()[i].key);
        visit(table.entries()[i].value);
    }
}

/// The hash of a leaf, or of a collection whose hash is already stored.
std::uint64_t memberHash(const NSObject& member) {
    return isCollection(member) ? storedHash(member) : detail::hashObject(member, 0);
}

/// Combines the members' hashes. Those of a table are added, so that the order of the entries does not
/// matter.
std::uint64_t combinedHash(const NSObject& collection) {
    // Odd constants with their bits spread; equal collections get equal hashes in every process, since no
    // random seed is involved.
    constexpr std::uint64_t step = 0xD6E8FEB86659FD93U;
    if (Access::kind(collection) == Kind::array) {
        detail::ArrayBody& body = *Access::array(collection);
        // The length is included, so that nested empty arrays differ from one.
        std::uint64_t hash = detail::mixed(body.count + 1, 0xA24BAED4963EE407U);
        for (std::size_t i = 0; i < body.count; ++i) {
            hash = detail::mixed(hash ^ memberHash(body.elements()[i]), step);
        }
        return hash;
    }
    TableBody& table = *tableOf(collection);
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < table.used; ++i) {
        const NSDictionaryEntry& entry = table.entries()[i];
        sum += detail::mixed(memberHash(entry.key) ^ step, memberHash(entry.value) | 1);
    }
    return detail::mixed(sum ^ (table.count + 1), 0x9FB21C651E98DF25U);
}

/// The hash of a whole tree, computed once for each body in it and stored there: from the leaves up, with an
/// explicit stack. Threads that compute it at the same time store the same number.
std::uint64_t structuralHash(const NSObject& collection) {
    std::vector<const NSObject*> open;
    if (storedHash(collection) == 0) {
        open.push_back(&collection);
    }
    while (!open.empty()) {
        const NSObject& current = *open.back();
        const std::size_t before = open.size();
        if (storedHash(current) == 0) {
            // Members without a hash come first. A member that is pushed twice is found finished the second
            // time.
            visitMembers(current, [&](const NSObject& member) {
                if (isCollection(member) && storedHash(member) == 0) {
                    open.push_back(&member);
                }
            });
        }
        if (open.size() == before) {
            open.pop_back();
            if (storedHash(current) == 0) {
                // Never 0, which means "not yet computed".
                __atomic_store_n(&structuralHashSlot(current), combinedHash(current) | 1, __ATOMIC_RELAXED);
            }
        }
    }
    return storedHash(collection);
}

} // namespace

} // namespace ZQFoundation

namespace ZQFoundation::detail {

// The seed differs from process to process for tables, and is 0 for hashes that hosts see. Each kind changes
// it differently, so that values of different kinds with equal bytes are spread.
std::uint64_t hashObject(const NSObject& object, std::uint64_t seed) {
    switch (Access::kind(object)) {
    case Kind::absent:
        return 0;
    case Kind::null:
        return mixed(seed ^ 1, 0x8EBC6AF09C88C6E3U);
    case Kind::date: {
        const double seconds = Access::real(object) + 0.0; // one zero for both signs
        return hashBytes(&seconds, sizeof seconds, ~seed);
    }
    case Kind::classObject:
        return hashBytes(Access::classRecord(object)->name, Access::classRecord(object)->nameLength,
                         seed + 1);
    case Kind::string: {
        const StringBody& body = *Access::string(object);
        return body.isAscii ? hashBytes(body.ascii(), body.length, seed)
                            : hashBytes(body.units(), body.length * sizeof(char16_t), ~seed);
    }
    case Kind::data:
        return hashBytes(Access::data(object)->bytes(), Access::data(object)->length, seed + 2);
    case Kind::url:
        return mixed(hashObject(Access::url(object)->text, seed), 0x8EBC6AF09C88C6E3U);
    case Kind::array:
    case Kind::dictionary:
    case Kind::set:
        return mixed(structuralHash(object) ^ seed, 0x8EBC6AF09C88C6E3U);
    case Kind::characterSet:
        return hashCharacterSet(*Access::characterSet(object), seed + 3);
    case Kind::hostObject:
        return mixed(object.hostObject()->hash() ^ seed, 0xA24BAED4963EE407U);
    default:
        return mixed(numberHashInput(object) ^ seed, 0x9E6C63D0876A9A47U);
    }
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

bool NSObject::isEqual(const NSObject& other) const {
    // As for any message to nil: nil equals nothing, not even nil.
    if (!*this || !other) {
        return false;
    }
    if (!isCollection(*this) || !isCollection(other)) {
        return equalLeaves(*this, other);
    }
    return TreeComparison().equal(*this, other);
}

std::size_t NSObject::hash() const { return detail::hashObject(*this, 0); }

} // namespace ZQFoundation
