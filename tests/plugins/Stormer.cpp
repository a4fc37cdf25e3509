// SPDX-License-Identifier: MIT
// Lets a storm of signals loose, in a plugin when one is named, else in what it is linked with. Prints how
// many lines the handler has written.
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>
#include <unistd.h>

#include "tests/plugins/Storm.h"

#ifdef ZQ_STORM_IN_PLUGIN
namespace {

decltype(&storm) stormOf(const char* plugin) {
    void* const handle = ::dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
    void* const entry = handle != nullptr ? ::dlsym(handle, "storm") : nullptr;
    if (entry == nullptr) {
        std::puts(::dlerror());
        std::exit(3);
    }
    return reinterpret_cast<decltype(&storm)>(entry);
}

} // namespace
#endif

int main(int count, char** words) {
    if (count < 3) {
        return 2;
    }
    ::alarm(300); // should it hang
    const int threads = std::atoi(words[1]);
    const int interruptions = std::atoi(words[2]);
#ifdef ZQ_STORM_IN_PLUGIN
    const long lines = stormOf(words[3])(threads, interruptions);
#else
    const long lines = storm(threads, interruptions);
#endif
    std::printf("%ld\n", lines);
    std::fflush(stdout);
    // What an unloaded library made permanently is lost by design; a leak checker would report it at exit.
    ::_exit(lines >= 0 ? 0 : 1);
}
