// SPDX-License-Identifier: MIT
// Notes as files: what is saved is never lost.
#include "examples/Notes/model/NoteStore.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/kit/Child.h"
#include "tests/kit/ScratchFolder.h"

using namespace ZQFoundation;
using notes::NoteStore;
using notes::Outcome;

namespace {

struct Folder : kit::ScratchFolder {
    NoteStore store{*this / "notes"};

    std::string saved(const NSString& path, const NSString& text) {
        const Outcome outcome = store.save(path, text);
        EXPECT_TRUE(outcome.path) << outcome.reason;
        return outcome.path.utf8();
    }
};

std::string titles(const NoteStore& store) {
    std::string all;
    for (const notes::Note& note : store.notes()) {
        all += note.title.utf8() + ";";
    }
    return all;
}

std::string nameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

} // namespace

TEST(NoteStore, newNotesAreNamedAfterTheirFirstLine) {
    Folder folder;
    const std::pair<const char*, const char*> rows[] = {{"Shopping\nmilk", "Shopping.note"},
                                                        {"\n \n  second line", "second line.note"},
                                                        {"a/b\\c:d", "a-b-c-d.note"},
                                                        {".hidden", "_.hidden.note"},
                                                        {"", "Untitled.note"},
                                                        {"\x01\x02", "Untitled 1.note"},
                                                        {"Shopping", "Shopping 1.note"},
                                                        {"\u200b", "Untitled 2.note"},
                                                        {"../../escape", "_..-..-escape.note"}};
    for (const auto& [text, name] : rows) {
        const std::string path = folder.saved(nullptr, text);
        EXPECT_EQ(path, folder / "notes/" + name) << text;
        EXPECT_EQ(kit::contentsOf(path), text);
    }
}

TEST(NoteStore, aLongTitleIsCutBetweenCharacters) {
    Folder folder;
    NSMutableString text(NSString("a"));
    for (int count = 0; count < 100; ++count) {
        text.appendString("\U0001F600");
    }
    const std::string name = nameOf(folder.saved(nullptr, text.string()));
    EXPECT_EQ(name.size(), 1 + 29 * 4 + 5U);
}

TEST(NoteStore, savingReplacesTheNoteAndPutsItFirst) {
    Folder folder;
    const std::string first = folder.saved(nullptr, "first");
    folder.saved(nullptr, "second");
    EXPECT_EQ(titles(folder.store), "second;first;");
    EXPECT_EQ(folder.saved(first, "first, longer"), first);
    EXPECT_EQ(titles(folder.store), "first, longer;second;");
    EXPECT_EQ(kit::contentsOf(first), "first, longer");

    NoteStore again(folder.store.folder());
    again.reload();
    EXPECT_EQ(again.notes().size(), 2U);
    EXPECT_EQ(again.find(first)->text, "first, longer");
}

TEST(NoteStore, notesConcernTheirUserAlone) {
    Folder folder;
    struct stat facts = {};
    ASSERT_EQ(::stat(folder.saved(nullptr, "secret").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat((folder / "notes").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0700U);
}

TEST(NoteStore, whatSomebodyElseHasChangedIsNotOverwritten) {
    Folder folder;
    const std::string path = folder.saved(nullptr, "mine");
    folder.write("notes/mine.note", "theirs");
    const std::string other = folder.saved(path, "mine, longer");
    EXPECT_EQ(other, folder / "notes/mine, longer.note");
    EXPECT_EQ(kit::contentsOf(path), "theirs");
    EXPECT_EQ(kit::contentsOf(other), "mine, longer");
}

TEST(NoteStore, aNoteThatWasRemovedElsewhereIsSavedAnew) {
    Folder folder;
    const std::string path = folder.saved(nullptr, "mine");
    ::unlink(path.c_str());
    EXPECT_EQ(folder.saved(path, "mine"), path);
    EXPECT_EQ(kit::contentsOf(path), "mine");
    EXPECT_EQ(folder.store.notes().size(), 1U);
}

TEST(NoteStore, removedNotesAreKept) {
    Folder folder;
    for (int count = 0; count < 2; ++count) {
        const Outcome outcome = folder.store.remove(folder.saved(nullptr, "old"));
        EXPECT_TRUE(outcome.path) << outcome.reason;
    }
    EXPECT_EQ(kit::contentsOf(folder / "notes/.Removed/old.note"), "old");
    EXPECT_EQ(kit::contentsOf(folder / "notes/.Removed/old 1.note"), "old");
    EXPECT_EQ(folder.store.notes().size(), 0U);
    folder.store.reload();
    EXPECT_EQ(folder.store.notes().size(), 0U);
    const Outcome outcome = folder.store.remove(folder / "notes/none.note");
    EXPECT_FALSE(outcome.path);
    EXPECT_TRUE(outcome.reason);
}

TEST(NoteStore, readsWhatIsThereAndNothingElse) {
    Folder folder;
    folder.write("notes/a.note", "A");
    folder.write("notes/sub/b.note", "B");
    folder.write("notes/.hidden.note", "no");
    folder.write("notes/.Removed/c.note", "no");
    folder.write("notes/d.txt", "no");
    folder.makeFolder("notes/folder.note");
    ASSERT_EQ(::mkfifo((folder / "notes/pipe.note").c_str(), 0600), 0);
    ASSERT_EQ(::symlink("/nowhere", (folder / "notes/dangling.note").c_str()), 0);
    folder.store.reload();
    EXPECT_EQ(folder.store.notes().size(), 2U);
}

TEST(NoteStore, aFileThatIsNoTextIsShownByItsNameAndNeverOverwritten) {
    Folder folder;
    const std::string path = folder.write("notes/bytes.note", "caf\xe9");
    const std::string large = folder.write("notes/large.note", "");
    ASSERT_EQ(::truncate(large.c_str(), (16 << 20) + 1), 0);
    folder.store.reload();
    EXPECT_FALSE(folder.store.find(path)->text);
    EXPECT_EQ(folder.store.find(path)->title, "bytes");
    EXPECT_FALSE(folder.store.find(large)->text);
    EXPECT_NE(folder.saved(path, "new"), path);
    EXPECT_EQ(kit::contentsOf(path), "caf\xe9");
}

TEST(NoteStore, whatCannotBeSavedSaysWhy) {
    Folder folder;
    const Outcome half = folder.store.save(nullptr, NSString(u"a\xD800"));
    EXPECT_FALSE(half.path);
    EXPECT_EQ(half.reason, "The text contains an incomplete character.");
    folder.write("notes", "a file is in the way");
    const Outcome blocked = folder.store.save(nullptr, "a");
    EXPECT_FALSE(blocked.path);
    EXPECT_TRUE(blocked.reason.containsString("notes")) << blocked.reason;
}

TEST(NoteStore, aFolderWithoutPermissionKeepsTheOldText) {
    Folder folder;
    const std::string path = folder.saved(nullptr, "old");
    ::chmod(path.c_str(), 0644);
    ::chmod((folder / "notes").c_str(), 0555);
    kit::expectAsUser([&] {
        folder.store.reload();
        const Outcome outcome = folder.store.save(path, "new");
        return !outcome.path && outcome.reason && kit::contentsOf(path) == "old";
    });
    ::chmod((folder / "notes").c_str(), 0755);
}

TEST(NoteStore, aKilledSaveLeavesTheOldTextOrTheNewOne) {
    Folder folder;
    const std::string path = folder.saved(nullptr, std::string(1 << 16, 'a'));
    for (int round = 0; round < 20; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            for (char text = 'b';; text = text == 'y' ? 'b' : static_cast<char>(text + 1)) {
                static_cast<void>(folder.store.save(path, std::string(1 << 16, text)));
                static_cast<void>(::write(ends[1], "", 1));
            }
        }
        char byte = 0;
        for (int saves = 0; saves <= round % 5; ++saves) {
            ASSERT_EQ(::read(ends[0], &byte, 1), 1);
        }
        ::kill(child, SIGKILL);
        EXPECT_EQ(kit::endOf(child), -SIGKILL);
        ::close(ends[0]);
        ::close(ends[1]);
        const std::string bytes = kit::contentsOf(path);
        ASSERT_EQ(bytes.size(), 1U << 16);
        ASSERT_EQ(bytes.find_first_not_of(bytes[0]), std::string::npos) << "half a text";
        folder.store.reload();
        ASSERT_EQ(folder.store.notes().size(), 1U);
    }
}
