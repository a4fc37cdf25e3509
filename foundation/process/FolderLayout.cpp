// SPDX-License-Identifier: MIT
// Finds the folders for logs and data that an application requests.
// Absolute variables only: a relative one would move the folder with the current one.
#include "foundation/process/FolderLayout.h"

#include <cstring>

#include "foundation/files/HomeFolder.h"
#include "foundation/process/NSBundle.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

NSString folderOf(const char* variable, StringView placeInHome) {
    const char* const folder = system::environmentVariable(variable);
    if (folder == nullptr || *folder != '/') {
        return resolvedHomeFolder()
            .stringByAppendingPathComponent(placeInHome)
            .stringByResolvingSymlinksInPath();
    }
    return NSString::stringWithFileSystemBytes(folder, std::strlen(folder)).stringByResolvingSymlinksInPath();
}

} // namespace

bool usesXdgFolders() {
    // From the Info dictionary itself, not from its translations.
    const NSString layout(NSBundle::mainBundle().infoDictionary().objectForKey("ZQFolderLayout"));
    return layout.isEqualToString("XDG");
}

NSString xdgStateFolder() { return folderOf("XDG_STATE_HOME", ".local/state"); }

NSString xdgDataFolder() { return folderOf("XDG_DATA_HOME", ".local/share"); }

} // namespace ZQFoundation::detail
