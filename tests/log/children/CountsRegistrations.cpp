// SPDX-License-Identifier: MIT
// Intercepts the functions by which a program gets handlers and threads, and counts who calls them while it
// uses the library. Exits with 0 when nobody did.
#include <csignal>
#include <cstdio>
#include <exception>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include "foundation/process/NSLog.h"
#include "log/ZQLog.h"

using namespace ZQFoundation;

namespace {

int registrations = 0;

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int __cxa_atexit(void (*handler)(void*), void* argument, void* module) noexcept {
    ++registrations;
    return next<int(void (*)(void*), void*, void*)>("__cxa_atexit")(handler, argument, module);
}

int sigaction(int signal, const struct sigaction* action, struct sigaction* before) noexcept {
    registrations += action != nullptr ? 1 : 0;
    return next<int(int, const struct sigaction*, struct sigaction*)>("sigaction")(signal, action, before);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* argument) noexcept {
    ++registrations;
    return next<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create")(
        thread, attributes, run, argument);
}

char* setlocale(int category, const char* name) noexcept {
    registrations += name != nullptr ? 1 : 0;
    return next<char*(int, const char*)>("setlocale")(category, name);
}
}

namespace {

void ignoreSignal(int) {}

/// Whether the counting counts, so that a count of 0 means something.
bool countsAtAll() {
    const int before = registrations;
    struct sigaction action {};
    action.sa_handler = ignoreSignal;
    sigaction(SIGUSR1, &action, nullptr);
    static void (*const nothing)(void*) = [](void*) {
    };
    __cxa_atexit(nothing, nullptr, nullptr);
    return registrations == before + 2;
}

void useTheLibrary() {
    ZQLog::log("a line");
    ZQLog::logForTraceKey_usingFormat("TraceStage", "%@ %d %g", "text", 2, 3.5);
    ZQLog::logForAnyTraceKeyUsingFormat("%@", "text");
    ZQLog::logSelf_method_logAlways_logWithFormat(&registrations, "method", true, "x");
    NSLog("%@", ZQLog::logPrefix());
    ZQLog::dateFormatterShort();
    {
        const ZQLog::Synchronized monitor;
        ZQLog::initializeTraceDefaultsDict();
    }
    ZQLog::activatedTraceDefaultsKeys();
}

} // namespace

int main() {
    if (!countsAtAll()) {
        return 2;
    }
    const int before = registrations;
    const std::terminate_handler terminateHandler = std::get_terminate();
    useTheLibrary();
    return registrations == before && std::get_terminate() == terminateHandler ? 0 : 1;
}
