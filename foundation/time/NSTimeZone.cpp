// SPDX-License-Identifier: MIT
// Time zones as values.
// Zones with rules are shared records that live forever; zones of fixed offset are their number alone.
#include "foundation/time/NSTimeZone.h"

#include <cstring>

#include "foundation/time/Clock.h"
#include "foundation/time/OffsetText.h"
#include "foundation/time/ZoneAccess.h"
#include "foundation/time/ZoneTable.h"

namespace ZQFoundation {

namespace {

/// Larger ones are errors rather than places.
constexpr int maxFixedOffset = 18 * 3600;

NSString asciiString(const char* bytes, std::size_t count) {
    return NSString(StringView::ascii(bytes, count));
}

/// The ASCII bytes of a name (none for nil), or false: no zone has another name.
bool asciiName(StringView text, char* out, std::size_t capacity) noexcept {
    if (text.size() > capacity) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text.form() == StringView::Form::utf16
                                  ? text.units()[i]
                                  : static_cast<unsigned char>(text.bytes()[i]);
        if (unit >= 0x80) {
            return false;
        }
        out[i] = static_cast<char>(unit);
    }
    return true;
}

} // namespace

NSTimeZone NSTimeZone::systemTimeZone() noexcept {
    const detail::Zone* const zone = detail::processZone();
    // Without memory for the zone's data, UTC.
    return zone != nullptr ? NSTimeZone(zone) : NSTimeZone(0, Form::fixed);
}

void NSTimeZone::resetSystemTimeZone() noexcept { detail::rereadProcessZone(); }

// A zone is read from its file once; from then on all zones of that name share the record.
NSTimeZone NSTimeZone::timeZoneWithName(StringView name) {
    char bytes[256];
    if (!asciiName(name, bytes, sizeof bytes)) {
        return nullptr;
    }
    const detail::Zone* const zone = detail::namedZone(bytes, name.size());
    return zone != nullptr ? NSTimeZone(zone) : NSTimeZone();
}

NSTimeZone NSTimeZone::timeZoneForSecondsFromGMT(int seconds) noexcept {
    const bool good = seconds >= -maxFixedOffset && seconds <= maxFixedOffset;
    return good ? NSTimeZone(seconds, Form::fixed) : NSTimeZone();
}

NSString NSTimeZone::name() const {
    if (form_ == Form::absent) {
        return nullptr;
    }
    if (form_ == Form::ruled) {
        return NSString(detail::zoneName(*zone_));
    }
    char text[3 + detail::offsetTextCapacity] = {'G', 'M', 'T'};
    const char* const end = offset_ == 0 ? text + 3 : detail::writeBasicOffset(offset_, text + 3);
    return asciiString(text, static_cast<std::size_t>(end - text));
}

int NSTimeZone::secondsFromGMTForDate(const NSDate& date) const noexcept {
    return date ? detail::ZoneAccess::offsetAt(*this, detail::wholeSeconds(date)) : 0;
}

// Zones with rules take it from their data, which change between summer and winter.
NSString NSTimeZone::abbreviationForDate(const NSDate& date) const {
    if (form_ == Form::absent || !date) {
        return nullptr;
    }
    if (form_ == Form::ruled) {
        const char* const text = detail::zonePeriodAt(zone_, detail::wholeSeconds(date)).abbreviation;
        return asciiString(text, std::strlen(text));
    }
    char text[detail::offsetTextCapacity];
    const char* const end = detail::writeShortOffsetWithGMT(offset_, text);
    return asciiString(text, static_cast<std::size_t>(end - text));
}

bool NSTimeZone::isDaylightSavingTimeForDate(const NSDate& date) const noexcept {
    return form_ == Form::ruled && date &&
           detail::zonePeriodAt(zone_, detail::wholeSeconds(date)).isDaylightSaving;
}

bool NSTimeZone::isEqualToTimeZone(const NSTimeZone& other) const noexcept {
    if (form_ != other.form_) {
        return false;
    }
    // By contents, so that a zone that was read again from an unchanged file is the same zone.
    return form_ == Form::ruled ? detail::sameZone(*zone_, *other.zone_) : offset_ == other.offset_;
}

} // namespace ZQFoundation

namespace ZQFoundation::detail {

std::int32_t ZoneAccess::offsetAt(const NSTimeZone& zone, std::int64_t seconds) noexcept {
    return zone.form_ == NSTimeZone::Form::ruled ? zoneOffsetAt(zone.zone_, seconds) : zone.offset_;
}

ZonePeriod ZoneAccess::periodAt(const NSTimeZone& zone, std::int64_t seconds) noexcept {
    if (zone.form_ == NSTimeZone::Form::ruled) {
        return zonePeriodAt(zone.zone_, seconds);
    }
    // Nil counts as UTC.
    return {INT64_MIN, INT64_MAX, zone.offset_, false, zone ? nullptr : "UTC"};
}

} // namespace ZQFoundation::detail
