// SPDX-License-Identifier: MIT
// Every log operation: its exact text, its condition, and objects that act while they are described.
#include <algorithm>
#include <set>
#include <tuple>

#include "tests/kit/AllocationCount.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::AllocationCount;
using kit::CapturedOutput;
using kit::Settings;
using kit::TraceKeys;
using kit::utf8Of;
using logscene::addressText;
using logscene::Texts;

namespace {

// What an operation is, as its name says it. `brief` is without caller and flag.
enum class Caller { brief, none, method, function };
enum class Condition { unconditional, key, value, threshold, anyOf, allOf, anyKey };
enum class Form { finished, variable, started };

/// All that any of the operations may be given.
struct Call {
    explicit Call(const NSObjectProtocol& describedItem) : item(describedItem), packed(number, item) {}

    LogCaller self = nullptr;
    StringView method;
    const char* function = nullptr;
    bool flag = true;
    StringView key = "TraceNet";
    NSArray keys{"TraceNet"};
    std::int64_t level = 0;
    StringView text = "100% %d %@";
    StringView format = "%d of %@";
    int number = 3;
    const NSObjectProtocol& item;
    detail::PackedArguments<2> packed;
};

/// Takes the text's beginning off and says whether it was there.
constexpr bool takes(std::string_view& text, std::string_view beginning) {
    const bool isThere = text.starts_with(beginning);
    text.remove_prefix(isThere ? beginning.size() : 0);
    return isThere;
}

struct Kind {
    Caller caller = Caller::brief;
    bool returns = false; ///< the text, instead of writing it
    Condition condition = Condition::unconditional;
    Form form = Form::finished;

    constexpr auto operator<=>(const Kind&) const = default;
};

/// Fails to compile for a name that is not made of the pieces that names are made of, in their order.
consteval Kind kindOf(std::string_view name) {
    Kind kind;
    kind.caller = takes(name, "logSelf_method_logAlways_")    ? Caller::method
                  : takes(name, "logFunctionName_logAlways_") ? Caller::function
                  : takes(name, "logAlways_")                 ? Caller::none
                                                              : Caller::brief;
    kind.returns = takes(name, "logString");
    if (!kind.returns && !takes(name, "log")) {
        throw "an operation begins with log";
    }
    if (name.empty()) {
        return kind;
    }
    kind.condition = takes(name, "ForTraceKey_usingFormat")             ? Condition::key
                     : takes(name, "ForTraceKey_value_usingFormat")     ? Condition::value
                     : takes(name, "ForTraceKey_threshold_usingFormat") ? Condition::threshold
                     : takes(name, "ForAnyTraceKeyOf_usingFormat")      ? Condition::anyOf
                     : takes(name, "ForAllTraceKeysOf_usingFormat")     ? Condition::allOf
                     : takes(name, "ForAnyTraceKeyUsingFormat")         ? Condition::anyKey
                                                                        : Condition::unconditional;
    if (kind.condition == Condition::unconditional && !takes(name, "WithFormat")) {
        throw "no such condition";
    }
    kind.form = takes(name, "v_arguments") ? Form::started : Form::variable;
    return name.empty() ? kind : throw "too long";
}

// The arguments in the order of the name.

template <Kind kind>
auto callerArguments(const Call& call) {
    if constexpr (kind.caller == Caller::method) {
        return std::tie(call.self, call.method, call.flag);
    } else if constexpr (kind.caller == Caller::function) {
        return std::tie(call.function, call.flag);
    } else if constexpr (kind.caller == Caller::none) {
        return std::tie(call.flag);
    } else {
        return std::tuple();
    }
}

template <Kind kind>
auto conditionArguments(const Call& call) {
    if constexpr (kind.condition == Condition::key) {
        return std::tie(call.key);
    } else if constexpr (kind.condition == Condition::value || kind.condition == Condition::threshold) {
        return std::tie(call.key, call.level);
    } else if constexpr (kind.condition == Condition::anyOf || kind.condition == Condition::allOf) {
        return std::tie(call.keys);
    } else {
        return std::tuple();
    }
}

template <Kind kind>
auto textArguments(const Call& call) {
    if constexpr (kind.form == Form::finished) {
        return std::tie(call.text);
    } else if constexpr (kind.form == Form::variable) {
        return std::tie(call.format, call.number, call.item);
    } else {
        return std::tuple(call.format, call.packed.list());
    }
}

template <Kind kind, class Operation>
NSString perform(const Operation& operation, const Call& call) {
    const auto arguments = std::tuple_cat(callerArguments<kind>(call), conditionArguments<kind>(call),
                                          textArguments<kind>(call));
    using Result = decltype(std::apply(operation, arguments));
    if constexpr (kind.returns) {
        static_assert(std::is_same_v<Result, NSString>);
        return std::apply(operation, arguments);
    } else {
        static_assert(std::is_void_v<Result>);
        std::apply(operation, arguments);
        return nullptr;
    }
}

struct Row : Kind {
    constexpr Row(const char* rowName, Kind kind, NSString (*action)(const Call&))
        : Kind(kind), name(rowName), perform(action) {}

    const char* name;
    NSString (*perform)(const Call&);
};

#define ZQ_OPERATION(name)                                                                                   \
    Row(#name, kindOf(#name), [](const Call& call) {                                                         \
        return perform<kindOf(#name)>([](const auto&... a) { return ZQLog::name(a...); }, call);             \
    })

/// The four operations of a condition, and the 30 that begin alike.
#define ZQ_CONDITION(caller, condition)                                                                      \
    ZQ_OPERATION(caller##log##condition), ZQ_OPERATION(caller##log##condition##v_arguments),                 \
        ZQ_OPERATION(caller##logString##condition), ZQ_OPERATION(caller##logString##condition##v_arguments)
#define ZQ_CALLER(caller)                                                                                    \
    ZQ_OPERATION(caller##log), ZQ_OPERATION(caller##logString), ZQ_CONDITION(caller, WithFormat),            \
        ZQ_CONDITION(caller, ForTraceKey_usingFormat), ZQ_CONDITION(caller, ForTraceKey_value_usingFormat),  \
        ZQ_CONDITION(caller, ForTraceKey_threshold_usingFormat),                                             \
        ZQ_CONDITION(caller, ForAnyTraceKeyOf_usingFormat),                                                  \
        ZQ_CONDITION(caller, ForAllTraceKeysOf_usingFormat), ZQ_CONDITION(caller, ForAnyTraceKeyUsingFormat)

constexpr Row rows[] = {ZQ_CALLER(), ZQ_CALLER(logAlways_), ZQ_CALLER(logSelf_method_logAlways_),
                        ZQ_CALLER(logFunctionName_logAlways_)};

#undef ZQ_CALLER
#undef ZQ_CONDITION
#undef ZQ_OPERATION

/// Describes itself as "box" and counts how often it is asked.
class CountingItem : public NSObjectProtocol {
public:
    NSString className() const override {
        ++asked;
        return "CountingItem";
    }
    NSString description() const override {
        ++asked;
        return "box";
    }

    mutable int asked = 0;
};

struct Archive {
    char contents = 0;
};

class Nameless : public NSObjectProtocol {
public:
    NSString className() const override { return nullptr; }
};

const Archive store;
const Nameless nameless;

/// The trace keys of most tests.
const Settings familySettings = {{"TraceNet", "<true/>"},
                                 {"TraceDisk", "<string>yes</string>"},
                                 {"TraceOff", "<false/>"},
                                 {"TraceLevel", "<integer>5</integer>"},
                                 {"Trace%@", "<true/>"}};

/// Arguments for one condition, and the label of the line when it holds.
struct ConditionCase {
    Condition condition;
    const char* key;
    NSArray keys;
    std::int64_t level;
    const char* label;
};

const std::vector<ConditionCase>& holdingCases() {
    static const std::vector<ConditionCase> cases = {
        {Condition::unconditional, nullptr, nullptr, 0, ""},
        {Condition::key, "TraceNet", nullptr, 0, "TraceNet"},
        {Condition::key, "Trace%@", nullptr, 0, "Trace%@"},
        {Condition::value, "TraceLevel", nullptr, 5, "TraceLevel=5"},
        {Condition::threshold, "TraceLevel", nullptr, 3, "TraceLevel>=3"},
        {Condition::threshold, "Trace%@", nullptr, INT64_MIN, "Trace%@>=-9223372036854775808"},
        {Condition::anyOf, nullptr, {"TraceOff", "TraceNet"}, 0, "TraceNet"},
        {Condition::anyOf, nullptr, {"TraceDisk", "Trace%@", "TraceNet"}, 0, "TraceDisk/Trace%@/TraceNet"},
        {Condition::allOf, nullptr, {"TraceDisk", "Trace%@", "TraceNet"}, 0, "TraceDisk+Trace%@+TraceNet"},
        {Condition::anyKey, nullptr, nullptr, 0, "Trace"},
    };
    return cases;
}

/// There is none for `anyKey`, which fails only with other settings.
const std::vector<ConditionCase>& failingCases() {
    static const std::vector<ConditionCase> cases = {
        {Condition::key, "TraceOff", nullptr, 0, nullptr},
        {Condition::value, "TraceLevel", nullptr, 4, nullptr},
        {Condition::value, "TraceLevel", nullptr, 5 + (std::int64_t{1} << 32), nullptr},
        {Condition::threshold, "TraceLevel", nullptr, 6, nullptr},
        {Condition::anyOf, nullptr, NSArray::array(), 0, nullptr},
        {Condition::anyOf, nullptr, {"TraceOff", "TraceMissing"}, 0, nullptr},
        {Condition::allOf, nullptr, NSArray::array(), 0, nullptr},
        {Condition::allOf, nullptr, {"TraceNet", "TraceOff"}, 0, nullptr},
    };
    return cases;
}

/// Who calls, and how the line names that.
struct CallerCase {
    Caller caller;
    LogCaller self;
    const char* method;
    const char* function;
    std::string text;
};

const std::vector<CallerCase>& callerCases() {
    static const std::vector<CallerCase> cases = {
        {Caller::brief, nullptr, nullptr, nullptr, ""},
        {Caller::none, nullptr, nullptr, nullptr, ""},
        {Caller::method, nullptr, nullptr, nullptr, "[<<no instance>> <<no method>>]"},
        {Caller::method, nullptr, "reload:", nullptr, "[<<no instance>> reload:]"},
        {Caller::method, &store, "reload:", nullptr, "-[(Archive *)" + addressText(&store) + " reload:]"},
        {Caller::method, &store, "50%@", nullptr, "-[(Archive *)" + addressText(&store) + " 50%@]"},
        {Caller::method, &nameless, "reload:", nullptr, "?[" + addressText(&nameless) + " reload:]"},
        {Caller::method, static_cast<const void*>(&store), nullptr, nullptr,
         "?[" + addressText(&store) + " <<no method>>]"},
        {Caller::function, nullptr, nullptr, "parse_header", "parse_header()"},
        {Caller::function, nullptr, nullptr, nullptr, "<<no function name>>()"},
        {Caller::function, nullptr, nullptr, "", "<<no function name>>()"},
        {Caller::function, nullptr, nullptr, "-[Foo bar:]", "-[Foo bar:]"},
        {Caller::function, nullptr, nullptr, "a/b/c.m:12", "c.m:12"},
        {Caller::function, nullptr, nullptr, "100%d", "100%d()"},
    };
    return cases;
}

void setCondition(Call& call, const ConditionCase& condition) {
    call.key = condition.key;
    call.keys = condition.keys;
    call.level = condition.level;
}

void setCaller(Call& call, const CallerCase& caller) {
    call.self = caller.self;
    call.method = caller.method;
    call.function = caller.function;
}

const ConditionCase& firstHoldingCase(const Row& row) {
    return *std::find_if(holdingCases().begin(), holdingCases().end(),
                         [&row](const ConditionCase& each) { return each.condition == row.condition; });
}

/// Arguments with which the operation writes its line.
Call passingCall(const Row& row, const NSObjectProtocol& item) {
    Call call(item);
    setCondition(call, firstHoldingCase(row));
    return call;
}

/// Calls that a gate before the trace condition stops.
std::vector<Call> callsStoppedEarly(const Row& row, const NSObjectProtocol& item) {
    std::vector<Call> calls;
    const Call passing = passingCall(row, item);
    if (row.caller != Caller::brief) {
        calls.emplace_back(passing).flag = false;
    }
    if (row.form == Form::finished) {
        calls.emplace_back(passing).text = nullptr;
        return calls;
    }
    calls.emplace_back(passing).format = nullptr;
    if (firstHoldingCase(row).key != nullptr) {
        calls.emplace_back(passing).key = nullptr;
    } else if (firstHoldingCase(row).keys) {
        calls.emplace_back(passing).keys = nullptr;
    }
    return calls;
}

/// Calls that the trace condition stops.
std::vector<Call> callsWithAFailingCondition(const Row& row, const NSObjectProtocol& item) {
    std::vector<Call> calls;
    for (const ConditionCase& condition : failingCases()) {
        if (condition.condition == row.condition) {
            setCondition(calls.emplace_back(item), condition);
        }
    }
    return calls;
}

std::string composed(const std::string& label, const std::string& caller, const std::string& message) {
    return (label.empty() ? "" : label + ": ") + (caller.empty() ? "" : caller + " ") + message;
}

/// What the operation must show: one line, or the text itself and no line.
void expectText(const Row& row, const Call& call, const std::string& text, CapturedOutput& output) {
    output.clear();
    const NSString returned = row.perform(call);
    EXPECT_EQ(utf8Of(returned), row.returns ? text : "(nil)");
    EXPECT_EQ(output.texts(), row.returns ? Texts() : Texts{text});
}

/// Nothing is written, returned, described, formatted or allocated.
void expectSilence(const Row& row, Call call, CapturedOutput& output) {
    SCOPED_TRACE(row.name);
    const CountingItem caller;
    const auto& item = dynamic_cast<const CountingItem&>(call.item);
    call.self = &caller;
    call.method = "reload:";
    call.function = "parse_header";
    output.clear();
    const int askedBefore = item.asked;
    const std::size_t before = AllocationCount::now();
    const NSString returned = row.perform(call);
    const std::size_t after = AllocationCount::now();
    EXPECT_EQ(after, before);
    EXPECT_EQ(item.asked, askedBefore);
    EXPECT_EQ(caller.asked, 0);
    EXPECT_EQ(utf8Of(returned), "(nil)");
    EXPECT_EQ(output.bytes(), "");
}

} // namespace

TEST(LogFamilies, haveAnOperationForEveryCombination) {
    // Two finished texts and two by two formats for each of seven conditions, for each of four callers.
    const std::set<Kind> kinds(std::begin(rows), std::end(rows));
    EXPECT_EQ(std::size(rows), 4 * (2 + 2 * 2 * 7U));
    EXPECT_EQ(kinds.size(), std::size(rows));
}

TEST(LogFamilies, giveTheExactTextForEveryCallerAndCondition) {
    const TraceKeys keys(familySettings);
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        for (const ConditionCase& condition : holdingCases()) {
            for (const CallerCase& caller : callerCases()) {
                if (condition.condition != row.condition || caller.caller != row.caller) {
                    continue;
                }
                SCOPED_TRACE(std::string(row.name) + " " + condition.label + " " + caller.text);
                Call call(item);
                setCondition(call, condition);
                setCaller(call, caller);
                const char* const message = row.form == Form::finished ? "100% %d %@" : "3 of box";
                expectText(row, call, composed(condition.label, caller.text, message), output);
            }
        }
    }
}

TEST(LogFamilies, nameAClassThatCalls) {
    const TraceKeys keys(familySettings);
    const CountingItem item;
    const Class storeClass = classOf<Archive>();
    CapturedOutput output;
    for (const Row& row : rows) {
        if (row.caller == Caller::method) {
            SCOPED_TRACE(row.name);
            Call call = passingCall(row, item);
            call.self = storeClass;
            call.method = "sharedStore";
            call.text = call.format = "x";
            expectText(row, call, composed(firstHoldingCase(row).label, "+[Archive sharedStore]", "x"),
                       output);
        }
    }
}

TEST(LogFamilies, askAnItemForItsDescriptionOnce) {
    const TraceKeys keys(familySettings);
    CapturedOutput output;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const CountingItem item;
        row.perform(passingCall(row, item));
        EXPECT_EQ(item.asked, row.form == Form::finished ? 0 : 1);
    }
}

TEST(LogFamilies, giveALineForAnEmptyFormatOrText) {
    const TraceKeys keys(familySettings);
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Call call = passingCall(row, item);
        call.text = call.format = "";
        call.method = "run:";
        call.function = "run";
        const char* const callers[] = {"", "", "[<<no instance>> run:]", "run()"};
        const char* const caller = callers[static_cast<std::size_t>(row.caller)];
        expectText(row, call, composed(firstHoldingCase(row).label, caller, ""), output);
    }
}

TEST(LogFamilies, giveNothingAndCostNothingWhenAGateBeforeTheConditionStopsThem) {
    const CountingItem item;
    CapturedOutput output;
    for (const Settings& someSettings : {Settings{}, familySettings}) {
        const TraceKeys keys(someSettings);
        ZQLog::traceKeyIsEnabled("TraceNet"); // reads them
        std::size_t stopped = 0;
        for (const Row& row : rows) {
            for (const Call& call : callsStoppedEarly(row, item)) {
                expectSilence(row, call, output);
                ++stopped;
            }
        }
        // The flag in 90 operations, a format or text in all, a key or keys in 5 of 7 conditions.
        EXPECT_EQ(stopped, 90U + 120U + 80U);
    }
}

TEST(LogFamilies, giveNothingAndCostNothingWhenTheConditionFails) {
    const TraceKeys keys(familySettings);
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        for (const Call& call : callsWithAFailingCondition(row, item)) {
            SCOPED_TRACE(utf8Of(call.keys.condensedDescription()) + " " + std::to_string(call.level));
            expectSilence(row, call, output);
        }
    }
}

TEST(LogFamilies, giveNothingForAnyTraceKeyWhenNoneIsOn) {
    const TraceKeys keys(
        {{"TraceOff", "<false/>"}, {"TraceLevel", "<integer>0</integer>"}, {"Other", "<true/>"}});
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        if (row.condition == Condition::anyKey) {
            expectSilence(row, Call(item), output);
        }
    }
}

TEST(LogFamilies, checkOnlyFlagAndTextWhenTheTextIsFinished) {
    const TraceKeys keys(Settings{});
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        if (row.form == Form::finished) {
            SCOPED_TRACE(row.name);
            Call call(item);
            call.key = nullptr;
            call.keys = nullptr;
            call.format = nullptr;
            const char* const callers[] = {"", "", "[<<no instance>> <<no method>>]",
                                           "<<no function name>>()"};
            expectText(row, call, composed("", callers[static_cast<std::size_t>(row.caller)], "100% %d %@"),
                       output);
        }
    }
}

/// Performs each operation as often as it does not ask the trace keys.
int performWithoutTraceKeys() {
    const CountingItem item;
    int performed = 0;
    for (const Row& row : rows) {
        for (const Call& call : callsStoppedEarly(row, item)) {
            row.perform(call);
            ++performed;
        }
        if (row.condition == Condition::unconditional) {
            row.perform(passingCall(row, item));
            ++performed;
        }
    }
    return performed;
}

TEST(LogFamilies, checkFlagFormatAndKeyBeforeTheyAskTheTraceKeysInAnyThread) {
    const TraceKeys keys(familySettings);
    const CapturedOutput output;
    std::atomic<int> performed = 0;
    EXPECT_TRUE(logscene::finishesWhileTheMonitorIsHeld([&] { performed = performWithoutTraceKeys(); }));
    EXPECT_EQ(performed, 290 + 24);
}

TEST(LogFamilies, readNoTraceKeysWhenStoppedBeforeTheCondition) {
    kit::inFreshProcess([] {
        const kit::DefaultsScene defaults(familySettings);
        const CapturedOutput output;
        performWithoutTraceKeys();
        defaults.replace({{"TraceLate", "<true/>"}});
        EXPECT_EQ(ZQLog::activatedTraceDefaultsKeys(), NSArray{"TraceLate"});
    });
}

namespace {

// Objects whose methods have effects of their own. The description of an argument and the class name of a
// caller have the same effect.

class Acting : public NSObjectProtocol {
public:
    NSString className() const override {
        act();
        return "Acting";
    }
    NSString description() const override {
        act();
        return "box";
    }

protected:
    virtual void act() const = 0;
};

class TriesTheMonitor : public Acting {
public:
    mutable int tried = 0;
    mutable int taken = 0;

private:
    void act() const override {
        ++tried;
        taken += logscene::anotherThreadCanTakeTheMonitor() ? 1 : 0;
    }
};

class Logs : public Acting {
    void act() const override { ZQLog::logForTraceKey_usingFormat("TraceNet", "inside"); }
};

class ReadsTheKeysAgain : public Acting {
    void act() const override {
        const ZQLog::Synchronized scope;
        ZQLog::initializeTraceDefaultsDict();
    }
};

class Raises : public Acting {
    void act() const override { NSException::raise_format("Inside", "raised by a description"); }
};

/// Every operation that formats, with the object as argument, and each for methods also with it as the
/// caller.
template <class Body>
void forEachUseOf(const Acting& object, const Body& body) {
    const CountingItem plainItem;
    for (const Row& row : rows) {
        if (row.form != Form::finished) {
            SCOPED_TRACE(std::string(row.name) + ", argument");
            body(row, passingCall(row, object));
        }
        if (row.caller == Caller::method) {
            SCOPED_TRACE(std::string(row.name) + ", caller");
            Call call = passingCall(row, plainItem);
            call.self = &object;
            body(row, call);
        }
    }
}

} // namespace

TEST(LogFamilies, describeAndFormatWithoutKeepingOtherThreadsFromTheMonitor) {
    const TraceKeys keys(familySettings);
    const CapturedOutput output;
    const TriesTheMonitor object;
    int uses = 0;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        row.perform(call);
        ++uses;
        EXPECT_GE(object.tried, uses);
        EXPECT_EQ(object.taken, object.tried);
    });
    EXPECT_EQ(uses, 112 + 30);
}

TEST(LogFamilies, letADescriptionLog) {
    const TraceKeys keys(familySettings);
    const Logs object;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        const std::string returned = utf8Of(row.perform(call));
        const Texts texts = output.texts();
        ASSERT_GE(texts.size(), row.returns ? 1U : 2U);
        EXPECT_EQ(texts.front(), "TraceNet: inside");
        const std::string& text = row.returns ? returned : texts.back();
        const std::string end = row.form == Form::finished ? "100% %d %@" : "3 of box";
        EXPECT_GE(text.size(), end.size());
        EXPECT_EQ(text.substr(text.size() - std::min(text.size(), end.size())), end);
    });
    EXPECT_TRUE(logscene::anotherThreadCanTakeTheMonitor());
}

TEST(LogFamilies, letADescriptionReadTheTraceKeysAgain) {
    TraceKeys keys(familySettings);
    const ReadsTheKeysAgain object;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        const NSString returned = row.perform(call);
        EXPECT_EQ(output.texts().size(), row.returns ? 0U : 1U);
        EXPECT_EQ(static_cast<bool>(returned), row.returns);
    });
    EXPECT_TRUE(logscene::anotherThreadCanTakeTheMonitor());
    // The condition held when it was checked: what the description reads comes too late for its own line.
    keys.replace({});
    output.clear();
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@ %d", object, 1);
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@ %d", object, 2);
    EXPECT_EQ(output.texts(), Texts{"TraceNet: box 1"});
}

TEST(LogFamilies, letADescriptionRaiseAndKeepNoLockFromOtherThreads) {
    const TraceKeys keys(familySettings);
    const Raises object;
    const CountingItem item;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        EXPECT_EQ(kit::raised([&] { row.perform(call); }), "Inside");
        EXPECT_EQ(output.bytes(), "");
        EXPECT_TRUE(logscene::anotherThreadCanTakeTheMonitor());
        ZQLog::log("after");
        EXPECT_EQ(output.texts(), Texts{"after"});
    });
}

TEST(LogFamilies, letADescriptionWaitForAThreadThatLogs) {
    class Waits : public Acting {
        void act() const override {
            std::thread([] {
                const ZQLog::Synchronized monitor;
                ZQLog::initializeTraceDefaultsDict();
                ZQLog::logForTraceKey_usingFormat("TraceNet", "of another thread");
            }).join();
        }
    };
    const TraceKeys keys(familySettings);
    const CapturedOutput output;
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@", Waits());
    EXPECT_EQ(output.texts(), (Texts{"TraceNet: of another thread", "TraceNet: box"}));
}

TEST(LogFamilies, letDescriptionsNestDeeply) {
    class Nests : public Acting {
        void act() const override {
            if (++depth < 50) {
                ZQLog::logForTraceKey_usingFormat("TraceNet", "%@", *this);
            }
        }
        mutable int depth = 0;
    };
    const TraceKeys keys(familySettings);
    const CapturedOutput output;
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@", Nests());
    EXPECT_EQ(output.texts(), Texts(50, "TraceNet: box"));
}
