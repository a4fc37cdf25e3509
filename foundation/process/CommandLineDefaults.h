// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_COMMANDLINEDEFAULTS_H
#define ZQFOUNDATION_PROCESS_COMMANDLINEDEFAULTS_H

#include <string>
#include <vector>

#include "foundation/objects/NSDictionary.h"

namespace ZQFoundation::detail {

/// The defaults that a command line sets, in the order of their first appearance:
///
///     program -TraceLevel 3 -Names "(a, b)" -Flag <true/>
///
/// From the first argument after the program on, while at least two are left: an argument that starts with
/// "-" and is longer, followed by one that does not start with "-", is a key (without that "-") with its
/// value; both are passed. Anything else is passed alone. Of repeated keys the last wins. The value loses
/// white space and line breaks at both ends; if it then begins with one of { ( [ < " and is a property list,
/// that is the value.
NSDictionary defaultsFromArguments(const std::vector<std::string>& arguments);

} // namespace ZQFoundation::detail

#endif
