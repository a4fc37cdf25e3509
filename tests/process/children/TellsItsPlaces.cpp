// SPDX-License-Identifier: MIT
// A host that prints whose rights it has, and what decides about the files that it reads and writes.
#include <cstdio>
#include <string>

#include <unistd.h>

#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

int main() {
    const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const NSObject facts[] = {
        static_cast<int>(::geteuid()),
        NSString("~").stringByExpandingTildeInPath(),
        NSProcessInfo::pathOfLibraryApplicationSupportSubfolder(),
        ZQLog::standardLogFolder(),
        defaults.objectForKey("ZQTestPlanted"),
        defaults.objectForKey("ZQTestGiven"),
        defaults.objectForKey("AppleLanguages"),
        NSLocale::currentLocale().localeIdentifier(),
        NSTimeZone::systemTimeZone().name(),
        NSTimeZone::timeZoneWithName("Planted/Zone") ? NSString("a planted zone") : NSString("no such zone"),
    };
    for (const NSObject& fact : facts) {
        std::printf("%s\n", fact ? fact.condensedDescription().utf8().c_str() : "nil");
    }
    return 0;
}
