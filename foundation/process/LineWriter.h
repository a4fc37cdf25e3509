// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEWRITER_H
#define ZQFOUNDATION_PROCESS_LINEWRITER_H

#include "foundation/objects/TextBuilder.h"
#include "foundation/process/ProcessIdentity.h"

namespace ZQFoundation::detail {

/// A line on its way to descriptor 2, composed in the buffer that is written: first the prefix, "2024-03-05
/// 14:07:09.042 MyApp[1234:5d7f] ", then what is appended to `text`. Lines of up to about 2 KiB allocate
/// nothing; longer ones use memory that a signal handler may allocate.
class LogLine {
public:
    LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    TextBuilder& text() noexcept { return text_; }

    /// Writes the line, once, by one system call; the kernel has it on return. Failures are silent, keep
    /// `errno` and raise no signal. A text that ends with a line feed gets no second one. Then passes the
    /// line to the observer of lines, outside any lock. Any thread, at any time, also in signal handlers.
    void write();

private:
    static constexpr std::size_t lentBytes = 2048;

    char* writeBytes(char* message, const char* end) noexcept;

    const ProcessIdentity& process_;
    std::size_t messageStart_;
    char lent_[lentBytes];
    TextBuilder text_{lent_, lentBytes};
};

/// Writes the text as one line.
void writeLine(StringView text);

} // namespace ZQFoundation::detail

#endif
