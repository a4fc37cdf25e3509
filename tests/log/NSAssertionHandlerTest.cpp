// SPDX-License-Identifier: MIT
// What a failed assertion logs and raises.
#include "log/NSAssertionHandler.h"

#include <exception>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/log/LogTestSupport.h"

using namespace ZQFoundation;

namespace {

using Texts = std::vector<std::string>;

struct Store {
    void reload(int count) const { ZQAssertInMethod(count < 5, this, "BadCount", "%d of %d", count, 5); }
    static void shared() { ZQAssertInMethod(false, classOf<Store>(), "BadClass", "%@", "none"); }
};

class Named : public NSObjectProtocol {
public:
    NSString className() const override { return "Registered"; }
};

class OfUnknownClass : public NSObjectProtocol {
public:
    NSString className() const override { return nullptr; }
};

NSAssertionHandler& handler() { return NSAssertionHandler::currentHandler(); }

/// What the failing operation raises; a failure of the test when it returns.
template <class Operation>
NSException raisedBy(const Operation& operation) {
    try {
        operation();
    } catch (const NSException& exception) {
        return exception;
    }
    ADD_FAILURE() << "nothing was raised";
    return NSException(nullptr, nullptr);
}

std::string utf8(const NSString& text) { return text ? text.utf8() : "(nil)"; }

struct FunctionRow {
    StringView function;
    StringView file;
    std::int64_t line;
    const char* text;
};

TEST(NSAssertionHandler, namesFunctionLastPathComponentAndLine) {
    const FunctionRow rows[] = {
        {"parse", "/src/lib/parse.c", 42, "*** Assertion failure in parse(), parse.c:42"},
        {"parse", "parse.c", 0, "*** Assertion failure in parse(), parse.c:0"},
        {"", "/", -1, "*** Assertion failure in (), /:-1"},
        {"f%d", "/a/%@.c", INT64_MAX, "*** Assertion failure in f%d(), %@.c:9223372036854775807"},
        {nullptr, nullptr, 1, "*** Assertion failure in (null)(), (null):1"},
        {"caf\u00E9", "/x/\u65E5.cpp/", INT64_MIN,
         "*** Assertion failure in caf\u00E9(), \u65E5.cpp:-9223372036854775808"},
    };
    for (const FunctionRow& row : rows) {
        const logtest::CapturedOutput output;
        const NSException exception = raisedBy([&] {
            handler().handleFailureInFunction_file_lineNumber_exceptionName_description(
                row.function, row.file, row.line, "BadInput", "%d bad", 7);
        });
        EXPECT_EQ(output.texts(), Texts{row.text});
        EXPECT_EQ(utf8(exception.name()), "BadInput");
        EXPECT_EQ(utf8(exception.reason()), "7 bad");
        EXPECT_STREQ(exception.what(), "BadInput: 7 bad");
    }
}

TEST(NSAssertionHandler, givesClassesAPlusAndNeverAnAddress) {
    const Store store;
    const Named named;
    const OfUnknownClass unknown;
    const NSObject value = "text";
    const NSObject absent;
    const NSObject ownClass = classOf<Store>();
    const struct {
        LogCaller object;
        const char* text;
    } rows[] = {
        {&store, "*** Assertion failure in -[Store reload:], Store.m:10"},
        {ownClass, "*** Assertion failure in +[Store reload:], Store.m:10"},
        {&named, "*** Assertion failure in -[Registered reload:], Store.m:10"},
        {&unknown, "*** Assertion failure in -[(null) reload:], Store.m:10"},
        {value, "*** Assertion failure in -[NSString reload:], Store.m:10"},
        // Nothing, asked for its class, answers nothing: itself.
        {nullptr, "*** Assertion failure in +[(null) reload:], Store.m:10"},
        {absent, "*** Assertion failure in +[(null) reload:], Store.m:10"},
        {static_cast<const void*>(&store), "*** Assertion failure in -[(null) reload:], Store.m:10"},
    };
    for (const auto& row : rows) {
        const logtest::CapturedOutput output;
        const NSException exception = raisedBy([&] {
            handler().handleFailureInMethod_object_file_lineNumber_exceptionName_description(
                "reload:", row.object, "Store.m", 10, "Broken", "why");
        });
        EXPECT_EQ(output.texts(), Texts{row.text});
        EXPECT_EQ(utf8(exception.name()), "Broken");
        EXPECT_EQ(utf8(exception.reason()), "why");
    }
}

TEST(NSAssertionHandler, doesNotReadTheDescriptionAgainAsAFormat) {
    const logtest::CapturedOutput output;
    for (const char* const text : {"100%", "%@ %d %n", "%s%s%s"}) {
        const NSException exception = raisedBy([&] {
            handler().handleFailureInFunction_file_lineNumber_exceptionName_description("f", "f.c", 1, "N",
                                                                                        "%@", text);
        });
        EXPECT_EQ(utf8(exception.reason()), text);
    }
}

TEST(NSAssertionHandler, passesANilNameOn) {
    const logtest::CapturedOutput output;
    const NSException exception = raisedBy([] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description("f", "f.c", 1, nullptr,
                                                                                    "reason");
    });
    EXPECT_FALSE(exception.name());
    EXPECT_EQ(utf8(exception.reason()), "reason");
}

TEST(NSAssertionHandler, writesTheLineBeforeTheDescriptionIsFormatted) {
    class Describing : public NSObjectProtocol {
    public:
        NSString description() const override {
            ZQLog::logAlways_log(true, "described");
            return "d";
        }
    };
    const Describing describing;
    const logtest::CapturedOutput output;
    raisedBy([&] {
        handler().handleFailureInFunction_file_lineNumber_exceptionName_description("f", "f.c", 1, "N", "%@",
                                                                                    describing);
    });
    EXPECT_EQ(output.texts(), (Texts{"*** Assertion failure in f(), f.c:1", "described"}));
}

TEST(NSAssertionHandler, ofThePlatformRaisesAnInconsistency) {
    const logtest::CapturedOutput output;
    const NSException inFunction = raisedBy(
        [] { handler().handleFailureInFunction_file_lineNumber_description("f", "f.c", 1, "%d", 1); });
    const NSException inMethod = raisedBy([] {
        handler().handleFailureInMethod_object_file_lineNumber_description("m", classOf<Store>(), "f.c", 2,
                                                                           "%d", 2);
    });
    EXPECT_EQ(utf8(inFunction.name()), NSInternalInconsistencyException);
    EXPECT_EQ(utf8(inMethod.reason()), "2");
    EXPECT_EQ(output.texts(),
              (Texts{"*** Assertion failure in f(), f.c:1", "*** Assertion failure in +[Store m], f.c:2"}));
}

TEST(NSAssertionHandler, isCaughtAsAStandardException) {
    const logtest::CapturedOutput output;
    bool isCaught = false;
    try {
        ZQAssert(false, "BadInput", "%d bad", 7);
    } catch (const std::exception& exception) {
        isCaught = true;
        EXPECT_STREQ(exception.what(), "BadInput: 7 bad");
    }
    EXPECT_TRUE(isCaught);
}

TEST(ZQAssert, suppliesFunctionFileAndLine) {
    const logtest::CapturedOutput output;
    const int line = __LINE__ + 1;
    const NSException exception = raisedBy([] { ZQAssert(1 > 2, "BadOrder", "%d", 3); });
    std::string expected = "*** Assertion failure in operator()(), NSAssertionHandlerTest.cpp:";
    EXPECT_EQ(output.texts(), Texts{expected.append(std::to_string(line))});
    EXPECT_EQ(utf8(exception.reason()), "3");
}

TEST(ZQAssert, namesTheClassInAMethod) {
    const logtest::CapturedOutput output;
    const NSException ofInstance = raisedBy([] { Store().reload(7); });
    const NSException ofClass = raisedBy([] { Store::shared(); });
    EXPECT_EQ(utf8(ofInstance.reason()), "7 of 5");
    EXPECT_EQ(utf8(ofClass.name()), "BadClass");
    const Texts texts = output.texts();
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0].substr(0, 64), "*** Assertion failure in -[Store reload], NSAssertionHandlerTest");
    EXPECT_EQ(texts[1].substr(0, 64), "*** Assertion failure in +[Store shared], NSAssertionHandlerTest");
}

TEST(ZQAssert, evaluatesNothingElseWhileTheConditionHolds) {
    int evaluations = 0;
    const auto argument = [&evaluations] {
        return ++evaluations;
    };
    const logtest::CapturedOutput output;
    ZQAssert(true, "Name", "%d", argument());
    if (evaluations == 0)
        ZQAssert(argument() == 1, "Name", "in a branch without braces");
    else
        ADD_FAILURE() << "the argument was evaluated";
    EXPECT_EQ(evaluations, 1) << "the condition once";
    EXPECT_EQ(output.bytes(), "");
}

TEST(ZQMustOverrideMethodException, isItsOwnName) {
    EXPECT_EQ(NSString(ZQMustOverrideMethodException), "ZQMustOverrideMethodException");
}

} // namespace
