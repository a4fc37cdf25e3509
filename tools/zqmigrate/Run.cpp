// SPDX-License-Identifier: MIT
// A run of the tool: surveys what there is to do, does or plans it, and checks what is left.
#include "tools/zqmigrate/Run.h"

#include <algorithm>
#include <cstring>
#include <set>

#include <sys/stat.h>
#include <sys/statvfs.h>

#include "foundation/files/ItemIdentity.h"
#include "foundation/files/NSFileManager.h"
#include "foundation/system/OpenFolders.h"
#include "migration/MigratedFiles.h"
#include "tools/zqmigrate/Interruption.h"
#include "tools/zqmigrate/Report.h"
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

/// An item that the request concerns: in a batch, a selected file or a folder that cannot be read.
struct FoundItem {
    NSString path; ///< relative to the source; empty for the source itself
    struct stat information {};
    bool isUnreadableFolder = false;
    bool isDangling = false;     ///< a link
    bool isRelativeLink = false; ///< that is valid
};

/// Whether the effective user, who is the one that migrates, can walk the folder; that requires both
/// permissions.
bool isUsable(const detail::ItemPlace& folder) {
    return ::faccessat(folder.folder(), folder.name(), R_OK | X_OK, AT_EACCESS) == 0;
}

/// False for items that the request does not concern.
bool look(const Request& request, const detail::ItemPlace& place, FoundItem& item) {
    struct stat target {};
    char first = '/';
    if (!place.look(item.information)) {
        return false;
    }
    const bool hasTarget = ::fstatat(place.folder(), place.name(), &target, 0) == 0;
    const bool isLink = S_ISLNK(item.information.st_mode);
    item.isDangling = isLink && !hasTarget;
    item.isRelativeLink =
        isLink && hasTarget && ::readlinkat(place.folder(), place.name(), &first, 1) == 1 && first != '/';
    item.isUnreadableFolder = request.isBatch() && S_ISDIR(item.information.st_mode) && !isUsable(place);
    const bool isChosen =
        !S_ISDIR(target.st_mode) && (!request.extension || item.path.pathExtension() == request.extension);
    return !request.isBatch() || item.isUnreadableFolder || isChosen;
}

/// Why a batch cannot walk its source folder; nil if it can. To the library, all of these are empty folders.
NSString complaintAbout(const detail::ItemPlace& source) {
    bool isDirectory = false;
    if (!source || !source.exists(isDirectory)) {
        return ZQFileMigrator::descriptionOfFileMigrationRetvalType(kFileMigrationSourceParentDoesNotExist);
    }
    if (!isDirectory) {
        return ZQFileMigrator::descriptionOfFileMigrationRetvalType(kFileMigrationSourceIsFile);
    }
    return isUsable(source) ? NSString() : NSString(std::strerror(errno));
}

/// The space that the user has at the place of the path; the largest number if that is unknown.
std::uint64_t freeBytesAt(NSString path) {
    struct statvfs system {};
    for (; ::statvfs(path.length() == 0 ? "." : bytesOf(path).c_str(), &system) != 0;
         path = path.stringByDeletingLastPathComponent()) {
        if (path.length() == 0 || path == "/") {
            return UINT64_MAX;
        }
    }
    return static_cast<std::uint64_t>(system.f_bavail) * system.f_frsize;
}

/// One run: a survey for the totals, the work, and a second survey of what the work did not reach. The
/// library reports each file; the two surveys find what it ignores without a report.
class Run final : public ZQMigrationObserver {
public:
    Run(const Request& request, Screen& screen) : request_(request), screen_(screen) {
        source_.open(bytesOf(request.source));
    }

    /// If there is an error about the source, there is nothing to survey or to do.
    Outcome run() {
        screen_.write(beginningOfReport(request_));
        const NSString complaint = request_.isBatch() ? complaintAbout(source_) : NSString();
        if (complaint) {
            outcome_.error = NSString::stringWithFormat("%@: %@", request_.from, complaint);
        } else {
            survey();
            request_.isTrial ? plan() : migrate();
            findRest();
            checkLinks();
        }
        outcome_.signal = firstSignal;
        return outcome_;
    }

    /// The first signal stops the work before the next item; the item in progress counts as not reached.
    bool migrationMayContinue(const ZQMigrationProgress& now) override {
        progress_.items = now.items;
        progress_.bytes = now.bytes;
        screen_.show(progress_);
        if (!inHand_ && signalCount != 0) {
            inHand_ = request_.isBatch() ? now.path : request_.source;
        }
        return !inHand_;
    }

    void migrationDidFinish(const NSString& path, ZQFileMigrationRetvalType code,
                            const NSString& destination) override {
        if (path != inHand_ || code == kFileMigrationSuccess) { // what was interrupted was not reached
            finish({path, code, destination, nullptr});
        }
    }

private:
    /// Visits every item that the request concerns. False if more than `count` signals have arrived: the one
    /// after the signal that stopped the work also stops the search for what is left.
    template <class Visit>
    bool goThrough(int count, const Visit& visit) {
        FoundItem item;
        item.path = "";
        if (!request_.isBatch() && source_ && look(request_, source_, item)) {
            visit(item);
        }
        // A batch may start at a link; in a migration of a folder, a link to a folder remains a link.
        const int flags = request_.isBatch() ? detail::folderFlags & ~O_NOFOLLOW : detail::folderFlags;
        detail::Descriptor start(source_ ? detail::openAt(source_.folder(), source_.name(), flags) : -1);
        if (!start) {
            return true;
        }
        const bool isAll = !request_.isBatch() || request_.includeDotFiles;
        detail::MigratedFiles files(std::move(start), nullptr, isAll, false);
        detail::ItemPlace place;
        while (files.nextItem()) {
            if (signalCount > count) {
                return false;
            }
            item.path = files.relativePath();
            if (files.getPlace(place) && look(request_, place, item)) {
                visit(item);
            }
        }
        return true;
    }

    /// Counts items and bytes before the work, for the bar, and records what the library does not report:
    /// folders that cannot be read, and relative links, which may be dangling at their new place.
    void survey() {
        const bool isWhole = goThrough(0, [this](const FoundItem& item) {
            if (item.isUnreadableFolder) {
                outcome_.unreadableFolders.push_back(item.path);
                return;
            }
            if (item.isRelativeLink) {
                links_.insert(bytesOf(item.path));
            }
            if (S_ISREG(item.information.st_mode)) { // holes are not copied
                const auto blocks = static_cast<std::uint64_t>(item.information.st_blocks) * 512;
                room_ += blocks;
                progress_.totalBytes += // a dry run copies no bytes
                    request_.isTrial ? 0
                                     : std::min(blocks, static_cast<std::uint64_t>(item.information.st_size));
            }
            ++progress_.totalItems;
            screen_.show(progress_);
        });
        outcome_.isMoreUnreadable = request_.isBatch() && !isWhole;
        progress_.isTotalKnown = true;
        screen_.show(progress_);
    }

    /// The results arrive through the observer, so those that are returned are not needed.
    void migrate() {
        if (request_.isBatch()) {
            static_cast<void>(ZQFileMigrator::migrateFiles(request_.extension, request_.source,
                                                           request_.destination, request_, this));
            return;
        }
        const bool isFolder = request_.operation == Operation::folder;
        const auto migrateOne = isFolder ? ZQFileMigrator::migrateFolder : ZQFileMigrator::migrateFile;
        static_cast<void>(migrateOne(request_.source, request_.destination, request_, this));
    }

    /// A dry run; notes say what it cannot predict.
    void plan() {
        std::uint64_t notes = 0;
        for (const Item& item : plannedItems(request_, *this)) {
            finish(item);
            notes += item.note ? 1 : 0;
        }
        const auto note = [this](const std::string& text) {
            outcome_.notes.push_back(text);
        };
        if (notes != 0) {
            note("files with a note: " + grouped(notes) +
                 "; the run itself changes what they find, so the results may differ");
        }
        if (request_.isBatch() && detail::isInside(request_.destinationOf("item"), request_.source)) {
            note("the destination is in the source folder: a real run may also find files that it made "
                 "itself");
        }
        const std::uint64_t free = freeBytesAt(request_.destination);
        if (outcome_.migrated != 0 && room_ > free) {
            note("there may be too little space at the destination: the originals take " + grouped(room_) +
                 " bytes, and " + grouped(free) + " are free");
        }
    }

    /// Reports an item at once, so that even a killed run has reported what it did. The links of a migrated
    /// tree are checked at the end, when everything they may refer to has arrived.
    void finish(const Item& item) {
        screen_.write(reportOfItem(request_, item, reached_.empty()));
        reached_.insert(bytesOf(item.path));
        if (item.code != kFileMigrationSuccess) {
            outcome_.failed.push_back(item);
            ++progress_.failed;
            return;
        }
        ++outcome_.migrated;
        if (request_.isBatch() && links_.count(bytesOf(item.path)) != 0) {
            copiedLinks_.push_back(item.destination);
        }
        for (auto link = links_.begin(); !request_.isBatch() && link != links_.end(); ++link) {
            copiedLinks_.push_back(link->empty()
                                       ? item.destination
                                       : item.destination.stringByAppendingPathComponent(pathOf(*link)));
        }
    }

    /// Collects what was not reached, and dangling links: the library treats such a link like the item before
    /// it, and so ignores it after a folder.
    void findRest() {
        if (inHand_ && reached_.insert(bytesOf(inHand_)).second) {
            outcome_.notReached.push_back(inHand_);
        }
        const auto visit = [this](const FoundItem& item) {
            if (item.isUnreadableFolder || reached_.count(bytesOf(item.path)) != 0) {
                return;
            }
            if (inHand_) {
                outcome_.notReached.push_back(item.path);
            } else if (item.isDangling) {
                finish({item.path, kFileMigrationSourceDoesNotExist, request_.destinationOf(item.path),
                        nullptr});
            }
        };
        outcome_.isMoreNotReached = request_.isBatch() && !goThrough(1, visit);
    }

    /// A dry run has made no copies that could be checked.
    void checkLinks() {
        for (const NSString& link : copiedLinks_) {
            if (!request_.isTrial && !NSFileManager::defaultManager().fileExistsAtPath(link)) {
                outcome_.brokenLinks.push_back(request_.typedDestination(link));
            }
        }
    }

    const Request& request_;
    Screen& screen_;
    detail::ItemPlace source_;
    Outcome outcome_;
    Progress progress_;
    std::uint64_t room_ = 0;            ///< bytes that the originals take on the disk
    std::set<std::string> links_;       ///< valid relative ones: bytes of paths below the source
    std::vector<NSString> copiedLinks_; ///< the paths of their copies
    std::set<std::string> reached_;     ///< bytes of paths
    NSString inHand_;                   ///< the item at which a signal stopped the work
};

} // namespace

Outcome carryOut(const Request& request, Screen& screen) { return Run(request, screen).run(); }

} // namespace ZQFoundation::tools::zqmigrate
