// SPDX-License-Identifier: MIT
// Reading and saving settings.
#include "Settings.h"

#include <algorithm>

#include "TraceKeys.h"

using namespace ZQFoundation;

namespace notes::settings {

namespace {

NSUserDefaults& defaults() { return NSUserDefaults::standardUserDefaults(); }

NSString thisRelease() {
    return NSString(NSBundle::mainBundle().objectForInfoDictionaryKey("CFBundleShortVersionString"));
}

/// Nil when everything that was set is saved, else the reason.
NSString synchronize() {
    NSString reason;
    const bool isSaved = defaults().synchronize(&reason);
    if (!isSaved) {
        ZQLog::logWithFormat("the settings are not saved: %@", reason);
    }
    return isSaved ? NSString() : reason;
}

/// Sets and saves one value.
NSString set(const NSString& key, const NSObject& value) {
    defaults().setObject_forKey(value, key);
    NSString reason = synchronize();
    traceSettings.log("%@ = %@", key, value);
    return reason;
}

} // namespace

void registerDefaults() {
    const Values values;
    defaults().registerDefaults(NSDictionary{{"FontSize", values.fontSize},
                                             {"WrapLines", values.wrapsLines},
                                             {"LogFile", true},
                                             {"LastMove", "0"}});
}

Values current() {
    const auto size =
        std::clamp<std::int64_t>(defaults().integerForKey("FontSize"), minFontSize, maxFontSize);
    return {static_cast<int>(size), defaults().boolForKey("WrapLines"), defaults().stringForKey("Language")};
}

NSString save(const Values& values) {
    traceSettings.log("%d points, wrapped: %d, language: %@", values.fontSize, values.wrapsLines,
                      values.language);
    defaults().setObject_forKey(values.fontSize, "FontSize");
    defaults().setObject_forKey(values.wrapsLines, "WrapLines");
    defaults().setObject_forKey(values.language, "Language");
    // The library chooses the texts by this; without it the system's languages count.
    defaults().setObject_forKey(values.language ? NSObject(NSArray{values.language}) : NSObject(),
                                "AppleLanguages");
    return synchronize();
}

NSString setTraceKey(const NSString& key, bool isOn) {
    NSString reason = set(key, isOn);
    const ZQLog::Synchronized monitor; // no other thread asks while the keys are read again
    ZQLog::initializeTraceDefaultsDict();
    return reason;
}

bool needsMove() {
    return ZQVersionComparator::compareVersion_toVersion(defaults().stringForKey("LastMove"),
                                                         thisRelease()) == NSOrderedAscending;
}

NSString rememberMove() { return set("LastMove", thisRelease()); }

} // namespace notes::settings
