// SPDX-License-Identifier: MIT
// Values at the sizes that hosts may reach: each of these must neither crash, nor overflow a stack, nor take
// a time that grows with the square of the size.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDate.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace {

/// The size to test with, less under a sanitizer, which makes everything bigger and slower; said in the
/// output.
std::size_t sized(const char* what, std::size_t normal, std::size_t underSanitizer) {
    const std::size_t size = isSanitized ? underSanitizer : normal;
    testing::Test::RecordProperty(what, std::to_string(size));
    std::printf("%s: %zu%s\n", what, size, isSanitized ? " (reduced: sanitizer)" : "");
    return size;
}

// A sanitizer's frames are larger; one frame for each level would still need many times as much.
constexpr std::size_t smallStackBytes = isSanitized ? 512 * 1024 : 256 * 1024;
constexpr std::size_t deep = 100000;

/// Runs the action to its end on a stack that has no room for one frame for each level.
template <class Action>
void onSmallStack(const Action& action) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, smallStackBytes), 0);
    pthread_t runner;
    const auto run = [](void* context) -> void* {
        (*static_cast<const Action*>(context))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&runner, &attributes, run, const_cast<Action*>(&action)), 0);
    EXPECT_EQ(pthread_join(runner, nullptr), 0);
    pthread_attr_destroy(&attributes);
}

// MARK: Depth

/// A way to put one value around another, and what the condensed rendering writes around it.
struct Shape {
    const char* name;
    NSObject (*wrap)(const NSObject& inner, std::size_t level);
    const char* (*before)(std::size_t level);
    const char* (*after)(std::size_t level);
};

const Shape shapes[] = {
    {"arrays", [](const NSObject& inner, std::size_t) -> NSObject { return NSArray::arrayWithObject(inner); },
     [](std::size_t) { return "( "; },
     [](std::size_t) {
         return " )";
     }},
    {"dictionaries",
     [](const NSObject& inner, std::size_t) -> NSObject {
         return NSDictionary{{"k", inner}};
     },
     [](std::size_t) { return "{ k = "; },
     [](std::size_t) {
         return "; }";
     }},
    {"arrays and dictionaries with neighbors on both sides",
     [](const NSObject& inner, std::size_t level) -> NSObject {
         if (level % 2 == 0) {
             return NSArray{"x", inner, 7};
         }
         return NSDictionary{{"c", 3}, {"b", inner}, {"a", "y"}};
     },
     [](std::size_t level) { return level % 2 == 0 ? "( x, " : "{ a = y; b = "; },
     [](std::size_t level) {
         return level % 2 == 0 ? ", 7 )" : "; c = 3; }";
     }},
};

NSObject nested(const Shape& shape, std::size_t depth, NSObject bottom) {
    for (std::size_t level = 0; level < depth; ++level) {
        bottom = shape.wrap(bottom, level);
    }
    return bottom;
}

std::string condensedNested(const Shape& shape, std::size_t depth, const std::string& bottom) {
    std::string text;
    for (std::size_t level = depth; level > 0; --level) {
        text += shape.before(level - 1);
    }
    text += bottom;
    for (std::size_t level = 0; level < depth; ++level) {
        text += shape.after(level);
    }
    return text;
}

NSObject nestedSets(std::size_t depth, NSObject bottom) {
    for (std::size_t level = 0; level < depth; ++level) {
        bottom = NSSet{bottom};
    }
    return bottom;
}

TEST(HugeValues, deepCollectionsAreComparedOnASmallStack) {
    onSmallStack([] {
        for (const Shape& shape : shapes) {
            const NSObject value = nested(shape, deep, 1);
            EXPECT_TRUE(value.isEqual(nested(shape, deep, 1.0))) << shape.name;
            EXPECT_FALSE(value.isEqual(nested(shape, deep, 2))) << shape.name << " that differ at the bottom";
            EXPECT_FALSE(value.isEqual(nested(shape, deep + 2, 1))) << shape.name << " of another depth";
            EXPECT_FALSE(nested(shape, deep, NSArray::array())
                             .isEqual(nested(shape, deep, NSDictionary::dictionary())))
                << shape.name;
        }
    });
}

TEST(HugeValues, deepCollectionsAreHashedOnASmallStack) {
    onSmallStack([] {
        for (const Shape& shape : shapes) {
            const NSObject value = nested(shape, deep, 1);
            const NSObject same = nested(shape, deep, true);
            EXPECT_EQ(value.hash(), same.hash()) << shape.name;
            const NSDictionary dictionary{{value, "found"}, {"other", 1}};
            EXPECT_TRUE(dictionary.objectForKey(same).isEqual("found")) << shape.name;
            EXPECT_FALSE(dictionary.objectForKey(nested(shape, deep, 2))) << shape.name;
        }
    });
}

TEST(HugeValues, deepCollectionsAreRenderedCondensedOnASmallStack) {
    onSmallStack([] {
        for (const Shape& shape : shapes) {
            const NSString text = nested(shape, deep, "bottom").condensedDescription();
            EXPECT_TRUE(text.utf8() == condensedNested(shape, deep, "bottom")) << shape.name;
        }
    });
}

TEST(HugeValues, deepCollectionsAreReleasedOnASmallStack) {
    onSmallStack([] {
        for (const Shape& shape : shapes) {
            int destroyed = 0;
            NSObject middle = nested(shape, deep, makeObject<Offering>(&destroyed));
            NSObject top = nested(shape, deep, middle);
            top = nullptr;
            EXPECT_EQ(destroyed, 0) << shape.name << ": the lower half is still in use";
            EXPECT_EQ(middle.hash(), NSObject(middle).hash());
            NSMutableArray builder;
            builder.addObject(middle);
            middle = nullptr;
            EXPECT_EQ(destroyed, 0) << shape.name;
            builder.removeLastObject();
            EXPECT_EQ(destroyed, 1) << shape.name;
        }
    });
}

TEST(HugeValues, deepSetsAreBuiltComparedHashedAndReleasedOnASmallStack) {
    const std::size_t depth = sized("nested sets", deep, 20000);
    onSmallStack([depth] {
        const NSObject value = nestedSets(depth, 1);
        const NSObject same = nestedSets(depth, 1.0);
        EXPECT_EQ(value.hash(), same.hash());
        EXPECT_TRUE(value.isEqual(same));
        EXPECT_FALSE(value.isEqual(nestedSets(depth, 2)));
        EXPECT_FALSE(value.isEqual(nestedSets(depth + 1, 1)));
    });
}

TEST(HugeValues, aDeepKeyIsRenderedOnASmallStack) {
    onSmallStack([] {
        const std::string text = condensedNested(shapes[0], deep, "x");
        const NSObject value = NSDictionary{{nested(shapes[0], deep, "x"), "v"}};
        EXPECT_TRUE(value.condensedDescription().utf8() == "{ " + text + " = v; }");
    });
}

// Its length grows with the square of the depth (150 MB here), which is why this stays below the other
// depths. One frame of 64 bytes for each level would already overflow the stack.
TEST(HugeValues, theIndentedDescriptionOfDeepCollectionsNeedsNoStack) {
    const std::size_t depth = sized("levels described", 5000, 3000);
    onSmallStack([depth] {
        for (const bool arrays : {true, false}) {
            const NSString text = nested(shapes[arrays ? 0 : 1], depth, "x").description();
            std::size_t length = 3;
            for (std::size_t level = 1; level < depth; ++level) {
                length += 4 * level * 3 + (arrays ? 4U : 9U);
            }
            length += 4 * depth + (arrays ? 2U : 7U);
            EXPECT_EQ(text.length(), length);
            EXPECT_TRUE(text.hasPrefix(arrays ? "(\n        (\n" : "{\n    k =     {\n"));
            EXPECT_TRUE(text.hasSuffix(arrays ? "\n        )\n    )\n)" : "\n        };\n    };\n}"));
        }
    });
}

// MARK: Length

TEST(HugeValues, asciiStringsOfTwentyMillionUnits) {
    const std::size_t length = sized("units", 20000000, 2000000);
    std::string bytes(length, 'a');
    bytes.back() = 'z';
    const NSString text(bytes);
    const NSString same(bytes);
    bytes.back() = 'y';
    const NSString other(bytes);
    EXPECT_EQ(text.length(), length);
    EXPECT_EQ(text.characterAtIndex(length - 1), u'z');
    EXPECT_TRUE(text.isEqual(same));
    EXPECT_FALSE(text.isEqual(other));
    EXPECT_EQ(text.hash(), same.hash());
    EXPECT_EQ(text.compare(other), NSOrderedDescending);
    EXPECT_EQ(text.compare(same), NSOrderedSame);
    EXPECT_EQ(text.caseInsensitiveCompare(same.uppercaseString()), NSOrderedSame);
    EXPECT_TRUE(text.hasPrefix(same));
    EXPECT_EQ(text.substringFromIndex(length - 2), "az");
    EXPECT_TRUE(other.utf8() == bytes);
    EXPECT_EQ(text.stringByAppendingString("!").length(), length + 1);
    EXPECT_EQ((NSDictionary{{text, 1}}).objectForKey(same), 1);
    EXPECT_EQ((NSArray{text, 1}).condensedDescription().length(), length + 7);
    EXPECT_EQ((NSArray{text, 1}).description().length(), length + 15);
}

TEST(HugeValues, otherStringsOfTwentyMillionUnits) {
    const std::size_t length = sized("units", 20000000, 2000000);
    std::u16string units(length, u'\u00e9');
    units.back() = 0xD83D;
    const NSString text(units);
    EXPECT_EQ(text.length(), length);
    EXPECT_TRUE(text.isEqual(NSString(units)));
    EXPECT_EQ(text.characterAtIndex(length - 1), 0xD83D);
    EXPECT_EQ(text.utf8().size(), 2 * (length - 1) + 3);
    EXPECT_TRUE(
        NSString(text.substringToIndex(length - 1).utf8()).isEqual(text.substringToIndex(length - 1)));
    EXPECT_EQ(text.compare(text.substringToIndex(length - 1)), NSOrderedDescending);
    EXPECT_EQ(text.uppercaseString().characterAtIndex(0), u'\u00c9');
    NSMutableString builder("ascii at first");
    builder.appendString(text);
    EXPECT_EQ(builder.string().length(), length + 14);
}

// MARK: Number of entries

NSString numberedKey(std::size_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "key%07zu", number);
    return text;
}

TEST(HugeValues, dictionariesOf200000Keys) {
    const std::size_t count = sized("keys", 200000, 50000);
    NSMutableDictionary forwards;
    NSMutableDictionary backwards;
    for (std::size_t i = 0; i < count; ++i) {
        forwards.setObject_forKey(i, numberedKey(i));
        backwards.setObject_forKey(count - 1 - i, numberedKey(count - 1 - i));
    }
    const NSDictionary dictionary = forwards.dictionary();
    const NSDictionary reversed = backwards.dictionary();
    ASSERT_EQ(dictionary.count(), count);
    std::size_t found = 0;
    std::size_t inOrder = 0;
    for (std::size_t i = 0; i < count; ++i) {
        found += dictionary.objectForKey(numberedKey(i)).isEqual(i) ? 1 : 0;
        inOrder += dictionary.begin()[i].value.isEqual(i) ? 1 : 0;
    }
    EXPECT_EQ(found, count);
    EXPECT_EQ(inOrder, count);
    EXPECT_FALSE(dictionary.objectForKey(numberedKey(count)));
    EXPECT_TRUE(dictionary.isEqual(reversed));
    EXPECT_EQ(dictionary.hash(), reversed.hash());

    const std::string text = reversed.condensedDescription().utf8();
    EXPECT_EQ(text.rfind("{ key0000000 = 0; key0000001 = 1; key0000002 = 2; ", 0), 0U);
    EXPECT_TRUE(text == dictionary.condensedDescription().utf8());
    EXPECT_EQ(reversed.description().utf8().rfind("{\n    key0000000 = 0;\n    key0000001 = 1;\n", 0), 0U);

    NSMutableDictionary builder(dictionary);
    for (std::size_t i = 0; i < count; i += 2) {
        builder.removeObjectForKey(numberedKey(i));
    }
    builder.setObject_forKey("last", numberedKey(0));
    const NSDictionary rest = builder.dictionary();
    ASSERT_EQ(rest.count(), count / 2 + 1);
    EXPECT_EQ(rest.begin()[0].value, 1);
    EXPECT_EQ((rest.end() - 1)->value, "last");
    EXPECT_EQ(dictionary.count(), count);
}

TEST(HugeValues, arraysAndSetsOf200000Elements) {
    const std::size_t count = sized("elements", 200000, 50000);
    NSMutableArray builder;
    for (std::size_t i = 0; i < count; ++i) {
        builder.addObject(numberedKey(i * 7919 % count));
    }
    const NSArray array = builder.array();
    const NSArray sorted = array.sortedArrayUsingComparator([](const NSObject& left, const NSObject& right) {
        return left.as<NSString>().compare(right.as<NSString>());
    });
    ASSERT_EQ(sorted.count(), count);
    EXPECT_EQ(sorted[0], numberedKey(0));
    EXPECT_EQ(sorted[count - 1], numberedKey(count - 1));
    const NSSet set = NSSet::setWithArray(array);
    EXPECT_EQ(set.count(), count);
    EXPECT_TRUE(set.isEqualToSet(NSSet::setWithArray(sorted)));
    EXPECT_EQ(array.condensedDescription().length(), 12 * count + 2);
}

// MARK: Time

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Work whose time must grow about as its size.
struct Work {
    using Run = void (*)(std::size_t size);
    Work(const char* text, std::size_t usual, Run work) : name(text), size(usual), run(work) {}

    const char* name;
    std::size_t size;
    Run run;
};

template <class Run>
double bestTime(const Run& run, std::size_t size) {
    double best = 1e9;
    for (int turn = 0; turn < 2; ++turn) {
        const double start = processorSeconds();
        run(size);
        best = std::min(best, processorSeconds() - start);
    }
    return best;
}

/// A dictionary with this many keys is built, and asked for each.
struct Keys {
    using Key = NSObject (*)(std::size_t number);
    Keys(const char* text, std::size_t number, Key make) : name(text), count(number), key(make) {}

    const char* name;
    std::size_t count;
    Key key;
};

void fillAndAsk(const Keys& keys, std::size_t size) {
    NSMutableDictionary builder;
    for (std::size_t i = 0; i < size; ++i) {
        builder.setObject_forKey(true, keys.key(i));
    }
    const NSDictionary dictionary = builder.dictionary();
    std::size_t found = 0;
    for (std::size_t i = 0; i < size; ++i) {
        found += dictionary.objectForKey(keys.key(i)) ? 1 : 0;
    }
    ASSERT_EQ(found, size);
}

void useNested(const Shape& shape, std::size_t depth) {
    const NSObject value = nested(shape, depth, 1);
    const NSObject same = nested(shape, depth, 1.0);
    ASSERT_TRUE(value.isEqual(same));
    ASSERT_EQ(value.hash(), same.hash());
    ASSERT_GT(value.condensedDescription().length(), depth);
}

NSObject longKey(std::size_t number, std::size_t place) {
    std::string text(400, 'k');
    const std::string digits = std::to_string(1000000 + number);
    text.replace(place, digits.size(), digits);
    return text;
}

void removeAll(std::size_t size, bool oldestFirst) {
    NSMutableDictionary builder;
    for (std::size_t i = 0; i < size; ++i) {
        builder.setObject_forKey(true, i);
    }
    for (std::size_t i = 0; i < size; ++i) {
        builder.removeObjectForKey(oldestFirst ? i : size - 1 - i);
    }
    ASSERT_EQ(builder.count(), 0U);
}

const Keys keys[] = {
    Keys("keys of text", 10000, [](std::size_t i) { return NSObject(numberedKey(i)); }),
    Keys("long keys that differ in front", 2000, [](std::size_t i) { return longKey(i, 0); }),
    Keys("long keys that differ in the middle", 2000, [](std::size_t i) { return longKey(i, 180); }),
    Keys("long keys that differ at the end", 2000, [](std::size_t i) { return longKey(i, 393); }),
    Keys("numbers", 20000, [](std::size_t i) { return NSObject(i); }),
    Keys("numbers far apart", 20000, [](std::size_t i) { return NSObject(std::uint64_t{i} << 40); }),
    Keys("real numbers", 20000, [](std::size_t i) { return NSObject(static_cast<double>(i) + 0.5); }),
    Keys("real numbers far apart", 20000,
         [](std::size_t i) { return NSObject(static_cast<double>(i) * 1e20); }),
    Keys("dates", 20000,
         [](std::size_t i) {
             return NSObject(NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(i) * 65536));
         }),
    Keys("arrays as keys", 3000,
         [](std::size_t i) {
             return NSObject(NSArray{i, i + 1});
         }),
    Keys("nested arrays as keys", 2000,
         [](std::size_t i) {
             return NSObject(NSArray::arrayWithObject(NSArray{i, i}));
         }),
    Keys("records as keys", 2000,
         [](std::size_t i) {
             return NSObject(NSDictionary{{"id", i}, {"name", "x"}});
         }),
};

const Work works[] = {
    Work("nested arrays", 10000, [](std::size_t n) { useNested(shapes[0], n); }),
    Work("nested dictionaries", 10000, [](std::size_t n) { useNested(shapes[1], n); }),
    Work("nested arrays and dictionaries", 10000, [](std::size_t n) { useNested(shapes[2], n); }),
    Work("nested sets", 2000,
         [](std::size_t n) { ASSERT_TRUE(nestedSets(n, 1).isEqual(nestedSets(n, 1.0))); }),
    Work("arrays nested in a dictionary's keys", 2000,
         [](std::size_t n) {
             NSObject value = 1;
             for (std::size_t i = 0; i < n; ++i) {
                 value = NSDictionary{{NSArray::arrayWithObject(value), 1}};
             }
             ASSERT_TRUE(value);
         }),
    Work("removing the oldest first", 10000, [](std::size_t n) { removeAll(n, true); }),
    Work("removing the newest first", 10000, [](std::size_t n) { removeAll(n, false); }),
    Work("building text unit by unit", 50000,
         [](std::size_t n) {
             NSMutableString builder;
             for (std::size_t i = 0; i < n; ++i) {
                 builder.appendCharacter(i % 2 == 0 ? u'a' : u'\u00e9');
             }
             ASSERT_EQ(builder.string().length(), n);
         }),
    Work("building an array", 50000,
         [](std::size_t n) {
             NSMutableArray builder;
             for (std::size_t i = 0; i < n; ++i) {
                 builder.addObject(i);
             }
             ASSERT_EQ(builder.array().count(), n);
         }),
    Work("describing a wide array", 20000,
         [](std::size_t n) {
             NSMutableArray builder;
             for (std::size_t i = 0; i < n; ++i) {
                 builder.addObject(NSArray{i, "a b", "\u00e9"});
             }
             const NSArray array = builder.array();
             ASSERT_GT(array.description().length(), array.condensedDescription().length());
         }),
    Work("comparing many combining marks in another order", 4000,
         [](std::size_t n) {
             const std::u16string below(n, u'\u0323');
             const std::u16string above(n, u'\u0301');
             const NSString left(u"a" + above + below);
             const NSString right(u"a" + below + above);
             ASSERT_EQ(left.compare(right), NSOrderedSame);
         }),
};

// Four times the size takes about four times as long, sixteen times where the time is quadratic. The machine
// may be busy, so the best of several runs counts and a bad result is measured again before it is believed.
template <class Run>
void expectLinear(const char* name, std::size_t size, const Run& run) {
    double growth = 0;
    for (int attempt = 0; attempt < 4; ++attempt) {
        growth = bestTime(run, 4 * size) / bestTime(run, size);
        if (growth < 9 || testing::Test::HasFatalFailure()) {
            break;
        }
    }
    EXPECT_LT(growth, 9) << name;
}

TEST(HugeValues, timesGrowAboutAsTheSizes) {
    for (const Work& work : works) {
        expectLinear(work.name, work.size, work.run);
    }
    for (const Keys& row : keys) {
        expectLinear(row.name, row.count, [&row](std::size_t size) { fillAndAsk(row, size); });
    }
}

} // namespace
