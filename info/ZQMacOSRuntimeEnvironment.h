// SPDX-License-Identifier: MIT
// Declares what a host can learn about the system's release and the library's processor.
#ifndef ZQFOUNDATION_INFO_ZQMACOSRUNTIMEENVIRONMENT_H
#define ZQFOUNDATION_INFO_ZQMACOSRUNTIMEENVIRONMENT_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// Which release of the operating system the process runs on, and for which processor the library was built.
/// Class operations only; any thread may call them at any time.
///
/// The facts come from the system version file if the system has one, else from its release description
/// (`/etc/os-release`), whose entries are given under the same keys. The version numbers are read once, at
/// the first use of the class, and never change afterwards; the texts are read again at every call.
class ZQFOUNDATION_EXPORT ZQMacOSRuntimeEnvironment {
public:
    ZQMacOSRuntimeEnvironment() = delete;

    /// Reads the version numbers unless they were read before. Every other operation calls it.
    static void initialize();

    /// What was read at first use: `ProductName`, `ProductVersion`, `ProductUserVisibleVersion`,
    /// `ProductBuildVersion` and whatever else the file holds. Nil when it could not be read.
    static NSDictionary systemVersionPlist();

    /// The first component of `ProductVersion`; 0 if it is missing, negative or no number.
    static std::uint64_t osVersionMajor();

    /// The second component of `ProductVersion`; 0 if it is missing, negative or no number.
    static std::uint64_t osVersionMinor();

    /// The third component of `ProductVersion`; 0 if it is missing, negative or no number.
    static std::uint64_t osVersionPatch();

    /// Whether the system version file says 10.12 or later. False on a system without that file, whatever its
    /// own release.
    static bool isSierraOrLater();

    /// Whether the system version file says 10.13 or later. False on a system without that file, whatever its
    /// own release.
    static bool isHighSierraOrLater();

    /// Whether the system version file says 10.14 or later. False on a system without that file, whatever its
    /// own release.
    static bool isMojaveOrLater();

    /// Whether the system version file says 10.15 or later. False on a system without that file, whatever its
    /// own release.
    static bool isCatalinaOrLater();

    /// Whether the system version file says 10.16 or later. False on a system without that file, whatever its
    /// own release.
    static bool isBigSurOrLater();

    /// Whether this library was compiled for an ARM processor, whatever it runs on.
    static bool isARM();

    /// Whether this library was compiled for an Intel processor, whatever it runs on.
    static bool isIntel();

    /// Always false: the library does not support these processors.
    static bool isPowerPC();

    /// "Intel" or "ARM" in the user's language; of another processor what the kernel calls it. Never nil.
    static NSString localizedProcessorArchitecture();

    /// The user-visible version; "unknown version" in the user's language if it is missing or empty. Never
    /// nil.
    static NSString userVisibleMacOSVersion();

    /// The user-visible name of the system; "unknown OS" in the user's language if it is missing or empty.
    /// Never nil.
    static NSString userVisibleMacOSName();

    /// The user-visible build; "unknown build" in the user's language if it is missing or empty. Never nil.
    static NSString userVisibleMacOSBuild();
};

} // namespace ZQFoundation

#endif
