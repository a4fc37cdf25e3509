// SPDX-License-Identifier: MIT
// Declares NSObjectProtocol, the base of host classes whose objects are values.
#ifndef ZQFOUNDATION_OBJECTS_NSOBJECTPROTOCOL_H
#define ZQFOUNDATION_OBJECTS_NSOBJECTPROTOCOL_H

#include "NSString.h"

namespace ZQFoundation {

/// What a host's own class implements so that its objects are values: they can be logged with `%@`, name
/// themselves as callers and be stored in collections.
///
/// An object made with `makeObject<T>(...)` is reference-counted and lives as long as a handle holds it. An
/// object anywhere else (on the stack, as a member) may be passed to `%@` and as a caller by reference, never
/// stored. The library calls these operations on whatever thread uses the value, never while it holds one of
/// its own locks.
class ZQFOUNDATION_EXPORT NSObjectProtocol {
public:
    virtual ~NSObjectProtocol();

    /// The class's name. By default the C++ class's own name without namespaces, nil for a class compiled
    /// without run-time types. Nil: the class is unknown.
    virtual NSString className() const;

    /// By default "<ClassName: 0x7f01>".
    virtual NSString description() const;

    /// By default the description.
    virtual NSString condensedDescription() const;

    /// The object's text; empty, as by default, if the class does not offer this form.
    virtual std::optional<NSString> stringValue() const;

    /// The object's integer form; empty, as by default, if the class does not offer it.
    virtual std::optional<int> intValue() const;

    /// The object's floating-point form; empty, as by default, if the class does not offer it.
    virtual std::optional<float> floatValue() const;

    /// Whether the object equals the other value; by default an object equals only itself. Override it
    /// together with `hash`.
    virtual bool isEqual(const NSObject& other) const;

    /// A number that is the same for equal objects; by default derived from the address. Override it together
    /// with `isEqual`.
    virtual std::size_t hash() const;

    /// Whether the object offers the operation of that name, for callers that do not know the class; by
    /// default none.
    virtual bool respondsToSelector(const Selector& selector) const;

    /// Performs the operation of that name. `argument` is nil for an operation without one. Called only with
    /// selectors that the object responds to.
    virtual NSObject performSelector_withObject(const Selector& selector, const NSObject& argument);

protected:
    NSObjectProtocol() noexcept = default;
    NSObjectProtocol(const NSObjectProtocol&) noexcept = default;
    NSObjectProtocol& operator=(const NSObjectProtocol&) noexcept = default;
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {
/// Takes ownership of an object made with `new`.
ZQFOUNDATION_EXPORT NSObject adoptHostObject(NSObjectProtocol* object);
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// Makes a counted object of a host's class and returns the handle to it.
template <class T, class... Arguments>
    requires std::is_base_of_v<NSObjectProtocol, T> NSObject makeObject(Arguments&&... arguments) {
        return detail::adoptHostObject(new T(static_cast<Arguments&&>(arguments)...));
    }

} // namespace ZQFoundation

#endif
