// SPDX-License-Identifier: MIT
// The host's classes that the library finds by name at run time.
// A registration is permanent for those who hold its class: a class value is a pointer to the record. Only
// the object goes.
#include "foundation/objects/ClassesByName.h"

#include <new>

#include "foundation/objects/Bodies.h"
#include "foundation/objects/NSException.h"
#include "foundation/system/Lock.h"

namespace ZQFoundation::detail {

namespace {

/// One registration. Its record and name live until the process ends, since a class value may outlast it; the
/// object that performs the operations is released with the registration.
struct RegisteredClass {
    ClassRecord record;
    NSString name;
    NSObject object;
    RegisteredClass* previous;
};

/// The newest first. Read and changed under the lock.
constinit RegisteredClass* registered = nullptr;
constinit Lock registryLock;

// Never freed: class values refer to its bytes.
std::string* keptText(const NSString& name) { return new std::string(name.utf8()); }

RegisteredClass* registeredUnder(StringView name) {
    RegisteredClass* entry = registered;
    // Entries whose object was released are skipped, so that a name may be registered again.
    while (entry != nullptr && !(entry->object && entry->name.isEqualToString(name))) {
        entry = entry->previous;
    }
    return entry;
}

/// The object that performs the operations of a value: a host object itself, or the object registered for a
/// class. Nil for any other.
NSObject performerOf(const NSObject& value) {
    if (Access::kind(value) != Kind::classObject) {
        return value.hostObject() != nullptr ? value : NSObject();
    }
    const ClassRecord* const record = Access::classRecord(value);
    // Copied under the lock, so the object stays alive while it performs, even if its registration ends
    // meanwhile.
    const Guard<Lock> guard(registryLock);
    for (const RegisteredClass* entry = registered; entry != nullptr; entry = entry->previous) {
        if (&entry->record == record) {
            return entry->object;
        }
    }
    return nullptr;
}

} // namespace

} // namespace ZQFoundation::detail

namespace ZQFoundation {

Selector NSSelectorFromString(const NSString& name) { return Selector(name); }

NSString NSStringFromSelector(const Selector& selector) { return selector.name(); }

Class NSClassFromString(StringView name) {
    if (!name) {
        return nullptr;
    }
    const detail::Guard<detail::Lock> guard(detail::registryLock);
    const detail::RegisteredClass* const entry = detail::registeredUnder(name);
    return entry != nullptr ? Class(&entry->record) : Class();
}

NSString NSStringFromClass(const Class& type) { return type.className(); }

ClassRegistration::ClassRegistration(const NSString& name, const NSObject& classObject) {
    if (!name || name.isEqualToString("") || !classObject) {
        return;
    }
    // Everything that allocates or may fail comes before the lock.
    const std::string* const text = detail::keptText(name);
    auto* const entry = new detail::RegisteredClass{{text->data(), text->size()}, name, classObject, nullptr};
    const detail::Guard<detail::Lock> guard(detail::registryLock);
    entry->previous = detail::registered;
    detail::registered = entry;
    entry_ = entry;
}

ClassRegistration::~ClassRegistration() {
    auto* const entry = static_cast<detail::RegisteredClass*>(entry_);
    if (entry == nullptr) {
        return;
    }
    NSObject released; // released outside the lock: the object may log
    const detail::Guard<detail::Lock> guard(detail::registryLock);
    released.swap(entry->object);
}

// Only host objects perform selectors; the library's own values respond to none.
bool NSObject::respondsToSelector(const Selector& selector) const {
    const NSObject performer = detail::performerOf(*this);
    return selector && performer && performer.hostObject() != nullptr &&
           performer.hostObject()->respondsToSelector(selector);
}

NSObject NSObject::performSelector(const Selector& selector) const {
    return performSelector_withObject(selector, nullptr);
}

NSObject NSObject::performSelector_withObject(const Selector& selector, const NSObject& argument) const {
    if (!*this) {
        return nullptr;
    }
    const NSObject performer = detail::performerOf(*this);
    if (!selector || !performer || performer.hostObject() == nullptr ||
        !performer.hostObject()->respondsToSelector(selector)) {
        NSException::raise_format(NSInvalidArgumentException, "%@ does not perform %@", className(),
                                  selector.name());
    }
    return detail::Access::host(performer)->object->performSelector_withObject(selector, argument);
}

} // namespace ZQFoundation
