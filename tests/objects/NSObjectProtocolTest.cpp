// SPDX-License-Identifier: MIT
// Objects of a host's own classes as values.
#include "foundation/objects/NSObjectProtocol.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/objects/NSArray.h"
#include "foundation/objects/NSDictionary.h"
#include "foundation/objects/NSSet.h"
#include "tests/kit/Values.h"

using namespace ZQFoundation;
using namespace kit;

namespace HostNames {
class Document : public ZQFoundation::NSObjectProtocol {};
namespace Views {
class Window : public ZQFoundation::NSObjectProtocol {};
} // namespace Views
} // namespace HostNames

namespace {

class Renamed : public NSObjectProtocol {
public:
    NSString className() const override { return "Other"; }
};

class Nameless : public NSObjectProtocol {
public:
    NSString className() const override { return nullptr; }
};

class Silent : public NSObjectProtocol {
public:
    NSString description() const override { return nullptr; }
};

class Condensed : public NSObjectProtocol {
public:
    NSString description() const override { return "long"; }
    NSString condensedDescription() const override { return "short"; }
};

/// Equal to any other of the same identifier.
class Record : public NSObjectProtocol {
public:
    explicit Record(int identifier) : identifier_(identifier) {}
    bool isEqual(const NSObject& other) const override {
        const auto* that = dynamic_cast<const Record*>(other.hostObject());
        return that != nullptr && that->identifier_ == identifier_;
    }
    std::size_t hash() const override { return static_cast<std::size_t>(identifier_); }

private:
    int identifier_;
};

std::string withoutAddress(const std::string& text) {
    const std::size_t start = text.find("0x");
    return start == std::string::npos ? text : text.substr(0, start + 2) + ">";
}

TEST(NSObjectProtocol, isNamedByItsClassWithoutNamespaces) {
    EXPECT_EQ(utf8Of(makeObject<HostNames::Document>().className()), "Document");
    EXPECT_EQ(utf8Of(makeObject<HostNames::Views::Window>().className()), "Window");
    EXPECT_EQ(utf8Of(makeObject<Condensed>().className()), "Condensed") << "in an unnamed namespace";
    EXPECT_EQ(utf8Of(HostNames::Document().className()), "Document") << "on the stack";
    EXPECT_EQ(utf8Of(makeObject<Renamed>().className()), "Other");
    EXPECT_FALSE(makeObject<Nameless>().className());
}

TEST(NSObjectProtocol, isDescribedByClassAndAddress) {
    const NSObject first = makeObject<HostNames::Document>();
    const NSObject second = makeObject<HostNames::Document>();
    EXPECT_EQ(withoutAddress(shown(first)), "<Document: 0x>");
    EXPECT_EQ(shown(first).substr(13).find_first_not_of("0123456789abcdef"), shown(first).size() - 14);
    EXPECT_EQ(withoutAddress(shown(makeObject<Renamed>())), "<Other: 0x>");
    EXPECT_NE(shown(first), shown(second));
    EXPECT_EQ(shown(first), shown(NSObject(first)));
    EXPECT_EQ(utf8Of(first.condensedDescription()), shown(first));
    EXPECT_EQ(withoutAddress(shown(NSArray{first, 1})), "(\n    \"<Document: 0x>");
}

TEST(NSObjectProtocol, answersWithItsOwnOperations) {
    EXPECT_EQ(shown(makeObject<Condensed>()), "long");
    EXPECT_EQ(utf8Of(makeObject<Condensed>().condensedDescription()), "short");
    EXPECT_EQ(utf8Of((NSArray{makeObject<Condensed>(), 1}).condensedDescription()), "( short, 1 )");
    EXPECT_EQ(shown(NSArray{makeObject<Condensed>(), 1}), "(\n    long,\n    1\n)");
    const NSObject offering = makeObject<Offering>(NSString("text"), 7, 2.5F);
    EXPECT_EQ(utf8Of(offering.offeredStringValue().value()), "text");
    EXPECT_EQ(offering.offeredIntValue(), 7);
    EXPECT_EQ(offering.offeredFloatValue(), 2.5F);
}

TEST(NSObjectProtocol, mayHaveNoDescription) {
    EXPECT_FALSE(makeObject<Silent>().description());
    EXPECT_EQ(utf8Of((NSArray{makeObject<Silent>(), 1}).condensedDescription()), "( (null), 1 )");
    EXPECT_NE(shown(NSArray{makeObject<Silent>(), 1}), "(nil)");
}

TEST(NSObjectProtocol, isEqualToItselfOnlyUnlessItSaysOtherwise) {
    const NSObject object = makeObject<HostNames::Document>();
    EXPECT_TRUE(object.isEqual(object));
    EXPECT_EQ(object.hash(), NSObject(object).hash());
    EXPECT_FALSE(object.isEqual(makeObject<HostNames::Document>()));
    EXPECT_FALSE(object.isEqual(1));
    EXPECT_TRUE(makeObject<Record>(7).isEqual(makeObject<Record>(7)));
    EXPECT_FALSE(makeObject<Record>(7).isEqual(makeObject<Record>(8)));
    EXPECT_EQ((NSSet{makeObject<Record>(7), makeObject<Record>(7), makeObject<Record>(8)}).count(), 2U);
    EXPECT_EQ((NSDictionary{{makeObject<Record>(7), "seven"}}).objectForKey(makeObject<Record>(7)), "seven");
    EXPECT_TRUE((NSArray{1, makeObject<Record>(7)}).isEqualToArray(NSArray{1, makeObject<Record>(7)}));
}

TEST(NSObjectProtocol, isReachedByItsOwnTypeThroughTheHandle) {
    const NSObject object = makeObject<Offering>(NSString("text"), 7);
    const auto* offering = dynamic_cast<const Offering*>(object.hostObject());
    ASSERT_NE(offering, nullptr);
    EXPECT_EQ(offering->offeredInt, 7);
    EXPECT_EQ(object.hostObject(), NSObject(object).hostObject());
}

TEST(NSObjectProtocol, aCopyOfAnObjectIsAnObjectOfItsOwn) {
    int destroyed = 0;
    {
        const NSObject object = makeObject<Offering>(&destroyed);
        const NSObject shared = object;
        const Offering copy = *dynamic_cast<const Offering*>(object.hostObject());
        const NSObject second = makeObject<Offering>(copy);
        EXPECT_NE(second.hostObject(), object.hostObject());
    }
    EXPECT_EQ(destroyed, 3) << "the object, the copy on the stack, the copy in a handle";
}

} // namespace
