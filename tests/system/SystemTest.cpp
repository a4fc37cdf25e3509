// SPDX-License-Identifier: MIT
// The facts about the hardware and the kernel of this machine.
#include "foundation/system/System.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <unistd.h>

using namespace ZQFoundation::detail;

namespace {

/// The first line of a file, or nothing.
std::string firstLine(const char* path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

} // namespace

TEST(System, countsTheProcessorsThatRun) {
    EXPECT_EQ(system::hardwareFacts().processors, static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN)));
    EXPECT_GT(system::hardwareFacts().processors, 0);
}

TEST(System, givesTheMemoryInBytes) {
    const std::uint64_t bytes = system::hardwareFacts().memoryBytes;
    EXPECT_GE(bytes, std::uint64_t{16} << 20);
    const std::string line = firstLine("/proc/meminfo"); // "MemTotal:  16384000 kB"
    if (line.rfind("MemTotal:", 0) == 0) {
        EXPECT_EQ(bytes, std::strtoull(line.c_str() + 9, nullptr, 10) * 1024);
    }
}

TEST(System, givesTheModelWithoutBlanksAroundIt) {
    const std::string model = system::hardwareFacts().model;
    const std::string product = firstLine("/sys/class/dmi/id/product_name");
    const std::string board = firstLine("/proc/device-tree/model");
    if (product.find_first_not_of(" \t") == std::string::npos && board.empty()) {
        EXPECT_EQ(model, "");
    } else {
        ASSERT_NE(model, "");
        EXPECT_NE((product + board).find(model), std::string::npos);
        EXPECT_EQ(std::string(" \t\n\0", 4).find(model.front()), std::string::npos);
        EXPECT_EQ(std::string(" \t\n\0", 4).find(model.back()), std::string::npos);
    }
}

TEST(System, kernelReleaseIsTheKernelsOwn) {
    utsname names{};
    ASSERT_EQ(::uname(&names), 0);
    EXPECT_EQ(system::kernelRelease(), names.release);
}
