// SPDX-License-Identifier: MIT
// Declares the parsed command line.
#ifndef ZQFOUNDATION_ZQMIGRATE_REQUEST_H
#define ZQFOUNDATION_ZQMIGRATE_REQUEST_H

#include "migration/ZQFileMigrator.h"
#include "tools/common/Program.h"

namespace ZQFoundation::tools::zqmigrate {

/// The commands, in the order of `operationNames`.
enum class Operation { file, folder, batch };

/// What the command line asks for.
struct Request : ZQMigrationOptions {
    Operation operation = Operation::file;
    NSString from; ///< as typed
    NSString to;
    NSString source; ///< "~" expanded; passed to the library
    NSString destination;
    NSString extension; ///< nil for every file
    bool isTrial = false;
    bool isJson = false;
    bool isQuiet = false;
    bool isVerbose = false;
    bool wantsHelp = false; ///< nothing else is done then; the same for the next one
    bool wantsVersion = false;

    bool isBatch() const noexcept { return operation == Operation::batch; }

    /// The destination of an item: in a batch by its path relative to the folders.
    NSString destinationOf(const NSString& path) const {
        return isBatch() ? destination.stringByAppendingPathComponent(path) : destination;
    }

    /// Paths of an item and of its copy as the user would write them.
    NSString typedPath(const NSString& path) const { return isBatch() ? path : from; }
    NSString typedDestination(const NSString& path) const {
        return !isBatch() && path.hasPrefix("./") ? path.substringFromIndex(2) : path;
    }
};

inline constexpr const char* operationNames[] = {"file", "folder", "batch"};

/// Throws Misuse for a wrong command line.
Request requestFromWords(const Words& words);

} // namespace ZQFoundation::tools::zqmigrate

#endif
