// SPDX-License-Identifier: MIT
// Reads the names in a folder, all at once.
#include "foundation/system/FolderNames.h"

#include <cerrno>
#include <cstring>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

bool FolderNames::read(int folder) {
    const bool isRead = system::appendFolderEntries(folder, bytes_);
    const int error = errno;
    bytes_.shrink_to_fit();
    errno = error;
    return isRead;
}

FolderNames::Entry FolderNames::next() noexcept {
    const auto kind = static_cast<unsigned char>(bytes_[position_]);
    const char* const name = bytes_.data() + position_ + 1;
    position_ += std::strlen(name) + 2;
    return {name, kind};
}

} // namespace ZQFoundation::detail
