// SPDX-License-Identifier: MIT
// Zone data and rules from hostile bytes, checked against a second reading of the same bytes: what one
// accepts the other accepts, and at every instant tried both show the same clock.
//
// Input: a byte that chooses the form, then (0) the bytes of a zone file, (1) a rule, or (2) a recipe for a
// zone file that is mostly good: the footer up to a line feed, then numbers. Instants come from the end.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "foundation/time/ZoneRules.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/InputReader.h"
#include "tests/kit/BinaryFiles.h"
#include "tests/models/Calendar.h"

using namespace ZQFoundation;
using detail::ZonePeriod;
using detail::ZoneRules;
using fuzzing::require;
using fuzzing::requireEqual;

namespace {

struct PlainClock {
    std::int32_t offset = 0;
    bool isDaylightSaving = false;
    std::string name;
};

struct PlainChange {
    char form = '0'; ///< 'M', 'J' or '0'
    int month = 0;
    int week = 0;
    int day = 0;
    long time = 7200;

    std::int64_t dayIn(std::int64_t year) const {
        if (form != 'M') {
            const bool passesLeapDay = form == 'J' && models::isLeapYear(year) && day > 59;
            return static_cast<std::int64_t>(models::newYear(year)) + day - (form == 'J' ? 1 : 0) +
                   (passesLeapDay ? 1 : 0);
        }
        // The fifth means the last one of the weekday.
        const std::int64_t first = static_cast<std::int64_t>(models::dayNumber(year, month, 1));
        std::int64_t found = first + (day - models::civilDate(first).weekday + 7) % 7;
        for (int count = 1; count < week && found + 7 < first + models::monthLength(year, month); ++count) {
            found += 7;
        }
        return found;
    }
};

/// Reads pieces of a rule; a step that fails makes the whole rule bad.
class RuleText {
public:
    explicit RuleText(std::string_view text) : text_(text) {}

    bool isGood() const { return isGood_; }
    bool atEnd() const { return text_.empty(); }
    bool sees(char c) const { return text_.starts_with(c); }

    bool take(char c) {
        const bool isThere = sees(c);
        text_.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }

    void need(bool isThere) { isGood_ = isGood_ && isThere; }

    std::string name() {
        const bool isQuoted = take('<');
        std::string name;
        while (!atEnd() &&
               (isLetter(text_[0]) || (isQuoted && (isDigit(text_[0]) || sees('+') || sees('-'))))) {
            name += text_[0];
            text_.remove_prefix(1);
        }
        need(name.size() >= 3 && name.size() <= 31 && (!isQuoted || take('>')));
        return name;
    }

    int number(int least, int greatest) {
        std::string digits;
        while (!atEnd() && isDigit(text_[0]) && digits.size() < 4) {
            digits += text_[0];
            text_.remove_prefix(1);
        }
        // At most as many digits as the greatest number has, leading zeros included.
        need(!digits.empty() && digits.size() < 4);
        const int value = digits.empty() ? 0 : std::stoi(digits);
        need(value >= least && value <= greatest);
        return value;
    }

    long time(int maxHour) {
        const long sign = take('-') ? -1 : (take('+'), 1);
        long seconds = number(0, maxHour) * 3600L;
        if (take(':')) {
            seconds += number(0, 59) * 60L;
            seconds += take(':') ? number(0, 59) : 0L;
        }
        return sign * seconds;
    }

    PlainChange change() {
        PlainChange change;
        need(take(','));
        if (take('M')) {
            change.form = 'M';
            change.month = number(1, 12);
            need(take('.'));
            change.week = number(1, 5);
            need(take('.'));
            change.day = number(0, 6);
        } else {
            change.form = take('J') ? 'J' : '0';
            change.day = number(change.form == 'J' ? 1 : 0, 365);
        }
        if (take('/')) {
            change.time = time(167);
        }
        return change;
    }

private:
    static bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    std::string_view text_;
    bool isGood_ = true;
};

struct PlainRule {
    PlainClock standard;
    PlainClock daylight;
    bool hasDaylight = false;
    PlainChange start;
    PlainChange end;

    static std::optional<PlainRule> read(std::string_view notation) {
        RuleText text(notation);
        PlainRule rule;
        rule.standard = {0, false, text.name()};
        rule.standard.offset = static_cast<std::int32_t>(-text.time(24));
        if (text.isGood() && !text.atEnd()) {
            rule.hasDaylight = true;
            rule.daylight = {rule.standard.offset + 3600, true, text.name()};
            if (!text.atEnd() && !text.sees(',')) {
                rule.daylight.offset = static_cast<std::int32_t>(-text.time(24));
            }
            if (text.atEnd()) {
                rule.start = {'M', 3, 2, 0, 7200};
                rule.end = {'M', 11, 1, 0, 7200};
            } else {
                rule.start = text.change();
                rule.end = text.change();
            }
        }
        text.need(text.atEnd());
        return text.isGood() ? std::optional(rule) : std::nullopt;
    }

    /// Whether the instant is between the start and the end of any year around it.
    const PlainClock& clockAt(std::int64_t seconds) const {
        if (!hasDaylight) {
            return standard;
        }
        constexpr std::int64_t cycle = 146097LL * 86400; // after which all years are as before
        seconds = (seconds % cycle + cycle) % cycle;
        const std::int64_t year = models::civilDate(seconds / 86400).year;
        for (std::int64_t y = year - 2; y <= year + 2; ++y) {
            const auto endIn = [this](std::int64_t which) {
                return end.dayIn(which) * 86400 + end.time - daylight.offset;
            };
            const std::int64_t from = start.dayIn(y) * 86400 + start.time - standard.offset;
            const std::int64_t until = endIn(y) < from ? endIn(y + 1) : endIn(y);
            if (seconds >= from && seconds < until) {
                return daylight;
            }
        }
        return standard;
    }
};

struct PlainZone {
    std::vector<std::int64_t> changes;
    std::vector<std::size_t> clockAfter;
    std::vector<PlainClock> clocks;
    std::optional<PlainRule> rule;

    const PlainClock& clockAt(std::int64_t seconds) const {
        std::size_t passed = 0;
        while (passed < changes.size() && changes[passed] <= seconds) {
            ++passed;
        }
        if (passed == changes.size() && rule) {
            return rule->clockAt(seconds);
        }
        return clocks[passed == 0 ? 0 : clockAfter[passed - 1]];
    }
};

/// Takes a zone file apart; an access beyond the end makes it bad.
class PlainZoneReader {
public:
    explicit PlainZoneReader(std::string_view bytes) : bytes_(bytes) {}

    std::optional<PlainZone> read() {
        PlainZone zone;
        const Counts first = header();
        if (isGood_ && first.version != 0) {
            block(first, 4, nullptr);
            const Counts second = header();
            need(second.version != 0);
            block(second, 8, &zone);
            footer(zone);
        } else {
            block(first, 4, &zone);
        }
        return isGood_ ? std::optional(zone) : std::nullopt;
    }

private:
    struct Counts {
        unsigned version, universal, standard, leaps, changes, clocks, names;
    };

    void need(bool holds) { isGood_ = isGood_ && holds; }

    std::uint64_t number(unsigned size) {
        need(bytes_.size() - at_ >= size);
        std::uint64_t value = 0;
        for (unsigned i = 0; isGood_ && i < size; ++i) {
            value = value << 8 | static_cast<unsigned char>(bytes_[at_++]);
        }
        return value;
    }

    std::int64_t signedNumber(unsigned size) {
        const std::uint64_t value = number(size);
        return size == 4 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(value))
                         : static_cast<std::int64_t>(value);
    }

    Counts header() {
        need(number(4) == 0x545A6966);
        Counts counts{};
        counts.version = static_cast<unsigned>(number(1));
        need(counts.version == 0 || (counts.version >= '2' && counts.version <= '9'));
        at_ += isGood_ && bytes_.size() - at_ >= 15 ? 15 : (isGood_ = false, 0);
        for (unsigned* const count : {&counts.universal, &counts.standard, &counts.leaps, &counts.changes,
                                      &counts.clocks, &counts.names}) {
            *count = static_cast<unsigned>(number(4));
        }
        return counts;
    }

    /// Of a block that is skipped only the size matters.
    void block(const Counts& counts, unsigned timeSize, PlainZone* zone) {
        const std::uint64_t size =
            std::uint64_t{counts.changes} * (timeSize + 1) + std::uint64_t{counts.clocks} * 6 + counts.names +
            std::uint64_t{counts.leaps} * (timeSize + 4) + counts.standard + counts.universal;
        need(isGood_ && bytes_.size() - at_ >= size);
        if (!isGood_) {
            return;
        }
        const std::size_t end = at_ + size;
        if (zone != nullptr) {
            contents(counts, timeSize, *zone);
        }
        at_ = end;
    }

    void contents(const Counts& counts, unsigned timeSize, PlainZone& zone) {
        need(counts.clocks >= 1 && counts.clocks <= 256 && counts.names >= 1);
        need(counts.universal == 0 || counts.universal == counts.clocks);
        need(counts.standard == 0 || counts.standard == counts.clocks);
        for (unsigned i = 0; isGood_ && i < counts.changes; ++i) {
            zone.changes.push_back(signedNumber(timeSize));
            need(i == 0 || zone.changes[i - 1] < zone.changes[i]);
        }
        for (unsigned i = 0; isGood_ && i < counts.changes; ++i) {
            zone.clockAfter.push_back(number(1));
            need(zone.clockAfter.back() < counts.clocks);
        }
        const std::size_t names = at_ + std::size_t{counts.clocks} * 6;
        for (unsigned i = 0; isGood_ && i < counts.clocks; ++i) {
            clock(bytes_.substr(names, counts.names), zone);
        }
        for (unsigned i = 0; isGood_ && i < counts.names; ++i) {
            const char c = bytes_[names + i];
            need(c == '\0' || (c > ' ' && c <= '~'));
        }
        need(!isGood_ || bytes_[names + counts.names - 1] == '\0');
    }

    void clock(std::string_view names, PlainZone& zone) {
        const auto offset = static_cast<std::int32_t>(signedNumber(4));
        const std::uint64_t flag = number(1);
        const std::uint64_t name = number(1);
        need(offset > -26 * 3600 && offset < 26 * 3600 && flag < 2 && name < names.size());
        if (isGood_) {
            zone.clocks.push_back(
                {offset, flag == 1, std::string(names.substr(name, names.find('\0', name) - name))});
        }
    }

    void footer(PlainZone& zone) {
        need(number(1) == '\n');
        const std::size_t end = isGood_ ? bytes_.find('\n', at_) : bytes_.npos;
        need(end != bytes_.npos);
        if (isGood_ && end != at_) {
            zone.rule = PlainRule::read(bytes_.substr(at_, end - at_));
            need(zone.rule.has_value());
        }
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    bool isGood_ = true;
};

void requireClock(const ZonePeriod& period, const PlainClock& clock) {
    require(period.offset == clock.offset, "offset");
    require(period.isDaylightSaving == clock.isDaylightSaving, "daylight-saving time");
    requireEqual(period.abbreviation, clock.name, "abbreviation");
}

/// The period holds the instant, and from its first to its last second the clock is one that shows the same.
void checkInstant(const ZoneRules& rules, const PlainZone& zone, std::int64_t seconds) {
    const ZonePeriod period = rules.periodAt(seconds);
    require(period.from <= seconds && (seconds < period.until || period.until == INT64_MAX), "period");
    requireClock(period, zone.clockAt(seconds));
    requireClock(period, zone.clockAt(period.from));
    if (period.until != INT64_MAX) {
        requireClock(period, zone.clockAt(period.until - 1));
    }
}

void checkInstants(const ZoneRules& rules, const PlainZone& zone, std::string_view input) {
    checkInstant(rules, zone, INT64_MIN);
    checkInstant(rules, zone, INT64_MAX);
    for (std::size_t i = 0; i < std::min<std::size_t>(zone.changes.size(), 4); ++i) {
        const std::int64_t change = zone.changes[zone.changes.size() - 1 - i];
        checkInstant(rules, zone, change);
        checkInstant(rules, zone, change == INT64_MIN ? change : change - 1);
    }
    fuzzing::InputReader end(reinterpret_cast<const std::uint8_t*>(input.data()) + input.size() -
                                 std::min<std::size_t>(input.size(), 8),
                             std::min<std::size_t>(input.size(), 8));
    const auto any = end.number<std::int64_t>();
    checkInstant(rules, zone, any);
    // Within a few years of the present, to the second, and where the clock changes next.
    const std::int64_t near = 1600000000 + any % 200000000;
    checkInstant(rules, zone, near);
    if (const std::int64_t until = rules.periodAt(near).until; until != INT64_MAX) {
        checkInstant(rules, zone, until);
    }
}

void checkZoneData(std::string_view bytes, std::string_view input) {
    const std::optional<ZoneRules> rules = ZoneRules::fromZoneData(bytes.data(), bytes.size());
    const std::optional<PlainZone> zone = PlainZoneReader(bytes).read();
    require(rules.has_value() == zone.has_value(), "whether bytes are zone data");
    if (zone) {
        checkInstants(*rules, *zone, input);
    }
}

void checkNotation(std::string_view text) {
    const std::optional<ZoneRules> rules = ZoneRules::fromNotation(text.data(), text.size());
    const std::optional<PlainRule> rule = PlainRule::read(text);
    require(rules.has_value() == rule.has_value(), "whether a text is a rule");
    if (rule) {
        PlainZone zone;
        zone.rule = rule;
        checkInstants(*rules, zone, text);
    }
}

kit::ZoneData zoneFrom(fuzzing::InputReader input) {
    kit::ZoneData zone;
    zone.footer = input.piece('\n');
    const unsigned shape = input.byte();
    const unsigned changes = shape & 7U;
    const unsigned clocks = 1 + (shape >> 3U & 3U);
    zone.version = (shape & 32U) != 0 ? '2' : '\0';
    std::int64_t time = input.number<std::int32_t>() * std::int64_t{8};
    for (unsigned i = 0; i < changes; ++i) {
        zone.changes.push_back(time);
        time += input.number<std::uint16_t>() * std::int64_t{3600};
    }
    for (unsigned i = 0; i < changes; ++i) {
        const unsigned index = input.byte() % (clocks + ((shape & 64U) != 0 ? 1U : 0U));
        zone.indexes.push_back(static_cast<unsigned char>(index));
    }
    for (unsigned i = 0; i < clocks; ++i) {
        const int offset = input.number<std::int16_t>() * 3;
        const bool isDaylightSaving = (input.byte() & 1U) != 0;
        zone.clocks.push_back({offset, isDaylightSaving, static_cast<unsigned char>(input.byte() % 20)});
    }
    zone.names = std::string("LMT\0CET\0CEST\0+0530\0", 19);
    return zone;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzzing::InputReader input(data, size);
    switch (input.byte() % 3) {
    case 0: {
        const std::vector<char> exact(input.rest().begin(), input.rest().end());
        checkZoneData({exact.data(), exact.size()}, input.rest());
        break;
    }
    case 1:
        checkNotation(input.rest());
        break;
    default:
        checkZoneData(zoneFrom(input).bytes(), input.rest());
    }
    return 0;
}
