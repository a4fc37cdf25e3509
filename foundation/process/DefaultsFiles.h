// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DEFAULTSFILES_H
#define ZQFOUNDATION_PROCESS_DEFAULTSFILES_H

#include <string>

#include "foundation/objects/NSDictionary.h"
#include "foundation/process/FileReading.h"
#include "foundation/system/Published.h"

namespace ZQFoundation::detail {

/// The folder that holds the defaults domains: `$XDG_CONFIG_HOME/ZQFoundation` when that variable is an
/// absolute path, else `~/.config/ZQFoundation`, home being `$HOME` when that is an absolute path, else the
/// user database's. Follows the environment at every call, in a set-user-ID process the user database alone.
/// Empty when nothing tells where the home folder is.
std::string defaultsFolder();

/// The file of a domain, or empty when no file can bear its name.
std::string fileOfDomain(const NSString& domain);

/// One defaults domain on disk, kept in memory and read again when the file has changed. Never writes.
class DomainFile {
public:
    constexpr DomainFile() noexcept = default;

    /// What the file holds now; nil when it cannot be read, empty when it holds no dictionary. One look at
    /// the file's state when it is unchanged.
    NSDictionary values(const std::string& path);

private:
    struct Snapshot {
        std::string path;
        FileStamp stamp;
        bool settled; ///< old enough when it was read that every later change shows in its stamp
        NSDictionary values;
    };

    NSDictionary kept(const std::string& path, const FileStamp& stamp) const;

    Published<Snapshot> snapshot_;
    Lock reading_; // keeps threads from reading the same file side by side
};

} // namespace ZQFoundation::detail

#endif
