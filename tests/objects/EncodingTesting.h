// SPDX-License-Identifier: MIT
// Texts and their bytes in an encoding, both ways.
#ifndef ZQFOUNDATION_TESTS_OBJECTS_ENCODINGTESTING_H
#define ZQFOUNDATION_TESTS_OBJECTS_ENCODINGTESTING_H

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "tests/kit/Texts.h"
#include "tests/kit/Values.h"

namespace ZQFoundation::encodingtesting {

using kit::bytesOf;
using kit::dataOf;
using kit::shownUnits;
using kit::stringOf;

inline constexpr const char* none = "(nil)";
inline constexpr bool isLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
inline const NSStringEncoding isoLatin9{0x8000020F};
inline const NSStringEncoding koi8{0x80000A02};

inline std::string encoded(std::u16string_view text, NSStringEncoding encoding) {
    return bytesOf(stringOf(text).dataUsingEncoding(encoding));
}

inline NSString decodedString(std::string_view bytes, NSStringEncoding encoding) {
    return NSString::initWithData_encoding(dataOf(bytes), encoding);
}

/// The units of the text, shown; "(nil)" for none.
inline std::string decoded(std::string_view bytes, NSStringEncoding encoding) {
    const NSString text = decodedString(bytes, encoding);
    return text ? shownUnits(text.utf16()) : none;
}

inline std::string shownBytes(const std::string& bytes) {
    return bytes == none ? none : testing::PrintToString(bytes);
}

/// A text and its bytes, which also read as the text.
struct Row {
    NSStringEncoding encoding;
    std::u16string text;
    std::string bytes;
};

inline void expectBothWays(const Row& row) {
    SCOPED_TRACE(testing::Message() << std::hex << row.encoding << " " << shownUnits(row.text));
    EXPECT_EQ(shownBytes(encoded(row.text, row.encoding)), shownBytes(row.bytes));
    EXPECT_EQ(decoded(row.bytes, row.encoding), shownUnits(row.text));
    const std::size_t mark = row.encoding == NSUTF16StringEncoding   ? 2
                             : row.encoding == NSUTF32StringEncoding ? 4
                                                                     : 0;
    EXPECT_EQ(stringOf(row.text).lengthOfBytesUsingEncoding(row.encoding), row.bytes.size() - mark);
}

inline void expectNoBytes(NSStringEncoding encoding, std::u16string_view text) {
    EXPECT_EQ(shownBytes(encoded(text, encoding)), none) << std::hex << encoding << " " << shownUnits(text);
    EXPECT_EQ(stringOf(text).lengthOfBytesUsingEncoding(encoding), 0u) << std::hex << encoding;
}

} // namespace ZQFoundation::encodingtesting

#endif
