// SPDX-License-Identifier: MIT
// Reads zone files, and finds the period around an instant.
// The data may come from anywhere (TZDIR and TZ are the user's), so they are checked completely before any
// of them is used.
#include "foundation/time/ZoneRules.h"

#include <algorithm>
#include <cstring>

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t headerSize = 44;

/// Numbers are stored with the most significant byte first.
std::uint32_t readUnsigned32(const unsigned char* bytes) noexcept {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}
std::int32_t readSigned32(const unsigned char* bytes) noexcept {
    return static_cast<std::int32_t>(readUnsigned32(bytes));
}
std::int64_t readSigned64(const unsigned char* bytes) noexcept {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(readUnsigned32(bytes)) << 32 |
                                     readUnsigned32(bytes + 4));
}

struct Header {
    char version;
    std::uint32_t universalFlags;
    std::uint32_t standardFlags;
    std::uint32_t leapSeconds;
    std::uint32_t changes;
    std::uint32_t clocks;
    std::uint32_t nameBytes;

    bool hasWideTimes() const noexcept { return version >= '2'; }

    /// The size of the block that follows. Each term is below 2^37, so the sum fits.
    /// Counts are 32 bits wide, and their factors small.
    std::uint64_t blockSize(std::uint64_t timeSize) const noexcept {
        return changes * (timeSize + 1) + std::uint64_t{clocks} * 6 + nameBytes +
               leapSeconds * (timeSize + 4) + standardFlags + universalFlags;
    }
};

} // namespace

/// Reads zone data front to back; every step returns whether the data are good so far.
class ZoneDataReader {
public:
    ZoneDataReader(const char* bytes, std::size_t count) noexcept
        : at_(reinterpret_cast<const unsigned char*>(bytes)), left_(count) {}

    bool read(ZoneRules& rules) {
        if (!readHeader()) {
            return false;
        }
        // Version 1 has no other block and no rule.
        if (!header_.hasWideTimes()) {
            return readBlock(rules, 4);
        }
        // The first block is for readers that know only 32 bits; all of it comes again.
        return skip(header_.blockSize(4)) && readHeader() && header_.hasWideTimes() && readBlock(rules, 8) &&
               readFooter(rules);
    }

private:
    bool skip(std::uint64_t count) noexcept {
        if (count > left_) {
            return false;
        }
        at_ += count;
        left_ -= static_cast<std::size_t>(count);
        return true;
    }

    bool readHeader() noexcept {
        const unsigned char* const bytes = at_;
        if (!skip(headerSize) || std::memcmp(bytes, "TZif", 4) != 0) {
            return false;
        }
        header_.version = static_cast<char>(bytes[4]);
        header_.universalFlags = readUnsigned32(bytes + 20);
        header_.standardFlags = readUnsigned32(bytes + 24);
        header_.leapSeconds = readUnsigned32(bytes + 28);
        header_.changes = readUnsigned32(bytes + 32);
        header_.clocks = readUnsigned32(bytes + 36);
        header_.nameBytes = readUnsigned32(bytes + 40);
        // Later versions only add what may be ignored.
        return header_.version == '\0' || (header_.version >= '2' && header_.version <= '9');
    }

    bool readBlock(ZoneRules& rules, std::size_t timeSize) {
        const unsigned char* const times = at_;
        // More clocks cannot be addressed by an index of one byte.
        // The flags are not used, but their number must be right for what follows them.
        if (header_.clocks == 0 || header_.clocks > 256 || header_.nameBytes == 0 ||
            !flagCountIsGood(header_.universalFlags) || !flagCountIsGood(header_.standardFlags) ||
            !skip(header_.blockSize(timeSize))) {
            return false;
        }
        const unsigned char* const indexes = times + header_.changes * timeSize;
        const unsigned char* const clocks = indexes + header_.changes;
        const unsigned char* const names = clocks + std::size_t{header_.clocks} * 6;
        return takeChanges(rules, times, timeSize) && takeIndexes(rules, indexes) &&
               takeNames(rules, names) && takeClocks(rules, clocks);
    }

    bool flagCountIsGood(std::uint32_t count) const noexcept { return count == 0 || count == header_.clocks; }

    bool takeChanges(ZoneRules& rules, const unsigned char* times, std::size_t timeSize) {
        // The block's size was checked against the data, so that the room is bounded by them.
        rules.changes_.reserve(header_.changes);
        for (std::size_t i = 0; i < header_.changes; ++i) {
            const unsigned char* const time = times + i * timeSize;
            const std::int64_t change = timeSize == 4 ? readSigned32(time) : readSigned64(time);
            // Not ascending: a search would find the wrong change.
            if (i > 0 && change <= rules.changes_.back()) {
                return false;
            }
            rules.changes_.push_back(change);
        }
        return true;
    }

    bool takeIndexes(ZoneRules& rules, const unsigned char* indexes) {
        // Each must be the index of a clock: nothing checks it later.
        rules.clockAfter_.assign(indexes, indexes + header_.changes);
        return std::all_of(rules.clockAfter_.begin(), rules.clockAfter_.end(),
                           [this](std::uint8_t index) { return index < header_.clocks; });
    }

    /// The last name must be ended too, so that every start is the start of a whole name.
    bool takeNames(ZoneRules& rules, const unsigned char* names) {
        rules.names_.assign(reinterpret_cast<const char*>(names), header_.nameBytes);
        return rules.names_.back() == '\0' &&
               std::all_of(rules.names_.begin(), rules.names_.end(),
                           [](char c) { return c == '\0' || (c > ' ' && c < 0x7f); });
    }

    bool takeClocks(ZoneRules& rules, const unsigned char* clocks) {
        for (std::size_t i = 0; i < header_.clocks; ++i) {
            const unsigned char* const clock = clocks + i * 6;
            const std::int32_t offset = readSigned32(clock);
            // So that sums with times cannot overflow.
            if (offset < -maxZoneOffset || offset > maxZoneOffset || clock[4] > 1 ||
                clock[5] >= rules.names_.size()) {
                return false;
            }
            rules.clocks_.push_back({offset, clock[4] == 1, clock[5]});
        }
        return true;
    }

    bool readFooter(ZoneRules& rules) {
        const unsigned char* const start = at_;
        // A line feed at each end of the rule.
        if (!skip(1) || *start != '\n') {
            return false;
        }
        const char* const text = reinterpret_cast<const char*>(at_);
        const void* const end = std::memchr(text, '\n', left_);
        if (end == nullptr) {
            return false;
        }
        const std::size_t length = static_cast<std::size_t>(static_cast<const char*>(end) - text);
        // An empty rule: the last clock runs forever.
        return length == 0 || PosixZone::read(text, length, rules.rule_.emplace());
    }

    const unsigned char* at_;
    std::size_t left_;
    Header header_ = {};
};

std::optional<ZoneRules> ZoneRules::fromZoneData(const char* bytes, std::size_t count) {
    std::optional<ZoneRules> rules(std::in_place, ZoneRules());
    if (count > maxFileBytes || !ZoneDataReader(bytes, count).read(*rules)) {
        rules.reset();
    }
    return rules;
}

std::optional<ZoneRules> ZoneRules::fromNotation(const char* text, std::size_t count) {
    std::optional<ZoneRules> rules(std::in_place, ZoneRules());
    if (!PosixZone::read(text, count, rules->rule_.emplace())) {
        rules.reset();
    }
    return rules;
}

ZonePeriod ZoneRules::recordedPeriod(std::size_t clock, std::int64_t from,
                                     std::int64_t until) const noexcept {
    const Clock& running = clocks_[clock];
    return {from, until, running.offset, running.isDaylightSaving, names_.c_str() + running.nameStart};
}

ZonePeriod ZoneRules::periodAt(std::int64_t seconds) const noexcept {
    // The first change after the instant.
    const auto next = std::upper_bound(changes_.begin(), changes_.end(), seconds);
    if (next == changes_.end() && rule_) {
        ZonePeriod period = rule_->periodAt(seconds);
        // The rule holds since the last change only.
        if (!changes_.empty()) {
            period.from = std::max(period.from, changes_.back());
        }
        return period;
    }
    const std::int64_t until = next == changes_.end() ? INT64_MAX : *next;
    if (next == changes_.begin()) {
        return recordedPeriod(0, INT64_MIN, until);
    }
    const std::size_t last = static_cast<std::size_t>(next - changes_.begin()) - 1;
    return recordedPeriod(clockAfter_[last], changes_[last], until);
}

} // namespace ZQFoundation::detail
