// SPDX-License-Identifier: MIT
// Opens, reads, locks and replaces files, and converts every failure to a message that names the file.
#include "tools/defaults/DomainFile.h"

#include <cerrno>
#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/StickyFolder.h"
#include "foundation/plist/XmlText.h"
#include "foundation/process/DictionaryFile.h"
#include "tools/common/Program.h"
#include "tools/common/Text.h"

namespace ZQFoundation::tools::defaults {

using detail::Descriptor;
using detail::GuardedPlace;

namespace {

/// Ends the command unless an operation succeeded.
void demand(bool isDone, const NSString& error) {
    if (!isDone) {
        fail("%@", error);
    }
}

/// In the words of the library's own messages: "/a/b: Permission denied".
[[noreturn]] void failWith(const std::string& path, int number) {
    NSString error;
    detail::refuseWith(&error, path, number);
    fail("%@", error);
}

/// Only for a person: a script's standard error stays empty if all goes well.
void sayThatItWaits(const std::string& path) {
    if (::isatty(STDERR_FILENO) == 1) {
        std::fprintf(stderr, "%s: waiting for another writer of %s\n", programName, onOneLine(path).c_str());
    }
}

// Ten seconds: no writer keeps the lock that long unless it hangs.
constexpr detail::LockWaiting waiting{10'000, sayThatItWaits};

/// A value that XML cannot represent ends the command here, before the first byte is written.
std::string xmlOf(const NSDictionary& dictionary) {
    std::string bytes;
    NSString error;
    demand(detail::getXmlText(dictionary, bytes, &error), error);
    return bytes;
}

/// The path is only for messages.
NSDictionary dictionaryFrom(const Descriptor& file, const std::string& path) {
    NSDictionary values;
    NSString error;
    demand(detail::readDictionary(file, path, values, &error), error);
    return values;
}

/// A pipe whose reader is gone ends the program, as usual. A write may be short.
void writeAll(int file, const std::string& bytes, const std::string& path) {
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = ::write(file, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno != EINTR) {
            failWith(path, errno);
        }
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

/// The item itself, not what a link refers to, and its folder: both decide whether it may be written.
bool getInformation(const GuardedPlace& place, struct stat& item, struct stat& folder) noexcept {
    return ::fstat(place.folder.number(), &folder) == 0 &&
           ::fstatat(place.folder.number(), place.name.c_str(), &item, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Opens a pipe, a device or the object that a link in /dev/fd refers to. An item that others have created in
/// a shared folder is not even opened, because they would notice. The item is checked again after opening,
/// because it may have been exchanged.
Descriptor openForWriting(const GuardedPlace& place, const std::string& path) {
    struct stat item;
    struct stat folder;
    if (!getInformation(place, item, folder)) {
        failWith(path, errno);
    }
    if (!place.isObjectLink && !detail::mayWriteItem(item, folder)) {
        failWith(path, EACCES);
    }
    // For a link to an open file, writing continues at the end of the file.
    Descriptor file = detail::openPlace(place, O_WRONLY | (place.isObjectLink ? O_APPEND : 0));
    if (!file || ::fstat(file.number(), &item) != 0) {
        failWith(path, errno);
    }
    if (!place.isObjectLink && !detail::mayWriteItem(item, folder)) {
        failWith(path, EACCES);
    }
    return file;
}

} // namespace

// As in the library, a missing folder on the path means that there is no file.
NSDictionary readDomain(const Domain& domain) {
    GuardedPlace place;
    if (!detail::reachGuarded(domain.path, place)) {
        if (errno == ENOENT) {
            return nullptr;
        }
        failWith(domain.path, errno);
    }
    NSDictionary values;
    NSString error;
    demand(detail::readDictionaryAt(place, domain.path, values, &error), error);
    return values;
}

// If the folder of the named domains is missing, it is created; the folder of a path given by the user is
// not.
LockedDomain::LockedDomain(const Domain& domain) {
    using Folder = detail::LockedFile::Folder;
    NSString error;
    demand(file_.open(domain.path, domain.isNamed ? Folder::make : Folder::demand, waiting, &error), error);
}

NSDictionary LockedDomain::read() const {
    NSDictionary values;
    NSString error;
    demand(file_.read(values, &error), error);
    return values;
}

void LockedDomain::replace(const NSDictionary& dictionary) const {
    NSString error;
    demand(file_.replace(dictionary, &error), error);
}

void LockedDomain::remove() const {
    NSString error;
    demand(file_.remove(&error), error);
}

// The descriptor of standard input is duplicated, because the owner of a descriptor closes it.
NSDictionary readDictionary(const std::string& path) {
    if (path == "-") {
        const Descriptor input(::dup(STDIN_FILENO));
        return dictionaryFrom(input, "standard input");
    }
    GuardedPlace place;
    Descriptor file;
    if (detail::reachGuarded(path, place)) {
        file = detail::openPlace(place, O_RDONLY);
    }
    if (!file) {
        failWith(path, errno);
    }
    return dictionaryFrom(file, path);
}

// Under the lock: another writer may be about to replace the file.
void removeDomain(const Domain& domain) {
    const LockedDomain file(domain);
    if (!file.read()) {
        fail("there is no domain %@", domain.name);
    }
    file.remove();
}

// A regular file is replaced under its lock, as a domain is; the path need not be that of a domain. Anything
// else is written to as it is.
void writeDictionary(const NSDictionary& dictionary, const std::string& path) {
    if (path == "-") {
        writeAll(STDOUT_FILENO, xmlOf(dictionary), "standard output");
        return;
    }
    GuardedPlace place;
    struct stat item;
    struct stat folder;
    if (!detail::reachGuarded(path, place)) {
        failWith(path, errno);
    }
    const bool exists = getInformation(place, item, folder);
    if (!exists && errno != ENOENT) {
        failWith(path, errno);
    }
    if (!exists || S_ISREG(item.st_mode)) {
        const LockedDomain file({path, path, false});
        file.replace(dictionary);
        return;
    }
    // A pipe or a device must not be replaced by a file; for a folder, opening fails.
    const Descriptor file = openForWriting(place, path);
    writeAll(file.number(), xmlOf(dictionary), path);
}

} // namespace ZQFoundation::tools::defaults
