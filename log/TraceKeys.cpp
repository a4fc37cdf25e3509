// SPDX-License-Identifier: MIT
#include "log/TraceKeys.h"

#include <utility>

#include "foundation/objects/NSDictionary.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/Lock.h"
#include "log/ZQLog.h"

namespace ZQFoundation {

namespace detail {

namespace {

/// The monitor of the ZQLog class. It guards the trace keys and nothing else.
constinit Lock monitor;

/// What one reading of the user defaults gave. Replaced as a whole, by one store, so that a forked child never sees
/// half of a reading.
struct TraceSnapshot {
    NSDictionary traceDefaultsDict;
    NSArray activatedTraceDefaultsKeys;
    bool aTraceDefaultValueHasBeenActivated;
};

constinit TraceSnapshot* currentSnapshot = nullptr;

/// Replaced snapshots outlive some more readings: a host that re-reads outside the monitor may still have a reader
/// in the old one.
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

bool anyIsOn(const TraceSnapshot& snapshot, const NSArray& keys, TextBuilder& label) {
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
    return found;
}

/// Deliberately false for no keys at all.
bool allAreOn(const TraceSnapshot& snapshot, const NSArray& keys, TextBuilder& label) {
    bool isFirst = true;
    for (const NSObject& key : keys) {
        if (!isOn(snapshot, key)) {
            return false;
        }
        if (!isFirst) {
            label.appendAscii('+');
        }
        label.append(key.as<NSString>());
        isFirst = false;
    }
    return !isFirst;
}

} // namespace

bool traceConditionHolds(const TraceCondition& condition, TextBuilder& label) {
    if (condition.kind == TraceCondition::Kind::always) {
        return true;
    }
    const Guard guard(monitor);
    const TraceSnapshot& snapshot = snapshotInMonitor();
    switch (condition.kind) {
    case TraceCondition::Kind::key:
        return snapshot.traceDefaultsDict.boolForKey(condition.name);
    case TraceCondition::Kind::value: // a missing key has level 0, which is a level like any other
        return snapshot.traceDefaultsDict.integerForKey(condition.name) == condition.number;
    case TraceCondition::Kind::threshold:
        return snapshot.traceDefaultsDict.integerForKey(condition.name) >= condition.number;
    case TraceCondition::Kind::anyOf:
        return anyIsOn(snapshot, *condition.names, label);
    case TraceCondition::Kind::allOf:
        return allAreOn(snapshot, *condition.names, label);
    default:
        return snapshot.aTraceDefaultValueHasBeenActivated;
    }
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

bool ZQLog::traceKeyIsEnabled(StringView key) {
    const Guard guard(detail::monitor);
    return detail::snapshotInMonitor().traceDefaultsDict.boolForKey(key);
}

NSArray ZQLog::activatedTraceDefaultsKeys() {
    const Guard guard(detail::monitor);
    return detail::snapshotInMonitor().activatedTraceDefaultsKeys;
}

NSArray ZQLog::activatedTraceDefaultKeys() { return activatedTraceDefaultsKeys(); }

bool ZQLog::aTraceDefaultValueHasBeenActivated() {
    const Guard guard(detail::monitor);
    return detail::snapshotInMonitor().aTraceDefaultValueHasBeenActivated;
}

ZQLog::Synchronized::Synchronized() noexcept { detail::monitor.lock(); }

ZQLog::Synchronized::~Synchronized() { detail::monitor.unlock(); }

} // namespace ZQFoundation
