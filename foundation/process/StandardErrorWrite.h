// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_STANDARDERRORWRITE_H
#define ZQFOUNDATION_PROCESS_STANDARDERRORWRITE_H

#include <cstddef>
#include <cstdint>

namespace ZQFoundation::detail {

/// Writes to descriptor 2. Returns the number of bytes written, or an error number below 0; preserves `errno`
/// and is not a cancellation point. A lost reader and a file-size limit are reported as errors and raise no
/// signal: whether they are possible is checked when `second` differs from that of the last check, in each
/// child and after each `standardErrorHasChanged`. While they are not, the write is one plain system call.
/// Any thread, also in signal handlers.
std::ptrdiff_t writeToStandardError(const char* bytes, std::size_t count, std::int64_t second) noexcept;

/// Must be called after descriptor 2 was redirected: the next write checks it again.
void standardErrorHasChanged() noexcept;

} // namespace ZQFoundation::detail

#endif
