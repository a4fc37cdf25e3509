// SPDX-License-Identifier: MIT
// Trace keys, their lookup and the monitor around them.
#include "log/TraceKeys.h"

#include <algorithm>

#include "foundation/process/NSUserDefaults.h"
#include "log/ZQTraceKey.h"
#include "tests/kit/AllocationCount.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::AllocationCount;
using kit::DefaultsScene;
using kit::inFreshProcess;
using kit::Settings;
using kit::TraceKeys;
using kit::utf8Of;
using logscene::finishesWhileTheMonitorIsHeld;
using logscene::waitsWhileTheMonitorIsHeld;

namespace {

using Names = std::vector<std::string>;

Names namesOf(const NSArray& keys) {
    Names names;
    for (const NSObject& key : keys) {
        names.push_back(utf8Of(key.as<NSString>()));
    }
    return names;
}

Names activeKeys() { return namesOf(ZQLog::activatedTraceDefaultsKeys()); }

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

/// An operation that checks the trace keys.
struct Question {
    constexpr Question(const char* itsName, bool (*answer)()) : name(itsName), isAnsweredWithYes(answer) {}

    const char* name;
    bool (*isAnsweredWithYes)();
};

/// All of them. With the key TraceNet on, all are answered with yes; without any key, with no.
const Question questions[] = {
    Question("traceKeyIsEnabled", [] { return ZQLog::traceKeyIsEnabled("TraceNet"); }),
    Question("activatedTraceDefaultsKeys", [] { return ZQLog::activatedTraceDefaultsKeys().count() > 0; }),
    Question("activatedTraceDefaultKeys", [] { return ZQLog::activatedTraceDefaultKeys().count() > 0; }),
    Question("aTraceDefaultValueHasBeenActivated",
             [] { return ZQLog::aTraceDefaultValueHasBeenActivated(); }),
    Question("key", [] { return keyLabel("TraceNet") != "-"; }),
    Question("value", [] { return valueLabel("TraceNet", 1) != "-"; }),
    Question("threshold", [] { return thresholdLabel("TraceNet", 1) != "-"; }),
    Question("any of", [] { return anyLabel(NSArray{"TraceNet"}) != "-"; }),
    Question("all of", [] { return allLabel(NSArray{"TraceNet"}) != "-"; }),
    Question("any key", [] { return anyKeyLabel() != "-"; }),
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
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(NSString("TraceNet")));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(std::string("TraceNet")));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled(std::string_view("TraceNetwork", 8)));
    EXPECT_TRUE(ZQLog::traceKeyIsEnabled("TraceGröße\U0001F600"));
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

TEST(TraceKeys, labelAnyOfThemWithThoseThatAreOnAndAllOfThemOnlyWhenEachIs) {
    const TraceKeys keys({{"A", on}, {"TraceA", on}, {"TraceB", off}, {"TraceC", on}});
    const struct {
        NSArray keys;
        const char* any;
        const char* all;
    } rows[] = {
        {{"TraceA", "TraceC"}, "TraceA/TraceC", "TraceA+TraceC"},
        {{"TraceC", "TraceA"}, "TraceC/TraceA", "TraceC+TraceA"},
        {{"TraceA", "TraceA"}, "TraceA/TraceA", "TraceA+TraceA"},
        {{"TraceC", "TraceB", "TraceA"}, "TraceC/TraceA", "-"},
        {{"TraceB", "TraceMissing", "TraceC", "A"}, "TraceC", "-"},
        {{"TraceA", "TraceMissing"}, "TraceA", "-"},
        {{"TraceB", "TraceA"}, "TraceA", "-"},
        {{"TraceC"}, "TraceC", "TraceC"},
        {{"TraceB"}, "-", "-"},
        {NSArray::array(), "-", "-"},
        {nullptr, "-", "-"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(anyLabel(row.keys), row.any);
        EXPECT_EQ(allLabel(row.keys), row.all);
    }
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
         namesOf(NSUserDefaults::standardUserDefaults().dictionaryRepresentation().allKeys())) {
        if (key.compare(0, 5, "Trace") == 0) {
            expected.push_back(key);
        }
    }
    EXPECT_EQ(expected.size(), 8U);
    EXPECT_EQ(activeKeys(), expected);
    EXPECT_EQ(activeKeys(), expected);
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_EQ(activeKeys(), expected);
    EXPECT_EQ(namesOf(ZQLog::activatedTraceDefaultKeys()), expected);
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
    const TraceKeys keys({{"TraceNet", on}, {"TraceLevel", "<integer>3</integer>"}});
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
    keys.replaceAndRead({});
    for (const Question& question : questions) {
        EXPECT_FALSE(question.isAnsweredWithYes()) << question.name;
    }
}

TEST(TraceKeys, stayInAListThatWasReturnedBeforeARereading) {
    const TraceKeys keys({{"TraceNet", on}, {"TraceFile", on}});
    const NSArray held = ZQLog::activatedTraceDefaultsKeys();
    const NSArray heldToo = ZQLog::activatedTraceDefaultKeys();
    for (int i = 0; i < 10; ++i) {
        keys.replaceAndRead({{"TraceOther" + std::to_string(i), on}});
        EXPECT_EQ(activeKeys(), Names{"TraceOther" + std::to_string(i)});
    }
    EXPECT_EQ(namesOf(held), (Names{"TraceNet", "TraceFile"}));
    EXPECT_EQ(namesOf(heldToo), namesOf(held));
}

TEST(TraceKeys, areReadAtTheFirstQuestionWhicheverItIs) {
    inFreshProcess([] {
        DefaultsScene defaults({{"TraceEarly", on}});
        for (const Question& question : questions) {
            // Each in a child of its own, that has asked nothing yet. What changes after the question does
            // not count.
            SCOPED_TRACE(question.name);
            kit::expectInChild([&] {
                defaults.replace({{"TraceNet", on}});
                const bool first = question.isAnsweredWithYes();
                defaults.replace({});
                return first && question.isAnsweredWithYes() && ZQLog::traceKeyIsEnabled("TraceNet");
            });
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

TEST(TraceKeysMonitor, isRecursive) {
    const TraceKeys keys({{"TraceNet", on}});
    const ZQLog::Synchronized outer;
    {
        const ZQLog::Synchronized inner;
        const ZQLog::Synchronized innermost;
        for (const Question& question : questions) {
            EXPECT_TRUE(question.isAnsweredWithYes()) << question.name;
        }
        keys.replaceAndRead({{"TraceFile", on}});
    }
    EXPECT_EQ(activeKeys(), Names{"TraceFile"});
}

TEST(TraceKeysMonitor, makesOtherThreadsWait) {
    EXPECT_TRUE(waitsWhileTheMonitorIsHeld([] { const ZQLog::Synchronized scope; }));
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

TEST(TraceKeysMonitor, showsOtherThreadsOnlyWhatIsReadWhenItIsReleased) {
    const TraceKeys keys({{"TraceNet", on}});
    std::atomic<bool> sawTheOldKey = false;
    std::unique_ptr<logscene::Background> other;
    const auto look = [&] {
        sawTheOldKey = ZQLog::traceKeyIsEnabled("TraceNet");
    };
    {
        const ZQLog::Synchronized held;
        { const ZQLog::Synchronized inner; } // which releases nothing
        other = std::make_unique<logscene::Background>(look);
        EXPECT_TRUE(other->waitsSoon());
        keys.replaceAndRead({{"TraceFile", on}});
    }
    EXPECT_TRUE(other->isDoneSoon());
    EXPECT_FALSE(sawTheOldKey);
}

TEST(TraceKeysMonitor, isNotTakenByTheReadingItselfInAnyThread) {
    const TraceKeys keys({{"TraceNet", on}});
    keys.replace({{"TraceFile", on}});
    EXPECT_TRUE(finishesWhileTheMonitorIsHeld([] { ZQLog::initializeTraceDefaultsDict(); }));
    EXPECT_EQ(activeKeys(), Names{"TraceFile"});
}

TEST(TraceKeysMonitor, isReleasedToOtherThreadsWhenAnExceptionLeavesTheScope) {
    EXPECT_EQ(kit::raised([] {
                  const ZQLog::Synchronized scope;
                  NSException::raise_format("Test", "leaves the scope");
              }),
              "Test");
    EXPECT_TRUE(logscene::anotherThreadCanTakeTheMonitor());
}

namespace {

// Each check uses one whole reading, however many re-readings there are meanwhile.

constinit const ZQTraceKey traceEven("TraceEven");
constinit const ZQTraceKey traceOdd("TraceOdd");
constinit const ZQTraceKey traceAlways("TraceAlways");
constinit const ZQTraceKey traceNever("TraceNever");
constinit const ZQAllTraceKeysOf traceBoth("TraceEven", "TraceOdd");
constinit const ZQAnyTraceKeyOf traceEither("TraceEven", "TraceOdd");
constinit const ZQTraceKeyThreshold traceMuch("TraceLevel", 1000);

/// The keys of every other reading. More of them in the one than in the other, so that they change their
/// places.
NSDictionary keysOf(bool isOdd) {
    NSMutableDictionary keys;
    keys.setObject_forKey(true, "TraceAlways");
    keys.setObject_forKey(isOdd, "TraceOdd");
    keys.setObject_forKey(!isOdd, "TraceEven");
    keys.setObject_forKey(isOdd ? 7 : 2'000'000'000, "TraceLevel");
    for (int i = 0; i < (isOdd ? 0 : 20); ++i) {
        keys.setObject_forKey(i % 2 == 0, NSString::stringWithFormat("TraceFiller%d", i));
    }
    return keys.dictionary();
}

/// Whether all answers could be those of one reading, each.
bool areWhole() {
    const bool byName = ZQLog::traceKeyIsEnabled("TraceAlways") && !ZQLog::traceKeyIsEnabled("TraceNever") &&
                        ZQLog::aTraceDefaultValueHasBeenActivated();
    const bool byObject = traceAlways.isEnabled() && !traceNever.isEnabled() && traceEither.isEnabled() &&
                          !traceBoth.isEnabled();
    // Which one it is may change between questions, never within one.
    const NSString any = traceEither.logString("x");
    const NSString level = ZQLog::logStringForTraceKey_threshold_usingFormat("TraceLevel", 8, "x");
    const bool isLevel = ZQLog::logStringForTraceKey_threshold_usingFormat("TraceLevel", 7, "x") &&
                         !ZQLog::logStringForTraceKey_value_usingFormat("TraceLevel", 0, "x") &&
                         (!level || level == NSString("TraceLevel>=8: x"));
    return byName && byObject && isLevel &&
           (any == NSString("TraceEven: areWhole() x") || any == NSString("TraceOdd: areWhole() x")) &&
           !ZQLog::logStringForAllTraceKeysOf_usingFormat(NSArray{"TraceEven", "TraceOdd"}, "x");
}

void askBesideRereadings() {
    constexpr long rereadings = logscene::scaled(5000, 2000, 1000);
    const TraceKeys scene{};
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const NSDictionary readings[] = {keysOf(false), keysOf(true)};
    defaults.registerDefaults(readings[0]);
    ZQLog::initializeTraceDefaultsDict();
    std::atomic<long> wrong = 0;
    std::atomic<long> asked = 0;
    const auto ask = [&] {
        wrong += areWhole() ? 0 : 1;
        ++asked;
    };
    {
        const kit::Meanwhile asking(ask, 2);
        for (long i = 1; i <= rereadings; ++i) {
            if (i % 64 == 0) {
                defaults.registerDefaults(readings[i / 64 % 2]);
            }
            const auto monitor =
                i % 1000 == 0 ? std::make_unique<ZQLog::Synchronized>() : nullptr; // as hosts do
            ZQLog::initializeTraceDefaultsDict();
        }
    }
    logscene::sayScale(std::to_string(rereadings) + " re-readings, " + std::to_string(asked) +
                       " rounds of questions");
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(asked, 0);
    defaults.registerDefaults(readings[1]);
    ZQLog::initializeTraceDefaultsDict();
    EXPECT_TRUE(traceOdd.isEnabled() && !traceEven.isEnabled() && !traceMuch.isEnabled());
}

// What is registered stays registered, so the process is one of its own.
TEST(TraceKeysConcurrency, areAskedBesideRereadingsWithoutEnd) { inFreshProcess(askBesideRereadings); }

} // namespace
