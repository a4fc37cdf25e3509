// SPDX-License-Identifier: MIT
// Declares a run of the tool and its outcome.
#ifndef ZQFOUNDATION_ZQMIGRATE_RUN_H
#define ZQFOUNDATION_ZQMIGRATE_RUN_H

#include "tools/zqmigrate/Request.h"
#include "tools/zqmigrate/Screen.h"

namespace ZQFoundation::tools::zqmigrate {

/// What became of one file or folder, or in a trial would become.
struct Item {
    NSString path; ///< relative to the source folder in a batch, else the source
    std::uint32_t code;
    NSString destination; ///< of the copy; nil when there is none to name
    NSString note;        ///< why a real run may do something else; nil when nothing is known
};

/// What a run has come to.
struct Outcome {
    std::uint64_t migrated = 0;
    std::vector<Item> failed;
    std::vector<NSString> notReached;        ///< after a signal; paths as those of items
    bool isMoreNotReached = false;           ///< another signal has cut that list short
    std::vector<NSString> unreadableFolders; ///< what they hold was not even seen
    bool isMoreUnreadable = false;           ///< a signal has cut the search for them short
    std::vector<NSString> brokenLinks;       ///< copies of relative links that were valid
    NSString error;                          ///< why there was nothing to go through; nil when there was
    std::vector<NSString> notes;
    int signal = 0;

    std::uint64_t left() const noexcept { return failed.size() + notReached.size(); }

    bool isSuccess() const noexcept {
        return left() == 0 && unreadableFolders.empty() && !error && signal == 0;
    }
};

/// Carries the request out, or tries it, and reports each item as it is done.
Outcome carryOut(const Request& request, Screen& screen);

/// What would be done as things are now; changes nothing. The observer follows.
std::vector<Item> plannedItems(const Request& request, ZQMigrationObserver& observer);

} // namespace ZQFoundation::tools::zqmigrate

#endif
