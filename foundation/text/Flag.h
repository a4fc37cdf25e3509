// SPDX-License-Identifier: MIT
// Declares Flag, which replaces bool parameters.
#ifndef ZQFOUNDATION_TEXT_FLAG_H
#define ZQFOUNDATION_TEXT_FLAG_H

#include <type_traits>

namespace ZQFoundation::detail {

/// Whether a type is taken for yes or no: what turns into a bool by itself, and is no pointer. A text or an
/// address in the place of a flag is an argument too many or one too few, which C++ would take for yes.
template <class T>
inline constexpr bool isFlag = std::is_convertible_v<T, bool> && !std::is_pointer_v<std::decay_t<T>> &&
                               !std::is_member_pointer_v<std::decay_t<T>>;

/// Yes or no, as a parameter: a bool, or a number, of which 0 means no. It replaces `bool`, into which a
/// pointer would turn by itself: a call with its arguments in the wrong order then compiles and logs.
///
///     ZQLog::logAlways_log(true, "text");   // fine
///     ZQLog::logAlways_log("text", true);   // does not compile
class Flag {
public:
    /// The value of a bool, a number, or what converts to a bool by itself.
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
