// SPDX-License-Identifier: MIT
// The preferences of Viewer, kept in the user defaults.
#ifndef ZQFOUNDATION_VIEWER_PREFERENCES_H
#define ZQFOUNDATION_VIEWER_PREFERENCES_H

#include <cstddef>

/// Registers the values that apply unless the user has set others.
void registerDefaults();

/// Lines on a page, at least 1: the default `PageLength`, twice as many with `EnableLargePages`, whatever
/// `DebugPageLength` says when it is set.
std::size_t pageLength();

/// To be called after the user's settings have changed, from any thread.
void preferencesChanged();

#endif
