// SPDX-License-Identifier: MIT
// The main window: notes are written, found, opened and removed, and none is lost.
#include "examples/Notes/windows/MainWindow.h"

#include <functional>

#include <QtCore/QTimer>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QSpinBox>
#include <sys/stat.h>

#include "tests/kit/Child.h"
#include "tests/notes/windows/Scene.h"

using namespace scene;

namespace {

/// The parts of a window.
struct Parts {
    explicit Parts(notes::MainWindow& whole)
        : window(whole), list(child<QListWidget>(whole, "list")), search(child<QLineEdit>(whole, "search")),
          editor(child<QPlainTextEdit>(whole, "editor")), status(child<QLabel>(whole, "status")) {}

    void choose(const char* action) const { child<QAction>(window, action).trigger(); }
    void write(const char* text) const {
        choose("&New");
        QTest::keyClicks(&editor, text);
    }
    /// Selects a row as the user does, with what follows.
    void open(int row) const {
        list.setCurrentRow(row);
        QCoreApplication::processEvents();
    }
    std::string titles() const {
        std::string all;
        for (int row = 0; row < list.count(); ++row) {
            all += utf8(list.item(row)->text()) + ";";
        }
        return all;
    }

    notes::MainWindow& window;
    QListWidget& list;
    QLineEdit& search;
    QPlainTextEdit& editor;
    QLabel& status;
};

/// Presses a button of the dialog that the action opens, or does something else with it.
void inNextDialog(const std::function<void(QWidget&)>& answer) {
    QTimer::singleShot(0, [answer] {
        QWidget* const dialog = QApplication::activeModalWidget();
        ASSERT_NE(dialog, nullptr);
        answer(*dialog);
    });
}

void press(QWidget& dialog, const char* text) {
    for (QPushButton* const button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == QString::fromUtf8(text)) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << text;
}

} // namespace

TEST(MainWindow, writesFindsAndOpensNotes) {
    Home home;
    const Parts parts(home.start());
    parts.write("Apples");
    parts.choose("&Save");
    parts.write("Birnen");
    parts.editor.insertPlainText(QString::fromUtf8(" und \u00c4pfel, Stra\u00dfe"));
    parts.choose("&Save");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "Apples.note"), "Apples");
    EXPECT_EQ(parts.titles(), "Birnen und \u00c4pfel, Stra\u00dfe;Apples;");
    EXPECT_EQ(utf8(parts.status.text()), "2 of 2 notes");

    QTest::keyClicks(&parts.search, "apfel STRASSE");
    EXPECT_EQ(parts.titles(), "Birnen und \u00c4pfel, Stra\u00dfe;");
    parts.search.clear();
    parts.open(1);
    EXPECT_EQ(utf8(parts.editor.toPlainText()), "Apples");
    EXPECT_EQ(Parts(home.start()).titles(), "Birnen und \u00c4pfel, Stra\u00dfe;Apples;");
}

TEST(MainWindow, aChangeIsSavedWhenAnotherNoteIsOpened) {
    Home home;
    const Parts parts(home.start());
    parts.write("one");
    parts.write("two");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "one.note"), "one");
    parts.open(0);
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "two.note"), "two");
    EXPECT_EQ(utf8(parts.editor.toPlainText()), "one");
}

TEST(MainWindow, aChangeIsSavedByItselfAndWhenTheWindowCloses) {
    Home home;
    const Parts parts(home.start());
    child<QTimer>(parts.window, "saving").setInterval(0);
    parts.write("one");
    EXPECT_TRUE(waitUntil([&] { return kit::contentsOf(home / home.newPlace() + "one.note") == "one"; }));
    child<QTimer>(parts.window, "saving").setInterval(3600000);
    QTest::keyClicks(&parts.editor, ", more");
    EXPECT_TRUE(parts.window.close());
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "one.note"), "one, more");
}

TEST(MainWindow, anEmptyNewNoteMakesNoFile) {
    Home home;
    const Parts parts(home.start());
    parts.write("  ");
    EXPECT_TRUE(parts.window.close());
    EXPECT_EQ(home.store->notes().size(), 0U);
}

TEST(MainWindow, whatCannotBeSavedStaysInTheEditor) {
    Home home;
    const Parts parts(home.start());
    parts.write("one");
    parts.write("two");
    parts.choose("&Save");
    const std::string folder = home / home.newPlace();
    kit::removeTree(folder.substr(0, folder.size() - 1));
    home.write(".local/share/Example/Notes", "a file is in the way");
    QTest::keyClicks(&parts.editor, ", more");
    parts.open(1);
    EXPECT_EQ(utf8(parts.editor.toPlainText()), "two, more");
    EXPECT_EQ(parts.list.currentRow(), 0);
    EXPECT_TRUE(parts.status.text().startsWith("Not saved: ")) << utf8(parts.status.text());

    inNextDialog([](QWidget& dialog) { press(dialog, "Cancel"); });
    EXPECT_FALSE(parts.window.close());
    EXPECT_TRUE(parts.window.isVisible());
    inNextDialog([](QWidget& dialog) { press(dialog, "Discard"); });
    EXPECT_TRUE(parts.window.close());
}

TEST(MainWindow, whatSomebodyElseHasWrittenStaysBesideIt) {
    Home home;
    const Parts parts(home.start());
    parts.write("mine");
    parts.choose("&Save");
    home.write(home.newPlace() + "mine.note", "theirs");
    QTest::keyClicks(&parts.editor, ", more");
    parts.choose("&Save");
    EXPECT_EQ(utf8(parts.status.text()), "The note was changed elsewhere. Your version is mine, more.note.");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "mine.note"), "theirs");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "mine, more.note"), "mine, more");
}

TEST(MainWindow, noBreakSpacesAreKept) {
    Home home;
    home.write(home.newPlace() + "a.note", "10\u00a0km\u2028next");
    const Parts parts(home.start());
    parts.open(0);
    EXPECT_FALSE(parts.editor.isReadOnly());
    QTest::keyClicks(&parts.editor, "x");
    parts.choose("&Save");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "a.note"), "x10\u00a0km\u2028next");
}

TEST(MainWindow, whatTheEditorCannotKeepIsNotChanged) {
    Home home;
    const std::string texts[] = {"a\r\nb", "caf\xe9", "a\u2029b"};
    for (const std::string& text : texts) {
        home.write(home.newPlace() + "a.note", text);
        const Parts parts(home.start());
        parts.open(0);
        EXPECT_TRUE(parts.editor.isReadOnly());
        EXPECT_TRUE(parts.status.text().startsWith("The editor cannot show all of this note"));
        QTest::keyClicks(&parts.editor, "x");
        EXPECT_TRUE(parts.window.close());
        EXPECT_EQ(kit::contentsOf(home / home.newPlace() + "a.note"), text);
    }
}

TEST(MainWindow, aRemovedNoteIsKeptOutOfTheList) {
    Home home;
    const Parts parts(home.start());
    parts.write("one");
    parts.choose("&Remove");
    EXPECT_EQ(parts.titles(), "");
    EXPECT_EQ(utf8(parts.editor.toPlainText()), "");
    EXPECT_EQ(kit::contentsOf(home / home.newPlace() + ".Removed/one.note"), "one");
}

TEST(MainWindow, newSettingsActAtOnce) {
    Home home;
    const Parts parts(home.start());
    inNextDialog([](QWidget& dialog) {
        child<QSpinBox>(dialog, "fontSize").setValue(30);
        child<QCheckBox>(dialog, "wrapLines").setChecked(false);
        press(dialog, "Save");
    });
    parts.choose("Se&ttings...");
    EXPECT_EQ(parts.editor.font().pointSize(), 30);
    EXPECT_EQ(parts.editor.lineWrapMode(), QPlainTextEdit::NoWrap);
    EXPECT_EQ(utf8(parts.status.text()), "");
    const Parts later(home.start());
    EXPECT_EQ(later.editor.font().pointSize(), 30);
}

TEST(MainWindow, speaksGerman) {
    EXPECT_EQ(kit::inProcessOfItsOwn({},
                                     [] {
                                         Home home("de");
                                         home.write(home.newPlace() + "a.note", "a");
                                         const Parts parts(home.start());
                                         return utf8(parts.window.windowTitle() + ";" +
                                                     child<QAction>(parts.window, "&New").text() + ";" +
                                                     parts.status.text());
                                     }),
              "Notizen;&Neu;1 von 1 Notizen");
}
