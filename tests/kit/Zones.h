// SPDX-License-Identifier: MIT
// The zones of the machine, and the C library's clocks.
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
#include "tests/kit/BinaryFiles.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::kit {

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
