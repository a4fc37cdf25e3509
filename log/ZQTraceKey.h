// SPDX-License-Identifier: MIT
// Declares trace keys, which switch log lines on and off by name.
#ifndef ZQFOUNDATION_LOG_ZQTRACEKEY_H
#define ZQFOUNDATION_LOG_ZQTRACEKEY_H

#include "LogCaller.h"

#include "../foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The state that all queries of trace keys use. It has its own cache line, which is written only by
/// re-readings, wherever the linker places it. Part of the binary interface: hosts have code compiled in that
/// reads it.
struct alignas(64) TraceReadings {
    /// Counts up with every reading of the keys and with every `ZQLog::Synchronized` scope; odd while a
    /// thread is in one. No answer changes while it stays the same.
    std::uint64_t generation;
    const void* table; ///< of the current reading; internal to the library
};
/// Written by the library alone. It is exported, not static in this header, so that two plugins in one
/// process see one.
extern ZQFOUNDATION_EXPORT TraceReadings traceReadings;

/// How the keys of a condition are combined. The numbers are compiled into hosts, inside their trace
/// conditions.
enum class TraceConditionKind : unsigned char { none, key, value, threshold, anyOf, allOf, anyKey };

/// The length of a function's plain name: one compiler appends the template arguments.
constexpr std::size_t plainNameLength(const char* name) noexcept {
    const std::size_t length = __builtin_strlen(name);
    std::size_t plain = 0;
    while (plain < length && name[plain] != '<') {
        ++plain;
    }
    return length != 0 && name[length - 1] == '>' && __builtin_strncmp(name, "operator", 8) != 0 ? plain
                                                                                                 : length;
}

/// A format with the function that contains the call, named by the compiler. The default argument is
/// evaluated at the place of the call, which is why the conversion from a format has to be a constructor with
/// a second parameter.
template <class... Arguments>
class LocatedFormat {
public:
    /// A literal, checked against the arguments when the program is compiled.
    template <class Unit, std::size_t size>
        requires(std::is_same_v<Unit, char> || std::is_same_v<Unit, char16_t>)
    consteval LocatedFormat(const Unit (&literal)[size], const char* function = __builtin_FUNCTION())
        : format_(literal), function_(function), functionLength_(plainNameLength(function)) {}

    /// A format known only at run time, not checked.
    template <class T>
        requires(std::is_same_v<T, NSString> || std::is_same_v<T, StringView>)
    constexpr LocatedFormat(const T& text, const char* function = __builtin_FUNCTION()) noexcept
        : format_(text), function_(function), functionLength_(plainNameLength(function)) {}

    template <UncheckedText T>
    LocatedFormat(const T&) = delete; // write "%@" and pass the text as its argument, or make it an NSString

    constexpr StringView text() const noexcept { return format_.text(); }
    constexpr StringView function() const noexcept { return StringView(function_, functionLength_); }

private:
    FormatString<Arguments...> format_;
    const char* function_;
    std::size_t functionLength_;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// What the trace conditions below have in common: each caches its answer for the current reading of the
/// trace keys, so that a call whose condition does not hold costs one comparison, on any number of threads. A
/// re-reading takes effect at once, as for the operations of ZQLog.
///
///     constinit ZQTraceKey traceNetwork("TraceNetwork");
///
///     void Store::reload() {
///         traceNetwork.log("%d items", count);       // TraceNetwork: reload() 3 items
///         traceNetwork.log(this, "%d items", count); // TraceNetwork: -[(Store *)0x7f01 reload] 3 items
///     }
///
/// The function that contains the call is named by the compiler; in a lambda that is "operator()". Lines and
/// texts are those of ZQLog's operations for the same condition, `logFunctionName_...` and
/// `logSelf_method_...`. Usable before `main`, in static destructors, in forked children and, like those, in
/// signal handlers. Owns nothing: keys are literals.
class ZQFOUNDATION_EXPORT ZQTraceCondition {
public:
    ZQTraceCondition(const ZQTraceCondition&) = delete;
    ZQTraceCondition& operator=(const ZQTraceCondition&) = delete;

    /// Whether the condition holds. Use it to skip work that only a line needs:
    ///
    ///     if (traceNetwork.isEnabled()) {
    ///         traceNetwork.log("%@", expensiveReport());
    ///     }
    bool isEnabled() const {
        const std::uint64_t answer = __atomic_load_n(&answer_, __ATOMIC_RELAXED);
        return (answer & ~holds) == presentGeneration() ? (answer & holds) != 0 : ask();
    }

    /// Writes the line "label: function() message" while the condition holds. A nil format writes nothing.
    /// There is no flag: the condition is the only gate.
    template <class... Arguments>
    void log(detail::LocatedFormat<std::type_identity_t<Arguments>...> format,
             const Arguments&... arguments) const {
        if (mayHold()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            write(nullptr, format.function(), format.text(), packed.list());
        }
    }

    /// Writes the line "label: caller message" while the condition holds, with the function that contains the
    /// call as the method. The caller is described only then.
    ///
    ///     traceNetwork.log(classOf<Store>(), "%d items", count);  // TraceNetwork: +[Store reload] 3 items
    template <class... Arguments>
    void log(const LogCaller& self, detail::LocatedFormat<std::type_identity_t<Arguments>...> format,
             const Arguments&... arguments) const {
        if (mayHold()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            write(&self, format.function(), format.text(), packed.list());
        }
    }

    /// Returns the line "label: function() message" while the condition holds, else nil; writes nothing. Nil
    /// for a nil format.
    ///
    ///     traceNetwork.logString("%d items", count);  // "TraceNetwork: reload() 3 items"
    template <class... Arguments>
    NSString logString(detail::LocatedFormat<std::type_identity_t<Arguments>...> format,
                       const Arguments&... arguments) const {
        if (mayHold()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return text(nullptr, format.function(), format.text(), packed.list());
        }
        return {};
    }

    /// Returns the line "label: caller message" while the condition holds, else nil; writes nothing. Nil for
    /// a nil format.
    template <class... Arguments>
    NSString logString(const LogCaller& self,
                       detail::LocatedFormat<std::type_identity_t<Arguments>...> format,
                       const Arguments&... arguments) const {
        if (mayHold()) {
            const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
            return text(&self, format.function(), format.text(), packed.list());
        }
        return {};
    }

protected:
    /// For the conditions below. The keys are members of the derived object: nothing is allocated, and
    /// `constinit` objects need no initializer at run time.
    constexpr ZQTraceCondition(detail::TraceConditionKind kind, const StringView* keys, std::size_t count,
                               std::int64_t level) noexcept
        : keys_(keys), count_(count), level_(level), kind_(kind) {}
    ~ZQTraceCondition() = default;

private:
    /// In `answer_`: the highest bit, which no generation has. A cached answer must not equal the generation
    /// of an open scope either, which is one more than that before it: lines in the scope would be lost.
    /// `unknown` equals no generation.
    static constexpr std::uint64_t holds = std::uint64_t{1} << 63;
    static constexpr std::uint64_t unknown = UINT64_MAX;

    static std::uint64_t presentGeneration() noexcept {
        return __atomic_load_n(&detail::traceReadings.generation, __ATOMIC_RELAXED);
    }
    /// False only if the condition is known not to hold in the current reading: the one comparison that a
    /// silent call costs. When this is true, the worker asks again.
    bool mayHold() const noexcept {
        return __atomic_load_n(&answer_, __ATOMIC_RELAXED) != presentGeneration();
    }

    /// The slow paths: the state is queried as by the operations of ZQLog, and cached.
    bool ask() const;
    void write(const LogCaller* self, StringView function, StringView format, ArgumentList arguments) const;
    NSString text(const LogCaller* self, StringView function, StringView format,
                  ArgumentList arguments) const;

    /// A query in progress; defined with the workers, because hosts need not know it.
    struct Question;

    /// The generation for which the answer is known, which is even, and in its highest bit whether the
    /// condition holds.
    mutable std::uint64_t answer_ = unknown;
    const StringView* keys_;
    std::size_t count_;
    std::int64_t level_;
    detail::TraceConditionKind kind_;
};

/// Holds while the trace key is on. Lines begin with "key: ".
///
///     constinit ZQTraceKey traceNetwork("TraceNetwork");
///     traceNetwork.log("%d items", count);  // TraceNetwork: reload() 3 items
class ZQTraceKey : public ZQTraceCondition {
public:
    /// The key is a literal.
    template <std::size_t size>
    constexpr explicit ZQTraceKey(const char (&key)[size]) noexcept
        : ZQTraceCondition(detail::TraceConditionKind::key, &key_, 1, 0), key_(key) {}

private:
    StringView key_;
};

/// Holds while the key's level equals the value (a missing key has level 0). Lines begin with "key=value: ".
///
///     constinit ZQTraceKeyValue traceDetails("TraceLevel", 3);
///     traceDetails.log("%d items", count);  // TraceLevel=3: reload() 3 items
class ZQTraceKeyValue : public ZQTraceCondition {
public:
    /// The key is a literal.
    template <std::size_t size>
    constexpr ZQTraceKeyValue(const char (&key)[size], std::int64_t value) noexcept
        : ZQTraceCondition(detail::TraceConditionKind::value, &key_, 1, value), key_(key) {}

private:
    StringView key_;
};

/// Holds while the key's level is at least the threshold (a missing key has level 0). Lines begin with
/// "key>=threshold: ".
///
///     constinit ZQTraceKeyThreshold traceMuch("TraceLevel", 2);
///     traceMuch.log("%d items", count);  // TraceLevel>=2: reload() 3 items, at level 2, 3, ...
class ZQTraceKeyThreshold : public ZQTraceCondition {
public:
    /// The key is a literal.
    template <std::size_t size>
    constexpr ZQTraceKeyThreshold(const char (&key)[size], std::int64_t threshold) noexcept
        : ZQTraceCondition(detail::TraceConditionKind::threshold, &key_, 1, threshold), key_(key) {}

private:
    StringView key_;
};

/// Holds while one of the keys is on. Lines begin with "A/C: ", the keys that are on.
///
///     constinit ZQAnyTraceKeyOf traceIO("TraceFiles", "TraceNetwork");
///     traceIO.log("%d items", count);  // TraceNetwork: reload() 3 items
template <std::size_t count>
class ZQAnyTraceKeyOf : public ZQTraceCondition {
public:
    /// The keys are literals, at least one.
    template <std::size_t... sizes>
    constexpr explicit ZQAnyTraceKeyOf(const char (&... keys)[sizes]) noexcept
        : ZQTraceCondition(detail::TraceConditionKind::anyOf, keys_, count, 0), keys_{StringView(keys)...} {}

private:
    StringView keys_[count];
};
/// The number of keys comes from the arguments.
template <std::size_t... sizes>
ZQAnyTraceKeyOf(const char (&... keys)[sizes]) -> ZQAnyTraceKeyOf<sizeof...(sizes)>;

/// Holds while all of the keys are on. Lines begin with "A+B: ".
///
///     constinit ZQAllTraceKeysOf traceBoth("TraceFiles", "TraceNetwork");
///     traceBoth.log("%d items", count);  // TraceFiles+TraceNetwork: reload() 3 items
template <std::size_t count>
class ZQAllTraceKeysOf : public ZQTraceCondition {
public:
    /// The keys are literals, at least one.
    template <std::size_t... sizes>
    constexpr explicit ZQAllTraceKeysOf(const char (&... keys)[sizes]) noexcept
        : ZQTraceCondition(detail::TraceConditionKind::allOf, keys_, count, 0), keys_{StringView(keys)...} {}

private:
    StringView keys_[count];
};
/// The number of keys comes from the arguments.
template <std::size_t... sizes>
ZQAllTraceKeysOf(const char (&... keys)[sizes]) -> ZQAllTraceKeysOf<sizeof...(sizes)>;

/// Holds while any trace key at all is on. Lines begin with "Trace: ".
///
///     constinit ZQAnyTraceKey traceAnything;
///     traceAnything.log("%d items", count);  // Trace: reload() 3 items
class ZQAnyTraceKey : public ZQTraceCondition {
public:
    /// Takes no key.
    constexpr ZQAnyTraceKey() noexcept
        : ZQTraceCondition(detail::TraceConditionKind::anyKey, nullptr, 0, 0) {}
};

} // namespace ZQFoundation

#endif
