// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H
#define ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H

#include <typeinfo>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// The class's own name, without namespaces.
NSString dynamicTypeName(const std::type_info& type);

} // namespace ZQFoundation::detail

#endif
