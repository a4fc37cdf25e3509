// SPDX-License-Identifier: MIT
#include "tools/zqmigrate/TrialTree.h"

#include <cerrno>

#include "foundation/files/PathHandle.h"
#include "foundation/system/LinkReading.h"

namespace ZQFoundation::zqmigrate {

namespace {

/// No real device has this number, so imagined items are like no real one.
constexpr dev_t nowhere = static_cast<dev_t>(-1);

constexpr std::size_t mostLinks = 40; // as many as the system follows

std::string below(const std::string& folder, const std::string& name) {
    std::string path = folder;
    if (path.empty() || path.back() != '/') {
        path.push_back('/');
    }
    return path.append(name);
}

/// What stands on the disk; false with `errno`.
bool look(const std::string& path, struct stat& information) {
    detail::PathHandle handle;
    return handle.reach(path) &&
           ::fstatat(handle.folder(), handle.name(), &information, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Whether a folder that does not exist yet could not hold such a name: the nearest one above that does exist
/// is asked.
bool isTooLong(const std::string& folder, const std::string& name) {
    struct stat ignored;
    for (std::size_t slash = folder.rfind('/'); slash != std::string::npos;
         slash = folder.rfind('/', slash - 1)) {
        if (look(folder.substr(0, slash + 1).append(name), ignored) || errno != ENOENT) {
            return errno == ENAMETOOLONG;
        }
        if (slash == 0) {
            break;
        }
    }
    return false;
}

std::string currentFolder() {
    std::string path(256, '\0');
    while (::getcwd(path.data(), path.size()) == nullptr) {
        if (errno != ERANGE) {
            return {};
        }
        path.resize(2 * path.size());
    }
    return path.substr(0, path.find('\0'));
}

/// Whether names may be looked up in the folder, its own "." and ".." among them.
bool maySearch(const TrialItem& folder) {
    if (folder.isImagined) {
        return ::geteuid() == 0 || (folder.information.st_mode & S_IXUSR) != 0;
    }
    detail::PathHandle handle;
    return handle.reach(folder.path) && ::faccessat(handle.folder(), handle.name(), X_OK, AT_EACCESS) == 0;
}

/// The names of a path, the first at the end. The slash at the end of a path is a name without a character:
/// it asks for a folder, which need not be searched.
void pushNames(const std::string& path, std::vector<std::string>& names) {
    std::vector<std::string> found;
    std::string name;
    for (std::size_t position = 0; detail::takeName(path, position, name);) {
        found.push_back(name);
    }
    if (!found.empty() && path.back() == '/') {
        found.emplace_back();
    }
    names.insert(names.end(), found.rbegin(), found.rend());
}

/// The root, and for a relative path the folders that lead to the current one.
std::vector<TrialItem> startOf(const std::string& path) {
    std::vector<TrialItem> folders;
    TrialItem folder;
    folder.path = "/";
    look(folder.path, folder.information);
    folders.push_back(folder);
    if (path.front() == '/') {
        return folders;
    }
    std::string name;
    const std::string current = currentFolder();
    for (std::size_t position = 0; detail::takeName(current, position, name);) {
        folder.path = below(folder.path, name);
        look(folder.path, folder.information);
        folders.push_back(folder);
    }
    return folders;
}

} // namespace

struct TrialTree::Walk {
    std::vector<std::string> names; ///< still to go, the next one at the end
    std::size_t links = 0;
};

bool TrialTree::find(const std::string& path, Links last, TrialPlace& place) const {
    Walk walk;
    pushNames(path, walk.names);
    place = {startOf(path), {}, std::nullopt};
    while (!walk.names.empty()) {
        const Found found = step(walk, last, place);
        if (found != Found::item) {
            return found == Found::nothing && walk.names.empty();
        }
    }
    if (place.name.empty()) {
        place.item = place.folders.back();
    }
    return true;
}

/// Goes on by one name. "nothing": the name is free.
TrialTree::Found TrialTree::step(Walk& walk, Links last, TrialPlace& place) const {
    const std::string name = walk.names.back();
    walk.names.pop_back();
    const bool isLast = walk.names.empty();
    if (name.empty()) {
        return Found::item;
    }
    if (name == "." || name == "..") {
        if (!maySearch(place.folders.back())) {
            return Found::failed;
        }
        if (name == ".." && place.folders.size() > 1) {
            place.folders.pop_back();
        }
        return Found::item;
    }
    TrialItem item;
    const Found found = lookUp(place.folders.back(), name, item);
    if (found == Found::item && S_ISLNK(item.information.st_mode) && (!isLast || last == Links::followed)) {
        return ++walk.links <= mostLinks && followLink(item, walk, place) ? Found::item : Found::failed;
    }
    if (found == Found::item && !isLast) {
        place.folders.push_back(item);
        return S_ISDIR(item.information.st_mode) ? Found::item : Found::failed;
    }
    place.name = name;
    place.item = found == Found::item ? std::optional(item) : std::nullopt;
    return found;
}

TrialTree::Found TrialTree::lookUp(const TrialItem& folder, const std::string& name, TrialItem& item) const {
    const auto change = changes_.find({folder.information.st_dev, folder.information.st_ino, name});
    if (change != changes_.end()) {
        item = change->second.value_or(TrialItem{});
        return change->second ? Found::item : Found::nothing;
    }
    item.path = below(folder.path, name);
    if (!folder.isImagined && look(item.path, item.information)) {
        return Found::item;
    }
    if (!folder.isImagined) {
        return errno == ENOENT ? Found::nothing : Found::failed;
    }
    return isTooLong(folder.path, name) ? Found::failed : Found::nothing;
}

std::string TrialTree::textOfLink(const TrialItem& item) {
    std::string text = item.target;
    detail::PathHandle handle;
    if (!item.isImagined && S_ISLNK(item.information.st_mode) && handle.reach(item.path)) {
        detail::readLink(handle.folder(), handle.name(), text);
    }
    return text;
}

bool TrialTree::followLink(const TrialItem& link, Walk& walk, TrialPlace& place) {
    const std::string target = textOfLink(link);
    if (target.empty()) {
        return false;
    }
    pushNames(target, walk.names);
    if (target.front() == '/') {
        place.folders.resize(1);
    }
    return true;
}

void TrialTree::imagine(const TrialPlace& place, mode_t mode, const std::string& target) {
    const TrialItem& folder = place.folders.back();
    TrialItem item;
    item.isImagined = true;
    item.path = below(folder.path, place.name);
    item.target = target;
    item.information.st_mode = mode;
    item.information.st_dev = nowhere;
    item.information.st_ino = ++imagined_;
    item.information.st_uid = ::geteuid();
    changes_[{folder.information.st_dev, folder.information.st_ino, place.name}] = item;
}

void TrialTree::forget(const TrialPlace& place) {
    const struct stat& folder = place.folders.back().information;
    changes_[{folder.st_dev, folder.st_ino, place.name}] = std::nullopt;
}

} // namespace ZQFoundation::zqmigrate
