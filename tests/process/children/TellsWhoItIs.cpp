// SPDX-License-Identifier: MIT
// A host that asks for its facts for the first time at a bad moment, and prints what it learns then and
// later.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/resource.h>

#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

namespace {

std::string facts() {
    const NSProcessInfo& process = NSProcessInfo::processInfo();
    std::string text = process.processName().utf8();
    for (const NSObject& argument : process.arguments()) {
        text.append(" <").append(NSString(argument).utf8()).append(">");
    }
    const NSString trace = NSUserDefaults::standardUserDefaults().stringForKey("TraceArguments");
    return text + " " + (trace ? trace.utf8() : "nil") + "\n";
}

/// As a server does that shows in the list of processes what it is at.
void writeTitleOverArguments(int count, char** arguments) {
    for (int i = 0; i < count; ++i) {
        std::memset(arguments[i], '/', std::strlen(arguments[i]));
    }
    std::memcpy(arguments[0], "/title", std::strlen("/title"));
    arguments[1] = nullptr;
}

std::string factsWithoutDescriptors() {
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    std::string text = facts();
    ::setrlimit(RLIMIT_NOFILE, &before);
    return text;
}

} // namespace

int main(int count, char** arguments) {
    const char* const moment = std::getenv("ZQ_TEST_MOMENT");
    const std::string name = moment != nullptr ? moment : "";
    std::string text;
    if (name == "title") {
        writeTitleOverArguments(count, arguments);
    } else if (name == "full table") {
        text = factsWithoutDescriptors();
    } else {
        text = name; // what has kept the moment from coming about
    }
    text += facts();
    text += NSBundle::mainBundle().executablePath().utf8() + "\n";
    text += NSBundle::libraryBundle().bundlePath().utf8() + "\n";
    std::fputs(text.c_str(), stdout);
    return 0;
}
