// SPDX-License-Identifier: MIT
// Classes found by their names at run time, and operations called by theirs.
#include <string>

#include <gtest/gtest.h>

#include "foundation/objects/ClassesByName.h"
#include "tests/kit/Threads.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using kit::raised;

namespace {

/// Answers its own name, and with an argument the argument.
class Echo : public NSObjectProtocol {
public:
    explicit Echo(const char* name, int* ended = nullptr) : name_(name), ended_(ended) {}
    ~Echo() override {
        if (ended_ != nullptr) {
            ++*ended_;
        }
    }
    bool respondsToSelector(const Selector& selector) const override {
        return selector == "name" || selector == "echo:";
    }
    NSObject performSelector_withObject(const Selector& selector, const NSObject& argument) override {
        return selector == "name" ? NSObject(name_) : argument;
    }

private:
    NSString name_;
    int* ended_;
};

NSObject echo(const char* name, int* ended = nullptr) { return makeObject<Echo>(name, ended); }

std::string registeredName(StringView className) {
    const Class found = NSClassFromString(className);
    return found ? NSString(found.performSelector(NSSelectorFromString("name"))).utf8() : "(nil)";
}

class Unregistered : public NSObjectProtocol {};

} // namespace

TEST(ClassesByName, areNilForNilEmptyAndUnknownNames) {
    EXPECT_FALSE(NSClassFromString(nullptr));
    EXPECT_FALSE(NSClassFromString(""));
    EXPECT_FALSE(NSClassFromString("NoSuchClassAnywhere"));
    EXPECT_FALSE(NSClassFromString("NSWorkspace"));
    EXPECT_FALSE(NSClassFromString("SomeClass"));
}

TEST(ClassesByName, areThereWhileTheyAreRegistered) {
    {
        const ClassRegistration registration("ZQTestClass", echo("first"));
        EXPECT_EQ(registeredName("ZQTestClass"), "first");
        EXPECT_EQ(registeredName(u"ZQTestClass"), "first");
    }
    EXPECT_EQ(registeredName("ZQTestClass"), "(nil)");
}

TEST(ClassesByName, areCaseSensitiveAndWhole) {
    const ClassRegistration registration("ZQTestClass", echo("first"));
    for (const char* name : {"zqtestclass", "ZQTestClas", "ZQTestClassX", "ZQTestClass ", ":ZQTestClass"}) {
        EXPECT_FALSE(NSClassFromString(name)) << name;
    }
}

TEST(ClassesByName, knowTheirNames) {
    const ClassRegistration registration("ZQTestClass", echo("first"));
    const Class found = NSClassFromString("ZQTestClass");
    EXPECT_EQ(NSStringFromClass(found), "ZQTestClass");
    EXPECT_EQ(found.className(), "ZQTestClass");
    EXPECT_FALSE(NSStringFromClass(nullptr));
}

TEST(ClassesByName, areTheLatestOfTheirNameUntilItEnds) {
    const ClassRegistration first("ZQTestClass", echo("first"));
    {
        const ClassRegistration second("ZQTestClass", echo("second"));
        const ClassRegistration other("ZQOtherClass", echo("other"));
        EXPECT_EQ(registeredName("ZQTestClass"), "second");
        EXPECT_EQ(registeredName("ZQOtherClass"), "other");
    }
    EXPECT_EQ(registeredName("ZQTestClass"), "first");
    EXPECT_EQ(registeredName("ZQOtherClass"), "(nil)");
}

TEST(ClassesByName, mayEndInAnyOrder) {
    auto* const first = new ClassRegistration("ZQTestClass", echo("first"));
    auto* const second = new ClassRegistration("ZQTestClass", echo("second"));
    delete first;
    EXPECT_EQ(registeredName("ZQTestClass"), "second");
    delete second;
    EXPECT_EQ(registeredName("ZQTestClass"), "(nil)");
}

TEST(ClassesByName, areNotRegisteredWithoutAName) {
    const ClassRegistration unnamed(nullptr, echo("x"));
    const ClassRegistration empty("", echo("x"));
    EXPECT_FALSE(NSClassFromString(""));
    EXPECT_FALSE(NSClassFromString(nullptr));
}

TEST(ClassesByName, releaseTheirObjectsWithTheirScope) {
    int ended = 0;
    {
        const ClassRegistration registration("ZQTestClass", echo("first", &ended));
        EXPECT_EQ(ended, 0);
    }
    EXPECT_EQ(ended, 1);
}

TEST(ClassesByName, answerOnlyWhatTheirObjectOffers) {
    const ClassRegistration registration("ZQTestClass", echo("first"));
    const Class found = NSClassFromString("ZQTestClass");
    EXPECT_TRUE(found.respondsToSelector(NSSelectorFromString("name")));
    EXPECT_FALSE(found.respondsToSelector(NSSelectorFromString("names")));
    EXPECT_EQ(raised([&] { found.performSelector(NSSelectorFromString("names")); }),
              "NSInvalidArgumentException");
}

TEST(ClassesByName, areFoundFromManyThreads) {
    const ClassRegistration steady("ZQSteadyClass", echo("steady"));
    kit::inThreads(4, [](std::size_t number) {
        const std::string name = "ZQPassingClass" + std::to_string(number);
        for (int turn = 0; turn < 500; ++turn) {
            const ClassRegistration passing(name, echo("passing"));
            EXPECT_EQ(registeredName(name), "passing");
            EXPECT_EQ(registeredName("ZQSteadyClass"), "steady");
        }
    });
    EXPECT_EQ(registeredName("ZQPassingClass0"), "(nil)");
}

TEST(Selectors, areMadeFromAnyName) {
    EXPECT_EQ(NSStringFromSelector(NSSelectorFromString("noSuch:operation:")), "noSuch:operation:");
    EXPECT_TRUE(static_cast<bool>(NSSelectorFromString("x")));
    EXPECT_EQ(NSSelectorFromString("x"), NSSelectorFromString("x"));
    EXPECT_FALSE(NSSelectorFromString("x") == NSSelectorFromString("x:"));
    EXPECT_FALSE(NSSelectorFromString("x") == NSSelectorFromString("X"));
}

TEST(Selectors, areNilForNil) {
    EXPECT_FALSE(static_cast<bool>(NSSelectorFromString(nullptr)));
    EXPECT_FALSE(static_cast<bool>(Selector()));
    EXPECT_FALSE(NSStringFromSelector(nullptr));
}

TEST(Selectors, callAHostObjectsOperations) {
    const NSObject object = echo("first");
    EXPECT_TRUE(object.respondsToSelector(NSSelectorFromString("echo:")));
    EXPECT_EQ(object.performSelector_withObject(NSSelectorFromString("echo:"), 42), NSObject(42));
    EXPECT_FALSE(object.performSelector(NSSelectorFromString("echo:"))) << "the argument is nil";
}

TEST(Selectors, raiseForOperationsThatAnObjectDoesNotHave) {
    const Selector unknown = NSSelectorFromString("noSuchOperation");
    for (const NSObject& object : {NSObject("text"), NSObject(1), makeObject<Unregistered>(), echo("x")}) {
        EXPECT_FALSE(object.respondsToSelector(unknown));
        EXPECT_EQ(raised([&] { object.performSelector(unknown); }), "NSInvalidArgumentException");
        EXPECT_EQ(raised([&] { object.performSelector_withObject(unknown, 1); }),
                  "NSInvalidArgumentException");
        EXPECT_EQ(raised([&] { object.performSelector(nullptr); }), "NSInvalidArgumentException");
    }
}

TEST(Selectors, sentToNilAnswerNil) {
    const NSObject nothing;
    EXPECT_FALSE(nothing.respondsToSelector(NSSelectorFromString("x")));
    EXPECT_FALSE(nothing.performSelector(NSSelectorFromString("x")));
    EXPECT_FALSE(nothing.performSelector_withObject(NSSelectorFromString("x"), 1));
}
