// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_OUTCOME_H
#define ZQFOUNDATION_ZQMIGRATE_OUTCOME_H

#include <cstdint>
#include <string>
#include <vector>

namespace ZQFoundation::zqmigrate {

/// What became of one file or folder. Paths are the system's bytes.
struct Item {
    std::string path;        ///< as the user knows it: below the source folder in a batch
    std::string destination; ///< the whole path of the copy; empty when there is none to name
    std::string newName;     ///< the path of the copy when it was given another name, else empty
    std::uint32_t code = 0;
};

/// What a run has come to. In a trial, what a real one would come to.
struct Outcome {
    std::uint64_t migrated = 0;
    std::vector<Item> failed;
    std::vector<std::string> notReached;        ///< after an interruption
    bool isMoreNotReached = false;              ///< another interruption has cut that list short
    std::vector<std::string> unreadableFolders; ///< what they hold was not even seen
    bool isMoreUnreadable = false;              ///< an interruption has cut the search for them short
    std::string error;                          ///< why there was nothing to go through; empty when there was
    std::vector<std::string> notes;             ///< of a trial
    int signal = 0;

    std::uint64_t count() const noexcept { return migrated + failed.size() + notReached.size(); }

    bool isSuccess() const noexcept {
        return failed.empty() && notReached.empty() && unreadableFolders.empty() && error.empty() &&
               signal == 0;
    }
};

} // namespace ZQFoundation::zqmigrate

#endif
