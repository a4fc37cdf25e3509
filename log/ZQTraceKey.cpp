// SPDX-License-Identifier: MIT
// The slow paths of trace conditions that cache their answer: when it is unknown, or when they hold.
#include "log/ZQTraceKey.h"

#include "log/LogOperation.h"

namespace ZQFoundation {

using detail::CallerReference;
using detail::TraceCondition;
using detail::TraceKeyList;
using detail::TraceKeySet;

/// A query of a condition in the current reading, like those of the operations of ZQLog.
struct ZQTraceCondition::Question {
    TraceCondition condition;
    TraceKeySet keysThatAreOn;

    /// Conditions on one key read the text, those on several the list; both are set, so one constructor
    /// serves all kinds.
    explicit Question(const ZQTraceCondition& asked)
        : condition{asked.kind_, asked.count_ == 1 ? *asked.keys_ : StringView(), asked.level_,
                    TraceKeyList(asked.keys_, asked.count_)} {}

    /// The answer, which is cached unless the keys are read again meanwhile. It is also not cached for an odd
    /// generation: a thread is in a `Synchronized` scope then, perhaps this one, and may read the keys next.
    bool ask(const ZQTraceCondition& asked) {
        const std::uint64_t before = __atomic_load_n(&detail::traceReadings.generation, __ATOMIC_ACQUIRE);
        const bool answer =
            detail::passes(true, condition, "") && detail::severalKeysHold(condition, keysThatAreOn);
        if ((before & detail::closedBit) == 0 && presentGeneration() == before) {
            __atomic_store_n(&asked.answer_, before | (answer ? holds : 0), __ATOMIC_RELAXED);
        }
        return answer;
    }
};

namespace {

CallerReference callerOf(const LogCaller* self, StringView function) noexcept {
    return self != nullptr ? CallerReference::ofMethod(*self, function)
                           : CallerReference::ofFunction(function.bytes(), function.size());
}

} // namespace

bool ZQTraceCondition::ask() const { return Question(*this).ask(*this); }

// The header calls this if the condition is not known to fail, so it is evaluated here. The keys that are on
// come from the same query, not from the cache, which has no room for them.
void ZQTraceCondition::write(const LogCaller* self, StringView function, StringView format,
                             ArgumentList arguments) const {
    Question question(*this);
    if (format && question.ask(*this)) {
        detail::writeMessage(
            {callerOf(self, function), question.condition, question.keysThatAreOn, format, arguments});
    }
}

NSString ZQTraceCondition::text(const LogCaller* self, StringView function, StringView format,
                                ArgumentList arguments) const {
    Question question(*this);
    return format && question.ask(*this)
               ? detail::textOfMessage({callerOf(self, function), question.condition, question.keysThatAreOn,
                                        format, arguments})
               : NSString();
}

} // namespace ZQFoundation
