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
/// absolute path, else `~/.config/ZQFoundation`, where home is `$HOME` when that is an absolute path, else
/// the user database's. Reads the environment at each call; in a set-user-ID process only the user database
/// counts. Empty when the home folder is unknown.
std::string defaultsFolder();

/// The file of a domain, or empty when no file can have its name.
std::string fileOfDomain(const NSString& domain);

/// One defaults domain on disk, kept in memory and read again when the file has changed. Never writes.
class DomainFile {
public:
    constexpr DomainFile() noexcept = default;

    /// The file's current values; nil when it cannot be read, empty when it contains no dictionary. For an
    /// unchanged file, the cost is one query of its state.
    NSDictionary values(const std::string& path);

private:
    struct Snapshot {
        std::string path;
        FileStamp stamp;
        bool settled; ///< old enough when read that every later change alters its stamp
        NSDictionary values;
    };

    NSDictionary kept(const std::string& path, const FileStamp& stamp, bool alsoFresh = false) const;

    Published<Snapshot> snapshot_;
    Lock reading_; // keeps threads from reading the same file at once
};

} // namespace ZQFoundation::detail

#endif
