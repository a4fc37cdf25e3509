// SPDX-License-Identifier: MIT
// What the tests of files share: a test with a folder of its own.
#ifndef ZQFOUNDATION_TESTS_FILES_FILESCENE_H
#define ZQFOUNDATION_TESTS_FILES_FILESCENE_H

#include <cerrno>
#include <cstring>
#include <string>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::scene {

/// A user who does not run the tests.
inline constexpr uid_t stranger = 54321;

/// A test with a folder of its own.
class FolderTest : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    kit::ScratchFolder folder;
};

/// The same for thousands of items.
class FolderTestInMemory : kit::ScratchInMemory, public FolderTest {
protected:
    /// More levels than are open at once, each with a folder before the next one and one after it, and a file
    /// with the level's number in each: "m/m/a/f".
    void makeBranches(const std::string& name) const {
        std::string at = name;
        for (int level = 0; level < levels; ++level) {
            for (const char* const branch : {"/a", "/m", "/z"}) {
                folder.write(at + branch + "/f", std::to_string(level));
            }
            at += "/m";
        }
    }

    static constexpr int levels = 40;
};

} // namespace ZQFoundation::scene

#endif
