// SPDX-License-Identifier: MIT
// How a log line describes the object or class that logs.
#include "log/LogComposition.h"

#include <gmock/gmock.h>

#include "foundation/objects/NSDate.h"
#include "tests/kit/Values.h"
#include "tests/log/LogScene.h"

using namespace ZQFoundation;
using kit::utf8Of;

namespace shelf {

/// A plain class: nothing is known of its objects but their type.
struct Store {
    char contents = 0;

    NSString describedBy(StringView method) const {
        return ZQLog::objectiveCMethodDescriptionStringForCaller_method(this, method);
    }
};

struct Item {};

template <class Content>
struct Box {
    Content content{};
};

struct Outer {
    struct Inner {};
};

/// A polymorphic class, whose objects know what they are.
class Widget {
public:
    virtual ~Widget() = default;
    NSString described() const {
        return ZQLog::objectiveCMethodDescriptionStringForCaller_method(this, "draw");
    }
};

class Button : public Widget {};

template <class Content>
class Panel : public Widget {
    Content content_{};
};

/// A host's class with the name that its base makes up.
class Document : public NSObjectProtocol {};

class Named : public NSObjectProtocol {
public:
    explicit Named(NSString name) : name_(name) {}
    NSString className() const override { return name_; }

private:
    NSString name_;
};

/// The object that a handle holds follows another base here.
class Window : public Widget, public NSObjectProtocol {
public:
    NSString className() const override { return "Window"; }
};

} // namespace shelf

namespace {

using logscene::addressText;
using shelf::Store;

struct Hidden {};
struct HiddenBase {
    virtual ~HiddenBase() = default;
};
struct HiddenDerived : HiddenBase {};

std::string methodText(const LogCaller& caller, StringView method) {
    return utf8Of(ZQLog::objectiveCMethodDescriptionStringForCaller_method(caller, method));
}

std::string functionText(const char* name) {
    return utf8Of(ZQLog::cFunctionDescriptionStringForFunctionName(name));
}

/// What an instance of that class at that address is called.
std::string instanceText(const std::string& className, const void* address) {
    return "-[(" + className + " *)" + addressText(address) + " run:]";
}

} // namespace

TEST(MethodDescription, hasAnEmptySignAndPlaceholdersWithoutCallerAndMethod) {
    EXPECT_EQ(methodText(nullptr, nullptr), "[<<no instance>> <<no method>>]");
    EXPECT_EQ(methodText(nullptr, "reload:"), "[<<no instance>> reload:]");
}

TEST(MethodDescription, takesEveryFormOfNothingAsNoInstance) {
    const Store* const noStore = nullptr;
    const void* const noAddress = nullptr;
    const NSObjectProtocol* const noObject = nullptr;
    const shelf::Button* const noButton = nullptr;
    const NSString* const noHandle = nullptr;
    const NSString nilHandle;
    for (const LogCaller& caller :
         {LogCaller(noStore), LogCaller(noAddress), LogCaller(noObject), LogCaller(noButton),
          LogCaller(noHandle), LogCaller(nilHandle), LogCaller(&nilHandle), LogCaller(nullptr)}) {
        EXPECT_EQ(methodText(caller, "run:"), "[<<no instance>> run:]");
    }
    EXPECT_EQ(methodText(NSObject(), "run:"), "[<<no instance>> run:]");
    EXPECT_EQ(methodText(Class(), "run:"), "[<<no instance>> run:]");
}

TEST(MethodDescription, namesClassAndAddressOfAnInstance) {
    const Store store;
    const shelf::Outer::Inner inner;
    const Hidden hidden;
    const HiddenDerived derived;
    struct Local {};
    const Local local;
    const shelf::Box<int> box;
    const shelf::Box<shelf::Item> itemBox;
    const shelf::Panel<int> panel;
    const shelf::Panel<shelf::Item> itemPanel;
    const shelf::Button button;
    const shelf::Widget widget;
    const shelf::Document document;
    const shelf::Named ledger("Ledger");
    const shelf::Window window; // the object for a handle follows another base
    const struct {
        LogCaller caller;
        const char* className;
        const void* address;
    } rows[] = {
        {&store, "Store", &store},
        {const_cast<Store*>(&store), "Store", &store},
        // Without namespaces and enclosing classes.
        {&inner, "Inner", &inner},
        {&hidden, "Hidden", &hidden},
        {&local, "Local", &local},
        // With the arguments of templates.
        {&box, "Box<int>", &box},
        {&itemBox, "Box<shelf::Item>", &itemBox},
        {&panel, "Panel<int>", &panel},
        {&itemPanel, "Panel<shelf::Item>", &itemPanel},
        // The most derived class of a polymorphic instance.
        {static_cast<const HiddenBase*>(&derived), "HiddenDerived", &derived},
        {static_cast<const shelf::Widget*>(&button), "Button", &button},
        {&widget, "Widget", &widget},
        // A host's object is asked for its class name.
        {&document, "Document", &document},
        {&ledger, "Ledger", &ledger},
        {static_cast<const NSObjectProtocol*>(&ledger), "Ledger", &ledger},
        {&window, "Window", &window},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(methodText(row.caller, "run:"), instanceText(row.className, row.address));
    }
    EXPECT_EQ(utf8Of(store.describedBy("run:")), instanceText("Store", &store));
    EXPECT_EQ(methodText(&store, nullptr), "-[(Store *)" + addressText(&store) + " <<no method>>]");
    EXPECT_EQ(utf8Of(button.described()), "-[(Button *)" + addressText(&button) + " draw]");
}

TEST(MethodDescription, writesAddressesInLowerCaseHexWithoutLeadingZeros) {
    EXPECT_EQ(methodText(reinterpret_cast<const Store*>(0x7f01), "reload:"), "-[(Store *)0x7f01 reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(0xABCDEF), "reload:"), "?[0xabcdef reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(0x1), nullptr), "?[0x1 <<no method>>]");
    EXPECT_EQ(methodText(reinterpret_cast<void*>(UINTPTR_MAX), "reload:"),
              "?[" + addressText(reinterpret_cast<const void*>(UINTPTR_MAX)) + " reload:]");
}

TEST(MethodDescription, describesAHostsObjectInAHandleByTheObject) {
    const NSObject ledger = makeObject<shelf::Named>("Ledger");
    const NSObject copy = ledger;
    EXPECT_EQ(methodText(ledger, "run:"), instanceText("Ledger", ledger.hostObject()));
    EXPECT_EQ(methodText(&copy, "run:"), methodText(ledger, "run:"));
}

TEST(MethodDescription, marksAnObjectThatReportsNoClassWithAQuestionMark) {
    const shelf::Named nameless(nullptr);
    EXPECT_EQ(methodText(&nameless, "reload:"), "?[" + addressText(&nameless) + " reload:]");
    EXPECT_EQ(methodText(&nameless, nullptr), "?[" + addressText(&nameless) + " <<no method>>]");
    const NSObject inHandle = makeObject<shelf::Named>(nullptr);
    EXPECT_EQ(methodText(inHandle, "reload:"), "?[" + addressText(inHandle.hostObject()) + " reload:]");
}

TEST(MethodDescription, marksAClassWithAPlusAndWritesNoAddress) {
    EXPECT_EQ(methodText(classOf<Store>(), "sharedStore"), "+[Store sharedStore]");
    EXPECT_EQ(methodText(classOf<Store>(), nullptr), "+[Store <<no method>>]");
    EXPECT_EQ(methodText(classOf<shelf::Outer::Inner>(), "run:"), "+[Inner run:]");
    EXPECT_EQ(methodText(classOf<shelf::Box<int>>(), "run:"), "+[Box<int> run:]");
    EXPECT_EQ(methodText(classOf<shelf::Widget>(), "run:"), "+[Widget run:]");
    const NSObject heldAsAValue = classOf<shelf::Document>();
    EXPECT_EQ(methodText(heldAsAValue, "run:"), "+[Document run:]");
    EXPECT_EQ(methodText(&heldAsAValue, "run:"), "+[Document run:]");
}

TEST(MethodDescription, namesValuesByTheirClass) {
    const struct {
        NSObject value;
        const char* className;
    } rows[] = {{NSString("text"), "NSString"},
                {NSArray{"a"}, "NSArray"},
                {NSDictionary{{"k", "v"}}, "NSDictionary"},
                {NSDate::dateWithTimeIntervalSinceReferenceDate(0), "NSDate"},
                {NSObject(3), "NSNumber"},
                {NSNull::null(), "NSNull"}};
    for (const auto& [value, className] : rows) {
        const std::string text = methodText(value, "run:");
        EXPECT_THAT(text,
                    testing::MatchesRegex("-\\[\\(" + std::string(className) + " \\*\\)0x[0-9a-f]+ run:\\]"));
    }
}

TEST(MethodDescription, takesTheMethodAsAnyText) {
    EXPECT_EQ(methodText(nullptr, NSString("open:with:")), "[<<no instance>> open:with:]");
    EXPECT_EQ(methodText(nullptr, u"open:"), "[<<no instance>> open:]");
    EXPECT_EQ(methodText(nullptr, "größer:"), "[<<no instance>> größer:]");
    EXPECT_EQ(methodText(nullptr, "50%@ %d"), "[<<no instance>> 50%@ %d]");
    EXPECT_EQ(methodText(nullptr, NSString()), "[<<no instance>> <<no method>>]");
}

TEST(FunctionDescription, addsParenthesesToANameOrKeepsTheLastPathComponentOfOneWithAColon) {
    const struct {
        const char* name;
        const char* text;
    } rows[] = {
        {"parse_header", "parse_header()"},
        {"größe", "größe()"},
        {"100%d %@", "100%d %@()"},
        {" ", " ()"},
        {__func__, "TestBody()"},
        {nullptr, "<<no function name>>()"},
        {"", "<<no function name>>()"},
        {"caf\xE9", "caf\xEF\xBF\xBD()"},
        {"a/b/c.m", "a/b/c.m()"},
        {"-[Foo bar]", "-[Foo bar]()"},
        {"/", "/()"},
        {"a/", "a/()"},
        {"-[Foo bar:]", "-[Foo bar:]"},
        {"a/b/c.m:12", "c.m:12"},
        {"/c.m:12", "c.m:12"},
        {"c.m:12", "c.m:12"},
        {"c.m:12/", "c.m:12"},
        {"a/c.m:12/", "c.m:12"},
        {"Store::reload", "Store::reload"},
        {":", ":"},
        {"/:", ":"},
        {":/", ":"},
        // The colon decides, also when it is not in the part that is left.
        {"a:b/c", "c"},
        {"http://host/x.y", "x.y"},
        {"größe:/ärger", "ärger"},
    };
    for (const auto& [name, text] : rows) {
        EXPECT_EQ(functionText(name), text);
    }
}
