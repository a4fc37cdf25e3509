// SPDX-License-Identifier: MIT
// Hostile bytes: a clean failure or a sane value, quickly and with little memory.
#include <time.h>

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "BinaryBuilding.h"
#include "PropertyListTesting.h"
#include "foundation/plist/NSPropertyListSerialization.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using namespace std::string_view_literals;

/// Processor time, which other programs hardly change.
double secondsOfThread() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

std::vector<std::string> samples() {
    return {
        "{ a = (x, \"y\\U00e9\\101\\n\", <0fbd 77>); 'k l'; /* c */ b = {c = d;}; } // end",
        "\"key one\" = \"value \\\"1\\\"\"; two; three = (4, (5)); /* six */",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist>\n<plist "
        "version=\"1.0\"><dict><key>a</key>"
        "<array><string>x&lt;&#xe9;<![CDATA[<]]></string><integer>-0x1f</integer><real>1.5e3</real><true/>"
        "<date>2001-02-03T04:05:06Z</date><data>AAEC Aw==</data></array><!-- c "
        "--><key/><dict/></dict></plist>",
        std::string("\xFF\xFE{\0a\0=\0\"\0\xE9\0\"\0;\0}\0"sv),
        std::string("\0\0\xFE\xFF\0\0\0(\0\0\0a\0\0\0)"sv),
        "<?xml version='1.0' encoding='windows-1252'?><array><string>\x80</string></array>",
        sampleBinary(),
    };
}

/// Reads the bytes as a property list and as a strings table, and the result must survive being written.
void expectSane(const std::string& bytes) {
    detail::PropertyListError error;
    const NSObject value = parseBytes(bytes, &error);
    ASSERT_EQ(static_cast<bool>(value), error.message == nullptr);
    if (value) {
        ASSERT_FALSE(value.description().utf8().empty() && !NSString(value));
        const NSData written =
            NSPropertyListSerialization::dataWithPropertyList_format(value, NSPropertyListXMLFormat_v1_0);
        if (written) {
            ASSERT_TRUE(NSPropertyListSerialization::propertyListWithData(written));
        }
    } else {
        ASSERT_LE(error.line, bytes.size() + 1);
        ASSERT_LE(error.column, bytes.size() + 1);
    }
    const Exact<char> exact{std::string_view(bytes)};
    static_cast<void>(detail::parseStringsFileBytes(asBytes(exact.data()), exact.size(), nullptr));
    static_cast<void>(detail::parsePropertyListText(StringView(exact.data(), exact.size()), nullptr));
}

TEST(HostilePropertyList, samplesAreGood) {
    for (const std::string& sample : samples()) {
        EXPECT_TRUE(parseBytes(sample)) << sample;
    }
}

TEST(HostilePropertyList, truncatedAtEveryByte) {
    for (const std::string& sample : samples()) {
        const bool isXml = sample.starts_with("<?xml version=\"");
        const bool isBinary = sample.starts_with("bplist");
        for (std::size_t length = 0; length < sample.size(); ++length) {
            SCOPED_TRACE(length);
            expectSane(sample.substr(0, length));
            expectSane(sample.substr(length));
            if (isXml || (isBinary && length > 8)) {
                EXPECT_FALSE(parseBytes(sample.substr(0, length)));
            }
        }
    }
}

TEST(HostilePropertyList, everyByteReplaced) {
    for (const std::string& sample : samples()) {
        for (std::size_t index = 0; index < sample.size(); ++index) {
            SCOPED_TRACE(index);
            for (const char other : "\0\xFF\x80\xC3 <>/&;=(){}\"'\\,*[]x0F\n"sv) {
                std::string changed = sample;
                changed[index] = other;
                expectSane(changed);
            }
        }
    }
}

TEST(HostilePropertyList, aMillionBracketsFailAtOnce) {
    constexpr std::size_t times = 1'000'000;
    for (const std::string_view bracket : {"("sv, "{a="sv, "{"sv, "<"sv, "<array>"sv, "<dict><key>a</key>"sv,
                                           "<plist>"sv, "[[,"sv, "\\"sv, "/* "sv}) {
        const std::string text = repeated(bracket, isSanitized ? times / 20 : times);
        detail::PropertyListError error;
        const double start = secondsOfThread();
        const bool isRead = static_cast<bool>(parseBytes(text, &error));
        EXPECT_LT(secondsOfThread() - start, isSanitized ? 10.0 : 1.0)
            << bracket; // enough for a scan, for nothing else
        EXPECT_EQ(isRead, bracket == "/* ")
            << bracket << ": an unclosed comment alone is an empty dictionary";
    }
}

TEST(HostilePropertyList, deepTextNamesThePlace) {
    detail::PropertyListError error;
    EXPECT_FALSE(parseBytes(repeated("(", 10'000), &error));
    EXPECT_EQ(describe(error), "Values are nested too deeply (line 1, column 513)");
    EXPECT_FALSE(parseBytes(repeated("<array>\n", 10'000), &error));
    EXPECT_EQ(describe(error), "Values are nested too deeply (line 513, column 1)");
}

TEST(HostilePropertyList, nothingIsExpandedOrFetched) {
    for (const std::string_view text :
         {"<!DOCTYPE a [<!ENTITY b \"bbbbbbbb\"><!ENTITY c \"&b;&b;&b;&b;\">]><string>&c;</string>",
          "<!DOCTYPE a [<!ENTITY b SYSTEM \"file:///etc/passwd\">]><string>&b;</string>",
          "<!DOCTYPE a [<!ENTITY % b SYSTEM \"http://localhost/x\"> %b;]><string>x</string>",
          "<!DOCTYPE a SYSTEM \"x\" [ ]><string>x</string>", "<string>&b;</string>",
          "<string>%b;&b;</string>"}) {
        EXPECT_FALSE(parseBytes(text)) << text;
    }
    // A document type of somewhere else is ignored unread.
    EXPECT_EQ(show(parseBytes("<!DOCTYPE a SYSTEM \"file:///dev/tty\"><string>x</string>")), "'x'");
}

TEST(HostilePropertyList, whatIsReadCanBeShown) {
    // Each array holds the next one twice: 278 bytes would take years to show.
    const std::string doubling = chain(57, 2);
    const NSData data = NSData::dataWithBytes_length(doubling.data(), doubling.size());
    EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(data));
    for (unsigned length = 1; length < 100; ++length) {
        if (const NSObject value = parseBytes(chain(length, 2))) {
            EXPECT_LT(length, 19U);
            EXPECT_LT(NSString::stringWithFormat("%@", value).length(), std::size_t{1} << 26);
        }
    }
}

TEST(HostilePropertyList, invalidTextInsideValuesFails) {
    for (const std::string_view bytes :
         {"(\"\xFF\")"sv, "{\"\xC3\"=a;}"sv, "<string>\xED\xA0\x80</string>"sv, "/* \x80 */ (a)"sv,
          "<!-- \xC0\xAF --><true/>"sv, "\xFF\xFE(\0\"\0\0\xD8\"\0)\0"sv, "\xFE\xFF\0(\0)\0"sv}) {
        EXPECT_FALSE(parseBytes(bytes)) << bytes;
    }
}

/// Processor seconds for reading `bytes`, the better of two.
double secondsToRead(const std::string& bytes) {
    double best = 1e9;
    for (int round = 0; round < 2; ++round) {
        const double start = secondsOfThread();
        EXPECT_TRUE(detail::parsePropertyListBytes(asBytes(bytes.data()), bytes.size(), nullptr));
        best = std::min(best, secondsOfThread() - start);
    }
    return best;
}

struct Growing {
    std::string_view name;
    std::string_view before;
    std::string_view piece;
    std::string_view after;
};

constexpr Growing growing[] = {
    {"entries", "<array>", "<dict><key>Name</key><string>some text</string></dict>", "</array>"},
    {"numbers", "<array>", "<integer>1234567</integer>", "</array>"},
    {"references", "<string>", "&amp;&#x41;", "</string>"},
    {"literal sections", "<string>", "<![CDATA[>]]>", "</string>"},
    {"comments", "<array>", "<!-- > -->", "</array>"},
    {"data", "<data>", "AAEC AwQF\n", "</data>"},
    {"equal keys", "<dict>", "<key>k</key><true/>", "</dict>"},
    {"old-style entries", "(", "{ name = \"some text\"; }, ", ")"},
    {"escapes", "\"", "\\\"\\n\\U00e9", "\""},
    {"lone strings", "", "a = b;\n", ""},
    {"stars", "/*", "* ", "*/ a"},
    {"hexadecimal", "<", "0123 ", ">"},
    {"lines", "// \n", "// x\n", "(a)"},
};

TEST(HostilePropertyList, timeGrowsWithTheLength) {
    // Anything quadratic would take a hundred times as long for ten times the text.
    constexpr std::size_t smallSize = isSanitized ? 50'000 : 400'000;
    for (const Growing& kind : growing) {
        const auto make = [&](std::size_t size) {
            return std::string(kind.before) + repeated(kind.piece, size / kind.piece.size()) +
                   std::string(kind.after);
        };
        const double small = secondsToRead(make(smallSize));
        const double large = secondsToRead(make(smallSize * 10));
        EXPECT_LT(large, small * 40 + 0.05) << kind.name;
    }
}

TEST(HostilePropertyList, manyKeysInOneDictionary) {
    constexpr int count = isSanitized ? 20'000 : 100'000;
    std::string text = "<dict>";
    for (int index = 0; index < count; ++index) {
        text += "<key>" + std::to_string(index % (count / 2)) + "</key><integer>" + std::to_string(index) +
                "</integer>";
    }
    const NSDictionary dictionary(parseBytes(text + "</dict>"));
    EXPECT_EQ(dictionary.count(), static_cast<std::size_t>(count / 2));
    EXPECT_EQ(show(dictionary.objectForKey("0")), std::to_string(count / 2));
}

/// Strings that are replaced as soon as they are read, so that nothing keeps the memory they share.
TEST(HostilePropertyList, repeatedKeysOfOneDictionary) {
    struct Form {
        const char* name;
        std::string start, entry, end;
    };
    const std::string longKey(70, 'k');
    const Form forms[] = {
        {"old-style", "{keep=(a,(b));", "k=(x,(y));k=();", "}"},
        {"old-style, a long key", "{keep=(a,(b));", longKey + "=x;" + longKey + "=({});", "}"},
        {"strings table", "keep=(a,(b));", "k=x;k=({z=y;});", ""},
        {"XML", "<dict><key>keep</key><array><string>a</string><array><string>b</string></array></array>",
         "<key>k</key><string>x</string><key>k</key><array><dict/></array>", "</dict>"},
    };
    for (const Form& form : forms) {
        std::string text = form.start;
        for (int i = 0; i < 200; ++i) {
            text += form.entry;
        }
        text += form.end;
        std::u16string units(text.begin(), text.end());
        units.insert(0, 1, u'\xFEFF');
        const std::string utf16(reinterpret_cast<const char*>(units.data()), 2 * units.size());
        for (const std::string& bytes : {text, utf16}) {
            const NSDictionary dictionary(parseBytes(bytes));
            EXPECT_EQ(dictionary.count(), 2U) << form.name;
            EXPECT_EQ(show(dictionary.objectForKey("keep")), "['a', ['b']]") << form.name;
            expectSane(bytes);
        }
    }
}

} // namespace
