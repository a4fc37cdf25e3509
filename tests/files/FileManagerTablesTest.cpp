// SPDX-License-Identifier: MIT
// The file manager's own operations, row by row, on real files of the test's own.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <vector>

#include <dirent.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSNumber.h"
#include "tests/process/ItemFacts.h"

using namespace ZQFoundation;

namespace {

using scene::insideFolder;
using scene::isFolder;
using scene::isLink;
using scene::modeOf;
using scene::stands;

using Words = std::vector<std::string>;

NSFileManager& files() { return NSFileManager::defaultManager(); }

NSData bytes(const std::string& text) { return NSData::dataWithBytes_length(text.data(), text.size()); }

NSDictionary permissions(int mode) { return NSDictionary{{NSFilePosixPermissions, mode}}; }

struct stat informationOf(const std::string& path) {
    struct stat information {};
    EXPECT_EQ(::lstat(path.c_str(), &information), 0) << path;
    return information;
}

/// The names in a folder in the order in which the system returns them.
Words namesIn(const std::string& path) {
    Words names;
    DIR* const folder = ::opendir(path.c_str());
    while (const dirent* entry = folder != nullptr ? ::readdir(folder) : nullptr) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    if (folder != nullptr) {
        ::closedir(folder);
    }
    return names;
}

Words listed(const std::string& path) {
    Words names;
    for (const NSObject& name : files().contentsOfDirectoryAtPath_error(path)) {
        std::string nameBytes;
        EXPECT_TRUE(NSString(name).getFileSystemBytes(nameBytes));
        names.push_back(nameBytes);
    }
    return names;
}

/// The umask for a scope.
class Umask {
public:
    explicit Umask(mode_t mask) : before_(::umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { ::umask(before_); }

private:
    mode_t before_;
};

/// file (3 bytes), folder/, and links to them.
struct Items {
    Items() {
        folder.write("file", "abc");
        folder.makeFolder("folder");
        link("file", "toFile");
        link("folder", "toFolder");
        link("nosuch", "dangling");
        link("loop", "loop");
    }
    void link(const char* target, const char* name) const {
        EXPECT_EQ(::symlink(target, (folder / name).c_str()), 0) << name;
    }
    std::string operator/(const std::string& name) const { return folder / name; }

    scene::Folder folder;
};

bool createFolder(StringView path, bool deep, const NSDictionary& attributes = {}) {
    return files().createDirectoryAtPath_withIntermediateDirectories_attributes_error(path, deep, attributes);
}

/// What each operation answers for a path that none can use: one letter for each that did not fail.
std::string successesFor(StringView path) {
    std::string successes;
    bool isDirectory = false;
    successes += files().fileExistsAtPath(path) ? "e" : "";
    successes += files().fileExistsAtPath_isDirectory(path, &isDirectory) ? "E" : "";
    successes += files().isReadableFileAtPath(path) ? "r" : "";
    successes += files().isWritableFileAtPath(path) ? "w" : "";
    successes += files().attributesOfItemAtPath_error(path) ? "a" : "";
    successes += files().contentsOfDirectoryAtPath_error(path) ? "l" : "";
    successes += createFolder(path, false) ? "d" : "";
    successes += createFolder(path, true) ? "D" : "";
    successes += files().createFileAtPath_contents_attributes(path, bytes("x"), {}) ? "f" : "";
    successes += files().removeItemAtPath_error(path) ? "x" : "";
    return successes;
}

} // namespace

// Paths.

TEST(FileManagerTables, failForPathsThatNoFileCanHave) {
    const Items items;
    const auto below = [&items](std::u16string name) {
        const std::u16string whole = NSString(items / "").utf16() + name;
        return NSString::stringWithCharacters_length(whole.data(), whole.size());
    };
    EXPECT_EQ(successesFor(nullptr), "");
    EXPECT_EQ(successesFor(""), "");
    EXPECT_EQ(successesFor(below(std::u16string(u"file\0", 5))), "");
    EXPECT_EQ(successesFor(below(std::u16string(u"new\0x", 5))), "");
    EXPECT_EQ(successesFor(below(u"a\xD800")), "");
    EXPECT_EQ(successesFor(below(u"\xDBFFz")), "");
    EXPECT_EQ(successesFor(below(u"a\xDC00")), "") << "stands for no byte";
    EXPECT_EQ(successesFor(below(u"a\xDC7F")), "") << "an ASCII byte needs no surrogate";
    EXPECT_EQ(successesFor(below(u"a\xDD00")), "");
    EXPECT_EQ(scene::contentsOf(items / "file"), "abc");
    EXPECT_EQ(namesIn(items.folder.path()).size(), 6U);
}

TEST(FileManagerTables, nameFilesByTheirBytes) {
    const scene::Folder folder;
    const std::string nameBytes = "caf\xC3\xA9 \xFF\x80";
    const std::string whole = folder / nameBytes;
    const NSString path = NSString::stringWithFileSystemBytes(whole.data(), whole.size());
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(path, bytes("x"), {}));
    EXPECT_EQ(namesIn(folder.path()), Words{nameBytes});
    EXPECT_EQ(listed(folder.path()), Words{nameBytes});
    EXPECT_TRUE(files().fileExistsAtPath(path));
    EXPECT_TRUE(files().isReadableFileAtPath(path));
    EXPECT_TRUE(files().attributesOfItemAtPath_error(path));
    EXPECT_TRUE(files().removeItemAtPath_error(path));
    EXPECT_TRUE(createFolder(path, true));
    EXPECT_EQ(namesIn(folder.path()), Words{nameBytes});
}

TEST(FileManagerTables, takeRelativePathsFromTheCurrentFolderAndNeverExpandATilde) {
    const scene::Folder folder;
    folder.write("home/file", "x");
    folder.write("current/file", "x");
    const std::string home = folder / "home";
    const scene::Variable variable("HOME", home.c_str());
    EXPECT_TRUE(insideFolder(folder / "current", [] {
        return files().fileExistsAtPath("file") && !files().fileExistsAtPath("~") &&
               !files().fileExistsAtPath("~/file") && !files().isReadableFileAtPath("~") &&
               !files().isWritableFileAtPath("~") && !files().attributesOfItemAtPath_error("~/file") &&
               !files().contentsOfDirectoryAtPath_error("~") && !files().removeItemAtPath_error("~/file") &&
               createFolder("~", false) && createFolder("~/a/b", true) &&
               files().createFileAtPath_contents_attributes("~/made", {}, {}) &&
               files().removeItemAtPath_error("file");
    }));
    EXPECT_TRUE(isFolder(folder / "current/~/a/b"));
    EXPECT_TRUE(stands(folder / "current/~/made"));
    EXPECT_FALSE(stands(folder / "current/file"));
    EXPECT_EQ(namesIn(home), Words{"file"});
}

TEST(FileManagerTables, keepErrnoWhateverHappens) {
    const Items items;
    errno = EDOM;
    for (const char* const name : {"nosuch", "file", "file/x", "folder", "dangling", "loop"}) {
        successesFor(items / name);
        EXPECT_EQ(errno, EDOM) << name;
        errno = EDOM;
    }
    successesFor(nullptr);
    EXPECT_EQ(errno, EDOM);
}

// What is there.

TEST(FileManagerTables, findWhatExistsThroughLinks) {
    const Items items;
    const struct {
        const char* name;
        bool exists;
        bool isDirectory;
    } rows[] = {
        {"file", true, false},       {"folder", true, true},     {"toFile", true, false},
        {"toFolder", true, true},    {"dangling", false, false}, {"loop", false, false},
        {"nosuch", false, false},    {"file/", false, false},    {"toFile/", false, false},
        {"folder/", true, true},     {"toFolder/", true, true},  {"file/x", false, false},
        {"folder/.", true, true},    {"folder/..", true, true},  {"folder/../file", true, false},
        {"nosuch/..", false, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(files().fileExistsAtPath(items / row.name), row.exists) << row.name;
        EXPECT_EQ(files().fileExistsAtPath_isDirectory(items / row.name, nullptr), row.exists) << row.name;
        // The flag is written only together with a yes.
        for (const bool before : {false, true}) {
            bool isDirectory = before;
            EXPECT_EQ(files().fileExistsAtPath_isDirectory(items / row.name, &isDirectory), row.exists);
            EXPECT_EQ(isDirectory, row.exists ? row.isDirectory : before) << row.name;
        }
    }
    EXPECT_TRUE(files().fileExistsAtPath("/dev/null"));
}

TEST(FileManagerTables, askTheSystemWhatMayBeReadAndWritten) {
    const Items items;
    ASSERT_EQ(::chmod((items / "file").c_str(), 0444), 0);
    items.folder.write("closed", "x");
    ASSERT_EQ(::chmod((items / "closed").c_str(), 0), 0);
    items.folder.write("open", "x");
    ASSERT_EQ(::chmod((items / "open").c_str(), 0666), 0);
    ASSERT_EQ(::chmod((items / "folder").c_str(), 0555), 0);
    items.folder.makeFolder("locked");
    ASSERT_EQ(::chmod((items / "locked").c_str(), 0), 0);
    items.folder.makeFolder("public");
    ASSERT_EQ(::chmod((items / "public").c_str(), 0777), 0);
    const struct {
        const char* name;
        bool mayRead;
        bool mayWrite;
    } rows[] = {
        {"file", true, false},      {"toFile", true, false}, {"closed", false, false},
        {"open", true, true},       {"folder", true, false}, {"toFolder", true, false},
        {"locked", false, false},   {"public", true, true},  {"nosuch", false, false},
        {"dangling", false, false}, {"loop", false, false},  {"open/", false, false},
    };
    int number = 0;
    for (const auto& row : rows) {
        ++number;
        EXPECT_EQ(scene::inUnprivilegedChild([&] {
                      return files().isReadableFileAtPath(items / row.name) == row.mayRead &&
                                     files().isWritableFileAtPath(items / row.name) == row.mayWrite
                                 ? 0
                                 : number;
                  }),
                  0)
            << row.name;
        if (::getuid() == 0) {
            const bool exists = files().fileExistsAtPath(items / row.name);
            EXPECT_EQ(files().isReadableFileAtPath(items / row.name), exists) << "root: " << row.name;
            EXPECT_EQ(files().isWritableFileAtPath(items / row.name), exists) << "root: " << row.name;
        }
    }
    ::chmod((items / "locked").c_str(), 0755);
}

// Attributes.

TEST(FileManagerTables, tellTheTypeOfTheItemItself) {
    const Items items;
    ASSERT_EQ(::mkfifo((items / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(insideFolder(items.folder.path(), [] {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::string("socket").copy(address.sun_path, sizeof address.sun_path - 1);
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
        return ::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }));
    const auto typeOf = [](const std::string& path) {
        return NSString(files().attributesOfItemAtPath_error(path).objectForKey(NSFileType)).utf8();
    };
    const struct {
        const char* name;
        const char* type;
    } rows[] = {
        {"file", "NSFileTypeRegular"},          {"folder", "NSFileTypeDirectory"},
        {"toFile", "NSFileTypeSymbolicLink"},   {"toFolder", "NSFileTypeSymbolicLink"},
        {"dangling", "NSFileTypeSymbolicLink"}, {"loop", "NSFileTypeSymbolicLink"},
        {"pipe", "NSFileTypeUnknown"},          {"socket", "NSFileTypeSocket"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(typeOf(items / row.name), row.type) << row.name;
    }
    EXPECT_EQ(typeOf("/dev/null"), "NSFileTypeCharacterSpecial");
    EXPECT_EQ(typeOf("/"), "NSFileTypeDirectory");
    for (const char* const name : {"nosuch", "file/", "file/x", "loop/x"}) {
        NSString reason;
        EXPECT_FALSE(files().attributesOfItemAtPath_error(items / name, &reason)) << name;
        EXPECT_TRUE(reason) << name;
    }
}

TEST(FileManagerTables, tellAttributesAsTheSystemDoes) {
    const Items items;
    const std::string path = items / "file";
    ASSERT_EQ(::link(path.c_str(), (items / "second").c_str()), 0);
    ASSERT_EQ(::chmod(path.c_str(), 06751), 0);
    ASSERT_EQ(::chmod((items / "folder").c_str(), 01750), 0);
    timespec times[2] = {{1'700'000'000, 0}, {1'709'647'620, 123'456'789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    NSString reason = "before";
    const NSDictionary attributes = files().attributesOfItemAtPath_error(path, &reason);
    ASSERT_TRUE(attributes);
    EXPECT_FALSE(reason);
    const auto number = [&attributes](const char* key) {
        return NSNumber(attributes.objectForKey(key)).unsignedLongLongValue();
    };
    const struct stat information = informationOf(path);
    EXPECT_EQ(number(NSFileSize), 3U);
    EXPECT_EQ(number(NSFilePosixPermissions), 06751U);
    EXPECT_EQ(number(NSFileReferenceCount), 2U);
    EXPECT_EQ(number(NSFileOwnerAccountID), information.st_uid);
    EXPECT_EQ(number(NSFileGroupOwnerAccountID), information.st_gid);
    EXPECT_EQ(number(NSFileSystemNumber), information.st_dev);
    EXPECT_EQ(number(NSFileSystemFileNumber), information.st_ino);
    const NSDate changed(attributes.objectForKey(NSFileModificationDate));
    ASSERT_TRUE(changed);
    EXPECT_NEAR(changed.timeIntervalSince1970(), 1'709'647'620.123456789, 3e-7);
    const passwd* const owner = ::getpwuid(information.st_uid);
    const NSObject ownerName = attributes.objectForKey(NSFileOwnerAccountName);
    EXPECT_EQ(ownerName ? NSString(ownerName).utf8() : "", owner != nullptr ? owner->pw_name : "");
    const group* const owningGroup = ::getgrgid(information.st_gid);
    const NSObject groupName = attributes.objectForKey(NSFileGroupOwnerAccountName);
    EXPECT_EQ(groupName ? NSString(groupName).utf8() : "",
              owningGroup != nullptr ? owningGroup->gr_name : "");
    const NSDictionary ofFolder = files().attributesOfItemAtPath_error(items / "folder");
    EXPECT_EQ(NSNumber(ofFolder.objectForKey(NSFilePosixPermissions)).intValue(), 01750);
    const NSDictionary ofLink = files().attributesOfItemAtPath_error(items / "toFile");
    EXPECT_EQ(NSNumber(ofLink.objectForKey(NSFileSize)).intValue(), 4) << "the length of its target's name";
}

TEST(FileManagerTables, keepDatesAsFarAsADoubleHoldsThem) {
    const scene::Folder folder;
    const std::string path = folder.write("file", "");
    const auto dateAt = [&path](time_t seconds, long nanoseconds) {
        const timespec times[2] = {{0, 0}, {seconds, nanoseconds}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        return NSDate(files().attributesOfItemAtPath_error(path).objectForKey(NSFileModificationDate));
    };
    const NSDate whole = dateAt(1'709'647'620, 0);
    EXPECT_TRUE(whole.isEqualToDate(NSDate::dateWithTimeIntervalSince1970(1'709'647'620)));
    EXPECT_EQ(dateAt(1'709'647'620, 500'000'000).timeIntervalSinceDate(whole), 0.5);
    EXPECT_NEAR(dateAt(1'709'647'620, 1'000).timeIntervalSinceDate(whole), 1e-6, 1.3e-7);
    // Close to the reference instant the nanoseconds themselves show.
    EXPECT_NEAR(dateAt(978'307'200, 1).timeIntervalSinceReferenceDate(), 1e-9, 1e-12);
    EXPECT_NEAR(dateAt(978'307'199, 999'999'999).timeIntervalSinceReferenceDate(), -1e-9, 1e-12);
}

// Listing.

TEST(FileManagerTables, listAFolderInTheOrderOfTheSystem) {
    const Items items;
    items.folder.write(".hidden", "");
    items.folder.write("folder/.a", "");
    items.folder.write("folder/b/c", "");
    for (int i = 0; i < 100; ++i) {
        items.folder.write("many/" + std::to_string(i * 7919 % 100), "");
    }
    items.folder.makeFolder("empty");
    for (const char* const name : {"", "folder", "toFolder", "many", "folder/"}) {
        EXPECT_EQ(listed(items / name), namesIn(items / name)) << name;
    }
    Words names = listed(items / "folder");
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Words{".a", "b"}));
    EXPECT_TRUE(files().contentsOfDirectoryAtPath_error(items / "empty")) << "empty, not nil";
    EXPECT_EQ(files().contentsOfDirectoryAtPath_error(items / "empty").count(), 0U);
    for (const char* const name : {"file", "toFile", "nosuch", "dangling", "loop"}) {
        NSString reason;
        EXPECT_FALSE(files().contentsOfDirectoryAtPath_error(items / name, &reason)) << name;
        EXPECT_TRUE(reason) << name;
    }
}

TEST(FileManagerTables, listNoFolderThatTheUserMayNotRead) {
    const scene::Folder folder;
    folder.write("locked/file", "");
    ASSERT_EQ(::chmod((folder / "locked").c_str(), 0311), 0);
    EXPECT_EQ(scene::inUnprivilegedChild(
                  [&folder] { return files().contentsOfDirectoryAtPath_error(folder / "locked") ? 1 : 0; }),
              0);
    ::chmod((folder / "locked").c_str(), 0755);
}

// Making folders.

TEST(FileManagerTables, makeFolders) {
    const struct {
        const char* name;
        bool alone; ///< without intermediates
        bool withThose;
    } rows[] = {
        {"new", true, true},          {"folder", false, true},        {"toFolder", false, true},
        {"file", false, false},       {"toFile", false, false},       {"dangling", false, false},
        {"loop", false, false},       {"a/b/c", false, true},         {"folder/new", true, true},
        {"toFolder/new", true, true}, {"file/new", false, false},     {"folder/x/y", false, true},
        {"toFile/new", false, false}, {"dangling/new", false, false},
    };
    for (const auto& row : rows) {
        for (const bool deep : {false, true}) {
            const Items items;
            const bool expected = deep ? row.withThose : row.alone;
            NSString reason = "before";
            EXPECT_EQ(files().createDirectoryAtPath_withIntermediateDirectories_attributes_error(
                          items / row.name, deep, {}, &reason),
                      expected)
                << row.name << " deep " << deep;
            EXPECT_EQ(!reason, expected) << row.name;
            EXPECT_FALSE(expected && !files().isDirectoryAtPath(items / row.name)) << row.name;
            EXPECT_FALSE(stands(items / "nosuch"));
            EXPECT_EQ(scene::contentsOf(items / "file"), "abc");
        }
    }
    EXPECT_FALSE(createFolder("/", false));
    EXPECT_TRUE(createFolder("/", true));
}

TEST(FileManagerTables, leaveFoldersThatWereMadeBeforeAFailure) {
    const scene::Folder folder;
    EXPECT_FALSE(createFolder(folder / ("a/b/" + std::string(300, 'x') + "/c"), true));
    EXPECT_TRUE(isFolder(folder / "a/b"));
}

TEST(FileManagerTables, makeFoldersWithModesLessTheUmask) {
    const scene::Folder folder;
    const Umask mask(027);
    EXPECT_TRUE(createFolder(folder / "one", false));
    EXPECT_TRUE(createFolder(folder / "a/b", true));
    for (const char* const name : {"one", "a", "a/b"}) {
        EXPECT_EQ(modeOf(folder / name), 0750U) << name;
    }
}

TEST(FileManagerTables, applyAttributesToEachFolderThatWasMade) {
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.makeFolder("there").c_str(), 0755), 0);
    const NSDictionary attributes{{NSFilePosixPermissions, 0772}, {"Unknown", "x"}, {NSFileType, "x"}};
    EXPECT_TRUE(createFolder(folder / "there/a/b", true, attributes));
    EXPECT_EQ(modeOf(folder / "there"), 0755U);
    EXPECT_EQ(modeOf(folder / "there/a"), 0772U) << "the umask does not count";
    EXPECT_EQ(modeOf(folder / "there/a/b"), 0772U);
    EXPECT_TRUE(createFolder(folder / "there/a", true, permissions(0700)));
    EXPECT_EQ(modeOf(folder / "there/a"), 0772U) << "it was there";
    EXPECT_TRUE(createFolder(folder / "alone", false, permissions(0701)));
    EXPECT_EQ(modeOf(folder / "alone"), 0701U);
}

TEST(FileManagerTables, ignoreAttributesThatCannotBeApplied) {
    const scene::Folder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const NSDictionary attributes{{NSFileOwnerAccountID, 1}, {NSFilePosixPermissions, "no number"}};
    EXPECT_EQ(
        scene::inUnprivilegedChild([&] {
            return (createFolder(folder / "a/b", true, attributes) ? 0 : 1) |
                   (files().createFileAtPath_contents_attributes(folder / "file", bytes("x"), attributes)
                        ? 0
                        : 2);
        }),
        0);
    EXPECT_TRUE(isFolder(folder / "a/b"));
    EXPECT_EQ(scene::contentsOf(folder / "file"), "x");
}

// Writing files.

TEST(FileManagerTables, writeFiles) {
    const struct {
        const char* name;
        bool works;
    } rows[] = {
        {"new", true},         {"file", true},       {"toFile", true},        {"dangling", true},
        {"loop", true},        {"folder/new", true}, {"toFolder/new", true},  {"folder", false},
        {"nosuch/new", false}, {"file/new", false},  {"dangling/new", false},
    };
    for (const auto& row : rows) {
        const Items items;
        const std::size_t before = namesIn(items.folder.path()).size();
        EXPECT_EQ(files().createFileAtPath_contents_attributes(items / row.name, bytes("text"), {}),
                  row.works)
            << row.name;
        EXPECT_EQ(scene::contentsOf(items / row.name), row.works ? "text" : "") << row.name;
        EXPECT_FALSE(row.works && isLink(items / row.name)) << row.name;
        if (std::string(row.name) != "file") {
            EXPECT_EQ(scene::contentsOf(items / "file"), "abc") << row.name;
        }
        EXPECT_FALSE(stands(items / "nosuch")) << row.name;
        // Nothing is left of the way it was done.
        EXPECT_EQ(namesIn(items.folder.path()).size(), before + (std::string(row.name) == "new" ? 1 : 0));
        EXPECT_LE(namesIn(items / "folder").size(), 1U) << row.name;
    }
}

TEST(FileManagerTables, writeAnEmptyFileForNoContents) {
    const Items items;
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "new", nullptr, nullptr));
    EXPECT_EQ(informationOf(items / "new").st_size, 0);
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "file", NSData::data(), nullptr));
    EXPECT_EQ(informationOf(items / "file").st_size, 0);
    const std::string binary("\0\xFF\r\n", 4);
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "file", bytes(binary), nullptr));
    EXPECT_EQ(scene::contentsOf(items / "file"), binary);
}

TEST(FileManagerTables, keepTheModeOfAFileThatIsReplaced) {
    const Items items;
    const Umask mask(027);
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "new", bytes("x"), {}));
    EXPECT_EQ(modeOf(items / "new"), 0640U);
    for (const mode_t mode : std::initializer_list<mode_t>{0600U, 0666U, 0755U, 0444U}) {
        ASSERT_EQ(::chmod((items / "file").c_str(), mode), 0);
        EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "file", bytes("x"), {}));
        EXPECT_EQ(modeOf(items / "file"), mode);
    }
}

TEST(FileManagerTables, applyAttributesToFilesAfterwards) {
    const Items items;
    const NSDate date = NSDate::dateWithTimeIntervalSince1970(1'709'647'620.5);
    const NSDictionary attributes{
        {NSFilePosixPermissions, 0462}, {NSFileModificationDate, date}, {"Unknown", 1}};
    for (const char* const name : {"new", "file"}) {
        EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / name, bytes("x"), attributes));
        EXPECT_EQ(modeOf(items / name), 0462U) << name;
        EXPECT_EQ(informationOf(items / name).st_mtim.tv_sec, 1'709'647'620) << name;
        EXPECT_EQ(informationOf(items / name).st_mtim.tv_nsec, 500'000'000) << name;
    }
}

TEST(FileManagerTables, leaveTheOldFileToOpenDescriptorsAndOtherLinks) {
    const Items items;
    ASSERT_EQ(::link((items / "file").c_str(), (items / "second").c_str()), 0);
    const int descriptor = ::open((items / "file").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    EXPECT_TRUE(files().createFileAtPath_contents_attributes(items / "file", bytes("new text"), {}));
    char buffer[16] = {};
    EXPECT_EQ(::read(descriptor, buffer, sizeof buffer), 3);
    EXPECT_STREQ(buffer, "abc");
    ::close(descriptor);
    EXPECT_EQ(scene::contentsOf(items / "second"), "abc");
    EXPECT_EQ(scene::contentsOf(items / "file"), "new text");
}

TEST(FileManagerTables, writeOnlyIntoFoldersThatTheUserMayWrite) {
    const Items items;
    ASSERT_EQ(::chmod((items / "file").c_str(), 0666), 0);
    ASSERT_EQ(::chmod(items.folder.path().c_str(), 0555), 0);
    EXPECT_EQ(
        scene::inUnprivilegedChild([&items] {
            return (files().createFileAtPath_contents_attributes(items / "file", bytes("x"), {}) ? 1 : 0) |
                   (files().createFileAtPath_contents_attributes(items / "new", bytes("x"), {}) ? 2 : 0);
        }),
        0);
    ::chmod(items.folder.path().c_str(), 0755);
    EXPECT_EQ(scene::contentsOf(items / "file"), "abc");
    EXPECT_EQ(namesIn(items.folder.path()).size(), 6U);
}

// Removing.

TEST(FileManagerTables, removeItems) {
    const struct {
        const char* name;
        bool works;
    } rows[] = {
        {"file", true}, {"folder", true},  {"toFile", true},  {"toFolder", true},  {"dangling", true},
        {"loop", true}, {"nosuch", false}, {"file/x", false}, {"nosuch/x", false},
    };
    for (const auto& row : rows) {
        const Items items;
        items.folder.write("folder/a/b", "deep");
        items.folder.write("folder/.hidden", "x");
        items.link("../../file", "folder/a/toFile");
        items.folder.write("other/kept", "kept");
        items.link("../other", "folder/toOther");
        ASSERT_EQ(::chmod((items / "folder/a/b").c_str(), 0), 0);
        NSString reason = "before";
        EXPECT_EQ(files().removeItemAtPath_error(items / row.name, &reason), row.works) << row.name;
        EXPECT_EQ(!reason, row.works) << row.name;
        EXPECT_FALSE(stands(items / row.name)) << row.name;
        // The targets of links are untouched, whether the link was named or met on the way.
        EXPECT_EQ(!stands(items / "file"), std::string(row.name) == "file") << row.name;
        EXPECT_EQ(isFolder(items / "folder"), std::string(row.name) != "folder") << row.name;
        EXPECT_EQ(scene::contentsOf(items / "other/kept"), "kept") << row.name;
        EXPECT_EQ(namesIn(items.folder.path()).size(), row.works ? 6U : 7U) << row.name;
    }
}

TEST(FileManagerTables, removeAReadOnlyFileFromAWritableFolderOnly) {
    const scene::Folder folder;
    for (const char* const name : {"open/file", "closed/file", "tree/open/file", "tree/closed/file"}) {
        ASSERT_EQ(::chmod(folder.write(name, "x").c_str(), 0444), 0);
    }
    for (const char* const name : {"open", "tree", "tree/open"}) {
        ASSERT_EQ(::chmod((folder / name).c_str(), 0777), 0);
    }
    ASSERT_EQ(::chmod((folder / "closed").c_str(), 0555), 0);
    ASSERT_EQ(::chmod((folder / "tree/closed").c_str(), 0555), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    EXPECT_EQ(scene::inUnprivilegedChild([&folder] {
                  return (files().removeItemAtPath_error(folder / "open/file") ? 0 : 1) |
                         (files().removeItemAtPath_error(folder / "closed/file") ? 2 : 0) |
                         (files().removeItemAtPath_error(folder / "tree") ? 4 : 0);
              }),
              0);
    EXPECT_FALSE(stands(folder / "open/file"));
    EXPECT_TRUE(stands(folder / "closed/file"));
    EXPECT_TRUE(stands(folder / "tree/closed/file")) << "its folder may not be changed";
    ::chmod((folder / "closed").c_str(), 0755);
    ::chmod((folder / "tree/closed").c_str(), 0755);
}

TEST(FileManagerTables, areOneObject) {
    EXPECT_EQ(&NSFileManager::defaultManager(), &NSFileManager::defaultManager());
}
