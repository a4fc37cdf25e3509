// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_ZQMIGRATE_REQUEST_H
#define ZQFOUNDATION_ZQMIGRATE_REQUEST_H

#include <string>
#include <vector>

#include "migration/ItemMigration.h"

namespace ZQFoundation::zqmigrate {

using Words = std::vector<std::string>;

enum class Operation { file, folder, batch };

/// What the command line asks for. Paths are the system's bytes.
struct Request {
    Operation operation = Operation::file;
    std::string from;
    std::string to;
    detail::MigrationPolicy policy;
    std::string extension; ///< empty for every file
    bool includeDotFiles = false;
    bool isTrial = false;
    bool isJson = false;
    bool isQuiet = false;
    bool isVerbose = false;
};

const char* nameOf(Operation operation) noexcept;

/// The command line makes no sense; the message is for the user.
struct Misuse {
    std::string message;
};

/// Throws Misuse.
Request requestFromWords(const Words& words);

} // namespace ZQFoundation::zqmigrate

#endif
