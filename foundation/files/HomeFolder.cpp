// SPDX-License-Identifier: MIT
// Home folders, from the environment and the user database.
// The environment comes first, as everywhere on this system; a set-user-ID program cannot trust it.
#include "foundation/files/HomeFolder.h"

#include <cerrno>
#include <vector>

#include <pwd.h>
#include <unistd.h>

#include "foundation/system/Published.h"
#include "foundation/system/System.h"

namespace ZQFoundation::detail {

namespace {

constexpr std::size_t maxAccountRecordBytes = std::size_t{1} << 20;

struct AccountHome {
    uid_t account;
    std::string folder;
};

// The user database is queried once: it may be slow, and a forked child should not have to query it at all.
constinit Published<AccountHome> accountHome;

// A relative home would depend on the current folder.
bool isAbsolute(const char* path) noexcept { return path != nullptr && *path == '/'; }

/// `ask(record, buffer, size, found)` is one of the two lookups of the user database.
template <class Ask>
std::string homeFromDatabase(const Ask& ask) {
    std::vector<char> buffer(1024);
    passwd record{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ask(&record, buffer.data(), buffer.size(), &found)) == EINTR ||
           (error == ERANGE && buffer.size() < maxAccountRecordBytes)) {
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
        }
    }
    return error == 0 && found != nullptr && isAbsolute(found->pw_dir) ? found->pw_dir : std::string();
}

} // namespace

std::string homeFolder() {
    // Read each time, because hosts and tests change it.
    const char* const home = system::environmentVariable("HOME");
    if (isAbsolute(home)) {
        return home;
    }
    // The effective user, whose files the process makes.
    const uid_t account = ::geteuid();
    std::string folder = accountHome.read([&](const AccountHome* known) {
        return known != nullptr && known->account == account ? known->folder : std::string();
    });
    // Outside the lock, since the lookup may take long. An empty result is looked up again.
    if (folder.empty()) {
        folder = homeFromDatabase([=](passwd* record, char* buffer, std::size_t size, passwd** found) {
            return ::getpwuid_r(account, record, buffer, size, found);
        });
        accountHome.replace(new AccountHome{account, folder});
    }
    return folder;
}

NSString resolvedHomeFolder() {
    const NSString home = NSString("~").stringByResolvingSymlinksInPath();
    return home.hasPrefix("/") ? home : NSString("/");
}

std::string homeFolderOfAccount(const std::string& name) {
    return homeFromDatabase([&](passwd* record, char* buffer, std::size_t size, passwd** found) {
        return ::getpwnam_r(name.c_str(), record, buffer, size, found);
    });
}

} // namespace ZQFoundation::detail
