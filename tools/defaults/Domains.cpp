// SPDX-License-Identifier: MIT
// Finds the files of domains where applications look for them, with the library's own functions.
#include "tools/defaults/Domains.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

#include "foundation/files/NSFileManager.h"
#include "foundation/objects/NSArray.h"
#include "foundation/process/DefaultsFiles.h"
#include "tools/common/Program.h"

namespace ZQFoundation::tools::defaults {

namespace {

constexpr const char* globalDomain = "NSGlobalDomain";
constexpr const char* suffix = ".plist";

/// The user names the file with or without ".plist"; messages repeat the word as it was typed.
Domain domainOfPath(const std::string& word) {
    const std::string ending = suffix;
    const bool hasEnding =
        word.size() > ending.size() && word.compare(word.size() - ending.size(), ending.size(), ending) == 0;
    return {word, hasEnding ? word : word + ending, false};
}

/// The folder of all domains; fails without one.
std::string knownFolder() {
    std::string folder = detail::defaultsFolder();
    if (folder.empty()) {
        fail("the home folder is unknown; set HOME or XDG_CONFIG_HOME");
    }
    return folder;
}

} // namespace

// A word with a slash is a path, since no domain's name can contain one. A word that begins with a hyphen is
// a misspelled option, not a domain: `write` would create it.
Domain domainFromWord(const std::string& word) {
    if (word.find('/') != std::string::npos) {
        return domainOfPath(word);
    }
    const bool isGlobal = word == "-g" || word == "-globalDomain";
    if (!isGlobal && !word.empty() && word[0] == '-') {
        misuse("unknown option %@", word);
    }
    const std::string name = isGlobal ? globalDomain : word;
    const std::string path = detail::fileOfDomain(name);
    knownFolder();
    if (path.empty()) {
        fail("\"%@\" cannot name a domain", word);
    }
    return {name, path, true};
}

// For names that come from the folder itself: one may begin with a hyphen, which a word may not.
Domain domainOfFile(const std::string& name) { return {name, detail::fileOfDomain(name), true}; }

// Hidden files are not domains, and a folder that does not exist has none.
std::vector<std::string> namesOfDomains() {
    const std::string folder = knownFolder();
    NSString error;
    const NSArray files = NSFileManager::defaultManager().contentsOfDirectoryAtPath_error(
        NSString::stringWithFileSystemBytes(folder.data(), folder.size()), &error);
    if (!files && (::access(folder.c_str(), F_OK) == 0 || errno != ENOENT)) {
        fail("%@", error);
    }
    std::vector<std::string> names;
    for (const NSObject& file : files) {
        const NSString name(file);
        if (name.hasSuffix(suffix) && !name.hasPrefix(".") && name != "NSGlobalDomain.plist") {
            names.push_back(name.stringByDeletingPathExtension().utf8());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace ZQFoundation::tools::defaults
