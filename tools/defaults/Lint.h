// SPDX-License-Identifier: MIT
// The check of property lists and string tables, for `defaults lint`.
#ifndef ZQFOUNDATION_DEFAULTS_LINT_H
#define ZQFOUNDATION_DEFAULTS_LINT_H

#include <string>
#include <vector>

namespace ZQFoundation::tools::defaults {

/// Checks that the library can use the files: each must be readable as its name says (`*.strings` as a string
/// table, anything else as a property list), and tables of the same name in the `*.lproj` folders of one
/// folder must have the same keys, with the same conversions in their values. Returns the faults, one line
/// each, in the order of the files: "en.lproj/Localizable.strings:3:5: An array is not closed".
std::vector<std::string> faultsOf(const std::vector<std::string>& paths);

} // namespace ZQFoundation::tools::defaults

#endif
