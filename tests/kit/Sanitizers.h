// SPDX-License-Identifier: MIT
// Which sanitizer the tests are compiled with.
#ifndef ZQFOUNDATION_TESTS_KIT_SANITIZERS_H
#define ZQFOUNDATION_TESTS_KIT_SANITIZERS_H

namespace ZQFoundation::kit {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#elif defined(__has_feature)
inline constexpr bool isSanitized = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool isSanitized = false;
#endif

} // namespace ZQFoundation::kit

#endif
