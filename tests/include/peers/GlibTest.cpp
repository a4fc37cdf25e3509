// SPDX-License-Identifier: MIT
// GLib's and glibmm's types as values and back, as arguments, and GLib's messages in the log.
#include <ZQFoundation/Glib.h>
#include <ZQFoundation/Std.h>
#include <glibmm/fileutils.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

using namespace ZQFoundation;

namespace {

std::string printed(const NSObject& object) {
    GVariant* const variant = variantOf(object);
    if (variant == nullptr) {
        return "null";
    }
    g_variant_ref_sink(variant);
    char* const text = g_variant_print(variant, 1);
    const std::string result = text;
    g_free(text);
    g_variant_unref(variant);
    return result;
}

NSObject read(const char* text) {
    GVariant* const variant = g_variant_parse(nullptr, text, nullptr, nullptr, nullptr);
    const NSObject object = objectOf(variant);
    g_variant_unref(variant);
    return object;
}

} // namespace

TEST(Glib, textsKeepAllTheirBytes) {
    const Glib::ustring cafe("Gr\u00fc\u00dfe \u00e4\u00f6\u00fc");
    EXPECT_EQ(NSString(cafe), "Gr\u00fc\u00dfe \u00e4\u00f6\u00fc");
    EXPECT_EQ(NSString::stringWithFormat("%@|%@", cafe, Glib::ustring()),
              "Gr\u00fc\u00dfe \u00e4\u00f6\u00fc|");
    EXPECT_EQ(NSString(cafe).as<Glib::ustring>().raw(), cafe.raw());
    EXPECT_EQ((NSDictionary{{"\u00fc", 5}}[Glib::ustring("\u00fc")]), 5);
    EXPECT_EQ(NSArray(std::vector<Glib::ustring>{"a", "\u00fc"}), (NSArray{"a", "\u00fc"}));
    EXPECT_EQ((NSArray{"a", "\u00fc"}).as<std::vector<Glib::ustring>>()[1].raw(), "\u00fc");
}

TEST(Glib, textsCompareWithStringsOnEitherSide) {
    const Glib::ustring text("b\u00fc");
    const NSString same("b\u00fc"), later("c"), nothing;
    EXPECT_TRUE(text == same && same == text && !(text != same) && !(same != text));
    EXPECT_TRUE(text != later && later != text && text != nothing && nothing != Glib::ustring());
    EXPECT_TRUE(text < later && text <= later && !(text > later) && !(text >= later) && text <= same);
    EXPECT_TRUE(later > text && later >= text && !(later < text) && !(later <= text) && same <= text);
    EXPECT_TRUE(nothing < Glib::ustring() && text > nothing);
    EXPECT_TRUE(text == NSObject(same) && NSObject(same) == text);
    EXPECT_TRUE(text != NSObject(5) && NSObject(5) != text && text != NSObject());
}

TEST(Glib, datesBothWaysToTheMicrosecond) {
    const Glib::DateTime time = Glib::DateTime::create_utc(2001, 1, 1, 0, 0, 1.25);
    EXPECT_EQ(NSDate(time).timeIntervalSinceReferenceDate(), 1.25);
    EXPECT_EQ(NSDate(time).as<Glib::DateTime>().difference(time), 0);
    EXPECT_EQ(NSDate::dateWithTimeIntervalSince1970(-0.5).as<Glib::DateTime>().get_microsecond(), 500000);
    EXPECT_EQ(dateOf(nullptr), NSDate());
    EXPECT_EQ(dateTimeOf(nullptr), nullptr);
    EXPECT_EQ(dateTimeOf(NSDate::dateWithTimeIntervalSince1970(1e300)), nullptr);
    const Glib::DateTime first = Glib::DateTime::create_utc(1, 1, 1, 0, 0, 0);
    ASSERT_TRUE(NSDate(first).as<Glib::DateTime>());
    EXPECT_EQ(NSDate(first).as<Glib::DateTime>().difference(first), 0);
    EXPECT_EQ(dateTimeOf(NSDate::dateWithTimeIntervalSince1970(-62135596800.001)), nullptr);
}

TEST(Glib, variantsBecomeValues) {
    EXPECT_EQ(read("{'a': <1>, 'b': <[true, false]>, 'c': <('x', 2.5)>}").condensedDescription(),
              "{ a = 1; b = ( 1, 0 ); c = ( x, 2.5 ); }");
    EXPECT_EQ(read("b'ab'").as<NSData>().length(), 3U);
    EXPECT_EQ(read("uint64 18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(read("@as []"), NSArray::array());
    EXPECT_EQ(read("@a{sv} {}"), NSDictionary::dictionary());
    EXPECT_EQ(read("[just 'a', nothing]"), (NSArray{"a", NSNull::null()}));
    EXPECT_FALSE(read("@ms nothing"));
    EXPECT_FALSE(read("<@ms nothing>"));
    EXPECT_FALSE(objectOf(nullptr));
}

TEST(Glib, valuesBecomeVariants) {
    EXPECT_EQ(printed("caf\u00e9"), "'caf\u00e9'");
    EXPECT_EQ(printed(true), "true");
    EXPECT_EQ(printed(-5), "int64 -5");
    EXPECT_EQ(printed(UINT64_MAX), "uint64 18446744073709551615");
    EXPECT_EQ(printed(0.5), "0.5");
    EXPECT_EQ(printed(NSArray{"a", 2}), "[<'a'>, <int64 2>]");
    EXPECT_EQ(printed(NSDictionary{{"a", NSArray::array()}}), "{'a': <@av []>}");
    EXPECT_EQ(printed(NSData::dataWithBytes_length("ab", 2)), "[byte 0x61, 0x62]");
    EXPECT_EQ(printed(NSDate::dateWithTimeIntervalSince1970(1.5)), "int64 1500000");
    EXPECT_EQ(printed(NSDate::dateWithTimeIntervalSince1970(259202210.958)), "int64 259202210958000");
    EXPECT_EQ(printed(NSDate::dateWithTimeIntervalSince1970(-0.000001)), "int64 -1");
    EXPECT_EQ(printed(NSDate::dateWithTimeIntervalSince1970(1e15)), "null");
    EXPECT_EQ(printed(NSNull::null()), "@ms nothing");
    EXPECT_EQ(printed(NSObject()), "null");
    EXPECT_EQ(NSObject(Glib::Variant<Glib::ustring>::create("a")), "a");
}

TEST(Glib, errorsHaveTheirDomainAndCode) {
    GError* const error = g_error_new(G_FILE_ERROR, 4, "no %s", "file");
    EXPECT_EQ(textOf(error), "no file (g-file-error-quark 4)");
    g_error_free(error);
    EXPECT_FALSE(textOf(nullptr));
    EXPECT_EQ(NSString::stringWithFormat("%@", Glib::Error(G_FILE_ERROR, 4, "no file")),
              "no file (g-file-error-quark 4)");
    EXPECT_EQ(NSObject(Glib::FileError(Glib::FileError::ACCESS_DENIED, "not yours")),
              "not yours (g-file-error-quark 2)");
    EXPECT_FALSE(NSObject(Glib::Error()));
}

TEST(Glib, messagesAreLinesOfTheLog) {
    logMessagesOfGLib();
    testing::internal::CaptureStderr();
    g_log("Host", G_LOG_LEVEL_WARNING, "disk %d%%", 90);
    g_log_structured("Host.Net", G_LOG_LEVEL_MESSAGE, "MESSAGE", "caf\u00e9");
    g_log(nullptr, G_LOG_LEVEL_CRITICAL, "bare");
    g_log("Host", G_LOG_LEVEL_DEBUG, "not asked for");
    const GLogField counted[] = {{"GLIB_DOMAIN", "Host.Counted|", 12}, {"MESSAGE", "text|", 4}};
    g_log_structured_array(G_LOG_LEVEL_MESSAGE, counted, 2);
    g_log_structured_array(G_LOG_LEVEL_DEBUG, counted, 2);
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_NE(lines.find("] Host: warning: disk 90%\n"), std::string::npos) << lines;
    EXPECT_NE(lines.find("] Host.Net: message: caf\u00e9\n"), std::string::npos) << lines;
    EXPECT_NE(lines.find("] glib: critical: bare\n"), std::string::npos) << lines;
    EXPECT_NE(lines.find("] Host.Counted: message: text\n"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("not asked for"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("debug: "), std::string::npos) << lines;
}

TEST(Glib, fatalMessagesEndTheProcessAsWithoutTheLibrary) {
    const auto warn = [](bool isFatal) {
        g_log_set_always_fatal(static_cast<GLogLevelFlags>(isFatal ? G_LOG_LEVEL_WARNING : 0));
        logMessagesOfGLib();
        g_log_structured("Host", G_LOG_LEVEL_MESSAGE, "MESSAGE", "goes on");
        g_log_structured("Host", G_LOG_LEVEL_WARNING, "MESSAGE", "last words");
        std::exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // each in a process that has no writer yet
    EXPECT_EXIT(warn(true), testing::KilledBySignal(SIGTRAP), "] Host: warning: last words\n");
    EXPECT_EXIT(warn(false), testing::ExitedWithCode(0), "] Host: warning: last words\n");
}
