// SPDX-License-Identifier: MIT
// Declares Flag, which replaces bool parameters.
#ifndef ZQFOUNDATION_TEXT_FLAG_H
#define ZQFOUNDATION_TEXT_FLAG_H

#include <type_traits>

namespace ZQFoundation::detail {

/// Whether a type is accepted as yes or no: it converts to `bool` implicitly and is not a pointer. A text or
/// an address in the place of a flag means that the call has one argument too many or too few; C++ would read
/// it as yes.
template <class T>
inline constexpr bool isFlag = std::is_convertible_v<T, bool> && !std::is_pointer_v<std::decay_t<T>> &&
                               !std::is_member_pointer_v<std::decay_t<T>>;

/// Yes or no, as a parameter: a `bool`, or a number, of which 0 means no. It replaces `bool`, to which a
/// pointer converts implicitly: a call with its arguments in the wrong order would compile and log.
///
///     ZQLog::logAlways_log(true, "text");   // fine
///     ZQLog::logAlways_log("text", true);   // does not compile
class Flag {
public:
    /// The value of a `bool`, a number, or a type that converts to `bool` implicitly.
    template <class T>
        requires isFlag<T>
    constexpr Flag(const T& value) noexcept(noexcept(static_cast<bool>(value)))
        : value_(static_cast<bool>(value)) {}

    /// The value passed. Implicit, so that a flag can be passed on as one.
    constexpr operator bool() const noexcept { return value_; }

private:
    bool value_;
};

} // namespace ZQFoundation::detail

#endif
