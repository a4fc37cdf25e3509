// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_FILECONTENTS_H
#define ZQFOUNDATION_PLIST_FILECONTENTS_H

#include <cstddef>
#include <memory>

#include "foundation/text/StringView.h"

namespace ZQFoundation::detail {

/// The bytes of one file.
struct FileContents {
    std::unique_ptr<unsigned char[]> bytes;
    std::size_t count = 0;
};

/// Reads a whole regular file of at most `maxPropertyListBytes`. False for a nil path, a file that is missing
/// or cannot be read, a larger one, and anything but a regular file: a FIFO is never waited for. Preserves
/// `errno`.
bool readFile(StringView path, FileContents& contents);

} // namespace ZQFoundation::detail

#endif
