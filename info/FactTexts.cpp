// SPDX-License-Identifier: MIT
// Formats facts as lines of the start-up report.
#include "info/FactTexts.h"

namespace ZQFoundation::detail {

namespace {

/// Nil for a fact that is missing; facts are texts.
NSString textFor(const NSDictionary& facts, StringView key) { return NSString(facts.objectForKey(key)); }

} // namespace

// Only the name has a placeholder: a version that is missing leaves no trace, and so does its "v".
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

// A missing version is mentioned only if there is no build either: with the build the system is known well
// enough.
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

// Unlike `systemText`, says which of the two is missing, and has nothing to say without either.
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

// All parts are optional. The separator after the model belongs to the processors; without them the memory
// writes it.
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
