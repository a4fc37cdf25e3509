// SPDX-License-Identifier: MIT
// Trace keys, their look-up and the monitor around them.
#include "tests/kit/AllocationCount.h"
#include "tests/log/LogTestSupport.h"
#include "tests/objects/TestValues.h"

#include <algorithm>

#include "foundation/process/NSUserDefaults.h"

using namespace ZQFoundation;
using kit::AllocationCount;
using logtest::DefaultsScene;
using logtest::finishesWhileTheMonitorIsHeld;
using logtest::inChild;
using logtest::inFreshProcess;
using logtest::Settings;
using logtest::TraceKeys;
using logtest::waitsWhileTheMonitorIsHeld;
using TestValues::utf8Of;

namespace {

using Names = std::vector<std::string>;

Names namesIn(const NSArray& keys) {
    Names names;
    for (const NSObject& key : keys) {
        names.push_back(utf8Of(key.as<NSString>()));
    }
    return names;
}

Names activeKeys() { return namesIn(ZQLog::activatedTraceDefaultsKeys()); }

/// The label that the key conditions give, or "-" where they do not hold.
std::string labelOf(const NSString& line) {
    return line ? utf8Of(line.substringToIndex(line.length() - 3)) : "-";
}

std::string keyLabel(StringView key) { return labelOf(ZQLog::logStringForTraceKey_usingFormat(key, "x")); }

std::string valueLabel(StringView key, std::int64_t value) {
    return labelOf(ZQLog::logStringForTraceKey_value_usingFormat(key, value, "x"));
}

std::string thresholdLabel(StringView key, std::int64_t threshold) {
    return labelOf(ZQLog::logStringForTraceKey_threshold_usingFormat(key, threshold, "x"));
}

std::string anyLabel(const NSArray& keys) {
    return labelOf(ZQLog::logStringForAnyTraceKeyOf_usingFormat(keys, "x"));
}

std::string allLabel(const NSArray& keys) {
    return labelOf(ZQLog::logStringForAllTraceKeysOf_usingFormat(keys, "x"));
}

std::string anyKeyLabel() { return labelOf(ZQLog::logStringForAnyTraceKeyUsingFormat("x")); }

const std::string on = "<true/>";
const std::string off = "<false/>";

/// A value in the user defaults, and how it is read.
struct ValueRow {
    const char* value;
    bool isListed;
    bool isOn;
    std::int64_t level;
};

const ValueRow valueRows[] = {
    {"<true/>", true, true, 1},
    {"<false/>", false, false, 0},
    {"<integer>1</integer>", true, true, 1},
    {"<integer>0</integer>", false, false, 0},
    {"<integer>2</integer>", true, true, 2},
    {"<integer>3</integer>", true, true, 3},
    {"<integer>-1</integer>", true, true, -1},
    {"<integer>256</integer>", true, true, 256},
    {"<integer>512</integer>", true, true, 512},
    // The level keeps the low 32 bits, the truth does not.
    {"<integer>5000000000</integer>", true, true, 705032704},
    {"<integer>4294967296</integer>", true, true, 0},
    {"<integer>2147483648</integer>", true, true, -2147483648LL},
    {"<real>2.5</real>", true, true, 2},
    {"<real>-2.5</real>", true, true, -2},
    {"<real>0</real>", false, false, 0},
    // The list goes by the number, the key's own condition by the digits that its text begins with.
    {"<real>0.5</real>", true, false, 0},
    {"<real>-0.5</real>", true, false, 0},
    {"<real>1e-05</real>", true, true, 0},
    {"<real>1e+16</real>", true, true, 1874919424},
    {"<string>YES</string>", true, true, 0},
    {"<string>yes</string>", true, true, 0},
    {"<string>Yes</string>", true, true, 0},
    {"<string>yEs</string>", true, true, 0},
    {"<string>ye\xC5\xBF</string>", true, true, 0}, // the upper case of U+017F is an S
    {"<string>true</string>", false, false, 0},
    {"<string>TRUE</string>", false, false, 0},
    {"<string>Y</string>", false, false, 0},
    {"<string>on</string>", false, false, 0},
    {"<string>NO</string>", false, false, 0},
    {"<string>no</string>", false, false, 0},
    {"<string></string>", false, false, 0},
    {"<string> yes</string>", false, false, 0},
    {"<string>yes </string>", false, false, 0},
    {"<string>0</string>", false, false, 0},
    {"<string>0x10</string>", false, false, 0},
    {"<string>0.5</string>", false, false, 0},
    {"<string>1</string>", true, true, 1},
    {"<string>2</string>", true, true, 2},
    {"<string>3</string>", true, true, 3},
    {"<string> 7</string>", true, true, 7},
    {"<string>-3</string>", true, true, -3},
    {"<string>+4</string>", true, true, 4},
    {"<string>42abc</string>", true, true, 42},
    {"<string>99999999999</string>", true, true, 2147483647},
    {"<string>-99999999999</string>", true, true, -2147483648LL},
    {"<date>2024-03-05T14:07:09Z</date>", false, false, 0},
    {"<data>AQID</data>", false, false, 0},
    {"<array><string>YES</string></array>", false, false, 0},
    {"<array/>", false, false, 0},
    {"<dict><key>YES</key><true/></dict>", false, false, 0},
};

/// Every operation that checks the trace keys.
struct Question {
    const char* name;
    bool (*isAnsweredWithYes)();
};

/// With the key TraceNet on, all are answered with yes; without any key, with no.
const Question questions[] = {
    {"traceKeyIsEnabled",
     [] {
         return ZQLog::traceKeyIsEnabled("TraceNet");
     }},
    {"activatedTraceDefaultsKeys",
     [] {
         return ZQLog::activatedTraceDefaultsKeys().count() > 0;
     }},
    {"activatedTraceDefaultKeys",
     [] {
         return ZQLog::activatedTraceDefaultKeys().count() > 0;
     }},
    {"aTraceDefaultValueHasBeenActivated",
     [] {
         return ZQLog::aTraceDefaultValueHasBeenActivated();
     }},
    {"key",
     [] {
         return keyLabel("TraceNet") != "-";
     }},
    {"value",
     [] {
         return valueLabel("TraceNet", 1) != "-";
     }},
    {"threshold",
     [] {
         return thresholdLabel("TraceNet", 1) != "-";
     }},
    {"any of",
     [] {
         return anyLabel(NSArray{"TraceNet"}) != "-";
     }},
    {"all of",
     [] {
         return allLabel(NSArray{"TraceNet"}) != "-";
     }},
    {"any key",
     [] {
         return anyKeyLabel() != "-";
     }},
};

} // namespace

TEST(TraceKeys, readTruthAndLevelOfEveryKindOfValue) {
    for (const auto& [value, isListed, isOn, level] : valueRows) {
        SCOPED_TRACE(value);
        const TraceKeys keys({{"TraceX", value}});
        EXPECT_EQ(activeKeys(), isListed ? Names{"TraceX"} : Names{});
        EXPECT_EQ(ZQLog::aTraceDefaultValueHasBeenActivated(), isListed);
        EXPECT_EQ(anyKeyLabel(), isListed ? "Trace" : "-");
        EXPECT_EQ(ZQLog::traceKeyIsEnabled("TraceX"), isOn);
        EXPECT_EQ(keyLabel("TraceX"), isOn ? "TraceX" : "-");
        EXPECT_EQ(anyLabel(NSArray{"TraceX"}), isOn ? "TraceX" : "-");
        EXPECT_EQ(allLabel(NSArray{"TraceX"}), isOn ? "TraceX" : "-");
        EXPECT_EQ(valueLabel("TraceX", level), "TraceX=" + std::to_string(level));
        EXPECT_EQ(valueLabel("TraceX", level + 1), "-");
        EXPECT_EQ(thresholdLabel("TraceX", level), "TraceX>=" + std::to_string(level));
        EXPECT_EQ(thresholdLabel("TraceX", level + 1), "-");
    }
}

TEST(TraceKeys, listAHalfAndAreActivatedByItWhileItsOwnConditionsFail) {
    const TraceKeys keys({{"TraceHalf", "<real>0.5</real>"}});
    EXPECT_EQ(activeKeys(), Names{"TraceHalf"});
    EXPECT_TRUE(ZQLog::aTraceDefaultValueHasBeenActivated());
    EXPECT_EQ(anyKeyLabel(), "Trace");
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceHalf"));
    EXPECT_EQ(keyLabel("TraceHalf"), "-");
    EXPECT_EQ(anyLabel(NSArray{"TraceHalf"}), "-");
    EXPECT_EQ(allLabel(NSArray{"TraceHalf"}), "-");
    EXPECT_EQ(valueLabel("TraceHalf", 0), "TraceHalf=0");
}

TEST(TraceKeys, areTheDefaultsWhoseNamesBeginWithTrace) {
    const TraceKeys keys({{"Trace", on},
                          {"TraceNet", on},
                          {"Tracer", on},
                          {"Trace Net", on},
                          {"Trace.größe", on},
                          {"traceNetwork", on},
                          {"TRACENet", on},
                          {"Trac", on},
                          {"Tracé", on},
                          {" TraceNet", on},
                          {"XTraceNet", on},
                          {"EnableNet", on}});
    EXPECT_EQ(activeKeys(), (Names{"Trace", "TraceNet", "Tracer", "Trace Net", "Trace.größe"}));
    for (const char* key : {"Trace", "TraceNet", "Tracer", "Trace Net", "Trace.größe"}) {
        EXPECT_TRUE(ZQLog::traceKeyIsEnabled(key)) << key;
    }
    for (const char* key :
         {"traceNetwork", "TRACENet", "Trac", "Tracé", " TraceNet", "XTraceNet", "EnableNet"}) {
        EXPECT_FALSE(ZQLog::traceKeyIsEnabled(key)) << key;
        EXPECT_EQ(valueLabel(key, 1), "-") << key;
        EXPECT_EQ(valueLabel(key, 0), std::string(key) + "=0") << key;
    }
}

TEST(TraceKeys, areAskedForByTheirExactNames) {
    const TraceKeys keys({{"TraceNet", on}});
    for (const char* key : {"tracenet", "TraceNE", "TraceNet ", "TraceNetwork", "Trace", ""}) {
        EXPECT_FALSE(ZQLog::traceKeyIsEnabled(key)) << key;
    }
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled(std::string_view("TraceNet\0", 9)));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled(nullptr));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled(NSString()));
}

TEST(TraceKeys, areFoundByAnyFormOfText) {
    const TraceKeys keys({{"TraceNet", on}, {"TraceGröße\U0001F600", on}});
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceNet"));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(u"TraceNet"));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(NSString("TraceNet")));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(std::string("TraceNet")));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(std::string_view("TraceNetwork", 8)));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceGröße\U0001F600"));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(u"TraceGröße\U0001F600"));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(NSString(u"TraceGröße\U0001F600")));
    EXPECT_EQ(keyLabel(u"TraceGröße\U0001F600"), "TraceGröße\U0001F600");
}

TEST(TraceKeys, areFoundWithoutAnAllocation) {
    const TraceKeys keys({{"TraceNet", on}, {"TraceGröße", on}, {"TraceOff", off}});
    const NSString string(u"TraceGröße");
    ASSERT_TRUE(ZQLog::traceKeyIsEnabled("TraceNet"));
    const std::size_t before = AllocationCount::now();
    const bool found[] = {
        ZQLog::traceKeyIsEnabled("TraceNet"),     ZQLog::traceKeyIsEnabled(u"TraceNet"),
        ZQLog::traceKeyIsEnabled("TraceGröße"),   ZQLog::traceKeyIsEnabled(u"TraceGröße"),
        ZQLog::traceKeyIsEnabled(string),         ZQLog::traceKeyIsEnabled("TraceOff"),
        ZQLog::traceKeyIsEnabled("TraceMissing"), ZQLog::aTraceDefaultValueHasBeenActivated()};
    const std::size_t after = AllocationCount::now();
    EXPECT_EQ(after, before);
    const bool expected[] = {true, true, true, true, true, false, false, true};
    EXPECT_TRUE(std::equal(std::begin(found), std::end(found), std::begin(expected)));
}

TEST(TraceKeys, haveLevels) {
    const TraceKeys keys({{"TraceLevel", "<integer>3</integer>"}, {"TraceText", "<string>3</string>"}});
    for (const char* key : {"TraceLevel", "TraceText"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(valueLabel(key, 3), std::string(key) + "=3");
        EXPECT_EQ(valueLabel(key, 2), "-");
        EXPECT_EQ(thresholdLabel(key, 2), std::string(key) + ">=2");
        EXPECT_EQ(thresholdLabel(key, 3), std::string(key) + ">=3");
        EXPECT_EQ(thresholdLabel(key, 4), "-");
        EXPECT_EQ(thresholdLabel(key, -7), std::string(key) + ">=-7");
    }
}

TEST(TraceKeys, areOfLevel0WhenTheyAreMissing) {
    const TraceKeys keys(Settings{});
    EXPECT_EQ(valueLabel("TraceLevel", 0), "TraceLevel=0");
    EXPECT_EQ(valueLabel("TraceLevel", 1), "-");
    EXPECT_EQ(valueLabel("TraceLevel", -1), "-");
    EXPECT_EQ(thresholdLabel("TraceLevel", 0), "TraceLevel>=0");
    EXPECT_EQ(thresholdLabel("TraceLevel", -1), "TraceLevel>=-1");
    EXPECT_EQ(thresholdLabel("TraceLevel", 1), "-");
    EXPECT_EQ(valueLabel("", 0), "=0");
}

TEST(TraceKeys, compareLevelsInTheFullWidthOfTheArgument) {
    const TraceKeys keys({{"TraceLevel", "<integer>3</integer>"}});
    EXPECT_EQ(valueLabel("TraceLevel", 3 + (std::int64_t{1} << 32)), "-");
    EXPECT_EQ(thresholdLabel("TraceLevel", std::int64_t{1} << 32), "-");
    EXPECT_EQ(thresholdLabel("TraceLevel", INT64_MAX), "-");
    EXPECT_EQ(thresholdLabel("TraceLevel", INT64_MIN), "TraceLevel>=-9223372036854775808");
    EXPECT_EQ(thresholdLabel("TraceLevel", -(std::int64_t{1} << 32)), "TraceLevel>=-4294967296");
}

TEST(TraceKeys, labelAnyOfThemWithThoseThatAreOn) {
    const TraceKeys keys({{"A", on}, {"TraceA", on}, {"TraceB", off}, {"TraceC", on}});
    EXPECT_EQ(anyLabel(NSArray{"TraceA", "TraceB", "TraceC"}), "TraceA/TraceC");
    EXPECT_EQ(anyLabel(NSArray{"TraceC", "TraceB", "TraceA"}), "TraceC/TraceA");
    EXPECT_EQ(anyLabel(NSArray{"TraceB", "TraceMissing", "TraceC", "A"}), "TraceC");
    EXPECT_EQ(anyLabel(NSArray{"TraceA", "TraceA"}), "TraceA/TraceA");
    EXPECT_EQ(anyLabel(NSArray{"TraceB"}), "-");
    EXPECT_EQ(anyLabel(NSArray{"TraceB", "TraceMissing"}), "-");
}

TEST(TraceKeys, labelAllOfThemOnlyWhenEachIsOn) {
    const TraceKeys keys({{"TraceA", on}, {"TraceB", on}, {"TraceC", off}});
    EXPECT_EQ(allLabel(NSArray{"TraceA", "TraceB"}), "TraceA+TraceB");
    EXPECT_EQ(allLabel(NSArray{"TraceB", "TraceA"}), "TraceB+TraceA");
    EXPECT_EQ(allLabel(NSArray{"TraceB"}), "TraceB");
    EXPECT_EQ(allLabel(NSArray{"TraceA", "TraceA"}), "TraceA+TraceA");
    EXPECT_EQ(allLabel(NSArray{"TraceA", "TraceC"}), "-");
    EXPECT_EQ(allLabel(NSArray{"TraceC", "TraceA"}), "-");
    EXPECT_EQ(allLabel(NSArray{"TraceA", "TraceMissing"}), "-");
}

TEST(TraceKeys, holdNeitherAnyNorAllOfAnEmptyArray) {
    const TraceKeys keys({{"TraceA", on}});
    EXPECT_EQ(anyLabel(NSArray::array()), "-");
    EXPECT_EQ(allLabel(NSArray::array()), "-");
    EXPECT_EQ(anyLabel(nullptr), "-");
    EXPECT_EQ(allLabel(nullptr), "-");
}

TEST(TraceKeys, areAnEmptyListWhenNoneIsOn) {
    for (const Settings& settings : {Settings{}, Settings{{"TraceA", off}, {"traceB", on}}}) {
        const TraceKeys keys(settings);
        EXPECT_FALSE(ZQLog::aTraceDefaultValueHasBeenActivated());
        EXPECT_TRUE(ZQLog::activatedTraceDefaultsKeys());
        EXPECT_EQ(ZQLog::activatedTraceDefaultsKeys().count(), 0U);
        EXPECT_TRUE(ZQLog::activatedTraceDefaultKeys());
        EXPECT_EQ(ZQLog::activatedTraceDefaultKeys().count(), 0U);
        EXPECT_EQ(anyKeyLabel(), "-");
    }
}

TEST(TraceKeys, areListedInTheOrderOfTheUserDefaults) {
    const Settings settings{{"TraceZ", on},
                            {"TraceA", on},
                            {"Other", on},
                            {"TraceM", off},
                            {"TraceB", on},
                            {"Trace", on},
                            {"TraceY", "<string>2</string>"}};
    const TraceKeys keys(settings, {"-TraceLast", "1", "-TraceFirst", "YES", "-TraceM", "yes"});
    Names expected;
    for (const std::string& key :
         namesIn(NSUserDefaults::standardUserDefaults().dictionaryRepresentation().allKeys())) {
        if (key.compare(0, 5, "Trace") == 0) {
            expected.push_back(key);
        }
    }
    EXPECT_EQ(expected.size(), 8U);
    EXPECT_EQ(activeKeys(), expected);
    EXPECT_EQ(activeKeys(), expected);
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_EQ(activeKeys(), expected);
    EXPECT_EQ(namesIn(ZQLog::activatedTraceDefaultKeys()), expected);
}

TEST(TraceKeys, areListedInTheOrderOfTheirFile) {
    const TraceKeys keys({{"TraceZ", on}, {"TraceA", on}, {"TraceOff", off}, {"TraceM", on}});
    EXPECT_EQ(activeKeys(), (Names{"TraceZ", "TraceA", "TraceM"}));
}

TEST(TraceKeys, areReadFromTheCommandLineFirst) {
    const TraceKeys keys({{"TraceNetwork", off}, {"TraceFile", on}, {"TraceLevel", "<integer>9</integer>"}},
                         {"-TraceNetwork", "YES", "-TraceLevel", "3", "-TraceFile", "NO", "-TraceFlag",
                          "<true/>", "-TraceList", "(YES, YES)", "-traceSmall", "YES", "-TraceLonely"});
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceNetwork"));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceFile"));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceFlag"));
    EXPECT_EQ(valueLabel("TraceFlag", 1), "TraceFlag=1");
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceList"));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("traceSmall"));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceLonely"));
    EXPECT_EQ(valueLabel("TraceLevel", 3), "TraceLevel=3");
    Names active = activeKeys();
    std::sort(active.begin(), active.end());
    EXPECT_EQ(active, (Names{"TraceFlag", "TraceLevel", "TraceNetwork"}));
}

TEST(TraceKeys, areReadAgainOnlyWhenAskedTo) {
    TraceKeys keys({{"TraceNet", on}, {"TraceLevel", "<integer>3</integer>"}});
    EXPECT_EQ(activeKeys(), (Names{"TraceNet", "TraceLevel"}));
    keys.replace({{"TraceFile", on}, {"TraceLevel", "<integer>4</integer>"}});
    for (const Question& question : questions) {
        EXPECT_TRUE(question.isAnsweredWithYes()) << question.name;
    }
    EXPECT_EQ(activeKeys(), (Names{"TraceNet", "TraceLevel"}));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceFile"));
    EXPECT_EQ(valueLabel("TraceLevel", 3), "TraceLevel=3");
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_EQ(activeKeys(), (Names{"TraceFile", "TraceLevel"}));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceFile"));
    EXPECT_FALSE(ZQLog::traceKeyIsEnabled("TraceNet"));
    EXPECT_EQ(valueLabel("TraceLevel", 3), "-");
    EXPECT_EQ(valueLabel("TraceLevel", 4), "TraceLevel=4");
    keys.replace({});
    ZQLog::initializeTraceDefaultsDict();
    for (const Question& question : questions) {
        EXPECT_FALSE(question.isAnsweredWithYes()) << question.name;
    }
}

TEST(TraceKeys, stayReadForWhoeverStillHoldsTheReplacedList) {
    TraceKeys keys({{"TraceNet", on}, {"TraceFile", on}});
    const NSArray held = ZQLog::activatedTraceDefaultsKeys();
    const NSArray heldToo = ZQLog::activatedTraceDefaultKeys();
    for (int i = 0; i < 10; ++i) {
        keys.replace({{"TraceOther" + std::to_string(i), on}});
        ZQLog::initializeTraceDefaultsDict();
        EXPECT_EQ(activeKeys(), Names{"TraceOther" + std::to_string(i)});
    }
    EXPECT_EQ(namesIn(held), (Names{"TraceNet", "TraceFile"}));
    EXPECT_EQ(namesIn(heldToo), namesIn(held));
}

TEST(TraceKeys, areListedAlikeByBothNamesOfTheOperation) {
    const TraceKeys keys({{"TraceNet", on}, {"TraceFile", on}});
    EXPECT_EQ(ZQLog::activatedTraceDefaultsKeys(), ZQLog::activatedTraceDefaultKeys());
    EXPECT_EQ(ZQLog::activatedTraceDefaultsKeys(), (NSArray{"TraceNet", "TraceFile"}));
}

TEST(TraceKeys, areReadAtTheFirstQuestionWhicheverItIs) {
    inFreshProcess([] {
        DefaultsScene defaults({{"TraceEarly", on}});
        for (const Question& question : questions) {
            // Each in a child of its own, that has asked nothing yet. What changes after the question does
            // not count.
            EXPECT_TRUE(inChild([&] {
                defaults.replace({{"TraceNet", on}});
                const bool first = question.isAnsweredWithYes();
                defaults.replace({});
                return first && question.isAnsweredWithYes() && ZQLog::traceKeyIsEnabled("TraceNet");
            })) << question.name;
        }
    });
}

TEST(TraceKeys, areReadByTheOperationForItBeforeAnyQuestion) {
    inFreshProcess([] {
        DefaultsScene defaults({{"TraceNet", on}});
        ZQLog::initializeTraceDefaultsDict();
        defaults.replace({});
        EXPECT_EQ(activeKeys(), Names{"TraceNet"});
    });
}

TEST(TraceKeys, areNotReadByANilKey) {
    inFreshProcess([] {
        DefaultsScene defaults({{"TraceEarly", on}});
        ZQLog::logForTraceKey_usingFormat(nullptr, "x");
        ZQLog::logForAnyTraceKeyOf_usingFormat(nullptr, "x");
        EXPECT_EQ(labelOf(ZQLog::logStringForAllTraceKeysOf_usingFormat(nullptr, "x")), "-");
        defaults.replace({{"TraceNet", on}});
        EXPECT_EQ(activeKeys(), Names{"TraceNet"});
    });
}

TEST(TraceKeysMonitor, isRecursive) {
    TraceKeys keys({{"TraceNet", on}});
    const ZQLog::Synchronized outer;
    {
        const ZQLog::Synchronized inner;
        const ZQLog::Synchronized innermost;
        for (const Question& question : questions) {
            EXPECT_TRUE(question.isAnsweredWithYes()) << question.name;
        }
        keys.replace({{"TraceFile", on}});
        ZQLog::initializeTraceDefaultsDict();
    }
    EXPECT_EQ(activeKeys(), Names{"TraceFile"});
}

TEST(TraceKeysMonitor, isHeldUntilTheOutermostScopeEndsSoOtherThreadsWait) {
    const TraceKeys keys({{"TraceNet", on}});
    std::unique_ptr<logtest::Background> other;
    {
        const ZQLog::Synchronized outer;
        { const ZQLog::Synchronized inner; }
        other = std::make_unique<logtest::Background>([] { const ZQLog::Synchronized scope; });
        ::usleep(50'000);
        EXPECT_FALSE(other->isDone());
    }
    EXPECT_TRUE(other->isDoneSoon());
}

TEST(TraceKeysMonitor, makesEveryQuestionOfOtherThreadsWait) {
    const TraceKeys keys({{"TraceNet", on}});
    for (const Question& question : questions) {
        SCOPED_TRACE(question.name);
        std::atomic<bool> answer = false;
        EXPECT_TRUE(waitsWhileTheMonitorIsHeld([&] { answer = question.isAnsweredWithYes(); }));
        EXPECT_TRUE(answer);
    }
}

TEST(TraceKeysMonitor, showsOtherThreadsOnlyWhatStandsWhenItIsGivenBack) {
    TraceKeys keys({{"TraceNet", on}});
    std::atomic<bool> sawTheOldKey = false;
    std::unique_ptr<logtest::Background> other;
    {
        const ZQLog::Synchronized held;
        other = std::make_unique<logtest::Background>(
            [&] { sawTheOldKey = ZQLog::traceKeyIsEnabled("TraceNet"); });
        ::usleep(20'000);
        keys.replace({{"TraceFile", on}});
        ZQLog::initializeTraceDefaultsDict();
    }
    EXPECT_TRUE(other->isDoneSoon());
    EXPECT_FALSE(sawTheOldKey);
}

TEST(TraceKeysMonitor, isNotTakenByTheReadingItselfInAnyThread) {
    TraceKeys keys({{"TraceNet", on}});
    keys.replace({{"TraceFile", on}});
    EXPECT_TRUE(finishesWhileTheMonitorIsHeld([] { ZQLog::initializeTraceDefaultsDict(); }));
    EXPECT_EQ(activeKeys(), Names{"TraceFile"});
}

TEST(TraceKeysMonitor, isNotTakenByLinesWithoutATraceConditionInOtherThreads) {
    const logtest::CapturedOutput output;
    EXPECT_TRUE(finishesWhileTheMonitorIsHeld([] {
        ZQLog::log("text");
        ZQLog::logWithFormat("%d", 3);
        ZQLog::logSelf_method_logAlways_logWithFormat(nullptr, "run:", true, "x");
        ZQLog::logFunctionName_logAlways_log("run", true, "x");
        ZQLog::logForTraceKey_usingFormat(nullptr, "x");
    }));
    EXPECT_EQ(output.texts().size(), 4U);
}

TEST(TraceKeysMonitor, isGivenBackToOtherThreadsWhenAnExceptionLeavesTheScope) {
    EXPECT_EQ(TestValues::raised([] {
                  const ZQLog::Synchronized scope;
                  NSException::raise_format("Test", "leaves the scope");
              }),
              "Test");
    EXPECT_TRUE(logtest::anotherThreadCanTakeTheMonitor());
}
