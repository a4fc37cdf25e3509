// SPDX-License-Identifier: MIT
// The bytes that log operations write: prefix, text and line end.
#include "tests/kit/AllocationCount.h"
#include "tests/log/LogTestSupport.h"
#include "tests/objects/TestValues.h"

#include <sys/socket.h>

#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/System.h"
#include "foundation/time/NSDateFormatter.h"

using namespace ZQFoundation;
using kit::AllocationCount;
using logtest::CapturedOutput;
using logtest::LinePrefix;
using logtest::readPrefix;
using TestValues::utf8Of;

namespace {

using Texts = std::vector<std::string>;

// 2024-03-05 14:07:09.042 UTC.
constexpr double moment = 1709647629.042;

/// A clock that does not move, in a zone given as a rule.
class FixedTime {
public:
    FixedTime(double seconds, const char* zone)
        : clock_(detail::overrides::clock, seconds), zone_("TZ", zone) {}

private:
    scene::Replaced<double> clock_;
    scene::Variable zone_;
};

std::string hexText(std::uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "%llx", static_cast<unsigned long long>(number));
    return text;
}

/// What follows the prefix of the only line, its end included.
std::string bytesBehindThePrefix(const CapturedOutput& output) {
    const std::string bytes = output.bytes();
    const std::optional<LinePrefix> prefix = readPrefix(bytes);
    EXPECT_TRUE(prefix) << bytes;
    return prefix ? bytes.substr(prefix->length) : bytes;
}

std::string bytesOfLine(StringView text) {
    const CapturedOutput output;
    ZQLog::log(text);
    return bytesBehindThePrefix(output);
}

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

/// Descriptor 2 as one end of a socket that keeps the bounds of each write.
class CapturedWrites {
public:
    CapturedWrites() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends), 0);
        reader_ = ends[0];
        const int room = 1 << 20;
        EXPECT_EQ(::setsockopt(ends[1], SOL_SOCKET, SO_SNDBUF, &room, sizeof room), 0);
        before_ = ::fcntl(2, F_DUPFD_CLOEXEC, 3);
        EXPECT_EQ(::dup2(ends[1], 2), 2);
        ::close(ends[1]);
    }
    CapturedWrites(const CapturedWrites&) = delete;
    CapturedWrites& operator=(const CapturedWrites&) = delete;
    ~CapturedWrites() {
        ::dup2(before_, 2);
        ::close(before_);
        ::close(reader_);
    }

    /// Those since the last call.
    std::vector<std::string> writes() const {
        std::vector<std::string> writes;
        std::string buffer(1 << 20, '\0');
        ssize_t count = 0;
        while ((count = ::recv(reader_, buffer.data(), buffer.size(), MSG_DONTWAIT)) >= 0) {
            writes.emplace_back(buffer.data(), static_cast<std::size_t>(count));
        }
        return writes;
    }

private:
    int reader_ = -1;
    int before_ = -1;
};

} // namespace

TEST(LinePrefix, isReadOnlyWhenItIsWhole) {
    const std::optional<LinePrefix> prefix =
        readPrefix("2024-03-05 14:07:09.042 My App[1234:5d7f] a [1:2] b");
    ASSERT_TRUE(prefix);
    EXPECT_EQ(prefix->date, "2024-03-05 14:07:09.042");
    EXPECT_EQ(prefix->process, "My App");
    EXPECT_EQ(prefix->processNumber, "1234");
    EXPECT_EQ(prefix->threadNumber, "5d7f");
    EXPECT_EQ(prefix->length, 42U);
    for (const char* line :
         {"", "text", "2024-03-05 14:07:09.042", "2024-03-05 14:07:09.042 ", "2024-03-05 14:07:09 App[1:2] x",
          "2024-03-05 14:07:09.042 [1:2] x", "2024-03-05 14:07:09.042 App[1] x",
          "2024-03-05 14:07:09.042 App[:2] x", "2024-03-05 14:07:09.042 App[1:] x",
          "2024-03-05 14:07:09.042 App[1:2]x", "2024-03-05 14:07:09.042 App[1:2]",
          "2024-03-05 14:07:09.042 App[1:2F] x", "2024-03-05 14:07:09.042 App[a:2] x"}) {
        EXPECT_FALSE(readPrefix(line)) << line;
    }
}

TEST(LogOutput, writesNothingForANilText) {
    const CapturedOutput output;
    ZQLog::log(nullptr);
    ZQLog::log(NSString());
    ZQLog::log(static_cast<const char*>(nullptr));
    ZQLog::logAlways_log(true, nullptr);
    ZQLog::logAlways_log(false, nullptr);
    EXPECT_EQ(output.bytes(), "");
}

TEST(LogOutput, writesNothingWhenTheFlagIsNo) {
    const CapturedOutput output;
    ZQLog::logAlways_log(false, "text");
    ZQLog::logAlways_logWithFormat(false, "%d", 3);
    ZQLog::logAlways_logWithFormatv_arguments(false, "text", {});
    EXPECT_EQ(output.bytes(), "");
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

TEST(LogOutput, writesATextAsItStands) {
    const CapturedOutput output;
    ZQLog::log("50% done %d");
    ZQLog::log("%@ %n %s %% %");
    ZQLog::logWithFormat("%@", "100%d");
    EXPECT_EQ(output.texts(), (Texts{"50% done %d", "%@ %n %s %% %", "100%d"}));
}

TEST(LogOutput, writesAnEmptyTextAsALineOfItsOwn) { EXPECT_EQ(bytesOfLine(""), "\n"); }

TEST(LogOutput, endsALineOnlyWhenTheTextDoesNot) {
    EXPECT_EQ(bytesOfLine("text"), "text\n");
    EXPECT_EQ(bytesOfLine("text\n"), "text\n");
    EXPECT_EQ(bytesOfLine("text\n\n"), "text\n\n");
    EXPECT_EQ(bytesOfLine("\n"), "\n");
    EXPECT_EQ(bytesOfLine("text\r"), "text\r\n");
    EXPECT_EQ(bytesOfLine("text\r\n"), "text\r\n");
    EXPECT_EQ(bytesOfLine(u"text\u2028"), "text\u2028\n");
}

TEST(LogOutput, putsThePrefixOnlyBeforeTheFirstOfSeveralLines) {
    EXPECT_EQ(bytesOfLine("one\ntwo\n\nthree"), "one\ntwo\n\nthree\n");
    const CapturedOutput output;
    ZQLog::log("one\ntwo\n");
    ZQLog::log("three");
    EXPECT_EQ(output.texts(), (Texts{"one\ntwo", "three"}));
}

TEST(LogOutput, writesANulAsItIs) {
    EXPECT_EQ(bytesOfLine(std::u16string_view(u"a\0b\0", 4)), std::string("a\0b\0\n", 5));
    EXPECT_EQ(bytesOfLine(std::string_view("\0", 1)), std::string("\0\n", 2));
    EXPECT_EQ(bytesOfLine(NSString(std::string_view("a\0b", 3))), std::string("a\0b\n", 4));
}

TEST(LogOutput, writesUtf8) {
    EXPECT_EQ(bytesOfLine(u"gr\u00F6\u00DFer \u20AC \U0001F600"), "gr\u00F6\u00DFer \u20AC \U0001F600\n");
    EXPECT_EQ(bytesOfLine("gr\u00F6\u00DFer \u20AC \U0001F600"), "gr\u00F6\u00DFer \u20AC \U0001F600\n");
}

TEST(LogOutput, writesReplacementCharactersForWhatHasNoUtf8Form) {
    const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, u'c'};
    EXPECT_EQ(bytesOfLine(std::u16string_view(lone, 5)), "a\uFFFDb\uFFFDc\n");
    const char16_t doubled[] = {0xD83D, 0xD83D, 0xDE00};
    EXPECT_EQ(bytesOfLine(std::u16string_view(doubled, 3)), "\uFFFD\U0001F600\n");
    const char16_t last[] = {u'a', 0xD83D};
    EXPECT_EQ(bytesOfLine(NSString(std::u16string_view(last, 2))), "a\uFFFD\n");
    EXPECT_EQ(bytesOfLine("a\xFF"), "a\uFFFD\n");
}

TEST(LogOutput, writesVeryLongTexts) {
    for (const std::size_t length : {100U, 1000U, 4096U, 65'536U, 65'537U, 1'000'000U}) {
        const std::string text(length, 'x');
        EXPECT_TRUE(bytesOfLine(text) == text + "\n") << length;
    }
    const std::u16string euros(300'000, u'\u20AC');
    EXPECT_TRUE(bytesOfLine(euros) == repeated("\u20AC", euros.size()) + "\n");
    const std::u16string halves(100'000, 0xDE00);
    EXPECT_TRUE(bytesOfLine(halves) == repeated("\uFFFD", halves.size()) + "\n");
    // Whatever is worked off piece by piece: pairs at all distances from the start.
    for (std::size_t offset = 0; offset < 2; ++offset) {
        std::u16string pairs(offset, u'x');
        for (int i = 0; i < 50'000; ++i) {
            pairs += u"\U0001F600";
        }
        EXPECT_TRUE(bytesOfLine(pairs) == std::string(offset, 'x') + repeated("\U0001F600", 50'000) + "\n");
    }
}

TEST(LogOutput, writesEachLineAtOnce) {
    const CapturedWrites captured;
    for (const std::string& text :
         {std::string(), std::string("text"), std::string("one\ntwo\n\nthree"), std::string("ends\n"),
          std::string(5000, 'x'), std::string(100'000, 'y')}) {
        ZQLog::log(text);
        const std::vector<std::string> writes = captured.writes();
        ASSERT_EQ(writes.size(), 1U) << text.size();
        const std::optional<LinePrefix> prefix = readPrefix(writes[0]);
        ASSERT_TRUE(prefix) << writes[0].substr(0, 100);
        const bool endsItself = !text.empty() && text.back() == '\n';
        EXPECT_TRUE(writes[0].substr(prefix->length) == text + (endsItself ? "" : "\n")) << text.size();
    }
    ZQLog::logWithFormat("%d of %@", 3, NSArray{"a", "b"});
    EXPECT_EQ(captured.writes().size(), 1U);
}

TEST(LogOutput, namesProcessAndThreadInThePrefix) {
    const auto prefixOfALine = [] {
        const CapturedOutput output;
        ZQLog::log("text");
        return readPrefix(output.bytes());
    };
    const std::optional<LinePrefix> here = prefixOfALine();
    ASSERT_TRUE(here);
    EXPECT_EQ(here->process, utf8Of(NSProcessInfo::processInfo().processName()));
    EXPECT_EQ(here->processNumber, std::to_string(::getpid()));
    EXPECT_EQ(here->threadNumber, hexText(detail::system::threadIdentifier()));
    std::optional<LinePrefix> there;
    std::string numberThere;
    std::thread([&] {
        there = prefixOfALine();
        numberThere = hexText(detail::system::threadIdentifier());
    }).join();
    ASSERT_TRUE(there);
    EXPECT_EQ(there->processNumber, here->processNumber);
    EXPECT_EQ(there->threadNumber, numberThere);
    EXPECT_NE(there->threadNumber, here->threadNumber);
}

TEST(LogOutput, writesTheNameThatTheProcessHasNow) {
    for (const char* name : {"MyApp", "My App", "Größe"}) {
        const logtest::ProcessName processName(name);
        const CapturedOutput output;
        ZQLog::log("text");
        const std::optional<LinePrefix> prefix = readPrefix(output.bytes());
        ASSERT_TRUE(prefix) << output.bytes();
        EXPECT_EQ(prefix->process, name);
    }
}

TEST(LogOutput, writesTheLocalTimeOfTheCall) {
    const scene::Variable zone("TZ", "XXX-5:30");
    const auto shown = [](double offset) {
        const NSDate now = NSDate::dateWithTimeIntervalSinceReferenceDate(
            NSDate::date().timeIntervalSinceReferenceDate() + offset);
        return utf8Of(ZQLog::dateFormatterLong().stringFromDate(now));
    };
    const CapturedOutput output;
    const std::string before = shown(-0.002);
    ZQLog::log("text");
    const std::string after = shown(0.002);
    const std::optional<LinePrefix> prefix = readPrefix(output.bytes());
    ASSERT_TRUE(prefix);
    EXPECT_LE(before, prefix->date);
    EXPECT_LE(prefix->date, after);
}

TEST(LogOutput, writesTheWholePrefix) {
    const FixedTime time(moment, "XXX-1");
    const logtest::ProcessName name("MyApp");
    const CapturedOutput output;
    ZQLog::log("text");
    EXPECT_EQ(output.bytes(), "2024-03-05 15:07:09.042 MyApp[" + std::to_string(::getpid()) + ":" +
                                  hexText(detail::system::threadIdentifier()) + "] text\n");
}

TEST(LogString, returnsTheVeryTextPassedIn) {
    const CapturedOutput output;
    EXPECT_EQ(utf8Of(ZQLog::logString("50% done %d")), "50% done %d");
    EXPECT_EQ(utf8Of(ZQLog::logString(NSString("text"))), "text");
    EXPECT_EQ(utf8Of(ZQLog::logString(std::string("text\n"))), "text\n");
    EXPECT_EQ(utf8Of(ZQLog::logString("")), "");
    EXPECT_EQ(utf8Of(ZQLog::logAlways_logString(true, "text")), "text");
    EXPECT_EQ(utf8Of(ZQLog::logAlways_logString(true, NSString("text"))), "text");
    const char16_t odd[] = {u'a', 0, 0xD800, u'\n'};
    const NSString text = NSString::stringWithCharacters_length(odd, 4);
    EXPECT_EQ(ZQLog::logString(text).utf16(), std::u16string(odd, 4));
    EXPECT_EQ(output.bytes(), "");
}

TEST(LogString, returnsNilForANilTextAndForAFlagOfNo) {
    EXPECT_FALSE(ZQLog::logString(nullptr));
    EXPECT_FALSE(ZQLog::logString(NSString()));
    EXPECT_FALSE(ZQLog::logString(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(ZQLog::logAlways_logString(true, NSString()));
    EXPECT_FALSE(ZQLog::logAlways_logString(false, NSString()));
    EXPECT_FALSE(ZQLog::logAlways_logString(false, "text"));
    EXPECT_FALSE(ZQLog::logAlways_logString(false, NSString("text")));
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

TEST(LogWithFormat, formatsWithoutAnyPrefix) {
    const Argument three[] = {Argument(3)};
    const ArgumentList list(three, 1);
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormat("%d items", 3)), "3 items");
    EXPECT_EQ(utf8Of(ZQLog::logAlways_logStringWithFormat(true, "%d items", 3)), "3 items");
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormatv_arguments("%d items", list)), "3 items");
    EXPECT_EQ(utf8Of(ZQLog::logAlways_logStringWithFormatv_arguments(true, "%d items", list)), "3 items");
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormat("100%%")), "100%");
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormat("")), "");
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormat("%@", NSString())), "(null)");
    EXPECT_EQ(utf8Of(ZQLog::logStringWithFormat(NSString("%d %@"), 3, "x")), "3 x");
}

TEST(LogWithFormat, writesAndReturnsNothingForANilFormat) {
    const CapturedOutput output;
    ZQLog::logWithFormat(nullptr);
    ZQLog::logWithFormat(nullptr, 3, "x");
    ZQLog::logWithFormat(NSString(), 3);
    ZQLog::logWithFormatv_arguments(nullptr, {});
    ZQLog::logAlways_logWithFormat(true, nullptr, 3);
    ZQLog::logAlways_logWithFormatv_arguments(true, nullptr, {});
    EXPECT_EQ(output.bytes(), "");
    EXPECT_FALSE(ZQLog::logStringWithFormat(nullptr));
    EXPECT_FALSE(ZQLog::logStringWithFormat(NSString(), 3));
    EXPECT_FALSE(ZQLog::logStringWithFormatv_arguments(nullptr, {}));
    EXPECT_FALSE(ZQLog::logAlways_logStringWithFormat(true, nullptr, 3));
    EXPECT_FALSE(ZQLog::logAlways_logStringWithFormatv_arguments(true, nullptr, {}));
}

TEST(LogPrefix, isDateNameAndNumberWithOneBlankAtTheEnd) {
    const FixedTime time(moment, "UTC0");
    const logtest::ProcessName name("MyApp");
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
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(moment);
    const NSDate midnight = NSDate::dateWithTimeIntervalSince1970(1704067200);
    {
        const scene::Variable zone("TZ", "UTC0");
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterLong().stringFromDate(date)), "2024-03-05 14:07:09.042");
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterShort().stringFromDate(date)), "20240305-1407");
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterLong().stringFromDate(midnight)), "2024-01-01 00:00:00.000");
        EXPECT_EQ(utf8Of(ZQLog::dateFormatterShort().stringFromDate(midnight)), "20240101-0000");
    }
    const scene::Variable zone("TZ", "XXX1");
    EXPECT_EQ(utf8Of(ZQLog::dateFormatterLong().stringFromDate(midnight)), "2023-12-31 23:00:00.000");
    EXPECT_EQ(utf8Of(ZQLog::dateFormatterShort().stringFromDate(midnight)), "20231231-2300");
}

TEST(DateFormatters, areTheSameObjectsAtEveryCall) {
    EXPECT_EQ(&ZQLog::dateFormatterLong(), &ZQLog::dateFormatterLong());
    EXPECT_EQ(&ZQLog::dateFormatterShort(), &ZQLog::dateFormatterShort());
    EXPECT_NE(&ZQLog::dateFormatterLong(), &ZQLog::dateFormatterShort());
    const NSDateFormatter* elsewhere = nullptr;
    std::thread([&elsewhere] { elsewhere = &ZQLog::dateFormatterLong(); }).join();
    EXPECT_EQ(elsewhere, &ZQLog::dateFormatterLong());
}
