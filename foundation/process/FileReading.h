// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_PROCESS_FILEREADING_H
#define ZQFOUNDATION_PROCESS_FILEREADING_H

#include <cstdint>
#include <string>

#include "foundation/objects/NSDictionary.h"

/// Reads the files that describe the process: Info dictionaries, string tables, defaults domains. Nothing
/// here writes, blocks on a pipe or device, or follows links endlessly.
namespace ZQFoundation::detail {

/// Distinguishes one state of a file from another. The change time shows what the modification time does not:
/// new permissions, and a modification time that was set back.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    std::int64_t changedSeconds = 0;
    std::int64_t changedNanoseconds = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Larger files are ignored. Such files are written by hand or by settings panels and stay far below this
/// size, while a file's value can take some thirty times its size in memory, in the middle of a log call.
inline constexpr std::int64_t maxFileBytes = std::int64_t{16} << 20;

enum class FileResult {
    read,       ///< all of it, as it was when its stamp was taken
    unreadable, ///< absent, not a regular file, too large, not permitted
    exhausted,  ///< the process currently lacks descriptors or memory
};

/// Whether a call failed for lack of descriptors or memory, which may be available later.
bool isPassing(int error) noexcept;

/// Reads the stamp of the file at the path. False unless the path refers to a regular file.
bool stampOfFile(const std::string& path, FileStamp& stamp) noexcept;

/// Whether the file was changed so recently that another change might leave the same stamp.
bool isFresh(const FileStamp& stamp) noexcept;

/// Parses bytes; may throw std::bad_alloc.
using FileParser = NSDictionary (*)(const std::string& bytes);

/// Reads a file and parses it. Never throws: without enough memory the result is `exhausted`. `values` is nil
/// unless the result is `read`.
FileResult readStampedFile(const std::string& path, FileParser parse, NSDictionary& values, FileStamp& stamp);

bool fileExists(const std::string& path) noexcept;
bool isFolder(const std::string& path) noexcept;

/// The dictionary in a property list of any form; empty for anything else.
NSDictionary dictionaryFromBytes(const std::string& bytes);

/// The same for a string table, which may omit the braces.
NSDictionary stringTableFromBytes(const std::string& bytes);

/// The bytes of the text as part of a path; false for nil and for texts that cannot be a file name, such as
/// those with "/".
bool getFileName(const NSString& text, std::string& name);

} // namespace ZQFoundation::detail

#endif
