// SPDX-License-Identifier: MIT
// Reads files again only if they changed.
// A stamp is taken from the open file before its contents are read: a change after that shows as a different
// stamp.
#include "foundation/process/FileReading.h"

#include <cerrno>
#include <ctime>
#include <new>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/FileTimes.h"
#include "foundation/plist/PropertyList.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/WholeRead.h"

namespace ZQFoundation::detail {

namespace {

FileStamp stampFrom(const struct stat& information) noexcept {
    FileStamp stamp;
    stamp.device = static_cast<std::uint64_t>(information.st_dev);
    stamp.inode = static_cast<std::uint64_t>(information.st_ino);
    stamp.size = static_cast<std::int64_t>(information.st_size);
    stamp.modifiedSeconds = static_cast<std::int64_t>(modificationTime(information).tv_sec);
    stamp.modifiedNanoseconds = static_cast<std::int64_t>(modificationTime(information).tv_nsec);
    stamp.changedSeconds = static_cast<std::int64_t>(changeTime(information).tv_sec);
    stamp.changedNanoseconds = static_cast<std::int64_t>(changeTime(information).tv_nsec);
    return stamp;
}

int openForReading(const std::string& path) noexcept {
    // Without O_NONBLOCK a pipe that took the file's place would block the caller.
    return openAt(AT_FDCWD, path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
}

/// A file that has just become shorter is read to its end: its next stamp will differ.
/// One that grows is read up to the size of its stamp, for the same reason.
bool readAll(int descriptor, std::string& bytes) noexcept {
    const std::ptrdiff_t count = readWhole(descriptor, bytes.data(), bytes.size());
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return count >= 0;
}

bool getInformation(const std::string& path, struct stat& information) noexcept {
    return !path.empty() && ::stat(path.c_str(), &information) == 0;
}

/// The kind is checked on the open file, since the path may refer to another one by now.
FileResult readBytes(const std::string& path, std::string& bytes, FileStamp& stamp) {
    if (path.empty()) {
        return FileResult::unreadable;
    }
    const Descriptor file(openForReading(path));
    if (!file) {
        return isPassing(errno) ? FileResult::exhausted : FileResult::unreadable;
    }
    struct stat information;
    if (::fstat(file.number(), &information) != 0 || !S_ISREG(information.st_mode)) {
        return FileResult::unreadable;
    }
    stamp = stampFrom(information);
    if (stamp.size > maxFileBytes) {
        return FileResult::unreadable;
    }
    // Files that the kernel generates report no size, and count as empty here.
    bytes.resize(static_cast<std::size_t>(stamp.size));
    return readAll(file.number(), bytes) ? FileResult::read : FileResult::unreadable;
}

} // namespace

bool isPassing(int error) noexcept {
    return error == EMFILE || error == ENFILE || error == ENOMEM || error == EAGAIN;
}

bool stampOfFile(const std::string& path, FileStamp& stamp) noexcept {
    struct stat information;
    if (!getInformation(path, information) || !S_ISREG(information.st_mode)) {
        return false;
    }
    stamp = stampFrom(information);
    return true;
}

bool isFresh(const FileStamp& stamp) noexcept {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    // File times advance in steps: usually some milliseconds, two seconds where no fractions are stored.
    const std::int64_t window = stamp.changedNanoseconds == 0 ? 2'100'000'000 : 100'000'000;
    const std::int64_t seconds = static_cast<std::int64_t>(now.tv_sec) - stamp.changedSeconds;
    // The clock or the file's time is off, or the file is old: then no wait would help, and the stamp is
    // trusted.
    if (seconds < -3 || seconds > 3) {
        return false;
    }
    const std::int64_t age = seconds * 1'000'000'000 + now.tv_nsec - stamp.changedNanoseconds;
    return age < window;
}

FileResult readStampedFile(const std::string& path, FileParser parse, NSDictionary& values,
                           FileStamp& stamp) {
    values = nullptr;
    try {
        std::string bytes;
        const FileResult result = readBytes(path, bytes, stamp);
        if (result == FileResult::read) {
            values = parse(bytes);
        }
        return result;
    } catch (const std::bad_alloc&) {
        // Usually called by a log call: the host must not get an exception.
        return FileResult::exhausted;
    }
}

bool fileExists(const std::string& path) noexcept {
    struct stat information;
    return getInformation(path, information);
}

bool isFolder(const std::string& path) noexcept {
    struct stat information;
    return getInformation(path, information) && S_ISDIR(information.st_mode);
}

// Anything but a dictionary is empty rather than nil, so that it is not read again and again.
NSDictionary dictionaryFromBytes(const std::string& bytes) {
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
    const NSDictionary dictionary(parsePropertyListBytes(start, bytes.size(), nullptr));
    return dictionary ? dictionary : NSDictionary::dictionary();
}

NSDictionary stringTableFromBytes(const std::string& bytes) {
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
    const NSDictionary table = parseStringsFileBytes(start, bytes.size(), nullptr);
    return table ? table : NSDictionary::dictionary();
}

// A slash would lead out of the folder that the name is meant for.
bool getFileName(const NSString& text, std::string& name) {
    std::string bytes;
    if (!text.getFileSystemBytes(bytes) || bytes.empty() || bytes.find('/') != std::string::npos) {
        return false;
    }
    name.swap(bytes);
    return true;
}

} // namespace ZQFoundation::detail
