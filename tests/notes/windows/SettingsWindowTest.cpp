// SPDX-License-Identifier: MIT
// The settings window saves what it shows when it is accepted, and nothing else.
#include "examples/Notes/windows/SettingsWindow.h"

#include "tests/notes/windows/Scene.h"

using namespace scene;

namespace {

struct SettingsParts {
    notes::SettingsWindow window{nullptr};
    QSpinBox& fontSize = child<QSpinBox>(window, "fontSize");
    QCheckBox& wrapLines = child<QCheckBox>(window, "wrapLines");
    QComboBox& language = child<QComboBox>(window, "language");
};

} // namespace

TEST(SettingsWindow, savesWhatItShows) {
    const Home home;
    SettingsParts parts;
    parts.fontSize.setValue(20);
    parts.wrapLines.setChecked(false);
    parts.language.setCurrentText("Deutsch");
    parts.window.accept();
    EXPECT_EQ(utf8(parts.window.failure()), "");
    const SettingsParts later;
    EXPECT_EQ(later.fontSize.value(), 20);
    EXPECT_FALSE(later.wrapLines.isChecked());
    EXPECT_EQ(utf8(later.language.currentText()), "Deutsch");
    EXPECT_EQ(zq::NSUserDefaults::standardUserDefaults().arrayForKey("AppleLanguages"), zq::NSArray{"de"});
}

TEST(SettingsWindow, aCanceledOneChangesNothing) {
    const Home home;
    SettingsParts parts;
    parts.fontSize.setValue(20);
    parts.window.reject();
    EXPECT_EQ(notes::settings::current().fontSize, 11);
    EXPECT_EQ(SettingsParts().language.currentIndex(), 0);
}

TEST(SettingsWindow, whatCannotBeSavedSaysWhy) {
    const Home home;
    home.write(".config/ZQFoundation", "a file is where the folder should be");
    SettingsParts parts;
    parts.window.accept();
    EXPECT_TRUE(parts.window.failure().startsWith("Not saved: ")) << utf8(parts.window.failure());
}
