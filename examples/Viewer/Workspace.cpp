// SPDX-License-Identifier: MIT
// Registering the class that the library looks up.
#include "Workspace.h"

#include <utility>

using namespace ZQFoundation;

namespace {

/// The shared object: it has the one operation that it is sent.
class SharedWorkspace : public NSObjectProtocol {
public:
    explicit SharedWorkspace(std::set<std::string>& changedFolders) : changedFolders_(changedFolders) {}

    bool respondsToSelector(const Selector& selector) const override {
        return selector == "noteFileSystemChanged:";
    }
    NSObject performSelector_withObject(const Selector&, const NSObject& folder) override {
        changedFolders_.insert(NSString(folder).utf8());
        return nullptr;
    }

private:
    std::set<std::string>& changedFolders_;
};

/// What the name refers to: it has the operation of the class and not those of its one object.
class WorkspaceClass : public NSObjectProtocol {
public:
    explicit WorkspaceClass(NSObject sharedWorkspace) : sharedWorkspace_(std::move(sharedWorkspace)) {}

    bool respondsToSelector(const Selector& selector) const override { return selector == "sharedWorkspace"; }
    NSObject performSelector_withObject(const Selector&, const NSObject&) override {
        return sharedWorkspace_;
    }

private:
    NSObject sharedWorkspace_;
};

} // namespace

Workspace::Workspace()
    : registration_("NSWorkspace", makeObject<WorkspaceClass>(makeObject<SharedWorkspace>(changedFolders_))) {
}
