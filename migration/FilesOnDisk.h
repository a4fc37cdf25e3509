// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_FILESONDISK_H
#define ZQFOUNDATION_MIGRATION_FILESONDISK_H

#include "foundation/files/FileSystemAnnouncement.h"
#include "foundation/files/ItemIdentity.h"
#include "foundation/files/NSFileManager.h"

namespace ZQFoundation::detail {

/// What a migration does to the real files.
class FilesOnDisk {
public:
    bool exists(const NSString& path, bool* isDirectory) const {
        return files_.fileExistsAtPath_isDirectory(path, isDirectory);
    }
    bool isReadable(const NSString& path) const { return files_.isReadableFileAtPath(path); }
    bool makeFolders(const NSString& path) {
        return files_.createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, true, nullptr);
    }
    bool standsInside(const NSString& destination, const NSString& source) const {
        return detail::standsInside(destination, source);
    }
    bool removalWouldHarm(const NSString& destination, const NSString& source) const {
        return detail::removalWouldHarm(destination, source);
    }
    bool removeItem(const NSString& path) { return files_.removeItemAtPath_error(path); }
    bool copyItem(const NSString& source, const NSString& destination) {
        return files_.copyItemAtPath_toPath_error(source, destination);
    }
    void announceChange(const Class& workspace, const NSString& folder) {
        announceFileSystemChange(workspace, folder);
    }

private:
    NSFileManager& files_ = NSFileManager::defaultManager();
};

} // namespace ZQFoundation::detail

#endif
