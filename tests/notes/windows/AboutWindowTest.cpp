// SPDX-License-Identifier: MIT
// The window about the application.
#include "examples/Notes/windows/AboutWindow.h"

#include <QtGui/QClipboard>

#include "tests/notes/windows/Scene.h"

using namespace scene;

TEST(AboutWindow, showsAndCopiesTheReport) {
    const Home home;
    ASSERT_FALSE(notes::settings::setTraceKey("TraceSearch", true));
    const notes::AboutWindow window(nullptr);
    const std::string report = utf8(child<QPlainTextEdit>(window, "report").toPlainText());
    EXPECT_EQ(report.rfind("Notes 2.0 v200 (en), running on ", 0), 0U) << report;
    EXPECT_NE(
        report.find(
            "TraceSearch is active.  Deactivate using: defaults write com.example.Notes TraceSearch NO"),
        std::string::npos)
        << report;
    click(window, "copy");
    EXPECT_EQ(utf8(QGuiApplication::clipboard()->text()), report);
    ASSERT_FALSE(notes::settings::setTraceKey("TraceSearch", false));
}

TEST(AboutWindow, opensTheFolderOfTheLog) {
    const Home home;
    QUrl opened;
    const notes::AboutWindow window(nullptr, [&](const QUrl& url) {
        opened = url;
        return true;
    });
    click(window, "folder");
    EXPECT_EQ(utf8(opened.toLocalFile()), home / ".local/state/Example/Notes");
}

TEST(AboutWindow, aFolderThatNothingOpensIsInTheLog) {
    const Home home;
    const notes::AboutWindow window(nullptr, [](const QUrl&) { return false; });
    const notes::LogCapture capture;
    click(window, "folder");
    ASSERT_EQ(capture.messages().size(), 1U);
    EXPECT_EQ(capture.messages()[0], "the folder cannot be opened: " + (home / ".local/state/Example/Notes"));
}
