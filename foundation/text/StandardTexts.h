// SPDX-License-Identifier: MIT
// Makes types that convert to views of the standard library text arguments.
#ifndef ZQFOUNDATION_TEXT_STANDARDTEXTS_H
#define ZQFOUNDATION_TEXT_STANDARDTEXTS_H

#include <string>
#include <string_view>

#include "StringView.h"

/// Needs the standard library's header of strings: the umbrella header includes that for the results of its
/// operations, the header of the log does not.
namespace ZQFoundation::detail {

/// Objects of classes that convert to a view of units and are not texts themselves.
template <class T, class Unit>
concept ViewedText = std::is_class_v<T> && !TextRange<T, Unit> &&
                     std::is_convertible_v<const T&, std::basic_string_view<Unit>>;

} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// A type that converts to `std::string_view` is a text of UTF-8, one that converts to `std::u16string_view`
/// a text of UTF-16; if it converts to both, UTF-16 is used. So a host's own string class is a text argument
/// as it is:
///
///     struct Name {
///         operator std::string_view() const;
///     };
///     ZQLog::logWithFormat("%@", name);
template <class T>
    requires(detail::ViewedText<T, char> || detail::ViewedText<T, char16_t>)
struct ObjectConversion<T> {
    /// The view, which is valid as long as the text that the object refers to.
    static StringView text(const T& object) {
        if constexpr (detail::ViewedText<T, char16_t>) {
            const std::u16string_view view = object;
            return StringView(view.data(), view.size());
        } else {
            const std::string_view view = object;
            return StringView(view.data(), view.size());
        }
    }
};

} // namespace ZQFoundation

#endif
