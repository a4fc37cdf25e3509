// SPDX-License-Identifier: MIT
// Classes as values, and what a value that is not a class returns.
#include "foundation/objects/Class.h"

#include <gtest/gtest.h>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"
#include "tests/kit/Values.h"

class ClassTestOutside {};

namespace ClassTestNames {
class Store {
public:
    class Inner {};
};
struct Plain {};
enum class Color { red };
template <class T>
class Box {};
namespace Deep::Deeper {
class Store {};
} // namespace Deep::Deeper
} // namespace ClassTestNames

using namespace ZQFoundation;
using namespace kit;

namespace {

class Hidden {};

TEST(Class, isNamedByTheOwnNameOfTheClass) {
    class Local {};
    const struct {
        Class value;
        const char* name;
    } rows[] = {
        {classOf<ClassTestOutside>(), "ClassTestOutside"},
        {classOf<ClassTestNames::Store>(), "Store"},
        {classOf<ClassTestNames::Store::Inner>(), "Inner"},
        {classOf<ClassTestNames::Plain>(), "Plain"},
        {classOf<ClassTestNames::Color>(), "Color"},
        {classOf<ClassTestNames::Deep::Deeper::Store>(), "Store"},
        {classOf<Hidden>(), "Hidden"},
        {classOf<Local>(), "Local"},
        {classOf<ClassTestNames::Box<int>>(), "Box<int>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8Of(row.value.className()), row.name);
        EXPECT_EQ(utf8Of(NSObject(row.value).className()), row.name);
    }
    EXPECT_EQ(utf8Of(classOf<ClassTestNames::Box<ClassTestNames::Store>>().className()).rfind("Box<", 0), 0U);
}

TEST(Class, isEqualToItselfOnly) {
    const Class store = classOf<ClassTestNames::Store>();
    EXPECT_TRUE(store.isEqual(classOf<ClassTestNames::Store>()));
    EXPECT_EQ(store.hash(), classOf<ClassTestNames::Store>().hash());
    EXPECT_FALSE(store.isEqual(classOf<ClassTestNames::Plain>()));
    EXPECT_FALSE(store.isEqual("Store"));
    EXPECT_FALSE(store.isEqual(makeObject<Offering>()));
}

TEST(Class, goesIntoCollections) {
    const NSDictionary dictionary{{classOf<Hidden>(), "hidden"}};
    EXPECT_EQ(dictionary.objectForKey(classOf<Hidden>()), "hidden");
    EXPECT_FALSE(dictionary.objectForKey(classOf<ClassTestNames::Plain>()));
    EXPECT_TRUE((NSArray{1, classOf<Hidden>()}).containsObject(classOf<Hidden>()));
}

TEST(Class, isNilWhenTheValueIsNoClass) {
    EXPECT_FALSE(Class());
    EXPECT_FALSE(Class(nullptr));
    EXPECT_FALSE(Class(NSObject("Store")));
    EXPECT_FALSE(Class(makeObject<Offering>()));
    EXPECT_TRUE(Class(NSObject(classOf<Hidden>())));
    EXPECT_FALSE(Class().className());
    EXPECT_FALSE(Class().description());
}

TEST(Class, isMadeWhenTheProgramIsCompiled) {
    static constinit const Class made = classOf<Hidden>();
    EXPECT_EQ(utf8Of(made.className()), "Hidden");
    static_assert(detail::TypeName<Hidden>::length == 6);
}

} // namespace
