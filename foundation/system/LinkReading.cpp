// SPDX-License-Identifier: MIT
// Reads the target of a symbolic link of any length.
// The length that `lstat` reports does not help: links of generated file systems report 0.
#include "foundation/system/LinkReading.h"

#include <cerrno>

#include <unistd.h>

namespace ZQFoundation::detail {

LinkResult readLink(int folder, const char* name, std::string& target) {
    char ordinary[512];
    ssize_t length = ::readlinkat(folder, name, ordinary, sizeof ordinary);
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof ordinary) {
        target.assign(ordinary, static_cast<std::size_t>(length));
        return LinkResult::link;
    }
    // A text that fills the buffer may have been truncated.
    std::string text;
    for (std::size_t size = 4 * sizeof ordinary; length >= 0; size *= 2) {
        text.resize(size);
        length = ::readlinkat(folder, name, text.data(), size);
        if (length >= 0 && static_cast<std::size_t>(length) < size) {
            text.resize(static_cast<std::size_t>(length));
            target.swap(text);
            return LinkResult::link;
        }
    }
    // EINVAL means that the item exists and is not a link; nothing else does.
    return errno == EINVAL ? LinkResult::other : LinkResult::failed;
}

} // namespace ZQFoundation::detail
