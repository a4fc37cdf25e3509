// SPDX-License-Identifier: MIT
// The defaults of host classes, among them the class name, found by the type.
// A class name costs no allocation for nearly all classes: it is a part of the name that the compiler
// stored.
#include "foundation/objects/NSObjectProtocol.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <typeinfo>

#include <cxxabi.h>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/DynamicTypeName.h"
#include "foundation/objects/Hashing.h"
#include "foundation/text/Digits.h"

namespace ZQFoundation::detail {

namespace {

/// Reads the last name of a mangled "5Store" or "N6Viewer5StoreE"; false for anything but plain names.
bool lastPlainName(const char* mangled, NameSpan& name) noexcept {
    const bool nested = *mangled == 'N';
    const char* next = mangled + (nested ? 1 : 0);
    const char* const end = next + std::strlen(next);
    name = {};
    while (isDigit(*next)) {
        std::size_t length = 0;
        const auto [start, error] = std::from_chars(next, end, length);
        if (error != std::errc() || length > static_cast<std::size_t>(end - start)) {
            return false;
        }
        name = {start, length};
        next = start + length;
    }
    return name.length != 0 && (nested ? std::strcmp(next, "E") == 0 : *next == '\0');
}

/// The name of a class whose mangled name must be demangled.
struct ReadName {
    const ReadName* next;
    std::string mangled;
    std::string name;
};

/// The head of a list that only grows, by one entry for each such class.
constinit const ReadName* readNames = nullptr;

const ReadName& readName(const char* mangled) {
    const ReadName* const first = __atomic_load_n(&readNames, __ATOMIC_ACQUIRE);
    // Few classes get here, so a list is enough.
    for (const ReadName* known = first; known != nullptr; known = known->next) {
        if (known->mangled == mangled) {
            return *known;
        }
    }
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> demangled(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), std::free);
    const char* const whole = demangled != nullptr ? demangled.get() : mangled;
    const NameSpan own =
        demangled != nullptr ? ownName(whole, std::strlen(whole)) : NameSpan{whole, std::strlen(whole)};
    // If two threads add the same name, both entries stay, and either is right.
    auto* const fresh = new ReadName{first, mangled, std::string(own.start, own.length)};
    while (!__atomic_compare_exchange_n(&readNames, &fresh->next, fresh, false, __ATOMIC_RELEASE,
                                        __ATOMIC_RELAXED)) {
    }
    return *fresh;
}

} // namespace

NameSpan dynamicTypeName(const std::type_info& type) {
    // Compilers mark names that are unique to one object file by a star.
    const char* const mangled = type.name()[0] == '*' ? type.name() + 1 : type.name();
    NameSpan name;
    // Unnamed namespaces start with "_GLOBAL__N_"; they too are only enclosing names.
    if (lastPlainName(mangled, name)) {
        return name;
    }
    const ReadName& known = readName(mangled);
    return {known.name.data(), known.name.size()};
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

namespace {

/// False for a class from a source that was compiled without run-time types: the entry before its virtual
/// table, which refers to its type, is then null.
bool hasTypeInformation(const NSObjectProtocol* object) noexcept {
    const void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(object), sizeof table);
    return table[-1] != nullptr;
}

} // namespace

NSObjectProtocol::~NSObjectProtocol() = default;

NSString NSObjectProtocol::className() const {
    if (!hasTypeInformation(this)) {
        return nullptr;
    }
    const detail::NameSpan name = detail::dynamicTypeName(typeid(*this));
    return StringView(name.start, name.length);
}

// The address tells objects of one class apart.
NSString NSObjectProtocol::description() const {
    return NSString::stringWithFormat("<%@: %p>", className(), static_cast<const void*>(this));
}

NSString NSObjectProtocol::condensedDescription() const { return description(); }

std::optional<NSString> NSObjectProtocol::stringValue() const { return std::nullopt; }

std::optional<int> NSObjectProtocol::intValue() const { return std::nullopt; }

std::optional<float> NSObjectProtocol::floatValue() const { return std::nullopt; }

bool NSObjectProtocol::isEqual(const NSObject& other) const { return other.hostObject() == this; }

bool NSObjectProtocol::respondsToSelector(const Selector&) const { return false; }

NSObject NSObjectProtocol::performSelector_withObject(const Selector&, const NSObject&) { return nullptr; }

// By identity, in agreement with `isEqual`; a class that overrides one must override both.
std::size_t NSObjectProtocol::hash() const {
    const void* const address = this;
    return detail::hashBytes(&address, sizeof address, 0);
}

} // namespace ZQFoundation
