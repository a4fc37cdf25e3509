// SPDX-License-Identifier: MIT
#include "foundation/plist/FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "foundation/objects/NSData.h"
#include "foundation/objects/NSString.h"
#include "foundation/plist/PropertyListError.h"

namespace ZQFoundation {

namespace detail {

namespace {

/// An open file, closed at the end; `errno` is put back then.
class OpenFile {
public:
    explicit OpenFile(const char* path) noexcept {
        // Without O_NONBLOCK, opening a FIFO would wait for a writer.
        do {
            descriptor_ = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        } while (descriptor_ < 0 && errno == EINTR);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
        errno = savedErrno_;
    }

    bool isOpen() const noexcept { return descriptor_ >= 0; }

    /// False unless it is a regular file of a size that is read.
    bool getSize(std::size_t& size) const noexcept {
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0 ||
            static_cast<std::uintmax_t>(status.st_size) > maximumPropertyListBytes) {
            return false;
        }
        size = static_cast<std::size_t>(status.st_size);
        return true;
    }

    /// As `read`, starting again after a signal.
    ssize_t read(unsigned char* out, std::size_t count) const noexcept {
        ssize_t taken = 0;
        do {
            taken = ::read(descriptor_, out, count);
        } while (taken < 0 && errno == EINTR);
        return taken;
    }

private:
    int savedErrno_ = errno;
    int descriptor_ = -1;
};

/// Reads until the end, wherever that is: the size may change meanwhile, and some systems show files without
/// one.
bool readToEnd(const OpenFile& file, std::size_t expected, FileContents& contents) {
    std::size_t capacity = expected + 1; // the last read finds the end without growing first
    contents.bytes.reset(new unsigned char[capacity]);
    contents.count = 0;
    for (;;) {
        const ssize_t taken = file.read(contents.bytes.get() + contents.count, capacity - contents.count);
        if (taken <= 0) {
            return taken == 0;
        }
        contents.count += static_cast<std::size_t>(taken);
        if (contents.count > maximumPropertyListBytes) {
            return false;
        }
        if (contents.count == capacity) {
            capacity = capacity * 2 + 4096;
            std::unique_ptr<unsigned char[]> larger(new unsigned char[capacity]);
            std::memcpy(larger.get(), contents.bytes.get(), contents.count);
            contents.bytes = std::move(larger);
        }
    }
}

} // namespace

bool readFile(StringView path, FileContents& contents) {
    std::string bytes;
    if (!path || !NSString(path).getFileSystemBytes(bytes)) {
        return false;
    }
    const OpenFile file(bytes.c_str());
    std::size_t size = 0;
    return file.isOpen() && file.getSize(size) && readToEnd(file, size, contents);
}

} // namespace detail

NSData NSData::dataWithContentsOfFile(StringView path) {
    detail::FileContents contents;
    if (!detail::readFile(path, contents)) {
        return nullptr;
    }
    return dataWithBytes_length(contents.bytes.get(), contents.count);
}

} // namespace ZQFoundation
