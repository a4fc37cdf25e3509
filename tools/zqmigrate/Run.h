// SPDX-License-Identifier: MIT
// Declares a run of the tool and its outcome.
#ifndef ZQFOUNDATION_ZQMIGRATE_RUN_H
#define ZQFOUNDATION_ZQMIGRATE_RUN_H

#include "tools/zqmigrate/Request.h"
#include "tools/zqmigrate/Screen.h"

namespace ZQFoundation::tools::zqmigrate {

/// The result for one file or folder; in a dry run, the expected one.
struct Item {
    NSString path; ///< relative to the source folder in a batch, else the source
    std::uint32_t code;
    NSString destination; ///< of the copy; nil if it has none
    NSString note;        ///< why a real run may differ; nil if no reason is known
};

/// The outcome of a run.
struct Outcome {
    std::uint64_t migrated = 0;
    std::vector<Item> failed;
    std::vector<NSString> notReached;        ///< after a signal; paths as those of items
    bool isMoreNotReached = false;           ///< another signal has shortened that list
    std::vector<NSString> unreadableFolders; ///< their contents are unknown
    bool isMoreUnreadable = false;           ///< a signal has ended the search for them
    std::vector<NSString> brokenLinks;       ///< copies of relative links that were valid
    NSString error;                          ///< why there was nothing to migrate; nil if there was something
    std::vector<NSString> notes;
    int signal = 0;

    std::uint64_t left() const noexcept { return failed.size() + notReached.size(); }

    bool isSuccess() const noexcept {
        return left() == 0 && unreadableFolders.empty() && !error && signal == 0;
    }
};

/// Carries out the request, or plans it in a dry run, and reports each item as soon as it is done.
Outcome carryOut(const Request& request, Screen& screen);

/// Plans what would be done in the present state, and changes nothing. The observer is called as in a real
/// run.
std::vector<Item> plannedItems(const Request& request, ZQMigrationObserver& observer);

} // namespace ZQFoundation::tools::zqmigrate

#endif
