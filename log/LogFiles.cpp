// SPDX-License-Identifier: MIT
// Chooses the log file of a run, and redirects standard error to it.
#include "foundation/files/FileInformation.h"
#include "foundation/files/GuardedOpening.h"
#include "foundation/files/HomeFolder.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/process/FolderLayout.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Published.h"
#include "foundation/time/NSDateFormatter.h"
#include "log/StandardErrorRedirection.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

namespace {

/// The path of the current log file. Nothing in the library reads it; it is for use in a debugger.
constinit detail::Published<NSString> optionalLogFilePath;

/// Looks at the unnumbered file before its name is returned after all.
constexpr int maxFileNumber = 999;

/// Names the operation that the host has called, not the function that found the fault. The path is the
/// resolved one, so that a link that was followed shows.
void complain(FormatString<NSString> format, const NSString& path) {
    ZQLog::logSelf_method_logAlways_logWithFormat(classOf<ZQLog>(), "setLogFilePath:createFolder:", true,
                                                  format, path);
}

/// Links are resolved here, once, so that the checks, their messages and the redirection are about the same
/// file.
NSString absolutePath(const NSString& path) {
    const NSString whole =
        path.isAbsolutePath() ? path : ZQLog::standardLogFolder().stringByAppendingPathComponent(path);
    return whole.stringByStandardizingPath().stringByResolvingSymlinksInPath();
}

/// Whether lines may be appended to the item at the path. A folder or a pipe is not a place for a log, and is
/// named as such.
bool acceptExistingFile(const NSString& path) {
    const NSFileManager& files = NSFileManager::defaultManager();
    if (!files.isRegularFileAtPath(path)) {
        complain("%@ is not a regular file", path);
        return false;
    }
    std::string bytes;
    // A file that somebody has planted under a guessed name is treated as one that cannot be written.
    const bool isPlanted = path.getFileSystemBytes(bytes) && !detail::mayAppendGuarded(bytes);
    if (isPlanted || !files.isWritableFileAtPath(path)) {
        complain("Cannot write log file at %@", path);
        return false;
    }
    return true;
}

/// In a folder that everybody may read, the log is accessible to the user only.
NSDictionary attributesOfFileIn(const NSString& folder) {
    const detail::CallerState caller;
    struct stat information;
    const bool isShared =
        detail::getTargetInformation(folder, information) && detail::isSharedFolder(information);
    return isShared ? NSDictionary{{NSFilePosixPermissions, 0600}} : NSDictionary();
}

bool isLink(const NSString& path) {
    const detail::CallerState caller;
    struct stat information;
    return detail::getItemInformation(path, information) && S_ISLNK(information.st_mode);
}

/// A dangling link is replaced. A file that is there after all is left as it is: another process may just
/// have begun it, or the look that did not find it has failed.
bool createEmptyFile(const NSString& path) {
    if (isLink(path)) {
        return NSFileManager::defaultManager().createFileAtPath_contents_attributes(
            path, nullptr, attributesOfFileIn(path.stringByDeletingLastPathComponent()));
    }
    const detail::CallerState caller;
    std::string bytes;
    return path.getFileSystemBytes(bytes) && detail::Descriptor(detail::openForAppendingGuarded(bytes));
}

bool createFolders(const NSString& path) {
    return NSFileManager::defaultManager().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
        path, true, nullptr);
}

/// Creates the empty file before the redirection, which reports nothing: here a failure has a message and a
/// result.
bool createFile(const NSString& path, bool createFolder) {
    // A path that is still relative begins with a tilde that is nobody's home folder.
    const bool created = path.hasPrefix("/") &&
                         (!createFolder || createFolders(path.stringByDeletingLastPathComponent())) &&
                         createEmptyFile(path);
    if (!created) {
        complain("Cannot create log file at %@", path);
    }
    return created;
}

/// Creates an empty file where nothing exists.
bool acceptNewFile(const NSString& path, bool createFolder) {
    const NSFileManager& files = NSFileManager::defaultManager();
    const NSString parent = path.stringByDeletingLastPathComponent();
    if (!files.fileExistsAtPath(parent)) {
        return createFolder && createFile(path, true);
    }
    if (!files.isDirectoryAtPath(parent)) {
        complain("%@ is not a folder", path); // names the file, not the parent
        return false;
    }
    return createFile(path, false);
}

} // namespace

NSString ZQLog::standardLogFolder() {
    if (detail::usesXdgFolders()) {
        const NSString folder = NSProcessInfo::pathOfLibraryLogSubfolder();
        return NSFileManager::defaultManager().isDirectoryAtPath(folder) ? folder : NSString("/tmp");
    }
    const NSString library = detail::resolvedHomeFolder()
                                 .stringByAppendingPathComponent("Library")
                                 .stringByResolvingSymlinksInPath();
    if (!NSFileManager::defaultManager().isDirectoryAtPath(library)) {
        return "/tmp";
    }
    return NSProcessInfo::pathOfLibraryLogSubfolder();
}

NSString ZQLog::standardNewLogFileNameForLoggingToFolder(const NSString& folder) {
    const NSProcessInfo& process = NSProcessInfo::processInfo();
    const NSString stem = NSString::stringWithFormat("%@.%@.%d", process.processName(),
                                                     dateFormatterShort().stringFromDate(NSDate::date()),
                                                     process.processIdentifier());
    const NSString name = NSString::stringWithFormat("%@.log", stem);
    // A file of this name is this process's own, made in the same minute: it is continued, not avoided.
    if (!folder || !folder.isEmpty()) {
        return name;
    }
    const NSFileManager& files = NSFileManager::defaultManager();
    const NSString path = folder.stringByAppendingPathComponent(name);
    if (!files.fileExistsAtPath(path)) {
        return name;
    }
    for (unsigned long number = 1; number <= maxFileNumber; ++number) {
        // The unnumbered path decides: a number is added only if that file vanishes meanwhile.
        if (!files.fileExistsAtPath(path)) {
            return NSString::stringWithFormat("%@.%lu.log", stem, number);
        }
    }
    return name;
}

NSString ZQLog::standardLogFilePath() {
    const NSString folder = standardLogFolder();
    return folder.stringByAppendingPathComponent(standardNewLogFileNameForLoggingToFolder(folder));
}

bool ZQLog::setLogFilePath_createFolder(const NSString& path, detail::Flag createFolder) {
    if (!path || path.isEmpty()) {
        return false;
    }
    const NSString file = absolutePath(path);
    const bool isReady = NSFileManager::defaultManager().fileExistsAtPath(file)
                             ? acceptExistingFile(file)
                             : acceptNewFile(file, createFolder);
    if (isReady) {
        setOptionalLogFilePath(file);
    }
    return isReady;
}

// The original descriptor is saved before anything is redirected: afterwards nothing refers to its target any
// more.
void ZQLog::setOptionalLogFilePath(const NSString& path) {
    optionalLogFilePath.replace(new NSString(path));
    detail::saveStandardError();
    std::string bytes;
    if (!path) {
        return; // nil redirects nothing
    }
    if (!path.getFileSystemBytes(bytes)) {
        bytes.clear(); // no file can have this name: it fails like any other that cannot be opened
    }
    detail::redirectStandardError(bytes);
}

void ZQLog::clearLogFilePath() {
    optionalLogFilePath.replace(new NSString());
    detail::restoreStandardError();
}

} // namespace ZQFoundation
