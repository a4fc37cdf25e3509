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

/// "2024-03-05 14:07:09.042 MyApp[1234:5d7f] ": what stands in front of each line.
struct LinePrefix {
    const ProcessIdentity& process;
    Instant time; ///< rounded to milliseconds

    /// Room that the writing functions may use in front of `end`.
    static std::size_t roomFor(const ProcessIdentity& process) noexcept;

    /// Writes the prefix of a line of this thread so that it ends at `end`. Returns where it begins.
    char* writeBefore(char* end) const noexcept;
};

/// Prefixes as the last lines had them: of the same thread, the same second and the same zone only the
/// milliseconds differ. Any thread, signal handlers too; whoever finds a place taken makes a prefix of its
/// own.
class KeptLinePrefixes {
public:
    /// The same as `prefix.writeBefore(end)`.
    char* writeBefore(char* end, const LinePrefix& prefix) noexcept;

    /// Written in front of `end` whatever the length of the prefix.
    static constexpr std::size_t textCapacity = 96;

private:
    /// What a prefix was made of, but for the milliseconds.
    struct Kept {
        std::uint64_t thread;
        std::int64_t second;
        const Zone* zone;
        const ProcessIdentity* process;
        std::uint32_t generation; ///< of forks

        bool operator==(const Kept&) const noexcept = default;
    };

    struct alignas(64) Prefix {
        std::uint32_t visitor; ///< the fork generation of whoever is in here; 0: nobody
        Kept kept;
        std::size_t length;
        std::size_t behindDate;  ///< how much of it that is
        char text[textCapacity]; ///< at its end
    };

    static bool enter(Prefix& place, std::uint32_t generation) noexcept;
    static char* writeAnewBefore(char* end, const LinePrefix& prefix, Prefix& place,
                                 const Kept& wanted) noexcept;

    static constexpr std::size_t places = 4;
    Prefix prefixes_[places] = {};
};

} // namespace ZQFoundation::detail

#endif
