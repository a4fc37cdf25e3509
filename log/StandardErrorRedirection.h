// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_LOG_STANDARDERRORREDIRECTION_H
#define ZQFOUNDATION_LOG_STANDARDERRORREDIRECTION_H

#include <string>

/// Where descriptor 2 leads. Nothing here allocates descriptors that outlive the call, the saved one apart.
namespace ZQFoundation::detail {

/// Keeps a duplicate of descriptor 2 unless one has been kept before. A process without a descriptor 2 keeps
/// none.
void saveStandardError() noexcept;

/// Moves the end of the file, which is made when there is none, onto descriptor 2 in one step: a line goes
/// to the old place or to the new one. When the file cannot be opened the null device goes there instead, so
/// that no line lands in a file that the host opens next. When not even that can be had (a full descriptor
/// table), descriptor 2 stays where it led.
void redirectStandardError(const std::string& path) noexcept;

/// Makes descriptor 2 a duplicate of the saved one again and closes that one, whose number stays
/// remembered. Nothing when none was ever saved.
void restoreStandardError() noexcept;

} // namespace ZQFoundation::detail

#endif
