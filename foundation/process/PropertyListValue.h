// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_PROPERTYLISTVALUE_H
#define ZQFOUNDATION_PROCESS_PROPERTYLISTVALUE_H

#include "foundation/objects/NSString.h"

namespace ZQFoundation::detail {

/// Whether a property list can hold the value: a string, number, boolean, date, data, or an array or
/// dictionary with string keys of such values, at any depth. False for nil. Linear in the number of distinct
/// collections, however often they are shared, and without recursion.
bool isPropertyListValue(const NSObject& value);

} // namespace ZQFoundation::detail

#endif
