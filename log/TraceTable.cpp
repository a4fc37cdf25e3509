// SPDX-License-Identifier: MIT
// Fills the table of a reading, and looks up keys given as units.
#include "log/TraceTable.h"

#include <new>
#include <string>

#include "foundation/text/Utf.h"

namespace ZQFoundation::detail {

namespace {

// At most half of the slots are taken, so that a search for a missing key ends after a few of them. The
// smallest table has 1 KiB; the largest, 512 KiB, has room for 4096 keys, and those beyond are found in the
// reading instead, with the lock.
constexpr std::size_t fewestSlots = 16;
constexpr std::size_t maxSlots = 8192;

/// A power of two: a mask then makes a slot of a hash.
std::size_t slotsFor(std::size_t keys) noexcept {
    return keys <= fewestSlots / 2 ? fewestSlots : keys >= maxSlots / 2 ? maxSlots : std::bit_ceil(2 * keys);
}

// A reader that sees a word of the new reading must also see that the previous one has ended: that was stored
// before the first of these stores.
void store(std::uint64_t& word, std::uint64_t value) noexcept {
    __atomic_store_n(&word, value, __ATOMIC_RELEASE);
}

} // namespace

// The slots follow the object in one allocation, aligned to cache lines. It is never freed: readers without a
// lock cannot say that they have left it.
TraceTable* TraceTable::make(std::size_t keys, const TraceTable* replaced) {
    static_assert(sizeof(TraceTable) == sizeof(Slot));
    static_assert(alignof(TraceTable) == alignof(Slot));
    const std::size_t slots = slotsFor(keys);
    const std::size_t bytes = sizeof(TraceTable) + slots * sizeof(Slot);
    void* const memory = ::operator new(bytes, std::align_val_t(alignof(TraceTable)));
    std::memset(memory, 0, bytes);
    return new (memory) TraceTable(slots, replaced);
}

bool TraceTable::hasRoomFor(std::size_t keys) const noexcept { return slotsFor(keys) <= slotMask_ + 1; }

/// False for a key that cannot be entered. The word of a slot is stored last, and only it makes the slot a
/// used one: a reader that sees it sees the whole text.
bool TraceTable::enter(const NSString& key, TraceAnswer answer) {
    const std::string bytes = key.utf8();
    if (bytes.size() > maxKeyBytes || bytes.find("\uFFFD") != std::string::npos) {
        return false;
    }
    const std::uint64_t hash = hashOf(bytes.data(), bytes.size());
    std::size_t place = hash;
    while (slots()[place & slotMask_].word != 0) {
        ++place;
    }
    Slot& slot = slots()[place & slotMask_];
    for (std::size_t i = 0; i < wordsIn(bytes.size()); ++i) {
        store(slot.text[i], wordOf(bytes.data(), bytes.size(), i));
    }
    store(slot.word, answer.word() | nameOf(hash, bytes.size()));
    return true;
}

// Empties all slots first. A reader that is still here from two readings ago then finds free slots, and ends.
// The state comes last, because it says what the slots mean.
void TraceTable::fill(const NSDictionary& values, bool anyKeyIsActive) {
    for (std::size_t i = 0; i <= slotMask_; ++i) {
        store(slots()[i].word, 0);
    }
    std::uint64_t state = anyKeyIsActive ? anyIsActive : 0;
    std::size_t left = (slotMask_ + 1) / 2;
    for (const NSDictionaryEntry& entry : values) {
        const NSString key(entry.key);
        const bool isEntered =
            left != 0 && enter(key, TraceAnswer(values.boolForKey(key), values.integerForKey(key)));
        left -= isEntered ? 1 : 0;
        state |= isEntered ? holdsKeys : holdsKeys | isIncomplete;
    }
    store(state_, state);
}

// A key given as UTF-16 units, such as a string with characters beyond ASCII: converted on the stack, since a
// query allocates nothing. One that is too long is in no table.
TraceAnswer TraceTable::findUnits(const char16_t* units, std::size_t count) const noexcept {
    char bytes[maxKeyBytes];
    if (count > maxKeyBytes || utf8Length(units, count, IllFormed::replace) > maxKeyBytes) {
        return TraceAnswer();
    }
    const char* const end = utf16ToUtf8(units, count, bytes, IllFormed::replace);
    return findBytes(bytes, static_cast<std::size_t>(end - bytes));
}

} // namespace ZQFoundation::detail
