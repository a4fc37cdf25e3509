// SPDX-License-Identifier: MIT
// Values as JSON, for `defaults read --json`.
#ifndef ZQFOUNDATION_DEFAULTS_JSON_H
#define ZQFOUNDATION_DEFAULTS_JSON_H

#include <string>

#include "foundation/objects/NSObject.h"

namespace ZQFoundation::tools::defaults {

/// The value on several lines, with the keys in ascending order. JSON has fewer types: a date is a text
/// ("2024-03-05T14:07:09Z"), data is Base64 text, and NaN and infinity are texts ("nan", "inf"). Fails with a
/// message for more levels than a property list may have.
std::string jsonOf(const NSObject& value);

} // namespace ZQFoundation::tools::defaults

#endif
