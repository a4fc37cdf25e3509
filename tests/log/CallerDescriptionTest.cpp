// SPDX-License-Identifier: MIT
// How a log line describes the object or class that logs.
#include "tests/log/LogTestSupport.h"
#include "tests/objects/TestValues.h"

#include "foundation/objects/NSDate.h"

using namespace ZQFoundation;
using TestValues::utf8Of;

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

using logtest::addressText;
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

/// The address in "-[(Name *)0x7f01 run:]", or nothing when the text has another form.
std::string addressIn(const std::string& text, const std::string& className) {
    const std::string head = "-[(" + className + " *)";
    const std::string tail = " run:]";
    if (text.size() < head.size() + tail.size() || text.compare(0, head.size(), head) != 0 ||
        text.compare(text.size() - tail.size(), tail.size(), tail) != 0) {
        return "";
    }
    return text.substr(head.size(), text.size() - head.size() - tail.size());
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
    EXPECT_EQ(methodText(&store, "run:"), instanceText("Store", &store));
    EXPECT_EQ(utf8Of(store.describedBy("run:")), instanceText("Store", &store));
    EXPECT_EQ(methodText(&store, nullptr), "-[(Store *)" + addressText(&store) + " <<no method>>]");
}

TEST(MethodDescription, writesAddressesInLowerCaseHexWithoutLeadingZeros) {
    EXPECT_EQ(methodText(reinterpret_cast<const Store*>(0x7f01), "reload:"), "-[(Store *)0x7f01 reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(0xABCDEF), "reload:"), "?[0xabcdef reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(0x1), "reload:"), "?[0x1 reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(UINTPTR_MAX), "reload:"),
              "?[" + addressText(reinterpret_cast<const void*>(UINTPTR_MAX)) + " reload:]");
}

TEST(MethodDescription, leavesOutNamespacesAndEnclosingClasses) {
    const shelf::Outer::Inner inner;
    EXPECT_EQ(methodText(&inner, "run:"), instanceText("Inner", &inner));
    const Hidden hidden;
    EXPECT_EQ(methodText(&hidden, "run:"), instanceText("Hidden", &hidden));
    const HiddenDerived derived;
    EXPECT_EQ(methodText(static_cast<const HiddenBase*>(&derived), "run:"),
              instanceText("HiddenDerived", &derived));
    struct Local {};
    const Local local;
    EXPECT_EQ(methodText(&local, "run:"), instanceText("Local", &local));
}

TEST(MethodDescription, keepsTheArgumentsOfTemplates) {
    const shelf::Box<int> box;
    EXPECT_EQ(methodText(&box, "run:"), instanceText("Box<int>", &box));
    const shelf::Box<shelf::Item> itemBox;
    EXPECT_EQ(methodText(&itemBox, "run:"), instanceText("Box<shelf::Item>", &itemBox));
    const shelf::Panel<int> panel;
    EXPECT_EQ(methodText(&panel, "run:"), instanceText("Panel<int>", &panel));
    const shelf::Panel<shelf::Item> itemPanel;
    EXPECT_EQ(methodText(&itemPanel, "run:"), instanceText("Panel<shelf::Item>", &itemPanel));
}

TEST(MethodDescription, namesTheMostDerivedClassOfAPolymorphicInstance) {
    const shelf::Button button;
    const shelf::Widget& widget = button;
    EXPECT_EQ(methodText(&widget, "run:"), instanceText("Button", &button));
    EXPECT_EQ(utf8Of(button.described()), "-[(Button *)" + addressText(&button) + " draw]");
    const shelf::Widget plain;
    EXPECT_EQ(methodText(&plain, "run:"), instanceText("Widget", &plain));
}

TEST(MethodDescription, takesTheInstanceByAPointerThatMayChangeItToo) {
    Store store;
    EXPECT_EQ(methodText(&store, "run:"), instanceText("Store", &store));
    void* const address = &store;
    EXPECT_EQ(methodText(address, "run:"), "?[" + addressText(&store) + " run:]");
}

TEST(MethodDescription, asksAHostsObjectForItsClassName) {
    const shelf::Document document;
    EXPECT_EQ(methodText(&document, "run:"), instanceText("Document", &document));
    const shelf::Named ledger("Ledger");
    EXPECT_EQ(methodText(&ledger, "run:"), instanceText("Ledger", &ledger));
    const NSObjectProtocol& anyObject = ledger;
    EXPECT_EQ(methodText(&anyObject, "run:"), instanceText("Ledger", &ledger));
}

TEST(MethodDescription, describesAHostsObjectInAHandleByTheObject) {
    const NSObject ledger = makeObject<shelf::Named>("Ledger");
    const NSObject copy = ledger;
    EXPECT_EQ(methodText(ledger, "run:"), instanceText("Ledger", ledger.hostObject()));
    EXPECT_EQ(methodText(copy, "run:"), methodText(ledger, "run:"));
    EXPECT_EQ(methodText(&copy, "run:"), methodText(ledger, "run:"));
}

TEST(MethodDescription, givesTheAddressOfTheWholeHostObjectBehindAnotherBase) {
    const shelf::Window window;
    ASSERT_NE(static_cast<const void*>(static_cast<const NSObjectProtocol*>(&window)),
              static_cast<const void*>(&window));
    EXPECT_EQ(methodText(&window, "run:"), instanceText("Window", &window));
}

TEST(MethodDescription, marksAnObjectThatReportsNoClassWithAQuestionMark) {
    const shelf::Named nameless(nullptr);
    EXPECT_EQ(methodText(&nameless, "reload:"), "?[" + addressText(&nameless) + " reload:]");
    EXPECT_EQ(methodText(&nameless, nullptr), "?[" + addressText(&nameless) + " <<no method>>]");
    const NSObject inHandle = makeObject<shelf::Named>(nullptr);
    EXPECT_EQ(methodText(inHandle, "reload:"), "?[" + addressText(inHandle.hostObject()) + " reload:]");
    EXPECT_EQ(methodText(reinterpret_cast<const void*>(0x7f01), nullptr), "?[0x7f01 <<no method>>]");
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
        const std::string address = addressIn(text, className);
        EXPECT_EQ(address.substr(0, 2), "0x") << text;
        EXPECT_GT(address.size(), 2U) << text;
        EXPECT_EQ(address.find_first_not_of("0123456789abcdefx"), std::string::npos) << text;
    }
}

TEST(MethodDescription, takesTheMethodAsAnyText) {
    EXPECT_EQ(methodText(nullptr, NSString("open:with:")), "[<<no instance>> open:with:]");
    EXPECT_EQ(methodText(nullptr, u"open:"), "[<<no instance>> open:]");
    EXPECT_EQ(methodText(nullptr, "größer:"), "[<<no instance>> größer:]");
    EXPECT_EQ(methodText(nullptr, "50%@ %d"), "[<<no instance>> 50%@ %d]");
    EXPECT_EQ(methodText(nullptr, NSString()), "[<<no instance>> <<no method>>]");
}

TEST(FunctionDescription, addsParenthesesToTheName) {
    EXPECT_EQ(functionText("parse_header"), "parse_header()");
    EXPECT_EQ(functionText("größe"), "größe()");
    EXPECT_EQ(functionText("100%d %@"), "100%d %@()");
    EXPECT_EQ(functionText(" "), " ()");
    EXPECT_EQ(functionText(__func__), "TestBody()");
}

TEST(FunctionDescription, hasAPlaceholderForNoName) {
    EXPECT_EQ(functionText(nullptr), "<<no function name>>()");
    EXPECT_EQ(functionText(""), "<<no function name>>()");
}

TEST(FunctionDescription, keepsThePathOfANameWithoutAColon) {
    EXPECT_EQ(functionText("a/b/c.m"), "a/b/c.m()");
    EXPECT_EQ(functionText("-[Foo bar]"), "-[Foo bar]()");
    EXPECT_EQ(functionText("/"), "/()");
    EXPECT_EQ(functionText("a/"), "a/()");
}

TEST(FunctionDescription, keepsTheLastPathComponentOfANameWithAColon) {
    const struct {
        const char* name;
        const char* text;
    } rows[] = {
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
        EXPECT_EQ(functionText(name), text) << name;
    }
}

TEST(FunctionDescription, readsANameThatIsNotUtf8WithReplacementCharacters) {
    EXPECT_EQ(functionText("caf\xE9"), "caf\xEF\xBF\xBD()");
}
