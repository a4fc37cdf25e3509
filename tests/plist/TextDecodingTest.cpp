// SPDX-License-Identifier: MIT
// Which encoding the bytes of a property list or string table are in.
#include "foundation/plist/TextDecoding.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;
using namespace std::string_view_literals;

using Decoder = bool (*)(const unsigned char*, std::size_t, detail::DecodedText&, detail::PropertyListError&);

/// The text's units, or the reason why the bytes are none.
std::string decodeWith(Decoder decoder, std::string_view bytes) {
    const Exact<char> exact(bytes);
    detail::DecodedText text;
    detail::PropertyListError error;
    if (!decoder(asBytes(exact.data()), exact.size(), text, error)) {
        return describe(error);
    }
    return show(text.utf8 != nullptr ? NSString::stringWithUTF8Bytes(text.utf8, text.count)
                                     : NSString::stringWithCharacters_length(text.units.get(), text.count));
}

std::string decode(std::string_view bytes) { return decodeWith(detail::decodeText, bytes); }
std::string decodeStrings(std::string_view bytes) { return decodeWith(detail::decodeStringsText, bytes); }

TEST(TextDecoding, marksDecideAndAreLeftOut) {
    EXPECT_EQ(decode("\xEF\xBB\xBF\xC3\xA9"), "'%00E9'");
    EXPECT_EQ(decode("\xFF\xFE\xE9\x00\x3D\xD8\x00\xDE"sv), "'%00E9%D83D%DE00'");
    EXPECT_EQ(decode("\xFE\xFF\x00\xE9\xD8\x3D\xDE\x00"sv), "'%00E9%D83D%DE00'");
    EXPECT_EQ(decode("\xFF\xFE\x00\x00\xE9\x00\x00\x00\x00\xF6\x01\x00"sv), "'%00E9%D83D%DE00'");
    EXPECT_EQ(decode("\x00\x00\xFE\xFF\x00\x00\x00\xE9\x00\x01\xF6\x00"sv), "'%00E9%D83D%DE00'");
    EXPECT_EQ(decode("\xEF\xBB\xBF"), "''");
    EXPECT_EQ(decode("\xFF\xFE"), "''");
    EXPECT_EQ(decode("\xFE\xFF\xFE\xFF"), "'%FEFF'") << "only one is a mark";
}

TEST(TextDecoding, aMarkOverrulesTheDeclaration) {
    EXPECT_EQ(decode("\xEF\xBB\xBF<?xml encoding='utf-16'?>\xC3\xA9"), "'<?xml encoding='utf-16'?>%00E9'");
}

TEST(TextDecoding, withoutAnythingItIsUtf8) {
    EXPECT_EQ(decode(""), "''");
    EXPECT_EQ(decode("a\xC3\xA9"), "'a%00E9'");
    EXPECT_EQ(decode("a\0b"sv), "'a%0000b'");
    EXPECT_EQ(decode("<?xml version='1.0'?>\xC3\xA9"), "'<?xml version='1.0'?>%00E9'");
    EXPECT_EQ(decode(" <?xml encoding='latin1'?>\xC3\xA9"), "' <?xml encoding='latin1'?>%00E9'")
        << "the declaration must come first";
}

TEST(TextDecoding, theDeclarationNamesTheEncoding) {
    struct Row {
        std::string_view name;
        std::string_view units; ///< of the bytes E9 80 FF
    };
    for (const Row& row : std::initializer_list<Row>{{"ISO-8859-1", "%00E9%0080%00FF"},
                                                     {"iso_8859-1", "%00E9%0080%00FF"},
                                                     {"Latin1", "%00E9%0080%00FF"},
                                                     {"US-ASCII", "%00E9%0080%00FF"},
                                                     {"windows-1252", "%00E9%20AC%00FF"},
                                                     {"CP1252", "%00E9%20AC%00FF"}}) {
        for (const std::string_view quote : {"\"", "'"}) {
            const std::string start =
                "<?xml encoding = " + std::string(quote) + std::string(row.name) + std::string(quote) + "?>";
            EXPECT_EQ(decode(start + "\xE9\x80\xFF"), "'" + start + std::string(row.units) + "'");
            EXPECT_EQ(decode(start + "abc"), "'" + start + "abc'");
        }
    }
    EXPECT_EQ(decode("<?xml encoding=\"utf8\"?>\xC3\xA9"), "'<?xml encoding=\"utf8\"?>%00E9'");
    EXPECT_EQ(decode("<?xml encoding='cp1252'?>\x81\x9F"), "'<?xml encoding='cp1252'?>%0081%0178'");
}

TEST(TextDecoding, declaredWideEncodingsWithoutAMarkReadTheBytesAsSuch) {
    EXPECT_NE(decode("<?xml encoding='UTF-16'?> ").find("'%3C3F"), std::string::npos) << "high byte first";
    EXPECT_NE(decode("<?xml encoding='utf-16le'?> ").find("'%3F3C"), std::string::npos);
    EXPECT_EQ(decode("<?xml encoding='UTF-32'?>   "), "The text is not well-formed UTF-32 (byte 0)");
}

TEST(TextDecoding, otherDeclaredEncodingsFail) {
    for (const std::string_view name : {"utf-7", "EUC-JP", "", "iso-8859-2", "utf-8 ", "x"}) {
        EXPECT_EQ(decode("<?xml encoding='" + std::string(name) + "'?>"),
                  "The declared text encoding is not known (byte 0)");
    }
}

TEST(TextDecoding, malformedDeclarationsNameNothing) {
    for (const std::string_view text :
         {"<?xml encoding", "<?xml encoding=", "<?xml encoding='", "<?xml encoding='x",
          "<?xml encoding x='y'?>", "<?xml?> encoding='x'", "<?xml encoding=x?>", "<?xm encoding='x'?>"}) {
        EXPECT_EQ(decode(text), "'" + std::string(text) + "'");
    }
}

TEST(TextDecoding, refusesIllFormedText) {
    EXPECT_EQ(decode("ab\n c\x80"), "The text is not well-formed UTF-8 (line 2, column 3)");
    for (const std::string_view bytes :
         {"\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xFF", "\x80"}) {
        EXPECT_EQ(decode(bytes), "The text is not well-formed UTF-8 (line 1, column 1)");
    }
    EXPECT_EQ(decode("\xFF\xFE\x61"), "The text ends inside a UTF-16 unit (byte 1)");
    EXPECT_EQ(decode("\xFF\xFE\x61\x00\x00\xD8"sv), "The text is not well-formed UTF-16 (line 1, column 2)");
    EXPECT_EQ(decode("\xFF\xFE\x0A\x00\x00\xDC\x61\x00"sv),
              "The text is not well-formed UTF-16 (line 2, column 1)");
    EXPECT_EQ(decode("\xFE\xFF\xD8\x00\xD8\x00\xDC\x00"sv),
              "The text is not well-formed UTF-16 (line 1, column 1)");
    EXPECT_EQ(decode("\xFF\xFE\x00\x00\x61"sv), "The text ends inside a UTF-32 unit (byte 1)");
    EXPECT_EQ(decode("\xFF\xFE\x00\x00\x00\xD8\x00\x00"sv), "The text is not well-formed UTF-32 (byte 0)");
    EXPECT_EQ(decode("\xFF\xFE\x00\x00\x00\x00\x11\x00"sv), "The text is not well-formed UTF-32 (byte 0)");
    EXPECT_EQ(decode("\xFF\xFE\x00\x00\x00\x00\x00\x80"sv), "The text is not well-formed UTF-32 (byte 0)");
}

TEST(TextDecoding, stringsTablesMayBeUtf16WithoutAMark) {
    EXPECT_EQ(decodeStrings("a=\xC3\xA9;"), "'a=%00E9;'");
    EXPECT_EQ(decodeStrings("\xEF\xBB\xBF\x61"), "'a'");
    EXPECT_EQ(decodeStrings("\xFF\xFE\x61\x00"sv), "'a'");
    EXPECT_EQ(decodeStrings("\x61\x00\x3D\x00"sv), "'a='");
    EXPECT_EQ(decodeStrings("\x00\x61\x00\x3D"sv), "'a='");
    EXPECT_EQ(decodeStrings("\x00\x22\x20\xAC\x00\x22"sv), "'\"%20AC\"'");
    EXPECT_EQ(decodeStrings("\xD8\x3D\xDE\x00"sv), "'%D83D%DE00'");
    EXPECT_EQ(decodeStrings("<?xml encoding='latin1'?>\xE9"), "'<?xml encoding='latin1'?>%00E9'");
    EXPECT_EQ(decodeStrings(""), "''");
    EXPECT_EQ(decodeStrings("abc\xFF\xFF"), "The text is not well-formed UTF-8 (line 1, column 4)");
    EXPECT_EQ(decodeStrings("\xDC\x01\xDC\x00"sv), "The text is not well-formed UTF-16 (line 1, column 1)");
}

} // namespace
