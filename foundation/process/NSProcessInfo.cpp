// SPDX-License-Identifier: MIT
// Provides the process's name, number, arguments and environment.
// Names and arguments are read by log lines at any time, in handlers and children, so what they point to is
// never freed.
#include "foundation/process/NSProcessInfo.h"

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include <unistd.h>

#include "foundation/process/CommandLineDefaults.h"
#include "foundation/process/ProcessIdentity.h"
#include "foundation/system/CallerState.h"
#include "foundation/system/Published.h"
#include "foundation/system/System.h"
#include "foundation/system/TestOverrides.h"

// Declared here because not every system's headers do.
extern char** environ; // NOLINT(readability-redundant-declaration)

namespace ZQFoundation::detail {

namespace {

/// The source of a name decides how long it is valid: one that replaces arguments that could not be read is
/// valid until they can be.
enum class NameSource { arguments, replacedArguments, programFile, host };

struct IdentityRecord {
    ProcessIdentity identity;
    std::string bytes; // what identity.name points to
    NSString name;
    NameSource source;
    const IdentityRecord* previous; // all records ever made stay, since a log line may be reading any of them
};

constinit std::atomic<const IdentityRecord*> currentIdentity{nullptr};
constinit std::atomic<const IdentityRecord*> allIdentities{nullptr};
constinit std::atomic<const std::vector<std::string>*> cachedArguments{nullptr};

std::string lastComponent(const std::string& path) {
    const std::size_t last = path.find_last_not_of('/');
    if (last == std::string::npos) {
        return {};
    }
    const std::size_t slash = path.find_last_of('/', last);
    const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(start, last + 1 - start);
}

// Argument 0 is what the process was started as; the program's file is second best, because a link may have
// another name.
NSString nameFromArguments(NameSource& source) {
    const std::vector<std::string> arguments = processArguments();
    source = overrides::arguments != nullptr ? NameSource::replacedArguments
             : arguments.empty()             ? NameSource::programFile
                                             : NameSource::arguments;
    std::string name = arguments.empty() ? std::string() : lastComponent(arguments.front());
    if (name.empty()) {
        name = lastComponent(system::executablePath());
    }
    return NSString::stringWithFileSystemBytes(name.data(), name.size());
}

// The list only grows: lock-free, and safe for a reader that is in the middle of it.
const IdentityRecord* makeRecord(const NSString& name, NameSource source) {
    auto* record = new IdentityRecord{{}, name.utf8(), name, source, nullptr};
    record->identity = {record->bytes.data(), record->bytes.size()};
    record->previous = allIdentities.load(std::memory_order_relaxed);
    while (!allIdentities.compare_exchange_weak(record->previous, record, std::memory_order_release,
                                                std::memory_order_relaxed)) {
    }
    return record;
}

/// A host that switches between a few names reuses the records of the first time.
const IdentityRecord* recordFor(const NSString& name, NameSource source) {
    for (const IdentityRecord* record = allIdentities.load(std::memory_order_acquire); record != nullptr;
         record = record->previous) {
        if (record->source == source && record->name.isEqualToString(name)) {
            // The same name from another source is another record, since it is valid for another time.
            return record;
        }
    }
    return makeRecord(name, source);
}

const IdentityRecord& refreshedIdentity(const IdentityRecord* seen) {
    const CallerState callerState;
    for (;;) {
        NameSource source = NameSource::host;
        // A name that the host has set stays, even if the arguments change under it in tests.
        const bool namedByHost = seen != nullptr && seen->source == NameSource::host;
        const NSString name = namedByHost ? seen->name : nameFromArguments(source);
        const IdentityRecord* fresh = recordFor(name, source);
        // Fails when another thread has just set a name, which is then used.
        if (currentIdentity.compare_exchange_strong(seen, fresh, std::memory_order_acq_rel,
                                                    std::memory_order_acquire)) {
            return *fresh;
        }
    }
}

const IdentityRecord& identityRecord() {
    const IdentityRecord* record = currentIdentity.load(std::memory_order_acquire);
    // Only these two last. Anything else is looked up again, until the arguments can be read.
    const bool current = record != nullptr &&
                         (record->source == NameSource::arguments || record->source == NameSource::host) &&
                         overrides::arguments == nullptr;
    return current ? *record : refreshedIdentity(record);
}

} // namespace

const ProcessIdentity& processIdentity() { return identityRecord().identity; }

std::vector<std::string> processArguments() {
    if (overrides::arguments != nullptr) {
        return *overrides::arguments;
    }
    if (const auto* cached = cachedArguments.load(std::memory_order_acquire)) {
        return *cached;
    }
    const CallerState callerState;
    std::vector<std::string> arguments;
    // Tests of the second source switch off the first.
    if (!overrides::readsArguments) {
        arguments = system::handedArguments();
    }
    if (arguments.empty()) {
        arguments = system::readArguments();
    }
    // A failed reading is not kept; a process file system may be mounted later.
    if (!arguments.empty()) {
        publishOnce<std::vector<std::string>>(cachedArguments, new std::vector<std::string>(arguments));
    }
    return arguments;
}

} // namespace ZQFoundation::detail

namespace ZQFoundation {

NSProcessInfo& NSProcessInfo::processInfo() noexcept {
    static constinit NSProcessInfo instance;
    return instance;
}

NSString NSProcessInfo::processName() const { return detail::identityRecord().name; }

void NSProcessInfo::setProcessName(const NSString& name) {
    if (name.length() == 0) {
        // A process without a name would give lines without one.
        return;
    }
    // No compare: the last call wins.
    detail::currentIdentity.store(detail::recordFor(name, detail::NameSource::host),
                                  std::memory_order_release);
}

int NSProcessInfo::processIdentifier() const { return detail::system::processIdentifier(); }

NSArray NSProcessInfo::arguments() const {
    const std::vector<std::string> arguments = detail::processArguments();
    NSMutableArray result(arguments.size());
    for (const std::string& argument : arguments) {
        result.addObject(NSString::stringWithFileSystemBytes(argument.data(), argument.size()));
    }
    return result.array();
}

namespace {

std::vector<std::string> wordsOf(const NSArray& options) {
    std::vector<std::string> words;
    for (const NSObject& option : options) {
        std::string bytes;
        if (NSString(option).getFileSystemBytes(bytes)) {
            words.push_back(bytes);
        }
    }
    return words;
}

} // namespace

NSArray NSProcessInfo::argumentsWithoutDefaults(const NSArray& options) const {
    const std::vector<std::string> arguments = detail::processArguments();
    NSMutableArray result;
    for (const std::size_t place : detail::placesWithoutDefaults(arguments, wordsOf(options))) {
        result.addObject(
            NSString::stringWithFileSystemBytes(arguments[place].data(), arguments[place].size()));
    }
    return result.array();
}

void NSProcessInfo::removeDefaultsFromArguments(int& count, char** arguments, const NSArray& options) {
    if (count <= 0 || arguments == nullptr) {
        return;
    }
    detail::processArguments(); // read before the array changes, in case they come from there
    int left = 0;
    for (const std::size_t place :
         detail::placesWithoutDefaults({arguments, arguments + count}, wordsOf(options))) {
        arguments[left++] = arguments[place];
    }
    arguments[left] = nullptr;
    count = left;
}

// A snapshot. As for every reader of the environment, no other thread may change it meanwhile.
NSDictionary NSProcessInfo::environment() const {
    NSMutableDictionary result;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const char* const equals = std::strchr(*entry, '=');
        // Entries without a name cannot be looked up.
        if (equals == nullptr || equals == *entry) {
            continue;
        }
        const NSString name =
            NSString::stringWithFileSystemBytes(*entry, static_cast<std::size_t>(equals - *entry));
        // Of a name that occurs twice the first one counts, as for `getenv`.
        if (!result.objectForKey(name)) {
            result.setObject_forKey(NSString::stringWithFileSystemBytes(equals + 1, std::strlen(equals + 1)),
                                    name);
        }
    }
    return result.dictionary();
}

} // namespace ZQFoundation
