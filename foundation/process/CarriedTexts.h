// SPDX-License-Identifier: MIT
// Internal: not installed. The library's own texts inside a program that the library is linked into.
#ifndef ZQFOUNDATION_PROCESS_CARRIEDTEXTS_H
#define ZQFOUNDATION_PROCESS_CARRIEDTEXTS_H

#include <span>
#include <string_view>

namespace ZQFoundation::detail {

/// One of the library's own string tables named Localizable.
struct CarriedTable {
    std::string_view language;
    std::string_view bytes; ///< the table's file
};

/// A table for each language in the static library, which cannot know where its files are. Empty in the
/// shared library, whose texts are files that a packager or a host may change.
std::span<const CarriedTable> carriedTables() noexcept;

} // namespace ZQFoundation::detail

#endif
