// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_BUNDLELAYOUT_H
#define ZQFOUNDATION_PROCESS_BUNDLELAYOUT_H

#include <string>
#include <vector>

namespace ZQFoundation::detail {

/// Where a bundle keeps its parts; paths as bytes, no slash at the end. All of them are empty when the
/// location of the program or library is unknown: then nothing is looked up, in particular not in the current
/// folder.
///
///     X.app/Contents/{Info.plist,MacOS/,Resources/}      an application
///     X/Resources/Info.plist                             a framework, or a program beside its Resources
///     X/Info.plist, X/Resources/ or resources in X       a flat bundle
struct BundleLayout {
    std::string folder;
    std::string infoFile; ///< may be absent
    std::string resources;
    std::string programs;
};

/// The layout found in an existing folder.
BundleLayout layoutOfFolder(const std::string& folder);

/// The bundle around a program: the X.app whose Contents/MacOS holds it; else its own folder when it has an
/// Info.plist or Resources/Info.plist; else, for a program in a "bin" folder, ../share/<process name> when
/// that exists; else its own folder, with no Info dictionary. The layout of an empty path is empty.
BundleLayout layoutOfProgram(const std::string& program, const std::string& processName);

/// The bundle of a library: `Resources` next to it, else share/ZQFoundation-27 of the same installation. The
/// layout of an empty path is empty.
BundleLayout layoutOfLibrary(const std::string& library);

/// The names of the "*.lproj" folders in a folder, without the extension, in ascending order of their bytes.
/// `isKnown` becomes false when the process currently lacks a descriptor or memory to read the folder.
std::vector<std::string> localizedFolders(const std::string& resources, bool& isKnown);

std::string folderOf(const std::string& path);
std::string lastComponentOf(const std::string& path);

} // namespace ZQFoundation::detail

#endif
