// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_HIDDENNAMES_H
#define ZQFOUNDATION_MIGRATION_HIDDENNAMES_H

#include <string>

/// The names that a migration gives to what is not finished, beside the item that it concerns:
///
///     copy      = ".zq-copy."   id       a copy that has not taken its name yet
///     aside     = ".zq-aside."  name     a source that was set aside: it goes back to `name`
///     asideLong = ".zq-asides." id       a folder that holds such a source under its own name, where that
///     and
///                                        the mark are too long for one name
///     gone      = ".zq-gone."   id       given up: to be removed
///     id        = 16 hexadecimal digits, 0-9 a-f
///
/// Nothing else bears the library's mark. Who works on such an item holds a lock on it (`flock`).
namespace ZQFoundation::detail {

enum class HiddenKind { none, copy, aside, asideLong, gone };

struct HiddenName {
    HiddenKind kind = HiddenKind::none;
    std::string original; ///< of what was set aside: its own name
};

/// What a name says; kind `none` for every other one.
HiddenName parsedHiddenName(const char* name);

/// A new name, other than all others, of a kind that has an id.
std::string newHiddenName(HiddenKind kind);

/// Where an item of this name is set aside.
std::string asideNameOf(const std::string& name);

} // namespace ZQFoundation::detail

#endif
