// SPDX-License-Identifier: MIT
// Gathers facts about application, system and hardware, and writes the start-up report.
#include "info/ZQLogInfo.h"

#include "foundation/process/NSBundle.h"
#include "foundation/process/NSProcessInfo.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/TestOverrides.h"
#include "info/DefaultsReport.h"
#include "info/FactTexts.h"
#include "info/SystemVersion.h"
#include "log/ZQLog.h"
#include "version/ZQVersionComparator.h"

namespace ZQFoundation {

namespace {

constexpr Class thisClass = classOf<ZQLogInfo>();
constexpr const char* appInformationMethod = "getAppInformation";
constexpr const char* separatorLine = "--------------------------------------------------------------------";

/// A longer name and its terminating NUL do not fit into the kernel's buffer for it.
constexpr std::size_t maxModelNameLength = 99;

/// Warnings name the operation that gathers the facts, whichever operation needs them, and no trace key
/// silences them: a bundle without its facts is a mistake in how the application was built.
void warn(StringView text) {
    ZQLog::logSelf_method_logAlways_log(thisClass, appInformationMethod, true, text);
}

template <class... Arguments>
void warnWithFormat(FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    ZQLog::logSelf_method_logAlways_logWithFormat(thisClass, appInformationMethod, true, format,
                                                  arguments...);
}

/// All facts are texts, even if a property list has a number; nil stays nil.
NSString textOf(const NSObject& value) {
    const NSString text(value);
    return text ? text : value.description();
}

/// The marketing name of a version of the system that has a system version file. It was changed with 10.8 and
/// with 10.12.
NSString marketingName(const NSString& version) {
    if (ZQVersionComparator::compareVersion_toVersion(version, "10.8") == NSOrderedAscending) {
        return "Mac OS X";
    }
    return ZQVersionComparator::compareVersion_toVersion(version, "10.12") == NSOrderedAscending ? "OS X"
                                                                                                 : "macOS";
}

/// A missing version, build or name raises, in the order in which they are stored; the caller's contract says
/// so.
NSDictionary systemInformationFromFile() {
    const NSDictionary file = detail::systemVersionFileText();
    const NSString name = textOf(file.objectForKey("ProductName"));
    const NSString version = textOf(file.objectForKey("ProductVersion"));
    // A missing value is deliberately not skipped: putting nil into the dictionary raises.
    NSMutableDictionary information;
    information.setObject_forKey(version, "osVersion");
    const NSString derivedName = marketingName(version);
    information.setObject_forKey(textOf(file.objectForKey("ProductBuildVersion")), "osBuild");
    information.setObject_forKey(name, "osNameInternal");
    information.setObject_forKey(derivedName, "osName");
    return information.dictionary();
}

/// Complete by construction, so nothing raises. The name of the system is the name it is sold under.
NSDictionary systemInformationFromReleaseDescription() {
    const NSDictionary release = detail::releaseDescription();
    const NSObject name = release.objectForKey("ProductName");
    NSMutableDictionary information;
    information.setObject_forKey(release.objectForKey("ProductVersion"), "osVersion");
    information.setObject_forKey(release.objectForKey("ProductBuildVersion"), "osBuild");
    information.setObject_forKey(name, "osNameInternal");
    information.setObject_forKey(name, "osName");
    return information.dictionary();
}

} // namespace

// Versions come from the dictionary itself, not from the localized table: they are the same in every
// language. The texts of the warnings name what is known so far, "(null)" for what is not.
NSDictionary ZQLogInfo::getAppInformation() {
    const NSBundle bundle = NSBundle::mainBundle();
    const NSDictionary info = bundle.infoDictionary();
    if (info.count() == 0) {
        warn("This application does not have an info dictionary");
        return NSDictionary::dictionary();
    }
    NSMutableDictionary information;
    const NSString identifier = bundle.bundleIdentifier();
    if (identifier) {
        information.setObject_forKey(identifier, "appIdentifier");
    } else {
        warn("This application does not have an appIdentifier!");
    }
    const NSString name = NSProcessInfo::shortApplicationName();
    if (name) {
        information.setObject_forKey(name, "shortApplicationName");
    } else {
        warnWithFormat("The info dictionary of %@ does not contain a NSHumanReadableShortName!", identifier);
    }
    if (const NSArray localizations = bundle.preferredLocalizations()) {
        information.setObject_forKey(localizations.componentsJoinedByString(", "), "appLocalization");
    } else {
        warnWithFormat("%@ does not have any preferred localizations!", name);
    }
    if (const NSString version = textOf(info.objectForKey("CFBundleShortVersionString"))) {
        information.setObject_forKey(version, "shortVersionString");
    } else {
        warnWithFormat("The info dictionary of %@ does not contain a CFBundleShortVersionString!", name);
    }
    if (const NSString version = textOf(info.objectForKey("CFBundleVersion"))) {
        information.setObject_forKey(version, "versionString");
    } else {
        warnWithFormat("The info dictionary of %@ does not contain a CFBundleVersion!", name);
    }
    return information.dictionary();
}

NSString ZQLogInfo::appInfoString() { return detail::applicationText(getAppInformation()); }

NSDictionary ZQLogInfo::getSystemInformation() {
    const detail::CallerState callerState;
    return detail::usesSystemVersionFile() ? systemInformationFromFile()
                                           : systemInformationFromReleaseDescription();
}

NSString ZQLogInfo::osInfoString() { return detail::systemText(getSystemInformation()); }

NSString ZQLogInfo::osNameAndVersionString() {
    return detail::systemNameAndVersionText(getSystemInformation());
}

NSString ZQLogInfo::osVersionString() { return NSString(getSystemInformation().objectForKey("osVersion")); }

// 0 and the empty text mean that the system does not say; such a fact is left out.
NSDictionary ZQLogInfo::getHardwareInformation() {
    const detail::CallerState callerState;
    const detail::system::HardwareFacts facts = detail::overrides::hardware != nullptr
                                                    ? *detail::overrides::hardware
                                                    : detail::system::hardwareFacts();
    NSMutableDictionary information;
    if (!facts.model.empty() && facts.model.size() <= maxModelNameLength) {
        information.setObject_forKey(NSString::stringWithFormat("%s", facts.model.c_str()), "model");
    }
    if (facts.processors != 0) {
        information.setObject_forKey(NSString::stringWithFormat("%d", facts.processors), "nCores");
    }
    if (facts.memoryBytes != 0) {
        // Whole MiB, although the key and the report say MB.
        information.setObject_forKey(NSString::stringWithFormat("%lld", facts.memoryBytes >> 20), "ramMB");
    }
    return information.dictionary();
}

NSString ZQLogInfo::hardwareInfoString() { return detail::hardwareText(getHardwareInformation()); }

// Runs without an active trace key start without a report: a log that nobody requested stays short.
void ZQLogInfo::standardStartupLog() {
    if (!ZQLog::aTraceDefaultValueHasBeenActivated()) {
        return;
    }
    ZQLog::logAlways_log(true, separatorLine);
    logAppAndSystemInformation();
    ZQLog::logAlways_log(true, separatorLine);
    logTracelogAndFeatureRelatedUserDefaults();
}

// All texts are made before the first line. If the system's facts raise, nothing but warnings has been
// written.
void ZQLogInfo::logAppAndSystemInformation() {
    const NSString application = appInfoString();
    // Gathers the facts again, so warnings about the application appear twice.
    const NSObject localization = getAppInformation().objectForKey("appLocalization");
    const NSString localizationText =
        localization ? NSString::stringWithFormat(" (%@)", localization) : NSString::string();
    const NSString system = osInfoString();
    const NSString hardware = hardwareInfoString();
    ZQLog::logAlways_logWithFormat(true, "%@%@, running on %@", application, localizationText, system);
    if (hardware) {
        ZQLog::logAlways_logWithFormat(true, "%@", hardware);
    }
}

void ZQLogInfo::logTracelogAndFeatureRelatedUserDefaults() { detail::writeDefaultsReport(separatorLine); }

} // namespace ZQFoundation
