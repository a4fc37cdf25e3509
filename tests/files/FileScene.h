// SPDX-License-Identifier: MIT
// The kit's parts that the tests of files share, and a test with a folder of its own.
#ifndef ZQFOUNDATION_TESTS_FILES_FILESCENE_H
#define ZQFOUNDATION_TESTS_FILES_FILESCENE_H

#include <cstdio>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>

#include "foundation/files/NSFileManager.h"
#include "tests/kit/Values.h"
#include "tests/process/ItemFacts.h"

namespace scene {

using ZQFoundation::kit::bytesOf;
using ZQFoundation::kit::CurrentFolder;
using ZQFoundation::kit::deviceOf;
using ZQFoundation::kit::fromBytes;
using ZQFoundation::kit::isRoot;
using ZQFoundation::kit::isTrueWithDescriptors;
using ZQFoundation::kit::makeChain;
using ZQFoundation::kit::openDescriptors;
using ZQFoundation::kit::removeChain;
using ZQFoundation::kit::Umask;

/// A test with a folder of its own.
class FolderTest : public testing::Test {
protected:
    std::string in(const std::string& name) const { return folder / name; }
    void link(const std::string& target, const std::string& name) const {
        ASSERT_EQ(::symlink(target.c_str(), in(name).c_str()), 0) << std::strerror(errno);
    }

    Folder folder;
};

/// The text of any value as UTF-8; nil is shown differently from the empty text.
inline std::string shownText(const ZQFoundation::NSString& text) { return ZQFoundation::kit::utf8Of(text); }

} // namespace scene

#endif
