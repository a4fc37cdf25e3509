// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_LINEPREFIX_H
#define ZQFOUNDATION_PROCESS_LINEPREFIX_H

#include <cstddef>
#include <cstdint>

#include "foundation/process/ProcessIdentity.h"
#include "foundation/time/Clock.h"
#include "foundation/time/ZoneTable.h"

namespace ZQFoundation::detail {

/// "2024-03-05 14:07:09.042 MyApp[1234:5d7f] ": the start of each line.
struct LinePrefix {
    const ProcessIdentity& process;
    Instant time; ///< rounded to milliseconds

    /// The number of bytes that the writing functions may use before `end`.
    static std::size_t roomFor(const ProcessIdentity& process) noexcept;

    /// Writes the prefix of a line of this thread so that it ends at `end`. Returns where it begins.
    char* writeBefore(char* end) const noexcept;
};

/// The prefixes of the last lines: for the same thread, second and time zone only the milliseconds differ.
/// Its owner ensures that it is not entered twice at once; a forked child may find an incomplete prefix,
/// which is then made again.
class LinePrefixCache {
public:
    /// The same as `prefix.writeBefore(end)`.
    char* writeBefore(char* end, const LinePrefix& prefix) noexcept;

    /// The number of bytes written before `end`, whatever the length of the prefix.
    static constexpr std::size_t textCapacity = 96;

private:
    /// What a prefix was made from, except for the milliseconds.
    struct Key {
        std::uint64_t thread; ///< 0 while the prefix is incomplete
        std::int64_t second;
        const Zone* zone;
        const ProcessIdentity* process;
        std::uint32_t generation; ///< of forks

        bool matches(const Key& wanted) const noexcept;
    };

    struct Prefix {
        Key key;
        std::size_t length;
        std::size_t afterDate;   ///< the length of the part after the date
        char text[textCapacity]; ///< at its end
    };

    static char* rewriteBefore(char* end, const LinePrefix& prefix, Prefix& place,
                               const Key& wanted) noexcept;

    static constexpr std::size_t places = 4;
    Prefix prefixes_[places] = {};
};

} // namespace ZQFoundation::detail

#endif
