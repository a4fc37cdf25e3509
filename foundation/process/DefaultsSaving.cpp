// SPDX-License-Identifier: MIT
// Saves the changes of user defaults.
#include "foundation/process/DefaultsSaving.h"

#include <cerrno>

#include "foundation/process/DefaultsChanges.h"
#include "foundation/process/DictionaryFile.h"
#include "foundation/process/LockedFile.h"

namespace ZQFoundation::detail {

namespace {

/// A host may be calling from the thread that serves its windows.
constexpr LockWaiting waiting{500};

bool isAbsent(const std::string& path) noexcept {
    struct stat information;
    return ::stat(path.c_str(), &information) != 0 && errno == ENOENT;
}

/// Whether the changes have no effect. Setting a key to its current value counts as a change: values of
/// different types may be equal.
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
    return file.open(path, LockedFile::Folder::make, waiting, error) && file.read(values, error) &&
           (changesNothing(values, changes) || file.replace(withChanges(values, changes), error));
}

} // namespace ZQFoundation::detail
