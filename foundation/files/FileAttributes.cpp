// SPDX-License-Identifier: MIT
// The attribute dictionaries of files and folders, and what can be applied from one.
// Attributes are applied as far as possible: the new file exists whether or not the system allows all of
// them.
#include <cerrno>
#include <cmath>
#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include "foundation/files/AppliedAttributes.h"
#include "foundation/files/FileError.h"
#include "foundation/files/FileInformation.h"
#include "foundation/files/FileTimes.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/files/PathHandle.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/FileSystem.h"
#include "foundation/system/Published.h"

namespace ZQFoundation::detail {

namespace {

/// Seconds from 1970 to 2001.
constexpr std::int64_t referenceInstant = 978307200;
/// A record longer than that is not one that the system's own tools could use.
constexpr std::size_t maxAccountRecordBytes = std::size_t{1} << 20;

/// Long enough for the items of one folder, short enough for a renamed account.
constexpr time_t secondsToKeepName = 5;

/// The name of one account or group, and when it was looked up.
struct KnownName {
    std::uint64_t number;
    time_t asked;
    NSString name; ///< nil: there is none
};

// Items of one folder usually belong to the same user, and each lookup reads the whole user database.
// A race only costs one more lookup.
constinit Published<KnownName> knownUser;
constinit Published<KnownName> knownGroup;

NSDate dateOf(const timespec& time) noexcept {
    // The whole seconds are exact, so one rounding remains.
    const auto seconds = static_cast<double>(static_cast<std::int64_t>(time.tv_sec) - referenceInstant);
    return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds + static_cast<double>(time.tv_nsec) / 1e9);
}

/// `ask(record, buffer, size, found)` is one of the system's lookups by number.
template <class Record, class Ask>
bool findRecord(Record& record, std::vector<char>& buffer, const Ask& ask) {
    buffer.resize(1024);
    Record* found = nullptr;
    int error = 0;
    // The size that the system suggests is only a hint, so the buffer grows until the record fits.
    while ((error = ask(&record, buffer.data(), buffer.size(), &found)) == EINTR ||
           (error == ERANGE && buffer.size() < maxAccountRecordBytes)) {
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
        }
    }
    return error == 0 && found != nullptr;
}

// Account names may be any bytes, like file names.
NSString nameFromBytes(const char* name) {
    return NSString::stringWithFileSystemBytes(name, std::char_traits<char>::length(name));
}

NSString userName(uid_t user) {
    passwd record{};
    std::vector<char> buffer;
    const bool found =
        findRecord(record, buffer, [=](auto* into, char* bytes, std::size_t size, auto** result) {
            return ::getpwuid_r(user, into, bytes, size, result);
        });
    return found ? nameFromBytes(record.pw_name) : NSString();
}

NSString groupName(gid_t number) {
    group record{};
    std::vector<char> buffer;
    const bool found =
        findRecord(record, buffer, [=](auto* into, char* bytes, std::size_t size, auto** result) {
            return ::getgrgid_r(number, into, bytes, size, result);
        });
    return found ? nameFromBytes(record.gr_name) : NSString();
}

template <class Number>
NSString keptName(Published<KnownName>& known, Number number, NSString (*ask)(Number)) {
    // A clock that is never set back, so that a name cannot be kept for years by accident.
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    NSString name;
    const bool isKnown = known.read([&](const KnownName* last) {
        const bool same =
            last != nullptr && last->number == number && now.tv_sec - last->asked < secondsToKeepName;
        name = same ? last->name : NSString();
        return same;
    });
    // Outside the lock: a lookup may take long.
    if (!isKnown) {
        name = ask(number);
        known.replace(new KnownName{number, now.tv_sec, name});
    }
    return name;
}

// Pipes have no type of their own among the platform's names.
const char* typeOf(mode_t mode) noexcept {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return NSFileTypeRegular;
    case S_IFDIR:
        return NSFileTypeDirectory;
    case S_IFLNK:
        return NSFileTypeSymbolicLink;
    case S_IFSOCK:
        return NSFileTypeSocket;
    case S_IFCHR:
        return NSFileTypeCharacterSpecial;
    case S_IFBLK:
        return NSFileTypeBlockSpecial;
    default:
        return NSFileTypeUnknown;
    }
}

// A dictionary cannot hold nil: an account without a name has no entry.
void putUnlessNil(NSMutableDictionary& attributes, const char* key, const NSString& value) {
    if (value) {
        attributes.setObject_forKey(value, key);
    }
}

NSDictionary attributesOf(const struct stat& information, const timespec* created) {
    NSMutableDictionary attributes;
    attributes.setObject_forKey(typeOf(information.st_mode), NSFileType);
    attributes.setObject_forKey(information.st_size, NSFileSize);
    attributes.setObject_forKey(modificationDateOf(information), NSFileModificationDate);
    if (created != nullptr) {
        attributes.setObject_forKey(dateOf(*created), NSFileCreationDate);
    }
    attributes.setObject_forKey(information.st_mode & 07777, NSFilePosixPermissions);
    attributes.setObject_forKey(information.st_nlink, NSFileReferenceCount);
    attributes.setObject_forKey(information.st_uid, NSFileOwnerAccountID);
    putUnlessNil(attributes, NSFileOwnerAccountName, keptName(knownUser, information.st_uid, userName));
    attributes.setObject_forKey(information.st_gid, NSFileGroupOwnerAccountID);
    putUnlessNil(attributes, NSFileGroupOwnerAccountName,
                 keptName(knownGroup, information.st_gid, groupName));
    attributes.setObject_forKey(information.st_dev, NSFileSystemNumber);
    attributes.setObject_forKey(information.st_ino, NSFileSystemFileNumber);
    return attributes.dictionary();
}

void applyOwners(int descriptor, const NSDictionary& attributes) noexcept {
    // One at a time: a user may give a file to another group, but not away.
    if (const NSNumber group{attributes.objectForKey(NSFileGroupOwnerAccountID)}) {
        // The result is ignored on purpose; the negation only satisfies a compiler that insists on its use.
        static_cast<void>(
            !::fchown(descriptor, static_cast<uid_t>(-1), static_cast<gid_t>(group.unsignedIntValue())));
    }
    if (const NSNumber user{attributes.objectForKey(NSFileOwnerAccountID)}) {
        static_cast<void>(
            !::fchown(descriptor, static_cast<uid_t>(user.unsignedIntValue()), static_cast<gid_t>(-1)));
    }
}

void applyModificationDate(int descriptor, const NSDate& date) noexcept {
    const double instant = date.timeIntervalSinceReferenceDate();
    const double whole = std::floor(instant);
    // About as many seconds as any file system stores, and far from overflow.
    // Also false for NaN.
    if (!(std::fabs(whole) < 1e15)) {
        return;
    }
    timespec times[2] = {};
    times[0].tv_nsec = UTIME_OMIT;
    times[1].tv_sec = static_cast<time_t>(static_cast<std::int64_t>(whole) + referenceInstant);
    times[1].tv_nsec = std::lround((instant - whole) * 1e9);
    // Rounding may give a whole second.
    if (times[1].tv_nsec == 1'000'000'000) {
        times[1].tv_nsec = 0;
        ++times[1].tv_sec;
    }
    ::futimens(descriptor, times);
}

} // namespace

NSDate modificationDateOf(const struct stat& information) noexcept {
    return dateOf(modificationTime(information));
}

bool getPermissions(const NSDictionary& attributes, mode_t& permissions) {
    const NSNumber number(attributes.objectForKey(NSFilePosixPermissions));
    if (number) {
        // Bits of the kind would be refused or misread by some systems.
        permissions = static_cast<mode_t>(number.unsignedIntValue() & 07777);
    }
    return static_cast<bool>(number);
}

void applyAttributes(int descriptor, const NSDictionary& attributes) {
    applyOwners(descriptor, attributes);
    mode_t permissions = 0;
    if (getPermissions(attributes, permissions)) { // after the owners, whose change clears bits
        ::fchmod(descriptor, permissions);
    }
    if (const NSDate date{attributes.objectForKey(NSFileModificationDate)}) {
        applyModificationDate(descriptor, date);
    }
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSDictionary NSFileManager::attributesOfItemAtPath_error(StringView path, NSString* errorText) const {
    const detail::CallerState caller;
    std::string bytes;
    detail::PathHandle handle;
    struct stat information;
    if (!detail::getPathBytes(path, bytes) || !handle.reach(bytes) ||
        ::fstatat(handle.folder(), handle.name(), &information, AT_SYMLINK_NOFOLLOW) != 0) {
        detail::reportError(errorText, path, errno);
        return nullptr;
    }
    // Not all file systems store it; without it, the key is missing.
    timespec created{};
    const bool isKnown = detail::system::getCreationTime(handle.folder(), handle.name(), created);
    const NSDictionary attributes = detail::attributesOf(information, isKnown ? &created : nullptr);
    detail::clearError(errorText);
    return attributes;
}

} // namespace ZQFoundation
