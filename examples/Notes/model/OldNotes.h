// SPDX-License-Identifier: MIT
// Moves the notes of release 1, which kept them in another folder, to the present folder.
#ifndef ZQFOUNDATION_MODEL_OLDNOTES_H
#define ZQFOUNDATION_MODEL_OLDNOTES_H

#include <vector>

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

namespace zq = ZQFoundation;

/// An old note that is still at its old place, or a folder that cannot be looked into.
struct Stayed {
    zq::NSString name;   ///< relative to the old folder
    zq::NSString reason; ///< in the user's language
};

/// The result of moving the old notes.
struct Move {
    std::size_t moved = 0;      ///< number of notes at the new place
    std::size_t left = 0;       ///< number of notes still at the old one
    std::vector<Stayed> stayed; ///< those that could not be moved
    bool isStopped = false;     ///< by the observer
};

/// ~/Library/Application Support/Example/Notes, regardless of the present layout of folders.
zq::NSString oldNotesFolder();

/// The number of notes below the folder.
std::size_t countOldNotes(const zq::NSString& folder);

/// Moves all notes from below the old folder to the same places below the new one. A note whose name is taken
/// there gets a free one, so none replaces another. What was moved stays moved when the observer stops it,
/// and the next call resumes it. Any thread.
Move moveOldNotes(const zq::NSString& from, const zq::NSString& to, zq::ZQMigrationObserver* observer);

} // namespace notes

#endif
