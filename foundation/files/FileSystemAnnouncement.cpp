// SPDX-License-Identifier: MIT
// Notifies the host's workspace class of a changed folder.
// The host decides whether there is a desktop: without a registered workspace class nothing happens.
#include "foundation/files/FileSystemAnnouncement.h"

#include "foundation/objects/NSException.h"

namespace ZQFoundation::detail {

void announceFileSystemChange(const Class& workspaceClass, const NSString& folder) {
    const Selector shared("sharedWorkspace");
    const Selector note("noteFileSystemChanged:");
    try {
        // Asked first, because sending an unknown message raises an exception.
        if (!workspaceClass.respondsToSelector(shared)) {
            return;
        }
        const NSObject workspace = workspaceClass.performSelector(shared);
        if (workspace.respondsToSelector(note)) {
            workspace.performSelector_withObject(note, folder);
        }
    } catch (const NSException&) {
        // The registration ended between the query and the call: nobody is left to notify.
    }
}

} // namespace ZQFoundation::detail
