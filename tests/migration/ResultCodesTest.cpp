// SPDX-License-Identifier: MIT
// The result codes, their descriptions, and a batch's result as one line.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"
#include "migration/ZQFileMigrator.h"
#include "tests/process/Scene.h"

using namespace ZQFoundation;

namespace {

struct Row {
    std::uint32_t number;
    ZQFileMigrationRetvalType code;
    const char* text;
};

constexpr Row rows[] = {
    {0, kFileMigrationSuccess, "success"},
    {1, kFileMigrationSourceNotSpecified, "the source path was not specified"},
    {2, kFileMigrationDestinationNotSpecified, "the destination path was not specified"},
    {10, kFileMigrationSourceDoesNotExist, "the source path does not exist"},
    {11, kFileMigrationSourceParentDoesNotExist, "the folder with the source files does not exist"},
    {12, kFileMigrationSourceIsFolder, "the source path points to a folder instead of a file"},
    {13, kFileMigrationSourceIsFile, "the source path points to a file instead of a folder"},
    {14, kFileMigrationSourceFileUnreadable, "the source file cannot be read"},
    {15, kFileMigrationSourceFileCannotBeRemoved, "the source file cannot be removed"},
    {20, kFileMigrationDestinationParentFolderDoesNotExist,
     "the parent folder of the destination path does not exist"},
    {21, kFileMigrationDestinationParentFolderIsFile,
     "the parent folder of the destination path points to a file instead of a folder"},
    {22, kFileMigrationDestinationParentFolderCreationFailed,
     "creation of the parent folder of the destination path failed"},
    {30, kFileMigrationDestinationFileExists, "the destination file already exists"},
    {31, kFileMigrationDestinationFolderExists, "the destination folder already exists"},
    {32, kFileMigrationDestinationIsFolder, "the destination path points to a folder instead of a file"},
    {33, kFileMigrationDestinationIsFile, "the destination path points to a file instead of a folder"},
    {34, kFileMigrationDestinationFileOverwritingFailed, "removing the existing destination file failed"},
    {35, kFileMigrationDestinationFileWritingFailed, "writing the destination file failed"},
    {36, kFileMigrationDestinationFolderOverwritingFailed, "removing the existing destination folder failed"},
    {37, kFileMigrationDestinationFolderWritingFailed, "writing the destination folder failed"},
};

std::string described(std::uint32_t code) {
    return ZQFileMigrator::descriptionOfFileMigrationRetvalType(code).utf8();
}

std::string joined(const NSDictionary& results) {
    return ZQFileMigrator::descriptionOfFileMigrationErrorsIn(results).string().utf8();
}

const char* nameOf(std::uint32_t code) {
    for (const Row& row : rows) {
        if (row.number == code) {
            return row.text;
        }
    }
    return "unknown error";
}

} // namespace

TEST(ResultCodes, haveTheirNumbersAndAreUnsignedWith32Bits) {
    static_assert(std::is_same_v<std::underlying_type_t<ZQFileMigrationRetvalType>, std::uint32_t>);
    for (const Row& row : rows) {
        EXPECT_EQ(static_cast<std::uint32_t>(row.code), row.number);
    }
}

TEST(ResultCodes, areDescribedInEnglishWhenThereIsNoTranslation) {
    const scene::NoLanguages none;
    for (const Row& row : rows) {
        EXPECT_EQ(described(row.code), row.text) << row.number;
    }
}

TEST(ResultCodes, areUnknownErrorsInEveryGapAndBeyond) {
    const scene::NoLanguages none;
    for (std::uint32_t code = 0; code < 400; ++code) {
        EXPECT_EQ(described(code), nameOf(code)) << code;
    }
    for (const std::uint32_t code : {3U, 16U, 38U, 100000U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        EXPECT_EQ(described(code), "unknown error") << code;
    }
}

TEST(ResultCodes, giveAnEmptyTextWhenNothingFailed) {
    EXPECT_EQ(joined(NSDictionary::dictionary()), "");
    EXPECT_EQ(joined(NSDictionary{{"a", 0}, {"b", 0U}, {"", 0}}), "");
    EXPECT_TRUE(static_cast<bool>(
        ZQFileMigrator::descriptionOfFileMigrationErrorsIn(NSDictionary{{"a", 0}}).string()))
        << "empty, not nil";
    EXPECT_EQ(joined(nullptr), "");
}

TEST(ResultCodes, leaveSuccessesOutAndSortWithoutRegardToCase) {
    const scene::NoLanguages none;
    EXPECT_EQ(joined(NSDictionary{{"/b/x.log", 30}, {"/a/y.log", 0}, {"/A/z.log", 14}}),
              "/A/z.log: the source file cannot be read, /b/x.log: the destination file already exists");
    EXPECT_EQ(joined(NSDictionary{{"d", 1}, {"C", 2}, {"b", 10}, {"A", 11}}),
              "A: the folder with the source files does not exist, b: the source path does not exist, "
              "C: the destination path was not specified, d: the source path was not specified");
}

TEST(ResultCodes, doNotFollowTheOrderOfInsertion) {
    const scene::NoLanguages none;
    const NSDictionary forwards{{"a", 12}, {"B", 13}, {"c", 15}};
    const NSDictionary backwards{{"c", 15}, {"B", 13}, {"a", 12}};
    EXPECT_EQ(joined(forwards), joined(backwards));
    EXPECT_EQ(joined(forwards),
              std::string("a: ") + nameOf(12) + ", B: " + nameOf(13) + ", c: " + nameOf(15));
}

TEST(ResultCodes, ofAnEmptyKeyHaveNeitherKeyNorColon) {
    const scene::NoLanguages none;
    EXPECT_EQ(joined(NSDictionary{{"", 1}}), "the source path was not specified");
    EXPECT_EQ(joined(NSDictionary{{"x", 2}, {"", 20}}),
              "the parent folder of the destination path does not exist, "
              "x: the destination path was not specified");
}

TEST(ResultCodes, putNoSeparatorBehindASuccess) {
    const scene::NoLanguages none;
    EXPECT_EQ(joined(NSDictionary{{"a", 0}, {"b", 1}, {"c", 0}, {"d", 2}, {"e", 0}}),
              "b: the source path was not specified, d: the destination path was not specified");
}

TEST(ResultCodes, areReadAsUnsigned32BitValues) {
    const scene::NoLanguages none;
    EXPECT_EQ(joined(NSDictionary{{"a", 38}, {"b", -1}}), "a: unknown error, b: unknown error");
    // 2 to the 32nd is 0 in 32 bits, and so a success; 1 more is code 1.
    EXPECT_EQ(joined(NSDictionary{{"a", std::int64_t{1} << 32}}), "");
    EXPECT_EQ(joined(NSDictionary{{"a", (std::int64_t{1} << 32) + 1}}),
              "a: the source path was not specified");
}

TEST(ResultCodes, takeKeysLiterallyAndNeverAsFormats) {
    const scene::NoLanguages none;
    EXPECT_EQ(joined(NSDictionary{{"100% %@ %n", 14}}), "100% %@ %n: the source file cannot be read");
}
