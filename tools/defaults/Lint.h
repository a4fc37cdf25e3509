// SPDX-License-Identifier: MIT
// The check of property lists and string tables, for `defaults lint`.
#ifndef ZQFOUNDATION_DEFAULTS_LINT_H
#define ZQFOUNDATION_DEFAULTS_LINT_H

#include <string>
#include <vector>

namespace ZQFoundation::tools::defaults {

/// Checks that the library can use the files: that each is read, and as what its name says (`*.strings` is a
/// string table, anything else a property list), and that the tables of one name in the `*.lproj` folders of
/// one folder have the same keys, with the same conversions in their values. Answers what is wrong, a line
/// each, in the order of the files: "en.lproj/Localizable.strings:3:5: An array is not closed".
std::vector<std::string> faultsOf(const std::vector<std::string>& paths);

} // namespace ZQFoundation::tools::defaults

#endif
