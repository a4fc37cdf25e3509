// SPDX-License-Identifier: MIT
// Sets sources aside before their removal.
#include "migration/SetAside.h"

#include <sys/file.h>

#include "foundation/system/FileSystem.h"
#include "foundation/system/OpenFolders.h"
#include "migration/FreeName.h"
#include "migration/HiddenNames.h"

namespace ZQFoundation::detail {

// The attempt to rename is the test for a free name, so nobody can take it in between. Any other error than a
// taken name ends the search: further numbers would fail too.
bool showItemBeside(int hiddenFolder, const char* hiddenName, int folder, const std::string& name) {
    bool isShown = false;
    freeName(
        NSString::stringWithFileSystemBytes(name.data(), name.size()), [&](const std::string& candidate) {
            isShown = system::renameWithoutReplacing(hiddenFolder, hiddenName, folder, candidate.c_str());
            return isShown || (errno != EEXIST && errno != ENOTEMPTY);
        });
    return isShown;
}

bool showItem(int hiddenFolder, const char* hiddenName, int folder, const std::string& wanted) {
    if (system::renameWithoutReplacing(hiddenFolder, hiddenName, folder, wanted.c_str())) {
        return true;
    }
    // The item that has taken the name is newer; keep both.
    return (errno == EEXIST || errno == ENOTEMPTY) &&
           showItemBeside(hiddenFolder, hiddenName, folder, wanted);
}

// Whatever failed in between, the item gets its name back.
SetAside::~SetAside() {
    if (state_ == State::aside) {
        putBack();
    }
    if (long_) { // a child that was forked meanwhile has it open, too
        ::flock(long_.number(), LOCK_UN);
    }
}

// The rename takes whatever has the name at that moment, so the item is compared before it and once more
// after it.
bool SetAside::take(const struct stat& item) {
    if (!place_.isEntry()) {
        errno = EINVAL;
        return false;
    }
    if (!place_.holds(item)) {
        errno = ESTALE;
        return false;
    }
    if (!hide()) {
        return false;
    }
    state_ = State::aside;
    struct stat taken;
    if (::fstatat(folder(), name(), &taken, AT_SYMLINK_NOFOLLOW) == 0 && isSameItem(taken, item)) {
        return true;
    }
    // Somebody has replaced the item meanwhile.
    putBack();
    errno = ESTALE;
    return false;
}

// The hidden name contains the item's own, so that another process can restore it. A long name has no room
// for the mark.
bool SetAside::hide() {
    name_ = asideNameOf(place_.name());
    return system::renameWithoutReplacing(place_.folder(), place_.name(), place_.folder(), name_.c_str()) ||
           (errno == ENAMETOOLONG && hideLong());
}

// The folder is locked before the item is moved into it: an unlocked one would be recovered by another
// process at once.
bool SetAside::hideLong() {
    longName_ = newHiddenName(HiddenKind::asideLong);
    name_ = place_.name();
    if (::mkdirat(place_.folder(), longName_.c_str(), 0700) != 0) {
        return false;
    }
    long_ = Descriptor(openAt(place_.folder(), longName_.c_str(), folderFlags));
    if (long_ && ::flock(long_.number(), LOCK_SH | LOCK_NB) == 0 &&
        system::renameWithoutReplacing(place_.folder(), place_.name(), long_.number(), name())) {
        return true;
    }
    removeLongFolder();
    return false;
}

// `errno` is the caller's, which reports the error that came first.
void SetAside::removeLongFolder() noexcept {
    if (!longName_.empty()) {
        const int error = errno;
        ::unlinkat(place_.folder(), longName_.c_str(), AT_REMOVEDIR);
        long_.reset();
        errno = error;
    }
}

bool SetAside::putBack() noexcept {
    try {
        if (!showItem(folder(), name(), place_.folder(), place_.name())) {
            return false;
        }
    } catch (...) {
        return false; // out of memory for another name
    }
    state_ = State::inPlace;
    removeLongFolder();
    return true;
}

// From this rename on the item is removed by the next recovery if this process is killed: until then it is
// restored.
bool SetAside::giveUp() {
    const std::string gone = newHiddenName(HiddenKind::gone);
    if (!system::renameWithoutReplacing(folder(), name(), place_.folder(), gone.c_str())) {
        return false;
    }
    state_ = State::givenUp;
    name_ = gone;
    removeLongFolder();
    longName_.clear();
    return true;
}

bool SetAside::removeFile() {
    if (::unlinkat(folder(), name(), 0) != 0) {
        return false;
    }
    state_ = State::givenUp;
    removeLongFolder();
    return true;
}

} // namespace ZQFoundation::detail
