// SPDX-License-Identifier: MIT
// The bytes that log operations write: prefix, text and line end.
#include <sys/socket.h>

#include "foundation/time/NSDateFormatter.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::AllocationCount;
using kit::CapturedOutput;
using kit::readPrefix;
using kit::utf8Of;
using logscene::hexText;
using logscene::Texts;

namespace {

// 2024-03-05 14:07:09.042 UTC.
constexpr double moment = 1709647629.042;

/// A clock that does not move, in a zone given as a rule.
class FixedTime {
public:
    FixedTime(double seconds, const char* zone)
        : clock_(detail::overrides::clock, seconds), zone_("TZ", zone) {}

private:
    kit::Replaced<double> clock_;
    kit::Variable zone_;
};

/// What follows the prefix of the only line, its end included.
std::string bytesOfLine(StringView text) {
    const CapturedOutput output;
    ZQLog::log(text);
    const std::string bytes = output.bytes();
    EXPECT_TRUE(readPrefix(bytes)) << bytes;
    return bytes.substr(readPrefix(bytes).length);
}

} // namespace

TEST(LinePrefix, isReadOnlyWhenItIsWhole) {
    const kit::Prefix prefix = readPrefix("2024-03-05 14:07:09.042 My App[1234:5d7f] a [1:2] b");
    EXPECT_EQ(prefix.date, "2024-03-05 14:07:09.042");
    EXPECT_EQ(prefix.process, "My App");
    EXPECT_EQ(prefix.processNumber, "1234");
    EXPECT_EQ(prefix.threadNumber, "5d7f");
    EXPECT_EQ(prefix.length, 42U);
    for (const char* line :
         {"", "text", "2024-03-05 14:07:09.042", "2024-03-05 14:07:09.042 ", "2024-03-05 14:07:09 App[1:2] x",
          "2024-03-05 14:07:09.042 [1:2] x", "2024-03-05 14:07:09.042 App[1] x",
          "2024-03-05 14:07:09.042 App[:2] x", "2024-03-05 14:07:09.042 App[1:] x",
          "2024-03-05 14:07:09.042 App[1:2]x", "2024-03-05 14:07:09.042 App[1:2]",
          "2024-03-05 14:07:09.042 App[1:2F] x", "2024-03-05 14:07:09.042 App[a:2] x"}) {
        EXPECT_FALSE(readPrefix(line)) << line;
    }
}

TEST(LogOutput, writesOneLineForEachCallInTheirOrder) {
    const CapturedOutput output;
    ZQLog::log("one");
    ZQLog::logAlways_log(true, "two");
    ZQLog::log(NSString("three"));
    ZQLog::log(std::string("four"));
    ZQLog::log(u"five");
    ZQLog::logWithFormat("%d", 6);
    EXPECT_EQ(output.texts(), (Texts{"one", "two", "three", "four", "five", "6"}));
}

TEST(LogOutput, writesTheBytesOfATextAndEndsTheLineOnlyWhenTheTextDoesNot) {
    constexpr char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, u'c'};
    constexpr char16_t doubled[] = {0xD83D, 0xD83D, 0xDE00};
    constexpr char16_t last[] = {u'a', 0xD83D};
    const struct {
        NSString text;
        std::string bytes;
    } rows[] = {
        {"", "\n"},
        {"text", "text\n"},
        {"text\n", "text\n"},
        {"text\n\n", "text\n\n"},
        {"\n", "\n"},
        {"text\r", "text\r\n"},
        {"text\r\n", "text\r\n"},
        {u"text\u2028", "text\u2028\n"},
        {"one\ntwo\n\nthree", "one\ntwo\n\nthree\n"}, // one prefix
        {std::u16string_view(u"a\0b\0", 4), std::string("a\0b\0\n", 5)},
        {std::string_view("\0", 1), std::string("\0\n", 2)},
        {u"gr\u00F6\u00DFer \u20AC \U0001F600", "gr\u00F6\u00DFer \u20AC \U0001F600\n"},
        {std::u16string_view(lone, 5), "a\uFFFDb\uFFFDc\n"},
        {std::u16string_view(doubled, 3), "\uFFFD\U0001F600\n"},
        {std::u16string_view(last, 2), "a\uFFFD\n"},
    };
    for (const auto& [text, bytes] : rows) {
        EXPECT_EQ(bytesOfLine(text), bytes);
        EXPECT_EQ(bytesOfLine(std::u16string_view(text.utf16())), bytes);
    }
    EXPECT_EQ(bytesOfLine(std::string_view("a\0b\0", 4)), std::string("a\0b\0\n", 5));
    EXPECT_EQ(bytesOfLine("gr\u00F6\u00DFer \u20AC \U0001F600"), "gr\u00F6\u00DFer \u20AC \U0001F600\n");
    EXPECT_EQ(bytesOfLine("a\xFF"), "a\uFFFD\n");
}

TEST(LogOutput, writesVeryLongTexts) {
    for (const std::size_t length : {100U, 1000U, 4096U, 65'536U, 65'537U, 1'000'000U}) {
        const std::string text(length, 'x');
        EXPECT_TRUE(bytesOfLine(text) == text + "\n") << length;
    }
    // Whatever is worked off piece by piece: at all distances from the start.
    const std::pair<const char16_t*, const char*> units[] = {
        {u"\u20AC", "\u20AC"}, {u"\U0001F600", "\U0001F600"}, {u"\xDE00", "\uFFFD"}};
    for (const auto& [unit, bytes] : units) {
        for (std::size_t offset = 0; offset < 2; ++offset) {
            const std::u16string text = std::u16string(offset, u'x') + kit::repeated(unit, 100'000);
            const std::string expected = std::string(offset, 'x') + kit::repeated(bytes, 100'000);
            EXPECT_TRUE(bytesOfLine(text) == expected + "\n") << bytes;
        }
    }
}

TEST(LogOutput, writesEachLineAtOnce) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends), 0); // keeps the bounds of each write
    const kit::Descriptor reader(ends[0]);
    const kit::Descriptor writer(ends[1]);
    constexpr int room = 1 << 20;
    ASSERT_EQ(::setsockopt(writer.number(), SOL_SOCKET, SO_SNDBUF, &room, sizeof room), 0);
    const kit::StandardErrorAs standardError(writer.number());
    std::string buffer(room, '\0');
    for (const std::string& text :
         {std::string(), std::string("text"), std::string("one\ntwo\n\nthree"), std::string("ends\n"),
          std::string(5000, 'x'), std::string(100'000, 'y')}) {
        for (const bool formatted : {false, true}) {
            formatted ? ZQLog::logWithFormat("%@", text) : ZQLog::log(text);
            const ssize_t count = ::recv(reader.number(), buffer.data(), buffer.size(), MSG_DONTWAIT);
            ASSERT_GT(count, 0);
            const std::string written = buffer.substr(0, static_cast<std::size_t>(count));
            EXPECT_TRUE(written.substr(readPrefix(written).length) ==
                        (text.ends_with('\n') ? text : text + "\n"));
            EXPECT_EQ(::recv(reader.number(), buffer.data(), buffer.size(), MSG_DONTWAIT), -1)
                << "another write";
        }
    }
}

TEST(LogOutput, namesProcessAndThreadInThePrefix) {
    const auto expectOwnNumbers = [] {
        const CapturedOutput output;
        ZQLog::log("text");
        const std::string bytes = output.bytes();
        EXPECT_EQ(readPrefix(bytes).process, utf8Of(NSProcessInfo::processInfo().processName()));
        EXPECT_EQ(readPrefix(bytes).processNumber, std::to_string(::getpid()));
        EXPECT_EQ(readPrefix(bytes).threadNumber, hexText(detail::system::threadIdentifier()));
        return std::string(readPrefix(bytes).threadNumber);
    };
    std::string there;
    std::thread([&] { there = expectOwnNumbers(); }).join();
    EXPECT_NE(expectOwnNumbers(), there);
}

TEST(LogOutput, writesTheNameThatTheProcessHasNow) {
    for (const char* name : {"MyApp", "My App", "Größe"}) {
        const kit::ProcessName processName(name);
        const CapturedOutput output;
        ZQLog::log("text");
        const std::string bytes = output.bytes();
        EXPECT_EQ(readPrefix(bytes).process, name);
    }
}

TEST(LogOutput, writesTheLocalTimeOfTheCall) {
    const kit::Variable zone("TZ", "XXX-5:30");
    const auto shown = [](double offset) {
        const NSDate now = NSDate::dateWithTimeIntervalSinceReferenceDate(
            NSDate::date().timeIntervalSinceReferenceDate() + offset);
        return utf8Of(ZQLog::dateFormatterLong().stringFromDate(now));
    };
    const CapturedOutput output;
    const std::string before = shown(-0.002);
    ZQLog::log("text");
    const std::string after = shown(0.002);
    const std::string bytes = output.bytes();
    EXPECT_LE(before, readPrefix(bytes).date);
    EXPECT_LE(readPrefix(bytes).date, after);
}

TEST(LogString, returnsTheVeryTextPassedIn) {
    const CapturedOutput output;
    const char16_t odd[] = {u'a', 0, 0xD800, u'\n'};
    const NSString text = NSString::stringWithCharacters_length(odd, 4);
    EXPECT_EQ(ZQLog::logString(text).utf16(), std::u16string(odd, 4));
    EXPECT_EQ(output.bytes(), "");
}

TEST(LogString, copiesNoText) {
    const NSString text(std::string(1000, 'x'));
    const std::size_t before = AllocationCount::now();
    const NSString same = ZQLog::logString(text);
    const NSString alsoTheSame = ZQLog::logAlways_logString(true, text);
    const std::size_t after = AllocationCount::now();
    EXPECT_EQ(after, before);
    EXPECT_EQ(same, text);
    EXPECT_EQ(alsoTheSame, text);
}

TEST(LogPrefix, isDateNameAndNumberWithOneSpaceAtTheEnd) {
    const FixedTime time(moment, "UTC0");
    const kit::ProcessName name("MyApp");
    EXPECT_EQ(utf8Of(ZQLog::logPrefix()),
              "2024-03-05 14:07:09.042 MyApp[" + std::to_string(::getpid()) + "]: ");
}

TEST(LogPrefix, followsTheZoneOfTheMoment) {
    const struct {
        const char* zone;
        const char* date;
    } rows[] = {{"UTC0", "2024-03-05 14:07:09.042"},
                {"XXX-5:30", "2024-03-05 19:37:09.042"},
                {"XXX10", "2024-03-05 04:07:09.042"},
                {"XXX-14", "2024-03-06 04:07:09.042"},
                {"EST5EDT,M3.2.0,M11.1.0", "2024-03-05 09:07:09.042"}};
    for (const auto& [zone, date] : rows) {
        const FixedTime time(moment, zone);
        EXPECT_EQ(utf8Of(ZQLog::logPrefix()).substr(0, 23), date) << zone;
    }
}

TEST(LogPrefix, isPutOnNoLineOfTheLibrary) {
    const CapturedOutput output;
    ZQLog::log("text");
    const std::string prefix = utf8Of(ZQLog::logPrefix());
    const std::size_t name = prefix.find(' ', prefix.find(' ') + 1);
    ASSERT_NE(name, std::string::npos);
    EXPECT_EQ(output.bytes().find(prefix.substr(name)), std::string::npos);
    EXPECT_EQ(output.texts(), Texts{"text"});
}

TEST(DateFormatters, haveTheirPatterns) {
    EXPECT_EQ(utf8Of(ZQLog::dateFormatterLong().dateFormat()), "yyyy'-'MM'-'dd' 'HH':'mm':'ss'.'SSS");
    EXPECT_EQ(utf8Of(ZQLog::dateFormatterShort().dateFormat()), "yyyyMMdd'-'HHmm");
}

TEST(DateFormatters, renderLocalTime) {
    const struct {
        const char* zone;
        double seconds;
        const char* longForm;
        const char* shortForm;
    } rows[] = {{"UTC0", moment, "2024-03-05 14:07:09.042", "20240305-1407"},
                {"UTC0", 1704067200, "2024-01-01 00:00:00.000", "20240101-0000"},
                {"XXX1", 1704067200, "2023-12-31 23:00:00.000", "20231231-2300"}};
    for (const auto& row : rows) {
        const kit::Variable zone("TZ", row.zone);
        const NSDate date = NSDate::dateWithTimeIntervalSince1970(row.seconds);
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterLong().stringFromDate(date)), row.longForm);
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterShort().stringFromDate(date)), row.shortForm);
    }
}

TEST(DateFormatters, areTheSameObjectsAtEveryCall) {
    EXPECT_EQ(&ZQLog::dateFormatterLong(), &ZQLog::dateFormatterLong());
    EXPECT_EQ(&ZQLog::dateFormatterShort(), &ZQLog::dateFormatterShort());
    EXPECT_NE(&ZQLog::dateFormatterLong(), &ZQLog::dateFormatterShort());
    const NSDateFormatter* elsewhere = nullptr;
    std::thread([&elsewhere] { elsewhere = &ZQLog::dateFormatterLong(); }).join();
    EXPECT_EQ(elsewhere, &ZQLog::dateFormatterLong());
}
