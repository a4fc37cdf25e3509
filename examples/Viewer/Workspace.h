// SPDX-License-Identifier: MIT
// Notifications of files that were added or removed.
#ifndef ZQFOUNDATION_VIEWER_WORKSPACE_H
#define ZQFOUNDATION_VIEWER_WORKSPACE_H

#include <set>
#include <string>

#include <ZQFoundation/ZQFoundation.h>

/// How a host is notified of files that were added or removed: it registers a class under the name
/// "NSWorkspace". The library does not know that class; it looks it up by its name, asks it for its
/// "sharedWorkspace" and sends that object "noteFileSystemChanged:" with each folder. This one remembers the
/// folders as long as it exists.
class Workspace {
public:
    Workspace();

    const std::set<std::string>& changedFolders() const { return changedFolders_; }

private:
    std::set<std::string> changedFolders_;
    ZQFoundation::ClassRegistration registration_;
};

#endif
