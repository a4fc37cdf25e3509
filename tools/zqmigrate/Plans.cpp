// SPDX-License-Identifier: MIT
// Plans what a run would do in the present state, and finds files of the run that would conflict.
#include <map>

#include <fcntl.h>

#include "foundation/system/LinkReading.h"
#include "migration/BatchMigration.h"
#include "tools/zqmigrate/Run.h"
#include "tools/zqmigrate/Text.h"

namespace ZQFoundation::tools::zqmigrate {

namespace {

using detail::BatchMigration;

/// A name in an existing folder, the same for every path to it. If folders are still to be created, the name
/// begins with their names.
struct Place {
    dev_t device;
    ino_t inode;
    std::string name;

    auto operator<=>(const Place&) const = default;
};

/// Goes up the path to the first folder that exists, so that two spellings of one destination give one place,
/// even if folders on both paths are still to be created.
Place placeOf(const std::string& path) {
    for (std::size_t slash = path.rfind('/');; slash = path.rfind('/', slash - 1)) {
        const bool isRelative = slash == std::string::npos;
        struct stat folder {};
        const std::string above = isRelative ? "." : path.substr(0, slash + 1);
        if (::stat(above.c_str(), &folder) == 0 || isRelative || slash == 0) {
            return {folder.st_dev, folder.st_ino, path.substr(isRelative ? 0 : slash + 1)};
        }
    }
}

/// The target of a link as a path; empty for an item that is not a link. A target that is too long for a path
/// is truncated, and then matches nothing.
std::string targetOfLink(const std::string& path) {
    std::string text;
    if (detail::readLink(AT_FDCWD, path.c_str(), text) != detail::LinkResult::link || text[0] == '/') {
        return text;
    }
    return path.substr(0, path.rfind('/') + 1) + text;
}

/// Finds out how one file of a batch affects the plans of others.
class Conflicts {
public:
    explicit Conflicts(const Request& request) : request_(request) {}

    /// The first reason that applies is noted. Originals change only if they are moved or may be overwritten;
    /// in a run that only copies to free places, they are safe.
    void note(std::vector<Item>& items) {
        for (const Item& item : items) {
            originals_.emplace(placeOf(sourceOf(item)), &item);
        }
        const bool areOriginalsChanged = !request_.keepOriginal || request_.overwriteDestination;
        for (Item& item : items) {
            if (item.code == kFileMigrationSuccess && !take(placeOf(bytesOf(item.destination)))) {
                item.note = "an earlier file of this run takes its destination";
            } else if (areOriginalsChanged &&
                       isOtherOriginal(bytesOf(request_.destinationOf(item.path)), item)) {
                item.note = "its destination is an original of this run";
            } else if (areOriginalsChanged && isOtherOriginal(targetOfLink(sourceOf(item)), item)) {
                item.note = "it is a link to an original of this run";
            }
        }
    }

private:
    std::string sourceOf(const Item& item) const {
        return bytesOf(request_.source.stringByAppendingPathComponent(item.path));
    }

    /// An item that is its own destination or target is not a conflict between two files.
    bool isOtherOriginal(const std::string& path, const Item& item) const {
        const auto found = path.empty() ? originals_.end() : originals_.find(placeOf(path));
        return found != originals_.end() && found->second != &item;
    }

    /// False if the place, or that of a folder to be created above it, was taken before.
    bool take(const Place& place) {
        bool isFree = true;
        for (std::size_t slash = place.name.find('/'); slash != std::string::npos;
             slash = place.name.find('/', slash + 1)) {
            const Place above{place.device, place.inode, place.name.substr(0, slash)};
            isFree = isFree && taken_.emplace(above, true).first->second;
        }
        return taken_.emplace(place, false).second && isFree;
    }

    const Request& request_;
    std::map<Place, const Item*> originals_;
    std::map<Place, bool> taken_; ///< true for folders
};

/// Collects the plans of a batch. Planning copies nothing, so no progress is reported.
class Collector final : public BatchMigration::Observer {
public:
    explicit Collector(ZQMigrationObserver& observer) : observer_(observer) {}

    bool willMigrate(const NSString& path) override {
        return observer_.migrationMayContinue({path, ++count_, 0});
    }
    void didMigrate(const NSString& path, ZQFileMigrationRetvalType code,
                    const NSString& destination) override {
        items.push_back({path, code, destination, nullptr});
    }
    bool mayCopy(const std::string&) override { return true; }
    bool mayGoOn(std::uint64_t) override { return true; }

    std::vector<Item> items;

private:
    ZQMigrationObserver& observer_;
    std::uint64_t count_ = 0;
};

} // namespace

// The library's own plan, without side effects: folders are opened without recovering what is in them.
std::vector<Item> plannedItems(const Request& request, ZQMigrationObserver& observer) {
    const detail::MigrationPolicy policy{request.keepOriginal, request.createDestinationParentFolder,
                                         request.overwriteDestination, request.renameIfDestinationExists};
    Collector collector(observer);
    if (request.isBatch()) {
        const BatchMigration::Options options{request.extension, request.source, request.destination,
                                              request.includeDotFiles, policy};
        BatchMigration(options, collector).plan();
        Conflicts(request).note(collector.items);
    } else if (collector.willMigrate(request.source)) {
        detail::ItemPlace place;
        place.open(bytesOf(request.source));
        detail::DestinationFolder parent(request.destination.stringByDeletingLastPathComponent(), false);
        const bool isFolder = request.operation == Operation::folder;
        detail::ItemMigration migration(isFolder ? detail::folderKind : detail::fileKind, policy,
                                        request.source, place, request.destination);
        const detail::MigrationPlan& plan = migration.plan(parent);
        collector.didMigrate(request.source, plan.code, plan.destination);
    }
    return collector.items;
}

} // namespace ZQFoundation::tools::zqmigrate
