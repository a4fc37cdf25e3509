// SPDX-License-Identifier: MIT
// Opens, locks and replaces files that several processes share.
// Writers exclude each other by a lock, and readers never see a partial file: each change is a new file that
// is renamed into place.
#include "foundation/process/LockedFile.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/files/StickyFolder.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/plist/XmlText.h"
#include "foundation/process/DictionaryFile.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/FolderNames.h"
#include "foundation/system/HeldItem.h"
#include "foundation/system/OpenFolders.h"
#include "foundation/system/System.h"
#include "foundation/system/WholeWrite.h"

namespace ZQFoundation::detail {

namespace {

/// Followed by a number; only a writer that was killed leaves such a file.
/// In the folder of the file, because renaming works only within a file system.
constexpr const char* temporaryStart = ".defaults.new-";

/// Somebody who keeps replacing the folder must not keep us busy forever.
constexpr int maxAttempts = 4;

/// Never removed once made: removing it might remove the one that another writer has just locked.
constexpr const char* lockName = ".defaults.lock";

/// Blocks all signals of this thread that can be blocked, so that none ends a program between the creation of
/// a temporary file and its renaming or removal.
class SignalsPutOff {
public:
    SignalsPutOff() noexcept {
        // The signals are pending meanwhile and arrive when the scope ends.
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsPutOff(const SignalsPutOff&) = delete;
    SignalsPutOff& operator=(const SignalsPutOff&) = delete;
    ~SignalsPutOff() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

class Waiting {
public:
    Waiting(const LockWaiting& waiting, const std::string& path) noexcept : waiting_(waiting), path_(path) {}

    bool wait(NSString* error) {
        // Once, since the time waited advances in steps of exactly the pause.
        if (waited_ == 3000 && waiting_.notice != nullptr) {
            waiting_.notice(path_);
        }
        if (waited_ >= waiting_.milliseconds) {
            return refuse(error,
                          "%@ cannot be changed: another program has kept its folder locked for %g seconds",
                          path_, waiting_.milliseconds / 1000.0);
        }
        // No blocking call: a host must not hang because another program does.
        waited_ += pauseInMilliseconds;
        system::pauseFor(pauseInMilliseconds * 1'000'000);
        return true;
    }

private:
    static constexpr int pauseInMilliseconds = 20;

    const LockWaiting& waiting_;
    const std::string& path_;
    int waited_ = 0;
};

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

bool makeFolder(const std::string& path, NSString* error) {
    // Settings may contain anything, so nobody else may look into a folder that is made for them.
    const NSDictionary privately{{NSFilePosixPermissions, 0700}};
    return NSFileManager::defaultManager().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
        NSString::stringWithFileSystemBytes(path.data(), path.size()), true, privately, error);
}

} // namespace

LockedFile::~LockedFile() { closeFolder(); }

/// A child that was forked meanwhile also has the open folder, and would keep the lock.
/// Closing alone would not do: the lock belongs to the open folder, which the child shares.
void LockedFile::closeFolder() noexcept {
    if (isFolderLocked_) {
        ::flock(folder_.number(), LOCK_UN);
    }
    isFolderLocked_ = false;
    lockFile_.reset();
    folder_.reset();
}

bool LockedFile::open(const std::string& path, Folder folder, const LockWaiting& waiting, NSString* error) {
    path_ = path;
    int attempts = 0;
    do {
        closeFolder();
        if (!openFolder(folder, error) || !lockFolder(waiting, error)) {
            return false;
        }
    } while (!isFolderInPlace() && ++attempts < maxAttempts);
    if (!look(error)) {
        return false;
    }
    // Only after the file was found to be one that may be changed.
    removeLeftovers();
    return true;
}

bool LockedFile::openFolder(Folder folder, NSString* error) {
    bool isReached = reachGuarded(path_, place_);
    if (!isReached && errno == ENOENT && folder == Folder::make) {
        if (!makeFolder(folderOf(path_), error)) { // this one; nothing is made at the target of a link
            return false;
        }
        isReached = reachGuarded(path_, place_);
    }
    if (isReached) {
        // A second opening: the first allows search only, and a lock and a list need more.
        folder_ = Descriptor(openAt(place_.folder.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    return folder_ ? true : refuseWith(error, path_, errno);
}

/// Whoever had the lock may have moved or replaced the folder: a file in it would not be found at the path.
bool LockedFile::isFolderInPlace() const {
    GuardedPlace now;
    struct stat locked;
    struct stat present;
    return reachGuarded(path_, now) && now.name == place_.name && ::fstat(folder_.number(), &locked) == 0 &&
           ::fstat(now.folder.number(), &present) == 0 && isSameItem(locked, present);
}

/// The folder persists when files are replaced, so the lock is on the folder. Network file systems lock only
/// what is open for writing, which no folder can be.
bool LockedFile::lockFolder(const LockWaiting& waiting, NSString* error) {
    Waiting turn(waiting, path_);
    while (::flock(folder_.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) {
            // The file system refuses, or the lock is not available for folders.
            return lockFileInFolder(waiting, error);
        }
        if (!turn.wait(error)) {
            return false;
        }
    }
    isFolderLocked_ = true;
    return true;
}

// Of a file by its own name, not of the defaults: that one is replaced, and a lock would stay with the old
// file.
bool LockedFile::lockFileInFolder(const LockWaiting& waiting, NSString* error) {
    lockFile_ = Descriptor(
        openAt(folder_.number(), lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600));
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    Waiting turn(waiting, path_);
    while (!lockFile_ || ::fcntl(lockFile_.number(), F_SETLK, &whole) != 0) {
        // Both errors mean that another process has the lock, depending on the system.
        if (!lockFile_ || (errno != EAGAIN && errno != EACCES && errno != EINTR)) {
            return refuseWith(error, folderOf(path_) + "/" + lockName, errno);
        }
        if (!turn.wait(error)) {
            return false;
        }
    }
    return true;
}

/// Called under the lock, so that the file examined is the one that will be replaced.
bool LockedFile::look(NSString* error) {
    struct stat folder;
    exists_ = ::fstatat(folder_.number(), place_.name.c_str(), &before_, AT_SYMLINK_NOFOLLOW) == 0;
    if ((!exists_ && errno != ENOENT) || ::fstat(folder_.number(), &folder) != 0) {
        return refuseWith(error, path_, errno);
    }
    // In a shared folder, somebody else's file under the expected name is not ours to replace.
    if (exists_ && !mayWriteItem(before_, folder)) {
        return refuseWith(error, path_, EACCES);
    }
    return !exists_ || S_ISREG(before_.st_mode) || refuse(error, "%@ is no regular file", path_);
}

/// Under the lock nobody else is writing, so what looks like a temporary file was left by a writer that was
/// killed.
void LockedFile::removeLeftovers() const {
    FolderNames names;
    if (!names.read(folder_.number())) {
        return;
    }
    while (!names.isAtEnd()) {
        const char* const name = names.next().name;
        if (std::strncmp(name, temporaryStart, std::strlen(temporaryStart)) == 0) {
            // Failing to remove it does no harm.
            ::unlinkat(folder_.number(), name, 0);
        }
    }
}

bool LockedFile::read(NSDictionary& values, NSString* error) const {
    return readDictionaryAt(place_, path_, values, error);
}

/// Applies those of the file that is to be replaced, as far as permitted. Members of another group than
/// before must not gain the old group's permissions. False with `errno`.
bool LockedFile::keepOwnerAndPermissions(int file) const noexcept {
    if (!exists_) {
        return true;
    }
    mode_t mode = before_.st_mode & 0777;
    // The owner first, since changing it clears permission bits.
    // A member of several groups may keep the group without being root.
    if (::fchown(file, before_.st_uid, before_.st_gid) != 0 &&
        ::fchown(file, static_cast<uid_t>(-1), before_.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    mode = system::takeAccessList(file, folder_.number(), place_.name.c_str(), mode);
    return ::fchmod(file, mode) == 0;
}

/// False with `errno`.
/// The data are on disk before the name refers to them: after a crash, the file is the old one or the new
/// one.
bool LockedFile::writeTemporary(const std::string& temporary, const std::string& bytes) const noexcept {
    Descriptor file(openAt(folder_.number(), temporary.c_str(),
                           O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file && writeWhole(file.number(), bytes.data(), bytes.size()) &&
           keepOwnerAndPermissions(file.number()) && ::fsync(file.number()) == 0 &&
           ::close(file.release()) == 0;
}

bool LockedFile::replace(const NSDictionary& dictionary, NSString* error) const {
    std::string bytes;
    if (NSString reason; !getXmlText(dictionary, bytes, &reason)) {
        return refuse(error, "%@: %@", path_, reason);
    }
    if (bytes.size() > static_cast<std::size_t>(maxFileBytes)) {
        // Refused before anything is written, because it could not be read again.
        return refuse(error, "%@ would be larger than %ld bytes", path_, maxFileBytes);
    }
    std::string temporary = temporaryStart;
    temporary.append(std::to_string(system::freshRandomNumber()));
    // From here until the new file has its name or is gone.
    const SignalsPutOff signals;
    if (!writeTemporary(temporary, bytes) ||
        ::renameat(folder_.number(), temporary.c_str(), folder_.number(), place_.name.c_str()) != 0) {
        // The removal below may change it.
        const int number = errno;
        ::unlinkat(folder_.number(), temporary.c_str(), 0);
        return refuseWith(error, path_, number);
    }
    ::fsync(folder_.number()); // the file is in place whatever this returns
    return true;
}

bool LockedFile::remove(NSString* error) const {
    if (::unlinkat(folder_.number(), place_.name.c_str(), 0) != 0) {
        return refuseWith(error, path_, errno);
    }
    ::fsync(folder_.number());
    return true;
}

} // namespace ZQFoundation::detail
