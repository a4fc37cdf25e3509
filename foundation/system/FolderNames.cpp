// SPDX-License-Identifier: MIT
// Reads the names in a folder, all at once.
// A folder that changes while it is listed still gives a list that ends, because nothing is read twice.
#include "foundation/system/FolderNames.h"

#include <cerrno>
#include <cstring>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

// A failed reading may leave some entries in the list; the caller discards it. Releasing the spare room
// matters for a walk: the list of each folder on the way down stays in memory.
bool FolderNames::read(int folder) {
    const bool isRead = system::appendFolderEntries(folder, bytes_);
    const int error = errno;
    bytes_.shrink_to_fit();
    errno = error;
    return isRead;
}

// The list is one block of "kind, name, NUL", so that a folder with a hundred thousand entries needs one
// allocation that grows, not one for each name.
FolderNames::Entry FolderNames::next() noexcept {
    const auto kind = static_cast<unsigned char>(bytes_[position_]);
    const char* const name = bytes_.data() + position_ + 1;
    position_ += std::strlen(name) + 2;
    return {name, kind};
}

} // namespace ZQFoundation::detail
