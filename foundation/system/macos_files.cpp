// SPDX-License-Identifier: MIT
// The data of files, by the means that this system offers.
#include <copyfile.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

bool copyFileData(int source, int destination, DataMeans) noexcept {
    rlimit limit{};
    struct stat information;
    if (::fstat(source, &information) != 0) {
        return false;
    }
    if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
        static_cast<rlim_t>(information.st_size) > limit.rlim_cur) {
        errno = EFBIG; // a write would raise a signal
        return false;
    }
    // Clones go from name to name and take everything along at once, so they are of no use between two open
    // files of which one must stay closed to others until the end.
    return ::fcopyfile(source, destination, nullptr, COPYFILE_DATA | COPYFILE_DATA_SPARSE) == 0 ||
           (errno == ENOTSUP && ::fcopyfile(source, destination, nullptr, COPYFILE_DATA) == 0);
}

} // namespace ZQFoundation::detail::system
