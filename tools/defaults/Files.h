// SPDX-License-Identifier: MIT
// Reading and writing of files. Everything here fails with a message that names the file.
#ifndef ZQFOUNDATION_DEFAULTS_FILES_H
#define ZQFOUNDATION_DEFAULTS_FILES_H

#include <string>

#include "foundation/files/GuardedOpening.h"
#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::defaults {

/// Fails with the text of a system error.
[[noreturn]] void failWith(const std::string& path, int error);

/// What the descriptor's file holds, from where it stands on.
NSDictionary dictionaryFrom(const detail::Descriptor& file, const std::string& path);

/// What the regular file at the place holds, which `path` names in messages. Nil when there is none.
NSDictionary dictionaryAt(const detail::GuardedPlace& place, const std::string& path);

/// Opens the place, without following a link that has been put there meanwhile. `errno` if it fails.
detail::Descriptor openPlace(const detail::GuardedPlace& place, int flags) noexcept;

void writeAll(int file, const std::string& bytes, const std::string& path);

} // namespace ZQFoundation::defaults

#endif
