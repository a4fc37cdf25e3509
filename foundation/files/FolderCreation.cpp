// SPDX-License-Identifier: MIT
// Creates folders, with the missing ones above them.
// Made from the top, one name at a time; what was made before a failure stays.
#include <vector>

#include "foundation/files/AppliedAttributes.h"
#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"

namespace ZQFoundation {

namespace {

/// Makes one folder, or it and the missing ones above it, and applies the attributes to each that it made.
class FolderMaker {
public:
    FolderMaker(const std::string& path, const NSDictionary& attributes)
        : path_(path), attributes_(attributes) {
        // Never more open to others than it will be at the end; but the owner must be able to create the next
        // folder in it.
        mode_t permissions = 0;
        if (detail::getPermissions(attributes, permissions)) {
            // The umask still applies to what is made; the final permissions are set at the end.
            mode_ = (permissions & 0777) | 0700;
        }
    }

    /// False with `errno` when anything exists there.
    bool make() { return makePrefix(path_.size()); }

    /// True when a folder, or a link to one, exists there already. False with `errno`.
    bool makeWithIntermediates() {
        // Most folders have an existing parent, so the whole path is tried first.
        if (make() || isFolder()) {
            return true;
        }
        // Only a missing parent folder can be created.
        if (errno != ENOENT) {
            return false;
        }
        for (std::size_t end = 0; end < path_.size();) {
            end = path_.find_first_not_of('/', end);
            if (end == std::string::npos) {
                break;
            }
            const std::size_t slash = path_.find('/', end);
            end = slash == std::string::npos ? path_.size() : slash;
            // Somebody else may have created it meanwhile, which is just as well.
            if (!makePrefix(end) && !isFolder()) {
                return false;
            }
        }
        return true;
    }

    /// The deepest first: permissions may block access to it, and a new folder changes its parent's date.
    void applyAttributes() {
        // Without attributes the folders need not be opened.
        if (attributes_.count() == 0) {
            return;
        }
        constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
        for (std::size_t index = made_.size(); index > 0; --index) {
            const std::string folder(path_, 0, made_[index - 1]);
            detail::PathHandle handle;
            if (!handle.reach(folder)) {
                // Best effort, like every application of attributes.
                continue;
            }
            const detail::Descriptor open(detail::openAt(handle.folder(), handle.name(), flags));
            if (open) {
                detail::applyAttributes(open.number(), attributes_);
            }
        }
    }

private:
    /// Paths grow, so that the handle of a long path can continue from the folder that it has open.
    bool makePrefix(std::size_t length) {
        prefix_.assign(path_, 0, length);
        handle_.keepOnly(length);
        if (!handle_.reach(prefix_) || ::mkdirat(handle_.folder(), handle_.name(), mode_) != 0) {
            return false;
        }
        made_.push_back(length);
        return true;
    }

    /// Whether a folder exists where the last one could not be made. Keeps `errno` when not.
    bool isFolder() {
        // The caller reports why the folder could not be made, not why this look failed.
        const int error = errno;
        struct stat information;
        const bool exists =
            handle_.reach(prefix_) && ::fstatat(handle_.folder(), handle_.name(), &information, 0) == 0;
        errno = error;
        return exists && S_ISDIR(information.st_mode);
    }

    const std::string& path_;
    const NSDictionary& attributes_;
    mode_t mode_ = 0777;
    std::string prefix_;
    detail::PathHandle handle_;
    std::vector<std::size_t> made_; ///< the length of the path of each folder made
};

} // namespace

bool NSFileManager::createDirectoryAtPath_withIntermediateDirectories_attributes_error(
    StringView path, detail::Flag withIntermediateDirectories, const NSDictionary& attributes,
    NSString* errorText) {
    const detail::CallerState caller;
    std::string bytes;
    if (!detail::getPathBytes(path, bytes)) {
        detail::reportError(errorText, path, errno);
        return false;
    }
    FolderMaker maker(bytes, attributes);
    const bool done = withIntermediateDirectories ? maker.makeWithIntermediates() : maker.make();
    // Applying attributes changes it.
    const int error = errno;
    maker.applyAttributes();
    if (done) {
        detail::clearError(errorText);
    } else {
        detail::reportError(errorText, path, error);
    }
    return done;
}

} // namespace ZQFoundation
