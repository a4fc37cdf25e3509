// SPDX-License-Identifier: MIT
// What the tests of migrations share: digests of trees, the operations with their flags as one value, and a
// desktop that records its notifications.
#ifndef ZQFOUNDATION_TESTS_MIGRATION_MIGRATIONSCENE_H
#define ZQFOUNDATION_TESTS_MIGRATION_MIGRATIONSCENE_H

#include <cstdio>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/objects/ClassesByName.h"
#include "migration/ZQFileMigrator.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/Values.h"

namespace ZQFoundation::scene {

/// Path relative to where the digest was taken ("" for the item itself) -> kind, permissions and contents.
using Digest = std::map<std::string, std::string>;
using Words = std::vector<std::string>;

/// What a digest contains besides kinds, names, contents and the texts of links.
enum class Detail {
    contents,
    permissions,
    times,      ///< permissions, and the modification time in nanoseconds
    everything, ///< those, the number and the owner of the item, and the time of its last change
};

inline std::string octal(mode_t mode) {
    char text[8];
    std::snprintf(text, sizeof text, "%04o", static_cast<unsigned>(mode & 07777U));
    return text;
}

inline std::string linkText(const std::string& path) {
    char text[4096];
    const ssize_t length = ::readlink(path.c_str(), text, sizeof text);
    return length < 0 ? "(none)" : std::string(text, static_cast<std::size_t>(length));
}

inline std::string describedItem(const std::string& path, const struct stat& information, Detail detail) {
    std::string text;
    switch (information.st_mode & S_IFMT) {
    case S_IFREG:
        text = "file [" + kit::contentsOf(path) + "]";
        break;
    case S_IFDIR:
        text = "folder";
        break;
    case S_IFLNK:
        return "link [" + linkText(path) + "]";
    case S_IFIFO:
        text = "pipe";
        break;
    default:
        text = "other";
        break;
    }
    if (detail != Detail::contents) {
        text += " " + octal(information.st_mode);
    }
    if (detail == Detail::times || detail == Detail::everything) {
        text += " " + std::to_string(information.st_mtim.tv_sec) + "." +
                std::to_string(information.st_mtim.tv_nsec);
    }
    if (detail == Detail::everything) {
        text += " " + std::to_string(information.st_ino) + " " + std::to_string(information.st_uid) + " " +
                std::to_string(information.st_ctim.tv_sec) + "." +
                std::to_string(information.st_ctim.tv_nsec);
    }
    return text;
}

/// The items at the path and below it, links not followed; empty when there is none.
inline Digest digestOf(const std::string& start, Detail detail = Detail::permissions) {
    Digest digest;
    Words waiting{""};
    while (!waiting.empty()) {
        const std::string name = waiting.back();
        waiting.pop_back();
        const std::string path = name.empty() ? start : start + "/" + name;
        struct stat information;
        if (::lstat(path.c_str(), &information) != 0) {
            continue;
        }
        digest[name] = describedItem(path, information, detail);
        DIR* const folder = S_ISDIR(information.st_mode) ? ::opendir(path.c_str()) : nullptr;
        while (const dirent* entry = folder != nullptr ? ::readdir(folder) : nullptr) {
            const std::string below = entry->d_name;
            if (below != "." && below != "..") {
                waiting.push_back(name.empty() ? below : name + "/" + below);
            }
        }
        if (folder != nullptr) {
            ::closedir(folder);
        }
    }
    return digest;
}

inline std::string shownDigest(const Digest& digest) {
    std::string text;
    for (const auto& [path, what] : digest) {
        text += "    '" + path + "' " + what + "\n";
    }
    return text;
}

/// Swaps two names in one step, so that there is always something at each of them.
inline bool exchange(const std::string& one, const std::string& other) {
    return ::syscall(SYS_renameat2, AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(),
                     2 /* RENAME_EXCHANGE */) == 0;
}

/// The four switches of a migration.
struct Flags {
    bool keepOriginal = false;
    bool createParent = false;
    bool overwrite = false;
    bool rename = false;
};

inline constexpr Flags nothingAllowed{};
inline constexpr Flags copying{true, false, false, false};
inline constexpr Flags creating{false, true, false, false};
inline constexpr Flags overwriting{false, false, true, false};
inline constexpr Flags renaming{false, false, false, true};
inline constexpr Flags overwritingAndRenaming{false, false, true, true};

inline constexpr Flags flagsOf(unsigned bits) {
    return {(bits & 1U) != 0, (bits & 2U) != 0, (bits & 4U) != 0, (bits & 8U) != 0};
}

inline std::string shownFlags(const Flags& flags) {
    return std::string(flags.keepOriginal ? "keep " : "") + (flags.createParent ? "create " : "") +
           (flags.overwrite ? "overwrite " : "") + (flags.rename ? "rename" : "");
}

inline unsigned migrateFile(const NSString& from, const NSString& to, const Flags& flags = {}) {
    return ZQFileMigrator::
        migrateFileFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
            from, to, flags.keepOriginal, flags.createParent, flags.overwrite, flags.rename);
}

inline unsigned migrateFolder(const NSString& from, const NSString& to, const Flags& flags = {}) {
    return ZQFileMigrator::
        migrateFolderFrom_to_keepOriginal_createDestinationParentFolder_overwriteDestinationFolder_renameIfDestinationFolderExists(
            from, to, flags.keepOriginal, flags.createParent, flags.overwrite, flags.rename);
}

enum class DotFiles { skipped, included };

inline NSDictionary migrateFiles(const NSString& extension, const NSString& from, const NSString& to,
                                 DotFiles dotFiles, const Flags& flags = {}) {
    return ZQFileMigrator::
        migrateFilesWithExtension_from_to_includeDotFiles_keepOriginal_createDestinationParentFolder_overwriteDestinationFile_renameIfDestinationFileExists(
            extension, from, to, dotFiles == DotFiles::included, flags.keepOriginal, flags.createParent,
            flags.overwrite, flags.rename);
}

/// The migration of one item, with the codes in which those of files and of folders differ.
struct Operation {
    bool isFolder;
    unsigned exists;
    unsigned isOther;
    unsigned overwritingFailed;
    unsigned writingFailed;

    unsigned operator()(const NSString& from, const NSString& to, const Flags& flags = {}) const {
        return isFolder ? migrateFolder(from, to, flags) : migrateFile(from, to, flags);
    }
};
inline constexpr Operation ofFiles{false, 30, 32, 34, 35};
inline constexpr Operation ofFolders{true, 31, 33, 36, 37};

/// The object that a host's desktop shares: records the folders that it is notified of.
class RecordingWorkspace : public NSObjectProtocol {
public:
    explicit RecordingWorkspace(Words& folders) : folders_(folders) {}
    bool respondsToSelector(const Selector& selector) const override {
        return selector == "noteFileSystemChanged:";
    }
    NSObject performSelector_withObject(const Selector&, const NSObject& folder) override {
        folders_.push_back(kit::utf8Of(NSString(folder)));
        return nullptr;
    }

private:
    Words& folders_;
};

/// The class of that object; answers "sharedWorkspace".
class RecordingWorkspaceClass : public NSObjectProtocol {
public:
    explicit RecordingWorkspaceClass(Words& folders) : shared_(makeObject<RecordingWorkspace>(folders)) {}
    bool respondsToSelector(const Selector& selector) const override { return selector == "sharedWorkspace"; }
    NSObject performSelector_withObject(const Selector&, const NSObject&) override { return shared_; }

private:
    NSObject shared_;
};

/// A desktop registered under a name for a scope.
class Desktop {
public:
    explicit Desktop(const char* name = "NSWorkspace")
        : registration_(name, makeObject<RecordingWorkspaceClass>(folders_)) {}
    /// The folders of which it was notified since the last call.
    Words takeFolders() { return std::exchange(folders_, {}); }

private:
    Words folders_;
    ClassRegistration registration_;
};

/// A scratch folder in which any user may work, with short ways to put things there.
class MigrationFolder : public kit::ScratchFolder {
public:
    MigrationFolder() { setMode("", 0777); }

    bool has(const std::string& name) const { return kit::exists(*this / name); }
    std::string contents(const std::string& name) const { return kit::contentsOf(*this / name); }
    /// The result of a batch of "log" files, among them those whose names begin with a period.
    std::string migrateLogs(const std::string& from, const std::string& to, const Flags& flags = {}) const {
        return kit::bytesOf(
            migrateFiles("log", *this / from, *this / to, DotFiles::included, flags).condensedDescription());
    }
    Digest digest(const std::string& name = "", Detail detail = Detail::permissions) const {
        return digestOf(name.empty() ? path() : *this / name, detail);
    }
};

} // namespace ZQFoundation::scene

#endif
