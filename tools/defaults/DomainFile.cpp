// SPDX-License-Identifier: MIT
#include "tools/defaults/DomainFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <sys/file.h>

#include "foundation/files/Descriptor.h"
#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/FileSystem.h"
#include "tools/defaults/Failure.h"

namespace ZQFoundation::defaults {

using detail::Descriptor;

namespace {

/// In front of a number; only a writer that was killed leaves such a file behind.
constexpr const char* temporaryStart = ".defaults.new-";

[[noreturn]] void failWith(const std::string& path, int error) {
    NSString text;
    detail::tellErrorOfBytes(&text, path, error);
    fail("%@", text);
}

std::string readBytes(const Descriptor& file, const std::string& path) {
    std::string bytes;
    char buffer[1 << 16];
    for (;;) {
        const ssize_t count = ::read(file.number(), buffer, sizeof buffer);
        if (count == 0) {
            return bytes;
        }
        if (count < 0 && errno != EINTR) {
            failWith(path, errno);
        }
        bytes.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        // What the library would not read is not to be written either.
        if (bytes.size() > static_cast<std::size_t>(detail::largestFile)) {
            fail("%@ is larger than %ld bytes", path, detail::largestFile);
        }
    }
}

NSDictionary dictionaryFromBytes(const std::string& bytes, const std::string& path) {
    NSString reason;
    const NSObject value = NSPropertyListSerialization::propertyListWithData(
        NSData::dataWithBytes_length(bytes.data(), bytes.size()), &reason);
    if (!value) {
        fail("%@ is no property list: %@", path, reason);
    }
    const NSDictionary dictionary(value);
    if (!dictionary) {
        fail("%@ holds no dictionary", path);
    }
    return dictionary;
}

/// Nil when there is no file.
NSDictionary dictionaryInFile(int folder, const std::string& name, const std::string& path) {
    // A pipe would keep us waiting.
    const Descriptor file(detail::openAt(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) {
        if (errno == ENOENT) {
            return nullptr;
        }
        failWith(path, errno);
    }
    struct stat information;
    if (::fstat(file.number(), &information) != 0) {
        failWith(path, errno);
    }
    if (!S_ISREG(information.st_mode)) {
        fail("%@ is no regular file", path);
    }
    return dictionaryFromBytes(readBytes(file, path), path);
}

std::string xmlOf(const NSDictionary& dictionary) {
    NSString reason;
    const NSData data = NSPropertyListSerialization::dataWithPropertyList_format(
        dictionary, NSPropertyListXMLFormat_v1_0, &reason);
    if (!data) {
        fail("this cannot be written: %@", reason);
    }
    return std::string(reinterpret_cast<const char*>(data.bytes()), data.length());
}

void writeAll(int file, const std::string& bytes, const std::string& path) {
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno != EINTR) {
            failWith(path, errno);
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

/// Puts off all signals that can be, so that none ends the program between the making of a temporary file and
/// its renaming or removal.
class SignalsPutOff {
public:
    SignalsPutOff() noexcept {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_SETMASK, &all, &before_);
    }
    SignalsPutOff(const SignalsPutOff&) = delete;
    SignalsPutOff& operator=(const SignalsPutOff&) = delete;
    ~SignalsPutOff() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

/// The file that a link leads to, else the path itself.
std::string withoutLinks(const std::string& path) {
    struct stat information;
    if (::lstat(path.c_str(), &information) != 0 || !S_ISLNK(information.st_mode)) {
        return path;
    }
    const NSString resolved =
        NSString::stringWithFileSystemBytes(path.data(), path.size()).stringByResolvingSymlinksInPath();
    std::string target;
    if (!resolved.getFileSystemBytes(target) || ::lstat(target.c_str(), &information) != 0 ||
        S_ISLNK(information.st_mode)) {
        fail("%@ is a link that leads nowhere", path);
    }
    return target;
}

void makeFolder(const std::string& path) {
    NSString reason;
    const NSDictionary privately{{NSFilePosixPermissions, 0700}};
    if (!NSFileManager::defaultManager().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
            NSString::stringWithFileSystemBytes(path.data(), path.size()), true, privately, &reason)) {
        fail("%@", reason);
    }
}

} // namespace

namespace details {

LockedFile::LockedFile(const Domain& domain) : path_(withoutLinks(domain.path)) {
    const std::size_t slash = path_.rfind('/');
    folderPath_ = slash == std::string::npos ? "." : path_.substr(0, slash == 0 ? 1 : slash);
    name_ = slash == std::string::npos ? path_ : path_.substr(slash + 1);
    openFolder(domain.isNamed);
    lockFolder();
    removeLeftovers();
}

LockedFile::~LockedFile() { ::close(folder_); }

void LockedFile::openFolder(bool isNamed) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    folder_ = detail::openAt(AT_FDCWD, folderPath_.c_str(), flags);
    if (folder_ < 0 && errno == ENOENT && isNamed) {
        makeFolder(folderPath_);
        folder_ = detail::openAt(AT_FDCWD, folderPath_.c_str(), flags);
    }
    if (folder_ < 0) {
        failWith(folderPath_, errno);
    }
}

/// The folder is what stays when files are replaced, so it bears the lock.
void LockedFile::lockFolder() const {
    constexpr int patience = 150; // times 20 ms
    for (int attempt = 0; ::flock(folder_, LOCK_EX | LOCK_NB) != 0; ++attempt) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            failWith(folderPath_, errno);
        }
        if (attempt == patience && ::isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "defaults: waiting for another writer in %s\n", folderPath_.c_str());
        }
        const timespec shortly{0, 20'000'000};
        ::nanosleep(&shortly, nullptr);
    }
}

/// Under the lock nobody else is writing, so what looks like a temporary file was left by a writer that was
/// killed.
void LockedFile::removeLeftovers() const {
    const NSArray entries = NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(
        NSString::stringWithFileSystemBytes(folderPath_.data(), folderPath_.size()));
    for (const NSObject& entry : entries) {
        std::string leftover;
        if (NSString(entry).hasPrefix(temporaryStart) && NSString(entry).getFileSystemBytes(leftover)) {
            ::unlinkat(folder_, leftover.c_str(), 0);
        }
    }
}

NSDictionary LockedFile::read() const { return dictionaryInFile(folder_, name_, path_); }

void LockedFile::writeTemporary(const std::string& temporary, const std::string& bytes) const {
    const std::string path = folderPath_ + "/" + temporary;
    Descriptor file(detail::openAt(folder_, temporary.c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) {
        failWith(path, errno);
    }
    writeAll(file.number(), bytes, path);
    struct stat old;
    if (::fstatat(folder_, name_.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0) {
        // The owner first, for a change of it takes permissions away. Not everybody may give files away.
        if (::fchown(file.number(), old.st_uid, old.st_gid) != 0 && errno != EPERM) {
            failWith(path, errno);
        }
        if (::fchmod(file.number(), old.st_mode & 0777) != 0) {
            failWith(path, errno);
        }
    }
    if (::fsync(file.number()) != 0 || ::close(file.release()) != 0) {
        failWith(path, errno);
    }
}

void LockedFile::replace(const NSDictionary& dictionary) const {
    const std::string bytes = xmlOf(dictionary);
    std::string temporary = temporaryStart;
    temporary.append(std::to_string(detail::system::freshRandomNumber()));
    const SignalsPutOff signals;
    try {
        writeTemporary(temporary, bytes);
        if (::renameat(folder_, temporary.c_str(), folder_, name_.c_str()) != 0) {
            failWith(path_, errno);
        }
    } catch (const Failure&) {
        ::unlinkat(folder_, temporary.c_str(), 0);
        throw;
    }
    ::fsync(folder_); // the file is in its place whatever this says
}

void LockedFile::remove() const {
    if (::unlinkat(folder_, name_.c_str(), 0) != 0) {
        failWith(path_, errno);
    }
    ::fsync(folder_);
}

} // namespace details

NSDictionary readDomain(const Domain& domain) { return dictionaryInFile(AT_FDCWD, domain.path, domain.path); }

NSDictionary readDictionary(const std::string& path) {
    if (path == "-") {
        const Descriptor input(::dup(STDIN_FILENO));
        return dictionaryFromBytes(readBytes(input, "standard input"), "standard input");
    }
    NSDictionary dictionary = dictionaryInFile(AT_FDCWD, path, path);
    if (!dictionary) {
        failWith(path, ENOENT);
    }
    return dictionary;
}

void removeDomain(const Domain& domain) {
    const details::LockedFile file(domain);
    if (!file.read()) {
        fail("there is no domain %@", domain.name);
    }
    file.remove();
}

void writeDictionary(const NSDictionary& dictionary, const std::string& path) {
    if (path != "-") {
        const details::LockedFile file({path, path, false});
        file.replace(dictionary);
        return;
    }
    const std::string bytes = xmlOf(dictionary);
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
        failWith("standard output", errno);
    }
}

} // namespace ZQFoundation::defaults
