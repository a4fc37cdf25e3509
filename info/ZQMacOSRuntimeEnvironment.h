// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_INFO_ZQMACOSRUNTIMEENVIRONMENT_H
#define ZQFOUNDATION_INFO_ZQMACOSRUNTIMEENVIRONMENT_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// Which release of the operating system the process runs on, and for which processor the library was built.
/// Class operations only; any thread may call them at any time.
///
/// The facts come from the system version file where the system has one, else from its release description
/// (`/etc/os-release`), whose entries are given under the same keys. The version numbers are read once, at
/// the first use of the class, and never change afterwards; the texts are read afresh at every call.
class ZQFOUNDATION_EXPORT ZQMacOSRuntimeEnvironment {
public:
    ZQMacOSRuntimeEnvironment() = delete;

    /// Reads the version numbers unless that was done before. Every other operation does it by itself.
    static void initialize();

    /// What was read at first use: `ProductName`, `ProductVersion`, `ProductUserVisibleVersion`,
    /// `ProductBuildVersion` and whatever else the file holds. Nil when it could not be read.
    static NSDictionary systemVersionPlist();

    /// The first three components of `ProductVersion`; 0 for one that is missing, negative or no number.
    static std::uint64_t osVersionMajor();
    static std::uint64_t osVersionMinor();
    static std::uint64_t osVersionPatch();

    /// Whether the system version file has a first component above 10, or 10 and a second one of at least 12,
    /// 13, 14, 15, 16. False on a system without that file, whatever the numbers of its own release are.
    static bool isSierraOrLater();
    static bool isHighSierraOrLater();
    static bool isMojaveOrLater();
    static bool isCatalinaOrLater();
    static bool isBigSurOrLater();

    /// For which processor this library was compiled, not on which one it runs.
    static bool isARM();
    static bool isIntel();

    /// Always false.
    static bool isPowerPC();

    /// "Intel" or "ARM" in the user's language; of another processor what the kernel calls it. Never nil.
    static NSString localizedProcessorArchitecture();

    /// For the user's eyes; "unknown version", "unknown OS" and "unknown build" in the user's language for
    /// what is missing or empty. Never nil.
    static NSString userVisibleMacOSVersion();
    static NSString userVisibleMacOSName();
    static NSString userVisibleMacOSBuild();
};

} // namespace ZQFoundation

#endif
