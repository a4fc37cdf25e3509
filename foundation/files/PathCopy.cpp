// SPDX-License-Identifier: MIT
// The file manager's copy of an item from path to path.
// The source is what is at the path, a link included; nothing at the destination is replaced.
#include <utility>

#include "foundation/files/FileError.h"
#include "foundation/files/ItemPlace.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/files/TreeCopy.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

using detail::CopyPlace;
using detail::Descriptor;
using detail::ItemPlace;

/// One call: a source and a target.
class PathCopy {
public:
    PathCopy(const std::string& source, const std::string& destination)
        : source_(source), destination_(destination) {}

    /// False with `errno`; `failed()` is then what could not be copied or made.
    bool run() {
        struct stat information;
        failed_ = source_;
        // What could not be copied is reported by its path: the source's or the destination's.
        if (!from_.open(source_) || !from_.look(information)) {
            return false;
        }
        failed_ = destination_;
        if (!openTarget()) {
            return false;
        }
        // The destination folder belongs to somebody else, so its access list and its other users are taken
        // into account.
        const CopyPlace place{from_.folder(), from_.name(), to_.folder(), to_.name(), true};
        failed_ = source_;
        if (S_ISDIR(information.st_mode)) {
            return copyTree(place);
        }
        if (S_ISREG(information.st_mode)) {
            return copyFile(place);
        }
        struct stat made;
        return detail::copySpecialItem(information, place, made);
    }

    const std::string& failed() const noexcept { return failed_; }

private:
    /// False also when something exists there, even a dangling link.
    bool openTarget() {
        struct stat present;
        if (!to_.open(destination_)) {
            return false;
        }
        if (::fstatat(to_.folder(), to_.name(), &present, AT_SYMLINK_NOFOLLOW) == 0) {
            errno = EEXIST;
            return false;
        }
        // Any other error means that it is unknown what is there.
        return errno == ENOENT;
    }

    bool copyFile(const CopyPlace& place) {
        Descriptor file;
        struct stat information;
        // Opened and examined again: the kind was only looked up by name.
        return detail::openForCopy(place.sourceFolder, place.sourceName, false, file, information) &&
               detail::copyRegularFile(file.number(), information, place);
    }

    bool copyTree(const CopyPlace& place) {
        Descriptor folder(detail::openAt(place.sourceFolder, place.sourceName, detail::folderFlags));
        struct stat information;
        if (!folder || ::fstat(folder.number(), &information) != 0) {
            return false;
        }
        // A folder inside itself would be copied forever.
        if (detail::isAtOrAbove(information, place.destinationFolder)) {
            errno = EINVAL;
            return false;
        }
        const std::string bare = detail::withoutEndSlashes(source_);
        detail::TreeCopy tree(bare.empty() ? "/" : bare);
        const bool isCopied = tree.run(std::move(folder), place);
        const int error = errno;
        failed_ = tree.path();
        errno = error;
        return isCopied;
    }

    const std::string& source_;
    const std::string& destination_;
    ItemPlace from_;
    ItemPlace to_;
    std::string failed_;
};

} // namespace

bool NSFileManager::copyItemAtPath_toPath_error(StringView source, StringView destination,
                                                NSString* errorText) {
    const detail::CallerState caller;
    std::string sourceBytes;
    std::string destinationBytes;
    if (!detail::getPathBytes(source, sourceBytes)) {
        detail::reportError(errorText, source, errno);
        return false;
    }
    if (!detail::getPathBytes(destination, destinationBytes)) {
        detail::reportError(errorText, destination, errno);
        return false;
    }
    PathCopy copy(sourceBytes, destinationBytes);
    if (!copy.run()) {
        const int error = errno;
        detail::reportErrorOfBytes(errorText, copy.failed(), error);
        return false;
    }
    detail::clearError(errorText);
    return true;
}

} // namespace ZQFoundation
