// SPDX-License-Identifier: MIT
// Reads the trace keys, and looks them up without a lock.
#include "log/TraceKeys.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/DecimalText.h"
#include "foundation/process/NSUserDefaults.h"
#include "foundation/system/Lock.h"
#include "log/TraceTable.h"
#include "log/ZQLog.h"

namespace ZQFoundation::detail {

constinit TraceReadings traceReadings = {0, nullptr};

namespace {

/// The result of one reading of the user defaults.
struct TraceReading {
    NSDictionary traceDefaultsDict;
    NSArray activatedTraceDefaultsKeys;
};

/// The monitor of the ZQLog class. It guards the trace keys and nothing else.
constinit Lock monitor;

/// For the current reading and the next one: a reader without a lock may be in either table.
struct Place {
    TraceTable* table;
    const TraceReading* reading;
};
constinit Place places[2] = {};

/// Held while a reading is written into its place. Its holder allocates, so no query waits for it: the query
/// may come from a signal handler that has interrupted the allocator.
constinit Lock publishing;

/// Held to exchange readings, and to read data that is not made of whole words. Nobody allocates or frees
/// while holding it.
constinit Lock exchange;

/// The fork generation in which a thread is making the first reading, under the monitor.
constinit std::uint32_t readingIn = 0;

/// Reads all trace keys at once. It reads files and allocates, so the caller must not hold `exchange`. Each
/// value is looked up by its key, because that is how a host sees it.
std::unique_ptr<const TraceReading> readTraceDefaults() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    NSMutableDictionary values;
    NSMutableArray activeKeys;
    for (const NSDictionaryEntry& entry : defaults.dictionaryRepresentation()) {
        const NSString key(entry.key);
        if (!key.hasPrefix("Trace")) {
            continue;
        }
        const NSObject value = defaults.objectForKey(key);
        if (!value) { // removed since the keys were listed
            continue;
        }
        values.setObject_forKey(value, key);
        if (value.boolValue()) {
            activeKeys.addObject(key);
        }
    }
    return std::make_unique<TraceReading>(TraceReading{values.dictionary(), activeKeys.array()});
}

/// Acquire: a reader that sees the table sees what was written into it before.
const TraceTable* presentTable() noexcept {
    return static_cast<const TraceTable*>(__atomic_load_n(&traceReadings.table, __ATOMIC_ACQUIRE));
}

/// Null before the first one. The caller holds the lock of the exchange.
const TraceReading* presentReading() noexcept {
    const TraceTable* const table = presentTable();
    return table == nullptr ? nullptr : places[table == places[0].table ? 0 : 1].reading;
}

/// A forked child finds the old reading or the new one, since one store makes it the current one. Only the
/// place of the next one may be half-written.
void publish(std::unique_ptr<const TraceReading> fresh) {
    const Guard writing(publishing);
    Place& place = places[presentTable() != nullptr && presentTable() == places[0].table ? 1 : 0];
    const std::size_t keys = fresh->traceDefaultsDict.count();
    if (place.table == nullptr || !place.table->hasRoomFor(keys)) {
        place.table = TraceTable::make(keys, place.table); // readers may be in the smaller one forever
    }
    // Nobody uses the reading of this place any longer.
    const std::unique_ptr<const TraceReading> old(std::exchange(place.reading, nullptr));
    place.table->fill(fresh->traceDefaultsDict, fresh->activatedTraceDefaultsKeys.count() != 0);
    const Guard guard(exchange);
    place.reading = fresh.release();
    __atomic_store_n(&traceReadings.table, place.table, __ATOMIC_RELEASE);
    __atomic_add_fetch(&traceReadings.generation, 2, __ATOMIC_ACQ_REL);
}

/// Leaves the monitor and, after the outermost scope, makes the generation even again: readers without a lock
/// may go on, with a generation that differs from the one before the scope.
void leaveMonitor() noexcept {
    // The last to leave opens the gate, also for a thread that a fork left in the parent.
    if (!monitor.isHeldAgain() &&
        (__atomic_load_n(&traceReadings.generation, __ATOMIC_RELAXED) & closedBit) != 0) {
        __atomic_add_fetch(&traceReadings.generation, 1, __ATOMIC_ACQ_REL);
    }
    monitor.unlock();
}

/// Holds the monitor for a query, without changing the gate.
class InMonitor {
public:
    InMonitor() noexcept { monitor.lock(); }
    InMonitor(const InMonitor&) = delete;
    InMonitor& operator=(const InMonitor&) = delete;
    ~InMonitor() { leaveMonitor(); }
};

/// Makes the first reading if there is none yet; not for a signal handler that interrupts its own thread in
/// the first reading. The caller holds the monitor.
void readInMonitor() {
    const std::uint32_t generation = system::forkGeneration();
    if (presentTable() != nullptr || readingIn == generation) {
        return;
    }
    readingIn = generation;
    struct AtTheEnd {
        ~AtTheEnd() { readingIn = 0; }
    } const atTheEnd;
    ZQLog::initializeTraceDefaultsDict();
}

/// What a query sees of the keys: a table, or a whole reading, or nothing.
class TraceView {
public:
    explicit TraceView(const TraceTable& table) noexcept : table_(&table) {}
    explicit TraceView(const TraceReading* reading) noexcept : reading_(reading) {}

    [[gnu::always_inline]] inline TraceAnswer ask(StringView key) {
        if (table_ == nullptr) {
            return reading_ == nullptr ? TraceAnswer()
                                       : TraceAnswer(reading_->traceDefaultsDict.boolForKey(key),
                                                     reading_->traceDefaultsDict.integerForKey(key));
        }
        const TraceAnswer answer = table_->find(key);
        isSure_ = isSure_ && answer.isSure();
        return answer;
    }
    bool isOn(StringView key) { return key && ask(key).isOn(); }
    bool anyKeyIsActive() const {
        return table_ != nullptr ? table_->anyKeyIsActive()
                                 : reading_ != nullptr && reading_->activatedTraceDefaultsKeys.count() != 0;
    }

    /// Whether the table could answer all queries so far.
    bool isSure() const noexcept { return isSure_; }

private:
    const TraceTable* table_ = nullptr;
    const TraceReading* reading_ = nullptr;
    bool isSure_ = true;
};

/// The slow way: before the first reading, while a thread is in a `Synchronized` scope, and for keys that the
/// table does not have. Out of line, so that the fast way stays short in each of its callers.
template <class Question>
[[gnu::noinline]] auto askInMonitor(Question question) {
    const InMonitor scope;
    readInMonitor();
    const Guard guard(exchange);
    TraceView view(presentReading());
    return question(view);
}

/// The result of the query at one moment at which no other thread was in a `Synchronized` scope. May run the
/// query twice.
///
/// Works like a sequence lock whose readers never wait for a reading: if the generation is even and still the
/// same after the query, no other reading has become the current one meanwhile. An answer from a table that
/// was being overwritten is thrown away in this way too.
template <class Question>
[[gnu::always_inline]] inline auto askTraceKeys(Question question) {
    const std::uint64_t before = __atomic_load_n(&traceReadings.generation, __ATOMIC_ACQUIRE);
    const TraceTable* const table = presentTable();
    if ((before & closedBit) == 0 && table != nullptr) [[likely]] {
        TraceView view(*table);
        const auto answer = question(view);
        if (view.isSure() && __atomic_load_n(&traceReadings.generation, __ATOMIC_RELAXED) == before)
            [[likely]] {
            return answer;
        }
    }
    return askInMonitor(question);
}

/// The keys that are in the set, or all of them without one.
void appendJoined(TextBuilder& out, const TraceKeyList& keys, char separator, const TraceKeySet* on) {
    bool isFirst = true;
    for (std::size_t i = 0; i < keys.count(); ++i) {
        if (on == nullptr || on->holds(i)) {
            if (!isFirst) {
                out.appendAscii(separator);
            }
            out.append(keys[i]);
            isFirst = false;
        }
    }
}

void appendLevel(TextBuilder& out, StringView relation, std::int64_t level) {
    out.append(relation);
    appendDecimal(out, level);
}

} // namespace

// A view of the string's body. It makes no handle, so the reference count, which other threads use too, is
// not touched.
StringView TraceKeyList::textOf(const NSObject& value) noexcept {
    if (Access::kind(value) != Kind::string) {
        return nullptr;
    }
    const StringBody& body = *Access::string(value);
    return body.isAscii ? StringView::ascii(body.ascii(), body.length)
                        : StringView(body.units(), body.length);
}

// A query may run twice, so the set may hold the answers of the first run.
void TraceKeySet::reset(std::size_t count) {
    const std::size_t words = (count + 63) / 64;
    if (words > inlineWords) {
        more_ = std::make_unique<std::uint64_t[]>(words);
    } else {
        std::fill(std::begin(inline_), std::end(inline_), 0);
    }
}

namespace {

TraceAnswer answerFor(StringView key) {
    return askTraceKeys([key](TraceView& keys) { return keys.ask(key); });
}

[[gnu::noinline]] bool isOn(StringView key) { return answerFor(key).isOn(); }

[[gnu::noinline]] std::int64_t levelOf(StringView key) { return answerFor(key).level(); }

/// Whether a first check shows that the key is not set, as most are not. Most silent calls end here, without
/// a call and without storing anything in memory.
[[gnu::always_inline]] inline bool isSurelyMissing(StringView key) noexcept {
    const std::uint64_t before = __atomic_load_n(&traceReadings.generation, __ATOMIC_ACQUIRE);
    const TraceTable* const table = presentTable();
    return (before & closedBit) == 0 && table != nullptr && table->surelyLacks(key) &&
           __atomic_load_n(&traceReadings.generation, __ATOMIC_RELAXED) == before;
}

} // namespace

bool traceKeyHolds(StringView key) { return !isSurelyMissing(key) && isOn(key); }

bool traceLevelEquals(StringView key, std::int64_t value) {
    return (isSurelyMissing(key) ? 0 : levelOf(key)) == value;
}

bool traceLevelReaches(StringView key, std::int64_t threshold) {
    return (isSurelyMissing(key) ? 0 : levelOf(key)) >= threshold;
}

bool anyTraceKeyHolds() {
    return askTraceKeys([](TraceView& keys) { return keys.anyKeyIsActive(); });
}

namespace {

bool anyOfKeysHolds(const TraceKeyList& keys, TraceKeySet& on) {
    return askTraceKeys([&keys, &on](TraceView& view) {
        on.reset(keys.count());
        bool isFound = false;
        for (std::size_t i = 0; i < keys.count(); ++i) {
            if (view.isOn(keys[i])) {
                on.add(i);
                isFound = true;
            }
        }
        return isFound;
    });
}

/// An empty array does not hold, unlike in logic: a call without keys is more likely a mistake than a wish
/// for every line.
bool allOfKeysHold(const TraceKeyList& keys) {
    return askTraceKeys([&keys](TraceView& view) {
        for (std::size_t i = 0; i < keys.count(); ++i) {
            if (!view.isOn(keys[i])) {
                return false;
            }
        }
        return keys.count() != 0;
    });
}

} // namespace

bool severalKeysHold(const TraceCondition& condition, TraceKeySet& on) {
    switch (condition.kind) {
    case TraceCondition::Kind::anyOf:
        return anyOfKeysHolds(condition.keys, on);
    case TraceCondition::Kind::allOf:
        return allOfKeysHold(condition.keys);
    default:
        return true;
    }
}

// A value or threshold appears as the call has it: of a threshold, the level that is set may be larger.
void appendTraceLabel(TextBuilder& out, const TraceCondition& condition, const TraceKeySet& on) {
    switch (condition.kind) {
    case TraceCondition::Kind::none:
        return;
    case TraceCondition::Kind::key:
        return out.append(condition.keyText);
    case TraceCondition::Kind::value:
        out.append(condition.keyText);
        return appendLevel(out, "=", condition.level);
    case TraceCondition::Kind::threshold:
        out.append(condition.keyText);
        return appendLevel(out, ">=", condition.level);
    case TraceCondition::Kind::anyOf:
        return appendJoined(out, condition.keys, '/', &on);
    case TraceCondition::Kind::allOf:
        return appendJoined(out, condition.keys, '+', nullptr);
    case TraceCondition::Kind::anyKey:
        return out.appendLiteral("Trace");
    }
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

using detail::InMonitor;

void ZQLog::initializeTraceDefaultsDict() { detail::publish(detail::readTraceDefaults()); }

bool ZQLog::traceKeyIsEnabled(StringView key) { return key && detail::traceKeyHolds(key); }

// The array is copied, and its reference counted, under the lock of the exchange: without it a re-reading
// could free the array in between.
NSArray ZQLog::activatedTraceDefaultsKeys() {
    const InMonitor scope;
    detail::readInMonitor();
    const detail::Guard guard(detail::exchange);
    const detail::TraceReading* const reading = detail::presentReading();
    return reading != nullptr ? reading->activatedTraceDefaultsKeys : NSArray::array();
}

NSArray ZQLog::activatedTraceDefaultKeys() { return activatedTraceDefaultsKeys(); }

bool ZQLog::aTraceDefaultValueHasBeenActivated() { return detail::anyTraceKeyHolds(); }

// Closes the gate once the monitor is held: queries that begin from now on wait for the monitor, and those
// that have begun see another generation and ask again.
ZQLog::Synchronized::Synchronized() noexcept {
    detail::monitor.lock();
    __atomic_or_fetch(&detail::traceReadings.generation, detail::closedBit, __ATOMIC_ACQ_REL);
}

ZQLog::Synchronized::~Synchronized() { detail::leaveMonitor(); }

} // namespace ZQFoundation
