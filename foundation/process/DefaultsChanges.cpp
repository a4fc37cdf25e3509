// SPDX-License-Identifier: MIT
// Keeps the changes of user defaults that are not yet saved.
// A forked child inherits its parent's unsaved changes and sees them, but does not save them: the parent
// will.
#include "foundation/process/DefaultsChanges.h"

#include "foundation/objects/NSNumber.h"

namespace ZQFoundation::detail {

namespace {

/// The upper half identifies which process in a chain of forks made the change.
/// Both halves together are unique, so that a change is never taken for another one of the same key.
std::uint64_t numberOf(std::uint32_t count) noexcept {
    return std::uint64_t{system::forkGeneration()} << 32 | count;
}

bool isOwn(const NSNumber& number) {
    return number.unsignedLongLongValue() >> 32 == system::forkGeneration();
}

} // namespace

bool isRemoval(const NSObject& change) { return static_cast<bool>(change.as<NSNull>()); }

NSDictionary withChanges(const NSDictionary& file, const NSDictionary& changes) {
    // The common case returns the file's dictionary without a copy.
    if (changes.count() == 0) {
        return file;
    }
    NSMutableDictionary result(file ? file : NSDictionary::dictionary());
    for (const NSDictionaryEntry& entry : changes) {
        if (isRemoval(entry.value)) {
            result.removeObjectForKey(entry.key);
        } else {
            result.setObject_forKey(entry.value, entry.key);
        }
    }
    return result.dictionary();
}

DefaultsChanges::Record DefaultsChanges::all() const {
    return published_.read([](const Record* known) { return known != nullptr ? *known : Record(); });
}

NSDictionary DefaultsChanges::values() const { return all().values; }

// A new record is made as a whole and published in one step: readers, and a child that is forked meanwhile,
// see the record before or after.
void DefaultsChanges::add(const NSObject& value, const NSString& key) {
    const Guard<Lock> guard(changing_);
    const Record before = all();
    NSMutableDictionary values(before.values);
    NSMutableDictionary numbers(before.numbers);
    values.setObject_forKey(value, key);
    numbers.setObject_forKey(numberOf(++count_), key);
    published_.replace(new Record{values.dictionary(), numbers.dictionary()});
}

DefaultsChanges::Record DefaultsChanges::own() const {
    const Record changes = all();
    NSMutableDictionary values;
    NSMutableDictionary numbers;
    for (const NSDictionaryEntry& entry : changes.numbers) {
        if (isOwn(NSNumber(entry.value))) {
            values.setObject_forKey(changes.values.objectForKey(entry.key), entry.key);
            numbers.setObject_forKey(entry.value, entry.key);
        }
    }
    return {values.dictionary(), numbers.dictionary()};
}

void DefaultsChanges::forget(const Record& saved) {
    const Guard<Lock> guard(changing_);
    const Record before = all();
    NSMutableDictionary values(before.values);
    NSMutableDictionary numbers(before.numbers);
    for (const NSDictionaryEntry& entry : saved.numbers) {
        // A key that was changed again has another number, and stays.
        if (numbers.objectForKey(entry.key) == entry.value) {
            values.removeObjectForKey(entry.key);
            numbers.removeObjectForKey(entry.key);
        }
    }
    published_.replace(new Record{values.dictionary(), numbers.dictionary()});
}

} // namespace ZQFoundation::detail
