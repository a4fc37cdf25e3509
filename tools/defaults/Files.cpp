// SPDX-License-Identifier: MIT
#include "tools/defaults/Files.h"

#include <cerrno>

#include <sys/stat.h>

#include "foundation/files/FileError.h"
#include "foundation/objects/NSData.h"
#include "foundation/plist/NSPropertyListSerialization.h"
#include "foundation/process/FileReading.h"
#include "tools/defaults/Failure.h"

namespace ZQFoundation::defaults {

using detail::Descriptor;

namespace {

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
        if (bytes.size() > static_cast<std::size_t>(detail::maxFileBytes)) {
            fail("%@ is larger than %ld bytes", path, detail::maxFileBytes);
        }
    }
}

} // namespace

void failWith(const std::string& path, int error) {
    NSString text;
    detail::reportErrorOfBytes(&text, path, error);
    fail("%@", text);
}

NSDictionary dictionaryFrom(const Descriptor& file, const std::string& path) {
    const std::string bytes = readBytes(file, path);
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

NSDictionary dictionaryAt(const detail::GuardedPlace& place, const std::string& path) {
    const Descriptor file = openPlace(place, O_RDONLY | O_NONBLOCK); // a pipe would keep us waiting
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
    return dictionaryFrom(file, path);
}

Descriptor openPlace(const detail::GuardedPlace& place, int flags) noexcept {
    const int always = O_CLOEXEC | O_NOCTTY | (place.isObjectLink ? 0 : O_NOFOLLOW);
    return Descriptor(detail::openAt(place.folder.number(), place.name.c_str(), flags | always));
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

} // namespace ZQFoundation::defaults
