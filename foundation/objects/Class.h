// SPDX-License-Identifier: MIT
// Declares Class, a C++ class as a value.
#ifndef ZQFOUNDATION_OBJECTS_CLASS_H
#define ZQFOUNDATION_OBJECTS_CLASS_H

#include "NSString.h"
#include "TypeName.h"

namespace ZQFoundation::detail {

/// What is known of a C++ class: its own name, without namespaces, as bytes. A constant compiled into the
/// host, so a class as a value needs no registration and no memory.
struct ClassRecord {
    const char* name;       ///< UTF-8, not NUL-ended
    std::size_t nameLength; ///< in bytes
};

/// The record of a class. Compare records by their names: two plugins may have one each for the same class.
template <class T>
inline constexpr ClassRecord classRecord{TypeName<T>::bytes, TypeName<T>::length};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A class as a value: the caller of class operations, and the receiver of operations by name.
///
///     ZQLog::logSelf_method_logAlways_log(classOf<Store>(), "sharedStore", true, "made");
///     // +[Store sharedStore] made
///
/// It knows its name and nothing else of the class. Nil when default-constructed.
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

/// The class object of any C++ class: `classOf<Store>()`. Its name is the class's own, without namespaces.
template <class T>
constexpr Class classOf() noexcept {
    return Class(&detail::classRecord<T>);
}

} // namespace ZQFoundation

#endif
