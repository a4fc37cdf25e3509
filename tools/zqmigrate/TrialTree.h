// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_TRIALTREE_H
#define ZQFOUNDATION_ZQMIGRATE_TRIALTREE_H

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <sys/stat.h>

namespace ZQFoundation::zqmigrate {

/// An item of the disk, or one that a trial has made in thought.
struct TrialItem {
    struct stat information {};
    std::string path; ///< on the disk, without links and ".."; for what is only thought of, where it would be
    std::string target; ///< the text of a link that is only thought of
    bool isImagined = false;
};

/// Where a path leads: a name in the last of the folders that lead there from the root. Without a name it
/// leads to that folder itself, as "/", "." and ".." do.
struct TrialPlace {
    std::vector<TrialItem> folders;
    std::string name;
    std::optional<TrialItem> item; ///< nothing where the name is free
};

/// The files as they would be after the changes that a trial has made in thought; the disk is only looked at.
///
/// Folders are known by device and inode, so a change shows by whatever links and mounts a path gets there.
/// Names are told apart by their bytes: that a folder takes "A" and "a" for one name shows only for what is
/// on the disk.
class TrialTree {
public:
    enum class Links { followed, notFollowed };

    /// False when a folder on the way is missing or no folder, or the name cannot be looked up.
    bool find(const std::string& path, Links last, TrialPlace& place) const;

    /// Puts a new item of that kind and permissions at a place that is free.
    void imagine(const TrialPlace& place, mode_t mode, const std::string& target = {});

    /// Empty for what is no link.
    static std::string textOfLink(const TrialItem& item);

    /// Takes the item away from its place.
    void forget(const TrialPlace& place);

private:
    using Key = std::tuple<dev_t, ino_t, std::string>;

    enum class Found { item, nothing, failed };
    struct Walk;

    Found lookUp(const TrialItem& folder, const std::string& name, TrialItem& item) const;
    Found step(Walk& walk, Links last, TrialPlace& place) const;
    static bool followLink(const TrialItem& link, Walk& walk, TrialPlace& place);

    std::map<Key, std::optional<TrialItem>> changes_;
    ino_t imagined_ = 0;
};

} // namespace ZQFoundation::zqmigrate

#endif
