// SPDX-License-Identifier: MIT
// All zones that the process has used, kept until it ends.
// A zone that was found once is found again without its file, so that a log line never waits for a disk
// after the first.
#include "foundation/time/ZoneTable.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/CallerState.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/System.h"
#include "foundation/time/ZoneRules.h"

namespace ZQFoundation::detail {

struct Zone {
    Zone* next = nullptr;
    std::string source; ///< what it was made from: "file:" and a path, or "rule:" and a notation
    std::string name;
    ZoneRules rules;

    /// The last answer of `zoneOffsetAt`: a block of time and the offset that holds in all of it, in one word
    /// so that it is replaced by one store. 0 stands for none.
    mutable std::atomic<std::uint64_t> lastOffset{0};
};

namespace {

constexpr std::size_t maxNameLength = 255;
constexpr char defaultFolder[] = "/usr/share/zoneinfo";
constexpr char localZoneFile[] = "/etc/localtime";

/// All zones, in a list that only ever grows, at its head.
constinit std::atomic<Zone*> zones{nullptr};

/// Null until first used.
constinit std::atomic<const Zone*> ownZone{nullptr};

template <class Predicate>
Zone* findZone(Predicate matches) {
    Zone* zone = zones.load(std::memory_order_acquire);
    while (zone != nullptr && !matches(*zone)) {
        zone = zone->next;
    }
    return zone;
}

// Rules are compared as well, since a file may have been replaced.
bool areAlike(const Zone& left, const Zone& right) {
    return left.source == right.source && left.name == right.name && left.rules == right.rules;
}

/// Adds the zone unless there is one like it; returns the one that is in the list.
/// The search is repeated when another thread has added one: it may be the same.
const Zone* addZone(std::unique_ptr<Zone> zone) {
    zone->next = zones.load(std::memory_order_acquire);
    do {
        for (const Zone* other = zone->next; other != nullptr; other = other->next) {
            if (areAlike(*other, *zone)) {
                return other;
            }
        }
    } while (!zones.compare_exchange_weak(zone->next, zone.get(), std::memory_order_acq_rel,
                                          std::memory_order_acquire));
    return zone.release();
}

/// The bytes of a regular file, or nothing when there are more than zone data can have.
std::optional<std::string> readZoneFile(const std::string& path) {
    // Without O_NONBLOCK a FIFO would wait for a writer.
    // Zone files are read on the thread that needs them, perhaps within a log call.
    const Descriptor file(openAt(AT_FDCWD, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status = {};
    if (!file || fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0 ||
        static_cast<std::uint64_t>(status.st_size) > ZoneRules::maxFileBytes) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        // A file that became shorter is not used.
        const ssize_t count = read(file.number(), bytes.data() + filled, bytes.size() - filled);
        if (count > 0) {
            filled += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            return std::nullopt;
        }
    }
    return bytes;
}

const Zone* zoneFromRules(std::string source, std::string name, std::optional<ZoneRules> rules) {
    // The same file may have been read before; it is another zone only if its contents differ now.
    return rules ? addZone(std::unique_ptr<Zone>(
                       new Zone{nullptr, std::move(source), std::move(name), std::move(*rules)}))
                 : nullptr;
}

const Zone* zoneFromFile(const std::string& path, std::string name) {
    const std::optional<std::string> bytes = readZoneFile(path);
    return bytes ? zoneFromRules("file:" + path, std::move(name),
                                 ZoneRules::fromZoneData(bytes->data(), bytes->size()))
                 : nullptr;
}

const Zone* zoneFromNotation(std::string_view text, std::string_view name) {
    return zoneFromRules("rule:" + std::string(text), std::string(name),
                         ZoneRules::fromNotation(text.data(), text.size()));
}

// A name is joined to a folder, so it must not lead out of it.
bool isZoneName(std::string_view name) noexcept {
    if (name.size() > maxNameLength) {
        return false;
    }
    std::size_t start = 0;
    while (start <= name.size()) {
        const std::size_t slash = std::min(name.find('/', start), name.size());
        const std::string_view component = name.substr(start, slash - start);
        if (component.empty() || component == "." || component == ".." ||
            component.find('\0') != std::string_view::npos) {
            return false;
        }
        start = slash + 1;
    }
    return true;
}

std::string pathOfZone(std::string_view name) {
    // Ignored in a set-user-ID program, like all of the environment.
    const char* const folder = system::environmentVariable("TZDIR");
    std::string path = folder != nullptr && *folder != '\0' ? folder : defaultFolder;
    return path.append("/").append(name);
}

/// Reads the file again even if the zone is known.
const Zone* readNamedZone(std::string_view name) {
    const Zone* const zone = isZoneName(name) ? zoneFromFile(pathOfZone(name), std::string(name)) : nullptr;
    // These two exist on every system, with or without zone files.
    if (zone == nullptr && (name == "UTC" || name == "GMT")) {
        return zoneFromNotation(name == "UTC" ? "UTC0" : "GMT0", name);
    }
    return zone;
}

/// Zone files have their zone's name in their path: "/usr/share/zoneinfo/Europe/Berlin". A link's target is
/// better than its own name. Other paths are names themselves.
std::string nameOfZoneFile(const std::string& path) {
    std::string target(1024, '\0');
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    target.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    static constexpr std::string_view marker = "/zoneinfo/";
    for (const std::string_view candidate : {std::string_view(target), std::string_view(path)}) {
        // The last occurrence: below it there are only names.
        const std::size_t found = candidate.rfind(marker);
        if (found != std::string_view::npos && isZoneName(candidate.substr(found + marker.size()))) {
            return std::string(candidate.substr(found + marker.size()));
        }
    }
    return path;
}

const Zone* zoneFromSetting(const char* value) {
    if (value == nullptr) {
        return zoneFromFile(localZoneFile, nameOfZoneFile(localZoneFile));
    }
    std::string_view text(value);
    // The colon says that what follows is for the system to interpret; here it makes no difference.
    if (text.starts_with(':')) {
        text.remove_prefix(1);
    }
    if (text.starts_with('/')) {
        const std::string path(text);
        return zoneFromFile(path, nameOfZoneFile(path));
    }
    // Names first: "EST5EDT" could be read as either.
    const Zone* const zone = readNamedZone(text);
    return zone != nullptr ? zone : zoneFromNotation(text, text);
}

/// Null when there is no memory.
/// No failure may reach the host, because log lines call this.
const Zone* readProcessZone() noexcept {
    const CallerState keeper;
    try {
        const Zone* const zone = zoneFromSetting(system::environmentVariable("TZ"));
        return zone != nullptr ? zone : readNamedZone("UTC");
    } catch (...) {
        return nullptr;
    }
}

/// Two threads may both read it; the first one's answer counts for both.
[[gnu::noinline]] const Zone* firstProcessZone() noexcept {
    const Zone* const zone = readProcessZone();
    const Zone* known = nullptr;
    return ownZone.compare_exchange_strong(known, zone, std::memory_order_acq_rel, std::memory_order_acquire)
               ? zone
               : known;
}

// A block of 4096 seconds has its number in the upper 40 bits, and the offset, made positive, in the
// lower 24.
// About an hour: a log's next line nearly always falls into the same block.
constexpr int blockBits = 12;
constexpr std::int64_t blockSeconds = std::int64_t{1} << blockBits;
constexpr int offsetBits = 24;
constexpr std::int64_t offsetBias = std::int64_t{1} << (offsetBits - 1);
static_assert(maxZoneOffset < offsetBias);

constexpr std::uint64_t blockWord(std::int64_t block, std::int32_t offset) noexcept {
    return static_cast<std::uint64_t>(block) << offsetBits | static_cast<std::uint64_t>(offset + offsetBias);
}
constexpr std::int64_t blockOfWord(std::uint64_t word) noexcept {
    return static_cast<std::int64_t>(word) >> offsetBits;
}
constexpr std::int32_t offsetOfWord(std::uint64_t word) noexcept {
    constexpr std::uint64_t mask = (std::uint64_t{1} << offsetBits) - 1;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(word & mask) - offsetBias);
}

} // namespace

const Zone* namedZone(const char* name, std::size_t length) {
    const CallerState keeper;
    const std::string_view text(name, length);
    if (!isZoneName(text)) {
        return nullptr;
    }
    const std::string source = "file:" + pathOfZone(text);
    // The folder may have changed since, so the path is compared as well.
    const Zone* const known =
        findZone([&source, text](const Zone& zone) { return zone.source == source && zone.name == text; });
    return known != nullptr ? known : readNamedZone(text);
}

const Zone* processZone() noexcept {
    const Zone* const zone = ownZone.load(std::memory_order_acquire);
    return zone != nullptr ? zone : firstProcessZone();
}

void rereadProcessZone() noexcept {
    // Only on success: a known zone is better than none.
    if (const Zone* const zone = readProcessZone()) {
        ownZone.store(zone, std::memory_order_release);
    }
}

const std::string& zoneName(const Zone& zone) noexcept { return zone.name; }

bool sameZone(const Zone& left, const Zone& right) noexcept {
    return &left == &right || (left.name == right.name && left.rules == right.rules);
}

ZonePeriod zonePeriodAt(const Zone* zone, std::int64_t seconds) noexcept {
    return zone != nullptr ? zone->rules.periodAt(seconds)
                           : ZonePeriod{INT64_MIN, INT64_MAX, 0, false, "UTC"};
}

// Called for each log line, by any thread: a load and a comparison, unless the hour or the clocks changed.
std::int32_t zoneOffsetAt(const Zone* zone, std::int64_t seconds) noexcept {
    if (zone == nullptr) {
        return 0;
    }
    const std::int64_t block = seconds >> blockBits;
    const std::uint64_t known = zone->lastOffset.load(std::memory_order_relaxed);
    // A word of 0 would be the block at 1970 with the lowest offset, which no zone has.
    if (blockOfWord(known) == block && known != 0) [[likely]] {
        return offsetOfWord(known);
    }
    const ZonePeriod period = zone->rules.periodAt(seconds);
    const std::uint64_t word = blockWord(block, period.offset);
    // A block too far away for its 40 bits is not remembered, nor one in which the clocks change.
    if (blockOfWord(word) == block && block * blockSeconds >= period.from &&
        (block + 1) * blockSeconds <= period.until) {
        zone->lastOffset.store(word, std::memory_order_relaxed);
    }
    return period.offset;
}

} // namespace ZQFoundation::detail
