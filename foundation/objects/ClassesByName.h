// SPDX-License-Identifier: MIT
// Declares selectors and the registration of host classes that the library finds by name.
#ifndef ZQFOUNDATION_OBJECTS_CLASSESBYNAME_H
#define ZQFOUNDATION_OBJECTS_CLASSESBYNAME_H

#include "Class.h"
#include "NSObjectProtocol.h"

namespace ZQFoundation {

/// The name of an operation as a value, colons included: "noteFileSystemChanged:". Nil when
/// default-constructed.
class ZQFOUNDATION_EXPORT Selector {
public:
    Selector() noexcept = default;
    Selector(std::nullptr_t) noexcept {}

    /// The operation of that name; nil for a nil name.
    explicit Selector(NSString name) noexcept : name_(static_cast<NSString&&>(name)) {}

    /// The name, colons included; nil for nil.
    const NSString& name() const noexcept { return name_; }

    /// True unless the selector is nil.
    explicit operator bool() const noexcept { return static_cast<bool>(name_); }

    /// Whether the names are the same; two nil selectors are the same too.
    friend bool operator==(const Selector& left, const Selector& right) { return left.name_ == right.name_; }

    /// Whether the selector has that name; a nil selector equals a nil text.
    template <detail::PlainText T>
    friend bool operator==(const Selector& left, const T& right) {
        return left.name_ == StringView(right);
    }

private:
    NSString name_;
};

/// The selector of that name, whether or not anything offers the operation; nil for nil.
ZQFOUNDATION_EXPORT Selector NSSelectorFromString(const NSString& name);

/// The selector's name; nil for nil.
ZQFOUNDATION_EXPORT NSString NSStringFromSelector(const Selector& selector);

/// The class that the host has registered under the name, case-sensitively; nil for any other name.
ZQFOUNDATION_EXPORT Class NSClassFromString(StringView name);

/// The class's name; nil for nil.
ZQFOUNDATION_EXPORT NSString NSStringFromClass(const Class& type);

/// Registers a class under a name for a scope, so that the library finds it at run time:
///
///     class Workspace : public NSObjectProtocol {
///     public:
///         NSString className() const override { return "NSWorkspace"; }
///         bool respondsToSelector(const Selector& selector) const override {
///             return selector == "noteFileSystemChanged:";
///         }
///         NSObject performSelector_withObject(const Selector&, const NSObject& folder) override {
///             refresh(NSString(folder));
///             return nullptr;
///         }
///     };
///     // An object of WorkspaceClass returns the shared Workspace for "sharedWorkspace".
///     const ClassRegistration registration("NSWorkspace", makeObject<WorkspaceClass>());
///
/// Of two registrations of the same name the later one is used until it ends. An object that a call in
/// progress uses stays alive until that call ends. Any thread.
class ZQFOUNDATION_EXPORT ClassRegistration {
public:
    /// `classObject` performs the operations of the class. Nil or an empty name registers nothing.
    [[nodiscard]] ClassRegistration(const NSString& name, const NSObject& classObject);
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;
    ~ClassRegistration();

private:
    void* entry_ = nullptr;
};

} // namespace ZQFoundation

#endif
