// SPDX-License-Identifier: MIT
// A host that knows nothing of the library: it loads two plugins that bring it along, side by side, and
// unloads them again. Arguments: the library's file and the two plugins' files. Says what was wrong on
// standard output and exits with 0 when nothing was.
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/plugins/Plugin.h"

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (!holds) {
        std::printf("not so: %s\n", what);
        std::fflush(stdout);
        ++failures;
    }
}

class Plugin {
public:
    explicit Plugin(const char* path) : handle_(::dlopen(path, RTLD_NOW | RTLD_LOCAL)) { endIfNull(handle_); }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;
    ~Plugin() { ::dlclose(handle_); }

    template <class Function>
    Function* entry(const char* name) const {
        void* const address = ::dlsym(handle_, name);
        endIfNull(address);
        return reinterpret_cast<Function*>(address);
    }

private:
    static void endIfNull(const void* found) {
        if (found == nullptr) {
            std::printf("%s\n", ::dlerror());
            std::fflush(stdout);
            ::_exit(3);
        }
    }

    void* handle_;
};

bool isLoaded(const char* path) {
    void* const handle = ::dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        ::dlclose(handle);
    }
    return handle != nullptr;
}

void shareTraceKeys(const Plugin& first, const Plugin& second) {
    expect(!second.entry<KeyIsOn>("keyIsOn")("TraceShared"), "no key is on at first");
    expect(!second.entry<OwnKeyIsOn>("ownKeyIsOn")(), "nor does the second plugin remember one");
    first.entry<SetKey>("setKey")("TraceShared", true);
    expect(second.entry<KeyIsOn>("keyIsOn")("TraceShared"), "the second plugin sees the first one's key");
    expect(second.entry<OwnKeyIsOn>("ownKeyIsOn")(),
           "what it remembers is over with the first one's re-reading");
    second.entry<LogForKey>("logForKey")("TraceShared", "second");
    second.entry<SetKey>("setKey")("TraceShared", false);
    expect(!first.entry<KeyIsOn>("keyIsOn")("TraceShared"), "the first plugin sees the key go");
    first.entry<LogForKey>("logForKey")("TraceShared", "silent");
    second.entry<SetKey>("setKey")("TraceShared", true);
    first.entry<LogForKey>("logForKey")("TraceShared", "first");
}

void shareTheMonitor(const Plugin& first, const Plugin& second) {
    first.entry<EnterMonitor>("enterMonitor")();
    // The same thread may go on, through the other plugin too.
    second.entry<KeyIsOn>("keyIsOn")("TraceShared");
    std::atomic<bool> answered = false;
    std::thread asking([&] {
        second.entry<KeyIsOn>("keyIsOn")("TraceShared");
        answered = true;
    });
    ::usleep(50'000);
    expect(!answered, "the second plugin waits for the monitor that the first one holds");
    first.entry<LeaveMonitor>("leaveMonitor")();
    asking.join();
    expect(answered, "the second plugin goes on");
}

void shareExceptions(const Plugin& first, const Plugin& second) {
    void* const object = first.entry<MakeRaisingObject>("makeRaisingObject")();
    expect(second.entry<LogCatches>("logCatches")(object),
           "the second plugin catches what the first one raises");
    first.entry<ReleaseObject>("releaseObject")(object);
}

/// Whatever the unloaded library has left with the system must not be called.
void forkAfterUnloading() {
    const pid_t child = ::fork();
    if (child == 0) {
        std::thread([] {}).join();
        ::_exit(0);
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    expect(status == 0, "a child lives after the plugins are gone");
}

void loadAndUnload(char** paths) {
    {
        const Plugin first(paths[1]);
        const Plugin second(paths[2]);
        shareTraceKeys(first, second);
        shareTheMonitor(first, second);
        shareExceptions(first, second);
    }
    for (int i = 0; i < 3; ++i) {
        expect(!isLoaded(paths[i]), paths[i]);
    }
    forkAfterUnloading();
}

} // namespace

int main(int count, char** words) {
    if (count < 4) {
        return 2;
    }
    ::alarm(60);
    for (int round = 0; round < 3; ++round) {
        loadAndUnload(words + 1);
    }
    // What an unloaded library made permanently is lost by design; a leak checker would report it at exit.
    ::_exit(failures == 0 ? 0 : 1);
}
