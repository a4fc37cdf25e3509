// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_PATHHANDLE_H
#define ZQFOUNDATION_FILES_PATHHANDLE_H

#include <string>

#include "foundation/objects/NSString.h"
#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// Converts a path to the bytes that the system uses. False with `errno` for the nil and the empty path,
/// U+0000 and units that represent no byte of a file name.
bool getPathBytes(StringView path, std::string& bytes);

/// Reads the next name of a path from `position` on, skipping slashes, and moves the position past it. False
/// at the end.
bool takeName(const std::string& path, std::size_t& position, std::string& name);

/// A path of any length for the system's `...at` calls: `folder()` and `name()` are what they take. The
/// system itself takes a path of limited length, so the front of a longer one is opened folder by folder and
/// the name is what is left. An ordinary path costs nothing.
class PathHandle {
public:
    /// Makes `folder()` and `name()` refer to the path, which must outlive their use. False with `errno` when
    /// the front of a long path cannot be opened.
    ///
    /// May be called again for other paths with the same beginning, which then use the folder that is open.
    /// The caller states through `keepOnly` how many of the previous bytes are still the same.
    [[nodiscard]] bool reach(const std::string& path) noexcept;

    void keepOnly(std::size_t byteCount) noexcept;

    int folder() const noexcept { return isDirect_ ? AT_FDCWD : folder_.number(); }
    const char* name() const noexcept { return name_; }

private:
    bool openNextFolder(const std::string& path) noexcept;

    Descriptor folder_;
    std::size_t offset_ = 0; ///< of what is relative to the open folder
    bool isDirect_ = true;
    const char* name_ = "";
};

} // namespace ZQFoundation::detail

#endif
