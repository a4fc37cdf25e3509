// SPDX-License-Identifier: MIT
// Answers questions about the system's release and the library's processor.
#include "info/ZQMacOSRuntimeEnvironment.h"

#include <atomic>
#include <cstdint>

#if !defined(__aarch64__) && !defined(__x86_64__)
#include <sys/utsname.h>
#endif

#include "foundation/objects/AsciiOrUtf16.h"
#include "foundation/process/NSBundle.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Published.h"
#include "foundation/text/NumberText.h"
#include "info/SystemVersion.h"

namespace ZQFoundation {

namespace {

/// What is read at the first use. Made once and never freed, so that static destructors may ask too.
struct Release {
    NSDictionary dictionary;
    bool isMakers = false;    // from the vendor whose releases the release tests are about
    std::uint64_t major_ = 0; // the bare names are macros in some systems' headers
    std::uint64_t minor_ = 0;
    std::uint64_t patch_ = 0;
};

constinit std::atomic<const Release*> knownRelease{nullptr};

/// 0 for a component without digits and for a negative one.
std::uint64_t numberOf(const detail::AsciiOrUtf16& text, std::size_t start, std::size_t end) {
    const std::int64_t number = text.isAscii() ? detail::readInt64(text.ascii() + start, end - start)
                                               : detail::readInt64(text.units() + start, end - start);
    return number < 0 ? 0 : static_cast<std::uint64_t>(number);
}

/// Reads the components between periods, as many as there is room for.
void readNumbers(const NSString& version, Release& release) {
    const detail::AsciiOrUtf16 text(version);
    std::size_t start = 0;
    for (std::uint64_t* const place : {&release.major_, &release.minor_, &release.patch_}) {
        std::size_t end = start;
        while (end < text.length() && text[end] != u'.') {
            ++end;
        }
        *place = numberOf(text, start, end);
        if (end == text.length()) {
            break;
        }
        start = end + 1;
    }
}

/// The release, read at the first call. Without a lock, which a forked child could find locked forever.
const Release& release() {
    if (const Release* const known = knownRelease.load(std::memory_order_acquire)) {
        return *known;
    }
    const detail::CallerState callerState;
    auto* const fresh = new Release;
    fresh->isMakers = detail::usesSystemVersionFile();
    fresh->dictionary = detail::systemVersionDictionary();
    readNumbers(NSString(fresh->dictionary.objectForKey("ProductVersion")), *fresh);
    // Threads that arrive at the same time read the same; the result of the first is kept.
    return detail::publishOnce(knownRelease, fresh);
}

/// Any major version above 10 is later than every 10.x. Version 12 of another system does not count.
bool isAtLeast10Dot(std::uint64_t minorNumber) {
    const Release& known = release();
    return known.isMakers && (known.major_ > 10 || (known.major_ == 10 && known.minor_ >= minorNumber));
}

/// The English text is the key; without a table for the user's language it is the result.
NSString localized(const NSString& text) {
    return NSBundle::libraryBundle().localizedStringForKey_value_table(text, "", nullptr);
}

/// Read again at each call, unlike the numbers. Those are read at the first use of the class, so this
/// operation reads them too when it is the first.
NSString userVisibleText(StringView key, const char* fallback) {
    const detail::CallerState callerState;
    release();
    const NSString text(detail::systemVersionDictionary().objectForKey(key));
    return text.length() != 0 ? text : localized(fallback);
}

#if defined(__aarch64__)
NSString processorArchitecture() { return "ARM"; }
#elif defined(__x86_64__)
NSString processorArchitecture() { return "Intel"; }
#else
/// The kernel's name for a processor of another family.
NSString processorArchitecture() {
    utsname names{};
    return uname(&names) >= 0 ? NSString(static_cast<const char*>(names.machine)) : NSString("unknown");
}
#endif

} // namespace

void ZQMacOSRuntimeEnvironment::initialize() { release(); }

NSDictionary ZQMacOSRuntimeEnvironment::systemVersionPlist() { return release().dictionary; }

std::uint64_t ZQMacOSRuntimeEnvironment::osVersionMajor() { return release().major_; }

std::uint64_t ZQMacOSRuntimeEnvironment::osVersionMinor() { return release().minor_; }

std::uint64_t ZQMacOSRuntimeEnvironment::osVersionPatch() { return release().patch_; }

bool ZQMacOSRuntimeEnvironment::isSierraOrLater() { return isAtLeast10Dot(12); }

bool ZQMacOSRuntimeEnvironment::isHighSierraOrLater() { return isAtLeast10Dot(13); }

bool ZQMacOSRuntimeEnvironment::isMojaveOrLater() { return isAtLeast10Dot(14); }

bool ZQMacOSRuntimeEnvironment::isCatalinaOrLater() { return isAtLeast10Dot(15); }

bool ZQMacOSRuntimeEnvironment::isBigSurOrLater() { return isAtLeast10Dot(16); }

// Every operation, when it is the first, makes the class read the version numbers, even these, which do not
// need them.

bool ZQMacOSRuntimeEnvironment::isARM() {
    initialize();
#ifdef __aarch64__
    return true;
#else
    return false;
#endif
}

bool ZQMacOSRuntimeEnvironment::isIntel() {
    initialize();
#ifdef __x86_64__
    return true;
#else
    return false;
#endif
}

bool ZQMacOSRuntimeEnvironment::isPowerPC() {
    initialize();
    return false;
}

NSString ZQMacOSRuntimeEnvironment::localizedProcessorArchitecture() {
    initialize();
    return localized(processorArchitecture());
}

NSString ZQMacOSRuntimeEnvironment::userVisibleMacOSVersion() {
    return userVisibleText("ProductUserVisibleVersion", "unknown version");
}

NSString ZQMacOSRuntimeEnvironment::userVisibleMacOSName() {
    return userVisibleText("ProductName", "unknown OS");
}

NSString ZQMacOSRuntimeEnvironment::userVisibleMacOSBuild() {
    return userVisibleText("ProductBuildVersion", "unknown build");
}

} // namespace ZQFoundation
