// SPDX-License-Identifier: MIT
// The switches of the trace keys take effect at once and are saved.
#include "examples/Notes/windows/TracePanel.h"

#include "tests/notes/windows/Scene.h"

using namespace scene;

namespace {

struct PanelParts {
    notes::TracePanel panel;
    QCheckBox& traceNotes = child<QCheckBox>(panel, "TraceNotes");
    QCheckBox& traceSearch = child<QCheckBox>(panel, "TraceSearch");
    QLabel& status = child<QLabel>(panel, "status");
};

std::string savedSettings(const Home& home) {
    return kit::contentsOf(home / ".config/ZQFoundation/com.example.Notes.plist");
}

} // namespace

TEST(TracePanel, aSwitchActsAtOnceAndIsSaved) {
    const Home home;
    const PanelParts parts;
    EXPECT_FALSE(parts.traceNotes.isChecked());
    parts.traceNotes.click();
    EXPECT_TRUE(zq::ZQLog::traceKeyIsEnabled("TraceNotes"));
    EXPECT_FALSE(zq::ZQLog::traceKeyIsEnabled("TraceSearch"));
    EXPECT_NE(savedSettings(home).find("<key>TraceNotes</key>\n\t<true/>"), std::string::npos)
        << savedSettings(home);
    const PanelParts later;
    EXPECT_TRUE(later.traceNotes.isChecked());
    EXPECT_FALSE(later.traceSearch.isChecked());
    parts.traceNotes.click();
    EXPECT_FALSE(zq::ZQLog::traceKeyIsEnabled("TraceNotes"));
    EXPECT_NE(savedSettings(home).find("<key>TraceNotes</key>\n\t<false/>"), std::string::npos)
        << savedSettings(home);
}

TEST(TracePanel, aSwitchSaysWhatItsKeyShows) {
    const Home home;
    EXPECT_EQ(utf8(PanelParts().traceNotes.toolTip()), "What is read, written and removed");
}

TEST(TracePanel, whereTheEnvironmentDecidesTheSwitchGoesBack) {
    const Home home;
    const kit::Variable defaults("ZQ_DEFAULTS", "-TraceNotes NO");
    const PanelParts parts;
    parts.traceNotes.click();
    EXPECT_FALSE(parts.traceNotes.isChecked());
    EXPECT_EQ(utf8(parts.status.text()), "The command line decides about TraceNotes in this run.");
}

TEST(TracePanel, aSwitchThatCannotBeSavedSaysWhy) {
    const Home home;
    home.write(".config/ZQFoundation", "a file is where the folder should be");
    const PanelParts parts;
    parts.traceNotes.click();
    EXPECT_TRUE(parts.traceNotes.isChecked());
    EXPECT_TRUE(parts.status.text().startsWith("Not saved: ")) << utf8(parts.status.text());
    parts.traceNotes.click();
}
