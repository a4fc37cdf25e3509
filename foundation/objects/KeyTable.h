// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_KEYTABLE_H
#define ZQFOUNDATION_OBJECTS_KEYTABLE_H

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/objects/Bodies.h"

namespace ZQFoundation::detail {

/// The body of dictionaries and sets: entries in the order of insertion, and after them an open-addressed
/// index of their positions. A removed entry leaves a hole with a nil key until the table is next rebuilt; a
/// sealed table has none.
struct TableBody : Body {
    struct Slot {
        std::uint32_t hash;
        std::uint32_t position; ///< of the entry, counted from 1; 0 when free
    };

    std::size_t count;    ///< entries with a key
    std::size_t used;     ///< entries, holes included
    std::size_t capacity; ///< room for entries
    std::size_t slotMask;
    std::uint64_t structuralHash; ///< 0: not yet computed

    NSDictionaryEntry* entries() noexcept { return reinterpret_cast<NSDictionaryEntry*>(this + 1); }
    Slot* slots() noexcept { return reinterpret_cast<Slot*>(entries() + capacity); }
};

static_assert(sizeof(TableBody) % alignof(NSDictionaryEntry) == 0);

inline TableBody* tableOf(const NSObject& object) noexcept {
    return static_cast<TableBody*>(Access::body(object));
}

/// An empty table with room for `capacity` entries.
TableBody* makeTable(std::size_t capacity);

/// The entry of the key, or null.
NSDictionaryEntry* findKey(TableBody& table, const NSObject& key);
NSDictionaryEntry* findText(TableBody& table, StringView key);

/// Inserts or replaces an entry; the table may move. Neither key nor value may be nil.
TableBody* setEntry(TableBody* table, NSObject key, NSObject value);

/// True if the key was present.
bool removeKey(TableBody& table, const NSObject& key);

/// Closes holes; the table may move.
TableBody* sealTable(TableBody* table);

/// A copy with room for `capacity` entries.
TableBody* copyTable(TableBody& table, std::size_t capacity);

/// Releases the entries of a table that no handle shares, then the table.
void freeTable(TableBody* table) noexcept;

/// The only entry whose stored hash equals the key's, null if there is none; `several` is set if there are
/// more.
NSDictionaryEntry* onlyCandidate(TableBody& table, const NSObject& key, bool& several);

} // namespace ZQFoundation::detail

#endif
