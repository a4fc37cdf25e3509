// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DEFAULTSCHANGES_H
#define ZQFOUNDATION_PROCESS_DEFAULTSCHANGES_H

#include "foundation/objects/NSDictionary.h"
#include "foundation/system/Published.h"

namespace ZQFoundation::detail {

/// Whether a change removes its key: the null object, which no property list holds, stands for that.
bool isRemoval(const NSObject& change);

/// The values of a file, which may be nil, with changes made to them.
NSDictionary withChanges(const NSDictionary& file, const NSDictionary& changes);

/// What a process has changed in a domain and not yet saved. Constant-initialised, never destroyed, and
/// usable from any thread and in a forked child.
class DefaultsChanges {
public:
    /// New values by key, and for each key the number of its change.
    struct Record {
        NSDictionary values;
        NSDictionary numbers;
    };

    constexpr DefaultsChanges() noexcept = default;

    /// All that counts here, what a forked child has from its parent too.
    NSDictionary values() const;

    void add(const NSObject& value, const NSString& key);

    /// Those made by this process itself.
    Record own() const;

    /// Drops changes that were saved, except keys that were changed again meanwhile.
    void forget(const Record& saved);

private:
    Record all() const;

    Published<Record> published_;
    Lock changing_; // lets one change follow the other
    std::uint32_t count_ = 0;
};

} // namespace ZQFoundation::detail

#endif
