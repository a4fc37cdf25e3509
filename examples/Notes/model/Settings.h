// SPDX-License-Identifier: MIT
// The settings of Notes, kept in the user defaults.
#ifndef ZQFOUNDATION_MODEL_SETTINGS_H
#define ZQFOUNDATION_MODEL_SETTINGS_H

#include <ZQFoundation/ZQFoundation.h>

namespace notes::settings {

namespace zq = ZQFoundation;

/// The limits of `Values::fontSize`.
inline constexpr int minFontSize = 6;
inline constexpr int maxFontSize = 72;

/// What the settings window changes.
struct Values {
    int fontSize = 11;      ///< of the editor's letters, in points
    bool wrapsLines = true; ///< in the editor
    zq::NSString language;  ///< that the user has chosen for Notes, such as "de"; nil for the system's choice
};

/// Registers the values that apply while the user has set nothing. Called once, at the start.
void registerDefaults();

/// The settings as they are now.
Values current();

/// Sets and saves all settings. Nil when they are saved, else the reason why they apply to this run only.
zq::NSString save(const Values& values);

/// Turns a trace key on or off at once, for all threads, and saves that. Nil, or the reason as from `save`. A
/// key on the command line or in the environment overrides it: check `ZQLog::traceKeyIsEnabled` afterwards.
zq::NSString setTraceKey(const zq::NSString& key, bool isOn);

/// Whether this release still has to move the notes of an older one.
bool needsMove();

/// Records that this release has nothing more to move. Nil, or the reason as from `save`.
zq::NSString rememberMove();

} // namespace notes::settings

#endif
