// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H
#define ZQFOUNDATION_OBJECTS_DYNAMICTYPENAME_H

#include <typeinfo>

#include "foundation/objects/NSString.h"
#include "foundation/objects/TypeName.h"

/// Names of classes as bytes that stay where they are, so that a log line needs no memory for them.
namespace ZQFoundation::detail {

/// The class's own name, without namespaces. Allocates once for each class whose name is not just names:
/// templates, and classes inside functions.
NameSpan dynamicTypeName(const std::type_info& type);

/// The class name of a value of the library's own, or of a class; for a host object, which says its name
/// itself, and for nil no name.
NameSpan ownClassName(const NSObject& value) noexcept;

} // namespace ZQFoundation::detail

#endif
