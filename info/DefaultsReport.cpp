// SPDX-License-Identifier: MIT
// Reports the active switches, with the commands that turn them off.
#include "info/DefaultsReport.h"

#include "foundation/objects/NSArray.h"
#include "foundation/process/NSUserDefaults.h"
#include "info/ZQLogInfo.h"
#include "log/ZQLog.h"

namespace ZQFoundation::detail {

namespace {

/// The keys of the four sections.
struct Switches {
    NSArray tracing;
    NSArray enabling;
    NSArray disabling;
    NSArray modifying;
};

/// Ignoring case, so that a key is found where a reader of the log looks for it.
NSArray sorted(const NSArray& keys) {
    return keys.sortedArrayUsingComparator([](const NSObject& left, const NSObject& right) {
        return NSString(left).caseInsensitiveCompare(NSString(right));
    });
}

/// The trace keys are those of the snapshot that log calls use, so what is reported as active is what is in
/// effect, even if the defaults have changed since. The other switches belong to the host: their present
/// values count.
Switches readSwitches() {
    const NSArray tracing = sorted(ZQLog::activatedTraceDefaultsKeys());
    const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    NSMutableArray enabling;
    NSMutableArray disabling;
    NSMutableArray modifying;
    for (const NSDictionaryEntry& entry : defaults.dictionaryRepresentation()) {
        const NSString key(entry.key);
        NSMutableArray* const list = key.hasPrefix("Enable")    ? &enabling
                                     : key.hasPrefix("Disable") ? &disabling
                                     : key.hasPrefix("Debug")   ? &modifying
                                                                : nullptr;
        if (list != nullptr && defaults.objectForKey(key).boolValue()) {
            list->addObject(key);
        }
    }
    return {tracing, sorted(enabling.array()), sorted(disabling.array()), sorted(modifying.array())};
}

/// The width of a key in the report; 0 for a key with a character that Latin-1 lacks, whose command is then
/// out of its column.
std::size_t latin1Length(const NSString& key) {
    return key.lengthOfBytesUsingEncoding(NSISOLatin1StringEncoding);
}

/// One width for all sections, so that the commands are in one column throughout the report.
std::size_t columnWidth(const Switches& switches) {
    std::size_t longest = 0;
    for (const NSArray& keys :
         {switches.tracing, switches.enabling, switches.disabling, switches.modifying}) {
        for (const NSObject& key : keys) {
            const std::size_t length = latin1Length(NSString(key));
            longest = length > longest ? length : longest;
        }
    }
    return longest + 1;
}

/// Writes the lines of single switches.
class SwitchLines {
public:
    SwitchLines(NSString identifier, std::size_t width)
        : identifier_(static_cast<NSString&&>(identifier)), width_(width) {}

    /// The command writes NO, it does not remove the key: NO in the application's domain also hides a value
    /// of the global domain.
    void writeTraceKey(const NSString& key) const {
        writeActive(key, "Deactivate using: defaults write", " NO");
    }

    void writeEnablingKey(const NSString& key) const {
        writeActive(key, "Disable the feature using: defaults remove", "");
    }

    void writeDisablingKey(const NSString& key) const {
        writeActive(key, "Reenable the feature using: defaults remove", "");
    }

    /// The value moves the command out of its column by its own length; this is intended.
    void writeModifyingKey(const NSString& key) const {
        const NSObject value = NSUserDefaults::standardUserDefaults().objectForKey(key);
        if (!identifier_) {
            ZQLog::logAlways_logWithFormat(true, "%@ is set to %@.", key, value);
            return;
        }
        ZQLog::logAlways_logWithFormat(
            true, "%@ is set to %@.%@ Disable this debug setting using: defaults remove %@ %@", key, value,
            spacer(key), identifier_, key);
    }

private:
    void writeActive(const NSString& key, const char* command, const char* value) const {
        if (identifier_) {
            ZQLog::logAlways_logWithFormat(true, "%@ is active.%@ %s %@ %@%s", key, spacer(key), command,
                                           identifier_, key, value);
        } else {
            ZQLog::logAlways_logWithFormat(true, "%@ is active.", key);
        }
    }

    NSString spacer(const NSString& key) const {
        // The width is that of the longest key plus one, so there is at least one space.
        return NSString::stringByRepeating_count(" ", static_cast<std::int64_t>(width_ - latin1Length(key)));
    }

    NSString identifier_;
    std::size_t width_;
};

/// The form of a section's lines.
using LineWriter = void (SwitchLines::*)(const NSString& key) const;

/// A section without keys writes nothing, not even its heading and separator.
void writeSection(StringView heading, const NSArray& keys, const SwitchLines& lines, LineWriter writeLine,
                  StringView separator) {
    if (keys.count() == 0) {
        return;
    }
    ZQLog::logAlways_log(true, heading);
    for (const NSObject& key : keys) {
        (lines.*writeLine)(NSString(key));
    }
    ZQLog::logAlways_log(true, separator);
}

} // namespace

// All keys are read before the first line: the width of the column depends on every section.
void writeDefaultsReport(StringView separator) {
    const Switches switches = readSwitches();
    const std::size_t width = columnWidth(switches);
    const SwitchLines lines(NSString(ZQLogInfo::getAppInformation().objectForKey("appIdentifier")), width);
    writeSection("Debug logging:", switches.tracing, lines, &SwitchLines::writeTraceKey, separator);
    writeSection("Feature enabling:", switches.enabling, lines, &SwitchLines::writeEnablingKey, separator);
    writeSection("Feature disabling:", switches.disabling, lines, &SwitchLines::writeDisablingKey, separator);
    writeSection("Feature modifying:", switches.modifying, lines, &SwitchLines::writeModifyingKey, separator);
}

} // namespace ZQFoundation::detail
