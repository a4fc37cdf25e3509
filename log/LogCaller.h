// SPDX-License-Identifier: MIT
// Declares the caller of a log operation.
#ifndef ZQFOUNDATION_LOG_LOGCALLER_H
#define ZQFOUNDATION_LOG_LOGCALLER_H

#include <typeinfo>

#include "../foundation/objects/Class.h"
#include "../foundation/objects/NSObjectProtocol.h"

namespace ZQFoundation::detail {

/// The name of an instance's class, without namespaces: of the most derived one for a polymorphic class.
/// Valid for the life of the process.
ZQFOUNDATION_EXPORT StringView classNameOfType(const std::type_info& type);

#ifdef __cpp_rtti
inline constexpr bool hasDynamicTypes = true;
#else
inline constexpr bool hasDynamicTypes = false; // an object has the class of its pointer
#endif

/// What a line needs from an instance, queried only when the line is made. A table for each class, compiled
/// into the host: the library itself cannot know the types of the host's pointers.
struct InstanceQueries {
    StringView (*className)(const void*);
    const void* (*wholeObject)(const void*); ///< where the most derived object starts
};

/// The queries for a `T`. The second parameter keeps two definitions apart where a program links sources with
/// and without run-time types.
template <class T, bool dynamic = hasDynamicTypes>
inline constexpr InstanceQueries instanceQueries{
    []([[maybe_unused]] const void* instance) -> StringView {
#ifdef __cpp_rtti
        if constexpr (std::is_polymorphic_v<T>) {
            return classNameOfType(typeid(*static_cast<const T*>(instance)));
        }
#endif
        return StringView(TypeName<T>::bytes, TypeName<T>::length);
    },
    [](const void* instance) -> const void* {
        if constexpr (std::is_polymorphic_v<T>) {
            return dynamic_cast<const void*>(static_cast<const T*>(instance));
        } else {
            return instance;
        }
    }};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// Who calls a log operation: `this` of any class, a value, a class (`classOf<Store>()`), or nothing
/// (`nullptr`). Made implicitly from each of them:
///
///     ZQLog::logSelf_method_logAlways_log(this, "reload:", true, "done");
///     // -[(Store *)0x7f01 reload:] done
///
/// Owns nothing and queries nothing until a line is actually made, so what it refers to must live until the
/// call returns. A `void` pointer is an object whose class is unknown.
class LogCaller {
public:
    /// What the caller is.
    enum class Form : unsigned char {
        absent,   ///< nobody
        unknown,  ///< an object given by a `void` pointer
        instance, ///< an object of any other C++ class
        host,     ///< an object of a class that implements NSObjectProtocol
        value,    ///< a value, or a class
    };

    /// Nobody: the line says `<<no instance>>`.
    constexpr LogCaller(std::nullptr_t) noexcept {}

    /// The object, of whatever class; nothing for null. Does not compile for a pointer to characters, which
    /// is a text in the wrong place.
    template <class T>
    constexpr LogCaller(const T* instance) noexcept {
        static_assert(!detail::isCharacter<T>,
                      "a text is not a caller; pass `this`, a value, a class or nullptr");
        if (instance == nullptr) {
            return;
        }
        if constexpr (std::is_void_v<T>) {
            address_ = instance;
            form_ = Form::unknown;
        } else if constexpr (std::is_base_of_v<NSObjectProtocol, T>) {
            address_ = static_cast<const NSObjectProtocol*>(instance);
            form_ = Form::host;
        } else if constexpr (std::is_base_of_v<NSObject, T>) {
            address_ = static_cast<const NSObject*>(instance);
            form_ = Form::value;
        } else {
            address_ = instance;
            queries_ = &detail::instanceQueries<T>;
            form_ = Form::instance;
        }
    }

    /// A value or a class, by reference; a nil one appears as nobody.
    constexpr LogCaller(const NSObject& value) noexcept : address_(&value), form_(Form::value) {}

    /// What the caller is; it decides which of the operations below may be called.
    constexpr Form form() const noexcept { return form_; }

    /// The object, or the handle of a value; null for nobody. Where the pointer's class is a base of the
    /// object's, `wholeInstance` may be another address.
    constexpr const void* address() const noexcept { return address_; }

    /// The value or class of a caller of the form `value`.
    const NSObject& value() const noexcept { return *static_cast<const NSObject*>(address_); }

    /// The object of a caller of the form `host`.
    const NSObjectProtocol& host() const noexcept { return *static_cast<const NSObjectProtocol*>(address_); }

    /// The name of the most derived class of a caller of the form `instance`.
    StringView instanceClassName() const { return queries_->className(address_); }

    /// Where the most derived object of a caller of the form `instance` begins.
    const void* wholeInstance() const { return queries_->wholeObject(address_); }

private:
    const void* address_ = nullptr;
    const detail::InstanceQueries* queries_ = nullptr;
    Form form_ = Form::absent;
};

} // namespace ZQFoundation

#endif
