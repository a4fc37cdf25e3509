// SPDX-License-Identifier: MIT
// Declares the facts about application, system and hardware, and the start-up report.
#ifndef ZQFOUNDATION_INFO_ZQLOGINFO_H
#define ZQFOUNDATION_INFO_ZQLOGINFO_H

#include "../foundation/objects/NSDictionary.h"
#include "../foundation/objects/NSString.h"

namespace ZQFoundation {

/// Which application runs, on which system, and with which switches: the facts and the report at the start of
/// a log.
///
///     ZQLogInfo::standardStartupLog(); // writes nothing unless a trace key is active
///
/// Class operations only. Nothing is kept: every call reads the bundle, the system and the user defaults
/// again. Any thread may call them.
class ZQFOUNDATION_EXPORT ZQLogInfo {
public:
    ZQLogInfo() = delete;

    /// `appIdentifier`, `shortApplicationName`, `appLocalization` ("en, de"), `shortVersionString` and
    /// `versionString` of the main bundle. What is missing is omitted, and a line says so at every call,
    /// regardless of the trace keys; without an Info dictionary the result is empty.
    static NSDictionary getAppInformation();

    /// "Viewer 2.1 v417": the name, the short version and the version, without what is missing. Never nil.
    static NSString appInfoString();

    /// `osVersion`, `osBuild`, `osNameInternal` and `osName`, all of them. `osName` is the name under which
    /// the maker of the system version file sold that version; facts from elsewhere keep the name they come
    /// with.
    ///
    /// Raises NSInvalidArgumentException when the system version file cannot be read or lacks its version,
    /// build or name. A system that is described by `/etc/os-release`, or by neither, always has all.
    static NSDictionary getSystemInformation();

    /// "Debian GNU/Linux 12 (6.1.0-28-amd64)"; never nil. Raises as `getSystemInformation` does.
    static NSString osInfoString();

    /// "Debian GNU/Linux 12": name and version. Raises as `getSystemInformation` does.
    static NSString osNameAndVersionString();

    /// "12": the version alone. Raises as `getSystemInformation` does.
    static NSString osVersionString();

    /// `model`, `nCores` and `ramMB` (whole MiB), all as text; what is unknown is left out.
    static NSDictionary getHardwareInformation();

    /// "[Mac14,2; 8 processor cores; 16384 MB RAM]" without what is missing; nil if everything is.
    static NSString hardwareInfoString();

    /// Writes the application, system and hardware lines and the report of all switches between separator
    /// lines, when any trace key is active; else nothing. Raises as `getSystemInformation`, after the first
    /// separator line.
    static void standardStartupLog();

    /// Writes the line of application and system and, when it is known, that of the hardware.
    static void logAppAndSystemInformation();

    /// Writes the active trace keys and the true defaults whose keys begin with "Enable", "Disable" and
    /// "Debug", each with the command that turns it off in the application's domain, where no other domain
    /// sets it. Keys appear unquoted in the commands: quote them for a shell if they contain anything but
    /// letters, digits, "_", "-" and ".".
    static void logTracelogAndFeatureRelatedUserDefaults();
};

} // namespace ZQFoundation

#endif
