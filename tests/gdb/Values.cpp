// SPDX-License-Identifier: MIT
// One value of each kind, for a debugger to look at. The offsets that the printers know are held to the
// library here: whoever changes a body changes tools/gdb/ZQFoundation-gdb.py as well.
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "foundation/format/NSLocale.h"
#include "foundation/objects/Bodies.h"
#include "foundation/objects/ClassesByName.h"
#include "foundation/objects/KeyTable.h"
#include "foundation/objects/NSException.h"
#include "foundation/objects/TextBuilder.h"
#include "foundation/text/NSRange.h"
#include "foundation/time/NSCalendar.h"
#include "foundation/time/NSTimeZone.h"

using namespace ZQFoundation;

namespace ZQFoundation::detail {

static_assert(static_cast<int>(Kind::string) == 9 && static_cast<int>(Kind::hostObject) == 16);
static_assert(sizeof(Body) == 8 && sizeof(StringBody) == 16 && sizeof(DataBody) == 16 &&
              sizeof(ArrayBody) == 32);
static_assert(sizeof(UrlBody) == 40 && sizeof(TableBody) == 48 && sizeof(NSDictionaryEntry) == 32);
static_assert(sizeof(CharacterSetBody) == 552 && sizeof(CharacterPage) == 32 && sizeof(HostBody) == 16);
static_assert(sizeof(NSException) == 8 + 4 * sizeof(NSObject));

} // namespace ZQFoundation::detail

namespace {

class Store : public NSObjectProtocol {
public:
    int shelves = 7;
    NSString label = "north";
};

/// Memory of the size of a T that contains no T.
template <class T>
union Hollow {
    Hollow() noexcept { std::memset(static_cast<void*>(this), 0xA5, sizeof *this); }
    ~Hollow() {}
    T value;
};

/// A handle with the payload and the kind, whatever they are.
template <class T>
void forge(Hollow<T>& hollow, std::uint64_t payload, unsigned char kind) {
    std::memset(static_cast<void*>(&hollow), 0, sizeof hollow);
    std::memcpy(static_cast<void*>(&hollow), &payload, sizeof payload);
    std::memcpy(reinterpret_cast<char*>(&hollow) + sizeof payload, &kind, 1);
}

int stopHere(const char* why) {
    if (std::getenv("ZQ_ABORT") != nullptr) {
        std::abort();
    }
    return *why;
}

/// As in a call of a log operation.
template <class... Arguments>
int stopInCall(const char* why, FormatString<std::type_identity_t<Arguments>...> format,
               const Arguments&... arguments) {
    const detail::PackedArguments<sizeof...(Arguments)> packed(arguments...);
    const ArgumentList list = packed.list();
    return stopHere(why) + static_cast<int>(list.count()) + (format.text() ? 1 : 0);
}

void raise(const NSString& ascii, const NSDictionary& dictionary) {
    throw NSException(NSRangeException, ascii, dictionary);
}

int stopAmongGarbage(const NSString& ascii, const NSDictionary& dictionary, const Store& store) {
    Hollow<NSString> hollowString;
    Hollow<NSArray> hollowArray;
    Hollow<StringView> hollowView;
    Hollow<NSException> hollowException;
    [[maybe_unused]] const NSException& noException = hollowException.value;
    Hollow<NSTimeZone> hollowZone;
    Hollow<NSString> wildString;
    Hollow<NSDictionary> wildTable;
    Hollow<NSArray> loop;
    forge(wildString, 0x10, 9);
    forge(wildTable, reinterpret_cast<std::uintptr_t>(&hollowString), 13);
    struct {
        std::uint64_t references = 1;
        std::uint64_t count = 1;
        std::uint64_t capacity = 1;
        std::uint64_t hash = 0;
        Hollow<NSArray> element;
    } body;
    forge(loop, reinterpret_cast<std::uintptr_t>(&body), 12);
    forge(body.element, reinterpret_cast<std::uintptr_t>(&body), 12);

    try {
        raise(ascii, dictionary);
    } catch (const NSException& exception) {
        return stopInCall("values", "%d %@ %s %S %f %@ %p %lu", -1, ascii, "c text", u"units", 2.5, store,
                          static_cast<void*>(nullptr), 5UL) == 0
                   ? 1
                   : 0;
    }
    return 0;
}

} // namespace

int main() {
    const NSObject nothing;
    const NSNull null = NSNull::null();
    const NSString nilString;
    const NSString emptyString("");
    const NSString ascii("plain \"text\"");
    const NSString units(u"gr\u00fc\u00df \U0001F600");
    const NSString unpaired(u"a\xd800z");
    const NSString longText(std::string(1000, 'x'));
    const NSObject anyText("any");
    const NSObject yes(true);
    const NSNumber negative(-5);
    const NSNumber greatest(UINT64_MAX);
    const NSNumber real(2.5);
    const NSNumber single(0.1F);
    const NSDate date = NSDate::dateWithTimeIntervalSinceReferenceDate(0.25);
    const NSData data = NSData::dataWithBytes_length("hello", 5);
    const NSURL url = NSURL::URLWithString("https://example.com/a?b");
    const NSURL relative = NSURL::URLWithString_relativeToURL("c", url);
    const NSArray emptyArray = NSArray::array();
    const NSArray array{"a", 1, NSArray{2.5, NSNull::null()}};
    const NSDictionary dictionary{{"one", 1}, {"list", NSArray{"x"}}};
    const NSSet set = NSSet::setWithArray(NSArray{"m", "n"});
    const NSCharacterSet digits = NSCharacterSet::characterSetWithCharactersInString("0123456789");
    const NSCharacterSet emoji = NSCharacterSet::characterSetWithRange(NSMakeRange(0x1F600, 3));
    const NSObject object = makeObject<Store>();
    const Store store;
    const Class type = classOf<Store>();
    const Class nilType;
    const Selector selector(NSString("reload:"));
    const NSRange range = NSMakeRange(3, 5);
    const NSRange notFound = NSMakeRange(NSNotFound, 0);
    const NSLocale locale = NSLocale::localeWithLocaleIdentifier("de_DE");
    [[maybe_unused]] const NSTimeZone zone = NSTimeZone::timeZoneWithName("Europe/Berlin");
    [[maybe_unused]] const NSTimeZone offset = NSTimeZone::timeZoneForSecondsFromGMT(-12600);
    [[maybe_unused]] const NSTimeZone noZone;
    [[maybe_unused]] const NSCalendar calendar = NSCalendar::calendarWithIdentifier("gregorian");
    [[maybe_unused]] const StringView view("look");
    [[maybe_unused]] const StringView unitView(u"\u00e9t\u00e9");
    [[maybe_unused]] const StringView nilView;
    NSMutableString builder("built ");
    builder.appendFormat("%d", 12);
    NSMutableArray list;
    list.addObject("first");
    NSMutableDictionary table;
    table.setObject_forKey(1, "gone");
    table.setObject_forKey(2, "kept");
    table.removeObjectForKey("gone");
    const NSMutableArray noList;
    const NSMutableCharacterSet characters;
    const NSString& reference = ascii;
    return stopAmongGarbage(ascii, dictionary, store) + (reference && range == notFound ? 1 : 0);
}
