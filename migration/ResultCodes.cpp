// SPDX-License-Identifier: MIT
// Describes the result codes of a migration.
#include "foundation/objects/NSNumber.h"
#include "foundation/process/NSBundle.h"
#include "migration/ZQFileMigrator.h"

namespace ZQFoundation {

namespace {

/// A code with its name, which is part of its key in the tables of localized texts, and its text without a
/// table.
struct CodeDescription {
    std::uint32_t code;
    const char* name;
    const char* english;
};

/// In the order of the numbers. Names are parts of keys that the tables of all languages have, and the
/// English texts are what hosts show without a table: a change of either shows to users.
constexpr CodeDescription descriptions[] = {
    {kFileMigrationSuccess, "kFileMigrationSuccess", "success"},
    {kFileMigrationSourceNotSpecified, "kFileMigrationSourceNotSpecified",
     "the source path was not specified"},
    {kFileMigrationDestinationNotSpecified, "kFileMigrationDestinationNotSpecified",
     "the destination path was not specified"},
    {kFileMigrationSourceDoesNotExist, "kFileMigrationSourceDoesNotExist", "the source path does not exist"},
    {kFileMigrationSourceParentDoesNotExist, "kFileMigrationSourceParentDoesNotExist",
     "the folder with the source files does not exist"},
    {kFileMigrationSourceIsFolder, "kFileMigrationSourceIsFolder",
     "the source path points to a folder instead of a file"},
    {kFileMigrationSourceIsFile, "kFileMigrationSourceIsFile",
     "the source path points to a file instead of a folder"},
    {kFileMigrationSourceFileUnreadable, "kFileMigrationSourceFileUnreadable",
     "the source file cannot be read"},
    {kFileMigrationSourceFileCannotBeRemoved, "kFileMigrationSourceFileCannotBeRemoved",
     "the source file cannot be removed"},
    {kFileMigrationDestinationParentFolderDoesNotExist, "kFileMigrationDestinationParentFolderDoesNotExist",
     "the parent folder of the destination path does not exist"},
    {kFileMigrationDestinationParentFolderIsFile, "kFileMigrationDestinationParentFolderIsFile",
     "the parent folder of the destination path points to a file instead of a folder"},
    {kFileMigrationDestinationParentFolderCreationFailed,
     "kFileMigrationDestinationParentFolderCreationFailed",
     "creation of the parent folder of the destination path failed"},
    {kFileMigrationDestinationFileExists, "kFileMigrationDestinationFileExists",
     "the destination file already exists"},
    {kFileMigrationDestinationFolderExists, "kFileMigrationDestinationFolderExists",
     "the destination folder already exists"},
    {kFileMigrationDestinationIsFolder, "kFileMigrationDestinationIsFolder",
     "the destination path points to a folder instead of a file"},
    {kFileMigrationDestinationIsFile, "kFileMigrationDestinationIsFile",
     "the destination path points to a file instead of a folder"},
    {kFileMigrationDestinationFileOverwritingFailed, "kFileMigrationDestinationFileOverwritingFailed",
     "removing the existing destination file failed"},
    {kFileMigrationDestinationFileWritingFailed, "kFileMigrationDestinationFileWritingFailed",
     "writing the destination file failed"},
    {kFileMigrationDestinationFolderOverwritingFailed, "kFileMigrationDestinationFolderOverwritingFailed",
     "removing the existing destination folder failed"},
    {kFileMigrationDestinationFolderWritingFailed, "kFileMigrationDestinationFolderWritingFailed",
     "writing the destination folder failed"},
};

/// For numbers that are not codes, which a host may have stored. It has its own key in the tables.
constexpr CodeDescription unknownCode{0, "default", "unknown error"};

const CodeDescription& descriptionOf(std::uint32_t code) noexcept {
    for (const CodeDescription& description : descriptions) {
        if (description.code == code) {
            return description;
        }
    }
    return unknownCode;
}

} // namespace

// From the library's own tables, not the application's: an application need not know the codes.
NSString ZQFileMigrator::descriptionOfFileMigrationRetvalType(std::uint32_t code) {
    const CodeDescription& description = descriptionOf(code);
    const NSString key = NSString::stringWithFormat("Data migration errors %s", description.name);
    return NSBundle::libraryBundle().localizedStringForKey_value_table(key, description.english, nullptr);
}

// The empty key is the failure of a whole call, which has no path. It is sorted to the front.
NSMutableString ZQFileMigrator::descriptionOfFileMigrationErrorsIn(const NSDictionary& results) {
    const NSArray keys =
        results.allKeys().sortedArrayUsingComparator([](const NSObject& left, const NSObject& right) {
            return NSString(left).caseInsensitiveCompare(NSString(right));
        });
    NSMutableString text;
    for (const NSObject& entry : keys) {
        const NSString key(entry);
        const std::uint32_t code = NSNumber(results.objectForKey(key)).unsignedIntValue();
        if (code == kFileMigrationSuccess) {
            continue;
        }
        const char* const separator = text.length() != 0 ? ", " : "";
        const NSString description = descriptionOfFileMigrationRetvalType(code);
        if (key.isEqualToString("")) {
            text.appendFormat("%@%@", separator, description);
        } else {
            text.appendFormat("%@%@: %@", separator, key, description);
        }
    }
    return text;
}

} // namespace ZQFoundation
