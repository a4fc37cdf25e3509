// SPDX-License-Identifier: MIT
// NSProcessInfo(ZQFoundation): the application's company, name and folders.
#include "foundation/files/HomeFolder.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/process/FolderLayout.h"
#include "foundation/process/NSBundle.h"
#include "foundation/process/NSProcessInfo.h"

namespace ZQFoundation {

namespace {

/// An Info dictionary may contain any type under any key; a value that is not a string is converted to text.
NSString textOfInfoKey(StringView key) {
    const NSObject value = NSBundle::mainBundle().objectForInfoDictionaryKey(key);
    const NSString text(value);
    return text ? text : value.description();
}

/// The application's folder in the home folder, which is only named here, not made: hosts make it with the
/// permissions that they need.
NSString pathOfLibrarySubfolder(StringView middle) {
    const NSString subpath = NSProcessInfo::appSpecificLibrarySubpath();
    return detail::resolvedHomeFolder()
        .stringByAppendingPathComponent("Library")
        .stringByAppendingPathComponent(middle)
        .stringByAppendingPathComponent(subpath)
        .stringByStandardizingPath();
}

/// The application's folder in the XDG layout. Its parent folders are often missing in a new account, so it
/// is created; a folder that cannot be created is still named.
NSString pathOfXdgSubfolder(const NSString& base) {
    const NSString path = base.stringByAppendingPathComponent(NSProcessInfo::appSpecificLibrarySubpath())
                              .stringByStandardizingPath();
    NSFileManager& files = NSFileManager::defaultManager();
    if (!files.fileExistsAtPath(path)) {
        const NSDictionary privately{{NSFilePosixPermissions, 0700}};
        files.createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, true, privately);
    }
    return path;
}

} // namespace

NSString NSProcessInfo::shortCompanyName() { return textOfInfoKey("ZQCompanyName"); }

NSString NSProcessInfo::shortApplicationName() {
    if (NSString name = textOfInfoKey("NSHumanReadableShortName")) {
        return name;
    }
    return NSString("MyApplication").asDefaultOr(processInfo().processName());
}

NSString NSProcessInfo::appSpecificLibrarySubpath() {
    const NSString company = shortCompanyName();
    const NSString application = shortApplicationName();
    return company ? company.stringByAppendingPathComponent(application) : application;
}

NSString NSProcessInfo::pathOfLibraryApplicationSupportSubfolder() {
    return detail::usesXdgFolders() ? pathOfXdgSubfolder(detail::xdgDataFolder())
                                    : pathOfLibrarySubfolder("Application Support");
}

NSString NSProcessInfo::pathOfLibraryLogSubfolder() {
    return detail::usesXdgFolders() ? pathOfXdgSubfolder(detail::xdgStateFolder())
                                    : pathOfLibrarySubfolder("Logs");
}

} // namespace ZQFoundation
