// SPDX-License-Identifier: MIT
// Creates files: writes each under a temporary name in the same folder, and renames it. A reader of the path
// sees the old file or the new one, never a part of one. The folder must be writable, the old file need not
// be.
#include <cstdio>

#include "foundation/files/AppliedAttributes.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/HeldItem.h"
#include "foundation/system/System.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation {

namespace {

/// Collisions of random names are practically impossible, so failing this often means that something else is
/// wrong.
constexpr int maxAttempts = 100;

/// A new file under a temporary name next to the one that it is to replace; removed unless it replaces it.
class ReplacementFile {
public:
    explicit ReplacementFile(int folder) noexcept : folder_(folder) {}
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    // Nothing remains of a file that was not finished.
    ~ReplacementFile() {
        if (exists_) {
            ::unlinkat(folder_, name_, 0);
        }
    }

    bool open(mode_t mode) noexcept {
        for (int attempt = 0; attempt < maxAttempts && !file_; ++attempt) {
            chooseName();
            // O_EXCL and O_NOFOLLOW: whatever others put there under that name is neither opened nor
            // followed.
            file_ = detail::Descriptor(
                detail::openAt(folder_, name_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
            if (!file_ && errno != EEXIST) {
                return false;
            }
        }
        exists_ = static_cast<bool>(file_);
        return exists_;
    }

    int descriptor() const noexcept { return file_.number(); }

    bool write(const char* bytes, std::size_t count) noexcept {
        while (count != 0) {
            const std::ptrdiff_t written = detail::system::writeWithoutSignals(file_.number(), bytes, count);
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written <= 0) {
                return false;
            }
            bytes += written;
            count -= static_cast<std::size_t>(written);
        }
        return true;
    }

    /// Closing reports writes that failed late, as they may over a network.
    bool close() noexcept { return ::close(file_.release()) == 0 || errno == EINTR; }

    bool replace(const char* name) noexcept {
        // From here on the name belongs to somebody else.
        exists_ = ::renameat(folder_, name_, folder_, name) != 0;
        return !exists_;
    }

private:
    void chooseName() noexcept {
        detail::writeHexDigits(detail::system::freshRandomNumber(), digitCount, name_ + prefixLength);
    }

    static constexpr std::size_t prefixLength = 5;
    static constexpr std::size_t digitCount = 16;

    int folder_;
    // The dot hides the file while it exists; if the process is killed, the name shows where it came from.
    char name_[prefixLength + digitCount + 1] = ".new-";
    detail::Descriptor file_;
    bool exists_ = false;
};

/// The folder that contains a path's last name, opened once so that all steps happen in the same folder.
class TargetFolder {
public:
    /// False with `errno`, also for a path that can only name a folder.
    bool open(const std::string& path) {
        const std::size_t slash = path.rfind('/');
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        name_ = path.substr(start);
        // A path with a slash at its end names a folder, which cannot be replaced by a file.
        if (name_.empty() || name_ == "." || name_ == "..") {
            errno = EISDIR;
            return false;
        }
        // The slash stays at the end, because the root folder has no other name.
        const std::string folder = start == 0 ? "." : path.substr(0, start);
        detail::PathHandle handle;
        if (!handle.reach(folder)) {
            return false;
        }
        // Renaming needs the folder only for search and write; reading it may not be allowed.
        folder_ =
            detail::Descriptor(detail::openAt(handle.folder(), handle.name(), detail::system::openForSearch));
        return static_cast<bool>(folder_);
    }

    int descriptor() const noexcept { return folder_.number(); }
    const char* name() const noexcept { return name_.c_str(); }

private:
    std::string name_;
    detail::Descriptor folder_;
};

/// Gives the new file the permissions and the access list of the one that it replaces.
bool takePermissions(int file, const TargetFolder& folder, const struct stat& existing) noexcept {
    struct stat made;
    if (::fstat(file, &made) != 0) {
        return false;
    }
    // The set-user-ID and set-group-ID bits are not passed on to a file with another owner or group.
    // They would give the old owner's rights to contents that somebody else wrote.
    mode_t permissions = existing.st_mode & 07777;
    permissions &= made.st_uid == existing.st_uid ? ~mode_t{0} : ~mode_t{S_ISUID};
    permissions &= made.st_gid == existing.st_gid ? ~mode_t{0} : ~mode_t{S_ISGID};
    permissions = detail::system::takeAccessList(file, folder.descriptor(), folder.name(), permissions);
    return ::fchmod(file, permissions) == 0;
}

bool createFile(const std::string& path, const NSData& contents, const NSDictionary& attributes) {
    TargetFolder folder;
    if (!folder.open(path)) {
        return false;
    }
    struct stat existing;
    // A link at the path is replaced, not followed.
    const bool exists = ::fstatat(folder.descriptor(), folder.name(), &existing, AT_SYMLINK_NOFOLLOW) == 0;
    if (exists && S_ISDIR(existing.st_mode)) {
        return false;
    }
    // A pipe, a link or a device gives its permissions to nobody.
    const bool inherits = exists && S_ISREG(existing.st_mode);
    mode_t permissions = 0;
    const bool givesPermissions = detail::getPermissions(attributes, permissions);
    ReplacementFile file(folder.descriptor());
    // A file that is not to have the default permissions is closed to others until it has its own.
    // With 0666 the system applies the umask, which it cannot do later.
    if (!file.open(inherits || givesPermissions ? 0600 : 0666)) {
        return false;
    }
    if (!file.write(reinterpret_cast<const char*>(contents.bytes()), contents.length())) {
        return false;
    }
    // Copying the old permissions must succeed; applying the requested attributes need not.
    if (inherits && !takePermissions(file.descriptor(), folder, existing)) {
        return false;
    }
    detail::applyAttributes(file.descriptor(), attributes);
    return file.close() && file.replace(folder.name());
}

} // namespace

bool NSFileManager::createFileAtPath_contents_attributes(StringView path, const NSData& contents,
                                                         const NSDictionary& attributes) {
    const detail::CallerState caller;
    std::string bytes;
    return detail::getPathBytes(path, bytes) && createFile(bytes, contents, attributes);
}

} // namespace ZQFoundation
