// SPDX-License-Identifier: MIT
// Views of texts in any form.
#include "foundation/text/StringView.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "foundation/objects/NSString.h"
#include "foundation/text/StandardTexts.h"
#include "tests/kit/AllocationCount.h"

using namespace ZQFoundation;
using namespace kit;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

/// A string as a toolkit's: its `size` counts characters.
struct CountingCharacters {
    using value_type = unsigned;
    const char* data() const { return bytes.c_str(); }
    std::size_t size() const { return 2; }
    std::string bytes = "\u00e9\u00e9";
};

struct Viewed {
    operator std::string_view() const { return text; }
    std::string text = "vi\u00e9wed";
};

struct ViewedUnits {
    operator std::u16string_view() const { return u"units"; }
};

struct Holder {
    std::string text;
};

} // namespace

template <>
struct ZQFoundation::ObjectConversion<Holder> {
    static StringView text(const Holder& holder) { return holder.text; }
};

namespace {

static_assert(!std::is_convertible_v<CountingCharacters, StringView>);
static_assert(!std::is_convertible_v<CountingCharacters, NSString>);
static_assert(!std::is_convertible_v<CountingCharacters, NSObject>);
static_assert(!std::is_convertible_v<std::array<char, 8>, StringView>);
static_assert(!std::is_convertible_v<std::array<char16_t, 8>, NSString>);
static_assert(!std::is_convertible_v<std::vector<unsigned char>, StringView>);
static_assert(!std::is_convertible_v<std::wstring, StringView>);
static_assert(!std::is_convertible_v<std::u32string, NSString>);

static_assert(std::is_trivially_copyable_v<StringView>);
static_assert(sizeof(StringView) <= 2 * sizeof(void*));
static_assert(StringView("abc").size() == 3);
static_assert(StringView(u"abc").form() == StringView::Form::utf16);
static_assert(!StringView(nullptr));
static_assert(!std::is_convertible_v<int, StringView>);
static_assert(!std::is_convertible_v<NSObject, StringView>);
static_assert(std::is_convertible_v<const char*, StringView>);
static_assert(std::is_convertible_v<std::u16string, StringView>);

TEST(StringView, isMadeFromAnyText) {
    const std::string text = "caf\u00e9";
    const std::u16string units = u"caf\u00e9";
    const std::u8string utf8 = u8"caf\u00e9";
    const std::vector<char> bytes{'a', '\0', 'b'};
    const Holder holder{text};
    const NSString ascii = "plain";
    const NSString other = "caf\u00e9";
    const struct {
        const char* name;
        StringView view;
        std::size_t size;
        StringView::Form form;
    } rows[] = {
        {"literal", "caf\u00e9", 5, StringView::Form::utf8},
        {"char8_t", u8"caf\u00e9", 5, StringView::Form::utf8},
        {"std::string", text, 5, StringView::Form::utf8},
        {"std::string_view", std::string_view(text), 5, StringView::Form::utf8},
        {"bytes", StringView("a\0b", 3), 3, StringView::Form::utf8},
        {"units literal", u"caf\u00e9", 4, StringView::Form::utf16},
        {"std::u16string", units, 4, StringView::Form::utf16},
        {"std::u16string_view", std::u16string_view(units), 4, StringView::Form::utf16},
        {"units", StringView(u"a\0b", 3), 3, StringView::Form::utf16},
        {"ascii", StringView::ascii("abc", 2), 2, StringView::Form::ascii},
        {"ascii string", ascii, 5, StringView::Form::ascii},
        {"other string", other, 4, StringView::Form::utf16},
        {"std::u8string", utf8, 5, StringView::Form::utf8},
        {"std::vector", bytes, 3, StringView::Form::utf8},
        {"converts to a view of bytes", Viewed(), 7, StringView::Form::utf8},
        {"converts to a view of units", ViewedUnits(), 5, StringView::Form::utf16},
        {"a type with a conversion", holder, 5, StringView::Form::utf8},
        {"nil", nullptr, 0, StringView::Form::absent},
        {"empty", "", 0, StringView::Form::utf8},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.view.size(), row.size) << row.name;
        EXPECT_EQ(row.view.form(), row.form) << row.name;
    }
}

TEST(StringView, theNilTextIsNotTheEmptyText) {
    const char* const none = nullptr;
    const char16_t* const noUnits = nullptr;
    EXPECT_FALSE(StringView());
    EXPECT_FALSE(StringView(none));
    EXPECT_FALSE(StringView(noUnits));
    EXPECT_FALSE(StringView(NSString()));
    EXPECT_TRUE(StringView(""));
    EXPECT_TRUE(StringView(u""));
    EXPECT_TRUE(StringView(std::string()));
    EXPECT_TRUE(StringView(std::string_view())) << "a view without bytes is empty, not nil";
    EXPECT_TRUE(StringView(NSString::string()));
}

TEST(StringView, looksAtTheTextWithoutACopy) {
    const std::string text = "some text";
    const NSString string = "some text that is long enough to have a body";
    EXPECT_EQ(StringView(text).bytes(), text.data());
    const std::size_t before = kit::AllocationCount::now();
    const StringView views[] = {text, string, "literal", u"units", std::string_view(text).substr(5)};
    const bool equal = string.isEqualToString(views[1]) && !string.isEqualToString(views[2]) &&
                       string.hasPrefix(views[0]) && !string.hasSuffix(views[3]) &&
                       !string.hasPrefix("caf\u00e9");
    const std::size_t after = kit::AllocationCount::now();
    EXPECT_TRUE(equal);
    EXPECT_EQ(after, before);
}

TEST(StringView, keepsZeroBytesOfSizedText) {
    EXPECT_EQ(NSString(StringView("a\0b"s)).length(), 3U);
    EXPECT_EQ(NSString(StringView(u"a\0b"sv)).length(), 3U);
    EXPECT_EQ(NSString(StringView("a\0b")).length(), 1U) << "a literal ends at its first zero";
}

} // namespace
