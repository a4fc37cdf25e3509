// SPDX-License-Identifier: MIT
// Removes old log files, by age and by count.
#include <algorithm>
#include <vector>

#include "foundation/files/FileInformation.h"
#include "foundation/files/FileSystemAnnouncement.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/objects/NSCharacterSet.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/CallerState.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

namespace {

// The grammar of a log file's name: process name, middle, ".log". The middle may be empty.
constexpr const char* suffix = ".log";
constexpr std::size_t suffixLength = 4;

// Standard names contain a "-" in their date, so removal by age ignores them.
constexpr const char* middleForAge = "0123456789.";
constexpr const char* middleForCount = "0123456789.-";

/// Raises NSRangeException when process name and suffix overlap in the name, which leaves no middle to check:
/// "My.log" as a file of the process "My.log".
bool isLogFileName(const NSString& name, const NSString& processName,
                   const NSCharacterSet& othersThanMiddle) {
    if (!name.hasPrefix(processName) || !name.hasSuffix(suffix)) {
        return false;
    }
    const std::size_t start = processName.length();
    const NSString middle = name.substringWithRange(start, name.length() - start - suffixLength);
    return middle.rangeOfCharacterFromSet(othersThanMiddle).location == NSNotFound;
}

NSCharacterSet othersThan(const char* characters) {
    return NSCharacterSet::characterSetWithCharactersInString(characters).invertedSet();
}

/// Removes the name in the folder: of a link, the link. Its age was that of its target, which stays.
void removeLogFile(const NSString& path) {
    if (!NSFileManager::defaultManager().removeItemAtPath_error(path)) {
        ZQLog::logAlways_logWithFormat(true, "Cannot remove log file \"%@\"", path);
    }
}

/// Lets the desktop refresh the folder, if one has registered for that.
void announceChange(const NSString& folder) {
    detail::announceFileSystemChange(NSClassFromString("NSWorkspace"), folder);
}

/// When the item that the path refers to was last changed; nil if there is none. Most items are not links,
/// and then one query of the item itself is enough.
NSDate targetModificationDate(const NSString& path) {
    const detail::CallerState callerState;
    struct stat information;
    // A leading tilde is expanded when links are resolved.
    if (!path.hasPrefix("~") && detail::getItemInformation(path, information) &&
        !S_ISLNK(information.st_mode)) {
        return detail::modificationDateOf(information);
    }
    const NSDictionary attributes =
        NSFileManager::defaultManager().attributesOfItemAtPath_error(path.stringByResolvingSymlinksInPath());
    return NSDate(attributes.objectForKey(NSFileModificationDate));
}

/// Whether everybody may put files into the folder, and nobody remove those of others.
bool isShared(const NSString& folder) {
    const detail::CallerState caller;
    struct stat information;
    return detail::getTargetInformation(folder, information) && detail::isSharedFolder(information);
}

bool belongsToUser(const NSString& path) {
    const detail::CallerState caller;
    struct stat information;
    return detail::getItemInformation(path, information) && information.st_uid == ::geteuid();
}

/// Calls `visit(path, date)` for each log file of this process in the folder, in listing order, with a link
/// dated by its target. Files without a date are ignored, and so are files that other users have put into a
/// shared folder: they must not displace the user's own files. False when the folder cannot be listed.
template <class Visit>
bool forEachLogFile(const NSString& folder, const char* middle, const Visit& visit) {
    const NSArray names = NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(folder);
    if (!names) {
        return false;
    }
    const NSString processName = NSProcessInfo::processInfo().processName();
    const NSCharacterSet others = othersThan(middle);
    const bool holdsForeignFiles = isShared(folder);
    for (const NSObject& entry : names) {
        const NSString name(entry);
        if (!isLogFileName(name, processName, others)) {
            continue;
        }
        const NSString path = folder.stringByAppendingPathComponent(name);
        if (holdsForeignFiles && !belongsToUser(path)) {
            continue;
        }
        if (const NSDate date = targetModificationDate(path)) {
            visit(path, date);
        }
    }
    return true;
}

struct DatedFile {
    NSDate date;
    NSString path;
};

/// Oldest first. Of files with the same date only the one listed last is kept.
void arrangeByDate(std::vector<DatedFile>& files) {
    std::stable_sort(files.begin(), files.end(), [](const DatedFile& left, const DatedFile& right) {
        return left.date.compare(right.date) == NSOrderedAscending;
    });
    std::size_t kept = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const bool isLastOfItsDate = i + 1 == files.size() || !files[i].date.isEqualToDate(files[i + 1].date);
        if (isLastOfItsDate) {
            std::swap(files[kept++], files[i]);
        }
    }
    files.resize(kept);
}

} // namespace

// Each file is removed as it is found: nothing is collected for folders with very many files. A nil date
// removes nothing; the folder is announced all the same.
void ZQLog::removeLogfilesOlderThan_fromFolder(const NSDate& date, const NSString& folder) {
    const bool isListed =
        forEachLogFile(folder, middleForAge, [&](const NSString& path, const NSDate& changed) {
            if (date && changed.compare(date) == NSOrderedAscending) {
                logAlways_logWithFormat(true, "Removing log file %@ due to log file age", path);
                removeLogFile(path);
            }
        });
    if (isListed) {
        announceChange(folder);
    }
}

// All files must be known before the oldest ones are. A folder that cannot be listed has none.
void ZQLog::removeOldLogfilesFromFolder_keepingTheNewest(const NSString& folder, std::size_t count) {
    std::vector<DatedFile> files;
    forEachLogFile(folder, middleForCount, [&](const NSString& path, const NSDate& changed) {
        files.push_back({changed, path});
    });
    arrangeByDate(files);
    if (files.size() <= count) {
        return;
    }
    for (std::size_t i = 0; i + count < files.size(); ++i) {
        logAlways_logWithFormat(true, "Removing log file %@ due to log file count", files[i].path);
        removeLogFile(files[i].path);
    }
    announceChange(folder);
}

} // namespace ZQFoundation
