// SPDX-License-Identifier: MIT
// The shared library, whose texts are files.
#include "foundation/process/CarriedTexts.h"

namespace ZQFoundation::detail {

std::span<const CarriedTable> carriedTables() noexcept { return {}; }

} // namespace ZQFoundation::detail
