// SPDX-License-Identifier: MIT
// The data and the attributes of files, by the means that this system offers.
#include <copyfile.h>

#include <cerrno>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

bool copyFileData(int source, int destination) noexcept {
    return ::fcopyfile(source, destination, nullptr, COPYFILE_DATA | COPYFILE_DATA_SPARSE) == 0;
}

AttributesCopied copyExtendedAttributes(int source, int destination) noexcept {
    if (::fcopyfile(source, destination, nullptr, COPYFILE_XATTR) != 0 && errno != ENOTSUP) {
        return AttributesCopied::failed;
    }
    if (::fcopyfile(source, destination, nullptr, COPYFILE_ACL) != 0) {
        return errno == ENOTSUP ? AttributesCopied::withoutAccessList : AttributesCopied::failed;
    }
    return AttributesCopied::all;
}

} // namespace ZQFoundation::detail::system
