// SPDX-License-Identifier: MIT
// For the shared library, whose texts are files: carries none.
#include "foundation/process/CarriedTexts.h"

namespace ZQFoundation::detail {

std::span<const CarriedTable> carriedTables() noexcept { return {}; }

} // namespace ZQFoundation::detail
