// SPDX-License-Identifier: MIT
// Every source against every destination under every combination of the switches, as the rules say it: a
// small model of a file system and of the steps predicts the result, and the real one must produce the same.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Items.h"
#include "tests/migration/MigrationScene.h"

using namespace ZQFoundation;
using namespace scene;

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
            } else if (hasItem(made)) {
                return false; // a dangling link
            } else {
                items_[resolved(parentOf(made), true) + (parentOf(made).empty() ? "" : "/") + name] = {
                    Item::folder, "", 0755};
            }
        }
        return true;
    }

    bool hasItem(const std::string& path) const { return resolved(path, false) != "!"; }

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
        if (source == "!" || parent == "!" || hasItem(to)) {
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
            static const char* const kinds[] = {"file", "folder", "link", "pipe"};
            const bool hasText = item.kind == Item::file || item.kind == Item::link;
            all[path] = kinds[item.kind] + (hasText ? " [" + item.text + "]" : "") +
                        (item.kind == Item::link ? "" : " " + octal(item.mode));
        }
        return all;
    }

    /// Puts the same on the disk. Folders come before what they contain, as the paths sort so.
    void make(const MigrationFolder& folder) const {
        for (const auto& [path, item] : items_) {
            if (item.kind == Item::link) {
                folder.link(item.text, path);
                continue;
            }
            if (item.kind == Item::file) {
                folder.write(path, item.text);
            } else if (item.kind == Item::pipe) {
                folder.makePipe(path);
            } else {
                folder.makeFolder(path);
            }
            folder.setMode(path, item.mode);
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

/// One call in the model: the steps, in their order.
class Steps {
public:
    Steps(Model& model, const Operation& operation, const Flags& flags)
        : model_(model), operation_(operation), flags_(flags) {}

    unsigned run(const std::string& from, std::string to) {
        const std::string toParent = to == "?" ? "?" : parentOf(to);
        if (const unsigned code = testSource(from)) {
            return code;
        }
        if (const unsigned code = prepareParent(toParent)) {
            return code;
        }
        bool isFolder = operation_.isFolder;
        bool found = model_.exists(to, isFolder);
        if (found && !flags_.overwrite) {
            if (!flags_.rename) {
                return operation_.exists;
            }
            to = freeName(to);
            found = model_.exists(to, isFolder);
        }
        if (isFolder != operation_.isFolder) {
            return operation_.isOther;
        }
        if (found && !removeOld(from, to)) {
            return operation_.overwritingFailed;
        }
        if (!model_.copy(from, to)) {
            return operation_.writingFailed;
        }
        notified.push_back(toParent);
        if (flags_.keepOriginal) {
            return 0;
        }
        if (!model_.remove(from)) {
            return 15;
        }
        notified.push_back(parentOf(from));
        return 0;
    }

    Words notified; ///< folders, for the desktop

private:
    unsigned testSource(const std::string& from) const {
        bool isFolder = false;
        if (!model_.exists(from, isFolder)) {
            return 10;
        }
        if (operation_.isFolder) {
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
    const Operation& operation_;
    Flags flags_;
};

// The rows.

struct Place {
    const char* what;
    const char* path; ///< "%" is the item's name
};
constexpr Place sources[] = {
    {"missing", "from/%"},        {"file", "from/%"},
    {"empty file", "from/%"},     {"folder", "from/%"},
    {"empty folder", "from/%"},   {"link to file", "from/%"},
    {"link to folder", "from/%"}, {"dangling link", "from/%"},
    {"pipe", "from/%"},           {"unreadable file", "from/%"},
    {"empty path", "?"},          {"missing folder", "nosuch/%"},
    {"below a file", "plain/%"},  {"through a link", "fromLink/%"},
};

constexpr Place destinations[] = {
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
    const std::map<std::string, Item> items{{"file", {Item::file, "contents of " + path, 0640}},
                                            {"through a link", {Item::file, "contents of " + path, 0640}},
                                            {"empty file", {Item::file, "", 0600}},
                                            {"unreadable file", {Item::file, "", 0200}},
                                            {"folder", {Item::folder, "", 0750}},
                                            {"empty folder", {Item::folder, "", 0750}},
                                            {"link to file", {Item::link, "../targets/file", 0777}},
                                            {"link to folder", {Item::link, "../targets/folder", 0777}},
                                            {"dangling link", {Item::link, "../targets/nosuch", 0777}},
                                            {"pipe", {Item::pipe, "", 0640}}};
    if (const auto item = items.find(what); item != items.end()) {
        model.put(path, item->second);
    }
    if (what == "folder") {
        model.put(path + "/sub", {Item::folder, "", 0711});
        model.put(path + "/sub/one", {Item::file, "one of " + path, 0444});
        model.put(path + "/two", {Item::link, "sub", 0777});
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
void compareRow(const Place& source, const Place& destination, const Operation& operation, const Flags& flags,
                const std::string& name) {
    const std::string row = std::string(source.what) + " to " + destination.what + " as " + name +
                            (operation.isFolder ? " (folder) " : " (file) ") + shownFlags(flags);
    const MigrationFolder folder;
    Model model = sceneFor(source.what, destination.what, name, kit::isRoot());
    model.make(folder);
    const std::string from = filledIn(source.path, name);
    const std::string to = destination.path[0] == '=' ? from : filledIn(destination.path, name);
    Steps steps(model, operation, flags);
    const unsigned expected = steps.run(from, to);

    Desktop fileDesktop("NSWorkspace");
    Desktop folderDesktop("SomeClass");
    const std::string realFrom = from == "?" ? "" : folder / from;
    const std::string realTo = to == "?" ? "" : folder / to;
    const unsigned code = operation(realFrom, realTo, flags);

    for (std::string& path : steps.notified) {
        path = folder / path;
    }
    EXPECT_EQ(code, expected) << row;
    EXPECT_EQ(shownDigest(folder.digest()), shownDigest(model.digest())) << row;
    EXPECT_EQ((operation.isFolder ? folderDesktop : fileDesktop).takeFolders(), steps.notified) << row;
    EXPECT_EQ((operation.isFolder ? fileDesktop : folderDesktop).takeFolders(), Words{}) << row;
}

/// Under all combinations of flags that contain these.
void compareAll(const Operation& operation, const std::string& name, const Flags& flags = {}) {
    const kit::Umask mask(022);
    const kit::ScratchInMemory memory;
    for (const Place& source : sources) {
        for (const Place& destination : destinations) {
            for (unsigned bits = 0; bits < 16; ++bits) {
                if ((flags.createParent && !flagsOf(bits).createParent) ||
                    (flags.rename && !flagsOf(bits).rename)) {
                    continue;
                }
                compareRow(source, destination, operation, flagsOf(bits), name);
                if (::testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

} // namespace

TEST(MigrationTable, isFollowedForFiles) { compareAll(ofFiles, "item.txt"); }

TEST(MigrationTable, isFollowedForFilesWithoutExtension) { compareAll(ofFiles, "item", renaming); }

TEST(MigrationTable, isFollowedForFolders) { compareAll(ofFolders, "item"); }

TEST(MigrationTable, isFollowedForFoldersWithExtension) { compareAll(ofFolders, "item.box", renaming); }

TEST(MigrationTable, isFollowedForAnOrdinaryUser) {
    kit::expectAsUser([] {
        compareAll(ofFiles, "item.txt", creating);
        compareAll(ofFolders, "item", creating);
    });
}
