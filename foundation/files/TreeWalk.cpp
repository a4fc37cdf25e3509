// SPDX-License-Identifier: MIT
// The walk through a tree, folder by folder.
// A folder is entered only when the next item is requested, and left when its list is at its end.
#include "foundation/files/TreeWalk.h"

#include <utility>

#include <dirent.h>

namespace ZQFoundation::detail {

bool TreeWalk::willRead(int) { return true; }

bool TreeWalk::next() {
    if (!isStarted_) {
        enterStart();
    }
    enterLast();
    while (!levels_.empty() && levels_.back().names.isAtEnd()) {
        leave();
    }
    if (levels_.empty()) {
        return false;
    }
    Level& level = levels_.back();
    isFirst_ = level.names.isAtStart();
    entry_ = level.names.next();
    path_.resize(level.pathLength);
    path_.append(level.pathLength == 0 ? "" : "/").append(entry_.name);
    // Of an unknown kind it is tried: opening fails for anything but a folder.
    mayEnter_ = entry_.kind == DT_DIR || entry_.kind == DT_UNKNOWN;
    return true;
}

void TreeWalk::enterStart() {
    isStarted_ = true;
    // The walk needs its own position in the start, and may need it again.
    isIncomplete_ = !enter(Descriptor(::fcntl(start_.number(), F_DUPFD_CLOEXEC, 0)));
}

/// False with `errno`.
bool TreeWalk::enter(Descriptor folder) {
    if (!folder) {
        return false;
    }
    if (!willRead(folder.number())) {
        errno = ECANCELED;
        return false;
    }
    Level level{{}, {}, path_.size()};
    // Read at once: then the descriptor may be closed while the walk is below.
    if (::fstat(folder.number(), &level.information) != 0 || !level.names.read(folder.number()) ||
        !folders_.push(static_cast<Descriptor&&>(folder))) {
        return false;
    }
    levels_.push_back(std::move(level));
    return true;
}

/// Entered only now, so that the caller could look at it, remove it or skip it.
void TreeWalk::enterLast() {
    if (!std::exchange(mayEnter_, false)) {
        return;
    }
    bool isEntered = false;
    do {
        isEntered = enter(Descriptor(openAt(folders_.current(), entry_.name, folderFlags)));
    } while (!isEntered && (errno == EMFILE || errno == ENFILE) && folders_.closeOne());
    // Anything other than a folder does not make the walk incomplete.
    isIncomplete_ =
        isIncomplete_ || (!isEntered && (entry_.kind == DT_DIR || (errno != ENOTDIR && errno != ELOOP)));
}

/// Goes up to the nearest folder that can still be found.
void TreeWalk::leave() {
    // By ".." first, which works even if the folder was renamed.
    bool isOpen = folders_.reopenParent();
    do {
        levels_.pop_back();
        folders_.pop();
        isOpen = isOpen || levels_.empty() || reopenFromStart();
        isIncomplete_ = isIncomplete_ || !isOpen;
    } while (!isOpen);
}

/// Goes down again to the last level by the names on the way there, when the folder below it was moved away.
bool TreeWalk::reopenFromStart() {
    Descriptor folder(::fcntl(start_.number(), F_DUPFD_CLOEXEC, 0));
    for (std::size_t index = 1; folder && index < levels_.size(); ++index) {
        const std::size_t above = levels_[index - 1].pathLength;
        const std::size_t begin = above == 0 ? 0 : above + 1;
        const std::string name(path_, begin, levels_[index].pathLength - begin);
        folder = Descriptor(openAt(folder.number(), name.c_str(), folderFlags));
    }
    // Accepted only if it is the same folder as before.
    return folder && folders_.restore(levels_.size() - 1, static_cast<Descriptor&&>(folder));
}

} // namespace ZQFoundation::detail
