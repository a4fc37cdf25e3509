// SPDX-License-Identifier: MIT
// Saves the changes of user defaults.
// Only the keys that changed are written into what the file contains now, so that two processes do not undo
// each other's settings.
#include "foundation/process/DefaultsSaving.h"

#include <cerrno>

#include "foundation/process/DefaultsChanges.h"
#include "foundation/process/DictionaryFile.h"
#include "foundation/process/LockedFile.h"

namespace ZQFoundation::detail {

namespace {

/// A host may be calling from the thread that serves its windows.
/// Long enough for any writer, short enough not to be noticed as a hang.
constexpr LockWaiting waiting{500};

// Through links: a dangling link counts as absent, too.
bool isAbsent(const std::string& path) noexcept {
    struct stat information;
    return ::stat(path.c_str(), &information) != 0 && errno == ENOENT;
}

/// Whether the changes have no effect. Setting a key to its current value counts as a change: values of
/// different types may be equal.
/// Removing an absent key is not a change.
bool changesNothing(const NSDictionary& values, const NSDictionary& changes) {
    for (const NSDictionaryEntry& entry : changes) {
        if (!isRemoval(entry.value) || values.objectForKey(entry.key)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool saveDefaults(const std::string& path, const NSDictionary& changes, NSString* error) {
    if (path.empty()) {
        return refuse(error, "there is no home folder, or the application's name cannot name a file");
    }
    if (isAbsent(path) && changesNothing(nullptr, changes)) {
        return true; // creates neither a file nor a folder for it
    }
    LockedFile file;
    NSDictionary values;
    // From `open` on no other writer can get in between.
    return file.open(path, LockedFile::Folder::make, waiting, error) && file.read(values, error) &&
           (changesNothing(values, changes) || file.replace(withChanges(values, changes), error));
}

} // namespace ZQFoundation::detail
