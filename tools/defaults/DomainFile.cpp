// SPDX-License-Identifier: MIT
#include "tools/defaults/DomainFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <sys/file.h>

#include "foundation/files/FileError.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/Descriptor.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/LinkReading.h"
#include "tools/defaults/Failure.h"

namespace ZQFoundation::defaults {

using detail::Descriptor;

namespace {

/// In front of a number; only a writer that was killed leaves such a file behind.
constexpr const char* temporaryStart = ".defaults.new-";

/// Stays where it is once made: whoever removed it might remove the one that another writer has just locked.
constexpr const char* lockName = ".defaults.lock";

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

std::size_t startOfName(const std::string& path) noexcept {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

/// The file that a link leads to, there or not, else the path itself.
std::string withoutLinks(const std::string& path) {
    std::string current = path;
    for (int links = 0; links < detail::mostLinks; ++links) {
        std::string target;
        if (detail::readLink(AT_FDCWD, current.c_str(), target) != detail::LinkResult::link) {
            return current;
        }
        const bool isAbsolute = !target.empty() && target[0] == '/';
        current = isAbsolute ? target : current.substr(0, startOfName(current)) + target;
    }
    failWith(path, ELOOP);
}

/// What writers do while another one has the lock.
class Waiting {
public:
    void wait(const std::string& folder) {
        if (attempt_++ == patience && ::isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "defaults: waiting for another writer in %s\n", onOneLine(folder).c_str());
        }
        const timespec shortly{0, 20'000'000};
        ::nanosleep(&shortly, nullptr);
    }

private:
    static constexpr int patience = 150; // times 20 ms
    int attempt_ = 0;
};

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
    const std::size_t start = startOfName(path_);
    name_ = path_.substr(start);
    folderPath_ = start == 0 ? "." : path_.substr(0, start == 1 ? 1 : start - 1);
    openFolder(domain.isNamed && path_ == domain.path); // where a link leads, nothing is made
    lockFolder();
    removeLeftovers();
}

void LockedFile::openFolder(bool isNamed) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    folder_ = Descriptor(detail::openAt(AT_FDCWD, folderPath_.c_str(), flags));
    if (!folder_ && errno == ENOENT && isNamed) {
        makeFolder(folderPath_);
        folder_ = Descriptor(detail::openAt(AT_FDCWD, folderPath_.c_str(), flags));
    }
    if (!folder_) {
        failWith(folderPath_, errno);
    }
}

/// The folder is what stays when files are replaced, so it bears the lock. Network file systems lock only
/// what is open for writing, which no folder can be.
void LockedFile::lockFolder() {
    Waiting waiting;
    while (::flock(folder_.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            lockFileInFolder();
            return;
        }
        waiting.wait(folderPath_);
    }
}

void LockedFile::lockFileInFolder() {
    lockFile_ = Descriptor(detail::openAt(folder_.number(), lockName,
                                          O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    Waiting waiting;
    while (!lockFile_ || ::fcntl(lockFile_.number(), F_SETLK, &whole) != 0) {
        if (!lockFile_ || (errno != EAGAIN && errno != EACCES && errno != EINTR)) {
            failWith(folderPath_ + "/" + lockName, errno);
        }
        waiting.wait(folderPath_);
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
            ::unlinkat(folder_.number(), leftover.c_str(), 0);
        }
    }
}

NSDictionary LockedFile::read() const { return dictionaryInFile(folder_.number(), name_, path_); }

/// Those of the file that is to be replaced, as far as they may be given. Members of another group than
/// before must not come by what the old group was permitted.
void LockedFile::keepOwnerAndPermissions(int file, const std::string& path) const {
    struct stat before;
    if (::fstatat(folder_.number(), name_.c_str(), &before, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    if (!S_ISREG(before.st_mode)) {
        fail("%@ is no regular file", path_);
    }
    // The owner first, for a change of it takes permissions away.
    if (::fchown(file, before.st_uid, before.st_gid) != 0 &&
        ::fchown(file, static_cast<uid_t>(-1), before.st_gid) != 0) {
        before.st_mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    if (::fchmod(file, before.st_mode & 0777) != 0) {
        failWith(path, errno);
    }
}

void LockedFile::writeTemporary(const std::string& temporary, const std::string& bytes) const {
    const std::string path = folderPath_ + "/" + temporary;
    Descriptor file(detail::openAt(folder_.number(), temporary.c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file) {
        failWith(path, errno);
    }
    writeAll(file.number(), bytes, path);
    keepOwnerAndPermissions(file.number(), path);
    if (::fsync(file.number()) != 0 || ::close(file.release()) != 0) {
        failWith(path, errno);
    }
}

void LockedFile::replace(const NSDictionary& dictionary) const {
    const std::string bytes = xmlOf(dictionary);
    if (bytes.size() > static_cast<std::size_t>(detail::largestFile)) {
        fail("%@ would be larger than %ld bytes", path_, detail::largestFile);
    }
    std::string temporary = temporaryStart;
    temporary.append(std::to_string(detail::system::freshRandomNumber()));
    const SignalsPutOff signals;
    try {
        writeTemporary(temporary, bytes);
        if (::renameat(folder_.number(), temporary.c_str(), folder_.number(), name_.c_str()) != 0) {
            failWith(path_, errno);
        }
    } catch (...) {
        ::unlinkat(folder_.number(), temporary.c_str(), 0);
        throw;
    }
    ::fsync(folder_.number()); // the file is in its place whatever this says
}

void LockedFile::remove() const {
    if (::unlinkat(folder_.number(), name_.c_str(), 0) != 0) {
        failWith(path_, errno);
    }
    ::fsync(folder_.number());
}

} // namespace details

NSDictionary readDomain(const Domain& domain) { return dictionaryInFile(AT_FDCWD, domain.path, domain.path); }

NSDictionary readDictionary(const std::string& path) {
    if (path == "-") {
        const Descriptor input(::dup(STDIN_FILENO));
        return dictionaryFromBytes(readBytes(input, "standard input"), "standard input");
    }
    const Descriptor file(detail::openAt(AT_FDCWD, path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) {
        failWith(path, errno);
    }
    return dictionaryFromBytes(readBytes(file, path), path);
}

void removeDomain(const Domain& domain) {
    const details::LockedFile file(domain);
    if (!file.read()) {
        fail("there is no domain %@", domain.name);
    }
    file.remove();
}

void writeDictionary(const NSDictionary& dictionary, const std::string& path) {
    if (path == "-") {
        writeAll(STDOUT_FILENO, xmlOf(dictionary), "standard output");
        return;
    }
    struct stat information;
    if (::stat(path.c_str(), &information) != 0 || S_ISREG(information.st_mode)) {
        const details::LockedFile file({path, path, false});
        file.replace(dictionary);
        return;
    }
    // A pipe or a device is not to be replaced by a file; a folder refuses by itself.
    const Descriptor file(detail::openAt(AT_FDCWD, path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) {
        failWith(path, errno);
    }
    writeAll(file.number(), xmlOf(dictionary), path);
}

} // namespace ZQFoundation::defaults
