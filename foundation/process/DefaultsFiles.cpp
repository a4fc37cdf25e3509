// SPDX-License-Identifier: MIT
// Reads the files of the domains of settings.
// The files may be changed by settings panels and tools at any time, so every lookup checks their stamps.
#include "foundation/process/DefaultsFiles.h"

#include "foundation/files/HomeFolder.h"
#include "foundation/system/System.h"
#include "foundation/system/TestOverrides.h"

namespace ZQFoundation::detail {

namespace {

bool isAbsolute(const char* path) noexcept { return path != nullptr && *path == '/'; }

} // namespace

// Not kept between calls, because hosts set the environment at their start.
std::string defaultsFolder() {
    if (overrides::defaultsFolder != nullptr) {
        return *overrides::defaultsFolder;
    }
    const char* const configuration = system::environmentVariable("XDG_CONFIG_HOME");
    if (isAbsolute(configuration)) {
        return std::string(configuration) + "/ZQFoundation";
    }
    const std::string home = homeFolder();
    return home.empty() ? std::string() : home + "/.config/ZQFoundation";
}

std::string fileOfDomain(const NSString& domain) {
    std::string name;
    const std::string folder = defaultsFolder();
    if (folder.empty() || !getFileName(domain, name)) {
        return {};
    }
    return folder + "/" + name + ".plist";
}

// Only a settled snapshot serves: one that was read right after a change could miss another change with the
// same stamp.
NSDictionary DomainFile::kept(const std::string& path, const FileStamp& stamp, bool alsoFresh) const {
    return snapshot_.read([&](const Snapshot* snapshot) {
        const bool same = snapshot != nullptr && (snapshot->settled || alsoFresh) &&
                          snapshot->stamp == stamp && snapshot->path == path;
        return same ? snapshot->values : NSDictionary();
    });
}

NSDictionary DomainFile::values(const std::string& path) {
    FileStamp stamp;
    if (!stampOfFile(path, stamp)) {
        return nullptr;
    }
    // Asked twice: before the lock, because nearly always nothing has changed, and after it, because another
    // thread may have read the file meanwhile.
    if (NSDictionary known = kept(path, stamp)) {
        return known;
    }
    const Guard<Lock> guard(reading_);
    if (NSDictionary known = kept(path, stamp)) {
        return known;
    }
    NSDictionary values;
    const FileStamp seen = stamp;
    switch (readStampedFile(path, dictionaryFromBytes, values, stamp)) {
    case FileResult::read:
        break;
    case FileResult::exhausted:
        return kept(path, seen, true); // most probably what the file still contains
    case FileResult::unreadable:
        return nullptr; // not kept, so that it is read as soon as it is readable
    }
    // The stamp is the one of the file that was read, not the one that was looked up before.
    const bool settled = !isFresh(stamp);
    snapshot_.replace(new Snapshot{path, stamp, settled, values});
    return values;
}

} // namespace ZQFoundation::detail
