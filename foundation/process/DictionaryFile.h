// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DICTIONARYFILE_H
#define ZQFOUNDATION_PROCESS_DICTIONARYFILE_H

#include <string>

#include "foundation/files/GuardedOpening.h"
#include "foundation/objects/NSDictionary.h"

/// Reading of dictionaries for somebody who is to learn why it fails, where FileReading.h is for those who
/// go on without. `path` names the file in the reason; `error` may be null.
namespace ZQFoundation::detail {

/// Makes the reason, formatted as `NSString::stringWithFormat` does, when it is asked for. Answers false.
template <class... Arguments>
bool refuse(NSString* error, FormatString<std::type_identity_t<Arguments>...> format,
            const Arguments&... arguments) {
    if (error != nullptr) {
        *error = NSString::stringWithFormat(format, arguments...);
    }
    return false;
}

/// The same for a system error.
bool refuseWith(NSString* error, const std::string& path, int number);

/// All bytes of the open file from where it stands on. False for more of them than the library reads.
bool readBytes(const Descriptor& file, const std::string& path, std::string& bytes, NSString* error);

/// What the open file holds from where it stands on; a pipe is read to its end. False for what is no
/// dictionary.
bool readDictionary(const Descriptor& file, const std::string& path, NSDictionary& values, NSString* error);

/// What the regular file at the place holds. True with nil when there is none.
bool readDictionaryAt(const GuardedPlace& place, const std::string& path, NSDictionary& values,
                      NSString* error);

/// Opens the place, without following a link that has been put there meanwhile. `errno` if it fails.
Descriptor openPlace(const GuardedPlace& place, int flags) noexcept;

} // namespace ZQFoundation::detail

#endif
