// SPDX-License-Identifier: MIT
// Declares NSObject, the handle to any value, and NSNull.
#ifndef ZQFOUNDATION_OBJECTS_NSOBJECT_H
#define ZQFOUNDATION_OBJECTS_NSOBJECT_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <type_traits>

#include "../text/Export.h"
#include "../text/StringView.h"

namespace ZQFoundation {

class NSObject;
class NSObjectProtocol;
class NSString;
class NSNumber;
class NSDate;
class NSData;
class NSURL;
class NSArray;
class NSDictionary;
class NSSet;
class NSCharacterSet;
class NSLocale;
class NSTimeZone;
class Selector;

/// The platform's three orderings.
enum NSComparisonResult : int {
    NSOrderedAscending = -1, ///< the left value is the smaller one
    NSOrderedSame = 0,       ///< neither comes before the other
    NSOrderedDescending = 1, ///< the left value is the larger one
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {

/// What a handle refers to. Everything from `string` on is a counted body; the rest is stored in the handle
/// itself.
enum class Kind : unsigned char {
    absent,          ///< nil
    null,            ///< the null object, which is not nil
    boolean,         ///< made from a `bool`; equals 1 or 0
    signedInteger,   ///< everything that fits
    unsignedInteger, ///< only values beyond the signed range
    real,            ///< a `double`
    singleReal,      ///< from a `float`, which is described with fewer digits
    date,            ///< seconds, as a `double`
    classObject,     ///< a pointer to a constant
    string,
    data,
    url,
    array,
    dictionary,
    set,
    characterSet,
    hostObject, ///< an object of a class of the host
};

/// The head of every immutable, counted body: the rest is known only inside the library. Part of the binary
/// interface, because copies of handles are compiled into hosts.
struct Body {
    std::size_t references; ///< accessed by atomic operations alone once two handles share the body
};

struct ClassRecord;

/// Destroys a body after its last reference and, without recursion, everything that only it referred to.
ZQFOUNDATION_EXPORT void destroy(Kind kind, Body* body) noexcept;

/// Another handle refers to the body. Relaxed: the caller has a reference, so it stays alive meanwhile.
inline void retain(Body* body) noexcept { __atomic_add_fetch(&body->references, 1, __ATOMIC_RELAXED); }

/// Whether that was the last reference. The count of a sole owner can no longer change, and a plain load
/// shows that faster than a locked instruction. The order makes what other threads did with the body happen
/// before its destruction.
inline bool dropReference(std::size_t& references) noexcept {
    return __atomic_load_n(&references, __ATOMIC_ACQUIRE) == 1 ||
           __atomic_sub_fetch(&references, 1, __ATOMIC_ACQ_REL) == 0;
}

inline void release(Kind kind, Body* body) noexcept {
    if (dropReference(body->references)) {
        destroy(kind, body);
    }
}

/// Character types, which are neither texts nor numbers: in a collection one could mean either, so it does
/// not compile.
template <class T>
inline constexpr bool isCharacter =
    std::is_same_v<T, char> || std::is_same_v<T, wchar_t> || std::is_same_v<T, char8_t> ||
    std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t>;

/// Only `bool` itself: a pointer, which converts to it, is not a truth value.
template <class T>
concept BooleanValue = std::is_same_v<T, bool>;

/// Integers of at most 64 bits, without `bool` and characters.
template <class T>
concept IntegerValue = std::is_integral_v<T> && sizeof(T) <= sizeof(std::int64_t) && !BooleanValue<T> &&
                       !isCharacter<T>;

/// `long double` is excluded: a value has 64 bits.
template <class T>
concept RealValue = std::is_same_v<T, double> || std::is_same_v<T, float>;

/// What becomes a number when it is made a value.
template <class T>
concept NumericValue = BooleanValue<T> || IntegerValue<T> || RealValue<T>;

struct Access;

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A nullable handle to any value: string, number, date, data, collection, class, host object or nil.
///
///     NSObject value = "text";                        // a string
///     value = 5;                                      // a number
///     value = NSDictionary{{"key", value}};           // {"key": 5}
///     NSString text = value.as<NSString>();           // nil: it is a dictionary
///
/// As large as two pointers. Numbers, dates and nil live in the handle; everything else is an immutable,
/// reference-counted body that all copies share, so handles are cheap to copy and values may be read from any
/// thread. (Two threads must not change the *same handle* at once, as with any object.)
///
/// A default-constructed handle is nil. An operation on nil returns nil, 0, false or an empty result.
///
/// Note for literals: a `bool` is a boolean number, a `const char*` is text and never a truth value, a
/// character does not compile, and `NSArray{}` is a nil handle, not an empty array.
class ZQFOUNDATION_EXPORT NSObject {
public:
    /// Nil.
    constexpr NSObject() noexcept : payload_{.integer = 0}, kind_(detail::Kind::absent) {}
    /// Nil.
    constexpr NSObject(std::nullptr_t) noexcept : NSObject() {}

    /// A boolean number.
    template <detail::BooleanValue T>
    constexpr NSObject(T value) noexcept : payload_{.integer = value ? 1 : 0}, kind_(detail::Kind::boolean) {}

    /// An integer number, its sign kept.
    template <detail::IntegerValue T>
    constexpr NSObject(T value) noexcept
        : payload_{.integer = static_cast<std::int64_t>(value)}, kind_(integerKind(value)) {}

    /// A floating-point number.
    template <detail::RealValue T>
    constexpr NSObject(T value) noexcept
        : payload_{.real = static_cast<double>(value)},
          kind_(std::is_same_v<T, float> ? detail::Kind::singleReal : detail::Kind::real) {}

    /// A string holding a copy of the text; nil for a null pointer.
    template <detail::PlainText T>
    NSObject(const T& text) : NSObject(stringFrom(StringView(text))) {}

    template <detail::OtherText T>
    NSObject(const T&) = delete; // pass StringView(data, bytes) or c_str(), or specialize ObjectConversion

    /// The value that the type's `ObjectConversion` makes.
    template <detail::ConvertedObject T>
    NSObject(const T& object) : NSObject(detail::convertedObject(object)) {}

    /// Another handle to the same value; copies no contents.
    NSObject(const NSObject& other) noexcept : payload_(other.payload_), kind_(other.kind_) {
        if (isCounted()) {
            detail::retain(payload_.body);
        }
    }

    /// Takes the value; the other handle becomes nil.
    constexpr NSObject(NSObject&& other) noexcept : payload_(other.payload_), kind_(other.kind_) {
        other.kind_ = detail::Kind::absent;
    }

    NSObject& operator=(const NSObject& other) noexcept {
        NSObject copy(other);
        swap(copy);
        return *this;
    }

    NSObject& operator=(NSObject&& other) noexcept {
        NSObject taken(static_cast<NSObject&&>(other));
        swap(taken);
        return *this;
    }

    constexpr ~NSObject() {
        if (isCounted()) {
            detail::release(kind_, payload_.body);
        }
    }

    /// True unless the handle is nil. (The null object is a value: true.)
    constexpr explicit operator bool() const noexcept { return kind_ != detail::Kind::absent; }

    /// The value as another type: as a handle, nil if it is of another kind (`object.as<NSString>()`), or as
    /// what the type's `ObjectConversion` makes of it. Converts no contents: a number is not a string.
    template <class T>
    T as() const noexcept(!detail::ConvertedBack<T>) {
        if constexpr (detail::ConvertedBack<T>) {
            return ObjectConversion<T>::fromObject(*this);
        } else {
            static_assert(std::is_base_of_v<NSObject, T>,
                          "a value is a handle, or a type whose specialization of "
                          "ZQFoundation::ObjectConversion has \"fromObject\", as in Std.h, Qt.h and Glib.h; "
                          "for a number, write as<NSNumber>().intValue(), .doubleValue() or the like");
            return T(*this);
        }
    }

    /// The class's name ("NSString", "NSNumber", ...), a class object's own name, what a host object returns;
    /// nil for nil.
    ///
    ///     NSObject(5).className();       // "NSNumber"
    ///     NSObject("5").className();     // "NSString"
    NSString className() const;

    /// The platform's text for the value (collections indented over several lines); nil for nil. A string is
    /// its own description. `condensedDescription` is the form for one line.
    NSString description() const;

    /// Equal by content within one kind; numbers by numeric value across theirs. Nil equals nothing, not even
    /// nil.
    ///
    ///     NSObject(1).isEqual(1.0);  // true
    ///     NSObject("1").isEqual(1);  // false: a text and a number
    bool isEqual(const NSObject& other) const;

    /// Equal values have equal hashes. The same in every process, except for host objects, which define their
    /// own.
    std::size_t hash() const;

    /// The value's text, if it offers one: that of a number, a host object's `stringValue`; empty for any
    /// other value.
    std::optional<NSString> offeredStringValue() const;

    /// The value's 32-bit integer form, if it offers one: that of a number or a string (0 for a string
    /// without digits), a host object's `intValue`; empty for any other value.
    ///
    ///     NSObject("12 km").offeredIntValue();     // 12
    ///     NSObject(NSArray{1}).offeredIntValue();  // empty
    std::optional<int> offeredIntValue() const;

    /// The value's floating-point form, if it offers one: that of a number or a string (0 for a string
    /// without digits), a host object's `floatValue`; empty for any other value.
    std::optional<float> offeredFloatValue() const;

    /// Whether the value offers the operation: a host object decides itself, for a class of `ClassesByName.h`
    /// the object registered for it decides, any other value offers none.
    bool respondsToSelector(const Selector& selector) const;

    /// Performs an operation without an argument. Nil for a nil receiver; raises NSInvalidArgumentException
    /// if the value does not offer the operation, and for a nil selector.
    NSObject performSelector(const Selector& selector) const;

    /// Performs an operation with one argument, which may be nil. Nil for a nil receiver; raises as
    /// `performSelector` does.
    NSObject performSelector_withObject(const Selector& selector, const NSObject& argument) const;

    /// The host object that the handle holds, or null for any other value. Owned by the handle.
    const NSObjectProtocol* hostObject() const noexcept;

    /// Swaps two values without changing reference counts.
    void swap(NSObject& other) noexcept {
        const Payload payload = payload_;
        const detail::Kind kind = kind_;
        payload_ = other.payload_;
        kind_ = other.kind_;
        other.payload_ = payload;
        other.kind_ = kind;
    }

    /// Equal by content, as `isEqual`; two nil handles are equal too.
    friend bool operator==(const NSObject& left, const NSObject& right) {
        return left && right ? left.isEqual(right) : !left && !right;
    }

    /// @name NSObject(ZQFoundation)
    /// @{

    /// The value on one line: arrays "( 1, a )", dictionaries "{ A = 1; }", any other value its
    /// `description`; nil for nil.
    ///
    ///     NSObject(NSArray{1, NSArray{"a"}}).condensedDescription();  // "( 1, ( a ) )"
    NSString condensedDescription() const;

    /// The truth value of anything, read leniently. A number: not zero. A string: "YES" in any case, or a
    /// leading non-zero integer. Any other value: its string form by the string rule, else the low 8 bits of
    /// its integer form, else false.
    ///
    ///     NSObject("Yes").boolValue();   // true
    ///     NSObject("0x10").boolValue();  // false: the leading integer is 0
    bool boolValue() const;

    /// @}

protected:
    /// What `kind_` says: the number, the date, the class or the address of the body.
    union Payload {
        detail::Body* body;
        std::int64_t integer;
        double real;
        const detail::ClassRecord* classRecord;
    };

    /// For the typed handles, which know the kind of what they make.
    constexpr NSObject(Payload payload, detail::Kind kind) noexcept : payload_(payload), kind_(kind) {}

    /// For the checked conversions of the typed handles.
    NSObject(const NSObject& other, detail::Kind wanted) noexcept
        : NSObject(other.kind_ == wanted ? other : NSObject()) {}

    /// Whether the payload is a body with a reference count.
    constexpr bool isCounted() const noexcept { return kind_ >= detail::Kind::string; }

    Payload payload_;
    detail::Kind kind_;

private:
    friend struct detail::Access;

    /// One kind for each value, so that equal numbers have equal kinds: unsigned only beyond the signed
    /// range.
    template <class T>
    static constexpr detail::Kind integerKind(T value) noexcept {
        if constexpr (std::is_unsigned_v<T> && sizeof(T) == sizeof(std::int64_t)) {
            return value > static_cast<T>(INT64_MAX) ? detail::Kind::unsignedInteger
                                                     : detail::Kind::signedInteger;
        } else {
            return detail::Kind::signedInteger;
        }
    }

    static NSObject stringFrom(StringView text);
};

static_assert(sizeof(NSObject) == 2 * sizeof(void*));

/// The null object, which means "no value" inside collections, where nil is not allowed. It equals itself and
/// is true.
///
///     NSArray{"a", NSNull::null()}.count();  // 2
class ZQFOUNDATION_EXPORT NSNull : public NSObject {
public:
    constexpr NSNull() noexcept = default;

    /// The value if it is the null object, else nil.
    explicit NSNull(const NSObject& object) noexcept : NSObject(object, detail::Kind::null) {}

    /// The null object.
    static constexpr NSNull null() noexcept {
        NSNull object;
        object.kind_ = detail::Kind::null;
        return object;
    }
};

} // namespace ZQFoundation

namespace ZQFoundation::detail {
/// Declared with the arguments, defined where handles are complete.
template <class T>
NSObject convertedArgument(const void* object) {
    return convertedObject(*static_cast<const T*>(object));
}

/// For the stream operator, so that this header only declares streams.
ZQFOUNDATION_EXPORT void printCondensed(const NSObject& object, std::ostream& stream);
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// Writes the value on one line: a string's text, `condensedDescription` of any other value, "(nil)" for nil.
template <class Handle>
requires std::is_base_of_v<NSObject, Handle> std::ostream& operator<<(std::ostream& stream,
                                                                      const Handle& value) {
    detail::printCondensed(value, stream);
    return stream;
}

} // namespace ZQFoundation

/// @cond Doxygen has no scope for specializations of a template of another namespace. The hash of a value,
/// consistent with `==`, so that values can be keys of the standard library's hash tables.
template <class Handle>
    requires std::is_base_of_v<ZQFoundation::NSObject, Handle>
struct std::hash<Handle> {
    /// As `NSObject::hash`.
    std::size_t operator()(const Handle& value) const { return value.hash(); }
};
/// @endcond

#endif
