// SPDX-License-Identifier: MIT
// Which sanitizer the tests are compiled with.
#ifndef ZQFOUNDATION_TESTS_KIT_SANITIZERS_H
#define ZQFOUNDATION_TESTS_KIT_SANITIZERS_H

#if defined(__SANITIZE_ADDRESS__)
#define ZQ_TEST_ADDRESS_SANITIZER 1
#define ZQ_TEST_THREAD_SANITIZER 0
#elif defined(__SANITIZE_THREAD__)
#define ZQ_TEST_ADDRESS_SANITIZER 0
#define ZQ_TEST_THREAD_SANITIZER 1
#elif defined(__has_feature)
#define ZQ_TEST_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#define ZQ_TEST_THREAD_SANITIZER __has_feature(thread_sanitizer)
#else
#define ZQ_TEST_ADDRESS_SANITIZER 0
#define ZQ_TEST_THREAD_SANITIZER 0
#endif

namespace ZQFoundation::kit {

inline constexpr bool hasAddressSanitizer = ZQ_TEST_ADDRESS_SANITIZER;
inline constexpr bool hasThreadSanitizer = ZQ_TEST_THREAD_SANITIZER;
inline constexpr bool isSanitized = hasAddressSanitizer || hasThreadSanitizer;

} // namespace ZQFoundation::kit

#endif
