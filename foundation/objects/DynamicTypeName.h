// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H
#define ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H

#include <typeinfo>

#include "foundation/objects/NSString.h"
#include "foundation/objects/TypeName.h"

/// Names of classes as bytes that are never moved or freed, so that a log line needs no memory for them.
namespace ZQFoundation::detail {

/// The class's own name, without namespaces. Allocates once for each class whose name is more than plain
/// names: templates, and classes inside functions.
NameSpan dynamicTypeName(const std::type_info& type);

/// The class name of one of the library's own values, or of a class; empty for nil and for a host object,
/// which provides its own name.
NameSpan ownClassName(const NSObject& value) noexcept;

} // namespace ZQFoundation::detail

#endif
