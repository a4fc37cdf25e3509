// SPDX-License-Identifier: MIT
// The window that moves the notes of an earlier release: it can be stopped and resumed, and says what was not
// moved.
#include "examples/Notes/windows/MigrationWindow.h"

#include <fcntl.h>
#include <unistd.h>

#include "tests/notes/windows/Scene.h"

using namespace scene;

namespace {

notes::MigrationWindow* migrationOf(const QObject& window) {
    return dynamic_cast<notes::MigrationWindow*>(window.findChild<QDialog*>("migration"));
}

void makeOldNotes(const Home& home, int count) {
    for (int number = 0; number < count; ++number) {
        home.write(home.oldPlace() + std::to_string(number) + ".note", "note " + std::to_string(number));
    }
}

} // namespace

TEST(MigrationWindow, twoThousandNotesMoveWithAStopInTheMiddle) {
    constexpr int count = 2000;
    Home home;
    makeOldNotes(home, count);
    notes::MainWindow& first = home.start();
    first.takeOverOldNotes();
    notes::MigrationWindow* const migration = migrationOf(first);
    ASSERT_NE(migration, nullptr);
    const QProgressBar& bar = child<QProgressBar>(*migration, "bar");
    EXPECT_EQ(bar.maximum(), count);
    ASSERT_TRUE(waitUntil([&] { return bar.value() >= 600; }));
    click(*migration, "stop");
    const QPushButton& close = child<QPushButton>(*migration, "close");
    ASSERT_TRUE(waitUntil([&] { return close.isVisible(); }));
    const int moved = static_cast<int>(notes::countOldNotes(home / home.newPlace()));
    EXPECT_GE(moved, 600);
    EXPECT_LT(moved, count);
    EXPECT_EQ(utf8(child<QLabel>(*migration, "text").text()),
              "Stopped: " + std::to_string(moved) + " notes are moved, " + std::to_string(count - moved) +
                  " are left. The next start continues.");
    click(*migration, "close");
    EXPECT_EQ(child<QListWidget>(first, "list").count(), moved);

    notes::MainWindow& second = home.start();
    second.takeOverOldNotes();
    ASSERT_NE(migrationOf(second), nullptr);
    ASSERT_TRUE(waitUntil([&] { return migrationOf(second) == nullptr; }));
    EXPECT_EQ(child<QListWidget>(second, "list").count(), count);
    EXPECT_EQ(notes::countOldNotes(home / home.oldPlace()), 0U);
    for (int number = 0; number < count; ++number) {
        const std::string name = std::to_string(number);
        ASSERT_EQ(kit::contentsOf(home / home.newPlace() + name + ".note"), "note " + name);
    }
    notes::MainWindow& third = home.start();
    third.takeOverOldNotes();
    EXPECT_EQ(migrationOf(third), nullptr);
}

TEST(MigrationWindow, saysWhatStaysAndWhyUntilTheUserDoesWithoutIt) {
    Home home;
    makeOldNotes(home, 3);
    const std::string open = home / home.oldPlace() + "1.note";
    const int writer = ::open(open.c_str(), O_WRONLY | O_CLOEXEC); // somebody is still writing
    for (const char* const button : {"close", "leave"}) {
        notes::MainWindow& window = home.start();
        window.takeOverOldNotes();
        notes::MigrationWindow* const migration = migrationOf(window);
        ASSERT_NE(migration, nullptr) << button;
        ASSERT_TRUE(waitUntil([&] { return child<QPushButton>(*migration, "close").isVisible(); }));
        const QListWidget& stayed = child<QListWidget>(*migration, "stayed");
        ASSERT_EQ(stayed.count(), 1);
        EXPECT_EQ(utf8(stayed.item(0)->text()), "1.note: the source file cannot be removed");
        click(*migration, button);
    }
    EXPECT_EQ(kit::contentsOf(open), "note 1");
    notes::MainWindow& window = home.start();
    window.takeOverOldNotes();
    EXPECT_EQ(migrationOf(window), nullptr);
    ::close(writer);
}

TEST(MigrationWindow, aWindowThatGoesAwayEndsTheMove) {
    constexpr int count = 300;
    Home home;
    makeOldNotes(home, count);
    home.start().takeOverOldNotes();
    const notes::MainWindow& later = home.start(); // the first one is gone, and its thread with it
    EXPECT_EQ(static_cast<std::size_t>(child<QListWidget>(later, "list").count()) +
                  notes::countOldNotes(home / home.oldPlace()),
              std::size_t{count});
}

TEST(MigrationWindow, whereBothFoldersAreOneNothingMoves) {
    Home home;
    makeOldNotes(home, 3);
    const kit::Variable data("XDG_DATA_HOME", (home / "Library/Application Support").c_str());
    notes::MainWindow& window = home.start();
    window.takeOverOldNotes();
    EXPECT_EQ(migrationOf(window), nullptr);
    EXPECT_EQ(child<QListWidget>(window, "list").count(), 3);
}
