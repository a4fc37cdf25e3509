// SPDX-License-Identifier: MIT
// Finds the names of C++ types at compile time.
#ifndef ZQFOUNDATION_OBJECTS_TYPENAME_H
#define ZQFOUNDATION_OBJECTS_TYPENAME_H

#include <cstddef>

namespace ZQFoundation::detail {

/// A part of a name. Not NUL-ended; the name lives as long as the program.
struct NameSpan {
    const char* start;
    std::size_t length;
};

/// Removes the enclosing namespaces and classes from a qualified name; template arguments are kept:
///
///     ownName("shop::Store<a::B>")  // "Store<a::B>"
///
/// Colons inside brackets of any kind do not count: they belong to an argument, to a function or to a lambda
/// that encloses the type.
constexpr NameSpan ownName(const char* name, std::size_t length) noexcept {
    std::size_t start = 0;
    int depth = 0;
    for (std::size_t i = 0; i < length; ++i) {
        if (name[i] == '<' || name[i] == '(' || name[i] == '{') {
            ++depth;
        } else if (name[i] == '>' || name[i] == ')' || name[i] == '}') {
            --depth;
        } else if (depth == 0 && name[i] == ':') {
            start = i + 1;
        }
    }
    return {name + start, length - start};
}

/// The compiler's name of this function contains "T = " and the type's name. Unlike `typeid`, it needs no
/// run-time type information, and the result is known when the program is compiled:
///
///     g++:    constexpr ... spelledTypeName() [with T = shop::Store]
///     clang:  NameSpan ... spelledTypeName() [T = shop::Store]
template <class T>
constexpr NameSpan spelledTypeName() noexcept {
    const char* const text = __PRETTY_FUNCTION__;
    std::size_t start = 0;
    while (!(text[start] == 'T' && text[start + 1] == ' ' && text[start + 2] == '=')) {
        ++start;
    }
    start += 4;
    std::size_t end = start;
    while (text[end + 1] != '\0') {
        ++end;
    }
    return ownName(text + start, end - start);
}

/// The own name of a C++ type, without namespaces, known when the program is compiled. Not NUL-ended.
template <class T>
struct TypeName {
    static constexpr const char* bytes = spelledTypeName<T>().start;
    static constexpr std::size_t length = spelledTypeName<T>().length;
};

} // namespace ZQFoundation::detail

#endif
