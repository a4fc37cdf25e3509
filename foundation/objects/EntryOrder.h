// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_ENTRYORDER_H
#define ZQFOUNDATION_OBJECTS_ENTRYORDER_H

#include "foundation/objects/Bodies.h"
#include "foundation/objects/MergeSort.h"

namespace ZQFoundation::detail {

using EntryPointer = const NSDictionaryEntry*;

/// The entries of a dictionary, by key if all keys are strings, else in order of insertion.
template <class ComesBefore>
std::vector<EntryPointer> entriesInOrder(const NSObject& dictionary, const ComesBefore& comesBefore) {
    std::vector<EntryPointer> entries;
    bool allStrings = true;
    for (const NSDictionaryEntry& entry : dictionary.as<NSDictionary>()) {
        entries.push_back(&entry);
        allStrings = allStrings && Access::kind(entry.key) == Kind::string;
    }
    if (allStrings) {
        mergeSort(entries, [&](EntryPointer left, EntryPointer right) {
            return comesBefore(left->key.as<NSString>(), right->key.as<NSString>());
        });
    }
    return entries;
}

} // namespace ZQFoundation::detail

#endif
