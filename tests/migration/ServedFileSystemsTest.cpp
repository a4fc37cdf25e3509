// SPDX-License-Identifier: MIT
// Migrations from and to file systems that a program serves, as network file systems are: reads that get less
// than they asked for, no way to refuse replacing when renaming, no links, no locks, names without case.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "log/ZQLog.h"
#include "tests/kit/Mounts.h"
#include "tests/migration/MigrationScene.h"
#include "tests/migration/faults/Leftovers.h"
#include "tests/migration/faults/ServedFolder.h"

using namespace ZQFoundation;
using namespace faults;
using namespace scene;

namespace {

constexpr ServedTraits shortReads{true, false, false, false, false};
constexpr ServedTraits poor{false, true, true, true, false};
constexpr ServedTraits withoutCase{false, false, false, false, true};
constexpr ServedTraits coarse{.evenSeconds = true};
constexpr ServedTraits cached{.isCached = true};

/// "there" is served from "backing", "here" is what the machine has.
struct ServedPlaces {
    ServedPlaces() {
        for (const char* const name : {"here", "there", "backing"}) {
            folder.makeFolder(name);
        }
    }
    std::string operator/(const std::string& name) const { return folder / name; }

    /// A tree with files of many lengths, around those at which a copy changes its ways.
    void makeTree(const std::string& place) const {
        for (const std::size_t length :
             {0U, 1U, 4095U, 4096U, 4097U, 8192U, 20000U, 32767U, 32768U, 32769U, 70000U, 300001U}) {
            folder.write(place + "/sub/" + std::to_string(length), bytes(length));
        }
        folder.write(place + "/a.log", bytes(5000));
        folder.write(place + "/sub/deeper/b.log", bytes(40000));
        folder.link("sub/4096", place + "/link");
    }
    static std::string bytes(std::size_t length) {
        std::string text(length, ' ');
        for (std::size_t index = 0; index < length; ++index) {
            text[index] = static_cast<char>('a' + index * 7 % 26);
        }
        return text;
    }

    MigrationFolder folder;
};

/// The body where "there" is served; the test is skipped where that is not allowed.
template <class Body>
void withServed(const ServedTraits& traits, const Body& body) {
    const ServedPlaces places;
    kit::withOwnMounts(
        [&] {
            const ServedFolder served(places / "backing", places / "there", traits);
            return served.isMounted() && (body(places), true);
        },
        100);
}

/// Moves one of each kind between the places, and compares contents.
void moveAll(const ServedPlaces& places, const std::string& from, const std::string& to) {
    places.makeTree(from + "/tree");
    const Digest tree = places.folder.digest(from + "/tree", Detail::contents);
    EXPECT_EQ(migrateFolder(places / (from + "/tree"), places / (to + "/tree")), 0U);
    EXPECT_FALSE(places.folder.has(from + "/tree"));
    EXPECT_TRUE(places.folder.digest(to + "/tree", Detail::contents) == tree);

    for (const std::size_t length : {0U, 100U, 5000U, 32768U, 100000U}) {
        const std::string file = "/file" + std::to_string(length);
        places.folder.write(from + file, ServedPlaces::bytes(length));
        places.folder.write(to + file, "old");
        EXPECT_EQ(migrateFile(places / (from + file), places / (to + file)), 30U);
        EXPECT_EQ(migrateFile(places / (from + file), places / (to + file), overwriting), 0U) << length;
        EXPECT_FALSE(places.folder.has(from + file));
        EXPECT_TRUE(places.folder.contents(to + file) == ServedPlaces::bytes(length)) << length;
    }

    places.makeTree(from + "/batch");
    EXPECT_EQ(places.folder.migrateLogs(from + "/batch", to + "/batch", creating),
              "{ a.log = 0; sub/deeper/b.log = 0; }");
    EXPECT_TRUE(places.folder.contents(to + "/batch/a.log") == ServedPlaces::bytes(5000));
    EXPECT_TRUE(places.folder.contents(to + "/batch/sub/deeper/b.log") == ServedPlaces::bytes(40000));
    EXPECT_FALSE(places.folder.has(from + "/batch/a.log"));
    EXPECT_EQ(Words{}, leftoversBelow(places.folder.path()));
}

/// What is there already is neither replaced nor mixed with what comes.
void expectRefusals(const ServedPlaces& places) {
    places.folder.write("here/file", "new");
    places.folder.write("here/folder/inside", "new");
    places.folder.write("there/taken/file", "old");
    places.folder.write("there/taken/folder/inside", "old");
    places.folder.makeFolder("there/taken/empty");
    EXPECT_EQ(migrateFile(places / "here/file", places / "there/taken/file"), 30U);
    EXPECT_EQ(migrateFile(places / "here/file", places / "there/taken/empty", overwriting), 32U);
    EXPECT_EQ(migrateFolder(places / "here/folder", places / "there/taken/folder"), 31U);
    EXPECT_EQ(migrateFolder(places / "here/folder", places / "there/taken/empty"), 31U);
    EXPECT_EQ(migrateFolder(places / "here/folder", places / "there/taken/file", overwriting), 33U);
    EXPECT_EQ(places.folder.contents("there/taken/file"), "old");
    EXPECT_EQ(places.folder.contents("there/taken/folder/inside"), "old");
    EXPECT_EQ(places.folder.contents("here/file"), "new");
    EXPECT_EQ(places.folder.contents("here/folder/inside"), "new");
    EXPECT_EQ(migrateFolder(places / "here/folder", places / "there/taken/folder", renaming), 0U);
    EXPECT_EQ(places.folder.contents("there/taken/folder 1./inside"), "new");
    EXPECT_EQ(Words{}, leftoversBelow(places.folder.path()));
}

/// Saves each file of the source again once it was copied, with as many bytes.
class Saver final : public ZQMigrationObserver {
public:
    explicit Saver(const ServedPlaces& places) : places_(places) {}

    bool migrationMayContinue(const ZQMigrationProgress& progress) override {
        if (!copied_.empty()) {
            places_.folder.write("there/from/" + copied_, "new");
        }
        const std::string name = kit::utf8Of(progress.path.lastPathComponent());
        copied_ = places_.folder.contents("there/from/" + name) == "old" ? name : "";
        return true;
    }

private:
    const ServedPlaces& places_;
    std::string copied_;
};

class Logger final : public ZQMigrationObserver {
public:
    bool migrationMayContinue(const ZQMigrationProgress&) override {
        ZQLog::log("a line");
        return true;
    }
};

/// The same items are below "there" and "backing", and the kernel has the names of the former in its cache.
void expectNotMovedOntoThemselves(const ServedPlaces& places) {
    places.folder.writeFiles({"file", "folder/one", "folder/sub/two"}, "backing/");
    const Digest before = places.folder.digest("backing", Detail::contents);
    ASSERT_TRUE(places.folder.digest("there", Detail::contents) == before);
    EXPECT_EQ(migrateFile(places / "there/file", places / "backing/file", overwriting), 34U);
    EXPECT_EQ(migrateFolder(places / "there/folder", places / "backing/folder", overwriting), 36U);
    EXPECT_EQ(migrateFolder(places / "there/folder/sub", places / "backing/folder", overwriting), 36U);
    EXPECT_EQ(migrateFiles(nullptr, places / "there/folder", places / "backing/folder", DotFiles::included,
                           overwriting)
                  .condensedDescription(),
              "{ one = 34; sub/two = 34; }");
    EXPECT_EQ(shownDigest(places.folder.digest("backing", Detail::contents)), shownDigest(before));
}

} // namespace

TEST(ServedFileSystems, thatAnswerReadsInPiecesGiveAndGetWholeFiles) {
    withServed(shortReads, [](const ServedPlaces& places) { moveAll(places, "there", "here"); });
    withServed(shortReads, [](const ServedPlaces& places) { moveAll(places, "here", "there"); });
    withServed(shortReads, [](const ServedPlaces& places) {
        places.folder.makeFolder("there/from");
        places.folder.makeFolder("there/to");
        moveAll(places, "there/from", "there/to");
    });
}

TEST(ServedFileSystems, withoutRenameFlagsLinksAndLocksServeAllTheSame) {
    withServed(poor, [](const ServedPlaces& places) { moveAll(places, "there", "here"); });
    withServed(poor, [](const ServedPlaces& places) { moveAll(places, "here", "there"); });
}

TEST(ServedFileSystems, withoutRenameFlagsLinksAndLocksKeepWhatTheyHave) {
    withServed(poor, [](const ServedPlaces& places) { expectRefusals(places); });
}

TEST(ServedFileSystems, withoutCaseKeepWhatABatchHasJustBrought) {
    for (const bool keeps : {false, true}) {
        withServed(withoutCase, [&](const ServedPlaces& places) {
            places.folder.write("here/batch/Notes.log", "from Notes.log");
            places.folder.write("here/batch/NOTES.log", "from NOTES.log");
            places.folder.write("here/batch/other.log", "other");
            const auto codes = migrateFiles("log", places / "here/batch", places / "there/batch",
                                            DotFiles::included, {keeps, true, true, false});
            const bool isFirst = codes.integerForKey("Notes.log") == 0;
            const std::string arrived = isFirst ? "Notes.log" : "NOTES.log";
            const std::string refused = isFirst ? "NOTES.log" : "Notes.log";
            EXPECT_EQ(codes.integerForKey(arrived), 0);
            EXPECT_EQ(codes.integerForKey(refused), 34);
            EXPECT_EQ(codes.integerForKey("other.log"), 0);
            EXPECT_EQ(places.folder.contents("there/batch/notes.log"), "from " + arrived);
            EXPECT_EQ(places.folder.contents("here/batch/" + refused), "from " + refused);
        });
    }
}

TEST(ServedFileSystems, withoutFractionsOfSecondsKeepWhatIsSavedWithinOne) {
    for (const bool isBatch : {false, true}) {
        withServed(coarse, [&](const ServedPlaces& places) {
            places.folder.makeFolder("there/from");
            for (const char* const name : {"1", "2", "3", "4", "5"}) {
                places.folder.write("there/from/" + std::string(name), "old");
            }
            Saver saver(places);
            if (isBatch) {
                EXPECT_EQ(ZQFileMigrator::migrateFiles(nullptr, places / "there/from", places / "here/to",
                                                       {.createDestinationParentFolder = true}, &saver)
                              .codes.count(),
                          5U);
            } else {
                EXPECT_EQ(
                    ZQFileMigrator::migrateFolder(places / "there/from", places / "here/to", {}, &saver).code,
                    15U);
            }
            std::size_t newest = 0;
            for (const char* const name : {"1", "2", "3", "4", "5"}) {
                newest += places.folder.contents("there/from/" + std::string(name)) == "new" ? 1U : 0U;
            }
            EXPECT_EQ(newest, 5U);
        });
    }
}

TEST(ServedFileSystems, getNoLinesInCopiesWhileStandardErrorIsClosed) {
    withServed(poor, [](const ServedPlaces& places) {
        const std::string contents = ServedPlaces::bytes(20000);
        places.folder.write("here/file", contents);
        places.folder.write("here/folder/file", contents);
        const int errors = ::dup(STDERR_FILENO);
        ::close(STDERR_FILENO);
        Logger logger;
        const ZQMigrationResult file =
            ZQFileMigrator::migrateFile(places / "here/file", places / "there/file", {}, &logger);
        const ZQMigrationResult folder =
            ZQFileMigrator::migrateFolder(places / "here/folder", places / "there/folder", {}, &logger);
        ::dup2(errors, STDERR_FILENO);
        ::close(errors);
        EXPECT_EQ(file.code, 0U);
        EXPECT_EQ(folder.code, 0U);
        EXPECT_TRUE(places.folder.contents("there/file") == contents);
        EXPECT_TRUE(places.folder.contents("there/folder/file") == contents);
    });
}

TEST(ServedFileSystems, thatShowTheDestinationUnderAnotherNumberKeepTheOnlyCopy) {
    withServed(cached, expectNotMovedOntoThemselves);
}
