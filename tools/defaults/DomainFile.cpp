// SPDX-License-Identifier: MIT
#include "tools/defaults/DomainFile.h"

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/files/StickyFolder.h"
#include "tools/defaults/Failure.h"
#include "tools/defaults/Files.h"
#include "tools/defaults/XmlText.h"

namespace ZQFoundation::defaults {

using detail::Descriptor;
using detail::GuardedPlace;

namespace {

bool getInformation(const GuardedPlace& place, struct stat& item, struct stat& folder) noexcept {
    return ::fstat(place.folder.number(), &folder) == 0 &&
           ::fstatat(place.folder.number(), place.name.c_str(), &item, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Opens a pipe, a device or what an object link stands for. What others have made in a shared folder is not
/// even opened, as they would notice.
Descriptor openForWriting(const GuardedPlace& place, const std::string& path) {
    struct stat item;
    struct stat folder;
    if (!getInformation(place, item, folder)) {
        failWith(path, errno);
    }
    if (!place.isObjectLink && !detail::mayWriteItem(item, folder)) {
        failWith(path, EACCES);
    }
    // Of an open file the name stands for what is written next, which is at its end.
    Descriptor file = openPlace(place, O_WRONLY | (place.isObjectLink ? O_APPEND : 0));
    if (!file || ::fstat(file.number(), &item) != 0) {
        failWith(path, errno);
    }
    if (!place.isObjectLink && !detail::mayWriteItem(item, folder)) {
        failWith(path, EACCES);
    }
    return file;
}

} // namespace

NSDictionary readDomain(const Domain& domain) {
    GuardedPlace place;
    if (!detail::reachGuarded(domain.path, place)) {
        if (errno == ENOENT) {
            return nullptr;
        }
        failWith(domain.path, errno);
    }
    return dictionaryAt(place, domain.path);
}

NSDictionary readDictionary(const std::string& path) {
    if (path == "-") {
        const Descriptor input(::dup(STDIN_FILENO));
        return dictionaryFrom(input, "standard input");
    }
    GuardedPlace place;
    Descriptor file;
    if (detail::reachGuarded(path, place)) {
        file = openPlace(place, O_RDONLY);
    }
    if (!file) {
        failWith(path, errno);
    }
    return dictionaryFrom(file, path);
}

void removeDomain(const Domain& domain) {
    const LockedFile file(domain);
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
        const LockedFile file({path, path, false});
        file.replace(dictionary);
        return;
    }
    // A pipe or a device is not to be replaced by a file; a folder refuses by itself.
    const Descriptor file = openForWriting(place, path);
    writeAll(file.number(), xmlOf(dictionary), path);
}

} // namespace ZQFoundation::defaults
