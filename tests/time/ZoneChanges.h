// SPDX-License-Identifier: MIT
// The C library's clocks, and the zones of the machine, for tests that compare with them.
#ifndef ZQFOUNDATION_TESTS_TIME_ZONECHANGES_H
#define ZQFOUNDATION_TESTS_TIME_ZONECHANGES_H

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>
#include <time.h>

#include "foundation/time/ZoneAccess.h"
#include "tests/kit/Environment.h"
#include "tests/time/TimeTesting.h"

namespace zones {

/// TZ set for a scope, and told to the C library, which does not look at it by itself.
class Current {
public:
    explicit Current(const char* name) : variable_("TZ", name) { tzset(); }

private:
    struct TellOfTheOldOne {
        ~TellOfTheOldOne() { tzset(); }
    };

    TellOfTheOldOne last_;
    ZQFoundation::kit::Variable variable_;
};

inline struct tm localTime(std::int64_t seconds) {
    const time_t time = seconds;
    struct tm local = {};
    localtime_r(&time, &local);
    return local;
}

/// By the C library, in the current zone.
inline std::int64_t offsetAt(std::int64_t seconds) { return localTime(seconds).tm_gmtoff; }

/// The instants at which the clocks of a zone or their names change.
inline std::vector<std::int64_t> changes(const ZQFoundation::NSTimeZone& zone, std::int64_t first,
                                         std::int64_t last) {
    std::vector<std::int64_t> found;
    std::int64_t at = first;
    for (;;) {
        at = ZQFoundation::detail::ZoneAccess::periodAt(zone, at).until;
        if (at > last) {
            return found;
        }
        found.push_back(at);
    }
}

inline void collectNames(const std::string& folder, std::vector<std::string>& names,
                         std::set<std::string>& contents) {
    const std::string path = ZQFoundation::testing::zoneFolder + ("/" + folder);
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
            collectNames(folder + name + "/", names, contents);
        } else if (const auto bytes = ZQFoundation::testing::readFile(item);
                   bytes && bytes->starts_with("TZif") && contents.insert(*bytes).second) {
            names.push_back(folder + name);
        }
    }
}

/// The zones of the machine that differ from each other.
inline std::vector<std::string> allNames() {
    std::vector<std::string> names;
    std::set<std::string> contents;
    collectNames("", names, contents);
    return names;
}

} // namespace zones

#endif
