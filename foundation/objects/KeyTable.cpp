// SPDX-License-Identifier: MIT
// The hash table of dictionaries and sets, in the order of insertion.
// Entries keep the order of insertion in one array, and a separate index of small slots finds them:
// iterating needs no index, and growing hashes no key again.
#include "foundation/objects/KeyTable.h"

#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "foundation/objects/Hashing.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t smallestCapacity = 4;
constexpr std::size_t maxCapacity = 0x7FFFFFFFU; // positions are 32 bits wide

// At most three quarters full, so that probing stays short, and there is always a free slot, at which it
// ends.
std::size_t slotCountFor(std::size_t capacity) noexcept {
    std::size_t count = 8;
    while (count * 3 < capacity * 4) {
        count *= 2;
    }
    return count;
}

template <class Matches>
NSDictionaryEntry* find(TableBody& table, std::uint64_t hash, const Matches& matches) {
    // The low half selects the slot and is stored in it, so that most different keys are distinguished
    // without looking at them.
    const auto fragment = static_cast<std::uint32_t>(hash);
    TableBody::Slot* const slots = table.slots();
    for (std::size_t i = fragment & table.slotMask;; i = (i + 1) & table.slotMask) {
        const TableBody::Slot slot = slots[i];
        if (slot.position == 0) {
            return nullptr;
        }
        if (slot.hash == fragment) {
            NSDictionaryEntry& entry = table.entries()[slot.position - 1];
            // A removed entry keeps its slot, with a nil key: the probing of others leads over it.
            if (entry.key && matches(entry.key)) {
                return &entry;
            }
        }
    }
}

// The caller has checked that the key is absent and that there is room.
void enterSlot(TableBody& table, std::uint32_t hash, std::size_t position) noexcept {
    TableBody::Slot* const slots = table.slots();
    std::size_t i = hash & table.slotMask;
    while (slots[i].position != 0) {
        i = (i + 1) & table.slotMask;
    }
    slots[i] = {hash, static_cast<std::uint32_t>(position + 1)};
}

/// Moves the entries over without touching their reference counts, closing holes on the way. The stored
/// hashes are kept, so no key is hashed again.
TableBody* rebuilt(TableBody* old, std::size_t capacity) {
    std::vector<std::uint32_t> hashes(old->used);
    TableBody* const table = makeTable(capacity);
    // Slots know their entries' positions, entries not their slots: the hashes are collected by position
    // first.
    for (std::size_t i = 0; i <= old->slotMask; ++i) {
        if (old->slots()[i].position != 0) {
            hashes[old->slots()[i].position - 1] = old->slots()[i].hash;
        }
    }
    for (std::size_t i = 0; i < old->used; ++i) {
        if (old->entries()[i].key) {
            std::memcpy(static_cast<void*>(table->entries() + table->used), old->entries() + i,
                        sizeof(NSDictionaryEntry));
            enterSlot(*table, hashes[i], table->used);
            ++table->used;
        }
    }
    table->count = table->used;
    // Without destructors: the entries now belong to the new table.
    ::operator delete(old);
    return table;
}

bool equalKeys(const NSObject& stored, const NSObject& key) { return stored.isEqual(key); }

// ASCII and other strings never equal each other, so the form decides first.
bool equalsAscii(const NSObject& stored, StringView text) noexcept {
    if (Access::kind(stored) != Kind::string) {
        return false;
    }
    const StringBody& body = *Access::string(stored);
    return body.isAscii && body.length == text.size() &&
           std::memcmp(body.ascii(), text.bytes(), text.size()) == 0;
}

bool equalsText(const NSObject& stored, const AsciiOrUtf16& text) noexcept {
    if (Access::kind(stored) != Kind::string) {
        return false;
    }
    const StringBody& body = *Access::string(stored);
    if (body.length != text.length() || bool(body.isAscii) != text.isAscii()) {
        return false;
    }
    return body.isAscii ? std::memcmp(body.ascii(), text.ascii(), body.length) == 0
                        : std::memcmp(body.units(), text.units(), body.length * sizeof(char16_t)) == 0;
}

} // namespace

TableBody* makeTable(std::size_t capacity) {
    if (capacity > maxCapacity) {
        throw std::bad_alloc();
    }
    const std::size_t slotCount = slotCountFor(capacity);
    const std::size_t bytes =
        sizeof(TableBody) + capacity * sizeof(NSDictionaryEntry) + slotCount * sizeof(TableBody::Slot);
    auto* const table = static_cast<TableBody*>(::operator new(bytes));
    table->references = 1;
    table->count = 0;
    // Entries and slots are raw memory until they are used; only the slots must be cleared.
    table->used = 0;
    table->capacity = capacity;
    table->slotMask = slotCount - 1;
    table->structuralHash = 0;
    std::memset(static_cast<void*>(table->slots()), 0, slotCount * sizeof(TableBody::Slot));
    return table;
}

NSDictionaryEntry* findKey(TableBody& table, const NSObject& key) {
    if (!key || table.count == 0) {
        return nullptr;
    }
    return find(table, hashObject(key, tableSeed()),
                [&](const NSObject& stored) { return equalKeys(stored, key); });
}

NSDictionaryEntry* findText(TableBody& table, StringView key) {
    if (!key || table.count == 0) {
        return nullptr;
    }
    // Mostly a literal, and ASCII: hashed and checked in one pass.
    // Bytes above ASCII hash by their units, so then the hash is useless, and the text is converted.
    if (key.form() != StringView::Form::utf16) {
        std::uint64_t seen = 0;
        const std::uint64_t hash = hashBytes(key.bytes(), key.size(), tableSeed(), seen);
        if ((seen & beyondAscii) == 0) {
            return find(table, hash, [&](const NSObject& stored) { return equalsAscii(stored, key); });
        }
    }
    const AsciiOrUtf16 text(key);
    return find(table, hashText(text, tableSeed()),
                [&](const NSObject& stored) { return equalsText(stored, text); });
}

TableBody* setEntry(TableBody* table, NSObject key, NSObject value) {
    const std::uint64_t hash = hashObject(key, tableSeed()); // a host object's may throw
    if (table == nullptr) {
        table = makeTable(smallestCapacity);
    }
    NSDictionaryEntry* const known =
        find(*table, hash, [&](const NSObject& stored) { return equalKeys(stored, key); });
    if (known != nullptr) {
        // The key that is present stays, and with it the entry's place in the order.
        known->value = std::move(value);
        return table;
    }
    if (table->used == table->capacity) {
        // If there are many holes, they are closed instead of growing.
        // A table that is filled and emptied repeatedly would otherwise grow forever.
        const bool grows = table->count * 4 >= table->capacity * 3;
        table = rebuilt(table, grows ? table->capacity * 2 + smallestCapacity : table->capacity);
    }
    new (table->entries() + table->used) NSDictionaryEntry{std::move(key), std::move(value)};
    enterSlot(*table, static_cast<std::uint32_t>(hash), table->used);
    ++table->used;
    ++table->count;
    return table;
}

bool removeKey(TableBody& table, const NSObject& key) {
    NSDictionaryEntry* const entry = findKey(table, key);
    if (entry == nullptr) {
        return false;
    }
    --table.count;
    const NSDictionaryEntry removed = std::move(*entry); // released when the table is whole again
    return true;
}

TableBody* sealTable(TableBody* table) {
    if (table == nullptr) {
        return makeTable(0);
    }
    // A large builder that lost most of its entries should not keep their room in a value that lives long.
    const bool wasteful = table->capacity > 64 && table->count * 2 < table->capacity;
    return table->count != table->used || wasteful ? rebuilt(table, table->count) : table;
}

TableBody* copyTable(TableBody& table, std::size_t capacity) {
    // Holes are copied, too, so that positions and hashes stay valid.
    TableBody* const copy = makeTable(capacity < table.used ? table.used : capacity);
    for (std::size_t i = 0; i < table.used; ++i) {
        new (copy->entries() + i) NSDictionaryEntry(table.entries()[i]);
    }
    for (std::size_t i = 0; i <= table.slotMask; ++i) {
        if (table.slots()[i].position != 0) {
            enterSlot(*copy, table.slots()[i].hash, table.slots()[i].position - 1);
        }
    }
    copy->used = table.used;
    copy->count = table.count;
    return copy;
}

void freeTable(TableBody* table) noexcept {
    if (table == nullptr) {
        return;
    }
    for (std::size_t i = 0; i < table->used; ++i) {
        table->entries()[i].~NSDictionaryEntry();
    }
    ::operator delete(table);
}

NSDictionaryEntry* onlyCandidate(TableBody& table, const NSObject& key, bool& several) {
    several = false;
    NSDictionaryEntry* first = nullptr;
    // Only the stored hash is compared; the callback is used to count.
    find(table, hashObject(key, tableSeed()), [&](const NSObject& stored) {
        if (first != nullptr) {
            several = true;
            return true;
        }
        // The key is the entry's first member.
        first = reinterpret_cast<NSDictionaryEntry*>(const_cast<NSObject*>(&stored));
        return false;
    });
    return first;
}

} // namespace ZQFoundation::detail
