// SPDX-License-Identifier: MIT
// Trace keys as objects, compared with the operations by name.
#include "log/ZQTraceKey.h"

#include "tests/kit/AllocationCount.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::CapturedOutput;
using kit::TraceKeys;
using kit::utf8Of;
using logscene::Texts;

namespace {

constinit const ZQTraceKey traceA("TraceA");
constinit const ZQTraceKey traceB("TraceB");
constinit const ZQTraceKeyValue valueOfA[] = {{"TraceA", -1},       {"TraceA", 0}, {"TraceA", 1},
                                              {"TraceA", 2},        {"TraceA", 3}, {"TraceA", INT32_MAX},
                                              {"TraceA", INT64_MIN}};
constinit const ZQTraceKeyThreshold thresholdOfA[] = {{"TraceA", -1}, {"TraceA", 0}, {"TraceA", 1},
                                                      {"TraceA", 2},  {"TraceA", 3}, {"TraceA", INT64_MAX}};
constinit const ZQAnyTraceKeyOf anyOfThree("TraceA", "TraceB", "TraceC");
constinit const ZQAnyTraceKeyOf anyOfOne("TraceA");
constinit const ZQAllTraceKeysOf allOfTwo("TraceA", "TraceB");
constinit const ZQAllTraceKeysOf allOfOne("TraceA");
constinit const ZQAnyTraceKey anyKey;

constexpr std::int64_t values[] = {-1, 0, 1, 2, 3, INT32_MAX, INT64_MIN};
constexpr std::int64_t thresholds[] = {-1, 0, 1, 2, 3, INT64_MAX};

struct Holder {
    virtual ~Holder() = default;
};
const Holder tracedStore;

/// Compares all that the condition says with the label, ending in a space, of the operation by name.
void expectSame(const ZQTraceCondition& condition, const NSString& label) {
    const std::string ofFunction = label ? label.utf8() + "expectSame() 3 of five" : "(nil)";
    const std::string ofMethod =
        label ? label.utf8() + "-[(Holder *)" + logscene::addressText(&tracedStore) + " expectSame] 3 of five"
              : "(nil)";
    for (int round = 0; round < 3; ++round) { // the first asks, the others may remember
        EXPECT_EQ(condition.isEnabled(), static_cast<bool>(label));
        EXPECT_EQ(utf8Of(condition.logString("%d of %@", 3, "five")), ofFunction);
        EXPECT_EQ(utf8Of(condition.logString(&tracedStore, "%d of %@", 3, "five")), ofMethod);
        const CapturedOutput output;
        condition.log("%d of %@", 3, "five");
        condition.log(&tracedStore, "%d of %@", 3, "five");
        EXPECT_EQ(output.texts(), label ? (Texts{ofFunction, ofMethod}) : Texts());
    }
}

void expectSameForAllConditions() {
    expectSame(traceA, ZQLog::logStringForTraceKey_usingFormat("TraceA", ""));
    for (std::size_t i = 0; i < std::size(values); ++i) {
        expectSame(valueOfA[i], ZQLog::logStringForTraceKey_value_usingFormat("TraceA", values[i], ""));
    }
    for (std::size_t i = 0; i < std::size(thresholds); ++i) {
        expectSame(thresholdOfA[i],
                   ZQLog::logStringForTraceKey_threshold_usingFormat("TraceA", thresholds[i], ""));
    }
    const NSArray three{"TraceA", "TraceB", "TraceC"};
    expectSame(anyOfThree, ZQLog::logStringForAnyTraceKeyOf_usingFormat(three, ""));
    expectSame(anyOfOne, ZQLog::logStringForAnyTraceKeyOf_usingFormat(NSArray{"TraceA"}, ""));
    expectSame(allOfTwo, ZQLog::logStringForAllTraceKeysOf_usingFormat(NSArray{"TraceA", "TraceB"}, ""));
    expectSame(allOfOne, ZQLog::logStringForAllTraceKeysOf_usingFormat(NSArray{"TraceA"}, ""));
    expectSame(anyKey, ZQLog::logStringForAnyTraceKeyUsingFormat(""));
}

TEST(ZQTraceKey, saysWhatTheOperationsByNameSay) {
    const char* const forms[] = {"<true/>",
                                 "<false/>",
                                 "<integer>0</integer>",
                                 "<integer>2</integer>",
                                 "<integer>3</integer>",
                                 "<integer>-1</integer>",
                                 "<integer>2147483647</integer>",
                                 "<integer>5000000000</integer>",
                                 "<real>0.5</real>",
                                 "<string>yes</string>",
                                 "<string>true</string>",
                                 "<string>2</string>",
                                 "<string>3 or so</string>",
                                 "<string></string>",
                                 "<array><true/></array>",
                                 "<date>2001-01-01T00:00:00Z</date>"};
    const TraceKeys keys{};
    expectSameForAllConditions();
    for (const char* const a : forms) {
        for (const char* const b : {"<true/>", "<false/>"}) {
            keys.replaceAndRead({{"TraceA", a}, {"TraceB", b}});
            SCOPED_TRACE(std::string(a) + " " + b);
            expectSameForAllConditions();
        }
    }
    keys.replaceAndRead({{"TraceC", "<true/>"}});
    expectSameForAllConditions();
}

TEST(ZQTraceKey, labelsItsLinesByCondition) {
    const TraceKeys keys{{"TraceA", "<integer>2</integer>"}, {"TraceB", "<true/>"}};
    EXPECT_EQ(utf8Of(traceA.logString("%d items", 3)), "TraceA: TestBody() 3 items");
    EXPECT_EQ(utf8Of(traceA.logString(nullptr, "x")), "TraceA: [<<no instance>> TestBody] x");
    EXPECT_EQ(utf8Of(traceA.logString(classOf<NSString>(), "x")), "TraceA: +[NSString TestBody] x");
    EXPECT_EQ(utf8Of(valueOfA[3].logString("x")), "TraceA=2: TestBody() x");
    EXPECT_EQ(utf8Of(thresholdOfA[2].logString("x")), "TraceA>=1: TestBody() x");
    EXPECT_EQ(utf8Of(anyOfThree.logString("x")), "TraceA/TraceB: TestBody() x");
    EXPECT_EQ(utf8Of(allOfTwo.logString("x")), "TraceA+TraceB: TestBody() x");
    EXPECT_EQ(utf8Of(anyKey.logString("x")), "Trace: TestBody() x");
}

template <class T>
NSString textOfTemplate(T value) {
    return traceA.logString("%@", value);
}

template <class T>
struct Holding {
    NSString text() const { return traceA.logString("x"); }
    bool operator<(int) const { return traceA.logString("x").hasSuffix("operator<() x"); }
};

TEST(ZQTraceKey, namesTheFunctionThatHoldsTheCall) {
    const TraceKeys keys{{"TraceA", "<true/>"}};
    const auto inLambda = [] {
        return traceA.logString("x");
    };
    EXPECT_EQ(utf8Of(textOfTemplate(NSString("x"))), "TraceA: textOfTemplate() x");
    EXPECT_EQ(utf8Of(textOfTemplate(std::string("x"))), "TraceA: textOfTemplate() x");
    EXPECT_EQ(utf8Of(Holding<std::string>().text()), "TraceA: text() x");
    EXPECT_TRUE(Holding<int>() < 1);
    EXPECT_EQ(utf8Of(inLambda()), "TraceA: operator()() x");
    static const NSString outside = traceB.logString("x");
    EXPECT_FALSE(outside);
}

static_assert(detail::plainNameLength("f") == 1);
static_assert(detail::plainNameLength("") == 0);
static_assert(detail::plainNameLength("f<std::pair<int, int> >") == 1);
static_assert(detail::plainNameLength("operator<") == 9);
static_assert(detail::plainNameLength("operator->") == 10);

TEST(ZQTraceKey, takesFormatsOfEveryKind) {
    const TraceKeys keys{{"TraceA", "<true/>"}};
    EXPECT_EQ(utf8Of(traceA.logString(u"%d \u00fc", 3)), "TraceA: TestBody() 3 \u00fc");
    EXPECT_EQ(utf8Of(traceA.logString(NSString("%d"), 3)), "TraceA: TestBody() 3");
    EXPECT_EQ(utf8Of(traceA.logString(StringView("%s of %s"), "a", "b")), "TraceA: TestBody() a of b");
    EXPECT_EQ(utf8Of(traceA.logString("%s of %s", "a", "b")), "TraceA: TestBody() a of b");
}

// It would look like a condition that does not hold.
TEST(ZQTraceKey, remembersNothingOfANilFormat) {
    const TraceKeys keys{{"TraceA", "<true/>"}};
    const CapturedOutput output;
    traceA.log(NSString());
    EXPECT_FALSE(traceA.logString(NSString()));
    traceA.log("x");
    EXPECT_EQ(output.texts(), Texts{"TraceA: TestBody() x"});
}

TEST(ZQTraceKey, seesEachRereading) {
    const TraceKeys keys{};
    for (int round = 0; round < 20; ++round) {
        const bool isOn = round % 2 != 0;
        keys.replace({{"TraceA", isOn ? "<true/>" : "<false/>"}});
        EXPECT_EQ(traceA.isEnabled(), round != 0 && !isOn); // as of the reading before
        ZQLog::initializeTraceDefaultsDict();
        EXPECT_EQ(traceA.isEnabled(), isOn);
        EXPECT_EQ(traceA.isEnabled(), isOn);
    }
}

// The state of the monitor is part of the number by which a cached answer is recognized.
TEST(ZQTraceKey, answersInAScopeOfTheMonitorAsBeforeIt) {
    const TraceKeys scene{{"TraceA", "<true/>"}};
    EXPECT_TRUE(traceA.isEnabled());
    EXPECT_FALSE(traceB.isEnabled());
    const ZQLog::Synchronized scope;
    expectSame(traceA, "TraceA: ");
    expectSame(traceB, nullptr);
}

TEST(ZQTraceKey, makesTheFirstReading) {
    kit::inFreshProcess([] {
        const kit::DefaultsScene defaults{{"TraceA", "<true/>"}};
        EXPECT_TRUE(traceA.isEnabled());
    });
}

TEST(ZQTraceKey, allocatesNothingWhileItIsOffAndAsksOnce) {
    const TraceKeys keys{{"TraceB", "<true/>"}};
    const std::size_t before = kit::AllocationCount::now();
    for (int i = 0; i < 3; ++i) {
        traceA.log("%d", i);
        traceA.log(&tracedStore, "%d", i);
        EXPECT_FALSE(traceA.isEnabled() || thresholdOfA[3].isEnabled() || allOfTwo.isEnabled());
    }
    EXPECT_EQ(kit::AllocationCount::now(), before);
}

TEST(ZQTraceKey, worksInAForkedChildWhichRereadsForItself) {
    const TraceKeys keys{{"TraceA", "<true/>"}};
    EXPECT_TRUE(traceA.isEnabled() && !traceB.isEnabled());
    kit::expectInChild([&keys] {
        EXPECT_TRUE(traceA.isEnabled() && !traceB.isEnabled());
        keys.replaceAndRead({{"TraceB", "<true/>"}});
        EXPECT_TRUE(!traceA.isEnabled() && traceB.isEnabled());
    });
    EXPECT_TRUE(traceA.isEnabled() && !traceB.isEnabled());
}

TEST(ZQTraceKeyConcurrency, waitsLikeTheOperationsByNameWhileTheMonitorIsHeld) {
    const TraceKeys keys{};
    EXPECT_FALSE(traceA.isEnabled());
    EXPECT_TRUE(logscene::waitsWhileTheMonitorIsHeld([] { traceA.isEnabled(); }));
    EXPECT_TRUE(logscene::waitsWhileTheMonitorIsHeld([] { traceA.log("x"); }));
    const ZQLog::Synchronized own; // its own thread goes on
    EXPECT_FALSE(traceA.isEnabled());
}

// Each reader knows which readings were surely over before it asked, and which had surely not begun after.
TEST(ZQTraceKeyConcurrency, neverAnswersFromAReadingThatIsOver) {
    constexpr long rereadings = logscene::scaled(500, 200, 100);
    const TraceKeys keys{};
    std::atomic<long> begun = 0;
    std::atomic<long> over = 0;
    std::atomic<long> wrong = 0;
    std::atomic<long> sure = 0;
    const auto read = [&] {
        const long before = over;
        const bool isOn = traceA.isEnabled();
        const bool isOnInText = static_cast<bool>(traceA.logString("x"));
        if (before == begun) {
            ++sure;
            wrong += isOn == (before % 2 != 0) && isOnInText == isOn ? 0 : 1;
        }
    };
    {
        const kit::Meanwhile reading(read, 2);
        for (long i = 1; i <= rereadings; ++i) {
            ++begun;
            keys.replaceAndRead({{"TraceA", i % 2 != 0 ? "<true/>" : "<false/>"}});
            over = i;
            const long before = sure;
            while (i % 50 == 0 && sure == before) {
                std::this_thread::yield();
            }
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(sure, 0);
}

} // namespace
