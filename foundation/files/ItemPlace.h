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

/// A name in a folder that was opened once, so that all that is asked and done about the item happens in the
/// same folder, wherever that is moved and whatever takes its place.
class ItemPlace {
public:
    ItemPlace() = default;
    ItemPlace(SharedFolder folder, std::string name) : folder_(std::move(folder)), name_(std::move(name)) {}

    /// From a path; links in front of its last name are followed, and a slash at its end asks for a folder.
    /// False with `errno`.
    bool open(const std::string& path);

    /// The last name of a path, in a folder that was found in another way. True.
    bool set(SharedFolder folder, const std::string& path);

    int folder() const noexcept { return folder_->number(); }
    const SharedFolder& sharedFolder() const noexcept { return folder_; }
    const char* name() const noexcept { return name_.c_str(); }

    explicit operator bool() const noexcept { return folder_ != nullptr; }

    /// False for the root folder, ".", "..": what has no name of its own cannot be removed.
    bool isEntry() const noexcept { return name_ != "." && name_ != ".."; }

    /// The item itself, a link not being followed. False with `errno`; ENOTDIR where the path asked for a
    /// folder and this is none.
    bool look(struct stat& information) const noexcept;

    /// Whether something exists there, links followed; only then the flag is written.
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
