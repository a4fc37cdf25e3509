// SPDX-License-Identifier: MIT
// Reading binary property lists.
#include "foundation/plist/BinaryReader.h"

#include <string>

#include <gtest/gtest.h>

#include "BinaryBuilding.h"
#include "PropertyListTesting.h"

namespace {

using namespace ZQFoundation;
using namespace ZQFoundation::testing;

NSObject readValue(const std::string& bytes, detail::PropertyListError& error) {
    const Exact<char> exact{std::string_view(bytes)};
    return detail::readBinary(asBytes(exact.data()), exact.size(), error);
}

/// The value, or the reason why there is none.
std::string readBytes(const std::string& bytes) {
    detail::PropertyListError error;
    const NSObject value = readValue(bytes, error);
    EXPECT_EQ(static_cast<bool>(value), error.message == nullptr);
    return value ? show(value) : std::string(error.message);
}

std::string readOne(const std::string& bytes) {
    BinaryFile file;
    file.objects = {bytes};
    return readBytes(file.bytes());
}

TEST(BinaryReader, knowsItsHeader) {
    EXPECT_TRUE(detail::isBinaryPropertyList(asBytes("bplist00"), 8));
    EXPECT_TRUE(detail::isBinaryPropertyList(asBytes("bplist07x"), 9));
    EXPECT_FALSE(detail::isBinaryPropertyList(asBytes("bplist0"), 7));
    EXPECT_FALSE(detail::isBinaryPropertyList(asBytes("bplist10"), 8));
    EXPECT_FALSE(detail::isBinaryPropertyList(nullptr, 0));
}

TEST(BinaryReader, readsScalars) {
    EXPECT_EQ(readOne(object(0x00)), "null");
    EXPECT_EQ(readOne(object(0x08)), "false");
    EXPECT_EQ(readOne(object(0x09)), "true");
    EXPECT_EQ(readOne(object(0x22, bigEndian(0x3FC00000, 4))), "r1.5");
    EXPECT_EQ(readOne(object(0x23, bigEndian(0xBFF8000000000000, 8))), "r-1.5");
    EXPECT_EQ(readOne(object(0x33, bigEndian(0x3FF0000000000000, 8))), "d1");
    EXPECT_EQ(readOne(object(0x33, bigEndian(0xC1CD27E440000000, 8))), "d-978307200");
    EXPECT_EQ(readOne(object(0x40)), "<>");
    EXPECT_EQ(readOne(object(0x43, "\x01\x02\xFF")), "<0102ff>");
    EXPECT_EQ(readOne(object(0x50)), "''");
    EXPECT_EQ(readOne(object(0x52, "ab")), "'ab'");
    EXPECT_EQ(readOne(object(0x60)), "''");
    EXPECT_EQ(readOne(object(0x62, bigEndian(0xD83DDE00, 4))), "'%D83D%DE00'");
    EXPECT_EQ(readOne(object(0x61, bigEndian(0xD800, 2))), "'%D800'");
    EXPECT_EQ(readOne(object(0x61, bigEndian('a', 2))), "'a'");
    EXPECT_EQ(readOne(object(0xA0)), "[]");
    EXPECT_EQ(readOne(object(0xD0)), "{}");
}

TEST(BinaryReader, shortIntegersAreUnsignedAndLongOnesSigned) {
    EXPECT_EQ(readOne(object(0x10, bigEndian(0xFF, 1))), "255");
    EXPECT_EQ(readOne(object(0x11, bigEndian(0xFFFF, 2))), "65535");
    EXPECT_EQ(readOne(object(0x12, bigEndian(0xFFFFFFFF, 4))), "4294967295");
    EXPECT_EQ(readOne(object(0x13, bigEndian(0xFFFFFFFFFFFFFFFF, 8))), "-1");
    EXPECT_EQ(readOne(object(0x13, bigEndian(0x8000000000000000, 8))), "-9223372036854775808");
    EXPECT_EQ(readOne(object(0x14, bigEndian(0xFFFFFFFFFFFFFFFF, 16))), "18446744073709551615");
    EXPECT_EQ(readOne(object(0x14, std::string(16, '\xFF'))), "-1");
    EXPECT_EQ(readOne(object(0x14, bigEndian(1, 8) + bigEndian(0, 8))), "An integer is out of range");
    EXPECT_EQ(readOne(object(0x14, std::string(8, '\xFF') + bigEndian(0, 8))), "An integer is out of range");
}

TEST(BinaryReader, bytesBeyondAsciiBecomeUnitsOfTheSameNumber) {
    EXPECT_EQ(readOne(object(0x52, "a\xE9")), "'a%00E9'");
}

TEST(BinaryReader, refusesOtherKinds) {
    for (const unsigned marker :
         {0x01U, 0x07U, 0x0AU, 0x0FU, 0x70U, 0x80U, 0x8FU, 0x90U, 0xB0U, 0xC0U, 0xE0U, 0xFFU}) {
        EXPECT_EQ(readOne(object(marker, std::string(64, '\0'))), "The kind of an object is not known")
            << marker;
    }
    EXPECT_EQ(readOne(object(0x15, std::string(64, '\0'))), "An integer has an impossible size");
    EXPECT_EQ(readOne(object(0x21, std::string(64, '\0'))), "A real number has an impossible size");
    EXPECT_EQ(readOne(object(0x24, std::string(64, '\0'))), "A real number has an impossible size");
    EXPECT_EQ(readOne(object(0x32, std::string(64, '\0'))), "A date has an impossible size");
}

TEST(BinaryReader, longCountsFollowAsIntegers) {
    const std::string text(300, 'x');
    EXPECT_EQ(readOne(object(0x5F, object(0x11, bigEndian(300, 2)) + text)), "'" + text + "'");
    EXPECT_EQ(readOne(object(0x5F, object(0x13, bigEndian(300, 8)) + text)), "'" + text + "'");
    EXPECT_EQ(readOne(object(0x4F, object(0x10, bigEndian(1, 1)) + "a")), "<61>");
    const char* malformed = "The count of an object is malformed";
    EXPECT_EQ(readOne(object(0x5F)), malformed);
    EXPECT_EQ(readOne(object(0x5F, object(0x10))), malformed);
    EXPECT_EQ(readOne(object(0x5F, object(0x23, bigEndian(1, 8)) + "a")), malformed);
    EXPECT_EQ(readOne(object(0x5F, object(0x14, bigEndian(1, 16)) + "a")), malformed);
    EXPECT_EQ(readOne(object(0x5F, object(0x1F, bigEndian(1, 16)) + "a")), malformed);
}

TEST(BinaryReader, nothingReachesBeyondTheObjects) {
    const char* tooLong = "An object is longer than the file";
    for (const std::string& bytes :
         {object(0x10), object(0x13, "1234567"), object(0x14, "123456789012345"), object(0x22, "123"),
          object(0x23, "1234567"), object(0x33, "1234567"), object(0x43, "12"), object(0x53, "12"),
          object(0x62, "123"), object(0xA1), object(0xD1, references({0})),
          object(0x4F, object(0x13, bigEndian(0x7FFFFFFFFFFFFFFF, 8))),
          object(0x6F, object(0x13, bigEndian(0x8000000000000000, 8))),
          object(0xAF, object(0x13, bigEndian(0xFFFFFFFFFFFFFFFF, 8))),
          object(0xDF, object(0x13, bigEndian(0x8000000000000000, 8)))}) {
        EXPECT_EQ(readOne(bytes), tooLong);
    }
}

TEST(BinaryReader, readsContainersAndSharedObjects) {
    EXPECT_EQ(readBytes(sampleBinary()),
              "{'a': [200, -2, r0.5, <78797a>], 'bc': [d100, false, true], '%20AC': <78797a>}");
    BinaryFile file;
    file.objects = {object(0xA2, references({1, 1})), object(0xA1, references({2})), object(0x51, "x")};
    detail::PropertyListError error;
    const NSArray array(readValue(file.bytes(), error));
    EXPECT_EQ(show(array), "[['x'], ['x']]");
    EXPECT_EQ(NSArray(array[0]).begin(), NSArray(array[1]).begin()) << "one body";
}

TEST(BinaryReader, lastOfEqualKeysWins) {
    BinaryFile file;
    file.objects = {object(0xD2, references({1, 2, 3, 4})), object(0x51, "k"), object(0x51, "k"),
                    object(0x08), object(0x09)};
    EXPECT_EQ(readBytes(file.bytes()), "{'k': true}");
}

TEST(BinaryReader, keysMustBeStrings) {
    for (const std::string& key :
         {object(0x09), object(0x10, "1"), object(0xA0), object(0x41, "k"), object(0x00)}) {
        BinaryFile file;
        file.objects = {object(0xD1, references({1, 2})), key, object(0x09)};
        EXPECT_EQ(readBytes(file.bytes()), "A dictionary's key is not a string");
        file.objects = {object(0xD1, references({1, 1})), key}; // the value is read before it serves as a key
        EXPECT_EQ(readBytes(file.bytes()), "A dictionary's key is not a string");
    }
    BinaryFile file;
    file.objects = {object(0xD1, references({0, 1})), object(0x09)};
    EXPECT_EQ(readBytes(file.bytes()), "A dictionary's key is not a string") << "the dictionary itself";
}

TEST(BinaryReader, anySizeOfNumbersUpToEight) {
    for (unsigned size = 1; size <= 8; ++size) {
        BinaryFile file;
        file.offsetSize = size;
        file.referenceSize = size;
        file.objects = {object(0xA2, bigEndian(1, size) + bigEndian(2, size)), object(0x51, "x"),
                        object(0x09)};
        EXPECT_EQ(readBytes(file.bytes()), "['x', true]") << size;
    }
    for (const unsigned size : {0U, 9U, 255U}) {
        BinaryFile file;
        file.objects = {object(0x09)};
        std::string bytes = file.bytes();
        bytes[bytes.size() - 26] = static_cast<char>(size);
        EXPECT_EQ(readBytes(bytes), "The trailer has an impossible number size");
        bytes = file.bytes();
        bytes[bytes.size() - 25] = static_cast<char>(size);
        EXPECT_EQ(readBytes(bytes), "The trailer has an impossible number size");
    }
}

TEST(BinaryReader, checksTheTrailer) {
    BinaryFile good;
    good.objects = {object(0x08), object(0x09)};
    good.top = 1;
    EXPECT_EQ(readBytes(good.bytes()), "true");
    for (const std::uint64_t top : {std::uint64_t{2}, UINT64_MAX}) {
        BinaryFile file = good;
        file.top = top;
        EXPECT_EQ(readBytes(file.bytes()), "The outermost object does not exist");
    }
    for (const std::int64_t more : {std::int64_t{1}, INT64_MAX, INT64_MIN, std::int64_t{-3}}) {
        BinaryFile file = good;
        file.countMore = more;
        EXPECT_EQ(readBytes(file.bytes()), "The table of offsets is not inside the file") << more;
    }
    for (const std::int64_t later :
         {std::int64_t{1}, std::int64_t{-3}, std::int64_t{-11}, INT64_MAX, INT64_MIN}) {
        BinaryFile file = good;
        file.tableLater = later;
        EXPECT_NE(readBytes(file.bytes()), "true") << later;
    }
    BinaryFile empty = good;
    empty.countMore = -2;
    EXPECT_EQ(readBytes(empty.bytes()), "The outermost object does not exist");
    EXPECT_EQ(readBytes("bplist00"), "The binary property list is truncated");
    EXPECT_EQ(readBytes("bplist00" + std::string(32, '\0')), "The binary property list is truncated");
}

TEST(BinaryReader, checksOffsetsAndReferences) {
    BinaryFile file;
    file.objects = {object(0xA1, references({1})), object(0x09)};
    EXPECT_EQ(readBytes(file.bytes()), "[true]");
    for (const std::uint64_t offset : {0U, 7U, 11U, 12U, 0xFFFFU}) {
        file.offsets = {8, offset};
        EXPECT_EQ(readBytes(file.bytes()), "An object is not inside the file") << offset;
    }
    file.offsets.clear();
    for (const unsigned reference : {2U, 255U}) {
        file.objects[0] = object(0xA1, references({reference}));
        EXPECT_EQ(readBytes(file.bytes()), "A reference leads to no object");
        file.objects[0] = object(0xD1, references({reference, 1}));
        EXPECT_EQ(readBytes(file.bytes()), "A reference leads to no object");
        file.objects[0] = object(0xD1, references({1, reference}));
        EXPECT_EQ(readBytes(file.bytes()), "A reference leads to no object");
    }
}

TEST(BinaryReader, refusesCycles) {
    EXPECT_EQ(readOne(object(0xA1, references({0}))), "A container holds itself");
    BinaryFile file;
    file.objects = {object(0xA1, references({1})), object(0xD1, references({2, 0})), object(0x51, "k")};
    EXPECT_EQ(readBytes(file.bytes()), "A container holds itself");
}

TEST(BinaryReader, nestsTo512Levels) {
    detail::PropertyListError error;
    EXPECT_TRUE(readValue(chain(512, 1), error));
    EXPECT_FALSE(readValue(chain(513, 1), error));
    EXPECT_STREQ(error.message, "Values are nested too deeply");
    EXPECT_FALSE(readValue(chain(60000, 1), error));
}

TEST(BinaryReader, sharedContainersCountWithTheirHeight) {
    // The first array meets the last 300 levels directly, and then again below 300 others.
    BinaryFile file;
    file.referenceSize = 2;
    file.objects.push_back(object(0xA2, bigEndian(301, 2) + bigEndian(1, 2)));
    for (unsigned index = 1; index < 600; ++index) {
        file.objects.push_back(object(0xA1, bigEndian(index + 1, 2)));
    }
    file.objects.push_back(object(0xA0));
    EXPECT_EQ(readBytes(file.bytes()), "Values are nested too deeply");
}

constexpr const char tooMuchSharing[] = "Shared objects make the value many times larger than the file";

/// An array of `count` references to one object.
std::string manyTimes(unsigned count, const std::string& shared) {
    BinaryFile file;
    file.offsetSize = 4;
    file.referenceSize = 1;
    file.objects = {object(0xAF, object(0x12, bigEndian(count, 4)) + std::string(count, '\1')), shared};
    return file.bytes();
}

TEST(BinaryReader, refusesShortFilesThatSharingMakesIntoHugeValues) {
    struct Row {
        unsigned length;
        unsigned times;
        bool isRead;
    };
    // Written out, the arrays are the sum of the powers of `times` up to that of `length - 1`.
    for (const Row& row : {Row{18, 2, true}, Row{19, 2, false}, Row{57, 2, false}, Row{65, 2, false},
                           Row{512, 2, false}, Row{6, 14, true}, Row{7, 14, false}, Row{512, 14, false}}) {
        SCOPED_TRACE(std::to_string(row.length) + " levels, each " + std::to_string(row.times) + " times");
        detail::PropertyListError error;
        EXPECT_EQ(static_cast<bool>(readValue(chain(row.length, row.times), error)), row.isRead);
        EXPECT_STREQ(error.message, row.isRead ? nullptr : tooMuchSharing);
    }
}

TEST(BinaryReader, countsTheLevelsOfWhatIsShared) {
    // Single arrays around doubling ones; each line of such a text is mostly indentation.
    for (const unsigned doubling : {10U, 13U, 14U, 18U}) {
        BinaryFile file;
        file.referenceSize = 2;
        for (unsigned index = 0; index + 1 < 512; ++index) {
            const std::string next = bigEndian(index + 1, 2);
            file.objects.push_back(index + 1 < 512 - doubling ? object(0xA1, next)
                                                              : object(0xA2, next + next));
        }
        file.objects.push_back(object(0xA0));
        detail::PropertyListError error;
        EXPECT_EQ(static_cast<bool>(readValue(file.bytes(), error)), doubling < 14) << doubling;
    }
}

TEST(BinaryReader, countsSharedTextAndDataByTheirSize) {
    const std::string text = object(0x5F, object(0x12, bigEndian(1 << 20, 4)) + std::string(1 << 20, 'a'));
    const std::string data = object(0x4F, object(0x12, bigEndian(1 << 20, 4)) + std::string(1 << 20, 'a'));
    const std::string units = object(0x6F, object(0x12, bigEndian(1 << 19, 4)) + std::string(1 << 20, 'a'));
    for (const std::string& shared : {text, data, units}) {
        detail::PropertyListError error;
        EXPECT_TRUE(readValue(manyTimes(200, shared), error));
        EXPECT_FALSE(readValue(manyTimes(10'000, shared), error));
        EXPECT_STREQ(error.message, tooMuchSharing);
    }
}

TEST(BinaryReader, readsOrdinaryDocumentsThatShareAllTheyCan) {
    // 20,000 records with the same keys, the same few values and one part in common: written out they have
    // over a million members, some four times as many as the file.
    constexpr unsigned records = 20'000;
    constexpr unsigned entries = 10;
    BinaryFile file;
    file.offsetSize = 4;
    file.referenceSize = 2;
    std::string all;
    std::string common;
    std::string record;
    for (unsigned index = 0; index < entries; ++index) {
        common += bigEndian(2 + index, 2);
    }
    record = common + bigEndian(1, 2);
    for (unsigned index = 1; index < entries; ++index) {
        record += bigEndian(2 + index % 3, 2);
    }
    for (unsigned index = 0; index < records; ++index) {
        all += bigEndian(2 + entries + index, 2);
    }
    file.objects = {object(0xAF, object(0x12, bigEndian(records, 4)) + all),
                    object(0xAF, object(0x11, bigEndian(2 * entries, 2)) + common + common)};
    for (unsigned index = 0; index < entries; ++index) {
        file.objects.push_back(object(0x52, "k" + std::string(1, static_cast<char>('a' + index))));
    }
    for (unsigned index = 0; index < records; ++index) {
        file.objects.push_back(object(0xD0 + entries, record));
    }
    detail::PropertyListError error;
    const NSArray value(readValue(file.bytes(), error));
    EXPECT_STREQ(error.message, nullptr);
    ASSERT_EQ(value.count(), records);
    EXPECT_EQ(NSDictionary(value.objectAtIndex(records - 1)).count(), entries);
}

TEST(BinaryReader, readsAsManyReferencesAsTheFileHolds) {
    detail::PropertyListError error;
    const NSArray value(readValue(manyTimes(3'000'000, object(0x51, "x")), error));
    EXPECT_EQ(value.count(), 3'000'000u);
}

TEST(BinaryReader, refusesObjectsThatLieOverEachOther) {
    // Each of 5,000 data objects begins ten bytes after the last one and reaches to the end.
    BinaryFile file;
    file.offsetSize = 3;
    file.referenceSize = 2;
    constexpr unsigned count = 5000;
    std::string all = object(0xAF, object(0x11, bigEndian(count, 2)));
    for (unsigned index = 0; index < count; ++index) {
        all += bigEndian(index + 1, 2);
    }
    file.offsets = {8};
    const std::size_t end = 8 + all.size() + 10 * count;
    for (unsigned index = 0; index < count; ++index) {
        const std::size_t start = 8 + all.size();
        file.offsets.push_back(start);
        all += object(0x4F, object(0x13, bigEndian(end - start - 10, 8)));
    }
    file.objects = {all};
    EXPECT_EQ(readBytes(file.bytes()), "The objects overlap");
}

TEST(BinaryReader, oneObjectMayHaveTwoNumbers) {
    BinaryFile file;
    file.objects = {object(0xA2, references({1, 2})), object(0x51, "x")};
    file.offsets = {8, 11, 11};
    EXPECT_EQ(readBytes(file.bytes()), "['x', 'x']");
}

TEST(BinaryReader, namesTheByte) {
    detail::PropertyListError error;
    BinaryFile file;
    file.objects = {object(0xA1, references({1})), object(0x80)};
    EXPECT_FALSE(readValue(file.bytes(), error));
    EXPECT_EQ(describe(error), "The kind of an object is not known (byte 10)");
}

} // namespace
