// SPDX-License-Identifier: MIT
// The data and the attributes of files, by the means that this kernel offers.
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>
#include <string>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

namespace {

/// At once through our own memory, when nothing better is to be had.
constexpr std::size_t bufferBytes = std::size_t{256} << 10;

/// Small files are not worth asking for anything better.
constexpr off_t smallFile = 64 << 10;

/// A file that grows while it is copied is followed so often, not for ever.
constexpr int mostExtensions = 16;

/// As much as one call is asked to move; the kernel stops a little below 2 GiB anyway.
constexpr std::size_t mostAtOnce = std::size_t{1} << 30;

enum class Means { copyFileRange, sendfile, buffer };

/// What says that the kernel cannot do it this way, rather than that it cannot be done.
bool isRefusal(int error) noexcept {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM ||
           error == ETXTBSY || error == EBADF || error == EOVERFLOW;
}

/// Where a write would raise a signal; the calls that move data in the kernel do so too.
off_t fileSizeLimit() noexcept {
    rlimit limit{};
    const bool isLimited = ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
                           limit.rlim_cur < static_cast<rlim_t>(INT64_MAX);
    return isLimited ? static_cast<off_t>(limit.rlim_cur) : INT64_MAX;
}

/// Copies stretches of one file to the same places of another.
class DataCopy {
public:
    DataCopy(int source, int destination) noexcept
        : source_(source), destination_(destination), limit_(fileSizeLimit()) {}

    bool run() {
        struct stat information;
        if (::fstat(source_, &information) != 0) {
            return false;
        }
        if (information.st_size <= smallFile) {
            means_ = Means::buffer;
            return copyThroughBuffer(0, INT64_MAX);
        }
        if (information.st_size <= limit_ && ::ioctl(destination_, FICLONE, source_) == 0) {
            return true;
        }
        off_t done = 0;
        for (int extension = 0; done < information.st_size && extension < mostExtensions; ++extension) {
            if (!copySegments(done, information.st_size)) {
                return false;
            }
            done = information.st_size;
            if (::fstat(source_, &information) != 0) {
                return false;
            }
        }
        return true;
    }

private:
    /// Copies what is data from `start` to `end`; the holes between are only made as long.
    bool copySegments(off_t start, off_t end) {
        while (start < end) {
            off_t data = ::lseek(source_, start, SEEK_DATA);
            if (data < 0 && errno == ENXIO) {
                break; // a hole up to the end
            }
            off_t hole = data < 0 ? end : ::lseek(source_, data, SEEK_HOLE);
            data = data < 0 ? start : data; // the file system does not tell
            hole = hole < 0 ? end : std::min(hole, end);
            if (data >= end) {
                break;
            }
            if (!copyStretch(data, hole)) {
                return false;
            }
            start = hole;
        }
        return makeAsLong(end);
    }

    bool makeAsLong(off_t end) noexcept {
        struct stat written;
        struct stat source;
        if (::fstat(destination_, &written) != 0 || ::fstat(source_, &source) != 0) {
            return false;
        }
        end = std::min(end, source.st_size); // it may have shrunk
        if (written.st_size >= end) {
            return true;
        }
        if (end > limit_) {
            errno = EFBIG;
            return false;
        }
        return ::ftruncate(destination_, end) == 0;
    }

    bool copyStretch(off_t start, off_t end) {
        while (start < end && means_ != Means::buffer) {
            const ssize_t moved = moveInKernel(start, end);
            if (moved > 0) {
                start += moved;
            } else if (moved == 0) {
                return copyThroughBuffer(start,
                                         end); // shorter than it was, or the kernel does not know how long
            } else if (errno != EINTR) {
                if (!isRefusal(errno)) {
                    return false;
                }
                means_ = means_ == Means::copyFileRange ? Means::sendfile : Means::buffer;
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
        if (means_ == Means::copyFileRange) {
            off_t from = start;
            off_t to = start;
            return ::copy_file_range(source_, &from, destination_, &to, count, 0);
        }
        off_t from = start;
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
            const ssize_t count = ::pread(source_, buffer_.get(), wanted, start);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0 || (count > 0 && !writeAll(buffer_.get(), count, start))) {
                return false;
            }
            if (count == 0) {
                return true;
            }
            start += count;
        }
        return true;
    }

    bool writeAll(const char* bytes, ssize_t count, off_t at) noexcept {
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
    Means means_ = Means::copyFileRange;
    std::unique_ptr<char[]> buffer_;
};

bool beginsWith(const char* text, const char* start) noexcept {
    return std::strncmp(text, start, std::strlen(start)) == 0;
}

/// The list of names, each ended by NUL. False with `errno`.
bool readNames(int source, std::string& names) {
    for (;;) {
        const ssize_t needed = ::flistxattr(source, nullptr, 0);
        if (needed <= 0) {
            names.clear();
            return needed == 0 || errno == ENOTSUP || errno == ENOSYS;
        }
        names.resize(static_cast<std::size_t>(needed));
        const ssize_t count = ::flistxattr(source, names.data(), names.size());
        if (count >= 0) {
            names.resize(static_cast<std::size_t>(count));
            return true;
        }
        if (errno != ERANGE) {
            return false;
        }
    }
}

/// False with `errno`.
bool readValue(int source, const char* name, std::string& value) {
    for (;;) {
        const ssize_t needed = ::fgetxattr(source, name, nullptr, 0);
        if (needed < 0) {
            return false;
        }
        value.resize(static_cast<std::size_t>(needed) + 1); // a length of 0 would only ask again
        const ssize_t count = ::fgetxattr(source, name, value.data(), value.size());
        if (count >= 0) {
            value.resize(static_cast<std::size_t>(count));
            return true;
        }
        if (errno != ERANGE) {
            return false;
        }
    }
}

bool isAccessList(const char* name) noexcept { return beginsWith(name, "system.posix_acl_"); }

/// Whether an attribute that could not be given may be left out.
bool mayBeLeftOut(const char* name, int error) noexcept {
    if (error == ENOTSUP || error == ENODATA) {
        return true; // no place for it there, or it has just been removed
    }
    return !beginsWith(name, "user.") && !isAccessList(name) &&
           (error == EPERM || error == EACCES || error == EINVAL);
}

} // namespace

bool copyFileData(int source, int destination) noexcept {
    try {
        return DataCopy(source, destination).run();
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

AttributesCopied copyExtendedAttributes(int source, int destination) noexcept {
    try {
        std::string names;
        std::string value;
        AttributesCopied result = AttributesCopied::all;
        if (!readNames(source, names)) {
            return AttributesCopied::failed;
        }
        for (std::size_t at = 0; at < names.size(); at += std::strlen(names.c_str() + at) + 1) {
            const char* const name = names.c_str() + at;
            if (readValue(source, name, value) &&
                ::fsetxattr(destination, name, value.data(), value.size(), 0) == 0) {
                continue;
            }
            if (!mayBeLeftOut(name, errno)) {
                return AttributesCopied::failed;
            }
            result = isAccessList(name) ? AttributesCopied::withoutAccessList : result;
        }
        return result;
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return AttributesCopied::failed;
    }
}

} // namespace ZQFoundation::detail::system
