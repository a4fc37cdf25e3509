// SPDX-License-Identifier: MIT
// Declares domains: which file a word of the command line refers to.
#ifndef ZQFOUNDATION_DEFAULTS_DOMAINS_H
#define ZQFOUNDATION_DEFAULTS_DOMAINS_H

#include <string>
#include <vector>

namespace ZQFoundation::tools::defaults {

/// A set of defaults and its file.
struct Domain {
    std::string name; ///< as the user has given it
    std::string path;
    bool isNamed; ///< found by its name in the folder of all domains, which is created if missing
};

/// The domain of a name, of "-g" or "-globalDomain" for the global one, or of a path to a file, with or
/// without its ".plist". Fails with a message if the name is not a valid file name.
Domain domainFromWord(const std::string& word);

/// The domain whose file has this name, whatever the name looks like.
Domain domainOfFile(const std::string& name);

/// The names of all domains that have a file, in ascending order, without the global one. Fails with a
/// message if their folder exists and cannot be listed.
std::vector<std::string> namesOfDomains();

} // namespace ZQFoundation::tools::defaults

#endif
