// SPDX-License-Identifier: MIT
#include "log/TraceKeys.h"

#include <utility>

#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/Lock.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

namespace detail {

namespace {

/// The monitor of the ZQLog class. It guards the trace keys and nothing else.
constinit Lock monitor;

/// What one reading of the user defaults gave. Replaced as a whole, by one store, so that a forked child
/// never sees half of a reading.
struct TraceSnapshot {
    NSDictionary traceDefaultsDict;
    NSArray activatedTraceDefaultsKeys;
    bool aTraceDefaultValueHasBeenActivated;
};

constinit TraceSnapshot* currentSnapshot = nullptr;

/// Replaced snapshots outlive some more readings: a host that re-reads outside the monitor may still have a
/// reader in the old one.
constexpr std::uint32_t retiredCount = 16;
constinit TraceSnapshot* retired[retiredCount] = {};
constinit std::uint32_t nextRetired = 0;

void retire(TraceSnapshot* snapshot) {
    const std::uint32_t slot = __atomic_fetch_add(&nextRetired, 1, __ATOMIC_RELAXED) % retiredCount;
    delete __atomic_exchange_n(&retired[slot], snapshot, __ATOMIC_ACQ_REL);
}

TraceSnapshot* readSnapshot() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    NSMutableDictionary values;
    NSMutableArray activeKeys;
    for (const NSDictionaryEntry& entry : defaults.dictionaryRepresentation()) {
        const NSString key(entry.key);
        if (!key.hasPrefix("Trace")) {
            continue;
        }
        const NSObject value = defaults.objectForKey(key);
        if (!value) { // gone since the keys were listed
            continue;
        }
        values.setObject_forKey(value, key);
        if (value.boolValue()) {
            activeKeys.addObject(key);
        }
    }
    const bool anyIsActive = activeKeys.count() != 0;
    return new TraceSnapshot{values.dictionary(), activeKeys.array(), anyIsActive};
}

/// The snapshot, read now if it was not yet. The caller holds the monitor.
const TraceSnapshot& snapshotInMonitor() {
    const TraceSnapshot* snapshot = __atomic_load_n(&currentSnapshot, __ATOMIC_ACQUIRE);
    if (snapshot == nullptr) {
        ZQLog::initializeTraceDefaultsDict();
        snapshot = __atomic_load_n(&currentSnapshot, __ATOMIC_ACQUIRE);
    }
    return *snapshot;
}

bool isOn(const TraceSnapshot& snapshot, const NSObject& key) {
    const NSString name(key);
    return name && snapshot.traceDefaultsDict.boolForKey(name);
}

} // namespace

bool traceKeyHolds(StringView key) {
    const Guard guard(monitor);
    return snapshotInMonitor().traceDefaultsDict.boolForKey(key);
}

bool traceLevelEquals(StringView key, std::int64_t value) {
    const Guard guard(monitor);
    return snapshotInMonitor().traceDefaultsDict.integerForKey(key) == value;
}

bool traceLevelReaches(StringView key, std::int64_t threshold) {
    const Guard guard(monitor);
    return snapshotInMonitor().traceDefaultsDict.integerForKey(key) >= threshold;
}

bool anyTraceKeyHolds() {
    const Guard guard(monitor);
    return snapshotInMonitor().aTraceDefaultValueHasBeenActivated;
}

NSString labelOfAnyTraceKey(const NSArray& keys) {
    const Guard guard(monitor);
    const TraceSnapshot& snapshot = snapshotInMonitor();
    TextBuilder label;
    bool found = false;
    for (const NSObject& key : keys) {
        if (isOn(snapshot, key)) {
            if (found) {
                label.appendAscii('/');
            }
            label.append(key.as<NSString>());
            found = true;
        }
    }
    return found ? label.string() : NSString();
}

NSString labelOfAllTraceKeys(const NSArray& keys) {
    const Guard guard(monitor);
    const TraceSnapshot& snapshot = snapshotInMonitor();
    TextBuilder label;
    bool isFirst = true;
    for (const NSObject& key : keys) {
        if (!isOn(snapshot, key)) {
            return {};
        }
        if (!isFirst) {
            label.appendAscii('+');
        }
        label.append(key.as<NSString>());
        isFirst = false;
    }
    return isFirst ? NSString() : label.string();
}

} // namespace detail

using detail::Guard;

void ZQLog::initializeTraceDefaultsDict() {
    detail::TraceSnapshot* const snapshot = detail::readSnapshot();
    detail::TraceSnapshot* const replaced =
        __atomic_exchange_n(&detail::currentSnapshot, snapshot, __ATOMIC_ACQ_REL);
    if (replaced != nullptr) {
        detail::retire(replaced);
    }
}

bool ZQLog::traceKeyIsEnabled(StringView key) { return detail::traceKeyHolds(key); }

NSArray ZQLog::activatedTraceDefaultsKeys() {
    const Guard guard(detail::monitor);
    return detail::snapshotInMonitor().activatedTraceDefaultsKeys;
}

NSArray ZQLog::activatedTraceDefaultKeys() { return activatedTraceDefaultsKeys(); }

bool ZQLog::aTraceDefaultValueHasBeenActivated() { return detail::anyTraceKeyHolds(); }

ZQLog::Synchronized::Synchronized() noexcept { detail::monitor.lock(); }

ZQLog::Synchronized::~Synchronized() { detail::monitor.unlock(); }

} // namespace ZQFoundation
