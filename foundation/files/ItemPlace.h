// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_ITEMPLACE_H
#define ZQFOUNDATION_FILES_ITEMPLACE_H

#include <memory>
#include <string>

#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// An open folder that several places share; open only to start from it (`openForSearch`).
using SharedFolder = std::shared_ptr<const Descriptor>;

/// Opens the folder at the path, links followed; null with `errno`.
SharedFolder openSharedFolder(const std::string& path);

/// The path without the slashes at its end; empty for the root folder.
inline std::string withoutEndSlashes(const std::string& path) {
    return path.substr(0, path.find_last_not_of('/') + 1);
}

/// A name in a folder that was opened once, so that every query and change of the item happens in the same
/// folder, even if that is moved or replaced.
class ItemPlace {
public:
    ItemPlace() = default;
    ItemPlace(SharedFolder folder, std::string name) : folder_(std::move(folder)), name_(std::move(name)) {}

    /// Opens the folder of a path's last name; links before the last name are followed, and a slash at the
    /// end requires a folder. False with `errno`.
    bool open(const std::string& path);

    /// Sets the last name of a path, in a folder that was opened by other means. Returns true.
    bool set(SharedFolder folder, const std::string& path);

    int folder() const noexcept { return folder_->number(); }
    const SharedFolder& sharedFolder() const noexcept { return folder_; }
    const char* name() const noexcept { return name_.c_str(); }

    explicit operator bool() const noexcept { return folder_ != nullptr; }

    /// False for the root folder, ".", "..": these have no name of their own and cannot be removed.
    bool isEntry() const noexcept { return name_ != "." && name_ != ".."; }

    /// Reads the information of the item itself, a link not being followed. False with `errno`; ENOTDIR when
    /// the path requires a folder and this is not one.
    bool look(struct stat& information) const noexcept;

    /// Whether something exists there, links followed; the flag is written only then.
    bool exists(bool& isDirectory) const noexcept;

    /// Whether this very item is there now.
    bool holds(const struct stat& item) const noexcept;

private:
    SharedFolder folder_;
    std::string name_;
    bool mustBeFolder_ = false;
};

} // namespace ZQFoundation::detail

#endif
