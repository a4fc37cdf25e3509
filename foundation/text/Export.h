// SPDX-License-Identifier: MIT
// Marks the symbols that the library exports.
#ifndef ZQFOUNDATION_TEXT_EXPORT_H
#define ZQFOUNDATION_TEXT_EXPORT_H

// Every public header includes this one before it declares anything. Including a header that does not exist
// ends the compilation; otherwise hundreds of errors would follow the one that matters.
#if !defined(__cplusplus)
#error "ZQFoundation is a C++ library: compile this source as C++20"
#include <ZQFoundation-needs-C++20>
#elif __cplusplus < 202002L || !defined(__cpp_concepts)
#error "ZQFoundation needs C++20: compile with -std=c++20 or later (g++ 12 or clang 14)"
#include <ZQFoundation-needs-C++20>
#elif !defined(__cpp_char8_t)
#error "ZQFoundation needs char8_t: compile without -fno-char8_t"
#include <ZQFoundation-needs-char8_t>
#elif !defined(__LP64__)
#error "ZQFoundation needs a system with pointers and longs of 64 bits"
#include <ZQFoundation-needs-64-bits>
#endif

/// Marks what the shared library exports; everything else stays hidden. Hosts need not use it: it has the
/// same value for those who build the library and those who include it.
#define ZQFOUNDATION_EXPORT __attribute__((visibility("default")))

#endif
