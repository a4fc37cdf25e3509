// SPDX-License-Identifier: MIT
// The notes of an earlier release are moved, at once or later, and none is lost.
#include "examples/Notes/model/OldNotes.h"

#include <map>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;

namespace {

/// Stops before the given item.
struct Stopper : ZQMigrationObserver {
    explicit Stopper(std::uint64_t last) : last_(last) {}
    bool migrationMayContinue(const ZQMigrationProgress& progress) override { return progress.items < last_; }
    std::uint64_t last_;
};

std::string textOf(int number) { return "note " + std::to_string(number); }

void makeOldNotes(const kit::ScratchFolder& folder, int count) {
    for (int number = 0; number < count; ++number) {
        const std::string name = (number % 10 == 0 ? "old/archive/" : "old/") + std::to_string(number);
        folder.write(name + ".note", textOf(number));
    }
}

/// How often each text is there, in both folders.
std::map<std::string, int> textsOf(const kit::ScratchFolder& folder) {
    std::map<std::string, int> texts;
    for (const char* const place : {"old", "new"}) {
        NSDirectoryEnumerator items = NSFileManager::defaultManager().enumeratorAtPath(folder / place);
        while (const NSString item = items.nextObject()) {
            if (item.pathExtension() == "note") {
                ++texts[kit::contentsOf(folder / place + "/" + item.utf8())];
            }
        }
    }
    return texts;
}

} // namespace

TEST(OldNotes, twoThousandNotesMoveInTwoParts) {
    constexpr int count = 2000;
    const kit::ScratchFolder folder;
    makeOldNotes(folder, count);
    EXPECT_EQ(notes::countOldNotes(folder / "old"), std::size_t{count});

    Stopper stopper(count / 2);
    const notes::Move first = notes::moveOldNotes(folder / "old", folder / "new", &stopper);
    EXPECT_TRUE(first.isStopped);
    EXPECT_TRUE(first.stayed.empty());
    EXPECT_GT(first.moved, 0U);
    EXPECT_GT(first.left, 0U);
    EXPECT_EQ(first.moved + first.left, std::size_t{count});
    EXPECT_EQ(notes::countOldNotes(folder / "new"), first.moved);

    const notes::Move second = notes::moveOldNotes(folder / "old", folder / "new", nullptr);
    EXPECT_FALSE(second.isStopped);
    EXPECT_EQ(second.moved, first.left);
    EXPECT_EQ(second.left, 0U);
    const std::map<std::string, int> texts = textsOf(folder);
    ASSERT_EQ(texts.size(), std::size_t{count});
    for (int number = 0; number < count; ++number) {
        ASSERT_EQ(texts.at(textOf(number)), 1);
    }
    EXPECT_EQ(kit::contentsOf(folder / "new/archive/10.note"), textOf(10));
}

TEST(OldNotes, aKilledMoveLosesNothing) {
    constexpr int count = 300;
    const kit::ScratchFolder folder;
    makeOldNotes(folder, count);
    const pid_t child = ::fork();
    if (child == 0) {
        struct Killer : ZQMigrationObserver {
            bool migrationMayContinue(const ZQMigrationProgress& progress) override {
                return progress.items < 200 || ::raise(SIGKILL) == 0;
            }
        } killer;
        static_cast<void>(notes::moveOldNotes(folder / "old", folder / "new", &killer));
        kit::leave(0);
    }
    EXPECT_EQ(kit::endOf(child), -SIGKILL);
    EXPECT_EQ(textsOf(folder).size(), std::size_t{count});
    const notes::Move rest = notes::moveOldNotes(folder / "old", folder / "new", nullptr);
    EXPECT_EQ(rest.left, 0U);
    EXPECT_EQ(textsOf(folder).size(), std::size_t{count});
}

TEST(OldNotes, aNameThatIsTakenGetsAFreeOne) {
    const kit::ScratchFolder folder;
    folder.write("old/a.note", "old");
    folder.write("new/a.note", "new");
    folder.write("old/other.txt", "not ours");
    const notes::Move move = notes::moveOldNotes(folder / "old", folder / "new", nullptr);
    EXPECT_EQ(move.moved, 1U);
    EXPECT_EQ(kit::contentsOf(folder / "new/a.note"), "new");
    EXPECT_EQ(kit::contentsOf(folder / "new/a 1.note"), "old");
    EXPECT_EQ(kit::contentsOf(folder / "old/other.txt"), "not ours");
}

TEST(OldNotes, whatStaysSaysWhy) {
    const kit::NoLanguages english;
    const kit::ScratchFolder folder;
    folder.write("old/moves.note", "1");
    folder.write("old/locked/stays.note", "2");
    folder.write("old/closed/unseen.note", "3");
    folder.makeFolder("new");
    for (const char* const each : {"old", "old/locked", "old/closed", "new"}) {
        ASSERT_EQ(::chown((folder / each).c_str(), ::geteuid() == 0 ? 65534 : ::geteuid(), ::getegid()), 0);
    }
    ASSERT_EQ(
        ::chown((folder / "old/moves.note").c_str(), ::geteuid() == 0 ? 65534 : ::geteuid(), ::getegid()), 0);
    ::chmod((folder / "old/locked").c_str(), 0555);
    ::chmod((folder / "old/closed").c_str(), 0);
    kit::expectAsUser([&] {
        const notes::Move move = notes::moveOldNotes(folder / "old", folder / "new", nullptr);
        std::string reasons;
        for (const notes::Stayed& each : move.stayed) {
            reasons += each.name.utf8() + ": " + each.reason.utf8() + "\n";
        }
        std::fputs(reasons.c_str(), stderr);
        return move.moved == 1 && move.left == 1 && move.stayed.size() == 2 &&
               reasons.find("locked/stays.note: the source file cannot be removed") != std::string::npos &&
               reasons.find("closed: The folder cannot be read.") != std::string::npos;
    });
    ::chmod((folder / "old/closed").c_str(), 0755);
    EXPECT_EQ(kit::contentsOf(folder / "old/locked/stays.note"), "2");
    EXPECT_EQ(kit::contentsOf(folder / "old/closed/unseen.note"), "3");
}

TEST(OldNotes, theOldFolderIsThatOfTheOtherLayout) {
    const kit::Variable home("HOME", "/home/somebody");
    EXPECT_TRUE(notes::oldNotesFolder().hasPrefix("/home/somebody/Library/Application Support/"));
    EXPECT_EQ(notes::countOldNotes("/no/such/folder"), 0U);
    EXPECT_EQ(notes::moveOldNotes("/no/such/folder", "/no/such/target", nullptr).moved, 0U);
}
