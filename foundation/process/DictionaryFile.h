// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_DICTIONARYFILE_H
#define ZQFOUNDATION_PROCESS_DICTIONARYFILE_H

#include <string>

#include "foundation/files/GuardedOpening.h"
#include "foundation/objects/NSDictionary.h"

/// Reads dictionaries for callers who need the reason of a failure; FileReading.h is for callers who continue
/// without the file. `path` names the file in the reason; `error` may be null.
namespace ZQFoundation::detail {

/// Sets the reason, formatted as `NSString::stringWithFormat` does, unless `error` is null. Returns false.
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

/// Reads all bytes of the open file from its current position on. False for more than the library reads.
bool readBytes(const Descriptor& file, const std::string& path, std::string& bytes, NSString* error);

/// Reads the dictionary in the open file from its current position on; a pipe is read to its end. False for
/// anything else.
bool readDictionary(const Descriptor& file, const std::string& path, NSDictionary& values, NSString* error);

/// Reads the dictionary in the regular file at the place. True with nil when there is none.
bool readDictionaryAt(const GuardedPlace& place, const std::string& path, NSDictionary& values,
                      NSString* error);

/// Opens the place, without following a link that was put there meanwhile. Not open, with `errno`, on
/// failure.
Descriptor openPlace(const GuardedPlace& place, int flags) noexcept;

} // namespace ZQFoundation::detail

#endif
