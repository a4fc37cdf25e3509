// SPDX-License-Identifier: MIT
// Declares NSArray and its builder, NSMutableArray.
#ifndef ZQFOUNDATION_OBJECTS_NSARRAY_H
#define ZQFOUNDATION_OBJECTS_NSARRAY_H

#include <type_traits>

#include "NSString.h"

namespace ZQFoundation::detail {

/// As what a range is iterated: a constant, except for one that finds its first element only when asked and
/// so has no constant `begin`, such as a filtered view.
template <class Range>
struct IteratedRange {
    using type = const Range;
};
template <class Range>
    requires(
        requires(Range& range) { range.begin(); } && !requires(const Range& range) { range.begin(); })
struct IteratedRange<Range> {
    using type = Range;
};

} // namespace ZQFoundation::detail

namespace ZQFoundation {

class NSMutableArray;

/// An immutable, ordered collection of values, none of them nil. Operations on a nil array raise nothing and
/// return nil, 0 or false. Any number of threads may read an array.
///
/// `NSArray{"a", 1}` holds two elements. Traps: `NSArray{}` is nil (an empty array is `NSArray::array()`),
/// and whether `NSArray{other}` with a single array nests or copies depends on the compiler:
/// `arrayWithObject` nests.
///
///     const NSArray names{"b", "a", 1};
///     names.count();                                  // 3
///     names[0];                                       // "b"
///     for (const NSObject& name : names) ...          // b, a, 1
class ZQFOUNDATION_EXPORT NSArray : public NSObject {
public:
    constexpr NSArray() noexcept = default;
    constexpr NSArray(std::nullptr_t) noexcept {}

    /// An array of these elements in this order. Raises NSInvalidArgumentException if one is nil.
    NSArray(std::initializer_list<NSObject> elements);

    /// The array that the type's `ObjectConversion` makes.
    template <detail::ConvertedTo<NSArray> T>
    NSArray(const T& object) : NSArray(detail::convertedObject(object)) {}

    /// The value if it is an array, else nil.
    explicit NSArray(const NSObject& object) noexcept : NSObject(object, detail::Kind::array) {}

    /// The empty array.
    static NSArray array();

    /// An array of one element, even if that is itself an array. Raises NSInvalidArgumentException for nil.
    ///
    ///     NSArray::arrayWithObject(NSArray{1, 2}).count();  // 1
    static NSArray arrayWithObject(const NSObject& object);

    /// An array of copies of the `count` handles. Raises NSInvalidArgumentException when one is nil.
    static NSArray arrayWithObjects_count(const NSObject* objects, std::size_t count);

    /// The arguments as elements, texts and numbers too. Raises NSInvalidArgumentException when one is nil.
    template <class... Objects>
    static NSArray arrayWithObjects(const Objects&... objects) {
        return NSArray(std::initializer_list<NSObject>{NSObject(objects)...});
    }

    /// The elements of any range of values, texts, numbers or convertible types, in its order. Raises
    /// NSInvalidArgumentException when one is nil.
    ///
    ///     NSArray::arrayWithRange(std::vector<int>{3, 1});  // 3, 1
    template <class Range>
    static NSArray arrayWithRange(Range&& range);

    /// The number of elements; 0 for nil.
    std::size_t count() const noexcept;

    /// The same as `count`, for templates that expect containers.
    std::size_t size() const noexcept { return count(); }

    /// The element at the index; raises NSRangeException from the count on.
    const NSObject& objectAtIndex(std::size_t index) const;

    /// The element at the index; raises NSRangeException from the count on.
    const NSObject& operator[](std::size_t index) const { return objectAtIndex(index); }

    /// Whether an element equals the object.
    bool containsObject(const NSObject& object) const;

    /// The index of the first equal element, or `notFound`.
    ///
    ///     NSArray{"a", "b"}.indexOfObject("b");  // 1
    std::size_t indexOfObject(const NSObject& object) const;

    /// What `indexOfObject` returns for an object that is not an element.
    static constexpr std::size_t notFound = static_cast<std::size_t>(INT64_MAX);

    /// A new array with one more element at the end; nil for a nil receiver. Raises
    /// NSInvalidArgumentException for a nil object.
    ///
    ///     NSArray{1}.arrayByAddingObject("b");  // 1, b
    NSArray arrayByAddingObject(const NSObject& object) const;

    /// The elements' descriptions with the separator between them, which may be nil.
    ///
    ///     NSArray{"b", 2}.componentsJoinedByString(", ");  // "b, 2"
    NSString componentsJoinedByString(StringView separator) const;

    /// Sorted ascending by the given order, stably. The order is called with two elements.
    ///
    ///     numbers.sortedArrayUsingComparator([](const NSObject& left, const NSObject& right) {
    ///         return left.as<NSNumber>().compare(right.as<NSNumber>());
    ///     });
    template <class Order>
    NSArray sortedArrayUsingComparator(const Order& order) const {
        return sorted(
            [](const void* context, const NSObject& left, const NSObject& right) {
                return static_cast<NSComparisonResult>((*static_cast<const Order*>(context))(left, right));
            },
            &order);
    }

    /// Whether the elements are equal, pair by pair. False when either is nil.
    ///
    ///     NSArray{1, "a"}.isEqualToArray({1.0, "a"});  // true
    bool isEqualToArray(const NSArray& other) const;

    /// The first element, for `for` loops; valid as long as a handle holds the array.
    const NSObject* begin() const noexcept;

    /// The end of the elements that start at `begin`.
    const NSObject* end() const noexcept { return begin() + count(); }

    /// @name NSArray(ZQFoundation)
    /// @{

    /// "( 1, a, ( 2, 3 ) )": strings bare, nested collections condensed, "(  )" when empty; nil for nil.
    NSString condensedDescription() const;

    /// Whether there is no element; false for nil.
    bool isEmpty() const noexcept;

    /// The first element; nil if there is none.
    NSObject firstObject() const;

    /// A mutable copy with the first of each group of equal elements, in order; empty for nil.
    ///
    ///     NSArray{3, 1, 3}.arrayByRemovingDuplicateObjects().array();  // 3, 1
    NSMutableArray arrayByRemovingDuplicateObjects() const;

    /// **Larger arrays come first:** NSOrderedAscending when this one has more elements. A nil argument has
    /// none; on nil, the same.
    ///
    ///     NSArray{1, 2}.compareCount(NSArray{1});  // NSOrderedAscending
    NSComparisonResult compareCount(const NSArray& other) const noexcept;

    /// @}

private:
    friend struct detail::Access;
    explicit NSArray(Payload payload) noexcept : NSObject(payload, detail::Kind::array) {}
    using ErasedOrder = NSComparisonResult (*)(const void*, const NSObject&, const NSObject&);
    NSArray sorted(ErasedOrder order, const void* context) const;
};

/// Builds an array element by element. Movable, not copyable; `array()` transfers the elements without a
/// copy.
///
///     NSMutableArray lines;
///     lines.addObject("first");
///     lines.addObject(2);
///     const NSArray result = lines.array();  // first, 2; `lines` is empty now
class ZQFOUNDATION_EXPORT NSMutableArray {
public:
    NSMutableArray() noexcept = default;

    /// Empty, with room for `capacity` elements.
    explicit NSMutableArray(std::size_t capacity);

    /// A mutable copy; of nil the empty one.
    explicit NSMutableArray(const NSArray& array);
    NSMutableArray(NSMutableArray&& other) noexcept : body_(other.body_) { other.body_ = nullptr; }
    NSMutableArray& operator=(NSMutableArray&& other) noexcept;
    ~NSMutableArray();

    /// Appends an object. Raises NSInvalidArgumentException for nil.
    void addObject(NSObject object);

    /// Appends the array's elements in order; nil appends nothing.
    void addObjectsFromArray(const NSArray& array);

    /// Removes the element at the index; raises NSRangeException from the count on.
    void removeObjectAtIndex(std::size_t index);

    /// Replaces the element at the index with another object. Raises NSRangeException from the count on,
    /// NSInvalidArgumentException for a nil object.
    void replaceObjectAtIndex_withObject(std::size_t index, NSObject object);

    /// Removes the last element; raises NSRangeException if there is none.
    void removeLastObject();

    /// The element at the index, valid until the array changes; raises NSRangeException from the count on.
    const NSObject& objectAtIndex(std::size_t index) const;

    /// The element at the index, valid until the array changes; raises NSRangeException from the count on.
    const NSObject& operator[](std::size_t index) const { return objectAtIndex(index); }

    /// The number of elements so far.
    std::size_t count() const noexcept;

    /// The same as `count`, for templates that expect containers.
    std::size_t size() const noexcept { return count(); }

    /// The first element, for `for` loops; valid until the array changes.
    const NSObject* begin() const noexcept;

    /// The end of the elements that start at `begin`.
    const NSObject* end() const noexcept { return begin() + count(); }

    /// The elements as an immutable array; the builder is empty afterwards.
    [[nodiscard]] NSArray array();

private:
    detail::Body* body_ = nullptr;
};

template <class Range>
NSArray NSArray::arrayWithRange(Range&& range) {
    typename detail::IteratedRange<std::remove_cvref_t<Range>>::type& iterated = range;
    NSMutableArray elements;
    for (const auto& element : iterated) {
        if constexpr (!std::is_convertible_v<decltype(element), NSObject> &&
                      requires { typename decltype(iterated.begin())::value_type; }) {
            // A proxy of a value, such as what a filtered std::vector<bool> yields.
            elements.addObject(static_cast<const typename decltype(iterated.begin())::value_type&>(element));
        } else {
            elements.addObject(element);
        }
    }
    return elements.array();
}

} // namespace ZQFoundation

#endif
