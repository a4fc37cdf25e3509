// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEWRITER_H
#define ZQFOUNDATION_PROCESS_LINEWRITER_H

#include "foundation/objects/TextBuilder.h"
#include "foundation/process/ProcessIdentity.h"

namespace ZQFoundation::detail {

/// A line on its way to descriptor 2, composed in the memory that is written: first what stands in front,
/// "2024-03-05 14:07:09.042 MyApp[1234:5d7f] ", then what is appended to `text`. Up to about 2 KiB nothing is
/// allocated; longer ones take memory that a signal handler may take.
class LogLine {
public:
    LogLine();
    LogLine(const LogLine&) = delete;
    LogLine& operator=(const LogLine&) = delete;

    TextBuilder& text() noexcept { return text_; }

    /// Writes the line, once, by one call of the system. It is with the kernel then; whatever goes wrong, it
    /// is silent and keeps `errno`, and no signal is raised. A text that ends with a line feed gets no second
    /// one. Then hands it to the observer of lines, outside every lock. Any thread, any time, signal handlers
    /// too.
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
