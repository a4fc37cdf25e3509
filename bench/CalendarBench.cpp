// SPDX-License-Identifier: MIT
// Dates from fields and fields of dates on the clocks of Berlin. `base` is what the C library offers for it.
// The dates are spread over 1990 to 2036, so that no two calls fall into the same hour, except in the
// rows "one day", where all are within a day, as when a host lists today's files.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>

#include <time.h>

#include <ZQFoundation/ZQFoundation.h>

#ifdef ZQ_BENCH_HAS_QT
#include <QtCore/QDateTime>
#include <QtCore/QTimeZone>
#endif
#ifdef ZQ_BENCH_HAS_ICU
#include <unicode/ucal.h>
#endif

namespace {

using namespace ZQFoundation;

constexpr char zoneName[] = "Europe/Berlin";
constexpr std::size_t sampleCount = 1024;

/// One date in the form of each contender.
struct Sample {
    time_t seconds = 0;
    struct tm fields = {};
    NSDate date;
};

using Samples = std::array<Sample, sampleCount>;

Samples makeSamples(std::int64_t first, std::int64_t span) {
    std::mt19937_64 random(20);
    std::uniform_int_distribution<std::int64_t> between(first, first + span - 1);
    Samples samples;
    for (Sample& sample : samples) {
        sample.seconds = between(random);
        localtime_r(&sample.seconds, &sample.fields);
        sample.date = NSDate::dateWithTimeIntervalSince1970(static_cast<double>(sample.seconds));
    }
    return samples;
}

/// All contenders take the zone from the environment, except those that take one as an argument.
void setZone() {
    setenv("TZ", zoneName, 1);
    tzset();
    NSTimeZone::resetSystemTimeZone();
}

template <class Work>
void forEachSample(benchmark::State& state, bool inOneDay, const Work& work) {
    setZone();
    const Samples samples =
        inOneDay ? makeSamples(1717192800, 86400) : makeSamples(631152000, std::int64_t{47} * 31556952);
    std::size_t at = 0;
    for (auto _ : state) {
        auto result = work(samples[at], samples[(at + 1) % sampleCount]);
        benchmark::DoNotOptimize(result);
        at = (at + 1) % sampleCount;
    }
}

// Dates from fields.

time_t withMktime(const Sample& sample, const Sample&) {
    struct tm fields = sample.fields;
    fields.tm_isdst = -1;
    return mktime(&fields);
}

time_t withTimegm(const Sample& sample, const Sample&) {
    struct tm fields = sample.fields;
    return timegm(&fields);
}

NSDate dateInZone(const struct tm& fields, const NSTimeZone& zone) {
    return NSDate::dateWithYear_month_day_hour_minute_second_timeZone(
        fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
        fields.tm_sec, zone);
}

// Fields of dates.

int withLocaltime(const Sample& sample, const Sample&) {
    struct tm fields = {};
    localtime_r(&sample.seconds, &fields);
    return fields.tm_year + fields.tm_mon + fields.tm_mday + fields.tm_hour + fields.tm_min + fields.tm_sec;
}

/// The C library has ISO week numbers only in `strftime`.
char weekWithLocaltime(const Sample& sample, const Sample&) {
    struct tm fields = {};
    localtime_r(&sample.seconds, &fields);
    char text[8];
    return strftime(text, sizeof text, "%V", &fields) != 0 ? text[1] : '\0';
}

std::int64_t dayWithLocaltime(time_t seconds) {
    struct tm fields = {};
    localtime_r(&seconds, &fields);
    fields.tm_hour = fields.tm_min = fields.tm_sec = 0;
    return timegm(&fields) / 86400;
}

template <auto work, bool inOneDay = false>
void run(benchmark::State& state) {
    forEachSample(state, inOneDay, work);
}

constexpr auto libraryDate = [](const Sample& sample, const Sample&) {
    return dateInZone(sample.fields, nullptr);
};

void libraryDateInUtc(benchmark::State& state) {
    const NSTimeZone zone = NSTimeZone::timeZoneForSecondsFromGMT(0);
    forEachSample(state, false,
                  [&zone](const Sample& sample, const Sample&) { return dateInZone(sample.fields, zone); });
}

constexpr auto libraryFields = [](const Sample& sample, const Sample&) {
    const NSDateComponents fields = NSCalendar::currentCalendar().components_fromDate(
        NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay | NSCalendarUnitHour |
            NSCalendarUnitMinute | NSCalendarUnitSecond,
        sample.date);
    return fields.year + fields.month + fields.day + fields.hour + fields.minute + fields.second;
};
constexpr auto libraryMonth = [](const Sample& sample, const Sample&) {
    return sample.date.calendarMonth();
};
constexpr auto libraryWeek = [](const Sample& sample, const Sample&) {
    return sample.date.calendarWeek();
};
constexpr auto baseDays = [](const Sample& sample, const Sample& other) {
    return dayWithLocaltime(other.seconds) - dayWithLocaltime(sample.seconds);
};
constexpr auto libraryDays = [](const Sample& sample, const Sample& other) {
    return NSDate::calendarDaysBetween_and(sample.date, other.date);
};
constexpr auto libraryDayStart = [](const Sample& sample, const Sample&) {
    return NSCalendar::currentCalendar().startOfDayForDate(sample.date);
};

BENCHMARK(run<withMktime>)->Name("date from fields/base");
BENCHMARK(run<libraryDate>)->Name("date from fields/library");
BENCHMARK(run<withTimegm>)->Name("date from fields, UTC/base");
BENCHMARK(libraryDateInUtc)->Name("date from fields, UTC/library");
BENCHMARK(run<withLocaltime>)->Name("fields of a date/base");
BENCHMARK(run<libraryFields>)->Name("fields of a date/library");
BENCHMARK((run<withLocaltime, true>))->Name("fields of a date, one day/base");
BENCHMARK((run<libraryFields, true>))->Name("fields of a date, one day/library");
BENCHMARK(run<withLocaltime>)->Name("month/base");
BENCHMARK(run<libraryMonth>)->Name("month/library");
BENCHMARK(run<weekWithLocaltime>)->Name("ISO week/base");
BENCHMARK(run<libraryWeek>)->Name("ISO week/library");
BENCHMARK((run<weekWithLocaltime, true>))->Name("ISO week, one day/base");
BENCHMARK((run<libraryWeek, true>))->Name("ISO week, one day/library");
BENCHMARK(run<baseDays>)->Name("days between/base");
BENCHMARK(run<libraryDays>)->Name("days between/library");
BENCHMARK(run<withMktime>)->Name("start of a day/base");
BENCHMARK(run<libraryDayStart>)->Name("start of a day/library");

#ifdef ZQ_BENCH_HAS_QT
const QTimeZone& qtZone() {
    static const QTimeZone zone(zoneName);
    return zone;
}

QDateTime qtDateTime(const Sample& sample) { return QDateTime::fromSecsSinceEpoch(sample.seconds, qtZone()); }

QDate qtDay(const struct tm& fields) {
    return QDate(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday);
}

QTime qtTime(const struct tm& fields) { return QTime(fields.tm_hour, fields.tm_min, fields.tm_sec); }

constexpr auto qtDate = [](const Sample& sample, const Sample&) {
    return QDateTime(qtDay(sample.fields), qtTime(sample.fields), qtZone()).toSecsSinceEpoch();
};
constexpr auto qtDateInUtc = [](const Sample& sample, const Sample&) {
    return QDateTime(qtDay(sample.fields), qtTime(sample.fields), Qt::UTC).toSecsSinceEpoch();
};
constexpr auto qtFields = [](const Sample& sample, const Sample&) {
    const QDateTime local = qtDateTime(sample);
    const QDate date = local.date();
    const QTime time = local.time();
    return date.year() + date.month() + date.day() + time.hour() + time.minute() + time.second();
};
constexpr auto qtMonth = [](const Sample& sample, const Sample&) {
    return qtDateTime(sample).date().month();
};
constexpr auto qtWeek = [](const Sample& sample, const Sample&) {
    return qtDateTime(sample).date().weekNumber();
};
constexpr auto qtDays = [](const Sample& sample, const Sample& other) {
    return qtDateTime(sample).date().daysTo(qtDateTime(other).date());
};
constexpr auto qtDayStart = [](const Sample& sample, const Sample&) {
    return qtDateTime(sample).date().startOfDay(qtZone()).toSecsSinceEpoch();
};

BENCHMARK(run<qtDate>)->Name("date from fields/qt");
BENCHMARK(run<qtDateInUtc>)->Name("date from fields, UTC/qt");
BENCHMARK(run<qtFields>)->Name("fields of a date/qt");
BENCHMARK((run<qtFields, true>))->Name("fields of a date, one day/qt");
BENCHMARK(run<qtMonth>)->Name("month/qt");
BENCHMARK(run<qtWeek>)->Name("ISO week/qt");
BENCHMARK((run<qtWeek, true>))->Name("ISO week, one day/qt");
BENCHMARK(run<qtDays>)->Name("days between/qt");
BENCHMARK(run<qtDayStart>)->Name("start of a day/qt");
#endif

#ifdef ZQ_BENCH_HAS_ICU
/// A calendar that is made once and used often; making one takes microseconds.
class IcuCalendar {
public:
    IcuCalendar() {
        UErrorCode error = U_ZERO_ERROR;
        calendar_ = ucal_open(u"Europe/Berlin", -1, "de_DE", UCAL_GREGORIAN, &error);
    }
    IcuCalendar(const IcuCalendar&) = delete;
    IcuCalendar& operator=(const IcuCalendar&) = delete;
    ~IcuCalendar() { ucal_close(calendar_); }

    double dateOf(const struct tm& fields) const {
        UErrorCode error = U_ZERO_ERROR;
        ucal_clear(calendar_);
        ucal_setDateTime(calendar_, fields.tm_year + 1900, fields.tm_mon, fields.tm_mday, fields.tm_hour,
                         fields.tm_min, fields.tm_sec, &error);
        return ucal_getMillis(calendar_, &error);
    }

    void set(time_t seconds) const {
        UErrorCode error = U_ZERO_ERROR;
        ucal_setMillis(calendar_, static_cast<double>(seconds) * 1000, &error);
    }

    int field(UCalendarDateFields which) const {
        UErrorCode error = U_ZERO_ERROR;
        return ucal_get(calendar_, which, &error);
    }

private:
    UCalendar* calendar_ = nullptr;
};

const IcuCalendar& icu() {
    static const IcuCalendar calendar;
    return calendar;
}

constexpr auto icuDate = [](const Sample& sample, const Sample&) {
    return icu().dateOf(sample.fields);
};
constexpr auto icuFields = [](const Sample& sample, const Sample&) {
    icu().set(sample.seconds);
    return icu().field(UCAL_YEAR) + icu().field(UCAL_MONTH) + icu().field(UCAL_DATE) +
           icu().field(UCAL_HOUR_OF_DAY) + icu().field(UCAL_MINUTE) + icu().field(UCAL_SECOND);
};
constexpr auto icuMonth = [](const Sample& sample, const Sample&) {
    icu().set(sample.seconds);
    return icu().field(UCAL_MONTH);
};
constexpr auto icuWeek = [](const Sample& sample, const Sample&) {
    icu().set(sample.seconds);
    return icu().field(UCAL_WEEK_OF_YEAR);
};

BENCHMARK(run<icuDate>)->Name("date from fields/icu");
BENCHMARK(run<icuFields>)->Name("fields of a date/icu");
BENCHMARK((run<icuFields, true>))->Name("fields of a date, one day/icu");
BENCHMARK(run<icuMonth>)->Name("month/icu");
BENCHMARK(run<icuWeek>)->Name("ISO week/icu");
BENCHMARK((run<icuWeek, true>))->Name("ISO week, one day/icu");
#endif

} // namespace
