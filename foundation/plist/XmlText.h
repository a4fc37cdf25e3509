// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PLIST_XMLTEXT_H
#define ZQFOUNDATION_PLIST_XMLTEXT_H

#include <string>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The dictionary as an XML property list that every reader accepts. False for what no property list can
/// hold, and for texts with a character that XML cannot contain, neither directly nor as a reference: other
/// readers would refuse the whole file. The reason says where it is, as in `Names[1].first`; `error` may be
/// null.
bool getXmlText(const NSDictionary& dictionary, std::string& bytes, NSString* error);

} // namespace ZQFoundation::detail

#endif
