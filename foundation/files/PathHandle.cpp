// SPDX-License-Identifier: MIT
// Paths of any length as an open folder and a name in it.
// The system's limit for a path is not a limit for a tree: deep items have longer paths.
#include "foundation/files/PathHandle.h"

#include <climits>
#include <cstring>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

/// The system's limit counts the NUL at the end.
constexpr std::size_t maxNameBytes = PATH_MAX - 1;

} // namespace

bool getPathBytes(StringView path, std::string& bytes) {
    if (path.size() == 0) {
        errno = ENOENT;
        return false;
    }
    if (path.form() == StringView::Form::ascii) {
        bytes.assign(path.bytes(), path.size());
        // A NUL would cut the path short.
        if (bytes.find('\0') == std::string::npos) {
            return true;
        }
    } else if (NSString(path).getFileSystemBytes(bytes)) {
        return true;
    }
    errno = EINVAL;
    return false;
}

bool takeName(const std::string& path, std::size_t& position, std::string& name) {
    while (position < path.size() && path[position] == '/') {
        ++position;
    }
    if (position == path.size()) {
        return false;
    }
    const std::size_t slash = path.find('/', position);
    const std::size_t end = slash == std::string::npos ? path.size() : slash;
    name.assign(path, position, end - position);
    position = end;
    return true;
}

// Cuts at the last slash that fits, so that as few folders as possible are opened.
bool PathHandle::openNextFolder(const std::string& path) noexcept {
    const std::size_t slash = path.rfind('/', offset_ + maxNameBytes - 1);
    // Without a slash within the limit, a single name is longer than any may be.
    if (slash == std::string::npos || slash < offset_) {
        errno = ENAMETOOLONG;
        return false;
    }
    const std::size_t length = slash + 1 - offset_; // with the slash: the root folder is nothing else
    char name[PATH_MAX];
    std::memcpy(name, path.data() + offset_, length);
    name[length] = '\0';
    Descriptor next(openAt(folder_ ? folder_.number() : AT_FDCWD, name, system::openForSearch));
    if (!next) {
        return false;
    }
    folder_ = static_cast<Descriptor&&>(next);
    offset_ = slash + 1;
    while (offset_ < path.size() && path[offset_] == '/') {
        ++offset_;
    }
    return true;
}

bool PathHandle::reach(const std::string& path) noexcept {
    isDirect_ = path.size() <= maxNameBytes;
    if (isDirect_) {
        name_ = path.c_str();
        return true;
    }
    while (path.size() - offset_ > maxNameBytes) {
        if (!openNextFolder(path)) {
            return false;
        }
    }
    // A path that ended in slashes names the folder that is open.
    name_ = offset_ < path.size() ? path.c_str() + offset_ : ".";
    return true;
}

void PathHandle::keepOnly(std::size_t byteCount) noexcept {
    // The open folder is below the part that is still valid.
    if (offset_ > byteCount) {
        offset_ = 0;
        folder_.reset();
    }
}

} // namespace ZQFoundation::detail
