// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_XMLTEXT_H
#define ZQFOUNDATION_PLIST_XMLTEXT_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The dictionary as an XML property list that every reader takes. False for what no property list holds, and
/// for texts with a character that XML cannot hold, neither as it is nor as a reference: other readers would
/// refuse the whole file. The reason says where it is, as in `Names[1].first`; `error` may be null.
bool getXmlText(const NSDictionary& dictionary, std::string& bytes, NSString* error);

} // namespace ZQFoundation::detail

#endif
