// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_FILES_PATHRESOLUTION_H
#define ZQFOUNDATION_FILES_PATHRESOLUTION_H

#include <string>

#include "foundation/files/PathHandle.h"

namespace ZQFoundation::detail {

/// Replaces the links of a path by their targets, one component after the other. The result is valid only for
/// the moment of the lookup: callers must not rely on it for protection against other users.
///
/// An absolute path comes out without "." and ".." up to where something is missing. A relative one keeps its
/// ".." and is resolved from the current folder.
class LinkResolver {
public:
    explicit LinkResolver(const std::string& path) : rest_(path) {}

    enum class End {
        whole,   ///< everything on the path is there
        partial, ///< something is missing, dangling or not to be followed: the rest is unchanged
        tooLong, ///< a loop, or more links than are followed: `path()` is meaningless
    };
    End resolve();

    /// Squeezed. Never empty.
    const std::string& path() const noexcept { return path_; }

private:
    enum class Step { on, stays, tooLong };
    void append(const std::string& component);
    void removeLast();
    Step look();
    Step follow(const std::string& target, std::size_t lengthOfFolder);
    bool mayFollow(const std::string& folderName) const noexcept;
    bool leadsByItsText(const std::string& folderName, const std::string& target) const;

    std::string rest_;
    std::size_t position_ = 0; ///< in `rest_`
    std::string component_;
    std::string path_;
    PathHandle handle_; ///< refers to `path_` or to a path that it began with
    int links_ = 0;
};

} // namespace ZQFoundation::detail

#endif
