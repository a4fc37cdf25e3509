// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the redirection of descriptor 2 to a file and back.
#ifndef ZQFOUNDATION_LOG_STANDARDERRORREDIRECTION_H
#define ZQFOUNDATION_LOG_STANDARDERRORREDIRECTION_H

#include <string>

/// Redirects descriptor 2. Nothing here allocates descriptors that outlive the call, except the saved one.
namespace ZQFoundation::detail {

/// Saves a duplicate of descriptor 2 unless one was saved before. A process without a descriptor 2 saves
/// none.
void saveStandardError() noexcept;

/// Redirects descriptor 2 to the end of the file, which is created if missing, in one step: a line goes to
/// the old target or to the new one. If the file cannot be opened, the null device is used instead, so that
/// no line ends up in a file that the host opens next. If not even that is possible (a full descriptor
/// table), descriptor 2 keeps its target.
void redirectStandardError(const std::string& path) noexcept;

/// Makes descriptor 2 a duplicate of the saved one again and closes that one, whose number is kept. Does
/// nothing if none was ever saved.
void restoreStandardError() noexcept;

} // namespace ZQFoundation::detail

#endif
