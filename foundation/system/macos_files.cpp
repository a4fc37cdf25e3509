// SPDX-License-Identifier: MIT
// Copies the data of files, by the means that this system offers.
// The system's own call finds holes and chooses how to copy, so there is no choice of means here.
#include <cerrno>
#include <utility>

#include <copyfile.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail::system {

namespace {

/// Called by the system while it copies.
/// Called several times for one copy, also for other stages than data; only progress of data is of interest.
/// The pair contains the watch and the bytes already reported.
int continueOrQuit(int what, int stage, copyfile_state_t state, const char*, const char*, void* context) {
    auto& watched = *static_cast<std::pair<CopyWatch*, off_t>*>(context);
    off_t copied = 0;
    if (what != COPYFILE_COPY_DATA || stage != COPYFILE_PROGRESS ||
        ::copyfile_state_get(state, COPYFILE_STATE_COPIED, &copied) != 0) {
        return COPYFILE_CONTINUE;
    }
    const auto newBytes = static_cast<std::uint64_t>(copied - watched.second);
    watched.second = copied;
    return watched.first->mayGoOn(newBytes) ? COPYFILE_CONTINUE : COPYFILE_QUIT;
}

bool copyBy(int source, int destination, copyfile_flags_t flags, CopyWatch* watch) {
    if (watch == nullptr) {
        return ::fcopyfile(source, destination, nullptr, flags) == 0;
    }
    std::pair<CopyWatch*, off_t> watched{watch, 0};
    const copyfile_state_t state = ::copyfile_state_alloc();
    if (state == nullptr) {
        return false;
    }
    ::copyfile_state_set(state, COPYFILE_STATE_STATUS_CB, reinterpret_cast<const void*>(&continueOrQuit));
    ::copyfile_state_set(state, COPYFILE_STATE_STATUS_CTX, &watched);
    const bool isCopied = ::fcopyfile(source, destination, state, flags) == 0;
    const int error = errno;
    ::copyfile_state_free(state);
    errno = error;
    return isCopied;
}

} // namespace

// The signal cannot be kept from the thread while the system copies, so the size is checked before. A file
// that grows beyond the limit meanwhile would still raise it.
bool copyFileData(int source, int destination, DataMeans, CopyWatch* watch) {
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
    // Clones are made from name to name with all attributes at once, so they cannot be used between two open
    // files of which one must stay closed to others until the end.
    // A file system that cannot store holes refuses the flag; the data are then copied in full.
    return copyBy(source, destination, COPYFILE_DATA | COPYFILE_DATA_SPARSE, watch) ||
           (errno == ENOTSUP && copyBy(source, destination, COPYFILE_DATA, watch));
}

} // namespace ZQFoundation::detail::system
