// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DEFAULTSCHANGES_H
#define ZQFOUNDATION_PROCESS_DEFAULTSCHANGES_H

#include "foundation/objects/NSDictionary.h"
#include "foundation/system/Published.h"

namespace ZQFoundation::detail {

/// Whether a change removes its key: represented by the null object, which no property list can hold.
bool isRemoval(const NSObject& change);

/// The values of a file, which may be nil, with changes made to them.
NSDictionary withChanges(const NSDictionary& file, const NSDictionary& changes);

/// What a process has changed in a domain and not yet saved. Constant-initialized, never destroyed, and
/// usable from any thread and in a forked child.
class DefaultsChanges {
public:
    /// New values by key, and for each key the number of its change.
    struct Record {
        NSDictionary values;
        NSDictionary numbers;
    };

    constexpr DefaultsChanges() noexcept = default;

    /// All changes in effect here, including those that a forked child inherited from its parent.
    NSDictionary values() const;

    void add(const NSObject& value, const NSString& key);

    /// The changes made by this process itself.
    Record own() const;

    /// Discards changes that were saved, except keys that were changed again meanwhile.
    void forget(const Record& saved);

private:
    Record all() const;

    Published<Record> published_;
    Lock changing_; // serializes changes
    std::uint32_t count_ = 0;
};

} // namespace ZQFoundation::detail

#endif
