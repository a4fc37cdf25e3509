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
/// value; both are skipped. Anything else is skipped by itself. Of repeated keys the last wins. The value
/// loses white space and line breaks at both ends; if it then begins with one of { ( [ < " and is a property
/// list, that is the value.
NSDictionary defaultsFromArguments(const std::vector<std::string>& arguments);

/// The same for a text of such arguments, without the program: `-TraceLevel 3 -Names "(a, b)"`. White space
/// separates them, except inside single or double quotes; a backslash outside single quotes escapes the next
/// character. An unclosed quote extends to the end.
NSDictionary defaultsFromText(const std::string& text);

/// The indexes of the arguments that are not such defaults, in ascending order; the program is one of them.
/// Also left to the host: "--" and everything after it; words that begin with "--" or are a hyphen and one
/// character, which every parser treats as options; the given options; and the arguments that follow these.
std::vector<std::size_t> placesWithoutDefaults(const std::vector<std::string>& arguments,
                                               const std::vector<std::string>& options);

} // namespace ZQFoundation::detail

#endif
