// SPDX-License-Identifier: MIT
// Declares the order of version strings.
#ifndef ZQFOUNDATION_VERSION_ZQVERSIONCOMPARATOR_H
#define ZQFOUNDATION_VERSION_ZQVERSIONCOMPARATOR_H

#include "../foundation/objects/NSArray.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// Orders version strings. Class operations only; any thread may call them. Comparing versions of ordinary
/// length allocates nothing, unless two different tokens contain letters beyond ASCII.
///
///     ZQVersionComparator::compareVersion_toVersion("1.9", "1.10");  // NSOrderedAscending
///     ZQVersionComparator::compareVersion_toVersion("1.0b", "1.0");  // NSOrderedAscending
///     ZQVersionComparator::compareVersion_toVersion("1.0", "1.0.0"); // NSOrderedAscending: not ignored
///
/// A version is split into tokens of one class: runs of digits, single periods, runs of anything else.
class ZQFOUNDATION_EXPORT ZQVersionComparator {
public:
    ZQVersionComparator() = delete;

    /// 2 for exactly ".", else by the first unit: 0 for a decimal digit of any script, 1 for anything else.
    /// Nil gives 1; the empty string raises NSRangeException.
    static int typeOfCharacter(StringView character);

    /// The tokens in order: "2.1b12" gives "2", ".", "1", "b", "12". Empty for nil and the empty string.
    static NSMutableArray splitVersionString(StringView version);

    /// Token by token: anything else orders before a period, a period before a number; numbers by their
    /// 32-bit value, other tokens by `compare`. If one version ends first, the longer one is less if its next
    /// token is neither a number nor a period, else greater. Nil has no tokens.
    static NSComparisonResult compareVersion_toVersion(StringView version, StringView other);

    /// Like `compareVersion_toVersion`, but one "+" at the end of either string is read as ".0": "3.0+" is
    /// "3.0.0". Raises NSRangeException for an empty string.
    static NSComparisonResult compareVersionWithPlus_toVersionWithPlus(StringView version, StringView other);

    /// Compares leading components. If both versions have the same number of periods, the last component of
    /// each is ignored; otherwise the longer one is truncated to the number of periods of the shorter one,
    /// and nothing more. **Not an ordering to sort by:** 10.13 and 10.14 are the same, 10.13.6 is less than
    /// 10.14.
    static NSComparisonResult compareMajorVersion_toMajorVersion(StringView version, StringView other);
};

} // namespace ZQFoundation

#endif
