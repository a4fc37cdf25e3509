// SPDX-License-Identifier: MIT
// Moving the notes of release 1.
#include "OldNotes.h"

#include "TraceKeys.h"

using namespace ZQFoundation;

namespace notes {

namespace {

/// Calls `onItem(path, whole path)` for each item below the folder that a move looks at.
template <class OnItem>
void walk(const NSString& folder, const OnItem& onItem) {
    NSDirectoryEnumerator items = NSFileManager::defaultManager().enumeratorAtPath(folder);
    while (const NSString item = items.nextObject()) {
        if (item.hasPrefix(".")) {
            items.skipDescendents();
        } else {
            onItem(item, folder.stringByAppendingPathComponent(item));
        }
    }
}

/// A move skips them silently.
void addUnreadableFolders(const NSString& folder, std::vector<Stayed>& stayed) {
    const NSFileManager& files = NSFileManager::defaultManager();
    walk(folder, [&](const NSString& item, const NSString& path) {
        if (files.isDirectoryAtPath(path) && !files.isReadableFileAtPath(path)) {
            stayed.push_back({item, NSString::initWithLocalizedString("The folder cannot be read.")});
        }
    });
}

} // namespace

NSString oldNotesFolder() {
    return NSString("~/Library/Application Support")
        .stringByExpandingTildeInPath()
        .stringByAppendingPathComponent(NSProcessInfo::appSpecificLibrarySubpath());
}

std::size_t countOldNotes(const NSString& folder) {
    const NSFileManager& files = NSFileManager::defaultManager();
    std::size_t count = 0;
    walk(folder, [&](const NSString& item, const NSString& path) {
        count += item.pathExtension() == "note" && files.isRegularFileAtPath(path) ? 1 : 0;
    });
    return count;
}

Move moveOldNotes(const NSString& from, const NSString& to, ZQMigrationObserver* observer) {
    const ZQMigrationOptions options{.createDestinationParentFolder = true,
                                     .renameIfDestinationExists = true};
    const auto result = ZQFileMigrator::migrateFiles("note", from, to, options, observer);
    Move move;
    move.isStopped = result.isStopped;
    for (const NSDictionaryEntry& entry : result.codes) {
        const auto code = static_cast<std::uint32_t>(entry.value.as<NSNumber>().unsignedIntValue());
        if (code == kFileMigrationSuccess) {
            ++move.moved;
        } else {
            move.stayed.push_back(
                {NSString(entry.key), ZQFileMigrator::descriptionOfFileMigrationRetvalType(code)});
        }
    }
    addUnreadableFolders(from, move.stayed);
    move.left = countOldNotes(from);
    traceMigration.log("%zu notes moved from %@, %zu left", move.moved, from, move.left);
    for (const Stayed& each : move.stayed) {
        ZQLog::logWithFormat("%@ stays in %@: %@", each.name, from, each.reason);
    }
    return move;
}

} // namespace notes
