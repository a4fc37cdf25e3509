// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_BATCHSELECTION_H
#define ZQFOUNDATION_MIGRATION_BATCHSELECTION_H

#include "foundation/files/NSFileManager.h"

namespace ZQFoundation::detail {

/// The files of a tree that a batch migrates, one after the other.
///
///     while (const NSString path = selection.next()) ... // relative; `selection.file()` is the whole path
///
/// `Files` is as for `ItemMigration`, and must outlive the selection. What the last step told may be removed
/// before the next.
template <class Files>
class BatchSelection {
public:
    /// Nil and "" as extension stand for every file.
    BatchSelection(const Files& files, const NSString& extension, const NSString& sourceFolder,
                   bool includeDotFiles)
        : files_(files), extension_(extension), folder_(sourceFolder), includeDotFiles_(includeDotFiles),
          items_(NSFileManager::defaultManager().enumeratorAtPath(sourceFolder)) {
        items_.skipDescendents(); // nothing was told yet, so nothing is skipped
    }

    /// Nil at the end.
    NSString next() {
        while (NSString path = items_.nextObject()) {
            if (!isWanted(path)) {
                continue;
            }
            file_ = folder_.stringByAppendingPathComponent(path);
            files_.exists(file_, &isDirectory_);
            if (!isDirectory_) {
                return path;
            }
        }
        return nullptr;
    }

    const NSString& file() const noexcept { return file_; }

private:
    bool isWanted(const NSString& path) const {
        const bool matches =
            !extension_ || extension_.isEqualToString("") || path.pathExtension().isEqualToString(extension_);
        return matches && (includeDotFiles_ || !path.hasPrefix("."));
    }

    const Files& files_;
    NSString extension_;
    NSString folder_;
    bool includeDotFiles_;
    NSDirectoryEnumerator items_;
    NSString file_;
    // Not reset between entries: one at which nothing is found counts as what the entry before it was.
    bool isDirectory_ = false;
};

} // namespace ZQFoundation::detail

#endif
