// SPDX-License-Identifier: MIT
// Copies the data of files, by the means that this kernel offers.
// The order of means matters: a clone costs nothing for any size, a copy by the file system may stay on a
// server, a transfer avoids our memory, and the buffer always works. Each refusal moves on to the next one
// for the rest of the file.
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <new>

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

namespace {

/// Up to this size, trying something better takes longer than copying through a buffer on the stack.
constexpr std::size_t smallFile = std::size_t{32} << 10;

/// The size of one copy through our own memory, if nothing better is available.
constexpr std::size_t bufferBytes = std::size_t{128} << 10;

/// A file that grows while it is copied is followed this many times, not forever.
constexpr int maxExtensions = 16;

/// The maximum number of bytes for one call; the kernel stops a little below 2 GiB anyway.
constexpr std::size_t maxAtOnce = std::size_t{1} << 30;

/// The same while somebody watches.
constexpr std::size_t maxBetweenReports = std::size_t{16} << 20;

/// The errors that mean that the kernel cannot do it this way, rather than that it cannot be done.
/// A refusal costs one call. Treating a real failure as a refusal would only lead to the same failure by the
/// next means; the other way round, a copy that is possible would fail.
bool isRefusal(int error) noexcept {
    switch (error) {
    case EXDEV:
    case EINVAL:
    case ENOSYS:
    case EOPNOTSUPP:
    case EPERM:
    case EACCES:
    // Swap files share no data, but can be read.
    case ETXTBSY:
    case EBADF:
    case EOVERFLOW:
        return true;
    default:
        return false;
    }
}

/// Where a write would raise a signal; the calls that move data in the kernel do so too.
/// Therefore no call is made with more bytes than the limit leaves room for; the failure at the limit is
/// reported as an error instead.
off_t fileSizeLimit() noexcept {
    rlimit limit{};
    const bool isLimited = ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
                           limit.rlim_cur < static_cast<rlim_t>(INT64_MAX);
    return isLimited ? static_cast<off_t>(limit.rlim_cur) : INT64_MAX;
}

/// Whether the file occupies less space than its size.
/// A file that is compressed or whose data are stored in its inode also looks like this. It is then looked
/// at for holes, which costs one call and finds none.
bool mayHaveHoles(const struct stat& information) noexcept {
    return information.st_blocks < information.st_size / 512;
}

/// Copies ranges of one file to the same offsets of another.
class DataCopy {
public:
    DataCopy(int source, int destination, DataMeans first, CopyWatch* watch) noexcept
        : source_(source), destination_(destination), limit_(fileSizeLimit()), means_(first), watch_(watch) {}

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
            // A clone is made completely or not at all, and a limit would raise the signal.
            if (limit_ == INT64_MAX && ::ioctl(destination_, FICLONE, source_) == 0) {
                return report(size);
            }
            means_ = DataMeans::rangeCopy;
        }
        return copySegments(0, size) && followGrowth(size);
    }

private:
    /// A read may return a piece of any size. So the end is where a read returns nothing, or where the file's
    /// size was read; the kernel generates the contents of some files while they are read, and reports their
    /// size as 0.
    bool copySmallFile(off_t size) {
        // One byte more than the largest small file, so that one that has grown meanwhile is noticed.
        char bytes[smallFile + 1];
        std::size_t filled = 0;
        bool isAtEnd = false;
        while (!isAtEnd && filled < sizeof bytes) {
            const ssize_t count = readSome(bytes + filled, sizeof bytes - filled, static_cast<off_t>(filled));
            if (count < 0) {
                return false;
            }
            filled += static_cast<std::size_t>(count);
            isAtEnd = count == 0 || (size > 0 && static_cast<off_t>(filled) == size);
        }
        const auto done = static_cast<off_t>(filled);
        // Either the end was seen, or the file has grown beyond the buffer. A generated file has no size
        // that `followGrowth` could compare, so its end is where a read returns nothing.
        return writeAll(bytes, static_cast<ssize_t>(filled), 0) && report(done) &&
               (isAtEnd || (size > 0 ? followGrowth(done) : copyThroughBuffer(done, INT64_MAX)));
    }

    bool report(off_t newBytes) {
        if (watch_ == nullptr || watch_->mayGoOn(static_cast<std::uint64_t>(newBytes))) {
            return true;
        }
        errno = ECANCELED;
        return false;
    }

    /// Copies what was written after `done` while the rest was copied.
    /// A log that is appended to faster than it is copied would otherwise keep the copy busy forever. What
    /// is written after the last look belongs to a later copy.
    bool followGrowth(off_t done) {
        struct stat information;
        for (int extension = 0; extension < maxExtensions; ++extension) {
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

    /// Copies the data from `start` to `end`; the holes between are recreated with the same length.
    /// A sparse file of a terabyte with a megabyte of data takes a megabyte again.
    bool copySegments(off_t start, off_t end) {
        while (start < end) {
            // ENXIO: no data after `start`, so the rest is a hole.
            off_t data = ::lseek(source_, start, SEEK_DATA);
            if (data < 0 && errno == ENXIO) {
                return endWithHole(end);
            }
            off_t hole = data < 0 ? end : ::lseek(source_, data, SEEK_HOLE);
            data = data < 0 ? start : data; // the file system does not report it
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

    /// A hole at the end has no data to write; without this the copy would be shorter than the source.
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

    /// A transfer of 0 bytes does not prove the end: some generated files do not support it and say nothing.
    /// The buffer then decides by reading.
    bool copyStretch(off_t start, off_t end) {
        while (start < end && means_ != DataMeans::buffer) {
            const ssize_t moved = moveInKernel(start, end);
            if (moved > 0) {
                start += moved;
                if (!report(moved)) {
                    return false;
                }
            } else if (moved == 0) {
                break; // shorter than it was, or the kernel does not know its length
            } else if (errno != EINTR) {
                if (!isRefusal(errno)) {
                    return false;
                }
                means_ = means_ == DataMeans::rangeCopy ? DataMeans::transfer : DataMeans::buffer;
            }
        }
        return start >= end || copyThroughBuffer(start, end);
    }

    /// `copy_file_range` has an offset for each side; `sendfile` writes at the destination's position, which
    /// is therefore set first.
    ssize_t moveInKernel(off_t start, off_t end) noexcept {
        const off_t room = limit_ - start;
        if (room <= 0) {
            errno = EFBIG;
            return -1;
        }
        const auto wanted = static_cast<std::size_t>(std::min(end - start, room));
        const std::size_t count = std::min(wanted, watch_ != nullptr ? maxBetweenReports : maxAtOnce);
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

    /// Copies up to `end` or the end of the file, whichever comes first.
    /// For a generated file `end` is the largest offset there is.
    bool copyThroughBuffer(off_t start, off_t end) {
        // Made on first use: most copies never need it.
        if (!buffer_) {
            buffer_.reset(new char[bufferBytes]);
        }
        while (start < end) {
            const auto wanted = static_cast<std::size_t>(std::min<off_t>(end - start, bufferBytes));
            const ssize_t count = readSome(buffer_.get(), wanted, start);
            if (count < 0 || !writeAll(buffer_.get(), count, start) || !report(count)) {
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

    /// A write may be cut short by a signal, a quota or a full disk; the next one then reports the reason.
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
                // A write of no bytes without an error should not occur; without this it would be retried
                // forever.
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
    CopyWatch* watch_;
    std::unique_ptr<char[]> buffer_;
};

} // namespace

bool copyFileData(int source, int destination, DataMeans first, CopyWatch* watch) {
    try {
        return DataCopy(source, destination, first, watch).run();
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

} // namespace ZQFoundation::detail::system
