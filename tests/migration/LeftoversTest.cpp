// SPDX-License-Identifier: MIT
// What a killed migration leaves under hidden names: the next one in the same folders, of any kind,
// puts a source back and removes the rest. What it must leave alone: RecoveryTest.
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/kit/Items.h"
#include "tests/migration/faults/Verdict.h"

using namespace ZQFoundation;
using namespace faults;
using namespace scene;

namespace {

/// A tree is moved over an older one: every kind of leftover can result.
constexpr Case moved{Subject::tree, Old::overwritten, false};

std::string leftoverWith(const Run& run, const char* mark) {
    for (const std::string& name : leftoversBelow(run.base())) {
        if (begins(lastComponent(name), mark)) {
            return run / name;
        }
    }
    return "";
}

/// Kills a migration at its first call at which something with the mark is there. Null where tracing is not
/// permitted.
std::unique_ptr<Run> killedLeaving(const char* mark) {
    long first = 0;
    const Run observed(moved);
    const bool isTraced = observed
                              .under({},
                                     [&](long call) {
                                         first = leftoverWith(observed, mark).empty() ? 0 : call;
                                         return first == 0;
                                     })
                              .traced;
    EXPECT_TRUE(!isTraced || first != 0) << "nothing with the mark " << mark << " is made";
    auto killed = std::make_unique<Run>(moved);
    killed->under({Fault::killing, 0, first, false});
    return isTraced ? std::move(killed) : nullptr;
}

unsigned copyFile(const std::string& from, const std::string& to) {
    return migrateFile(from, to, {true, true, true, false});
}

/// Migrations that concern both folders of the killed one, or only that of the leftover.
struct NextMigration {
    const char* name;
    bool comesToBoth;
    void (*migrate)(const Run& run, const std::string& folder);
};

constexpr NextMigration nextMigrations[] = {
    {"from its folder", false,
     [](const Run& run, const std::string& folder) {
         EXPECT_EQ(copyFile(folder + "/beside", run / "elsewhere/beside"), 0U);
     }},
    {"to its folder", false,
     [](const Run& run, const std::string& folder) {
         const std::string other = run / (folder == run / "from" ? "to" : "from");
         EXPECT_EQ(copyFile(other + "/beside", folder + "/neighbor"), 0U);
     }},
    {"a batch", true,
     [](const Run& run, const std::string&) {
         const auto included = DotFiles::included;
         migrateFiles("nosuch", run / "from", run / "to", included);
         migrateFiles("nosuch", run.base(), run / "elsewhere", included);
     }},
    {"one that fails", true,
     [](const Run& run, const std::string&) {
         EXPECT_EQ(migrateFile(run / "from/nosuch", run / "to/x"), 10U);
     }},
};

} // namespace

TEST(Leftovers, arePutBackOrRemovedByTheNextMigration) {
    const QuickRuns quick;
    for (const char* const mark : {setAside, givenUp, unfinished}) {
        for (const NextMigration& next : nextMigrations) {
            SCOPED_TRACE(std::string(mark) + " and " + next.name);
            const auto run = killedLeaving(mark);
            if (run == nullptr) {
                GTEST_SKIP() << notTraced;
            }
            const std::string leftover = leftoverWith(*run, mark);
            ASSERT_FALSE(leftover.empty());
            next.migrate(*run, folderOf(leftover));
            EXPECT_FALSE(kit::exists(leftover));
            if (next.comesToBoth) {
                EXPECT_EQ(Words{}, leftoversBelow(run->base()));
                EXPECT_TRUE(digestOf(run->from(), Detail::times) == run->source() ||
                            digestOf(run->to(), Detail::times) == run->source())
                    << "neither source nor copy is whole";
            }
        }
    }
}
