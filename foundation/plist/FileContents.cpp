// SPDX-License-Identifier: MIT
// Reads whole files as data.
// Property lists are read whole: their forms are recognized by how they begin and may end with a table.
#include "foundation/plist/FileContents.h"

#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/WholeRead.h"

namespace ZQFoundation::detail {

namespace {

/// False unless it is a regular file of a size that is read.
bool getSize(const Descriptor& file, std::size_t& size) noexcept {
    struct stat status {};
    // Compared as a wide unsigned number: a size is signed, and the limit may not fit it.
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0 ||
        static_cast<std::uintmax_t>(status.st_size) > maxPropertyListBytes) {
        return false;
    }
    size = static_cast<std::size_t>(status.st_size);
    return true;
}

/// Reads until the end, wherever that is: the size may change meanwhile, and some systems show files without
/// one.
bool readToEnd(const Descriptor& file, std::size_t expected, FileContents& contents) {
    std::size_t capacity = expected + 1; // the last read finds the end without growing first
    contents.bytes.reset(new unsigned char[capacity]);
    contents.count = 0;
    for (;;) {
        const std::ptrdiff_t taken =
            readWhole(file.number(), contents.bytes.get() + contents.count, capacity - contents.count);
        if (taken < 0) {
            return false;
        }
        contents.count += static_cast<std::size_t>(taken);
        // The file may have grown beyond the limit while it was read.
        if (contents.count > maxPropertyListBytes) {
            return false;
        }
        if (contents.count < capacity) {
            return true;
        }
        // Doubled, so that a file of unknown size is copied a few times only.
        capacity = capacity * 2 + 4096;
        std::unique_ptr<unsigned char[]> larger(new unsigned char[capacity]);
        std::memcpy(larger.get(), contents.bytes.get(), contents.count);
        contents.bytes = std::move(larger);
    }
}

} // namespace

bool readFile(StringView path, FileContents& contents) {
    std::string bytes;
    // A path with a NUL or an unpaired surrogate cannot be a file's.
    if (!path || !NSString(path).getFileSystemBytes(bytes)) {
        return false;
    }
    const CallerState caller;
    // Without O_NONBLOCK, opening a FIFO would wait for a writer.
    const Descriptor file(openAt(AT_FDCWD, bytes.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::size_t size = 0;
    return file && getSize(file, size) && readToEnd(file, size, contents);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSData NSData::dataWithContentsOfFile(StringView path) {
    detail::FileContents contents;
    if (!detail::readFile(path, contents)) {
        return nullptr;
    }
    return dataWithBytes_length(contents.bytes.get(), contents.count);
}

} // namespace ZQFoundation
