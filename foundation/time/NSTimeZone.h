// SPDX-License-Identifier: MIT
// Declares NSTimeZone, the offsets of a region from UTC.
#ifndef ZQFOUNDATION_TIME_NSTIMEZONE_H
#define ZQFOUNDATION_TIME_NSTIMEZONE_H

#include "../objects/NSDate.h"

namespace ZQFoundation::detail {
struct Zone;
struct ZoneAccess;
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A time zone: how far clocks are ahead of UTC at any instant, and what they are called then.
///
/// A small handle to data that all copies share and that stay for the life of the process; copy it freely,
/// use it from any thread. A default-constructed one is nil and returns 0, false and nil. Before a zone's
/// first recorded change its first offset applies, and after the last one its rule continues without end.
///
///     const NSTimeZone berlin = NSTimeZone::timeZoneWithName("Europe/Berlin");
///     berlin.secondsFromGMTForDate(july);         // 7200
///     berlin.abbreviationForDate(july);           // "CEST"
///     berlin.isDaylightSavingTimeForDate(july);   // true
class ZQFOUNDATION_EXPORT NSTimeZone {
public:
    constexpr NSTimeZone() noexcept = default;
    constexpr NSTimeZone(std::nullptr_t) noexcept {}

    /// The process's zone: the value of the environment variable TZ at the first use of the zone, or at the
    /// last `resetSystemTimeZone`, else the system's setting. TZ may hold a name ("Europe/Berlin"), the path
    /// of a zone file, either after a colon, or a rule ("CET-1CEST,M3.5.0,M10.5.0/3"). Empty, unreadable or
    /// meaningless: UTC. Never nil. Takes no lock, so it is safe in a forked child.
    static NSTimeZone systemTimeZone() noexcept;

    /// The same zone as `systemTimeZone`.
    static NSTimeZone defaultTimeZone() noexcept { return systemTimeZone(); }

    /// Reads TZ and the zone's file again. Call it after a change of either; log lines and calendars follow
    /// from then on. Like every reader of the environment, it must not run while another thread changes it.
    static void resetSystemTimeZone() noexcept;

    /// The zone of that name ("Europe/Berlin", "UTC") among the system's zone files: those in the folder that
    /// the environment variable TZDIR names, else in /usr/share/zoneinfo. Nil when there is none. No absolute
    /// paths and no "..".
    static NSTimeZone timeZoneWithName(StringView name);

    /// A zone that is always that many seconds east of Greenwich. Nil beyond 18 hours.
    ///
    ///     NSTimeZone::timeZoneForSecondsFromGMT(3600).name();  // "GMT+0100"
    static NSTimeZone timeZoneForSecondsFromGMT(int seconds) noexcept;

    /// True unless the zone is nil.
    constexpr explicit operator bool() const noexcept { return form_ != Form::absent; }

    /// "Europe/Berlin"; for a rule its text, for a zone file elsewhere its path, for a fixed offset
    /// "GMT+0100", and "GMT" if that is 0. Nil for nil.
    NSString name() const;

    /// Seconds east of Greenwich; 0 for a nil date.
    int secondsFromGMTForDate(const NSDate& date) const noexcept;

    /// "CET", "CEST", "+0530"; for a fixed offset "GMT+1". Nil for a nil date.
    NSString abbreviationForDate(const NSDate& date) const;

    /// Whether clocks are put forward for the summer then. False for nil, for a nil date and a fixed offset.
    bool isDaylightSavingTimeForDate(const NSDate& date) const noexcept;

    /// Whether both have the same name and the same data; two nil handles are the same too.
    friend bool operator==(const NSTimeZone& left, const NSTimeZone& right) noexcept {
        return left.isEqualToTimeZone(right);
    }

    /// Whether both have the same name and the same data; two nil handles are the same too.
    bool isEqualToTimeZone(const NSTimeZone& other) const noexcept;

private:
    friend struct detail::ZoneAccess;

    enum class Form : unsigned char { absent, fixed, ruled };

    constexpr explicit NSTimeZone(const detail::Zone* zone) noexcept : zone_(zone), form_(Form::ruled) {}
    constexpr explicit NSTimeZone(int offset, Form form) noexcept : offset_(offset), form_(form) {}

    const detail::Zone* zone_ = nullptr; ///< only for `ruled`
    int offset_ = 0;                     ///< only for `fixed`
    Form form_ = Form::absent;
};

} // namespace ZQFoundation

#endif
