// SPDX-License-Identifier: MIT
// The result codes, their descriptions, and a batch's result as one line.
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "foundation/objects/NSNumber.h"
#include "migration/ZQFileMigrator.h"
#include "tests/kit/Environment.h"

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

const char* nameOf(std::uint32_t code) {
    for (const Row& row : rows) {
        if (row.number == code) {
            return row.text;
        }
    }
    return "unknown error";
}

std::string joined(const NSDictionary& results) {
    return ZQFileMigrator::descriptionOfFileMigrationErrorsIn(results).string().utf8();
}

} // namespace

TEST(ResultCodes, haveTheirNumbersAndEnglishDescriptions) {
    static_assert(std::is_same_v<std::underlying_type_t<ZQFileMigrationRetvalType>, std::uint32_t>);
    const kit::NoLanguages none;
    for (const Row& row : rows) {
        EXPECT_EQ(static_cast<std::uint32_t>(row.code), row.number);
    }
    const auto expectDescribed = [](std::uint32_t code) {
        EXPECT_EQ(ZQFileMigrator::descriptionOfFileMigrationRetvalType(code).utf8(), nameOf(code)) << code;
    };
    for (std::uint32_t code = 0; code < 400; ++code) { // those in the gaps are unknown
        expectDescribed(code);
    }
    for (const std::uint32_t code : {100000U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        expectDescribed(code);
    }
}

TEST(ResultCodes, ofABatchAreJoinedInTheOrderOfTheirKeys) {
    const kit::NoLanguages none;
    const std::string one = nameOf(1);
    const std::string two = nameOf(2);
    const struct {
        NSDictionary results;
        std::string text;
    } joins[] = {
        {NSDictionary::dictionary(), ""},
        {nullptr, ""},
        {{{"a", 0}, {"b", 0U}, {"", 0}}, ""},
        // Sorted without regard to case, whatever the order of insertion; successes are left out.
        {{{"/b/x.log", 30}, {"/a/y.log", 0}, {"/A/z.log", 14}},
         "/A/z.log: the source file cannot be read, /b/x.log: the destination file already exists"},
        {{{"d", 1}, {"C", 2}, {"b", 1}, {"A", 2}},
         "A: " + two + ", b: " + one + ", C: " + two + ", d: " + one},
        {{{"A", 2}, {"b", 1}, {"C", 2}, {"d", 1}},
         "A: " + two + ", b: " + one + ", C: " + two + ", d: " + one},
        {{{"a", 0}, {"b", 1}, {"c", 0}, {"d", 2}, {"e", 0}}, "b: " + one + ", d: " + two},
        // An empty key has no colon.
        {{{"", 1}}, one},
        {{{"x", 2}, {"", 1}}, one + ", x: " + two},
        // Numbers are read as unsigned values of 32 bits; 2 to the 32nd is 0, and so a success.
        {{{"a", 38}, {"b", -1}}, "a: unknown error, b: unknown error"},
        {{{"a", std::int64_t{1} << 32}}, ""},
        {{{"a", (std::int64_t{1} << 32) + 1}}, "a: " + one},
        // A key is not a format.
        {{{"100% %@ %n", 14}}, "100% %@ %n: the source file cannot be read"},
    };
    for (const auto& row : joins) {
        EXPECT_EQ(joined(row.results), row.text);
    }
    EXPECT_TRUE(static_cast<bool>(ZQFileMigrator::descriptionOfFileMigrationErrorsIn(nullptr).string()))
        << "empty, not nil";
}
