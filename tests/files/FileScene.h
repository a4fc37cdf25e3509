// SPDX-License-Identifier: MIT
// What the tests of files share: a test with a folder of its own.
#ifndef ZQFOUNDATION_TESTS_FILES_FILESCENE_H
#define ZQFOUNDATION_TESTS_FILES_FILESCENE_H

#include <cerrno>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "tests/kit/Environment.h"
#include "tests/kit/ScratchFolder.h"

namespace ZQFoundation::scene {

/// A test with a folder of its own.
class FolderTest : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    kit::ScratchFolder folder;
};

/// The same for thousands of items.
class FolderTestInMemory : kit::ScratchInMemory, public FolderTest {};

} // namespace ZQFoundation::scene

#endif
