// SPDX-License-Identifier: MIT
// A program whose user defaults are in a scratch folder, and threads beside the test's own.
#ifndef ZQFOUNDATION_TESTS_PROCESS_DEFAULTSSCENE_H
#define ZQFOUNDATION_TESTS_PROCESS_DEFAULTSSCENE_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/process/NSUserDefaults.h"
#include "tests/kit/Child.h"
#include "tests/kit/Environment.h"
#include "tests/kit/Sanitizers.h"
#include "tests/kit/ScratchFolder.h"
#include "tests/kit/StandardError.h"
#include "tests/kit/Threads.h"

namespace ZQFoundation::process {

using Words = std::vector<std::string>;

inline NSUserDefaults& defaults() { return NSUserDefaults::standardUserDefaults(); }

/// A program "Viewer" without a bundle, whose defaults are in a scratch folder.
class DefaultsScene : public testing::Test {
protected:
    const kit::ScratchFolder folder;
    const kit::NoLanguages languages{};
    const kit::Path store{detail::overrides::defaultsFolder, folder / "store"};
    const kit::Path program{detail::overrides::executablePath, folder / "bin/Viewer"};
    const kit::Arguments arguments{detail::overrides::arguments, Words{"/x/Viewer"}};
};

/// Runs the body in threads, each with its number, and `meanwhile` beside them, and waits for the threads.
template <class Body, class Meanwhile>
void useThreads(int count, const Body& body, const Meanwhile& meanwhile) {
    const kit::Threads threads(static_cast<std::size_t>(count),
                               [&body](std::size_t number) { body(static_cast<int>(number)); });
    meanwhile();
}

template <class Body>
void useThreads(int count, const Body& body) {
    useThreads(count, body, [] {});
}

} // namespace ZQFoundation::process

#endif
