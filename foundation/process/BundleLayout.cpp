// SPDX-License-Identifier: MIT
// Finds a bundle's Info dictionary, resources and program.
// Locations are tried in a fixed order, by what exists. A bundle that cannot be recognized still has a
// folder, so resources may lie beside a program during development.
#include "foundation/process/BundleLayout.h"

#include <algorithm>
#include <cerrno>

#include <dirent.h>

#include "foundation/process/FileReading.h"

namespace ZQFoundation::detail {

namespace {

constexpr const char localizedExtension[] = ".lproj";

BundleLayout applicationLayout(const std::string& folder) {
    const std::string contents = folder + "/Contents";
    return {folder, contents + "/Info.plist", contents + "/Resources", contents + "/MacOS"};
}

bool endsWith(const std::string& text, const std::string& end) noexcept {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// Closes a folder at the end of its scope.
/// The names are only needed once for each bundle, so the C library's stream is good enough here.
class OpenFolder {
public:
    explicit OpenFolder(const std::string& path) noexcept : stream_(::opendir(path.c_str())) {}
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;
    ~OpenFolder() {
        if (stream_ != nullptr) {
            ::closedir(stream_);
        }
    }
    explicit operator bool() const noexcept { return stream_ != nullptr; }
    const dirent* next() noexcept { return stream_ != nullptr ? ::readdir(stream_) : nullptr; }

private:
    DIR* stream_;
};

} // namespace

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string lastComponentOf(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }

BundleLayout layoutOfFolder(const std::string& folder) {
    // An application is recognized by its Contents folder, even if the Info dictionary is missing.
    if (isFolder(folder + "/Contents")) {
        return applicationLayout(folder);
    }
    const std::string resources = folder + "/Resources";
    if (fileExists(resources + "/Info.plist")) {
        return {folder, resources + "/Info.plist", resources, folder};
    }
    // A flat bundle may have its resources in the folder itself.
    return {folder, folder + "/Info.plist", isFolder(resources) ? resources : folder, folder};
}

BundleLayout layoutOfProgram(const std::string& program, const std::string& processName) {
    if (program.empty()) {
        return {};
    }
    const std::string folder = folderOf(program);
    // The program's own place is enough evidence; the Info dictionary may be missing or unreadable.
    if (endsWith(folder, "/Contents/MacOS")) {
        return applicationLayout(folderOf(folderOf(folder)));
    }
    if (fileExists(folder + "/Resources/Info.plist") || fileExists(folder + "/Info.plist")) {
        return layoutOfFolder(folder);
    }
    // Installed programs share their folder, so their data are elsewhere, under the name of the process.
    if (lastComponentOf(folder) == "bin" && !processName.empty()) {
        const std::string shared = folderOf(folder) + "/share/" + processName;
        if (isFolder(shared)) {
            BundleLayout layout = layoutOfFolder(shared);
            // Only the data are there.
            layout.programs = folder;
            return layout;
        }
    }
    // No path of an Info dictionary: nothing is read from a folder that merely contains the program.
    return {folder, "", folder, folder};
}

BundleLayout layoutOfLibrary(const std::string& library) {
    if (library.empty()) {
        return {};
    }
    const std::string folder = folderOf(library);
    const std::string beside = folder + "/Resources";
    if (isFolder(beside)) {
        return {folder, beside + "/Info.plist", beside, folder};
    }
    // Libraries are in lib or, by architecture, one folder deeper. The folder's name contains the major
    // version, so that two versions can be installed side by side.
    std::string shared = folder + "/../share/" ZQ_SHARED_FOLDER;
    const std::string deeper = folder + "/../../share/" ZQ_SHARED_FOLDER;
    if (!isFolder(shared) && isFolder(deeper)) {
        shared = deeper;
    }
    return {shared, shared + "/Info.plist", shared, folder};
}

std::vector<std::string> localizedFolders(const std::string& resources, bool& isKnown) {
    std::vector<std::string> names;
    OpenFolder folder(resources);
    // A folder that is missing has no localizations for good; one that cannot be opened now may have.
    if (!folder && isPassing(errno)) {
        isKnown = false;
    }
    while (const dirent* entry = folder.next()) {
        const std::string name = entry->d_name;
        const std::size_t extension = sizeof localizedExtension - 1;
        if (name.size() > extension && endsWith(name, localizedExtension) &&
            isFolder(resources + "/" + name)) {
            names.push_back(name.substr(0, name.size() - extension));
        }
    }
    // The order of the file system is arbitrary, and a bundle's localizations should not depend on it.
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace ZQFoundation::detail
