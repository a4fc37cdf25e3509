// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/Run.h"

#include <sys/statvfs.h>
#include <unistd.h>

#include "foundation/files/FileInformation.h"
#include "foundation/files/ItemIdentity.h"
#include "migration/BatchSelection.h"
#include "migration/FilesOnDisk.h"
#include "tools/zqmigrate/Report.h"
#include "tools/zqmigrate/Text.h"
#include "tools/zqmigrate/TrialFiles.h"

namespace ZQFoundation::zqmigrate {

namespace {

const NSFileManager& fileManager() noexcept { return NSFileManager::defaultManager(); }

/// Why a batch cannot go through the folder; empty when it can. For the library all of these are folders that
/// hold nothing.
std::string complaintAbout(const NSString& folder, const std::string& name) {
    const auto because = [&name](ZQFileMigrationRetvalType code) {
        return name + ": " + ZQFileMigrator::descriptionOfFileMigrationRetvalType(code).utf8();
    };
    bool isDirectory = false;
    if (!fileManager().fileExistsAtPath_isDirectory(folder, &isDirectory)) {
        return because(kFileMigrationSourceParentDoesNotExist);
    }
    if (!isDirectory) {
        return because(kFileMigrationSourceIsFile);
    }
    NSString reason;
    return fileManager().contentsOfDirectoryAtPath_error(folder, &reason) ? std::string() : bytesOf(reason);
}

/// Folders that the enumeration passes over in silence, and those whose items cannot be told from folders
/// because the folder may not be searched. An interruption ends the search.
void findUnreadableFolders(const NSString& folder, bool includeDotFiles, const Interruption& interruption,
                           Outcome& outcome) {
    NSDirectoryEnumerator items = fileManager().enumeratorAtPath(folder);
    while (const NSString path = items.nextObject()) {
        if (interruption.pending() != 0) {
            outcome.isMoreUnreadable = true;
            return;
        }
        const NSString whole = folder.stringByAppendingPathComponent(path);
        struct stat information;
        if ((includeDotFiles || !path.hasPrefix(".")) && detail::getItemInformation(whole, information) &&
            S_ISDIR(information.st_mode) && ::access(bytesOf(whole).c_str(), R_OK | X_OK) != 0) {
            outcome.unreadableFolders.push_back(bytesOf(path));
        }
    }
}

/// The files as a batch sees them. To the library, what is nowhere counts as what was looked at before it, so
/// that a link that leads nowhere would be passed over in silence when it comes after a folder. Here it
/// counts as the file that it is.
template <class Files>
class BatchFiles {
public:
    explicit BatchFiles(const Files& files) : files_(files) {}

    bool exists(const NSString& path, bool* isDirectory) const {
        struct stat information;
        const bool isFound = files_.exists(path, isDirectory);
        if (!isFound && detail::getItemInformation(path, information) && S_ISLNK(information.st_mode)) {
            *isDirectory = false;
        }
        return isFound;
    }

private:
    const Files& files_;
};

/// What is free for the user on the file system where the path would stand; the greatest number when nobody
/// tells.
std::uint64_t freeBytesAt(NSString path) {
    const NSString top = path.hasPrefix("/") ? "/" : ".";
    struct statvfs system {};
    while (::statvfs(bytesOf(path).c_str(), &system) != 0) {
        if (path.isEqualToString(top)) {
            return UINT64_MAX;
        }
        const NSString above = path.stringByDeletingLastPathComponent();
        path = above.isEmpty() ? top : above;
    }
    return static_cast<std::uint64_t>(system.f_bavail) * system.f_frsize;
}

/// For the library a mere name is in no folder; for who types it, it is in the current one.
constexpr const char* currentFolder = "./";

bool isRelative(const std::string& path) { return path[0] != '/' && path[0] != '~'; }

template <class Files>
class Run {
public:
    Run(Files& files, const Request& request, Screen& screen, Interruption& interruption)
        : files_(files), request_(request), screen_(screen), interruption_(interruption),
          from_(pathOf(request.from).stringByExpandingTildeInPath()),
          to_(pathOf(request.to).stringByExpandingTildeInPath()) {}

    Outcome run() {
        screen_.write(beginningOfReport(request_));
        if (request_.operation == Operation::batch) {
            migrateBatch();
        } else {
            const bool isFolder = request_.operation == Operation::folder;
            screen_.setTotal(1, true);
            const std::string to = (isRelative(request_.to) ? currentFolder : "") + request_.to;
            migrate(isFolder ? detail::folderKind : detail::fileKind, request_.from, pathOf(request_.from),
                    pathOf(to));
        }
        // One that came during the last item.
        outcome_.signal = outcome_.signal != 0 ? outcome_.signal : interruption_.take();
        return outcome_;
    }

private:
    void migrateBatch() {
        outcome_.error = complaintAbout(from_, request_.from);
        if (!outcome_.error.empty()) {
            return;
        }
        findUnreadableFolders(from_, request_.includeDotFiles, interruption_, outcome_);
        countItems();
        const BatchFiles files(files_);
        detail::BatchSelection selection = selected(files);
        while (const NSString path = outcome_.isMoreNotReached ? NSString() : selection.next()) {
            migrate(detail::fileKind, bytesOf(path), selection.file(),
                    to_.stringByAppendingPathComponent(path));
        }
    }

    template <class Looked>
    detail::BatchSelection<Looked> selected(const Looked& files) const {
        return {files, pathOf(request_.extension), from_, request_.includeDotFiles};
    }

    /// So that the bar knows; what changes meanwhile makes it wrong, and nothing else.
    void countItems() {
        const detail::FilesOnDisk disk;
        const BatchFiles files(disk);
        detail::BatchSelection selection = selected(files);
        std::uint64_t count = 0;
        while (interruption_.pending() == 0 && selection.next()) {
            screen_.setTotal(++count, false);
        }
        screen_.setTotal(count, true);
    }

    void migrate(const detail::MigratedKind& kind, const std::string& path, const NSString& source,
                 const NSString& destination) {
        if (outcome_.signal != 0) {
            outcome_.isMoreNotReached = interruption_.take() != 0;
        } else {
            outcome_.signal = interruption_.take();
        }
        if (outcome_.signal != 0) {
            outcome_.notReached.push_back(path);
            return;
        }
        detail::ItemMigration migration(files_, kind, request_.policy, source, destination);
        Item item;
        item.path = path;
        item.code = migration.run();
        if (const NSString copy = migration.destination()) {
            item.destination = shownDestination(copy);
            item.newName =
                copy != destination.stringByExpandingTildeInPath() ? newNameOf(item) : std::string();
        }
        screen_.write(reportOfItem(request_, item, isFirst_));
        screen_.advance(item.code != kFileMigrationSuccess);
        isFirst_ = false;
        if (item.code == kFileMigrationSuccess) {
            ++outcome_.migrated;
        } else {
            outcome_.failed.push_back(item);
        }
    }

    std::string shownDestination(const NSString& destination) const {
        const std::string path = bytesOf(destination);
        const bool isShortened = request_.operation != Operation::batch && isRelative(request_.to);
        return isShortened ? path.substr(std::char_traits<char>::length(currentFolder)) : path;
    }

    /// In a batch, below the destination folder.
    std::string newNameOf(const Item& item) const {
        if (request_.operation != Operation::batch) {
            return item.destination;
        }
        const std::string name = item.destination.substr(item.destination.rfind('/') + 1);
        return item.path.substr(0, item.path.rfind('/') + 1).append(name);
    }

    Files& files_;
    const Request& request_;
    Screen& screen_;
    Interruption& interruption_;
    NSString from_;
    NSString to_;
    Outcome outcome_;
    bool isFirst_ = true;
};

Outcome tryOut(const Request& request, Screen& screen, Interruption& interruption) {
    TrialFiles files;
    Outcome outcome = Run(files, request, screen, interruption).run();
    const NSString from = pathOf(request.from).stringByExpandingTildeInPath();
    const NSString to = pathOf(request.to).stringByExpandingTildeInPath();
    if (request.operation == Operation::batch && outcome.error.empty() &&
        detail::standsInside(to.stringByAppendingPathComponent("item"), from)) {
        outcome.notes.push_back(
            "the destination is in the source folder: a real run may also meet files that it made itself");
    }
    if (files.bytesToCopy() > freeBytesAt(to)) {
        outcome.notes.push_back("there may be too little room at the destination: the originals take " +
                                std::to_string(files.bytesToCopy()) + " bytes, and " +
                                std::to_string(freeBytesAt(to)) + " are free");
    }
    return outcome;
}

} // namespace

Outcome carryOut(const Request& request, Screen& screen, Interruption& interruption) {
    if (request.isTrial) {
        return tryOut(request, screen, interruption);
    }
    detail::FilesOnDisk files;
    return Run(files, request, screen, interruption).run();
}

} // namespace ZQFoundation::zqmigrate
