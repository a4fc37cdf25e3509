// SPDX-License-Identifier: MIT
// What all values have in common: release, class names, optional forms.
// The hardest promise here is that releasing a value of any depth neither overflows the stack nor allocates.
#include "foundation/objects/NSObject.h"

#include <new>
#include <ostream>
#include <string>
#include <string_view>

#include "foundation/objects/DynamicTypeName.h"
#include "foundation/objects/Hashing.h"
#include "foundation/objects/KeyTable.h"
#include "foundation/objects/Numbers.h"
#include "foundation/objects/StringBodies.h"
#include "foundation/system/SignalSafeMemory.h"

namespace ZQFoundation {

using detail::Access;
using detail::Kind;

} // namespace ZQFoundation

namespace ZQFoundation::detail {

namespace {

/// The body says how many words before it its block begins.
StringBlock* blockOf(const StringBody& body) noexcept {
    auto* const words = reinterpret_cast<std::size_t*>(const_cast<StringBody*>(&body));
    return reinterpret_cast<StringBlock*>(words - std::size_t{body.placeInBlock});
}

/// Frees the block with its last string. If all that are left are released at once, nobody else can change
/// the count, and a plain load is enough.
void releaseFromBlock(StringBlock* block, std::size_t bodies) noexcept {
    if (__atomic_load_n(&block->live, __ATOMIC_ACQUIRE) == bodies ||
        __atomic_sub_fetch(&block->live, bodies, __ATOMIC_ACQ_REL) == 0) {
        ::operator delete(block);
    }
}

void freeString(StringBody* body) noexcept {
    if (body->placeInBlock != 0) {
        releaseFromBlock(blockOf(*body), 1);
    } else if (body->isSignalSafe) {
        giveBackSignalSafeMemory(body);
    } else {
        ::operator delete(body);
    }
}

/// Bodies whose last reference was released, chained through their reference counts with the kind in the low
/// bits, so that releasing a tree of any depth needs neither stack nor memory.
class DeadBodies {
public:
    DeadBodies() noexcept = default;
    DeadBodies(const DeadBodies&) = delete;
    DeadBodies& operator=(const DeadBodies&) = delete;
    void push(Kind kind, Body* body) noexcept {
        body->references = head_;
        head_ = reinterpret_cast<std::uintptr_t>(body) | kindBits(kind);
    }

    bool pop(Kind& kind, Body*& body) noexcept {
        if (head_ == 0) {
            return false;
        }
        kind = static_cast<Kind>((head_ & kindMask) + static_cast<std::uintptr_t>(Kind::string));
        body = reinterpret_cast<Body*>(head_ & ~kindMask);
        head_ = body->references;
        return true;
    }

    /// Releases one reference; the handle is not destroyed, its storage is simply freed.
    void releaseMember(const NSObject& member) noexcept {
        const Kind kind = Access::kind(member);
        if (kind < Kind::string || !dropReference(Access::body(member)->references)) {
            return;
        }
        if (kind != Kind::string) {
            push(kind, Access::body(member));
        } else if (StringBody& string = *Access::string(member); string.placeInBlock == 0) {
            freeString(&string);
        } else {
            addToBlock(blockOf(string));
        }
    }

    ~DeadBodies() { addToBlock(nullptr); }

private:
    /// Neighbors are mostly released together, and then the block's count is changed once.
    void addToBlock(StringBlock* block) noexcept {
        if (block_ != block && block_ != nullptr) {
            releaseFromBlock(block_, releasedOfBlock_);
        }
        releasedOfBlock_ = block_ == block ? releasedOfBlock_ + 1 : 1;
        block_ = block;
    }

    static constexpr std::uintptr_t kindMask = 7;
    static_assert(static_cast<int>(Kind::hostObject) - static_cast<int>(Kind::string) <=
                  static_cast<int>(kindMask));
    static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ > kindMask);

    static std::uintptr_t kindBits(Kind kind) noexcept {
        return static_cast<std::uintptr_t>(kind) - static_cast<std::uintptr_t>(Kind::string);
    }

    std::uintptr_t head_ = 0;
    StringBlock* block_ = nullptr;
    std::size_t releasedOfBlock_ = 0;
};

/// Collects the bodies that a host object releases while it is itself released, so that chains of host
/// objects need no stack.
constinit thread_local DeadBodies* releasingHost = nullptr;

/// The destructor of a host's class may release handles, whose bodies `destroy` then adds to the list.
void deleteHost(NSObjectProtocol* object, DeadBodies& dead) noexcept {
    DeadBodies* const outer = releasingHost;
    releasingHost = &dead;
    delete object;
    releasingHost = outer;
}

/// Of any body but a string's.
void dismantle(Kind kind, Body* body, DeadBodies& dead) noexcept {
    switch (kind) {
    case Kind::array: {
        auto* const array = static_cast<ArrayBody*>(body);
        for (std::size_t i = 0; i < array->count; ++i) {
            dead.releaseMember(array->elements()[i]);
        }
        break;
    }
    case Kind::dictionary:
    case Kind::set: {
        auto* const table = static_cast<TableBody*>(body);
        for (std::size_t i = 0; i < table->used; ++i) {
            dead.releaseMember(table->entries()[i].key);
            dead.releaseMember(table->entries()[i].value);
        }
        break;
    }
    case Kind::url:
        dead.releaseMember(static_cast<UrlBody*>(body)->text);
        dead.releaseMember(static_cast<UrlBody*>(body)->base);
        break;
    case Kind::hostObject:
        deleteHost(static_cast<HostBody*>(body)->object, dead);
        break;
    // Data and character sets own nothing else.
    default:
        break;
    }
    ::operator delete(body);
}

} // namespace

/// Strings and data own no other values and are freed at once. Everything else is taken apart here, or by the
/// call that is releasing a host object on this thread.
void destroy(Kind kind, Body* body) noexcept {
    if (kind == Kind::string) {
        return freeString(static_cast<StringBody*>(body));
    }
    const bool mayHoldOthers = kind > Kind::data;
    if (mayHoldOthers && releasingHost != nullptr) {
        releasingHost->push(kind, body);
        return;
    }
    DeadBodies dead;
    do {
        dismantle(kind, body, dead);
    } while (dead.pop(kind, body));
}

NSObject adoptHostObject(NSObjectProtocol* object) {
    // The host's object must not leak when there is no memory for its body, so nothing may throw before it
    // is owned.
    void* const storage = ::operator new(sizeof(HostBody), std::nothrow);
    if (storage == nullptr) {
        delete object;
        throw std::bad_alloc();
    }
    auto* const body = new (storage) HostBody;
    body->references = 1;
    body->object = object;
    return Access::adopt(body, Kind::hostObject);
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSObject NSObject::stringFrom(StringView text) { return NSString(text); }

const NSObjectProtocol* NSObject::hostObject() const noexcept {
    return kind_ == Kind::hostObject ? Access::host(*this)->object : nullptr;
}

/// Constant texts, so that a log line can name the class of a value in a signal handler.
detail::NameSpan detail::ownClassName(const NSObject& value) noexcept {
    const auto named = [](std::string_view name) {
        return NameSpan{name.data(), name.size()};
    };
    switch (Access::kind(value)) {
    case Kind::absent:
    case Kind::hostObject:
        return {};
    case Kind::null:
        return named("NSNull");
    case Kind::date:
        return named("NSDate");
    case Kind::classObject:
        return {Access::classRecord(value)->name, Access::classRecord(value)->nameLength};
    case Kind::string:
        return named("NSString");
    case Kind::data:
        return named("NSData");
    case Kind::url:
        return named("NSURL");
    case Kind::array:
        return named("NSArray");
    case Kind::dictionary:
        return named("NSDictionary");
    case Kind::set:
        return named("NSSet");
    case Kind::characterSet:
        return named("NSCharacterSet");
    default:
        return named("NSNumber");
    }
}

NSString NSObject::className() const {
    if (kind_ == Kind::absent) {
        return {};
    }
    if (kind_ == Kind::hostObject) {
        return hostObject()->className();
    }
    const detail::NameSpan name = detail::ownClassName(*this);
    return StringView(name.start, name.length);
}

// These three answer whether a value has such a form at all, which is different from a form of 0.
std::optional<NSString> NSObject::offeredStringValue() const {
    if (detail::isNumber(*this)) {
        return as<NSNumber>().stringValue();
    }
    return kind_ == Kind::hostObject ? hostObject()->stringValue() : std::nullopt;
}

// A string always offers a number, 0 if it has no digits; so a string is never without an integer form.
std::optional<int> NSObject::offeredIntValue() const {
    if (detail::isNumber(*this)) {
        return as<NSNumber>().intValue();
    }
    if (kind_ == Kind::string) {
        return as<NSString>().intValue();
    }
    return kind_ == Kind::hostObject ? hostObject()->intValue() : std::nullopt;
}

std::optional<float> NSObject::offeredFloatValue() const {
    if (detail::isNumber(*this)) {
        return as<NSNumber>().floatValue();
    }
    if (kind_ == Kind::string) {
        return as<NSString>().floatValue();
    }
    return kind_ == Kind::hostObject ? hostObject()->floatValue() : std::nullopt;
}

void detail::printCondensed(const NSObject& object, std::ostream& stream) {
    // For debuggers and test output: nil must be visible.
    stream << (object ? object.condensedDescription().utf8() : "(nil)");
}

} // namespace ZQFoundation
