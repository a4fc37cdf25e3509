// SPDX-License-Identifier: MIT
// Memory runs out at any allocation of a migration: it fails or ends with an exception, and the same call,
// made again, finds everything.
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Items.h"
#include "tests/kit/Sanitizers.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"

#if !ZQ_TEST_ADDRESS_SANITIZER && !ZQ_TEST_THREAD_SANITIZER

using namespace ZQFoundation;
using namespace scene;

namespace {

enum class MovedKind { file, folder, batch };

struct Paths {
    NSString from;
    NSString to;
};

void migrate(MovedKind kind, const Paths& paths) {
    switch (kind) {
    case MovedKind::file:
        migrateFile(paths.from, paths.to, overwriting);
        break;
    case MovedKind::folder:
        migrateFolder(paths.from, paths.to, overwriting);
        break;
    case MovedKind::batch:
        migrateFiles(nullptr, paths.from, paths.to, DotFiles::included, {false, true, true, false});
        break;
    }
}

/// With memory for this many allocations. Returns whether that was too little.
bool migrateWith(std::size_t limit, MovedKind kind) {
    const MigrationFolder folder;
    folder.writeFiles({"from/one", "from/two", "from/sub/three", "to/one", "to/old"});
    const bool isFile = kind == MovedKind::file;
    const Paths paths{folder / (isFile ? "from/one" : "from"), folder / (isFile ? "to/one" : "to")};
    const int descriptors = kit::openDescriptors();
    bool wasReached = false;
    {
        const kit::AllocationLimit allocations(limit);
        try {
            migrate(kind, paths);
        } catch (const std::bad_alloc&) {
        }
        wasReached = allocations.wasReached();
    }
    EXPECT_EQ(kit::openDescriptors(), descriptors) << "with " << limit;
    migrate(kind, paths);
    for (const char* const name : {"one", "two", "sub/three"}) {
        const std::string from = std::string("from/") + name;
        const std::string to = std::string("to/") + name;
        const bool isWanted = !isFile || name == std::string("one");
        EXPECT_EQ(folder.contents(isWanted ? to : from), from) << "with " << limit;
        EXPECT_FALSE(folder.has(isWanted ? from : to)) << "with " << limit;
    }
    EXPECT_EQ(Words{}, faults::leftoversBelow(folder.path())) << "with " << limit;
    return wasReached;
}

} // namespace

TEST(LackOfMemory, endsAMigrationAndLosesNothing) {
    for (const MovedKind kind : {MovedKind::file, MovedKind::folder, MovedKind::batch}) {
        std::size_t limit = 0;
        while (migrateWith(limit, kind)) {
            ++limit;
        }
        EXPECT_GT(limit, 10U) << "nothing was limited";
    }
}

#endif
