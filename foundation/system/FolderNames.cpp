// SPDX-License-Identifier: MIT
#include "foundation/system/FolderNames.h"

#include <cstring>

#include <dirent.h>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

namespace {

bool isSelfOrParent(const char* name) noexcept {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

bool FolderNames::read(int folder) {
    // A second descriptor, which the stream closes. Opening "." would need the permission to search the
    // folder.
    Descriptor own(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
    DIR* const stream = own ? ::fdopendir(own.number()) : nullptr;
    if (stream == nullptr) {
        return false;
    }
    own.release();
    errno = 0;
    while (const dirent* const entry = ::readdir(stream)) {
        const char* const name = entry->d_name;
        if (!isSelfOrParent(name)) {
            bytes_.push_back(static_cast<char>(entry->d_type));
            bytes_.insert(bytes_.end(), name, name + std::strlen(name) + 1);
        }
    }
    const int error = errno;
    ::closedir(stream);
    errno = error;
    return error == 0;
}

FolderNames::Entry FolderNames::next() noexcept {
    const auto kind = static_cast<unsigned char>(bytes_[position_]);
    const char* const name = bytes_.data() + position_ + 1;
    position_ += std::strlen(name) + 2;
    return {name, kind};
}

} // namespace ZQFoundation::detail
