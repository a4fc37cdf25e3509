// SPDX-License-Identifier: MIT
// Declares Class, a C++ class as a value.
#ifndef ZQFOUNDATION_OBJECTS_CLASS_H
#define ZQFOUNDATION_OBJECTS_CLASS_H

#include "NSString.h"
#include "TypeName.h"

namespace ZQFoundation::detail {

/// What is known of a C++ class: its own name, without namespaces, as bytes.
struct ClassRecord {
    const char* name;
    std::size_t nameLength;
};

template <class T>
inline constexpr ClassRecord classRecord{TypeName<T>::bytes, TypeName<T>::length};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A class as a value: the caller of class operations.
class ZQFOUNDATION_EXPORT Class : public NSObject {
public:
    constexpr Class() noexcept = default;
    constexpr Class(std::nullptr_t) noexcept {}

    /// The class that the record describes; made by `classOf`.
    constexpr explicit Class(const detail::ClassRecord* record) noexcept
        : NSObject(Payload{.classRecord = record}, detail::Kind::classObject) {}

    /// The value if it is a class, else nil.
    explicit Class(const NSObject& object) noexcept : NSObject(object, detail::Kind::classObject) {}
};

/// The class object of any C++ class: `classOf<Store>()`.
template <class T>
constexpr Class classOf() noexcept {
    return Class(&detail::classRecord<T>);
}

} // namespace ZQFoundation

#endif
