// SPDX-License-Identifier: MIT
// Exceptions with a name, a reason and a dictionary.
// The text for `what` is made at once, because that function may neither allocate nor fail.
#include "foundation/objects/NSException.h"

#include <string>

namespace ZQFoundation {

NSException::NSException(NSString name, NSString reason, NSDictionary userInfo)
    : name_(static_cast<NSString&&>(name)), reason_(static_cast<NSString&&>(reason)),
      userInfo_(static_cast<NSDictionary&&>(userInfo)) {
    std::string text = name_.utf8();
    if (name_ && reason_) {
        text += ": ";
    }
    text += reason_.utf8();
    // With its NUL. Data, because copies of an exception share it.
    what_ = NSData::dataWithBytes_length(text.c_str(), text.size() + 1);
}

NSException::~NSException() = default;

const char* NSException::what() const noexcept { return reinterpret_cast<const char*>(what_.bytes()); }

} // namespace ZQFoundation
