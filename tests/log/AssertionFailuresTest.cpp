// SPDX-License-Identifier: MIT
// What an assertion failure leaves in the log and raises, for every kind of object and every nil.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "log/NSAssertionHandler.h"
#include "tests/log/LogTestSupport.h"
#include "tests/objects/TestValues.h"

using namespace ZQFoundation;
using TestValues::utf8Of;

namespace {

using Lines = std::vector<std::string>;

struct Store {
    int items = 0;
};

class Shelf {
public:
    virtual ~Shelf() = default;
};

class DeepShelf : public Shelf {};

namespace nested {
struct Inner {};
} // namespace nested

class Registered : public NSObjectProtocol {
public:
    NSString className() const override { return "Registered"; }
};

class OfNoClass : public NSObjectProtocol {
public:
    NSString className() const override { return nullptr; }
};

const NSAssertionHandler& handler() { return NSAssertionHandler::currentHandler(); }

/// What was raised and what was written before.
struct Outcome {
    std::string name = "nothing";
    std::string reason;
    Lines lines;
};

template <class Action>
Outcome outcomeOf(const Action& action) {
    Outcome outcome;
    const logtest::CapturedOutput output;
    try {
        action();
    } catch (const NSException& exception) {
        outcome.name = utf8Of(exception.name());
        outcome.reason = utf8Of(exception.reason());
    }
    outcome.lines = output.texts();
    return outcome;
}

template <class... Arguments>
Outcome failInFunction(StringView function, StringView file, std::int64_t line, const NSString& name,
                       FormatString<std::type_identity_t<Arguments>...> format,
                       const Arguments&... arguments) {
    return outcomeOf([&] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description(
            function, file, line, name, format, arguments...);
    });
}

Outcome failInMethod(StringView method, const LogCaller& object, StringView file = "Store.m",
                     std::int64_t line = 10) {
    return outcomeOf([&] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
            method, object, file, line, "BadStore", "%d bad", 7);
    });
}

/// Says what the log held when its description was asked for.
class Witness : public NSObjectProtocol {
public:
    explicit Witness(const logtest::CapturedOutput& output) : output_(output) {}
    NSString description() const override {
        seen = output_.texts();
        return "witnessed";
    }
    mutable Lines seen;

private:
    const logtest::CapturedOutput& output_;
};

class Raising : public NSObjectProtocol {
public:
    NSString description() const override { throw NSException("Undescribable", "no description"); }
};

} // namespace

TEST(AssertionFailures, writeAndRaiseForAFunction) {
    const Outcome outcome = failInFunction("parse", "/src/lib/parse.c", 42, "BadInput", "%d bad", 7);
    EXPECT_EQ(outcome.lines, Lines{"*** Assertion failure in parse(), parse.c:42"});
    EXPECT_EQ(outcome.name, "BadInput");
    EXPECT_EQ(outcome.reason, "7 bad");
}

TEST(AssertionFailures, nameFunctionFileAndLine) {
    struct Row {
        StringView function;
        StringView file;
        std::int64_t line;
        const char* text;
    };
    for (const Row& row : {
             Row{"parse", "parse.c", 0, "*** Assertion failure in parse(), parse.c:0"},
             Row{"parse", "/src//lib/", -1, "*** Assertion failure in parse(), lib:-1"},
             Row{"f", "/", INT64_MAX, "*** Assertion failure in f(), /:9223372036854775807"},
             Row{"f", "", INT64_MIN, "*** Assertion failure in f(), :-9223372036854775808"},
             Row{"", "a.c", 1, "*** Assertion failure in (), a.c:1"},
             // Unlike the caller of a log line, a name with a colon is no path and keeps its "()".
             Row{"-[Foo bar:]", "a.c", 1, "*** Assertion failure in -[Foo bar:](), a.c:1"},
             Row{"a/b:c", "a.c", 1, "*** Assertion failure in a/b:c(), a.c:1"},
             Row{"operator%", "%d/%@.c", 1, "*** Assertion failure in operator%(), %@.c:1"},
             Row{"l\xC3\xB6sche", "gr\xC3\xBC\xC3\x9F.c", 1,
                 "*** Assertion failure in l\xC3\xB6sche(), gr\xC3\xBC\xC3\x9F.c:1"},
             Row{nullptr, "a.c", 1, "*** Assertion failure in (null)(), a.c:1"},
             Row{"f", nullptr, 1, "*** Assertion failure in f(), (null):1"},
         }) {
        EXPECT_EQ(failInFunction(row.function, row.file, row.line, "Bad", "x").lines, Lines{row.text});
    }
}

TEST(AssertionFailures, writeAndRaiseForAMethodOfAnInstance) {
    const Store store;
    const Outcome outcome = failInMethod("reload:", &store, "/src/Store.m");
    EXPECT_EQ(outcome.lines, Lines{"*** Assertion failure in -[Store reload:], Store.m:10"});
    EXPECT_EQ(outcome.name, "BadStore");
    EXPECT_EQ(outcome.reason, "7 bad");
}

TEST(AssertionFailures, signAClassByPlus) {
    const Outcome outcome = failInMethod("reload:", classOf<Store>());
    EXPECT_EQ(outcome.lines, Lines{"*** Assertion failure in +[Store reload:], Store.m:10"});
    EXPECT_EQ(outcome.name, "BadStore");
    EXPECT_EQ(outcome.reason, "7 bad");
}

TEST(AssertionFailures, signByWhetherAnObjectIsItsOwnClass) {
    const DeepShelf deep;
    const Shelf& shelf = deep;
    const nested::Inner inner;
    const Registered registered;
    const OfNoClass unknown;
    const void* const untyped = &inner;
    const Class innerClass = classOf<nested::Inner>(); // a caller looks at it and does not keep it
    struct Row {
        LogCaller object;
        const char* text;
    };
    for (const Row& row : {
             Row{&shelf, "*** Assertion failure in -[DeepShelf m], Store.m:10"},
             Row{&inner, "*** Assertion failure in -[Inner m], Store.m:10"},
             Row{innerClass, "*** Assertion failure in +[Inner m], Store.m:10"},
             Row{&registered, "*** Assertion failure in -[Registered m], Store.m:10"},
             // No class is not the object itself.
             Row{&unknown, "*** Assertion failure in -[(null) m], Store.m:10"},
             Row{untyped, "*** Assertion failure in -[(null) m], Store.m:10"},
             // The class of nil is nil: its own class, as far as the test can see.
             Row{nullptr, "*** Assertion failure in +[(null) m], Store.m:10"},
             Row{static_cast<const Store*>(nullptr), "*** Assertion failure in +[(null) m], Store.m:10"},
         }) {
        EXPECT_EQ(failInMethod("m", row.object).lines, Lines{row.text});
    }
}

TEST(AssertionFailures, showAbsentNamesOfAMethod) {
    const Store store;
    EXPECT_EQ(failInMethod(nullptr, &store).lines,
              Lines{"*** Assertion failure in -[Store (null)], Store.m:10"});
    EXPECT_EQ(failInMethod(nullptr, nullptr, nullptr, -3).lines,
              Lines{"*** Assertion failure in +[(null) (null)], (null):-3"});
    EXPECT_EQ(failInMethod("", &store, "").lines, Lines{"*** Assertion failure in -[Store ], :10"});
    EXPECT_EQ(failInMethod("%@:", &store, "/a/%d").lines,
              Lines{"*** Assertion failure in -[Store %@:], %d:10"});
}

TEST(AssertionFailures, doNotReadTheDescriptionAgainAsAFormat) {
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "%@", "100% %@ %d %n %%").reason, "100% %@ %d %n %%");
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "100%%d").reason, "100%d");
    const Outcome outcome = outcomeOf([] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
            "m", classOf<Store>(), "a.c", 1, "Bad", "%d%% of %@", 50, "%@");
    });
    EXPECT_EQ(outcome.reason, "50% of %@");
}

TEST(AssertionFailures, keepTheDescriptionOutOfTheLog) {
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "secret\nlines").lines,
              Lines{"*** Assertion failure in f(), a.c:1"});
}

TEST(AssertionFailures, passANilNameOn) {
    const Outcome inFunction = failInFunction("f", "a.c", 1, nullptr, "%d bad", 7);
    EXPECT_EQ(inFunction.name, "(nil)");
    EXPECT_EQ(inFunction.reason, "7 bad");
    EXPECT_EQ(inFunction.lines.size(), 1u);
    const Outcome inMethod = outcomeOf([] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
            "m", classOf<Store>(), "a.c", 1, nullptr, "x");
    });
    EXPECT_EQ(inMethod.name, "(nil)");
    EXPECT_EQ(inMethod.reason, "x");
    EXPECT_EQ(inMethod.lines.size(), 1u);
    EXPECT_EQ(failInFunction("f", "a.c", 1, "", "x").name, "");
}

TEST(AssertionFailures, writeTheLineBeforeTheDescriptionIsMade) {
    const logtest::CapturedOutput output;
    const Witness witness(output);
    EXPECT_THROW(handler().handleFailureInFunction_file_lineNumber_exceptionName_description(
                     "f", "a.c", 1, "Bad", "%@", witness),
                 NSException);
    EXPECT_EQ(witness.seen, Lines{"*** Assertion failure in f(), a.c:1"});
    EXPECT_THROW(handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
                     "m", classOf<Store>(), "a.c", 2, "Bad", "%@", witness),
                 NSException);
    EXPECT_EQ(witness.seen,
              (Lines{"*** Assertion failure in f(), a.c:1", "*** Assertion failure in +[Store m], a.c:2"}));
}

TEST(AssertionFailures, leaveTheLineEvenWhenTheDescriptionRaises) {
    const Outcome outcome = failInFunction("f", "a.c", 1, "Bad", "%@", Raising());
    EXPECT_EQ(outcome.lines, Lines{"*** Assertion failure in f(), a.c:1"});
    EXPECT_EQ(outcome.name, "Undescribable");
}

TEST(AssertionFailures, leaveTheLineWhenThereIsNoFormat) {
    const Outcome inFunction = outcomeOf([] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description_arguments(
            "f", "a.c", 1, "Bad", nullptr, ArgumentList());
    });
    EXPECT_EQ(inFunction.lines, Lines{"*** Assertion failure in f(), a.c:1"});
    EXPECT_EQ(inFunction.name, "NSInvalidArgumentException");
    const Outcome inMethod = outcomeOf([] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description_arguments(
            "m", nullptr, "a.c", 1, "Bad", nullptr, ArgumentList());
    });
    EXPECT_EQ(inMethod.lines, Lines{"*** Assertion failure in +[(null) m], a.c:1"});
    EXPECT_EQ(inMethod.name, "NSInvalidArgumentException");
}

TEST(AssertionFailures, reachTheLogWhenNobodyCatches) {
    const logtest::CapturedOutput output;
    const pid_t child = ::fork();
    if (child == 0) {
        [&]() noexcept {
            handler().handleFailureInFunction_file_lineNumber_exceptionName_description("f", "a.c", 1, "Bad",
                                                                                        "x");
        }();
        scene::leave(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_FALSE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_NE(output.bytes().find("] *** Assertion failure in f(), a.c:1\n"), std::string::npos);
}

TEST(AssertionFailures, writeWhateverTheTraceKeys) {
    const logtest::TraceKeys none({{"TraceIO", "<false/>"}});
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "x").lines.size(), 1u);
}

TEST(AssertionFailures, standBesideTheHandlersOfThePlatform) {
    const Outcome inFunction = outcomeOf(
        [] { handler().handleFailureInFunction_file_lineNumber_description("f", "a.c", 1, "%d bad", 7); });
    EXPECT_EQ(inFunction.name, "NSInternalInconsistencyException");
    EXPECT_EQ(inFunction.reason, "7 bad");
    const Outcome inMethod = outcomeOf([] {
        handler().handleFailureInMethod_object_file_lineNumber_description("m", classOf<Store>(), "a.c", 1,
                                                                           "%d bad", 7);
    });
    EXPECT_EQ(inMethod.name, "NSInternalInconsistencyException");
    EXPECT_EQ(inMethod.reason, "7 bad");
}

TEST(AssertionFailures, haveANameForOperationsThatMustBeOverridden) {
    EXPECT_STREQ(ZQMustOverrideMethodException, "ZQMustOverrideMethodException");
    EXPECT_EQ(failInFunction("f", "a.c", 1, ZQMustOverrideMethodException, "x").name,
              "ZQMustOverrideMethodException");
}
