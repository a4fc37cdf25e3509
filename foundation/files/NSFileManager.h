// SPDX-License-Identifier: MIT
// Declares NSFileManager, the operations on files and folders by path, and NSDirectoryEnumerator.
#ifndef ZQFOUNDATION_FILES_NSFILEMANAGER_H
#define ZQFOUNDATION_FILES_NSFILEMANAGER_H

#include "../objects/NSData.h"
#include "../objects/NSDictionary.h"
#include "../objects/NSString.h"

namespace ZQFoundation::detail {
class TreeWalk;
} // namespace ZQFoundation::detail

namespace ZQFoundation {

/// Walks a tree of files, a folder before its contents.
///
///     NSDirectoryEnumerator items = NSFileManager::defaultManager().enumeratorAtPath(folder);
///     while (const NSString path = items.nextObject()) ... // "sub", "sub/a.log"
///
/// Paths are relative to the start. Links are reported but not followed, except that the start itself may be
/// one. What cannot be read is reported and skipped. Siblings come in any order. Items that were reported may
/// be removed meanwhile. Movable; belongs to one thread at a time.
class ZQFOUNDATION_EXPORT NSDirectoryEnumerator {
public:
    NSDirectoryEnumerator() noexcept = default;
    NSDirectoryEnumerator(NSDirectoryEnumerator&& other) noexcept : walk_(other.walk_) {
        other.walk_ = nullptr;
    }
    NSDirectoryEnumerator& operator=(NSDirectoryEnumerator&& other) noexcept;
    ~NSDirectoryEnumerator();

    /// The next item's path, relative to the start. Nil at the end, and at once for a start that is not a
    /// folder or cannot be read.
    NSString nextObject();

    /// Does not enter the folder last returned. Does nothing before the first item.
    void skipDescendents();

private:
    friend class NSFileManager;
    explicit NSDirectoryEnumerator(detail::TreeWalk* walk) noexcept : walk_(walk) {}

    detail::TreeWalk* walk_ = nullptr;
};

/// Attribute: one of the values `NSFileTypeRegular`, ...
inline constexpr const char* NSFileType = "NSFileType";

/// Attribute: the size in bytes.
inline constexpr const char* NSFileSize = "NSFileSize";

/// Attribute: when the contents last changed, as exactly as a date can represent it.
inline constexpr const char* NSFileModificationDate = "NSFileModificationDate";

/// Attribute: when the item was created; missing where the system does not record that time.
inline constexpr const char* NSFileCreationDate = "NSFileCreationDate";

/// Attribute: the low 12 bits of the mode.
inline constexpr const char* NSFilePosixPermissions = "NSFilePosixPermissions";

/// Attribute: the number of hard links.
inline constexpr const char* NSFileReferenceCount = "NSFileReferenceCount";

/// Attribute: the number of the owner.
inline constexpr const char* NSFileOwnerAccountID = "NSFileOwnerAccountID";

/// Attribute: the name of the owner; absent for an unknown account.
inline constexpr const char* NSFileOwnerAccountName = "NSFileOwnerAccountName";

/// Attribute: the number of the group.
inline constexpr const char* NSFileGroupOwnerAccountID = "NSFileGroupOwnerAccountID";

/// Attribute: the name of the group; absent for an unknown one.
inline constexpr const char* NSFileGroupOwnerAccountName = "NSFileGroupOwnerAccountName";

/// Attribute: the number of the device that holds the item.
inline constexpr const char* NSFileSystemNumber = "NSFileSystemNumber";

/// Attribute: the item's number on that device (inode).
inline constexpr const char* NSFileSystemFileNumber = "NSFileSystemFileNumber";

/// `NSFileType` of an ordinary file.
inline constexpr const char* NSFileTypeRegular = "NSFileTypeRegular";

/// `NSFileType` of a folder.
inline constexpr const char* NSFileTypeDirectory = "NSFileTypeDirectory";

/// `NSFileType` of a symbolic link.
inline constexpr const char* NSFileTypeSymbolicLink = "NSFileTypeSymbolicLink";

/// `NSFileType` of a socket.
inline constexpr const char* NSFileTypeSocket = "NSFileTypeSocket";

/// `NSFileType` of a character device.
inline constexpr const char* NSFileTypeCharacterSpecial = "NSFileTypeCharacterSpecial";

/// `NSFileType` of a block device.
inline constexpr const char* NSFileTypeBlockSpecial = "NSFileTypeBlockSpecial";

/// `NSFileType` of anything else, such as a pipe.
inline constexpr const char* NSFileTypeUnknown = "NSFileTypeUnknown";

/// Files and folders by path.
///
///     NSFileManager& files = NSFileManager::defaultManager();
///     NSString reason;
///     if (!files.removeItemAtPath_error(path, &reason)) ...
///
/// A path is used as it is: "~" is not expanded, a relative one is relative to the current folder. Nil, the
/// empty path, U+0000 and unpaired surrogates that represent no byte of a file name make every operation fail
/// unless its comment says otherwise. Failures are false or nil, never exceptions; `errorText`, where an
/// operation has it and it is not null, then says what went wrong ("/a/b: Permission denied"), and becomes
/// nil on success.
///
/// Paths may be of any length. Any thread may call any operation at any time; `errno` is preserved. Between
/// two calls other processes may change what is there.
class ZQFOUNDATION_EXPORT NSFileManager {
public:
    /// The shared object, never destroyed.
    static NSFileManager& defaultManager() noexcept;

    NSFileManager(const NSFileManager&) = delete;
    NSFileManager& operator=(const NSFileManager&) = delete;

    /// Whether anything exists at the path. Links are followed: a dangling link does not exist.
    bool fileExistsAtPath(StringView path) const;

    /// Whether anything exists at the path, and whether it is a folder: `*isDirectory`, unless null, is
    /// written only if the result is true. Links are followed.
    bool fileExistsAtPath_isDirectory(StringView path, bool* isDirectory) const;

    /// Whether the process may read the file or folder, by its real user and group. Links are followed.
    bool isReadableFileAtPath(StringView path) const;

    /// Whether the process may write the file or folder, by its real user and group. Links are followed.
    bool isWritableFileAtPath(StringView path) const;

    /// The attributes of the item itself, by the keys above; a link is not followed. Nil if there is none.
    NSDictionary attributesOfItemAtPath_error(StringView path, NSString* errorText = nullptr) const;

    /// The names in a folder without "." and "..", dot files included, in the order of the file system. Nil
    /// if it is not a folder or cannot be read.
    NSArray contentsOfDirectoryAtPath_error(StringView path, NSString* errorText = nullptr) const;

    /// Creates a folder. Without intermediates: false if anything exists at the path. With them: also creates
    /// the missing parent folders, and returns true if a folder, or a link to one, already exists there;
    /// folders created before a failure stay. Each new folder has the mode 0777 less the umask, and then gets
    /// the attributes; those that are unknown or cannot be applied are ignored.
    bool createDirectoryAtPath_withIntermediateDirectories_attributes_error(
        StringView path, detail::Flag withIntermediateDirectories, const NSDictionary& attributes,
        NSString* errorText = nullptr);

    /// Writes a new file next to the path and renames it over what exists there: others see the old file or
    /// the complete new one. A link at the path is replaced, not followed. An existing file's mode is kept
    /// (without the set-ID bits if owner or group change); a new file gets 0666 less the umask. Then the
    /// attributes (permissions, modification date, owner) are applied; those that fail are ignored. Nil
    /// contents make an empty file. False, with the old file unchanged, if there is a folder at the path, the
    /// parent folder is missing or anything else fails: the reason is not reported.
    [[nodiscard]] bool createFileAtPath_contents_attributes(StringView path, const NSData& contents,
                                                            const NSDictionary& attributes);

    /// Walks everything below the folder; empty if it cannot be read.
    NSDirectoryEnumerator enumeratorAtPath(StringView path) const;

    /// Copies a file, a link as a link with the same text, or a whole tree. Nothing may exist at the
    /// destination (a dangling link counts), and its parent must exist. Contents (with holes), permissions,
    /// modification and access times, extended attributes and access lists are preserved, and the owner where
    /// that is allowed; hard links become separate files; pipes and sockets are created again, and devices
    /// where that is allowed. Folders get their permissions and times when their contents are complete. While
    /// a copy is being made, nobody can read it who may not read the source.
    ///
    /// The first failure, which may be that of a write reported only when the file is closed, stops the copy
    /// with false; what was copied stays. False, before anything is created, for a folder that would be
    /// copied into itself or below itself.
    [[nodiscard]] bool copyItemAtPath_toPath_error(StringView source, StringView destination,
                                                   NSString* errorText = nullptr);

    /// Removes a file, a link itself or a whole tree, in which links are not followed. False if there is
    /// nothing or if something could not be removed; what was removed before that is gone.
    bool removeItemAtPath_error(StringView path, NSString* errorText = nullptr);

    /// @name NSFileManager(ZQFoundation)
    /// @{

    /// Whether the path refers to an ordinary file, through links too.
    bool isRegularFileAtPath(StringView path) const;

    /// Whether the path refers to a folder, through links too.
    bool isDirectoryAtPath(StringView path) const;

    /// `createDirectoryAtPath_withIntermediateDirectories_attributes_error` with `deepCreate` as its switch.
    bool createDirectoryAtPath_attributes_deepCreate(StringView path, const NSDictionary& attributes,
                                                     detail::Flag deepCreate);

    /// Creates the file and, if `deepCreate`, first the missing folders above it, each with the folder
    /// attributes. False, and nothing made, if something other than a folder is where the parent should be,
    /// and with `deepCreate` for a bare name, which has no parent: write "./name".
    [[nodiscard]] bool createFileAtPath_contents_fileAttributes_directoryAttributes_deepCreate(
        StringView path, const NSData& contents, const NSDictionary& fileAttributes,
        const NSDictionary& directoryAttributes, detail::Flag deepCreate);

    /// Creates every missing folder of the standardized path, one after another **from the root folder
    /// on**: a relative path "a/b" is created as "/a/b". True for an empty or nil path. Stops at the first
    /// failure with false; folders created before it stay.
    bool recursivelyCreateDirectoriesInPath(StringView path);

    /// @}

private:
    constexpr NSFileManager() noexcept = default;
};

} // namespace ZQFoundation

#endif
