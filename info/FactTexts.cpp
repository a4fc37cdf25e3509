// SPDX-License-Identifier: MIT
// Formats facts as lines of the start-up report.
#include "info/FactTexts.h"

namespace ZQFoundation::detail {

namespace {

NSString textFor(const NSDictionary& facts, StringView key) { return NSString(facts.objectForKey(key)); }

} // namespace

NSString applicationText(const NSDictionary& application) {
    const NSString name =
        NSString("(unknown app name)").asDefaultOr(textFor(application, "shortApplicationName"));
    const NSString shortVersion = textFor(application, "shortVersionString");
    const NSString longVersion = textFor(application, "versionString");
    if (shortVersion && longVersion) {
        return NSString::stringWithFormat("%@ %@ v%@", name, shortVersion, longVersion);
    }
    if (shortVersion) {
        return NSString::stringWithFormat("%@ %@", name, shortVersion);
    }
    return longVersion ? NSString::stringWithFormat("%@ v%@", name, longVersion) : name;
}

NSString systemText(const NSDictionary& system) {
    const NSString name = NSString("(unknown OS)").asDefaultOr(textFor(system, "osName"));
    const NSString version = textFor(system, "osVersion");
    const NSString build = textFor(system, "osBuild");
    if (version && build) {
        return NSString::stringWithFormat("%@ %@ (%@)", name, version, build);
    }
    if (version) {
        return NSString::stringWithFormat("%@ %@", name, version);
    }
    return build ? NSString::stringWithFormat("%@ (%@)", name, build)
                 : NSString::stringWithFormat("%@ (unknown OS version)", name);
}

NSString systemNameAndVersionText(const NSDictionary& system) {
    const NSString name = textFor(system, "osName");
    const NSString version = textFor(system, "osVersion");
    if (name && version) {
        return NSString::stringWithFormat("%@ %@", name, version);
    }
    if (name) {
        return NSString::stringWithFormat("%@ (unknown version)", name);
    }
    return version ? NSString::stringWithFormat("(unknown OS name) %@", version) : nullptr;
}

NSString hardwareText(const NSDictionary& hardware) {
    const NSString model = textFor(hardware, "model");
    const NSString processors = textFor(hardware, "nCores");
    const NSString memory = textFor(hardware, "ramMB");
    if (!model && !processors && !memory) {
        return nullptr;
    }
    NSMutableString text("[");
    if (model) {
        text.appendFormat("%@", model);
        text.appendString(processors ? "; " : "");
    }
    if (processors) {
        text.appendFormat("%@ processor core%@", processors, processors == "1" ? "" : "s");
    }
    if (memory) {
        text.appendString(model || processors ? "; " : "");
        text.appendFormat("%@ MB RAM", memory);
    }
    text.appendString("]");
    return text.string();
}

} // namespace ZQFoundation::detail
