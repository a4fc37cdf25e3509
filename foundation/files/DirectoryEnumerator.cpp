// SPDX-License-Identifier: MIT
// The enumerator of all items below a path.
// Everything is delegated to a walk over open folders; the enumerator adds the conversion of names.
#include <utility>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/files/TreeWalk.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

NSDirectoryEnumerator& NSDirectoryEnumerator::operator=(NSDirectoryEnumerator&& other) noexcept {
    // The old walk is destroyed with the other enumerator.
    std::swap(walk_, other.walk_);
    return *this;
}

NSDirectoryEnumerator::~NSDirectoryEnumerator() {
    const detail::CallerState caller;
    delete walk_;
}

NSString NSDirectoryEnumerator::nextObject() {
    const detail::CallerState caller;
    // After the end, and for a path that cannot be listed, there is no walk, or it has no next item.
    if (walk_ == nullptr || !walk_->next()) {
        return nullptr;
    }
    return NSString::stringWithFileSystemBytes(walk_->path().data(), walk_->path().size());
}

void NSDirectoryEnumerator::skipDescendents() {
    if (walk_ != nullptr) {
        walk_->skipDescendents();
    }
}

NSDirectoryEnumerator NSFileManager::enumeratorAtPath(StringView path) const {
    const detail::CallerState caller;
    std::string bytes;
    detail::PathHandle handle;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes)) {
        return {};
    }
    // The start itself may be a link.
    // Links below it are never followed.
    detail::Descriptor start(
        detail::openAt(handle.folder(), handle.name(), detail::folderFlags & ~O_NOFOLLOW));
    return start ? NSDirectoryEnumerator(new detail::TreeWalk(static_cast<detail::Descriptor&&>(start)))
                 : NSDirectoryEnumerator();
}

} // namespace ZQFoundation
