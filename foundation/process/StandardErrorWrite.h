// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_STANDARDERRORWRITE_H
#define ZQFOUNDATION_PROCESS_STANDARDERRORWRITE_H

#include <cstddef>
#include <cstdint>

namespace ZQFoundation::detail {

/// Writes to descriptor 2. Returns how many bytes went out, or an error number below 0; keeps `errno` and is
/// no cancellation point. A reader that is gone and a file-size limit show as errors and raise no signal:
/// whether they can be met is looked at when `second` is another one than at the last look, in each child and
/// after each `standardErrorHasChanged`. While they cannot, the write is one plain system call. Any thread,
/// signal handlers too.
std::ptrdiff_t writeToStandardError(const char* bytes, std::size_t count, std::int64_t second) noexcept;

/// Whether one plain write puts a whole line at the end of what is there, whoever writes beside it: to a
/// regular file in append mode, without a limit. Known as long as what `writeToStandardError` goes
/// by.
bool standardErrorAppendsWhole(std::int64_t second) noexcept;

/// To be called by whoever has led descriptor 2 somewhere else: the next write looks where.
void standardErrorHasChanged() noexcept;

} // namespace ZQFoundation::detail

#endif
