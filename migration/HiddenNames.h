// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the names of unfinished items.
#ifndef ZQFOUNDATION_MIGRATION_HIDDENNAMES_H
#define ZQFOUNDATION_MIGRATION_HIDDENNAMES_H

#include <string>

/// The names that a migration gives to unfinished items, beside the item that they belong to:
///
///     copy      = ".zq-copy."   id       a copy that does not have its name yet
///     aside     = ".zq-aside."  name     a source that was set aside: it gets `name` back
///     asideLong = ".zq-asides." id       a folder that contains such a source under its own name, if
///                                        prefix and name are too long for one name
///     gone      = ".zq-gone."   id       to be removed
///     id        = 16 hexadecimal digits, 0-9 a-f
///
/// No other names have these prefixes. A process that works on such an item holds a lock on it (`flock`).
namespace ZQFoundation::detail {

enum class HiddenKind { none, copy, aside, asideLong, gone };

struct HiddenName {
    HiddenKind kind = HiddenKind::none;
    std::string original; ///< the own name of an item that was set aside
};

/// The kind and the original name; kind `none` for any other name.
HiddenName parsedHiddenName(const char* name);

/// A new unique name, of a kind that has an id.
std::string newHiddenName(HiddenKind kind);

/// The name under which an item is set aside.
std::string asideNameOf(const std::string& name);

} // namespace ZQFoundation::detail

#endif
