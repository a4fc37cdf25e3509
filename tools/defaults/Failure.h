// SPDX-License-Identifier: MIT
// Declares how a command ends with a message. The program prints it and decides about the exit status.
#ifndef ZQFOUNDATION_DEFAULTS_FAILURE_H
#define ZQFOUNDATION_DEFAULTS_FAILURE_H

#include <string>

#include "foundation/objects/NSString.h"

namespace ZQFoundation::defaults {

/// Ends the command; the message is for the user.
struct Failure {
    std::string message;
};

/// The same for a command line that makes no sense.
struct Misuse {
    std::string message;
};

/// Ends the command with a message formatted as `NSString::stringWithFormat` does.
template <class... Arguments>
[[noreturn]] void fail(FormatString<std::type_identity_t<Arguments>...> format,
                       const Arguments&... arguments) {
    throw Failure{NSString::stringWithFormat(format, arguments...).utf8()};
}

/// The same for Misuse.
template <class... Arguments>
[[noreturn]] void misuse(FormatString<std::type_identity_t<Arguments>...> format,
                         const Arguments&... arguments) {
    throw Misuse{NSString::stringWithFormat(format, arguments...).utf8()};
}

} // namespace ZQFoundation::defaults

#endif
