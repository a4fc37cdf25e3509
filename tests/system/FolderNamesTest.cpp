// SPDX-License-Identifier: MIT
// The names in a folder, read as a whole.
#include "foundation/system/FolderNames.h"

#include <set>
#include <string>

#include <dirent.h>
#include <fcntl.h>

#include <gtest/gtest.h>

#include "foundation/system/Descriptor.h"
#include "tests/kit/Items.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation::detail;

namespace {

std::set<std::string> namesIn(const Descriptor& folder) {
    FolderNames names;
    EXPECT_TRUE(names.read(folder.number()));
    EXPECT_TRUE(names.isAtStart());
    std::set<std::string> found;
    while (!names.isAtEnd()) {
        const FolderNames::Entry entry = names.next();
        EXPECT_TRUE(found.insert(std::string(entry.name) + (entry.kind == DT_DIR ? "/" : "")).second);
        EXPECT_FALSE(names.isAtStart());
    }
    return found;
}

} // namespace

TEST(FolderNames, areAllEntriesButTheFolderAndItsParent) {
    const ZQFoundation::kit::ScratchFolder folder;
    const Descriptor opened(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY));
    EXPECT_EQ(namesIn(opened), std::set<std::string>());
    std::set<std::string> expected{"..a", "...", "sub/", " "};
    folder.write("..a", "");
    folder.write("...", "");
    folder.write(" ", "");
    folder.makeFolder("sub");
    for (int count = 0; count < 3000; ++count) { // more than one call of the system gives
        const std::string name =
            std::to_string(count) + std::string(static_cast<std::size_t>(count % 200), 'n');
        folder.write(name, "");
        expected.insert(name);
    }
    EXPECT_EQ(namesIn(opened), expected);
    EXPECT_EQ(namesIn(opened), expected) << "read from the start again";
}

TEST(FolderNames, failWithTheReason) {
    FolderNames names;
    EXPECT_FALSE(names.read(-1));
    EXPECT_EQ(errno, EBADF);
    const ZQFoundation::kit::ScratchFolder folder;
    const Descriptor file(::open(folder.write("a", "").c_str(), O_RDONLY));
    EXPECT_FALSE(names.read(file.number()));
    EXPECT_EQ(errno, ENOTDIR);
}

TEST(FolderNames, takeNoDescriptorMore) {
    const ZQFoundation::kit::ScratchFolder folder;
    folder.write("a", "");
    const Descriptor opened(::open(folder.path().c_str(), O_RDONLY | O_DIRECTORY));
    EXPECT_TRUE(ZQFoundation::kit::isTrueWithDescriptors(0, [&opened] {
        FolderNames names;
        return names.read(opened.number());
    }));
}
