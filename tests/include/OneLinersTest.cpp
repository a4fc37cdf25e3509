// SPDX-License-Identifier: MIT
// What a C++ programmer writes in one line without reading anything first: it compiles and is right, or is
// among the refusals beside this file.
#include <ZQFoundation/Std.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <list>
#include <map>
#include <numeric>
#include <random>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <variant>

#include <sys/stat.h>

#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using namespace std::chrono_literals;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

enum Plain { plainTwo = 2 };
enum class Scoped { three = 3 };

template <class T>
std::string streamed(const T& value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

template <class... Arguments>
std::string formatted(FormatString<std::type_identity_t<Arguments>...> format,
                      const Arguments&... arguments) {
    return NSString::stringWithFormat<Arguments...>(format, arguments...).utf8();
}

const NSString cafe = "caf\u00e9";
const NSArray letters{"b", "a", "c"};
const NSDictionary settings{{"limit", 5}, {"name", "x"}, {2, "two"}};
const NSDate epoch = NSDate::dateWithTimeIntervalSince1970(0);

} // namespace

TEST(OneLiners, textsBecomeStrings) {
    EXPECT_EQ(NSString("caf\u00e9"), cafe);
    EXPECT_EQ(NSString(u"caf\u00e9"), cafe);
    EXPECT_EQ(NSString(u8"caf\u00e9"), cafe);
    EXPECT_EQ(NSString("caf\u00e9"s), cafe);
    EXPECT_EQ(NSString("caf\u00e9"sv), cafe);
    EXPECT_EQ(NSString(u"caf\u00e9"s), cafe);
    EXPECT_EQ(NSString(u"caf\u00e9"sv), cafe);
    EXPECT_EQ(NSString(u8"caf\u00e9"s), cafe);
    EXPECT_EQ(NSString(std::vector<char>{'a', 'b'}), "ab");
    EXPECT_EQ(NSString(std::array<char, 4>{'a', 'b'}.data()), "ab");
    EXPECT_EQ(NSString(std::filesystem::path("/a/b")), "/a/b");
    EXPECT_EQ(NSString(std::filesystem::path("/a/\xff")).as<std::filesystem::path>().native(), "/a/\xff");
    EXPECT_EQ(NSString(std::error_code(2, std::generic_category())), "No such file or directory (generic 2)");
    EXPECT_FALSE(NSString(static_cast<const char*>(nullptr)));
}

TEST(OneLiners, stringsBecomeTexts) {
    EXPECT_EQ(std::string(cafe), "caf\u00e9");
    EXPECT_EQ(static_cast<std::u16string>(cafe), u"caf\u00e9");
    EXPECT_EQ(cafe.utf8().size(), 5U);
    EXPECT_EQ(cafe.utf16().size(), 4U);
    EXPECT_EQ(cafe.as<std::string>(), "caf\u00e9");
    EXPECT_TRUE(cafe.as<std::u8string>() == u8"caf\u00e9");
    EXPECT_EQ(cafe.as<std::u16string>(), u"caf\u00e9");
    EXPECT_EQ(cafe.as<std::filesystem::path>(), std::filesystem::path("caf\u00e9"));
    EXPECT_EQ(NSObject(5).as<std::string>(), "");
    EXPECT_EQ(std::string(NSString()), "");
}

TEST(OneLiners, stringsAreComparedAndJoined) {
    EXPECT_TRUE(cafe == "caf\u00e9"s && "caf\u00e9" == cafe && cafe != "cafe"sv && cafe != NSString());
    EXPECT_TRUE(cafe < "d" && "b" < cafe && cafe >= cafe && NSString() < "" && !(NSString() < NSString()));
    EXPECT_TRUE((NSString("a") <=> NSString("b")) < 0 && NSString("a") < "ab" &&
                NSString(u"\uFFFF") > u"\U0001F600");
    EXPECT_FALSE(NSString("e\u0301") == "\u00e9");
    EXPECT_TRUE(NSString("e\u0301") < "\u00e9");
    EXPECT_EQ(cafe + "!", "caf\u00e9!");
    EXPECT_EQ("a " + cafe, "a caf\u00e9");
    EXPECT_EQ(cafe + cafe + "s"s, "caf\u00e9caf\u00e9s");
    EXPECT_EQ(NSString() + "a" + NSString(), "a");
    EXPECT_FALSE(NSString() + NSString());
    NSString text = "a";
    text += "b";
    text += cafe;
    EXPECT_EQ(text += u"\u00e9"sv, "abcaf\u00e9\u00e9");
    NSMutableString built;
    EXPECT_EQ(((built += "a") += cafe).string(), "acaf\u00e9");
    EXPECT_EQ(cafe.size(), 4U);
    EXPECT_EQ(std::size(cafe), 4U);
}

TEST(OneLiners, valuesAreWrittenToStreams) {
    EXPECT_EQ(streamed(cafe), "caf\u00e9");
    EXPECT_EQ(streamed(NSNumber(1.5)), "1.5");
    EXPECT_EQ(streamed(NSObject(true)), "1");
    EXPECT_EQ(streamed(letters), "( b, a, c )");
    EXPECT_EQ(streamed(NSDictionary{{"a", 1}}), "{ a = 1; }");
    EXPECT_EQ(streamed(NSURL::URLWithString("a:b")), "a:b");
    EXPECT_EQ(streamed(epoch), "1970-01-01 00:00:00 +0000");
    EXPECT_EQ(streamed(settings["limit"]), "5");
    EXPECT_EQ(streamed(NSString()), "(nil)");
}

TEST(OneLiners, numbersAreComparedAndComeBack) {
    EXPECT_TRUE(NSNumber(1) < 2 && 1.5 < NSNumber(2) && NSNumber(2) == 2.0 && NSNumber() < 0);
    EXPECT_TRUE(std::is_eq(NSNumber(1) <=> NSNumber(true)));
    EXPECT_EQ(NSObject(5).as<std::optional<int>>(), 5);
    EXPECT_EQ(NSObject("5").as<std::optional<int>>(), std::nullopt);
    EXPECT_EQ(NSObject(5000000000).as<std::optional<int>>(), std::nullopt);
    EXPECT_EQ(NSObject(-1).as<std::optional<unsigned>>(), std::nullopt);
    EXPECT_EQ(NSObject(2.5).as<std::optional<int>>(), std::nullopt);
    EXPECT_EQ(NSObject(2.5).as<std::optional<double>>(), 2.5);
    EXPECT_EQ(NSObject(1).as<std::optional<bool>>(), std::nullopt);
    EXPECT_EQ(NSObject(UINT64_MAX).as<std::optional<std::uint64_t>>(), UINT64_MAX);
    EXPECT_EQ(NSObject("a").as<std::optional<std::string>>(), "a");
    EXPECT_EQ(NSObject().as<std::optional<std::string>>(), std::nullopt);
    EXPECT_EQ(NSObject("a").as<std::optional<NSString>>(), NSString("a"));
    EXPECT_EQ(NSNumber(std::chrono::milliseconds(1500)), 1.5);
    EXPECT_EQ(NSNumber(1.5).as<std::chrono::milliseconds>(), 1500ms);
    EXPECT_EQ(NSNumber(1.9999).as<std::chrono::seconds>(), 1s);
    EXPECT_EQ(NSNumber(-1.9999).as<std::chrono::seconds>(), -1s);
    EXPECT_EQ(NSObject(std::optional<int>(5)), 5);
    EXPECT_FALSE(NSObject(std::optional<int>()));
}

TEST(OneLiners, timesAndDurationsComeBackAsTheyWere) {
    using Micro = std::chrono::sys_time<std::chrono::microseconds>;
    using Milli = std::chrono::sys_time<std::chrono::milliseconds>;
    using Nano = std::chrono::sys_time<std::chrono::nanoseconds>;
    std::mt19937_64 random(1);
    for (std::int64_t i = 0; i < 100'000; ++i) {
        ASSERT_EQ(NSObject(i * 1ms).as<std::chrono::milliseconds>(), i * 1ms);
        ASSERT_EQ(NSObject(-i * 1us).as<std::chrono::microseconds>(), -i * 1us);
        const auto since1970 = static_cast<std::int64_t>(random() % 4'000'000'000'000'000U) -
                               2'000'000'000'000'000; // 1906 to 2033
        const Micro micro(since1970 * 1us);
        // A clock that counts nanoseconds passes the same instant.
        ASSERT_EQ(NSDate(Nano(micro)), NSDate(micro)) << since1970;
        ASSERT_EQ(NSDate(Nano(micro)).as<Micro>(), micro);
        ASSERT_EQ(NSDate(micro).as<Micro>(), micro);
        const Milli milli(since1970 / 1000 * 1ms);
        ASSERT_EQ(NSDate(milli).as<Milli>(), milli);
        const auto seconds = std::chrono::duration<double>(milli.time_since_epoch());
        ASSERT_EQ(NSDate::dateWithTimeIntervalSince1970(seconds.count()).as<Milli>(), milli);
        ASSERT_EQ(NSDate(micro).as<std::chrono::sys_days>(), std::chrono::floor<std::chrono::days>(micro));
    }
}

/// A cutoff made of a file's time must not be later than the date that the file itself has.
TEST(OneLiners, timesOfFilesAreTheirDates) {
    const kit::ScratchFolder folder;
    const std::string path = folder / "file";
    std::ofstream(path).put('x');
    std::mt19937_64 random(1);
    for (int i = 0; i < 100; ++i) {
        const auto second = static_cast<time_t>(random() % 2'000'000'000U);
        const auto nanosecond = static_cast<long>(random() % 1'000'000'000U);
        const timespec both[] = {{second, nanosecond}, {second, nanosecond}};
        ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), both, 0), 0);
        const NSDictionary attributes = NSFileManager::defaultManager().attributesOfItemAtPath_error(path);
        const std::chrono::sys_time<std::chrono::nanoseconds> time(second * 1s + nanosecond * 1ns);
        EXPECT_EQ(NSDate(time), attributes[NSFileModificationDate]) << second << ' ' << nanosecond;
    }
}

TEST(OneLiners, whatNoTypeHasRoomForIsItsExtreme) {
    using Time = std::chrono::sys_time<std::chrono::nanoseconds>; // the clock's unit is the library's
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const NSDate far = NSDate::dateWithTimeIntervalSince1970(1e11);
    EXPECT_EQ(NSDate(Time::max()).as<Time>(), Time::max());
    EXPECT_EQ(NSDate(Time::min()).as<Time>(), Time::min());
    EXPECT_EQ(far.as<Time>(), Time::max());
    EXPECT_EQ((epoch - 1e11s).as<Time>(), Time::min());
    EXPECT_EQ(far.as<std::optional<Time>>(), std::nullopt);
    EXPECT_EQ(epoch.as<std::optional<Time>>(), Time());
    EXPECT_EQ(NSObject("a").as<std::optional<Time>>(), std::nullopt);
    EXPECT_EQ(NSObject(1e300).as<std::chrono::nanoseconds>(), std::chrono::nanoseconds::max());
    EXPECT_EQ(NSObject(-infinity).as<std::chrono::nanoseconds>(), std::chrono::nanoseconds::min());
    EXPECT_EQ(NSObject(std::nan("")).as<std::chrono::seconds>(), 0s);
    EXPECT_EQ(NSObject(1e300).as<std::optional<std::chrono::seconds>>(), std::nullopt);
    EXPECT_EQ(NSObject(5).as<std::optional<std::chrono::seconds>>(), 5s);
    EXPECT_EQ(NSObject(1e300).as<std::optional<float>>(), std::nullopt);
    EXPECT_EQ(NSObject(infinity).as<std::optional<float>>(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(NSString(std::string("a\0b", 3)).as<std::optional<std::filesystem::path>>(), std::nullopt);
}

TEST(OneLiners, datesAreTimes) {
    using Clock = std::chrono::system_clock;
    EXPECT_EQ(NSDate(Clock::time_point(1500ms)).timeIntervalSince1970(), 1.5);
    EXPECT_EQ((epoch + 1500ms).as<Clock::time_point>(), Clock::time_point(1500ms));
    EXPECT_EQ((epoch - 500ms).as<std::chrono::sys_seconds>(), std::chrono::sys_seconds(-1s));
    EXPECT_EQ(NSDate(std::chrono::sys_days(std::chrono::year(2001) / 1 / 1)).timeIntervalSinceReferenceDate(),
              0);
    EXPECT_EQ(epoch + 2min - epoch, 120s);
    EXPECT_LT(epoch, epoch + 1ns * 1000000);
    EXPECT_LT(NSDate(), epoch);
    EXPECT_FALSE(NSDate() + 1s);
    EXPECT_FALSE(NSDate() - 1s);
    EXPECT_EQ(std::max(epoch, epoch + 1s), epoch + 1s);
    EXPECT_EQ(NSDate().as<std::chrono::sys_seconds>(), std::chrono::sys_seconds());
}

TEST(OneLiners, collectionsAreRanges) {
    static_assert(std::ranges::contiguous_range<NSArray> && std::ranges::sized_range<NSArray>);
    static_assert(std::ranges::contiguous_range<NSDictionary> && std::ranges::sized_range<NSDictionary>);
    static_assert(std::ranges::forward_range<NSSet> && std::ranges::sized_range<NSSet>);
    static_assert(std::is_base_of_v<std::forward_iterator_tag,
                                    std::iterator_traits<detail::SetIterator>::iterator_category>);
    static_assert(std::ranges::contiguous_range<NSData> && std::ranges::sized_range<NSData>);
    std::string all;
    for (const NSObject& each : NSSet{"b", "a", "b"}) {
        all += each.as<std::string>();
    }
    for (const auto& [key, value] : settings) {
        all += streamed(key) + streamed(value);
    }
    EXPECT_EQ(all, "balimit5namex2two");
    EXPECT_EQ(letters.size() + settings.size() + NSSet{1}.size() + NSData::data().size(), 7U);
    EXPECT_EQ(NSMutableArray(letters).size(), 3U);
    EXPECT_EQ(NSMutableDictionary(settings).size(), 3U);
    EXPECT_EQ(std::distance(letters.begin(), letters.end()), 3);
    EXPECT_NE(std::find(letters.begin(), letters.end(), NSObject("a")), letters.end());
    EXPECT_EQ(std::ranges::count(NSSet{1, 2}, NSObject(2)), 1);
    EXPECT_EQ(NSSet().begin(), NSSet().end());
    EXPECT_EQ(letters[0], "b");
    EXPECT_THROW(letters[3], NSException);
}

/// Like a filtered view: it looks for its first element when asked, so it must not be constant.
template <class T>
struct FoundOnDemand {
    std::vector<T> elements;
    std::size_t asked = 0;

    auto begin() {
        ++asked;
        return elements.begin();
    }
    auto end() { return elements.end(); }
};

TEST(OneLiners, rangesBecomeCollections) {
    EXPECT_EQ(NSArray::arrayWithRange(FoundOnDemand<int>{{1, 2}}), (NSArray{1, 2}));
    EXPECT_EQ(NSArray::arrayWithRange(FoundOnDemand<bool>{{true, false}}), (NSArray{true, false}));
    FoundOnDemand<std::pair<std::string, int>> pairs{{{"a", 1}}};
    EXPECT_EQ(NSDictionary::dictionaryWithRange(pairs), (NSDictionary{{"a", 1}}));
    EXPECT_EQ(pairs.asked, 1U);
    const int plain[] = {1, 2};
    EXPECT_EQ(NSArray::arrayWithRange(plain), (NSArray{1, 2}));
    std::vector<bool> bits{true, false};
    EXPECT_EQ(NSArray::arrayWithRange(bits), (NSArray{true, false}));
    EXPECT_EQ(NSArray::arrayWithRange(std::vector<int>{1, 2}), (NSArray{1, 2}));
    EXPECT_EQ(NSArray::arrayWithRange(std::list<std::string>{"a"}), NSArray{"a"});
    EXPECT_EQ(NSArray::arrayWithRange(std::set<double>{2.5, 1.5}), (NSArray{1.5, 2.5}));
    EXPECT_EQ(NSArray::arrayWithRange(std::vector<bool>{true, false}), (NSArray{true, false}));
    EXPECT_EQ(NSArray::arrayWithRange(std::vector<int>{}), NSArray::array());
    EXPECT_EQ(NSArray::arrayWithRange(NSSet{1}), NSArray::arrayWithObjects(1));
    EXPECT_EQ(NSArray(std::vector<std::string>{"a", "b"}), (NSArray{"a", "b"}));
    EXPECT_THROW(NSArray::arrayWithRange(std::vector<NSString>{nullptr}), NSException);
    EXPECT_EQ(NSDictionary::dictionaryWithRange(std::map<std::string, int>{{"a", 1}}),
              (NSDictionary{{"a", 1}}));
    EXPECT_EQ(NSSet::setWithArray(NSArray::arrayWithRange(std::set<int>{1, 2})), (NSSet{1, 2}));
    EXPECT_EQ(letters.as<std::vector<std::string>>(), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ((NSArray{1, 2.5}).as<std::vector<double>>(), (std::vector<double>{1, 2.5}));
    EXPECT_EQ(letters.as<std::vector<NSString>>().front(), "b");
    EXPECT_EQ(std::vector<NSObject>(letters.begin(), letters.end()).size(), 3U);
    EXPECT_EQ(NSObject("no array").as<std::vector<int>>(), std::vector<int>());
}

TEST(OneLiners, dictionariesAreLookedUp) {
    EXPECT_EQ(settings["limit"], 5);
    EXPECT_EQ(settings["name"s], "x");
    EXPECT_EQ(settings[NSString("name")], "x");
    EXPECT_EQ(settings[2], "two");
    EXPECT_FALSE(settings["missing"]);
    EXPECT_FALSE(NSDictionary()["limit"]);
    EXPECT_EQ(settings["limit"].as<NSNumber>().intValue(), 5);
    EXPECT_EQ(settings["limit"].as<std::optional<int>>().value_or(7), 5);
}

TEST(OneLiners, valuesAreKeysOfTheStandardsContainers) {
    EXPECT_EQ((std::unordered_map<NSString, int>{{"a", 1}}.at("a")), 1);
    EXPECT_EQ((std::unordered_set<NSObject>{1, 1.0, "1"}.size()), 2U);
    EXPECT_EQ((std::map<NSString, int>{{"b", 2}, {"a", 1}}.begin()->first), "a");
    EXPECT_EQ((std::set<NSNumber>{2, 1, 1.0}.size()), 2U);
    EXPECT_EQ(std::hash<NSArray>()(letters), letters.hash());
    std::vector<NSString> names{"b", "a"};
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names.front(), "a");
    std::ranges::sort(names, std::greater<>());
    EXPECT_EQ(names.front(), "b");
    EXPECT_EQ(std::accumulate(names.begin(), names.end(), NSString()), "ba");
    EXPECT_EQ(std::get<NSString>(std::variant<int, NSString>(cafe)), cafe);
}

TEST(OneLiners, argumentsOfFormats) {
    EXPECT_EQ(formatted("%@ %@ %@ %@", "a", "b"s, "c"sv, cafe), "a b c caf\u00e9");
    EXPECT_EQ(formatted("%s %s", "b"s, "c"sv), "b c");
    EXPECT_EQ(formatted("%d %d %d %ld %zu", plainTwo, Scoped::three, true, 4L, sizeof(int)), "2 3 1 4 4");
    EXPECT_EQ(formatted("%@ %@", u8"\u00e9"s, u"\u00e9"s), "\u00e9 \u00e9");
    EXPECT_EQ(formatted("%@", std::filesystem::path("/a")), "/a");
    EXPECT_EQ(formatted("%@", std::make_error_code(std::errc::permission_denied)),
              "Permission denied (generic 13)");
    EXPECT_EQ(formatted("%@ %@", std::optional<int>(5), std::optional<std::string>()), "5 (null)");
    EXPECT_EQ(formatted("%@ %@", 1500ms, 2min), "1.5 120");
    EXPECT_EQ(formatted("%@", std::chrono::sys_seconds(1s)), "1970-01-01 00:00:01 +0000");
    EXPECT_EQ(formatted("%@", std::vector<int>{1}), "(\n    1\n)");
    EXPECT_EQ(formatted("%@", letters[1]), "a");
}
