// SPDX-License-Identifier: MIT
// What the tests about time share.
#ifndef ZQFOUNDATION_TESTS_TIME_TIMETESTING_H
#define ZQFOUNDATION_TESTS_TIME_TIMETESTING_H

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <time.h>
#include <unistd.h>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::testing {

/// Sets or, given null, unsets an environment variable; the old value is back at the end of the scope.
class ScopedEnvironment {
public:
    ScopedEnvironment(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            old_ = old;
        }
        change(value);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment() { change(old_ ? old_->c_str() : nullptr); }

    void change(const char* value) const {
        if (value != nullptr) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

class ScopedTimeZone : public ScopedEnvironment {
public:
    explicit ScopedTimeZone(const char* value) : ScopedEnvironment("TZ", value) {}
};

/// A folder of its own for one test; what the test writes through it is removed at the end.
class ScopedFolder {
public:
    ScopedFolder() {
        std::string pattern = "/tmp/zq-time-XXXXXX";
        path_ = mkdtemp(pattern.data());
    }
    ScopedFolder(const ScopedFolder&) = delete;
    ScopedFolder& operator=(const ScopedFolder&) = delete;
    ~ScopedFolder() {
        for (const std::string& file : files_) {
            unlink(file.c_str());
        }
        rmdir(path_.c_str());
    }

    const std::string& path() const { return path_; }

    std::string write(const std::string& name, const std::string& bytes) {
        const std::string file = claim(name);
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

    /// The path of a file that the test makes itself.
    std::string claim(const std::string& name) { return files_.emplace_back(path_ + "/" + name); }

private:
    std::string path_;
    std::vector<std::string> files_;
};

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
    unsigned flags = 0; ///< how many of each kind of flags

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

inline std::optional<std::string> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline constexpr const char* zoneFolder = "/usr/share/zoneinfo";

inline bool hasZoneFile(const char* name) {
    std::string path(zoneFolder);
    path.append("/").append(name);
    return access(path.c_str(), R_OK) == 0;
}

/// Zones whose clocks have done everything that clocks do.
inline constexpr const char* remarkableZones[] = {"Europe/Berlin",     "Europe/Dublin",
                                                  "Europe/London",     "Europe/Moscow",
                                                  "America/New_York",  "America/Sao_Paulo",
                                                  "America/St_Johns",  "America/Caracas",
                                                  "America/Godthab",   "America/Santiago",
                                                  "Africa/Casablanca", "Africa/Monrovia",
                                                  "Asia/Kolkata",      "Asia/Kathmandu",
                                                  "Asia/Tehran",       "Asia/Gaza",
                                                  "Asia/Pyongyang",    "Asia/Shanghai",
                                                  "Australia/Sydney",  "Australia/Lord_Howe",
                                                  "Pacific/Apia",      "Pacific/Kiritimati",
                                                  "Pacific/Chatham",   "Antarctica/Troll",
                                                  "Etc/UTC",           "EST5EDT",
                                                  "Atlantic/Azores",   "America/Scoresbysund"};

} // namespace ZQFoundation::testing

#endif
