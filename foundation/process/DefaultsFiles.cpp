// SPDX-License-Identifier: MIT
#include "foundation/process/DefaultsFiles.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <vector>

#include <pwd.h>
#include <unistd.h>

#include "foundation/system/TestOverrides.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t largestAccountRecord = std::size_t{1} << 20;

struct AccountHome {
    uid_t account;
    std::string folder;
};

// The user database is asked once: it may be slow, and a forked child should not have to ask it at all.
constinit Published<AccountHome> accountHome;

bool isAbsolute(const char* path) noexcept { return path != nullptr && *path == '/'; }

std::string homeFromDatabase(uid_t account) {
    std::vector<char> buffer(1024);
    passwd record{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ::getpwuid_r(account, &record, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < largestAccountRecord) {
        buffer.resize(buffer.size() * 2);
    }
    return error == 0 && found != nullptr && isAbsolute(found->pw_dir) ? found->pw_dir : std::string();
}

std::string homeFolder() {
    const char* const home = std::getenv("HOME");
    if (isAbsolute(home)) {
        return home;
    }
    const uid_t account = ::geteuid();
    std::string folder = accountHome.read([&](const AccountHome* known) {
        return known != nullptr && known->account == account ? known->folder : std::string();
    });
    if (folder.empty()) {
        folder = homeFromDatabase(account);
        accountHome.replace(new AccountHome{account, folder});
    }
    return folder;
}

} // namespace

std::string defaultsFolder() {
    if (overrides::defaultsFolder != nullptr) {
        return *overrides::defaultsFolder;
    }
    const char* const configuration = std::getenv("XDG_CONFIG_HOME");
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

NSDictionary DomainFile::kept(const std::string& path, const FileStamp& stamp) const {
    return snapshot_.read([&](const Snapshot* snapshot) {
        const bool same =
            snapshot != nullptr && snapshot->settled && snapshot->stamp == stamp && snapshot->path == path;
        return same ? snapshot->values : NSDictionary();
    });
}

NSDictionary DomainFile::values(const std::string& path) {
    FileStamp stamp;
    if (!stampOfFile(path, stamp)) {
        return nullptr;
    }
    if (NSDictionary known = kept(path, stamp)) {
        return known;
    }
    const Guard<Lock> guard(reading_);
    if (NSDictionary known = kept(path, stamp)) {
        return known;
    }
    NSDictionary values;
    if (readStampedFile(path, dictionaryFromBytes, values, stamp) != FileResult::read) {
        return nullptr; // not kept, so that it is tried again as soon as it can be read
    }
    const bool settled = !isFresh(stamp);
    snapshot_.replace(new Snapshot{path, stamp, settled, values});
    return values;
}

} // namespace ZQFoundation::detail
