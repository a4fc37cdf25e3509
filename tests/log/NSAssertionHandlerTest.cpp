// SPDX-License-Identifier: MIT
// What a failed assertion logs and raises, for every kind of object and every nil.
#include "log/NSAssertionHandler.h"

#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::utf8Of;
using logscene::Texts;

namespace {

struct Vault {
    void reload(int count) const { ZQAssertInMethod(count < 5, this, "BadCount", "%d of %d", count, 5); }
    static void shared() { ZQAssertInMethod(false, classOf<Vault>(), "BadClass", "%@", "none"); }
};

struct Shelf {
    virtual ~Shelf() = default;
};

struct DeepShelf : Shelf {};

class Named : public NSObjectProtocol {
public:
    explicit Named(NSString name) : name_(name) {}
    NSString className() const override { return name_; }

private:
    NSString name_;
};

/// A host object whose description does something first.
class ActsWhenDescribed : public NSObjectProtocol {
public:
    explicit ActsWhenDescribed(void (*action)()) : action_(action) {}
    NSString description() const override {
        action_();
        return "described";
    }

private:
    void (*action_)();
};

const NSAssertionHandler& handler() { return NSAssertionHandler::currentHandler(); }

/// The lines that the action writes, and at the end what it raises, as "name: reason".
template <class Action>
Texts outcomeOf(const Action& action) {
    const kit::CapturedOutput output;
    std::string raised = "nothing";
    try {
        action();
    } catch (const NSException& exception) {
        raised = utf8Of(exception.name()) + ": " + utf8Of(exception.reason());
    }
    Texts outcome = output.texts();
    outcome.push_back(raised);
    return outcome;
}

template <class... Arguments>
Texts failInFunction(StringView function, StringView file, std::int64_t line, const NSString& name,
                     FormatString<std::type_identity_t<Arguments>...> format, const Arguments&... arguments) {
    return outcomeOf([&] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description(
            function, file, line, name, format, arguments...);
    });
}

template <class... Arguments>
Texts failInMethod(StringView method, const LogCaller& object, StringView file, std::int64_t line,
                   const NSString& name, FormatString<std::type_identity_t<Arguments>...> format,
                   const Arguments&... arguments) {
    return outcomeOf([&] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
            method, object, file, line, name, format, arguments...);
    });
}

Texts outcome(const std::string& place, const std::string& raised) {
    return {"*** Assertion failure in " + place, raised};
}

TEST(NSAssertionHandler, namesFunctionLastPathComponentAndLine) {
    const struct {
        StringView function;
        StringView file;
        std::int64_t line;
        const char* place;
    } rows[] = {
        {"parse", "/src/lib/parse.c", 42, "parse(), parse.c:42"},
        {"parse", "parse.c", 0, "parse(), parse.c:0"},
        {"parse", "/src//lib/", -1, "parse(), lib:-1"},
        {"f", "/", INT64_MAX, "f(), /:9223372036854775807"},
        {"f", "", INT64_MIN, "f(), :-9223372036854775808"},
        {"", "a.c", 1, "(), a.c:1"},
        // Unlike the caller of a log line, a name with a colon is not a path and keeps its "()".
        {"-[Foo bar:]", "a.c", 1, "-[Foo bar:](), a.c:1"},
        {"a/b:c", "a.c", 1, "a/b:c(), a.c:1"},
        {"operator%", "%d/%@.c", 1, "operator%(), %@.c:1"},
        {"caf\u00E9", "/x/\u65E5.cpp/", 1, "caf\u00E9(), \u65E5.cpp:1"},
        {nullptr, "a.c", 1, "(null)(), a.c:1"},
        {"f", nullptr, 1, "f(), (null):1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(failInFunction(row.function, row.file, row.line, "BadInput", "%d bad", 7),
                  outcome(row.place, "BadInput: 7 bad"));
    }
}

TEST(NSAssertionHandler, givesClassesAPlusAndNeverAnAddress) {
    const Vault store;
    const DeepShelf deep;
    const Named named("Registered");
    const Named unknown(nullptr); // of no class, which is not the object itself
    const NSObject value = "text";
    const NSObject absent;
    const NSObject ownClass = classOf<Vault>();
    const struct {
        LogCaller object;
        const char* place;
    } rows[] = {
        {&store, "-[Vault reload:], Store.m:10"},
        {ownClass, "+[Vault reload:], Store.m:10"},
        {static_cast<const Shelf*>(&deep), "-[DeepShelf reload:], Store.m:10"},
        {&named, "-[Registered reload:], Store.m:10"},
        {&unknown, "-[(null) reload:], Store.m:10"},
        {static_cast<const void*>(&store), "-[(null) reload:], Store.m:10"},
        {value, "-[NSString reload:], Store.m:10"},
        // The class of nil is nil: its own class, as far as the check can see.
        {nullptr, "+[(null) reload:], Store.m:10"},
        {absent, "+[(null) reload:], Store.m:10"},
        {static_cast<const Vault*>(nullptr), "+[(null) reload:], Store.m:10"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(failInMethod("reload:", row.object, "/src/Store.m", 10, "BadStore", "%d bad", 7),
                  outcome(row.place, "BadStore: 7 bad"));
    }
}

TEST(NSAssertionHandler, showsAbsentNamesOfAMethod) {
    const Vault store;
    EXPECT_EQ(failInMethod(nullptr, &store, "a.c", 1, "B", "x"), outcome("-[Vault (null)], a.c:1", "B: x"));
    EXPECT_EQ(failInMethod(nullptr, nullptr, nullptr, -3, "B", "x"),
              outcome("+[(null) (null)], (null):-3", "B: x"));
    EXPECT_EQ(failInMethod("", &store, "", 1, "B", "x"), outcome("-[Vault ], :1", "B: x"));
    EXPECT_EQ(failInMethod("%@:", &store, "/a/%d", 1, "B", "x"), outcome("-[Vault %@:], %d:1", "B: x"));
}

TEST(NSAssertionHandler, doesNotReadTheDescriptionAgainAsAFormat) {
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "%@", "100% %@ %d %n %%")[1], "Bad: 100% %@ %d %n %%");
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "100%%d")[1], "Bad: 100%d");
    EXPECT_EQ(failInMethod("m", classOf<Vault>(), "a.c", 1, "Bad", "%d%% of %@", 50, "%@")[1],
              "Bad: 50% of %@");
}

TEST(NSAssertionHandler, passesANilNameOn) {
    EXPECT_EQ(failInFunction("f", "a.c", 1, nullptr, "%d", 7), outcome("f(), a.c:1", "(nil): 7"));
    EXPECT_EQ(failInMethod("m", classOf<Vault>(), "a.c", 1, nullptr, "x"),
              outcome("+[Vault m], a.c:1", "(nil): x"));
    EXPECT_EQ(failInFunction("f", "a.c", 1, "", "x"), outcome("f(), a.c:1", ": x"));
}

TEST(NSAssertionHandler, writesTheLineBeforeTheDescriptionIsMade) {
    const ActsWhenDescribed logging([] { ZQLog::log("describing"); });
    const ActsWhenDescribed raising([] { throw NSException("Undescribable", "no description"); });
    const std::string line = "*** Assertion failure in f(), a.c:1";
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "%@", logging),
              (Texts{line, "describing", "Bad: described"}));
    EXPECT_EQ(failInMethod("m", nullptr, "a.c", 1, "Bad", "%@", logging),
              (Texts{"*** Assertion failure in +[(null) m], a.c:1", "describing", "Bad: described"}));
    EXPECT_EQ(failInFunction("f", "a.c", 1, "Bad", "%@", raising),
              (Texts{line, "Undescribable: no description"}));
}

TEST(NSAssertionHandler, leavesTheLineWhenThereIsNoFormat) {
    const Texts inFunction = outcomeOf([] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description_arguments(
            "f", "a.c", 1, "Bad", nullptr, ArgumentList());
    });
    const Texts inMethod = outcomeOf([] {
        handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description_arguments(
            "m", nullptr, "a.c", 1, "Bad", nullptr, ArgumentList());
    });
    EXPECT_EQ(inFunction[0], "*** Assertion failure in f(), a.c:1");
    EXPECT_EQ(inMethod[0], "*** Assertion failure in +[(null) m], a.c:1");
    EXPECT_TRUE(inFunction[1].starts_with("NSInvalidArgumentException: ")) << inFunction[1];
    EXPECT_TRUE(inMethod[1].starts_with("NSInvalidArgumentException: ")) << inMethod[1];
}

TEST(NSAssertionHandler, reachesTheLogWhenNobodyCatchesWhateverTheTraceKeys) {
    const kit::TraceKeys none({{"TraceIO", "<false/>"}});
    const kit::CapturedOutput output;
    const auto fail = []() noexcept {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description("f", "a.c", 1, "Bad",
                                                                                    "x");
    };
    EXPECT_NE(kit::inChild(fail), 0);
    EXPECT_NE(output.bytes().find("] *** Assertion failure in f(), a.c:1\n"), std::string::npos);
}

TEST(NSAssertionHandler, ofThePlatformRaisesAnInconsistency) {
    EXPECT_EQ(outcomeOf([] {
                  handler().handleFailureInFunction_file_lineNumber_description("f", "f.c", 1, "%d", 1);
              }),
              outcome("f(), f.c:1", "NSInternalInconsistencyException: 1"));
    EXPECT_EQ(outcomeOf([] {
                  handler().handleFailureInMethod_object_file_lineNumber_description("m", classOf<Vault>(),
                                                                                     "f.c", 2, "%d", 2);
              }),
              outcome("+[Vault m], f.c:2", "NSInternalInconsistencyException: 2"));
}

TEST(ZQAssert, suppliesFunctionFileAndLine) {
    const int line = __LINE__ + 1;
    EXPECT_EQ(outcomeOf([] { ZQAssert(1 > 2, "BadOrder", "%d", 3); }),
              outcome("operator()(), NSAssertionHandlerTest.cpp:" + std::to_string(line), "BadOrder: 3"));
}

TEST(ZQAssert, namesTheClassInAMethod) {
    const Texts ofInstance = outcomeOf([] { Vault().reload(7); });
    const Texts ofClass = outcomeOf([] { Vault::shared(); });
    EXPECT_EQ(ofInstance[0].substr(0, 64),
              "*** Assertion failure in -[Vault reload], NSAssertionHandlerTest");
    EXPECT_EQ(ofClass[0].substr(0, 64), "*** Assertion failure in +[Vault shared], NSAssertionHandlerTest");
    EXPECT_EQ(ofInstance[1], "BadCount: 7 of 5");
    EXPECT_EQ(ofClass[1], "BadClass: none");
}

TEST(ZQAssert, isCaughtAsAStandardException) {
    const kit::CapturedOutput output;
    std::string what;
    try {
        ZQAssert(false, "BadInput", "%d bad", 7);
    } catch (const std::exception& exception) {
        what = exception.what();
    }
    EXPECT_EQ(what, "BadInput: 7 bad");
}

TEST(ZQAssert, evaluatesNothingElseWhileTheConditionHolds) {
    int evaluations = 0;
    const auto argument = [&evaluations] {
        return ++evaluations;
    };
    const kit::CapturedOutput output;
    ZQAssert(true, "Name", "%d", argument());
    if (evaluations == 0)
        ZQAssert(argument() == 1, "Name", "in a branch without braces");
    else
        ADD_FAILURE() << "the argument was evaluated";
    EXPECT_EQ(evaluations, 1) << "the condition once";
    EXPECT_EQ(output.bytes(), "");
}

TEST(ZQMustOverrideMethodException, isItsOwnName) {
    EXPECT_STREQ(ZQMustOverrideMethodException, "ZQMustOverrideMethodException");
}

} // namespace
