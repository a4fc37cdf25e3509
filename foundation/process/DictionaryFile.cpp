// SPDX-License-Identifier: MIT
// Reads and writes files that hold a dictionary.
// Reasons are texts for people: they name the file and what is wrong with it.
#include "foundation/process/DictionaryFile.h"

#include <cerrno>

#include <sys/stat.h>

#include "foundation/files/FileError.h"
#include "foundation/objects/NSData.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/process/FileReading.h"

namespace ZQFoundation::detail {

bool refuseWith(NSString* error, const std::string& path, int number) {
    reportErrorOfBytes(error, path, number);
    return false;
}

bool readBytes(const Descriptor& file, const std::string& path, std::string& bytes, NSString* error) {
    char buffer[1 << 14];
    for (;;) {
        const ssize_t count = ::read(file.number(), buffer, sizeof buffer);
        if (count == 0) {
            return true;
        }
        if (count < 0 && errno != EINTR) {
            return refuseWith(error, path, errno);
        }
        bytes.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        // A file that the library would refuse to read must not be written.
        // Also bounds what a pipe can make the process read.
        if (bytes.size() > static_cast<std::size_t>(maxFileBytes)) {
            return refuse(error, "%@ is larger than %ld bytes", path, maxFileBytes);
        }
    }
}

bool readDictionary(const Descriptor& file, const std::string& path, NSDictionary& values, NSString* error) {
    std::string bytes;
    if (!readBytes(file, path, bytes, error)) {
        return false;
    }
    NSString reason;
    const NSObject value = NSPropertyListSerialization::propertyListWithData(
        NSData::dataWithBytes_length(bytes.data(), bytes.size()), &reason);
    // A damaged file is never replaced by what could be saved of it.
    if (!value) {
        return refuse(error, "%@ is no property list: %@", path, reason);
    }
    values = NSDictionary(value);
    return values ? true : refuse(error, "%@ holds no dictionary", path);
}

bool readDictionaryAt(const GuardedPlace& place, const std::string& path, NSDictionary& values,
                      NSString* error) {
    values = nullptr;
    const Descriptor file = openPlace(place, O_RDONLY | O_NONBLOCK); // a pipe would make us wait
    if (!file) {
        // A missing file is not a failure: the values stay nil.
        return errno == ENOENT || refuseWith(error, path, errno);
    }
    struct stat information;
    if (::fstat(file.number(), &information) != 0) {
        return refuseWith(error, path, errno);
    }
    // Opened first and examined then, so that what is examined is what is read.
    if (!S_ISREG(information.st_mode)) {
        return refuse(error, "%@ is no regular file", path);
    }
    return readDictionary(file, path, values, error);
}

Descriptor openPlace(const GuardedPlace& place, int flags) noexcept {
    // Links to open objects, as in /dev/fd, are meant to be followed.
    const int always = O_CLOEXEC | O_NOCTTY | (place.isObjectLink ? 0 : O_NOFOLLOW);
    return Descriptor(openAt(place.folder.number(), place.name.c_str(), flags | always));
}

} // namespace ZQFoundation::detail
