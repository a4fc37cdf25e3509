// SPDX-License-Identifier: MIT
// Zone data put together by hand, the zones of the machine, and the C library's clocks.
#ifndef ZQFOUNDATION_TESTS_KIT_ZONES_H
#define ZQFOUNDATION_TESTS_KIT_ZONES_H

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "foundation/time/ZoneAccess.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::kit {

/// Zone data, put together by hand.
struct ZoneData {
    struct Clock {
        std::int32_t offset;
        bool isDaylightSaving;
        unsigned char nameStart;
    };

    char version = '2';
    std::vector<std::int64_t> changes;
    std::vector<unsigned char> indexes;
    std::vector<Clock> clocks;
    std::string names; ///< NULs included
    std::string footer;
    unsigned leapSeconds = 0;
    unsigned flags = 0; ///< number of each kind of flags

    std::string header(char version, bool empty) const;
    std::string block(int timeSize) const;
    std::string bytes() const;
};

inline void appendBigEndian(std::string& out, std::uint64_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        out.push_back(static_cast<char>(value >> shift & 0xff));
    }
}

inline std::string ZoneData::header(char headerVersion, bool empty) const {
    std::string out = "TZif";
    out.push_back(headerVersion);
    out.append(15, '\0');
    for (const std::size_t count : {std::size_t{flags}, std::size_t{flags}, std::size_t{leapSeconds},
                                    changes.size(), clocks.size(), names.size()}) {
        appendBigEndian(out, empty ? 0 : count, 4);
    }
    return out;
}

inline std::string ZoneData::block(int timeSize) const {
    std::string out;
    for (const std::int64_t change : changes) {
        appendBigEndian(out, static_cast<std::uint64_t>(change), timeSize);
    }
    out.append(indexes.begin(), indexes.end());
    for (const Clock& clock : clocks) {
        appendBigEndian(out, static_cast<std::uint32_t>(clock.offset), 4);
        out.push_back(clock.isDaylightSaving ? '\1' : '\0');
        out.push_back(static_cast<char>(clock.nameStart));
    }
    out += names;
    out.append(leapSeconds * static_cast<unsigned>(timeSize + 4) + 2 * flags, '\0');
    return out;
}

inline std::string ZoneData::bytes() const {
    if (version == '\0') {
        return header(version, false) + block(4);
    }
    return header(version, true) + header(version, false) + block(8) + "\n" + footer + "\n";
}

/// A zone with changes at 1000 and 2000 seconds and no rule.
inline ZoneData simpleZone() {
    ZoneData data;
    data.changes = {1000, 2000};
    data.indexes = {1, 2};
    data.clocks = {{-100, false, 0}, {3600, false, 4}, {7200, true, 8}};
    data.names = std::string("OLD\0STD\0DST\0", 12);
    return data;
}

inline constexpr const char* zoneFolder = "/usr/share/zoneinfo";

inline bool hasZoneFile(const char* name) {
    std::string path(zoneFolder);
    path.append("/").append(name);
    return access(path.c_str(), R_OK) == 0;
}

/// Zones whose clocks have changed in every way that clocks change.
inline constexpr const char* remarkableZones[] = {"Europe/Berlin",
                                                  "Europe/Dublin",
                                                  "Europe/London",
                                                  "Europe/Moscow",
                                                  "America/New_York",
                                                  "America/St_Johns",
                                                  "America/Sao_Paulo",
                                                  "America/Caracas",
                                                  "America/Godthab",
                                                  "America/Santiago",
                                                  "Africa/Monrovia",
                                                  "Africa/Casablanca",
                                                  "Asia/Kolkata",
                                                  "Asia/Kathmandu",
                                                  "Asia/Tehran",
                                                  "Asia/Gaza",
                                                  "Asia/Pyongyang",
                                                  "Asia/Shanghai",
                                                  "Pacific/Apia",
                                                  "Australia/Sydney",
                                                  "Pacific/Chatham",
                                                  "Pacific/Kiritimati",
                                                  "Australia/Lord_Howe",
                                                  "Antarctica/Troll",
                                                  "America/Scoresbysund",
                                                  "Etc/UTC",
                                                  "EST5EDT",
                                                  "Atlantic/Azores"};

inline struct tm localTime(std::int64_t seconds) {
    const time_t time = seconds;
    struct tm local = {};
    localtime_r(&time, &local);
    return local;
}

/// By the C library, in the current zone.
inline std::int64_t offsetAt(std::int64_t seconds) { return localTime(seconds).tm_gmtoff; }

/// The instants at which the clocks of a zone or their names change.
inline std::vector<std::int64_t> zoneChanges(const NSTimeZone& zone, std::int64_t first, std::int64_t last) {
    std::vector<std::int64_t> found;
    std::int64_t at = first;
    for (;;) {
        at = detail::ZoneAccess::periodAt(zone, at).until;
        if (at > last) {
            return found;
        }
        found.push_back(at);
    }
}

inline void collectZoneNames(const std::string& folder, std::vector<std::string>& names,
                             std::set<std::string>& contents) {
    const std::string path = zoneFolder + ("/" + folder);
    DIR* const entries = opendir(path.c_str());
    std::vector<std::string> found;
    while (const dirent* entry = entries != nullptr ? readdir(entries) : nullptr) {
        found.emplace_back(entry->d_name);
    }
    if (entries != nullptr) {
        closedir(entries);
    }
    std::sort(found.begin(), found.end());
    for (const std::string& name : found) {
        const std::string item = path + name;
        struct stat status = {};
        if (name[0] == '.' || name == "right" || name == "posix" || stat(item.c_str(), &status) != 0) {
            continue;
        }
        if (S_ISDIR(status.st_mode)) {
            collectZoneNames(folder + name + "/", names, contents);
        } else if (const std::string bytes = contentsOf(item);
                   bytes.starts_with("TZif") && contents.insert(bytes).second) {
            names.push_back(folder + name);
        }
    }
}

/// The zones of the machine that differ from each other.
inline std::vector<std::string> allZoneNames() {
    std::vector<std::string> names;
    std::set<std::string> contents;
    collectZoneNames("", names, contents);
    return names;
}

} // namespace ZQFoundation::kit

#endif
