// SPDX-License-Identifier: MIT
// What an interrupted migration leaves under hidden names, and what is under the names that a user sees.
#ifndef ZQFOUNDATION_TESTS_FAULTS_LEFTOVERS_H
#define ZQFOUNDATION_TESTS_FAULTS_LEFTOVERS_H

#include <set>
#include <string>

#include "tests/migration/MigrationScene.h"

namespace ZQFoundation::faults {

inline constexpr const char setAside[] = ".zq-aside.";  ///< a source that may still be restored
inline constexpr const char givenUp[] = ".zq-gone.";    ///< what is being removed
inline constexpr const char unfinished[] = ".zq-copy."; ///< a copy that has not taken its name

inline bool begins(const std::string& text, const char* start) { return text.rfind(start, 0) == 0; }

inline std::string lastComponent(const std::string& path) { return path.substr(path.find_last_of('/') + 1); }
inline std::string folderOf(const std::string& path) { return path.substr(0, path.find_last_of('/')); }

inline bool isLeftover(const std::string& path) {
    const std::string name = lastComponent(path);
    return begins(name, setAside) || begins(name, givenUp) || begins(name, unfinished);
}

/// The paths below `start`, relative to it, of items with one of the marks.
inline scene::Words leftoversBelow(const std::string& start) {
    scene::Words found;
    for (const auto& [path, what] : scene::digestOf(start, scene::Detail::contents)) {
        if (isLeftover(path)) {
            found.push_back(path);
        }
    }
    return found;
}

/// What does not hold after migrations that came to their end: nothing may be left.
inline scene::Words problemsWithLeftovers(const std::string& start) {
    scene::Words problems = leftoversBelow(start);
    for (std::string& problem : problems) {
        problem = "left under a hidden name: " + problem;
    }
    return problems;
}

/// Whether the item or a folder that contains it has one of the marks; the path is relative to a visible
/// folder.
inline bool isHidden(std::string path) {
    while (!path.empty()) {
        if (isLeftover(path)) {
            return true;
        }
        const std::size_t slash = path.find_last_of('/');
        path.resize(slash == std::string::npos ? 0 : slash);
    }
    return false;
}

/// The contents of all files below `start` that a user sees.
inline std::set<std::string> visibleContents(const std::string& start) {
    static const std::string mark = "file [";
    std::set<std::string> contents;
    for (const auto& [path, what] : scene::digestOf(start, scene::Detail::contents)) {
        if (what.rfind(mark, 0) == 0 && !isHidden(path)) {
            contents.insert(what.substr(mark.size(), what.size() - mark.size() - 1));
        }
    }
    return contents;
}

} // namespace ZQFoundation::faults

#endif
