// SPDX-License-Identifier: MIT
// The data of files, by the means that this kernel offers.
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <new>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

namespace {

/// Up to here it takes longer to ask for something better than to copy through a buffer on the stack.
constexpr std::size_t smallFile = std::size_t{32} << 10;

/// At once through our own memory, when nothing better is to be had.
constexpr std::size_t bufferBytes = std::size_t{128} << 10;

/// A file that grows while it is copied is followed so often, not for ever.
constexpr int mostExtensions = 16;

/// As much as one call is asked to move; the kernel stops a little below 2 GiB anyway.
constexpr std::size_t mostAtOnce = std::size_t{1} << 30;

/// What says that the kernel cannot do it this way, rather than that it cannot be done.
bool isRefusal(int error) noexcept {
    switch (error) {
    case EXDEV:
    case EINVAL:
    case ENOSYS:
    case EOPNOTSUPP:
    case EPERM:
    case EACCES:
    case ETXTBSY:
    case EBADF:
    case EOVERFLOW:
        return true;
    default:
        return false;
    }
}

/// Where a write would raise a signal; the calls that move data in the kernel do so too.
off_t fileSizeLimit() noexcept {
    rlimit limit{};
    const bool isLimited = ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
                           limit.rlim_cur < static_cast<rlim_t>(INT64_MAX);
    return isLimited ? static_cast<off_t>(limit.rlim_cur) : INT64_MAX;
}

/// Whether the file takes less room than its size says.
bool mayHaveHoles(const struct stat& information) noexcept {
    return information.st_blocks < information.st_size / 512;
}

/// Copies stretches of one file to the same places of another.
class DataCopy {
public:
    DataCopy(int source, int destination, DataMeans first) noexcept
        : source_(source), destination_(destination), limit_(fileSizeLimit()), means_(first) {}

    bool run() {
        struct stat information;
        if (::fstat(source_, &information) != 0) {
            return false;
        }
        const off_t size = information.st_size;
        if (size <= static_cast<off_t>(smallFile) && !mayHaveHoles(information)) {
            return copySmallFile(size);
        }
        if (means_ == DataMeans::clone) {
            // A clone is made whole or not at all, and a limit would raise the signal.
            if (limit_ == INT64_MAX && ::ioctl(destination_, FICLONE, source_) == 0) {
                return true;
            }
            means_ = DataMeans::rangeCopy;
        }
        return copySegments(0, size) && followGrowth(size);
    }

private:
    bool copySmallFile(off_t size) {
        char bytes[smallFile + 1];
        const ssize_t count = readSome(bytes, sizeof bytes, 0);
        if (count < 0 || !writeAll(bytes, count, 0)) {
            return false;
        }
        if (count == 0 || (size > 0 && count < static_cast<ssize_t>(sizeof bytes))) {
            return true; // less than was asked for: that is the end
        }
        struct stat information;
        if (::fstat(source_, &information) != 0) {
            return false;
        }
        // The kernel makes the contents of some files up while they are read, and says that their size is 0.
        return information.st_size > 0 ? followGrowth(count) : copyThroughBuffer(count, INT64_MAX);
    }

    /// What was written behind `done` while the rest was copied.
    bool followGrowth(off_t done) {
        struct stat information;
        for (int extension = 0; extension < mostExtensions; ++extension) {
            if (::fstat(source_, &information) != 0) {
                return false;
            }
            if (information.st_size <= done) {
                return true;
            }
            if (!copySegments(done, information.st_size)) {
                return false;
            }
            done = information.st_size;
        }
        return true;
    }

    /// Copies what is data from `start` to `end`; the holes between are only made as long.
    bool copySegments(off_t start, off_t end) {
        while (start < end) {
            off_t data = ::lseek(source_, start, SEEK_DATA);
            if (data < 0 && errno == ENXIO) {
                return endWithHole(end);
            }
            off_t hole = data < 0 ? end : ::lseek(source_, data, SEEK_HOLE);
            data = data < 0 ? start : data; // the file system does not tell
            hole = hole < 0 ? end : std::min(hole, end);
            if (data >= end) {
                return endWithHole(end);
            }
            if (!copyStretch(data, hole)) {
                return false;
            }
            start = hole;
        }
        return true;
    }

    bool endWithHole(off_t end) noexcept {
        struct stat source;
        if (::fstat(source_, &source) != 0) {
            return false;
        }
        end = std::min(end, source.st_size); // it may have shrunk
        if (end > limit_) {
            errno = EFBIG;
            return false;
        }
        return ::ftruncate(destination_, end) == 0;
    }

    bool copyStretch(off_t start, off_t end) {
        while (start < end && means_ != DataMeans::buffer) {
            const ssize_t moved = moveInKernel(start, end);
            if (moved > 0) {
                start += moved;
            } else if (moved == 0) {
                break; // shorter than it was, or the kernel does not know how long
            } else if (errno != EINTR) {
                if (!isRefusal(errno)) {
                    return false;
                }
                means_ = means_ == DataMeans::rangeCopy ? DataMeans::transfer : DataMeans::buffer;
            }
        }
        return start >= end || copyThroughBuffer(start, end);
    }

    ssize_t moveInKernel(off_t start, off_t end) noexcept {
        const off_t room = limit_ - start;
        if (room <= 0) {
            errno = EFBIG;
            return -1;
        }
        const auto wanted = static_cast<std::size_t>(std::min(end - start, room));
        const std::size_t count = std::min(wanted, mostAtOnce);
        off_t from = start;
        if (means_ == DataMeans::rangeCopy) {
            off_t to = start;
            return ::copy_file_range(source_, &from, destination_, &to, count, 0);
        }
        if (::lseek(destination_, start, SEEK_SET) < 0) {
            return -1;
        }
        return ::sendfile(destination_, source_, &from, count);
    }

    /// Up to `end` or the end of the file, whichever comes first.
    bool copyThroughBuffer(off_t start, off_t end) {
        if (!buffer_) {
            buffer_.reset(new char[bufferBytes]);
        }
        while (start < end) {
            const auto wanted = static_cast<std::size_t>(std::min<off_t>(end - start, bufferBytes));
            const ssize_t count = readSome(buffer_.get(), wanted, start);
            if (count < 0 || !writeAll(buffer_.get(), count, start)) {
                return false;
            }
            if (count == 0) {
                return true;
            }
            start += count;
        }
        return true;
    }

    ssize_t readSome(char* bytes, std::size_t wanted, off_t at) const noexcept {
        ssize_t count = -1;
        do {
            count = ::pread(source_, bytes, wanted, at);
        } while (count < 0 && errno == EINTR);
        return count;
    }

    bool writeAll(const char* bytes, ssize_t count, off_t at) const noexcept {
        while (count > 0) {
            if (at >= limit_) {
                errno = EFBIG;
                return false;
            }
            const auto room = static_cast<std::size_t>(std::min<off_t>(count, limit_ - at));
            const ssize_t written = ::pwrite(destination_, bytes, room, at);
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written <= 0) {
                errno = written == 0 ? EIO : errno;
                return false;
            }
            bytes += written;
            count -= written;
            at += written;
        }
        return true;
    }

    int source_;
    int destination_;
    off_t limit_;
    DataMeans means_;
    std::unique_ptr<char[]> buffer_;
};

} // namespace

bool copyFileData(int source, int destination, DataMeans first) noexcept {
    try {
        return DataCopy(source, destination, first).run();
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

} // namespace ZQFoundation::detail::system
