// SPDX-License-Identifier: MIT
#include "tools/defaults/LockedFile.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/FolderNames.h"
#include "tools/defaults/Failure.h"
#include "tools/defaults/Files.h"
#include "tools/defaults/Text.h"
#include "tools/defaults/XmlText.h"

namespace ZQFoundation::defaults {

using detail::Descriptor;

namespace {

/// In front of a number; only a writer that was killed leaves such a file.
constexpr const char* temporaryStart = ".defaults.new-";

/// Stays where it is once made: whoever removed it might remove the one that another writer has just locked.
constexpr const char* lockName = ".defaults.lock";

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

/// What writers do while another one has the lock. A writer is done in milliseconds, so who keeps it for long
/// does not mean to give it back.
class Waiting {
public:
    explicit Waiting(const std::string& path) : path_(path) {}

    void wait() {
        if (attempt_ == seconds(3) && ::isatty(STDERR_FILENO) == 1) {
            std::fprintf(stderr, "defaults: waiting for another writer of %s\n", onOneLine(path_).c_str());
        }
        if (attempt_++ == seconds(limit)) {
            fail("%@ cannot be changed: another program has kept its folder locked for %d seconds", path_,
                 limit);
        }
        const timespec shortly{0, pauseInMilliseconds * 1'000'000};
        ::nanosleep(&shortly, nullptr);
    }

private:
    static constexpr int limit = 10;
    static constexpr int pauseInMilliseconds = 20;
    static constexpr int seconds(int number) noexcept { return number * 1000 / pauseInMilliseconds; }

    const std::string& path_;
    int attempt_ = 0;
};

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
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

LockedFile::LockedFile(const Domain& domain) : path_(domain.path) {
    openFolder(domain.isNamed);
    lockFolder();
    look();
    removeLeftovers();
}

void LockedFile::openFolder(bool isNamed) {
    bool isReached = detail::reachGuarded(path_, place_);
    if (!isReached && errno == ENOENT && isNamed) {
        makeFolder(folderOf(path_)); // this one; where a link leads nothing is made
        isReached = detail::reachGuarded(path_, place_);
    }
    if (isReached) {
        folder_ = Descriptor(detail::openAt(place_.folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    if (!folder_) {
        failWith(path_, errno);
    }
}

/// The folder is what stays when files are replaced, so it bears the lock. Network file systems lock only
/// what is open for writing, which no folder can be.
void LockedFile::lockFolder() {
    Waiting waiting(path_);
    while (::flock(folder_.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            lockFileInFolder();
            return;
        }
        waiting.wait();
    }
}

void LockedFile::lockFileInFolder() {
    lockFile_ = Descriptor(detail::openAt(folder_.number(), lockName,
                                          O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    Waiting waiting(path_);
    while (!lockFile_ || ::fcntl(lockFile_.number(), F_SETLK, &whole) != 0) {
        if (!lockFile_ || (errno != EAGAIN && errno != EACCES && errno != EINTR)) {
            failWith(folderOf(path_) + "/" + lockName, errno);
        }
        waiting.wait();
    }
}

/// Under the lock, so that what is seen is what will be replaced.
void LockedFile::look() {
    struct stat folder;
    exists_ = ::fstatat(folder_.number(), place_.name.c_str(), &before_, AT_SYMLINK_NOFOLLOW) == 0;
    if ((!exists_ && errno != ENOENT) || ::fstat(folder_.number(), &folder) != 0) {
        failWith(path_, errno);
    }
    if (!exists_) {
        return;
    }
    if (!detail::mayWriteItem(before_, folder)) {
        failWith(path_, EACCES);
    }
    if (!S_ISREG(before_.st_mode)) {
        fail("%@ is no regular file", path_);
    }
}

/// Under the lock nobody else is writing, so what looks like a temporary file was left by a writer that was
/// killed.
void LockedFile::removeLeftovers() const {
    detail::FolderNames names;
    if (!names.read(folder_.number())) {
        return;
    }
    while (!names.isAtEnd()) {
        const char* const name = names.next().name;
        if (std::strncmp(name, temporaryStart, std::strlen(temporaryStart)) == 0) {
            ::unlinkat(folder_.number(), name, 0);
        }
    }
}

NSDictionary LockedFile::read() const { return dictionaryAt(place_, path_); }

/// Those of the file that is to be replaced, as far as they may be given. Members of another group than
/// before must not come by what the old group was permitted.
void LockedFile::keepOwnerAndPermissions(int file) const {
    if (!exists_) {
        return;
    }
    mode_t mode = before_.st_mode & 0777;
    // The owner first, for a change of it takes permissions away.
    if (::fchown(file, before_.st_uid, before_.st_gid) != 0 &&
        ::fchown(file, static_cast<uid_t>(-1), before_.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    if (::fchmod(file, mode) != 0) {
        failWith(path_, errno);
    }
}

void LockedFile::writeTemporary(const std::string& temporary, const std::string& bytes) const {
    Descriptor file(detail::openAt(folder_.number(), temporary.c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    const std::string path = folderOf(path_) + "/" + temporary;
    if (!file) {
        failWith(path, errno);
    }
    writeAll(file.number(), bytes, path);
    keepOwnerAndPermissions(file.number());
    if (::fsync(file.number()) != 0 || ::close(file.release()) != 0) {
        failWith(path, errno);
    }
}

void LockedFile::replace(const NSDictionary& dictionary) const {
    const std::string bytes = xmlOf(dictionary);
    if (bytes.size() > static_cast<std::size_t>(detail::maxFileBytes)) {
        fail("%@ would be larger than %ld bytes", path_, detail::maxFileBytes);
    }
    std::string temporary = temporaryStart;
    temporary.append(std::to_string(detail::system::freshRandomNumber()));
    const SignalsPutOff signals;
    try {
        writeTemporary(temporary, bytes);
        if (::renameat(folder_.number(), temporary.c_str(), folder_.number(), place_.name.c_str()) != 0) {
            failWith(path_, errno);
        }
    } catch (...) {
        ::unlinkat(folder_.number(), temporary.c_str(), 0);
        throw;
    }
    ::fsync(folder_.number()); // the file is in its place whatever this says
}

void LockedFile::remove() const {
    if (::unlinkat(folder_.number(), place_.name.c_str(), 0) != 0) {
        failWith(path_, errno);
    }
    ::fsync(folder_.number());
}

} // namespace ZQFoundation::defaults
