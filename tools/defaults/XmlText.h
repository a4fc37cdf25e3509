// SPDX-License-Identifier: MIT
// The form in which the tool writes dictionaries.
#ifndef ZQFOUNDATION_DEFAULTS_XMLTEXT_H
#define ZQFOUNDATION_DEFAULTS_XMLTEXT_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::defaults {

/// The dictionary as an XML property list. Fails with a message for what no property list holds, and for
/// texts with a character that XML cannot hold, neither as it is nor as a reference: other readers would
/// refuse the whole file. The message says where it is, as in `Names[1].first`.
std::string xmlOf(const NSDictionary& dictionary);

} // namespace ZQFoundation::defaults

#endif
