// SPDX-License-Identifier: MIT
// The log window and its switches.
#include "examples/Notes/windows/LogWindow.h"

#include <thread>

#include <QtWidgets/QCheckBox>

#include "tests/notes/windows/Scene.h"

using namespace scene;

namespace {

struct LogParts {
    QString text() const { return lines.toPlainText(); }
    bool shows(const char* wanted) const {
        return waitUntil([&] { return text().contains(wanted); });
    }

    notes::LogWindow window{nullptr};
    QPlainTextEdit& lines = child<QPlainTextEdit>(window, "lines");
    QLineEdit& filter = child<QLineEdit>(window, "filter");
    QCheckBox& traceNotes = child<QCheckBox>(window, "TraceNotes");
};

} // namespace

TEST(LogWindow, showsTheLinesOfAllThreads) {
    const Home home;
    zq::ZQLog::log("before the window");
    const LogParts parts;
    EXPECT_TRUE(parts.text().contains("] before the window"));
    zq::ZQLog::log("of this thread");
    std::thread([] { zq::ZQLog::log("of another thread"); }).join();
    EXPECT_TRUE(parts.shows("] of this thread"));
    EXPECT_TRUE(parts.shows("] of another thread"));
}

TEST(LogWindow, filtersOldLinesAndNewOnes) {
    const Home home;
    const LogParts parts;
    zq::ZQLog::log("first: caf\u00e9");
    zq::ZQLog::log("first: tea");
    QTest::keyClicks(&parts.filter, "CAFE first");
    zq::ZQLog::log("first: CAF\u00c9");
    zq::ZQLog::log("first: milk");
    EXPECT_TRUE(parts.shows("CAF\u00c9"));
    EXPECT_TRUE(parts.text().contains("caf\u00e9"));
    EXPECT_FALSE(parts.text().contains("tea"));
    EXPECT_FALSE(parts.text().contains("milk"));
    parts.filter.clear();
    EXPECT_TRUE(parts.text().contains("first: tea"));
    EXPECT_TRUE(parts.text().contains("first: milk"));
}

TEST(LogWindow, aSwitchActsOnTheNextLine) {
    Home home;
    home.start();
    const LogParts parts;
    parts.traceNotes.click();
    home.store->reload();
    EXPECT_TRUE(parts.shows("TraceNotes: -[(NoteStore *)0x"));
    parts.traceNotes.click();
    const QString before = parts.text();
    home.store->reload();
    QCoreApplication::processEvents();
    EXPECT_EQ(parts.text(), before);
}

TEST(LogWindow, linesAfterTheWindowGoNowhere) {
    const Home home;
    { const LogParts parts; }
    zq::ZQLog::log("nobody sees this");
    QCoreApplication::processEvents();
    EXPECT_TRUE(LogParts().text().contains("nobody sees this"));
}
