// SPDX-License-Identifier: MIT
// The last check of a tree that is to be removed.
// Every reason for which a removal would stop halfway is looked for first, since halfway is the worst place
// to stop.
#include "foundation/files/RemovalCheck.h"

#include <utility>

#include <dirent.h>

#include "foundation/files/TreeWalk.h"
#include "foundation/system/FileSystem.h"

namespace ZQFoundation::detail {

namespace {

using system::ItemFacts;

constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

// So that a reason can be the last operand of a condition.
bool fails(int error) noexcept {
    errno = error;
    return false;
}

/// Whether the rule for sticky folders lets an item be removed from a folder.
bool mayBeTaken(const struct stat& folder, const struct stat& item) noexcept {
    const uid_t user = ::geteuid();
    return (folder.st_mode & S_ISVTX) == 0 || user == 0 || user == item.st_uid || user == folder.st_uid;
}

class TreeCheck : public TreeWalk {
public:
    TreeCheck(Descriptor start, const CopyRecord* record) : TreeWalk(std::move(start)), record_(record) {}

    bool run() {
        std::size_t count = 0;
        while (next()) {
            ++count;
            // Asked once for each folder, when its first item is visited.
            if ((isFirstInFolder() && !mayBeEmptied()) || !isFine()) {
                return false;
            }
        }
        // What could not be read could not have been copied either.
        if (isIncomplete()) {
            return fails(error_ != 0 ? error_ : EACCES);
        }
        // Fewer items than recorded means that some are gone.
        return record_ == nullptr || count == record_->count() || fails(ESTALE);
    }

private:
    bool willRead(int folder) override {
        ItemFacts facts;
        if (!system::getItemFacts(folder, "", facts)) {
            error_ = errno;
        } else if (facts.isMountPoint) {
            error_ = EBUSY;
        } else if (facts.isProtected) {
            error_ = EPERM;
        }
        return error_ == 0;
    }

    /// By the effective user, who would do the removing.
    bool mayBeEmptied() const noexcept { return ::faccessat(folder(), ".", W_OK | X_OK, AT_EACCESS) == 0; }

    bool isFine() {
        ItemFacts facts;
        if (!getFacts(facts)) {
            return false;
        }
        if (facts.isMountPoint) {
            return fails(EBUSY);
        }
        if (facts.isProtected || !mayBeTaken(folderInformation(), facts.information)) {
            return fails(EPERM);
        }
        return record_ == nullptr || record_->holds(folderInformation(), name(), facts.information) ||
               fails(ESTALE);
    }

    /// For a file, called after the check that nobody has it open for writing: an earlier change shows in the
    /// facts.
    bool getFacts(ItemFacts& facts) {
        if (record_ == nullptr || kind() != DT_REG) {
            return system::getItemFacts(folder(), name(), facts) &&
                   (record_ == nullptr || !S_ISREG(facts.information.st_mode) || getFileFacts(facts));
        }
        return getFileFacts(facts);
    }

    bool getFileFacts(ItemFacts& facts) {
        const Descriptor file(openAt(folder(), name(), fileFlags));
        // Opened without following links and without waiting; a process that writes to it now would lose
        // what it writes.
        return file && (system::WritersHeldOff(file.number()).areThereNone() || fails(ETXTBSY)) &&
               system::getItemFacts(file.number(), "", facts);
    }

    const CopyRecord* record_;
    int error_ = 0;
};

} // namespace

bool isTreeRemovable(const Descriptor& folder, const CopyRecord* record) {
    // A second descriptor, because the walk closes its own.
    Descriptor start(::fcntl(folder.number(), F_DUPFD_CLOEXEC, 0));
    return start && TreeCheck(std::move(start), record).run();
}

} // namespace ZQFoundation::detail
