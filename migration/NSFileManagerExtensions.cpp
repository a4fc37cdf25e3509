// SPDX-License-Identifier: MIT
// NSFileManager(ZQFoundation): creates files and folders together with their parent folders.
#include <sys/stat.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSArray.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

/// The kind of the item after resolving the links of the path; 0 if there is none. A link that remains in the
/// resolved path, because it is dangling or must not be followed, counts as a link.
mode_t kindOfItem(StringView path) {
    const detail::CallerState caller;
    struct stat information;
    const NSString resolved = NSString(path).stringByResolvingSymlinksInPath();
    return detail::getItemInformation(resolved, information) ? information.st_mode & S_IFMT : 0;
}

/// By components: a slash at the end is a component of its own, so the parent of "/a/b/" is "/a/b".
NSString parentOf(StringView path) {
    NSMutableArray components(NSString(path).pathComponents());
    if (components.count() != 0) {
        components.removeLastObject();
    }
    return NSString::pathWithComponents(components.array());
}

/// Creates the folder if it is missing. False if there is no folder at the path afterwards.
bool ensureFolder(NSFileManager& files, const NSString& path, const NSDictionary& attributes) {
    bool isFolder = false;
    if (files.fileExistsAtPath_isDirectory(path, &isFolder)) {
        return isFolder;
    }
    return files.createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, true, attributes);
}

} // namespace

bool NSFileManager::isRegularFileAtPath(StringView path) const { return S_ISREG(kindOfItem(path)); }

bool NSFileManager::isDirectoryAtPath(StringView path) const { return S_ISDIR(kindOfItem(path)); }

bool NSFileManager::createDirectoryAtPath_attributes_deepCreate(StringView path,
                                                                const NSDictionary& attributes,
                                                                detail::Flag deepCreate) {
    return createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, deepCreate, attributes);
}

bool NSFileManager::createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
    StringView path, const NSData& contents, const NSDictionary& fileAttributes,
    const NSDictionary& directoryAttributes, detail::Flag deepCreate) {
    if (deepCreate && !ensureFolder(*this, parentOf(path), directoryAttributes)) {
        return false;
    }
    return createFileAtPath_contents_attributes(path, contents, fileAttributes);
}

// Deliberately from the root folder on: a relative path is made below "/".
bool NSFileManager::recursivelyCreateDirectoriesInPath(StringView path) {
    NSString running("/");
    for (const NSObject& component : NSString(path).stringByStandardizingPath().pathComponents()) {
        running = running.stringByAppendingPathComponent(component.as<NSString>());
        if (!ensureFolder(*this, running, nullptr)) {
            return false;
        }
    }
    return true;
}

} // namespace ZQFoundation
