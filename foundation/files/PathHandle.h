// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_PATHHANDLE_H
#define ZQFOUNDATION_FILES_PATHHANDLE_H

#include <string>

#include "foundation/objects/NSString.h"
#include "foundation/system/Descriptor.h"

namespace ZQFoundation::detail {

/// The bytes by which the system knows a path. False with `errno` for the nil and the empty path, U+0000 and
/// units that stand for no byte of a file name.
bool getPathBytes(StringView path, std::string& bytes);

/// Takes the next name of a path from `position` on, passing over slashes, and moves the position behind it.
/// False at the end.
bool takeName(const std::string& path, std::size_t& position, std::string& name);

/// A path of any length for the system's `...at` calls: `folder()` and `name()` are what they take. The
/// system itself takes a path of limited length, so of a longer one the front is opened folder by folder and
/// the name is what is left. An ordinary path costs nothing.
class PathHandle {
public:
    /// Makes `folder()` and `name()` stand for the path, which must outlive their use. False with `errno`
    /// when the front of a long path cannot be opened.
    ///
    /// May be called again for other paths that begin alike: then the folder that is open serves again. The
    /// caller says through `keepOnly` how many of the bytes before are still the same.
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
