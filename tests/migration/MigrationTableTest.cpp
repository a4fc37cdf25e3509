// SPDX-License-Identifier: MIT
// Every source against every destination under every combination of the switches, as the rules say it: a
// small model of a file system and of the steps predicts the result, and the real one must produce the same.
#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/migration/MigrationScene.h"

using scene::Digest;
using scene::Flags;
using scene::Words;

namespace {

// The model. Paths are relative to the scene, "" is the scene itself; a leading "/" counts for nothing.

struct Item {
    enum Kind { file, folder, link, pipe } kind = file;
    std::string text; ///< contents, or what a link says
    mode_t mode = 0644;
};

std::string parentOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

/// A tree in memory. The path "?" stands for the empty path, at which nothing exists.
class Model {
public:
    explicit Model(bool privileged) : privileged_(privileged) { items_[""] = {Item::folder, "", 0777}; }

    void put(const std::string& path, const Item& item) { items_[path] = item; }

    /// What the path refers to: an existing item's own path, or "!" when it is dangling.
    std::string resolved(const std::string& path, bool followLast) const {
        std::string at;
        Words waiting = split(path);
        for (int links = 0; !waiting.empty();) {
            const std::string name = waiting.front();
            waiting.erase(waiting.begin());
            if (name == "..") {
                at = parentOf(at);
                continue;
            }
            const std::string next = at.empty() ? name : at + "/" + name;
            const auto found = items_.find(next);
            if (found == items_.end() || items_.at(at).kind != Item::folder) {
                return "!";
            }
            if (found->second.kind == Item::link && (followLast || !waiting.empty())) {
                if (++links > 32) {
                    return "!";
                }
                Words more = split(found->second.text);
                waiting.insert(waiting.begin(), more.begin(), more.end());
            } else {
                at = next;
            }
        }
        return at;
    }

    /// Follows links; the flag is written only when something is found.
    bool exists(const std::string& path, bool& isFolder) const {
        const std::string where = resolved(path, true);
        if (path == "?" || where == "!") {
            return false;
        }
        isFolder = items_.at(where).kind == Item::folder;
        return true;
    }

    bool isReadable(const std::string& path) const {
        return privileged_ || (items_.at(resolved(path, true)).mode & 0400U) != 0;
    }

    bool createFolders(const std::string& path) {
        if (path == "?") {
            return false;
        }
        std::string made;
        for (const std::string& name : split(path)) {
            made = made.empty() ? name : made + "/" + name;
            bool isFolder = false;
            if (exists(made, isFolder)) {
                if (!isFolder) {
                    return false;
                }
            } else if (stands(made)) {
                return false; // a dangling link
            } else {
                items_[resolved(parentOf(made), true) + (parentOf(made).empty() ? "" : "/") + name] = {
                    Item::folder, "", 0755};
            }
        }
        return true;
    }

    bool stands(const std::string& path) const { return resolved(path, false) != "!"; }

    bool remove(const std::string& path) {
        const std::string where = resolved(path, false);
        if (where == "!") {
            return false;
        }
        for (auto item = items_.begin(); item != items_.end();) {
            const bool inside = item->first == where || item->first.rfind(where + "/", 0) == 0;
            item = inside ? items_.erase(item) : std::next(item);
        }
        return true;
    }

    bool copy(const std::string& from, const std::string& to) {
        const std::string source = resolved(from, false);
        const std::string parent = resolved(parentOf(to), true);
        if (source == "!" || parent == "!" || stands(to)) {
            return false;
        }
        const std::string target = parent + "/" + to.substr(to.find_last_of('/') + 1);
        std::map<std::string, Item> added;
        for (const auto& [path, item] : items_) {
            if (path == source || path.rfind(source + "/", 0) == 0) {
                added[target + path.substr(source.size())] = item;
            }
        }
        items_.insert(added.begin(), added.end());
        return true;
    }

    Digest digest() const {
        Digest all;
        for (const auto& [path, item] : items_) {
            const std::string mode = " " + scene::octal(item.mode);
            switch (item.kind) {
            case Item::file:
                all[path] = "file [" + item.text + "]" + mode;
                break;
            case Item::folder:
                all[path] = "folder" + mode;
                break;
            case Item::link:
                all[path] = "link [" + item.text + "]";
                break;
            case Item::pipe:
                all[path] = "pipe" + mode;
                break;
            }
        }
        return all;
    }

    /// Puts the same onto the disk. Folders come before what they hold, as the paths sort so.
    void make(const std::string& base) const {
        for (const auto& [path, item] : items_) {
            const std::string place = base + "/" + path;
            switch (item.kind) {
            case Item::file: {
                const int descriptor = ::open(place.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
                EXPECT_EQ(::write(descriptor, item.text.data(), item.text.size()),
                          static_cast<ssize_t>(item.text.size()));
                ::fchmod(descriptor, item.mode);
                ::close(descriptor);
                break;
            }
            case Item::folder:
                ::mkdir(place.c_str(), item.mode);
                ::chmod(place.c_str(), item.mode);
                break;
            case Item::link:
                EXPECT_EQ(::symlink(item.text.c_str(), place.c_str()), 0);
                break;
            case Item::pipe:
                EXPECT_EQ(::mkfifo(place.c_str(), item.mode), 0);
                break;
            }
        }
    }

private:
    static Words split(const std::string& path) {
        Words names;
        std::size_t start = 0;
        while (start <= path.size()) {
            const std::size_t slash = std::min(path.find('/', start), path.size());
            if (slash > start) {
                names.push_back(path.substr(start, slash - start));
            }
            start = slash + 1;
        }
        return names;
    }

    std::map<std::string, Item> items_;
    bool privileged_;
};

enum class Operation { file, folder };

/// The codes in which the two operations differ.
struct Codes {
    unsigned exists;
    unsigned isOther;
    unsigned overwriting;
    unsigned writing;
};
constexpr Codes codesOf(Operation operation) {
    return operation == Operation::file ? Codes{30, 32, 34, 35} : Codes{31, 33, 36, 37};
}

/// One call in the model: the steps, in their order.
class Steps {
public:
    Steps(Model& model, Operation operation, const Flags& flags)
        : model_(model), operation_(operation), flags_(flags), codes_(codesOf(operation)) {}

    unsigned run(const std::string& from, std::string to) {
        const std::string toParent = to == "?" ? "?" : parentOf(to);
        if (const unsigned code = testSource(from)) {
            return code;
        }
        if (const unsigned code = prepareParent(toParent)) {
            return code;
        }
        bool isFolder = operation_ == Operation::folder;
        bool found = model_.exists(to, isFolder);
        if (found && !flags_.overwrite) {
            if (!flags_.rename) {
                return codes_.exists;
            }
            to = freeName(to);
            found = model_.exists(to, isFolder);
        }
        if (isFolder != (operation_ == Operation::folder)) {
            return codes_.isOther;
        }
        if (found && !removeOld(from, to)) {
            return codes_.overwriting;
        }
        if (!model_.copy(from, to)) {
            return codes_.writing;
        }
        told.push_back(toParent);
        if (flags_.keepOriginal) {
            return 0;
        }
        if (!model_.remove(from)) {
            return 15;
        }
        told.push_back(parentOf(from));
        return 0;
    }

    Words told;

private:
    unsigned testSource(const std::string& from) const {
        bool isFolder = false;
        if (!model_.exists(from, isFolder)) {
            return 10;
        }
        if (operation_ == Operation::folder) {
            return isFolder ? 0 : 13;
        }
        return isFolder ? 12 : model_.isReadable(from) ? 0 : 14;
    }

    unsigned prepareParent(const std::string& parent) {
        bool isFolder = false;
        if (!model_.exists(parent, isFolder)) {
            return !flags_.createParent ? 20 : model_.createFolders(parent) ? 0 : 22;
        }
        return isFolder ? 0 : 21;
    }

    std::string freeName(const std::string& path) const {
        const std::size_t slash = path.find_last_of('/') + 1;
        const std::size_t dot = path.find_last_of('.');
        const bool hasExtension = dot != std::string::npos && dot > slash;
        for (int counter = 1;; ++counter) {
            const std::string candidate = (hasExtension ? path.substr(0, dot) : path) + " " +
                                          std::to_string(counter) + "." +
                                          (hasExtension ? path.substr(dot + 1) : "");
            bool ignored = false;
            if (!model_.exists(candidate, ignored)) {
                return candidate;
            }
        }
    }

    /// An item is never removed to make room for itself.
    bool removeOld(const std::string& from, const std::string& to) {
        return model_.resolved(from, false) != model_.resolved(to, false) && model_.remove(to);
    }

    Model& model_;
    Operation operation_;
    Flags flags_;
    Codes codes_;
};

// The rows.

struct Source {
    const char* what;
    const char* path; ///< "%" is the item's name
};
constexpr Source sources[] = {
    {"missing", "from/%"},        {"file", "from/%"},
    {"empty file", "from/%"},     {"folder", "from/%"},
    {"empty folder", "from/%"},   {"link to file", "from/%"},
    {"link to folder", "from/%"}, {"dangling link", "from/%"},
    {"pipe", "from/%"},           {"unreadable file", "from/%"},
    {"empty path", "?"},          {"missing folder", "nosuch/%"},
    {"below a file", "plain/%"},  {"through a link", "fromLink/%"},
};

struct Destination {
    const char* what;
    const char* path;
};
constexpr Destination destinations[] = {
    {"missing", "to/%"},
    {"missing parent", "new/deep/%"},
    {"parent is a file", "plain/%"},
    {"parent is below a file", "plain/sub/%"},
    {"parent is a dangling link", "nowhere/%"},
    {"parent is a link to a folder", "toLink/%"},
    {"file", "to/%"},
    {"folder", "to/%"},
    {"link to file", "to/%"},
    {"link to folder", "to/%"},
    {"dangling link", "to/%"},
    {"pipe", "to/%"},
    {"file, first candidate is a folder", "to/%"},
    {"same item", "="},
    {"empty path", "?"},
};

std::string filledIn(const std::string& path, const std::string& name) {
    const std::size_t place = path.find('%');
    return place == std::string::npos ? path : path.substr(0, place) + name;
}

void addItem(Model& model, const std::string& path, const std::string& what) {
    if (what == "file" || what == "through a link") {
        model.put(path, {Item::file, "contents of " + path, 0640});
    } else if (what == "empty file") {
        model.put(path, {Item::file, "", 0600});
    } else if (what == "unreadable file") {
        model.put(path, {Item::file, "", 0200});
    } else if (what == "folder" || what == "empty folder") {
        model.put(path, {Item::folder, "", 0750});
        if (what == "folder") {
            model.put(path + "/sub", {Item::folder, "", 0711});
            model.put(path + "/sub/one", {Item::file, "one of " + path, 0444});
            model.put(path + "/two", {Item::link, "sub", 0777});
        }
    } else if (what == "link to file") {
        model.put(path, {Item::link, "../targets/file", 0777});
    } else if (what == "link to folder") {
        model.put(path, {Item::link, "../targets/folder", 0777});
    } else if (what == "dangling link") {
        model.put(path, {Item::link, "../targets/nosuch", 0777});
    } else if (what == "pipe") {
        model.put(path, {Item::pipe, "", 0640});
    }
}

Model sceneFor(const std::string& source, const std::string& destination, const std::string& name,
               bool privileged) {
    Model model(privileged);
    for (const char* folder : {"from", "to", "targets", "targets/folder"}) {
        model.put(folder, {Item::folder, "", 0755});
    }
    model.put("targets/file", {Item::file, "target", 0644});
    model.put("targets/folder/inside", {Item::file, "inside", 0644});
    model.put("plain", {Item::file, "plain", 0644});
    model.put("nowhere", {Item::link, "nosuch", 0777});
    model.put("toLink", {Item::link, "to", 0777});
    model.put("fromLink", {Item::link, "from", 0777});
    addItem(model, "from/" + name, source);
    addItem(model, "to/" + name, destination);
    if (destination == "file, first candidate is a folder") {
        addItem(model, "to/" + name, "file");
        const std::size_t dot = name.find_last_of('.');
        const bool hasExtension = dot != std::string::npos;
        addItem(model, "to/" + name.substr(0, dot) + " 1." + (hasExtension ? name.substr(dot + 1) : ""),
                "folder");
    }
    return model;
}

/// One row on the disk against the same row in the model.
void compareRow(const Source& source, const Destination& destination, Operation operation, const Flags& flags,
                const std::string& name) {
    const std::string row = std::string(source.what) + " to " + destination.what + " as " + name +
                            (operation == Operation::file ? " (file) " : " (folder) ") +
                            scene::shownFlags(flags);
    const scene::MigrationFolder folder;
    Model model = sceneFor(source.what, destination.what, name, scene::isRoot());
    model.make(folder.path());
    const std::string from = filledIn(source.path, name);
    const std::string to = destination.path[0] == '=' ? from : filledIn(destination.path, name);
    Steps steps(model, operation, flags);
    const unsigned expected = steps.run(from, to);

    const scene::Desktop fileDesktop("NSWorkspace");
    const scene::Desktop folderDesktop("SomeClass");
    const std::string realFrom = from == "?" ? "" : folder / from;
    const std::string realTo = to == "?" ? "" : folder / to;
    const bool isFile = operation == Operation::file;
    const unsigned code =
        isFile ? scene::migrateFile(realFrom, realTo, flags) : scene::migrateFolder(realFrom, realTo, flags);

    Words told;
    for (const std::string& path : steps.told) {
        told.push_back(folder / path);
    }
    EXPECT_EQ(code, expected) << row;
    EXPECT_EQ(scene::shownDigest(folder.digest()), scene::shownDigest(model.digest())) << row;
    EXPECT_EQ((isFile ? fileDesktop : folderDesktop).told(), told) << row;
    EXPECT_EQ((isFile ? folderDesktop : fileDesktop).told(), Words{}) << row;
}

void compareAll(Operation operation, const std::string& name) {
    const scene::Umask mask(022);
    const scene::ScenesInMemory memory;
    for (const Source& source : sources) {
        for (const Destination& destination : destinations) {
            for (unsigned bits = 0; bits < 16; ++bits) {
                compareRow(source, destination, operation, scene::flagsOf(bits), name);
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

} // namespace

TEST(MigrationTable, holdsForFiles) { compareAll(Operation::file, "item.txt"); }

TEST(MigrationTable, holdsForFilesWithoutExtension) { compareAll(Operation::file, "item"); }

TEST(MigrationTable, holdsForFolders) { compareAll(Operation::folder, "item"); }

TEST(MigrationTable, holdsForFoldersWithExtension) { compareAll(Operation::folder, "item.box"); }

TEST(MigrationTable, holdsForAnOrdinaryUser) {
    const bool passed = scene::checkedWithoutPrivileges([] {
        compareAll(Operation::file, "item.txt");
        compareAll(Operation::folder, "item");
    });
    EXPECT_TRUE(passed);
}
