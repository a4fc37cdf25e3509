// SPDX-License-Identifier: MIT
// File systems in image files, as disks that lose power: a copy of the image holds what the disk has been
// sent until then. Only for root, and with mount points of one's own.
#ifndef ZQFOUNDATION_TESTS_FAULTS_IMAGE_H
#define ZQFOUNDATION_TESTS_FAULTS_IMAGE_H

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::faults {

/// Makes an empty file system in a file. False where the program for it is missing.
inline bool makeImage(const std::string& path, off_t bytes) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    const bool isLong = file >= 0 && ::ftruncate(file, bytes) == 0;
    ::close(file);
    const std::string command = "PATH=$PATH:/usr/sbin:/sbin mkfs.ext4 -q -F '" + path + "' 2>/dev/null";
    return isLong && std::system(command.c_str()) == 0;
}

/// A file system from an image, mounted for a scope.
class MountedImage {
public:
    MountedImage(const std::string& image, const std::string& place) : place_(place) {
        const std::string device = attach(image);
        isMounted_ = !device.empty() && ::mount(device.c_str(), place.c_str(), "ext4", 0, nullptr) == 0;
        if (device_ >= 0) {
            ::close(device_); // the mount keeps the device; when that is gone, it is free again
        }
    }
    MountedImage(const MountedImage&) = delete;
    MountedImage& operator=(const MountedImage&) = delete;
    ~MountedImage() {
        if (isMounted_) {
            ::umount2(place_.c_str(), MNT_DETACH);
        }
    }

    bool isMounted() const { return isMounted_; }

private:
    /// The path of a device for the image, empty when none is available.
    std::string attach(const std::string& image) {
        const int control = ::open("/dev/loop-control", O_RDWR | O_CLOEXEC);
        const int file = ::open(image.c_str(), O_RDWR | O_CLOEXEC);
        std::string path;
        // Somebody else may take the free one first.
        for (int attempt = 0; attempt < 100 && path.empty() && control >= 0; ++attempt) {
            const int number = ::ioctl(control, LOOP_CTL_GET_FREE);
            const std::string candidate = "/dev/loop" + std::to_string(number);
            device_ = ::open(candidate.c_str(), O_RDWR | O_CLOEXEC);
            loop_config settings{};
            settings.fd = static_cast<unsigned>(file);
            settings.info.lo_flags = LO_FLAGS_AUTOCLEAR;
            if (device_ < 0 || ::ioctl(device_, LOOP_CONFIGURE, &settings) == 0) {
                path = device_ < 0 ? "" : candidate;
                break;
            }
            ::close(device_);
            device_ = -1;
        }
        ::close(file);
        ::close(control);
        return path;
    }

    std::string place_;
    int device_ = -1;
    bool isMounted_ = false;
};

/// What the disk holds at one moment. It is read until two readings are the same, so that no write happened
/// in the middle of one.
inline std::string snapshotOf(const std::string& image) {
    std::string bytes = kit::contentsOf(image);
    for (;;) {
        std::string second = kit::contentsOf(image);
        if (second == bytes) {
            return bytes;
        }
        bytes.swap(second);
    }
}

} // namespace ZQFoundation::faults

#endif
