// SPDX-License-Identifier: MIT
// Every log operation: its exact text, its condition, and objects that act while they are described.
#include "tests/kit/AllocationCount.h"
#include "tests/log/LogTestSupport.h"
#include "tests/objects/TestValues.h"

#include <algorithm>
#include <set>

using namespace ZQFoundation;
using kit::AllocationCount;
using logtest::addressText;
using logtest::CapturedOutput;
using logtest::Settings;
using logtest::TraceKeys;
using TestValues::utf8Of;

namespace {

using Texts = std::vector<std::string>;

// What a name of an operation is made of, in this order. `brief` is without caller and flag.
enum class Caller { brief, none, method, function };
enum class Verb { log, logString };
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

    ArgumentList list() const { return packed.list(); }
};

struct Row {
    const char* name;
    Caller caller;
    Condition condition;
    Verb verb;
    Form form;
    NSString (*perform)(const Call&);
};

// One row for each operation: its whole name, what the name is made of, and the arguments in the order of the
// name.
// clang-format off
#define ZQ_WRITES(name, caller, condition, form, ...)                                                  \
    {#name, Caller::caller, Condition::condition, Verb::log, Form::form, [](const Call& call) {        \
         static_assert(std::is_void_v<decltype(ZQLog::name(__VA_ARGS__))>);                            \
         ZQLog::name(__VA_ARGS__);                                                                     \
         return NSString();                                                                            \
     }}
#define ZQ_RETURNS(name, caller, condition, form, ...)                                                 \
    {#name, Caller::caller, Condition::condition, Verb::logString, Form::form, [](const Call& call) {  \
         static_assert(std::is_same_v<decltype(ZQLog::name(__VA_ARGS__)), NSString>);                  \
         return ZQLog::name(__VA_ARGS__);                                                              \
     }}
// clang-format on

constexpr Row rows[] = {
    // Without a caller.
    ZQ_WRITES(logAlways_log, none, unconditional, finished, call.flag, call.text),
    ZQ_RETURNS(logAlways_logString, none, unconditional, finished, call.flag, call.text),
    ZQ_WRITES(logAlways_logWithFormat, none, unconditional, variable, call.flag, call.format, call.number,
              call.item),
    ZQ_WRITES(logAlways_logWithFormatv_arguments, none, unconditional, started, call.flag, call.format,
              call.list()),
    ZQ_RETURNS(logAlways_logStringWithFormat, none, unconditional, variable, call.flag, call.format,
               call.number, call.item),
    ZQ_RETURNS(logAlways_logStringWithFormatv_arguments, none, unconditional, started, call.flag, call.format,
               call.list()),
    ZQ_WRITES(logAlways_logForTraceKey_usingFormat, none, key, variable, call.flag, call.key, call.format,
              call.number, call.item),
    ZQ_WRITES(logAlways_logForTraceKey_usingFormatv_arguments, none, key, started, call.flag, call.key,
              call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForTraceKey_usingFormat, none, key, variable, call.flag, call.key,
               call.format, call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForTraceKey_usingFormatv_arguments, none, key, started, call.flag, call.key,
               call.format, call.list()),
    ZQ_WRITES(logAlways_logForTraceKey_value_usingFormat, none, value, variable, call.flag, call.key,
              call.level, call.format, call.number, call.item),
    ZQ_WRITES(logAlways_logForTraceKey_value_usingFormatv_arguments, none, value, started, call.flag,
              call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForTraceKey_value_usingFormat, none, value, variable, call.flag, call.key,
               call.level, call.format, call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForTraceKey_value_usingFormatv_arguments, none, value, started, call.flag,
               call.key, call.level, call.format, call.list()),
    ZQ_WRITES(logAlways_logForTraceKey_threshold_usingFormat, none, threshold, variable, call.flag, call.key,
              call.level, call.format, call.number, call.item),
    ZQ_WRITES(logAlways_logForTraceKey_threshold_usingFormatv_arguments, none, threshold, started, call.flag,
              call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForTraceKey_threshold_usingFormat, none, threshold, variable, call.flag,
               call.key, call.level, call.format, call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForTraceKey_threshold_usingFormatv_arguments, none, threshold, started,
               call.flag, call.key, call.level, call.format, call.list()),
    ZQ_WRITES(logAlways_logForAnyTraceKeyOf_usingFormat, none, anyOf, variable, call.flag, call.keys,
              call.format, call.number, call.item),
    ZQ_WRITES(logAlways_logForAnyTraceKeyOf_usingFormatv_arguments, none, anyOf, started, call.flag,
              call.keys, call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForAnyTraceKeyOf_usingFormat, none, anyOf, variable, call.flag, call.keys,
               call.format, call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments, none, anyOf, started, call.flag,
               call.keys, call.format, call.list()),
    ZQ_WRITES(logAlways_logForAllTraceKeysOf_usingFormat, none, allOf, variable, call.flag, call.keys,
              call.format, call.number, call.item),
    ZQ_WRITES(logAlways_logForAllTraceKeysOf_usingFormatv_arguments, none, allOf, started, call.flag,
              call.keys, call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForAllTraceKeysOf_usingFormat, none, allOf, variable, call.flag, call.keys,
               call.format, call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments, none, allOf, started, call.flag,
               call.keys, call.format, call.list()),
    ZQ_WRITES(logAlways_logForAnyTraceKeyUsingFormat, none, anyKey, variable, call.flag, call.format,
              call.number, call.item),
    ZQ_WRITES(logAlways_logForAnyTraceKeyUsingFormatv_arguments, none, anyKey, started, call.flag,
              call.format, call.list()),
    ZQ_RETURNS(logAlways_logStringForAnyTraceKeyUsingFormat, none, anyKey, variable, call.flag, call.format,
               call.number, call.item),
    ZQ_RETURNS(logAlways_logStringForAnyTraceKeyUsingFormatv_arguments, none, anyKey, started, call.flag,
               call.format, call.list()),
    // For methods.
    ZQ_WRITES(logSelf_method_logAlways_log, method, unconditional, finished, call.self, call.method,
              call.flag, call.text),
    ZQ_RETURNS(logSelf_method_logAlways_logString, method, unconditional, finished, call.self, call.method,
               call.flag, call.text),
    ZQ_WRITES(logSelf_method_logAlways_logWithFormat, method, unconditional, variable, call.self, call.method,
              call.flag, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logWithFormatv_arguments, method, unconditional, started, call.self,
              call.method, call.flag, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringWithFormat, method, unconditional, variable, call.self,
               call.method, call.flag, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringWithFormatv_arguments, method, unconditional, started,
               call.self, call.method, call.flag, call.format, call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_usingFormat, method, key, variable, call.self,
              call.method, call.flag, call.key, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_usingFormatv_arguments, method, key, started, call.self,
              call.method, call.flag, call.key, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_usingFormat, method, key, variable, call.self,
               call.method, call.flag, call.key, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_usingFormatv_arguments, method, key, started,
               call.self, call.method, call.flag, call.key, call.format, call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_value_usingFormat, method, value, variable, call.self,
              call.method, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_value_usingFormatv_arguments, method, value, started,
              call.self, call.method, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_value_usingFormat, method, value, variable,
               call.self, call.method, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_value_usingFormatv_arguments, method, value,
               started, call.self, call.method, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_threshold_usingFormat, method, threshold, variable,
              call.self, call.method, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForTraceKey_threshold_usingFormatv_arguments, method, threshold,
              started, call.self, call.method, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormat, method, threshold,
               variable, call.self, call.method, call.flag, call.key, call.level, call.format, call.number,
               call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments, method,
               threshold, started, call.self, call.method, call.flag, call.key, call.level, call.format,
               call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormat, method, anyOf, variable, call.self,
              call.method, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments, method, anyOf, started,
              call.self, call.method, call.flag, call.keys, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormat, method, anyOf, variable,
               call.self, call.method, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments, method, anyOf,
               started, call.self, call.method, call.flag, call.keys, call.format, call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForAllTraceKeysOf_usingFormat, method, allOf, variable, call.self,
              call.method, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForAllTraceKeysOf_usingFormatv_arguments, method, allOf, started,
              call.self, call.method, call.flag, call.keys, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormat, method, allOf, variable,
               call.self, call.method, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments, method, allOf,
               started, call.self, call.method, call.flag, call.keys, call.format, call.list()),
    ZQ_WRITES(logSelf_method_logAlways_logForAnyTraceKeyUsingFormat, method, anyKey, variable, call.self,
              call.method, call.flag, call.format, call.number, call.item),
    ZQ_WRITES(logSelf_method_logAlways_logForAnyTraceKeyUsingFormatv_arguments, method, anyKey, started,
              call.self, call.method, call.flag, call.format, call.list()),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormat, method, anyKey, variable,
               call.self, call.method, call.flag, call.format, call.number, call.item),
    ZQ_RETURNS(logSelf_method_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments, method, anyKey,
               started, call.self, call.method, call.flag, call.format, call.list()),
    // For functions.
    ZQ_WRITES(logFunctionName_logAlways_log, function, unconditional, finished, call.function, call.flag,
              call.text),
    ZQ_RETURNS(logFunctionName_logAlways_logString, function, unconditional, finished, call.function,
               call.flag, call.text),
    ZQ_WRITES(logFunctionName_logAlways_logWithFormat, function, unconditional, variable, call.function,
              call.flag, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logWithFormatv_arguments, function, unconditional, started,
              call.function, call.flag, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringWithFormat, function, unconditional, variable,
               call.function, call.flag, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringWithFormatv_arguments, function, unconditional, started,
               call.function, call.flag, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_usingFormat, function, key, variable, call.function,
              call.flag, call.key, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_usingFormatv_arguments, function, key, started,
              call.function, call.flag, call.key, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_usingFormat, function, key, variable,
               call.function, call.flag, call.key, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_usingFormatv_arguments, function, key, started,
               call.function, call.flag, call.key, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_value_usingFormat, function, value, variable,
              call.function, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_value_usingFormatv_arguments, function, value, started,
              call.function, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_value_usingFormat, function, value, variable,
               call.function, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_value_usingFormatv_arguments, function, value,
               started, call.function, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_threshold_usingFormat, function, threshold, variable,
              call.function, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForTraceKey_threshold_usingFormatv_arguments, function, threshold,
              started, call.function, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormat, function, threshold,
               variable, call.function, call.flag, call.key, call.level, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForTraceKey_threshold_usingFormatv_arguments, function,
               threshold, started, call.function, call.flag, call.key, call.level, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormat, function, anyOf, variable,
              call.function, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForAnyTraceKeyOf_usingFormatv_arguments, function, anyOf, started,
              call.function, call.flag, call.keys, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormat, function, anyOf, variable,
               call.function, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAnyTraceKeyOf_usingFormatv_arguments, function, anyOf,
               started, call.function, call.flag, call.keys, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForAllTraceKeysOf_usingFormat, function, allOf, variable,
              call.function, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForAllTraceKeysOf_usingFormatv_arguments, function, allOf, started,
              call.function, call.flag, call.keys, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormat, function, allOf, variable,
               call.function, call.flag, call.keys, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAllTraceKeysOf_usingFormatv_arguments, function, allOf,
               started, call.function, call.flag, call.keys, call.format, call.list()),
    ZQ_WRITES(logFunctionName_logAlways_logForAnyTraceKeyUsingFormat, function, anyKey, variable,
              call.function, call.flag, call.format, call.number, call.item),
    ZQ_WRITES(logFunctionName_logAlways_logForAnyTraceKeyUsingFormatv_arguments, function, anyKey, started,
              call.function, call.flag, call.format, call.list()),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormat, function, anyKey, variable,
               call.function, call.flag, call.format, call.number, call.item),
    ZQ_RETURNS(logFunctionName_logAlways_logStringForAnyTraceKeyUsingFormatv_arguments, function, anyKey,
               started, call.function, call.flag, call.format, call.list()),
    // The short forms, without a flag.
    ZQ_WRITES(log, brief, unconditional, finished, call.text),
    ZQ_RETURNS(logString, brief, unconditional, finished, call.text),
    ZQ_WRITES(logWithFormat, brief, unconditional, variable, call.format, call.number, call.item),
    ZQ_WRITES(logWithFormatv_arguments, brief, unconditional, started, call.format, call.list()),
    ZQ_RETURNS(logStringWithFormat, brief, unconditional, variable, call.format, call.number, call.item),
    ZQ_RETURNS(logStringWithFormatv_arguments, brief, unconditional, started, call.format, call.list()),
    ZQ_WRITES(logForTraceKey_usingFormat, brief, key, variable, call.key, call.format, call.number,
              call.item),
    ZQ_WRITES(logForTraceKey_usingFormatv_arguments, brief, key, started, call.key, call.format, call.list()),
    ZQ_RETURNS(logStringForTraceKey_usingFormat, brief, key, variable, call.key, call.format, call.number,
               call.item),
    ZQ_RETURNS(logStringForTraceKey_usingFormatv_arguments, brief, key, started, call.key, call.format,
               call.list()),
    ZQ_WRITES(logForTraceKey_value_usingFormat, brief, value, variable, call.key, call.level, call.format,
              call.number, call.item),
    ZQ_WRITES(logForTraceKey_value_usingFormatv_arguments, brief, value, started, call.key, call.level,
              call.format, call.list()),
    ZQ_RETURNS(logStringForTraceKey_value_usingFormat, brief, value, variable, call.key, call.level,
               call.format, call.number, call.item),
    ZQ_RETURNS(logStringForTraceKey_value_usingFormatv_arguments, brief, value, started, call.key, call.level,
               call.format, call.list()),
    ZQ_WRITES(logForTraceKey_threshold_usingFormat, brief, threshold, variable, call.key, call.level,
              call.format, call.number, call.item),
    ZQ_WRITES(logForTraceKey_threshold_usingFormatv_arguments, brief, threshold, started, call.key,
              call.level, call.format, call.list()),
    ZQ_RETURNS(logStringForTraceKey_threshold_usingFormat, brief, threshold, variable, call.key, call.level,
               call.format, call.number, call.item),
    ZQ_RETURNS(logStringForTraceKey_threshold_usingFormatv_arguments, brief, threshold, started, call.key,
               call.level, call.format, call.list()),
    ZQ_WRITES(logForAnyTraceKeyOf_usingFormat, brief, anyOf, variable, call.keys, call.format, call.number,
              call.item),
    ZQ_WRITES(logForAnyTraceKeyOf_usingFormatv_arguments, brief, anyOf, started, call.keys, call.format,
              call.list()),
    ZQ_RETURNS(logStringForAnyTraceKeyOf_usingFormat, brief, anyOf, variable, call.keys, call.format,
               call.number, call.item),
    ZQ_RETURNS(logStringForAnyTraceKeyOf_usingFormatv_arguments, brief, anyOf, started, call.keys,
               call.format, call.list()),
    ZQ_WRITES(logForAllTraceKeysOf_usingFormat, brief, allOf, variable, call.keys, call.format, call.number,
              call.item),
    ZQ_WRITES(logForAllTraceKeysOf_usingFormatv_arguments, brief, allOf, started, call.keys, call.format,
              call.list()),
    ZQ_RETURNS(logStringForAllTraceKeysOf_usingFormat, brief, allOf, variable, call.keys, call.format,
               call.number, call.item),
    ZQ_RETURNS(logStringForAllTraceKeysOf_usingFormatv_arguments, brief, allOf, started, call.keys,
               call.format, call.list()),
    ZQ_WRITES(logForAnyTraceKeyUsingFormat, brief, anyKey, variable, call.format, call.number, call.item),
    ZQ_WRITES(logForAnyTraceKeyUsingFormatv_arguments, brief, anyKey, started, call.format, call.list()),
    ZQ_RETURNS(logStringForAnyTraceKeyUsingFormat, brief, anyKey, variable, call.format, call.number,
               call.item),
    ZQ_RETURNS(logStringForAnyTraceKeyUsingFormatv_arguments, brief, anyKey, started, call.format,
               call.list()),
};

#undef ZQ_WRITES
#undef ZQ_RETURNS

static_assert(std::size(rows) == 120);

// The name that an operation must have, from what it is made of.

const char* callerPiece(Caller caller) {
    switch (caller) {
    case Caller::brief:
        return "";
    case Caller::none:
        return "logAlways_";
    case Caller::method:
        return "logSelf_method_logAlways_";
    case Caller::function:
        break;
    }
    return "logFunctionName_logAlways_";
}

const char* conditionPiece(Condition condition) {
    switch (condition) {
    case Condition::unconditional:
        return "WithFormat";
    case Condition::key:
        return "ForTraceKey_usingFormat";
    case Condition::value:
        return "ForTraceKey_value_usingFormat";
    case Condition::threshold:
        return "ForTraceKey_threshold_usingFormat";
    case Condition::anyOf:
        return "ForAnyTraceKeyOf_usingFormat";
    case Condition::allOf:
        return "ForAllTraceKeysOf_usingFormat";
    case Condition::anyKey:
        break;
    }
    return "ForAnyTraceKeyUsingFormat";
}

std::string nameOf(const Row& row) {
    const std::string name =
        std::string(callerPiece(row.caller)) + (row.verb == Verb::log ? "log" : "logString");
    if (row.form == Form::finished) {
        return name;
    }
    return name + conditionPiece(row.condition) + (row.form == Form::started ? "v_arguments" : "");
}

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

struct Store {
    char contents = 0;
};

class Nameless : public NSObjectProtocol {
public:
    NSString className() const override { return nullptr; }
};

const Store store;
const Nameless nameless;

/// The trace keys of most tests.
const Settings settings = {{"TraceNet", "<true/>"},
                           {"TraceDisk", "<string>yes</string>"},
                           {"TraceOff", "<false/>"},
                           {"TraceLevel", "<integer>5</integer>"},
                           {"TraceDown", "<integer>-3</integer>"},
                           {"Trace%@", "<true/>"},
                           {"TraceGröße", "<true/>"}};

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
        {Condition::key, "TraceDown", nullptr, 0, "TraceDown"},
        {Condition::key, "Trace%@", nullptr, 0, "Trace%@"},
        {Condition::key, "TraceGröße", nullptr, 0, "TraceGröße"},
        {Condition::value, "TraceLevel", nullptr, 5, "TraceLevel=5"},
        {Condition::value, "TraceDown", nullptr, -3, "TraceDown=-3"},
        {Condition::value, "TraceMissing", nullptr, 0, "TraceMissing=0"},
        {Condition::threshold, "TraceLevel", nullptr, 3, "TraceLevel>=3"},
        {Condition::threshold, "TraceLevel", nullptr, 5, "TraceLevel>=5"},
        {Condition::threshold, "TraceDown", nullptr, -4, "TraceDown>=-4"},
        {Condition::threshold, "TraceMissing", nullptr, 0, "TraceMissing>=0"},
        {Condition::threshold, "TraceMissing", nullptr, -1, "TraceMissing>=-1"},
        {Condition::threshold, "Trace%@", nullptr, INT64_MIN, "Trace%@>=-9223372036854775808"},
        {Condition::anyOf, nullptr, {"TraceNet"}, 0, "TraceNet"},
        {Condition::anyOf, nullptr, {"TraceOff", "TraceNet"}, 0, "TraceNet"},
        {Condition::anyOf,
         nullptr,
         {"TraceNet", "TraceOff", "TraceMissing", "TraceDisk"},
         0,
         "TraceNet/TraceDisk"},
        {Condition::anyOf, nullptr, {"TraceDisk", "Trace%@", "TraceNet"}, 0, "TraceDisk/Trace%@/TraceNet"},
        {Condition::allOf, nullptr, {"TraceNet"}, 0, "TraceNet"},
        {Condition::allOf, nullptr, {"TraceNet", "TraceDisk"}, 0, "TraceNet+TraceDisk"},
        {Condition::allOf, nullptr, {"TraceDisk", "Trace%@", "TraceNet"}, 0, "TraceDisk+Trace%@+TraceNet"},
        {Condition::anyKey, nullptr, nullptr, 0, "Trace"},
    };
    return cases;
}

/// There is none for `anyKey`, which fails only with other settings.
const std::vector<ConditionCase>& failingCases() {
    static const std::vector<ConditionCase> cases = {
        {Condition::key, "TraceOff", nullptr, 0, nullptr},
        {Condition::key, "TraceMissing", nullptr, 0, nullptr},
        {Condition::key, "tracenet", nullptr, 0, nullptr},
        {Condition::key, "", nullptr, 0, nullptr},
        {Condition::value, "TraceLevel", nullptr, 4, nullptr},
        {Condition::value, "TraceLevel", nullptr, 5 + (std::int64_t{1} << 32), nullptr},
        {Condition::value, "TraceMissing", nullptr, 1, nullptr},
        {Condition::threshold, "TraceLevel", nullptr, 6, nullptr},
        {Condition::threshold, "TraceLevel", nullptr, INT64_MAX, nullptr},
        {Condition::threshold, "TraceDown", nullptr, -2, nullptr},
        {Condition::threshold, "TraceMissing", nullptr, 1, nullptr},
        {Condition::anyOf, nullptr, NSArray::array(), 0, nullptr},
        {Condition::anyOf, nullptr, {"TraceOff"}, 0, nullptr},
        {Condition::anyOf, nullptr, {"TraceOff", "TraceMissing"}, 0, nullptr},
        {Condition::allOf, nullptr, NSArray::array(), 0, nullptr},
        {Condition::allOf, nullptr, {"TraceOff", "TraceNet"}, 0, nullptr},
        {Condition::allOf, nullptr, {"TraceNet", "TraceOff"}, 0, nullptr},
        {Condition::allOf, nullptr, {"TraceNet", "TraceDisk", "TraceMissing"}, 0, nullptr},
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
        {Caller::method, &store, "reload:", nullptr, "-[(Store *)" + addressText(&store) + " reload:]"},
        {Caller::method, &store, "50%@", nullptr, "-[(Store *)" + addressText(&store) + " 50%@]"},
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

/// Arguments with which the operation writes its line.
Call passingCall(const Row& row, const NSObjectProtocol& item) {
    Call call(item);
    for (const ConditionCase& condition : holdingCases()) {
        if (condition.condition == row.condition) {
            setCondition(call, condition);
            break;
        }
    }
    return call;
}

/// Calls that a gate before the trace condition stops, each with the gate's name.
std::vector<std::pair<const char*, Call>> callsStoppedEarly(const Row& row, const NSObjectProtocol& item) {
    std::vector<std::pair<const char*, Call>> calls;
    const Call passing = passingCall(row, item);
    if (row.caller != Caller::brief) {
        calls.emplace_back("flag", passing).second.flag = false;
    }
    if (row.form == Form::finished) {
        calls.emplace_back("text", passing).second.text = nullptr;
        return calls;
    }
    calls.emplace_back("format", passing).second.format = nullptr;
    switch (row.condition) {
    case Condition::key:
    case Condition::value:
    case Condition::threshold:
        calls.emplace_back("key", passing).second.key = nullptr;
        break;
    case Condition::anyOf:
    case Condition::allOf:
        calls.emplace_back("keys", passing).second.keys = nullptr;
        break;
    case Condition::unconditional:
    case Condition::anyKey:
        break;
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
    if (row.verb == Verb::log) {
        EXPECT_EQ(output.texts(), Texts{text});
    } else {
        EXPECT_EQ(utf8Of(returned), text);
        EXPECT_EQ(output.bytes(), "");
    }
}

void expectSilence(const Row& row, const Call& call, CapturedOutput& output) {
    output.clear();
    EXPECT_EQ(utf8Of(row.perform(call)), "(nil)");
    EXPECT_EQ(output.bytes(), "");
}

void expectNoCost(const Row& row, Call call) {
    const CountingItem caller;
    const auto& item = dynamic_cast<const CountingItem&>(call.item);
    call.self = &caller;
    call.method = "reload:";
    call.function = "parse_header";
    const int askedBefore = item.asked;
    const std::size_t before = AllocationCount::now();
    const NSString returned = row.perform(call);
    const std::size_t after = AllocationCount::now();
    EXPECT_FALSE(returned);
    EXPECT_EQ(after, before);
    EXPECT_EQ(item.asked, askedBefore);
    EXPECT_EQ(caller.asked, 0);
}

} // namespace

TEST(LogFamilies, bearTheNamesThatTheirPiecesMake) {
    std::set<std::string> names;
    for (const Row& row : rows) {
        EXPECT_EQ(row.name, nameOf(row));
        names.insert(row.name);
    }
    EXPECT_EQ(names.size(), 120U);
}

TEST(LogFamilies, haveAnOperationForEveryCombination) {
    const auto count = [](auto&& accepts) {
        return std::count_if(std::begin(rows), std::end(rows), accepts);
    };
    EXPECT_EQ(count([](const Row& row) { return row.caller != Caller::brief && row.form != Form::finished; }),
              84);
    EXPECT_EQ(count([](const Row& row) { return row.caller != Caller::brief && row.form == Form::finished; }),
              6);
    EXPECT_EQ(count([](const Row& row) { return row.caller == Caller::brief; }), 30);
    EXPECT_EQ(count([](const Row& row) { return row.verb == Verb::log; }), 60);
    EXPECT_EQ(count([](const Row& row) { return row.form == Form::started; }), 56);
}

TEST(LogFamilies, giveTheExactTextForEveryCallerAndCondition) {
    const TraceKeys keys(settings);
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
    const TraceKeys keys(settings);
    const CountingItem item;
    const Class storeClass = classOf<Store>();
    CapturedOutput output;
    for (const Row& row : rows) {
        if (row.caller == Caller::method) {
            SCOPED_TRACE(row.name);
            Call call = passingCall(row, item);
            call.self = storeClass;
            call.method = "sharedStore";
            call.text = call.format = "x";
            const char* const labels[] = {"",         "TraceNet", "TraceLevel=5", "TraceLevel>=3",
                                          "TraceNet", "TraceNet", "Trace"};
            const char* const label = labels[static_cast<std::size_t>(row.condition)];
            expectText(row, call, composed(label, "+[Store sharedStore]", "x"), output);
        }
    }
}

TEST(LogFamilies, writeTheLineOfTheExample) {
    const TraceKeys keys({{"TraceNet", "<true/>"}});
    const CapturedOutput output;
    const auto* const somewhere = reinterpret_cast<const Store*>(0x7f01);
    ZQLog::logSelf_method_logAlways_logForTraceKey_usingFormat(somewhere, "reload:", true, "TraceNet",
                                                               "%d items", 3);
    ZQLog::logFunctionName_logAlways_logForTraceKey_usingFormat("parse_header", true, "TraceNet", "%d items",
                                                                3);
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%d items", 3);
    EXPECT_EQ(output.texts(), (Texts{"TraceNet: -[(Store *)0x7f01 reload:] 3 items",
                                     "TraceNet: parse_header() 3 items", "TraceNet: 3 items"}));
}

TEST(LogFamilies, askAnItemForItsDescriptionOnce) {
    const TraceKeys keys(settings);
    CapturedOutput output;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const CountingItem item;
        row.perform(passingCall(row, item));
        EXPECT_EQ(item.asked, row.form == Form::finished ? 0 : 1);
    }
}

TEST(LogFamilies, giveALineForAnEmptyFormatOrText) {
    const TraceKeys keys(settings);
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Call call = passingCall(row, item);
        call.text = call.format = "";
        call.method = "run:";
        call.function = "run";
        const char* const callers[] = {"", "", "[<<no instance>> run:]", "run()"};
        const char* const labels[] = {"",         "TraceNet", "TraceLevel=5", "TraceLevel>=3",
                                      "TraceNet", "TraceNet", "Trace"};
        expectText(row, call,
                   composed(labels[static_cast<std::size_t>(row.condition)],
                            callers[static_cast<std::size_t>(row.caller)], ""),
                   output);
    }
}

TEST(LogFamilies, giveNothingWhenAGateBeforeTheConditionStopsThem) {
    const TraceKeys keys(settings);
    const CountingItem item;
    CapturedOutput output;
    std::size_t stopped = 0;
    for (const Row& row : rows) {
        for (const auto& [gate, call] : callsStoppedEarly(row, item)) {
            SCOPED_TRACE(std::string(row.name) + " " + gate);
            expectSilence(row, call, output);
            ++stopped;
        }
    }
    // The flag in 90 operations, a format or text in all, a key or keys in 5 of 7 conditions.
    EXPECT_EQ(stopped, 90U + 120U + 80U);
}

TEST(LogFamilies, giveNothingWhenTheConditionFails) {
    const TraceKeys keys(settings);
    const CountingItem item;
    CapturedOutput output;
    for (const Row& row : rows) {
        for (const Call& call : callsWithAFailingCondition(row, item)) {
            SCOPED_TRACE(std::string(row.name) + " " + utf8Of(call.keys.condensedDescription()) + " " +
                         std::to_string(call.level));
            expectSilence(row, call, output);
        }
    }
}

TEST(LogFamilies, giveNothingForAnyTraceKeyWhenNoneIsOn) {
    const TraceKeys keys(
        {{"TraceOff", "<false/>"}, {"TraceLevel", "<integer>0</integer>"}, {"Other", "<true/>"}});
    const CountingItem item;
    CapturedOutput output;
    std::size_t operations = 0;
    for (const Row& row : rows) {
        if (row.condition == Condition::anyKey) {
            SCOPED_TRACE(row.name);
            expectSilence(row, Call(item), output);
            expectNoCost(row, Call(item));
            ++operations;
        }
    }
    EXPECT_EQ(operations, 16U);
}

TEST(LogFamilies, areSilencedByTheFlagWhateverTheTraceKeysSay) {
    const CountingItem item;
    for (const Settings& someSettings : {Settings{}, settings}) {
        const TraceKeys keys(someSettings);
        CapturedOutput output;
        for (const Row& row : rows) {
            if (row.caller != Caller::brief) {
                SCOPED_TRACE(row.name);
                Call call = passingCall(row, item);
                call.flag = false;
                expectSilence(row, call, output);
            }
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

TEST(LogFamilies, describeFormatAndAllocateNothingWhenAGateStopsThem) {
    const TraceKeys keys(settings);
    const CountingItem item;
    ASSERT_TRUE(ZQLog::traceKeyIsEnabled("TraceNet"));
    for (const Row& row : rows) {
        for (const auto& [gate, call] : callsStoppedEarly(row, item)) {
            SCOPED_TRACE(std::string(row.name) + " " + gate);
            expectNoCost(row, call);
        }
        for (const Call& call : callsWithAFailingCondition(row, item)) {
            SCOPED_TRACE(std::string(row.name) + " " + utf8Of(call.keys.condensedDescription()) + " " +
                         std::to_string(call.level));
            expectNoCost(row, call);
        }
    }
}

TEST(LogFamilies, checkFlagFormatAndKeyBeforeTheyAskTheTraceKeysInAnyThread) {
    const TraceKeys keys(settings);
    const CountingItem item;
    std::atomic<int> performed = 0;
    EXPECT_TRUE(logtest::finishesWhileTheMonitorIsHeld([&] {
        for (const Row& row : rows) {
            for (const auto& [gate, call] : callsStoppedEarly(row, item)) {
                row.perform(call);
                ++performed;
            }
        }
    }));
    EXPECT_EQ(performed, 290);
}

TEST(LogFamilies, readNoTraceKeysWhenStoppedBeforeTheCondition) {
    logtest::inFreshProcess([] {
        logtest::DefaultsScene defaults(settings);
        const CountingItem item;
        const CapturedOutput output;
        for (const Row& row : rows) {
            for (const auto& [gate, call] : callsStoppedEarly(row, item)) {
                row.perform(call);
            }
            if (row.condition == Condition::unconditional) {
                row.perform(passingCall(row, item));
            }
        }
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
        taken += logtest::anotherThreadCanTakeTheMonitor() ? 1 : 0;
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
    const TraceKeys keys(settings);
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
    const TraceKeys keys(settings);
    const Logs object;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        const std::string returned = utf8Of(row.perform(call));
        const Texts texts = output.texts();
        ASSERT_GE(texts.size(), row.verb == Verb::log ? 2U : 1U);
        EXPECT_EQ(texts.front(), "TraceNet: inside");
        const std::string& text = row.verb == Verb::log ? texts.back() : returned;
        const std::string end = row.form == Form::finished ? "100% %d %@" : "3 of box";
        EXPECT_GE(text.size(), end.size());
        EXPECT_EQ(text.substr(text.size() - std::min(text.size(), end.size())), end);
    });
    EXPECT_TRUE(logtest::anotherThreadCanTakeTheMonitor());
}

TEST(LogFamilies, letADescriptionReadTheTraceKeysAgain) {
    TraceKeys keys(settings);
    const ReadsTheKeysAgain object;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        const NSString returned = row.perform(call);
        EXPECT_EQ(output.texts().size(), row.verb == Verb::log ? 1U : 0U);
        EXPECT_EQ(static_cast<bool>(returned), row.verb == Verb::logString);
    });
    EXPECT_TRUE(logtest::anotherThreadCanTakeTheMonitor());
    // The condition held when it was checked: what the description reads comes too late for its own line.
    keys.replace({});
    output.clear();
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@ %d", object, 1);
    ZQLog::logForTraceKey_usingFormat("TraceNet", "%@ %d", object, 2);
    EXPECT_EQ(output.texts(), Texts{"TraceNet: box 1"});
}

TEST(LogFamilies, letADescriptionRaiseAndKeepNoLockFromOtherThreads) {
    const TraceKeys keys(settings);
    const Raises object;
    const CountingItem item;
    CapturedOutput output;
    forEachUseOf(object, [&](const Row& row, const Call& call) {
        output.clear();
        EXPECT_EQ(TestValues::raised([&] { row.perform(call); }), "Inside");
        EXPECT_EQ(output.bytes(), "");
        EXPECT_TRUE(logtest::anotherThreadCanTakeTheMonitor());
        ZQLog::log("after");
        EXPECT_EQ(output.texts(), Texts{"after"});
    });
}
